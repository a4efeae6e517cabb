"""Running programs and comparing what they made."""

import hashlib
import os
import re
import shutil
import statistics
import subprocess
from dataclasses import dataclass
from pathlib import Path
from typing import NamedTuple

from documents import Documents
from tools import TOOLS

# A start tag, or the "/" of an end tag.
TAG = re.compile(rb"<(?:([A-Za-z][^<>]*?)\s*|(/)[^<>]*)>")


class Cost(NamedTuple):
    cpu: float  # user plus system time, ms
    wall: float  # ms
    peak: float  # of the resident set, MB


@dataclass
class Program:
    """A tool over one set of documents."""

    name: str
    documents: Documents
    runs: int

    @property
    def output(self) -> Path:
        return self.documents.directory / f"{self.name}.out"


class Failure(Exception):
    """A program failed, or made something else than it should."""


class Runner:
    def __init__(self, peers: Path):
        self.peers = peers
        # Nothing of the caller's: its locale and settings would be measured too.
        self.environment = {"PATH": f"{peers}:{os.environ['PATH']}", "LC_ALL": "C"}

    def install(self, program: Path, name: str) -> None:
        """A copy is measured: a file as the linker leaves it takes longer to start."""
        shutil.copy(program, self.peers / name)

    def run(self, program: Program) -> Cost:
        """The mean cost of as many runs as the program asks for."""
        tool = TOOLS[program.name]
        output = program.output.name
        command = [part.format(out=output, peers=self.peers, bench=Path(__file__).parent)
                   for part in tool.command]
        # Whatever is checked afterwards comes from this run.
        program.output.unlink(missing_ok=True)
        stdout = "/dev/null" if "{out}" in tool.command else output
        done = subprocess.run(
            [self.peers / "measure", str(program.runs), tool.stdin, stdout, *command],
            cwd=program.documents.directory, env=self.environment | tool.environment,
            capture_output=True, text=True)
        if done.returncode != 0:
            raise Failure(f"{program.name}: {done.stderr.strip()[:500]}")
        cpu, wall, peak = done.stdout.split()
        return Cost(float(cpu) / 1e3, float(wall) / 1e3, int(peak) * 1024 / 1e6)

    def alternately(self, programs: list[Program], rounds: int) -> list[Cost]:
        """The median cost of each. The programs take turns, so that what else the machine
        does meets all of them; nothing of the warm-up is counted."""
        for program in programs:
            self.run(program)
        taken: list[list[Cost]] = [[] for _ in programs]
        for _ in range(rounds):
            for program, costs in zip(programs, taken):
                costs.append(self.run(program))
        return [Cost(*map(statistics.median, zip(*costs))) for costs in taken]


def made(output: Path) -> tuple[int, str]:
    """How many elements an output has, and a digest of their nesting and of all names,
    attributes and values. White space, and how an empty element ends, are no part of it."""
    tags = TAG.findall(output.read_bytes().replace(b"/>", b"></>"))
    lines = b"\n".join(start or end for start, end in tags)
    return sum(1 for start, _ in tags if start), hashlib.sha256(lines).hexdigest()


def check(programs: list[Program]) -> None:
    """Every program must have made as many elements as expected, and the same as the first."""
    first = made(programs[0].output)
    for program in programs:
        elements, digest = made(program.output) if TOOLS[program.name].makes else first
        if elements != program.documents.elements:
            raise Failure(f"{program.output}: {elements} elements, not "
                          f"{program.documents.elements}")
        if digest != first[1]:
            raise Failure(f"{program.output}: differs from {programs[0].output}")
