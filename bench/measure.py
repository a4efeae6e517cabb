"""Running programs and comparing what they made."""

import filecmp
import hashlib
import os
import re
import statistics
import subprocess
from dataclasses import dataclass
from pathlib import Path

from workload import OUTPUT, Documents, Peer

START_TAG = re.compile(rb"<([A-Za-z][^<>]*?)\s*/?>")


@dataclass
class Cost:
    cpu: float  # user plus system time, seconds
    wall: float  # seconds
    peak: int  # bytes


@dataclass
class Program:
    """A peer, or ours, over one set of documents."""

    peer: Peer
    documents: Documents
    runs: int = 1

    @property
    def output(self) -> Path:
        return self.documents.directory / f"{self.peer.name}.out"


class Failure(Exception):
    """A program failed, or made something else than it should."""


class Runner:
    def __init__(self, tools: Path, xmlpp: Path):
        self.tools = tools
        self.xmlpp = xmlpp
        # Nothing of the caller's: its locale and settings would be measured too.
        self.environment = {"PATH": f"{tools}:{os.environ['PATH']}", "LC_ALL": "C"}

    def run(self, program: Program) -> Cost:
        """The mean cost of as many runs as the program asks for."""
        peer = program.peer
        # Whatever is checked afterwards comes from this run.
        program.output.unlink(missing_ok=True)
        output = program.output.name
        command = [part.format(xmlpp=self.xmlpp, out=output) for part in peer.command]
        stdout = "/dev/null" if OUTPUT in peer.command else output
        done = subprocess.run(
            [self.tools / "measure", str(program.runs), peer.stdin, stdout, *command],
            cwd=program.documents.directory, env=self.environment | peer.environment,
            capture_output=True, text=True)
        if done.returncode != 0:
            raise Failure(f"{peer.name}: {done.stderr.strip()[:500]}")
        cpu, wall, peak = done.stdout.split()
        return Cost(float(cpu) / 1e6, float(wall) / 1e6, int(peak) * 1024)

    def alternately(self, programs: list[Program], rounds: int) -> list[Cost]:
        """The median cost of each. The programs take turns, so that what else the machine
        does meets all of them; nothing of the warm-up is counted."""
        for program in programs:
            self.run(program)
        taken: list[list[Cost]] = [[] for _ in programs]
        for _ in range(rounds):
            for program, costs in zip(programs, taken):
                costs.append(self.run(program))
        return [median(costs) for costs in taken]


def median(costs: list[Cost]) -> Cost:
    return Cost(statistics.median(cost.cpu for cost in costs),
                statistics.median(cost.wall for cost in costs),
                int(statistics.median(cost.peak for cost in costs)))


@dataclass
class Made:
    """The elements of an output: how many, and a digest of all names, attributes and values in
    document order. White space, and how an empty element ends, are no part of it."""

    elements: int
    digest: str


def made(output: Path) -> Made:
    tags = START_TAG.findall(output.read_bytes())
    return Made(len(tags), hashlib.sha256(b"\n".join(tags)).hexdigest())


def check(programs: list[Program]) -> None:
    """Every program must have made the expected number of elements, with the same attribute
    values as ours, which is the first."""
    ours = made(programs[0].output)
    for program in programs:
        if not program.peer.makes_elements:
            continue
        theirs = made(program.output) if program is not programs[0] else ours
        expected = program.documents.elements
        if theirs.elements != expected:
            raise Failure(f"{program.output}: {theirs.elements} elements instead of {expected}")
        if theirs.digest != ours.digest:
            raise Failure(f"{program.output}: names or values differ from {programs[0].output}")


def check_copy(source: Path, copy: Path) -> None:
    if not filecmp.cmp(source, copy, shallow=False):
        raise Failure(f"{copy}: differs from {source}")
