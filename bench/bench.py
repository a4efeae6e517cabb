#!/usr/bin/env python3
"""Runs xmlpp and its peers over the workloads and prints what they cost.

tools/bench builds what is needed and calls this; see bench/README.md.
"""

import argparse
import sys
from pathlib import Path

sys.dont_write_bytecode = True

from catalogue import START, WORKLOADS
from measure import Failure, Program, Runner, check, check_copy
from report import Goals, print_growth, print_memory, print_table, print_title
from workload import OUTPUT, OURS, Peer, Workload, documents

ROOT = Path(__file__).resolve().parent.parent
FLOOR_INPUT = "floor.in"
# The small runs of a growth measurement are repeated in each round, as they are short.
SMALL_RUNS = 4
START_RUNS = 20


def bench(workload: Workload, runner: Runner, arguments: argparse.Namespace) -> Goals:
    """Measures, checks and prints one workload."""
    size = workload.quick_size if arguments.quick else workload.size
    full = documents(workload, size, arguments.work)
    ours = Program(OURS, full, workload.runs)
    programs = [ours] + [Program(peer, full, workload.runs) for peer in workload.peers]
    runner.run(ours)
    source = full.directory / "ours.xml"
    floor = Program(floor_of(source, ours.output), full, workload.runs)
    growth: list[Program] = []
    if workload.grows:
        growth = [Program(OURS, documents(workload, size // 8, arguments.work), SMALL_RUNS),
                  Program(OURS, documents(START, 1, arguments.work), START_RUNS)]

    costs = runner.alternately(programs + [floor] + growth, arguments.rounds)
    check(programs)
    check_copy(full.directory / FLOOR_INPUT, floor.output)
    for program in growth:
        check([program])

    goals = Goals()
    print_title(workload.name, full, source, ours.output)
    print_table(programs + [floor], costs, goals)
    if growth:
        print_growth(costs[0], *costs[-2:], goals)
    if workload.memory_goal:
        print_memory(programs, costs, source.stat().st_size, workload.memory_goal, goals)
    sys.stdout.flush()
    for program in programs + [floor] + growth:
        program.output.unlink(missing_ok=True)
    return goals


def floor_of(source: Path, output: Path) -> Peer:
    """Reads and writes the larger of the two. It gets a copy, as our output is written again
    while it is measured."""
    larger = max(source, output, key=lambda path: path.stat().st_size)
    source.with_name(FLOOR_INPUT).write_bytes(larger.read_bytes())
    return Peer("floor", ["floor", FLOOR_INPUT, OUTPUT])


def selected(names: list[str]) -> list[Workload]:
    """The workloads of these names; "includes" stands for both of its kind."""
    for name in names:
        if not any(matches(workload, name) for workload in WORKLOADS):
            known = ", ".join(workload.name for workload in WORKLOADS)
            sys.exit(f"bench: there is no workload named {name}; there are {known}")
    return [workload for workload in WORKLOADS
            if not names or any(matches(workload, name) for name in names)]


def matches(workload: Workload, name: str) -> bool:
    return workload.name == name or workload.name.startswith(name + "-")


def parse_arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(prog="tools/bench", description=__doc__.splitlines()[0])
    parser.add_argument("workloads", nargs="*", metavar="WORKLOAD")
    parser.add_argument("--quick", action="store_true",
                        help="small documents and three rounds: does everything still run?")
    parser.add_argument("--rounds", type=int, help="measurements per program (default: 5)")
    parser.add_argument("--program", type=Path, default=ROOT / "build/release/bin/xmlpp",
                        help="the xmlpp to measure (default: the release build)")
    parser.add_argument("--work", type=Path, default=ROOT / "build/bench",
                        help="where documents and outputs go (default: build/bench)")
    arguments = parser.parse_args()
    arguments.rounds = arguments.rounds or (3 if arguments.quick else 5)
    arguments.work = arguments.work.resolve()
    return arguments


def main() -> None:
    arguments = parse_arguments()
    runner = Runner(arguments.work / "peers", arguments.program.resolve())
    workloads = selected(arguments.workloads)
    goals = Goals()
    try:
        for workload in workloads:
            goals += bench(workload, runner, arguments)
    except Failure as failure:
        sys.exit(f"bench: {failure}")
    print(f"{goals.reached} of {goals.reached + goals.missed} goals reached"
          + (" (with --quick the documents are too small to judge by)" if arguments.quick else ""))


if __name__ == "__main__":
    main()
