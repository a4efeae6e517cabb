"""All workloads with their sizes, the commands of the peers and the goals."""

from workload import OUTPUT, Peer, Workload
from workloads.conditionals import conditionals
from workloads.macros import ENVIRONMENT, expressions, macros
from workloads.plain import deep, passthrough, start, tiny, wide
from workloads.repetition import fragments, includes_many, includes_one, loops

MOST_GROWTH = 1.05
# What is slower than this much of the smallest Qt program misses the goal of tiny.
TINY_GOAL = 1 / 1.1


def pugixml(goal: float) -> Peer:
    return Peer("pugixml", ["pugixml_copy", "ours.xml", OUTPUT], goal)


def xmllint(goal: float) -> Peer:
    return Peer("xmllint", ["xmllint", "--noblanks", "--format", "ours.xml", "--output", OUTPUT],
                goal)


def xinclude(goal: float | None = None) -> Peer:
    return Peer("xmllint", ["xmllint", "--xinclude", "--nofixup-base-uris", "--noblanks",
                            "--format", "xinclude.xml", "--output", OUTPUT], goal)


def xsltproc(goal: float, document: str) -> Peer:
    return Peer("xsltproc", ["xsltproc", "--output", OUTPUT, "sheet.xsl", document], goal)


def m4(goal: float) -> Peer:
    return Peer("m4", ["m4", "-P", "doc.m4"], goal)


def cpp(goal: float) -> Peer:
    return Peer("cpp", ["cpp", "-P", "-undef", "-nostdinc", "doc.c", OUTPUT], goal)


def gpp() -> Peer:
    return Peer("gpp", ["gpp", "-H", "-o", OUTPUT, "doc.gpp"])


def envsubst(goal: float) -> Peer:
    return Peer("envsubst", ["envsubst"], goal, stdin="doc.env", environment=ENVIRONMENT)


def tiny_qt() -> Peer:
    return Peer("tiny_qt", ["tiny_qt"], TINY_GOAL, makes_elements=False)


WORKLOADS = [
    Workload("passthrough", passthrough, 64_000_000, 4_000_000,
             [pugixml(1.05), xmllint(5)], memory_goal=4.0),
    Workload("wide", wide, 1_000_000, 80_000, [pugixml(1.0), xmllint(7)], memory_goal=5.3),
    Workload("deep", deep, 200_000, 16_000, [pugixml(1.5), xmllint(3.5)]),
    Workload("macros", macros, 300_000, 24_000, [envsubst(1.0), m4(4), gpp()]),
    Workload("conditionals", conditionals, 300_000, 24_000,
             [m4(3), cpp(8), xsltproc(19, "ours.xml"), gpp()]),
    Workload("expressions", expressions, 200_000, 16_000, [m4(2), xsltproc(28, "empty.xml")]),
    Workload("loops", loops, 1_000_000, 80_000, [xsltproc(4, "lists.xml"), m4(5)]),
    Workload("includes-many", includes_many, 10_000, 800,
             [cpp(1.5), m4(1.9), xinclude(19), gpp()]),
    Workload("includes-one", includes_one, 10_000, 800, [cpp(1.4), m4(2), xinclude(), gpp()]),
    Workload("fragments", fragments, 200_000, 16_000, [m4(1.5), xsltproc(3.2, "puts.xml")]),
    Workload("tiny", tiny, 1, 1, [tiny_qt()], runs=100, grows=False),
]

START = Workload("start", start, 1, 1, [])
