"""Workloads, and how their documents come into being."""

import hashlib
from contextlib import ExitStack
from dataclasses import dataclass
from pathlib import Path
from typing import Callable, Iterator, NamedTuple

from dialects import DIALECTS


class Piece(NamedTuple):
    """A part of a document, whatever the tool. A value that is a list of pieces is written in
    the same dialect before it is put in."""

    kind: str
    values: dict = {}
    made: int = 0  # elements that come of it, those of inner pieces included


@dataclass
class Workload:
    """A kind of document in a size."""

    pieces: Callable[[int], Iterator[Piece]]
    size: int
    quick_size: int
    memory: float  # what we may need at most in full size, in MB
    goals: dict[str, float]  # peers, each with the least ratio of its time to ours, 0 for none
    runs: int = 1  # runs of a program that count as one measurement
    turns: int = 1  # measurements where others have one

    @property
    def name(self) -> str:
        return self.pieces.__name__.replace("_", "-")


@dataclass
class Documents:
    directory: Path
    elements: int  # how many each program has to make


def documents(workload: Workload, size: int, work: Path) -> Documents:
    """The workload's documents in this size, written now if they are missing, incomplete or
    older than what writes them."""
    directory = work / f"{workload.name}-{size}"
    stamp = directory / "stamp"
    version = hashlib.sha256(b"".join((Path(__file__).parent / source).read_bytes() for source in
                                      ("documents.py", "dialects.py", "workloads.py"))).hexdigest()
    known = stamp.read_text().split() if stamp.exists() else []
    if known[:1] != [version]:
        (directory / "parts").mkdir(parents=True, exist_ok=True)
        stamp.unlink(missing_ok=True)
        known = [version, str(write(workload.pieces(size), directory))]
        stamp.write_text(" ".join(known))
    return Documents(directory, int(known[1]))


def write(pieces: Iterator[Piece], directory: Path) -> int:
    """Writes the pieces in every dialect and returns how many elements come of them."""
    elements = 1  # the root
    by_piece = {name: forms for name, forms in DIALECTS.items() if "{" in name}
    with ExitStack() as stack:
        outs = [(stack.enter_context(open(directory / name, "w")), forms)
                for name, forms in DIALECTS.items() if name not in by_piece]
        for out, forms in outs:
            out.write(forms.get("start", "<list>\n"))
        for piece in pieces:
            elements += piece.made
            for out, forms in outs:
                out.write(text(piece, forms))
            for name, forms in by_piece.items():
                if piece.kind in forms:
                    (directory / name.format_map(piece.values)).write_text(text(piece, forms))
        for out, forms in outs:
            out.write(forms.get("end", "</list>\n"))
    return elements


def text(piece: Piece, forms: dict[str, str]) -> str:
    if piece.kind not in forms:
        return ""
    return forms[piece.kind].format_map(
        {name: "".join(text(inner, forms) for inner in value) if isinstance(value, list) else value
         for name, value in piece.values.items()})
