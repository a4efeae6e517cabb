"""Printing what was measured."""

import math

from documents import Workload
from measure import Cost, Program

MOST_GROWTH = 1.05
# Less than this, in ms and MB, cannot be told from nothing.
LEAST_TIME = 0.1
LEAST_MEMORY = 0.25


class Goals:
    """Which were reached and missed so far. Small documents are not judged by."""

    def __init__(self, judging: bool):
        self.judging = judging
        self.reached = 0
        self.missed: list[str] = []

    def judge(self, what: str, value: float, goal: str, holds: bool) -> str:
        if not self.judging:
            return goal
        if holds:
            self.reached += 1
            return f"{goal}, reached"
        self.missed.append(f"{what} {value:.2f}, {goal}")
        return f"{goal}, missed"

    def print(self) -> None:
        if self.judging:
            print(f"{self.reached} of {self.reached + len(self.missed)} goals reached")
        for what in self.missed:
            print(f"  missed: {what}")


def print_workload(workload: Workload, programs: list[Program], costs: list[Cost],
                   goals: Goals) -> None:
    """One row per program; the ratio is how many times our user plus system time it takes."""
    documents = programs[0].documents
    megabytes = [file.stat().st_size / 1e6
                 for file in (documents.directory / "doc.xml", programs[0].output)]
    print(f"{workload.name}: {documents.elements} elements, {megabytes[0]:.3f} MB in, "
          f"{megabytes[1]:.3f} MB out")
    print(f"  {'':11} {'user+sys ms':>11} {'wall ms':>9} {'peak MB':>9} {'ratio':>7}  goal")
    for program, cost in zip(programs, costs):
        ratio = cost.cpu / costs[0].cpu
        goal = workload.goals.get(program.name)
        verdict = "" if not goal else goals.judge(
            f"{workload.name}: {program.name}", ratio, f"at least {goal}", ratio >= goal)
        if program is programs[0]:
            verdict = goals.judge(f"{workload.name}: peak MB", cost.peak,
                                  f"at most {workload.memory} MB", cost.peak <= workload.memory)
        print(f"  {program.name:11} {cost.cpu:11.2f} {cost.wall:9.2f} {cost.peak:9.1f} "
              f"{ratio:7.2f}  {verdict}".rstrip())


def print_growth(name: str, large: Cost, small: Cost, start: Cost, goals: Goals) -> None:
    """The exponents from a document to one eight times as large. What a run costs on an empty
    document is taken off first; left in, it would make every exponent look smaller."""
    for what, value in [
            ("time", exponent(large.cpu - start.cpu, small.cpu - start.cpu, LEAST_TIME)),
            ("memory", exponent(large.peak - start.peak, small.peak - start.peak, LEAST_MEMORY))]:
        verdict = goals.judge(f"{name}: exponent of {what}", value, f"at most {MOST_GROWTH}",
                              value <= MOST_GROWTH)
        print(f"  from N to 8N {what} grows with the exponent {value:.2f}, {verdict}")


def exponent(large: float, small: float, least: float) -> float:
    return math.log(max(large, least) / max(small, least)) / math.log(8)
