"""Printing what was measured."""

import math
from dataclasses import dataclass
from pathlib import Path

from catalogue import MOST_GROWTH
from measure import Cost, Program
from workload import Documents

MB = 1_000_000


@dataclass
class Goals:
    """How many were reached and missed so far."""

    reached: int = 0
    missed: int = 0

    def judge(self, holds: bool) -> str:
        if holds:
            self.reached += 1
            return "reached"
        self.missed += 1
        return "missed"

    def __add__(self, other: "Goals") -> "Goals":
        return Goals(self.reached + other.reached, self.missed + other.missed)


def print_title(name: str, documents: Documents, source: Path, output: Path) -> None:
    print(f"{name}: {documents.elements} elements, {source.stat().st_size / MB:.3f} MB in, "
          f"{output.stat().st_size / MB:.3f} MB out")


def print_table(programs: list[Program], costs: list[Cost], goals: Goals) -> None:
    """One row per program; the ratio is how many times our user plus system time it takes."""
    print(f"  {'':10} {'user+sys ms':>12} {'wall ms':>10} {'peak MB':>9} {'ratio':>7} {'goal':>6}")
    for program, cost in zip(programs, costs):
        ratio = cost.cpu / costs[0].cpu
        goal = ""
        if program.peer.goal is not None:
            goal = f"{program.peer.goal:6.2f} {goals.judge(ratio >= program.peer.goal)}"
        line = (f"  {program.peer.name:10} {cost.cpu * 1e3:12.2f} {cost.wall * 1e3:10.2f} "
                f"{cost.peak / MB:9.1f} {ratio:7.2f} {goal}")
        print(line.rstrip())


def print_growth(large: Cost, small: Cost, start: Cost, goals: Goals) -> None:
    """The exponents from a document to one eight times as large. What a run costs on a document
    of one element is taken off first; left in, it would make every exponent look smaller."""
    time = exponent(large.cpu - start.cpu, small.cpu - start.cpu)
    memory = exponent(large.peak - start.peak, small.peak - start.peak)
    verdict = goals.judge(time <= MOST_GROWTH and memory <= MOST_GROWTH)
    print(f"  growth from N to 8N, start-up taken off: time N^{time:.3f}, memory N^{memory:.3f}; "
          f"goal at most {MOST_GROWTH} {verdict}")


def exponent(large: float, small: float) -> float:
    if small <= 0 or large <= 0:
        return math.nan  # too small to tell, and no goal is reached by that
    return math.log(large / small) / math.log(8)


def print_memory(programs: list[Program], costs: list[Cost], size: int, goal: float,
                 goals: Goals) -> None:
    per_byte = [f"{program.peer.name} {cost.peak / size:.2f}"
                for program, cost in zip(programs, costs)]
    verdict = goals.judge(costs[0].peak / size <= goal)
    print(f"  peak memory per input byte: {', '.join(per_byte)}; goal at most {goal} {verdict}")
