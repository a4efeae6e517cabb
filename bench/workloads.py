"""The workloads: what their documents consist of, their sizes and goals."""

import random
from typing import Iterator

from documents import Piece, Workload

NAMES = ["id", "name", "type", "path", "value", "group", "state", "order", "width", "title",
         "source", "target"]
TAGS = ["configuration", "folder", "target", "option", "file"]
WORDS = ["alpha", "bravo", "charlie", "delta", "echo", "foxtrot", "golf", "hotel", "india",
         "juliett", "kilo", "lima"]
MACROS = {f"M{i:02}": f"value number {i}" for i in range(100)}
# References with a default name one of these. The first half is defined.
DEFAULTS = {f"N{i:02}": f"given{i}" if i < 10 else f"otherwise{i}" for i in range(20)}
# Conditions ask for one of these. cpp compares numbers only.
VALUES = {f"K{i}": str(i % 4) for i in range(8)}
INCLUDING = {"cpp-trad": 0, "m4": 0, "gpp": 0, "xinclude": 0, "cat": 0}


def attribute(rng: random.Random, name: str) -> str:
    """A number, a word or a path; one in twenty is escaped."""
    one, two, three = (rng.choice(WORDS) for _ in range(3))
    number = rng.randrange(100000)
    value = rng.choices([f"{one} &amp; {two} &lt; {number}", number, one,
                         f"{one}/{two}/{three}.cpp"], [1, 6, 7, 6])[0]
    return f' {name}="{value}"'


def passthrough(size: int) -> Iterator[Piece]:
    """Size bytes of elements with 3 to 5 attributes, six deep, nothing to execute."""
    rng = random.Random(1)
    attributes = [[attribute(rng, name) for _ in range(300)] for name in NAMES]

    def element(depth: int) -> str:
        first = rng.randrange(len(NAMES))
        texts = "".join(rng.choice(attributes[(first + i) % len(NAMES)])
                        for i in range(rng.randint(3, 5)))
        indent = "  " * (depth + 1)
        if depth == len(TAGS) - 1:
            return f"{indent}<{TAGS[depth]}{texts}/>\n"
        inner = "".join(element(depth + 1) for _ in range(rng.randint(2, 4)))
        return f"{indent}<{TAGS[depth]}{texts}>\n{inner}{indent}</{TAGS[depth]}>\n"

    while size > 0:
        text = element(0)
        size -= len(text)
        yield Piece("text", {"text": text}, made=text.count("<") - text.count("</"))


def wide(size: int) -> Iterator[Piece]:
    """Sibling chains: all elements are children of one."""
    rng = random.Random(2)
    for i in range(size):
        yield Piece("text", {"text": f'  <item id="{i}" kind="{rng.choice(WORDS)}"/>\n'}, made=1)


