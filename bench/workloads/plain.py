"""Documents with little or nothing to execute: reading, the tree and writing."""

import random
from pathlib import Path

NAMES = ["id", "name", "type", "path", "value", "group", "state", "order", "width", "title",
         "source", "target"]
TAGS = ["project", "configuration", "folder", "target", "option", "file"]
WORDS = ["alpha", "bravo", "charlie", "delta", "echo", "foxtrot", "golf", "hotel", "india",
         "juliett", "kilo", "lima"]


def attribute_texts(rng: random.Random) -> list[list[str]]:
    """For every name a few hundred attributes: numbers, words, paths, one in twenty escaped."""
    def value() -> str:
        kind = rng.randrange(20)
        if kind == 0:
            return f"{rng.choice(WORDS)} &amp; {rng.choice(WORDS)} &lt; {rng.randrange(100)}"
        if kind < 7:
            return str(rng.randrange(100000))
        if kind < 14:
            return rng.choice(WORDS)
        return f"{rng.choice(WORDS)}/{rng.choice(WORDS)}/{rng.choice(WORDS)}.cpp"
    return [[f' {name}="{value()}"' for _ in range(300)] for name in NAMES]


def passthrough(directory: Path, size: int) -> int:
    """Reading and writing: 3 to 5 attributes an element, depth 6, no directives.

    The size is in bytes. Every program reads the same document."""
    rng = random.Random(1)
    attributes = attribute_texts(rng)
    count = 1
    length = 0

    def element(depth: int, lines: list[str]) -> None:
        nonlocal count
        count += 1
        first = rng.randrange(len(NAMES))
        texts = "".join(rng.choice(attributes[(first + i) % len(NAMES)])
                        for i in range(rng.randint(3, 5)))
        indent = "  " * (depth - 1)
        tag = TAGS[depth - 1]
        if depth == len(TAGS):
            lines.append(f"{indent}<{tag}{texts}/>\n")
            return
        lines.append(f"{indent}<{tag}{texts}>\n")
        for _ in range(rng.randint(2, 4)):
            element(depth + 1, lines)
        lines.append(f"{indent}</{tag}>\n")

    with open(directory / "ours.xml", "w") as out:
        out.write(f"<{TAGS[0]}>\n")
        while length < size:
            lines: list[str] = []
            element(2, lines)
            length += out.write("".join(lines))
        out.write(f"</{TAGS[0]}>\n")
    return count


def wide(directory: Path, size: int) -> int:
    """Sibling chains: all elements are children of one. Every program reads the same document."""
    rng = random.Random(2)
    with open(directory / "ours.xml", "w") as out:
        out.write("<list>\n")
        for i in range(size):
            out.write(f'  <item id="{i}" kind="{rng.choice(WORDS)}"/>\n')
        out.write("</list>\n")
    return size + 1


def deep(directory: Path, size: int) -> int:
    """Nesting: chains of elements 200 deep, 3 attributes each.

    Every program reads the same document."""
    rng = random.Random(6)
    depth = 200
    chains = size // depth
    with open(directory / "ours.xml", "w") as out:
        out.write("<chains>\n")
        for chain in range(chains):
            # The root is the first of the 200.
            for level in range(1, depth):
                out.write(f'<level at="{chain}.{level}" kind="{rng.choice(WORDS)}" '
                          f'path="{rng.choice(WORDS)}/{rng.choice(WORDS)}.cpp">\n')
            out.write("</level>\n" * (depth - 1))
        out.write("</chains>\n")
    return chains * (depth - 1) + 1


def tiny(directory: Path, size: int) -> int:
    """The start of the process: about 1 KB with a handful of directives."""
    files = "".join(f'    <file name="source{i}.cpp" state="$(mode)"/>\n' for i in range(12))
    (directory / "ours.xml").write_text(f"""\
<?xml version="1.0" encoding="UTF-8"?>
<project name="tiny">
  <define name="mode" value="release"/>
  <define name="count" expression="3 * 4"/>
  <if mode="release,profile">
    <option name="optimize" value="$(level:2)"/>
  </if>
  <ifdef name="missing">
    <option name="never" value="1"/>
  </ifdef>
  <ifex expression="$(count) == 12">
    <option name="files" value="$(count)"/>
  </ifex>
  <for index="i" start="0" end="4" incr="1">
    <unit name="unit$(i)" letter="$(i_alpha)"/>
  </for>
  <target name="main">
{files}  </target>
</project>
""")
    return 1 + 1 + 1 + 4 + 1 + 12


def start(directory: Path, size: int) -> int:
    """One element: what a run costs before it has done anything."""
    (directory / "ours.xml").write_text("<a/>\n")
    return 1
