"""What a workload consists of, and how its documents come into being."""

import hashlib
import json
from dataclasses import dataclass, field
from pathlib import Path
from typing import Callable

OUTPUT = "{out}"


@dataclass
class Peer:
    """Another tool and the command that does our work with it, run where the documents lie.

    The command writes to the file that stands for OUTPUT; where it names none, its standard
    output is the result. A goal is the least ratio of its time to ours.
    """

    name: str
    command: list[str]
    goal: float | None = None
    stdin: str = "/dev/null"
    environment: dict[str, str] = field(default_factory=dict)
    makes_elements: bool = True  # False: there is no output to hold against ours


@dataclass
class Workload:
    """A kind of document in a size. The generator writes it in every dialect into a directory
    and returns how many elements each program has to make of it."""

    name: str
    generate: Callable[[Path, int], int]
    size: int
    quick_size: int
    peers: list[Peer]
    memory_goal: float | None = None  # bytes of peak memory per input byte
    runs: int = 1  # runs of the program that count as one measurement
    grows: bool = True


OURS = Peer("xmlpp", ["{xmlpp}", "ours.xml", OUTPUT])


@dataclass
class Documents:
    directory: Path
    elements: int


def documents(workload: Workload, size: int, work: Path) -> Documents:
    """The workload's documents in this size, written now if they are missing, incomplete or
    older than their generators."""
    directory = work / f"{workload.name}-{size}"
    stamp = directory / "stamp.json"
    version = generator_version()
    try:
        known = json.loads(stamp.read_text())
    except (OSError, ValueError):
        known = {}
    if known.get("version") != version:
        directory.mkdir(parents=True, exist_ok=True)
        stamp.unlink(missing_ok=True)
        known = {"version": version, "elements": workload.generate(directory, size)}
        stamp.write_text(json.dumps(known))
    return Documents(directory, known["elements"])


def generator_version() -> str:
    digest = hashlib.sha256()
    for source in sorted((Path(__file__).parent / "workloads").glob("*.py")):
        digest.update(source.read_bytes())
    return digest.hexdigest()