def deep(size: int) -> Iterator[Piece]:
    """Nesting: chains of elements 200 deep, the root included, 3 attributes each."""
    rng = random.Random(6)
    for chain in range(size // 200):
        text = "".join(f'<level at="{chain}.{level}" kind="{rng.choice(WORDS)}" '
                       f'path="{rng.choice(WORDS)}/{rng.choice(WORDS)}.cpp">\n'
                       for level in range(1, 200))
        yield Piece("text", {"text": text + "</level>\n" * 199}, made=199)


def definitions(macros: dict[str, str]) -> Iterator[Piece]:
    for name, value in macros.items():
        yield Piece("define", {"name": name, "value": value})


def macros(size: int) -> Iterator[Piece]:
    """Elements with three references each, out of 100 macros and 20 that have a default."""
    rng = random.Random(3)
    given = {name: value for name, value in DEFAULTS.items() if value.startswith("given")}
    yield Piece("defaults")
    yield from definitions(MACROS | given)
    for i in range(size):
        three, default = rng.choice(list(DEFAULTS.items()))
        yield Piece("references", {"id": i, "one": rng.choice(list(MACROS)),
                                   "two": rng.choice(list(MACROS)), "three": three,
                                   "default": default}, made=1)


def conditionals(size: int) -> Iterator[Piece]:
    """Conditions, half of them false: alone, three deep, and a sixth of them switches."""
    rng = random.Random(5)

    def element() -> Piece:
        return Piece("element", {"id": rng.randrange(1000000)}, made=1)

    def condition(depth: int) -> Piece:
        """Holds an element and, as long as the depth lasts, another condition."""
        body = [element()] + ([condition(depth - 1)] if depth > 1 else [])
        kind = rng.choice(["if", "ifnot", "ifdef"])
        holds = rng.random() < 0.5
        name = rng.choice(list(VALUES))
        value = int(VALUES[name])
        if holds != (kind == "if"):
            value = (value + rng.randint(1, 3)) % 4
        if kind == "ifdef" and not holds:
            name = "UNDEFINED"
        return Piece(kind, {"name": name, "value": value, "body": body},
                     made=holds * sum(piece.made for piece in body))

    def switch() -> Piece:
        one, two = rng.sample(range(4), 2)
        return Piece("switch", {"name": rng.choice(list(VALUES)), "one": one, "two": two,
                                "first": [element()], "second": [element()],
                                "third": [element()]}, made=1)

    yield from definitions(VALUES)
    while size > 0:
        kind = rng.randrange(6)
        size -= 3 if kind == 0 else 1
        yield switch() if kind == 1 else condition(3 if kind == 0 else 1)


def group(rng: random.Random, number: int, size: int) -> Piece:
    """An element around pairs of a define expression and an ifex that asks for its value."""
    made = 1
    pairs = []
    for i in range(size):
        a, b, c, d = (rng.randint(2, 99) for _ in range(4))
        value = a * b + number % 1000 + c % d - 1
        bound = value + (a if i % 2 else -a)
        made += bound < value
        pairs.append(Piece("pair", {"id": i, "a": a, "b": b, "c": c, "d": d, "number": number,
                                    "bound": bound}))
    return Piece("group", {"number": number, "pairs": pairs}, made)


def expressions(size: int) -> Iterator[Piece]:
    """As many define expression as ifex, half of them true."""
    rng = random.Random(4)
    for number in range(size // 16):
        yield group(rng, number, 8)


def loop(kind: str, rounds: int, made: int) -> Piece:
    return Piece(kind, {"rounds": rounds, "last": rounds - 1,
                        "each": [Piece("round", {"id": i}) for i in range(rounds)]}, made)


def loops(size: int) -> Iterator[Piece]:
    """for in foreach in for: rows of 5 times 5 times 100 cells with all four variables."""
    yield loop("loops", size // 2500, made=size // 2500 * 2501)


def includes_many(size: int) -> Iterator[Piece]:
    """Opening and reading: every include names another small file."""
    for i in range(size):
        yield Piece("include", {"number": i}, made=8)


def includes_one(size: int) -> Iterator[Piece]:
    """The same small file again and again; we read it each time."""
    for _ in range(size):
        yield Piece("include", {"number": 0}, made=8)


def fragments(size: int) -> Iterator[Piece]:
    """Ten fragments of three elements, put with two macros each."""
    yield Piece("fragments")
    for i in range(10):
        yield Piece("fragment", {"id": i})
    for i in range(size):
        yield Piece("put", {"id": i * 7 % 10, "x": f"left{i}", "y": f"right{i % 100}"}, made=3)


def tiny(size: int) -> Iterator[Piece]:
    """The start of the process: about 1 KB with a handful of directives."""
    yield Piece("defaults")
    yield from definitions({"K0": "0", "K1": "release"})
    yield Piece("if", {"name": "K1", "value": "release",
                       "body": [Piece("element", {"id": "optimize"})]}, made=1)
    yield Piece("ifdef", {"name": "UNDEFINED", "body": [Piece("element", {"id": "never"})]})
    yield group(random.Random(4), 0, 1)
    yield loop("for", 4, made=4)
    for i in range(10):
        yield Piece("references", {"id": i, "one": "K0", "two": "K1", "three": "UNDEFINED",
                                   "default": "otherwise"}, made=1)


WORKLOADS = [
    Workload(passthrough, 64_000_000, 4_000_000, 8, {"pugixml": 2.2, "xmllint": 0, "tr": 0}),
    Workload(wide, 1_000_000, 80_000, 8, {"pugixml": 2.5, "xmllint": 0, "tr": 0}),
    Workload(deep, 200_000, 16_000, 8, {"pugixml": 2.2, "xmllint": 0, "tr": 0}),
    Workload(macros, 300_000, 24_000, 8, {"envsubst": 2.9, "m4": 6.5, "gpp": 0}),
    Workload(conditionals, 300_000, 24_000, 8, {"m4": 6.8, "cpp": 0, "cpp-trad": 0, "gpp": 0}),
    Workload(expressions, 200_000, 16_000, 8, {"m4": 5.2, "gpp": 0}),
    Workload(loops, 1_000_000, 80_000, 8, {"jinja2": 5.5, "m4": 18, "xsltproc": 14, "gpp": 0}),
    Workload(includes_many, 10_000, 800, 8, {"cpp": 1.6} | INCLUDING),
    Workload(includes_one, 10_000, 800, 8, {"cpp": 1.5} | INCLUDING),
    Workload(fragments, 200_000, 16_000, 8, {"cpp-trad": 2.6, "m4": 5, "gpp": 0, "xsltproc": 0}),
    Workload(tiny, 1, 1, 8, {"gpp": 1.0, "m4": 1.6, "xmllint-out": 3, "true": 0}, 5, turns=8),
]
