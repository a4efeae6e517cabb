#!/usr/bin/env python3
"""Runs xmlpp and its peers over the workloads and prints what they cost.

tools/bench builds what is needed and calls this; see bench/README.md.
"""

import argparse
import subprocess
import sys
from pathlib import Path

sys.dont_write_bytecode = True

from documents import Workload, documents
from measure import Failure, Program, Runner, check
from report import Goals, print_growth, print_workload
from workloads import WORKLOADS

BUILD = Path(__file__).resolve().parent.parent / "build"
WORK = BUILD / "bench"
# The small runs of a growth measurement are repeated in each round, as they are short.
SMALL_RUNS = 4
START_RUNS = 20
IN_PROCESS = "inprocess"


def bench(workload: Workload, runner: Runner, arguments: argparse.Namespace,
          goals: Goals) -> None:
    """Measures, checks and prints one workload."""
    size = workload.quick_size if arguments.quick else workload.size
    full = documents(workload, size, WORK)
    names = ["xmlpp"] + ["against"] * bool(arguments.against) + list(workload.goals)
    programs = [Program(name, full, workload.runs) for name in names]
    growth = []
    if size >= 8:
        growth = [Program("xmlpp", documents(workload, size // 8, WORK), SMALL_RUNS),
                  Program("xmlpp", documents(workload, 0, WORK), START_RUNS)]

    costs = runner.alternately(programs + growth, arguments.rounds * workload.turns)
    check(programs)
    for program in growth:
        check([program])
    print_workload(workload, programs, costs, goals)
    if growth:
        print_growth(workload.name, costs[0], *costs[-2:], goals)
    sys.stdout.flush()
    for program in programs + growth:
        program.output.unlink(missing_ok=True)


def bench_in_process(arguments: argparse.Namespace) -> None:
    """Lets the timings that were built beside each xmlpp speak for themselves."""
    for program in (arguments.program, arguments.against):
        timings = program and program.resolve().with_name(IN_PROCESS)
        if timings and timings.exists():
            print(f"{timings}:", flush=True)
            subprocess.run([timings], check=True)


def selected(name: str, names: list[str]) -> bool:
    """Without names all are meant; "includes" stands for both of its kind."""
    return not names or any(name == one or name.startswith(one + "-") for one in names)


def parse_arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(prog="tools/bench", description=__doc__.splitlines()[0])
    parser.add_argument("workloads", nargs="*", metavar="WORKLOAD",
                        help=f"{', '.join(row.name for row in WORKLOADS)} or {IN_PROCESS}")
    parser.add_argument("--quick", action="store_true",
                        help="small documents and three rounds: does everything still run?")
    parser.add_argument("--rounds", type=int, help="measurements per program (default: 5)")
    parser.add_argument("--program", type=Path, default=BUILD / "release/bin/xmlpp",
                        help="the xmlpp to measure (default: the release build)")
    parser.add_argument("--against", type=Path, metavar="PROGRAM",
                        help="another xmlpp, as one more peer of every workload")
    arguments = parser.parse_args()
    arguments.rounds = arguments.rounds or (3 if arguments.quick else 5)
    known = [row.name for row in WORKLOADS] + [IN_PROCESS]
    for name in arguments.workloads:
        if not any(selected(one, [name]) for one in known):
            parser.error(f"there is no workload named {name}")
    return arguments


def main() -> None:
    arguments = parse_arguments()
    runner = Runner(WORK / "peers")
    goals = Goals(judging=not arguments.quick)
    try:
        runner.install(arguments.program, "xmlpp")
        if arguments.against:
            runner.install(arguments.against, "against")
        for workload in WORKLOADS:
            if selected(workload.name, arguments.workloads):
                bench(workload, runner, arguments, goals)
        goals.print()
        if selected(IN_PROCESS, arguments.workloads):
            bench_in_process(arguments)
    except (Failure, OSError, subprocess.CalledProcessError) as failure:
        sys.exit(f"bench: {failure}")


if __name__ == "__main__":
    main()
