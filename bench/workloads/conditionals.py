"""Conditions, the same random decisions written in every dialect."""

import random
from pathlib import Path

from .sheet import STYLESHEET_END, STYLESHEET_START

# Every condition asks for one of these. A value is a letter where texts can be compared, and
# its place in the alphabet for cpp, which compares numbers only.
LETTERS = "ABCD"
VALUES = {f"K{i}": LETTERS[i % 4] for i in range(8)}
FLAGS = {f"F{i}": i % 2 == 0 for i in range(8)}


class Ours:
    """Our directives."""

    start = "<list>\n" + "".join(f'<define name="{k}" value="{v}"/>\n' for k, v in VALUES.items()) \
        + "".join(f'<define name="{f}" value=""/>\n' for f, defined in FLAGS.items() if defined)
    end = "</list>\n"

    def equal(self, name: str, value: str, body: str) -> str:
        return f'<if {name}="{value}">\n{body}</if>\n'

    def unequal(self, name: str, value: str, body: str) -> str:
        return f'<ifnot {name}="{value}">\n{body}</ifnot>\n'

    def defined(self, name: str, body: str) -> str:
        return f'<ifdef name="{name}">\n{body}</ifdef>\n'

    def choose(self, name: str, cases: dict[str, str], default: str) -> str:
        inner = "".join(f'<case value="{value}">\n{body}</case>\n' for value, body in cases.items())
        return f'<switch name="{name}">\n{inner}<default>\n{default}</default>\n</switch>\n'


class M4:
    """GNU m4, with the prefix m4_ on every builtin, as texts use words."""

    start = "".join(f"m4_define(`{k}', `{v}')m4_dnl\n" for k, v in VALUES.items()) \
        + "".join(f"m4_define(`{f}')m4_dnl\n" for f, defined in FLAGS.items() if defined) \
        + "<list>\n"
    end = "</list>\n"

    def equal(self, name: str, value: str, body: str) -> str:
        return f"m4_ifelse({name}, `{value}', `\n{body}')\n"

    def unequal(self, name: str, value: str, body: str) -> str:
        return f"m4_ifelse({name}, `{value}', `', `\n{body}')\n"

    def defined(self, name: str, body: str) -> str:
        return f"m4_ifdef(`{name}', `\n{body}')\n"

    def choose(self, name: str, cases: dict[str, str], default: str) -> str:
        inner = ", ".join(f"{name}, `{value}', `\n{body}'" for value, body in cases.items())
        return f"m4_ifelse({inner}, `\n{default}')\n"


class Cpp:
    """The C preprocessor."""

    start = "".join(f"#define {k} {LETTERS.index(v)}\n" for k, v in VALUES.items()) \
        + "".join(f"#define {f}\n" for f, defined in FLAGS.items() if defined) + "<list>\n"
    end = "</list>\n"

    def equal(self, name: str, value: str, body: str) -> str:
        return f"#if {name} == {LETTERS.index(value)}\n{body}#endif\n"

    def unequal(self, name: str, value: str, body: str) -> str:
        return f"#if {name} != {LETTERS.index(value)}\n{body}#endif\n"

    def defined(self, name: str, body: str) -> str:
        return f"#ifdef {name}\n{body}#endif\n"

    def choose(self, name: str, cases: dict[str, str], default: str) -> str:
        inner = "#el".join(f"if {name} == {LETTERS.index(value)}\n{body}"
                           for value, body in cases.items())
        return f"#{inner}#else\n{default}#endif\n"


class Gpp:
    """gpp in its HTML mode."""

    start = "".join(f"<#define {k}|{v}>\n" for k, v in VALUES.items()) \
        + "".join(f"<#define {f}|1>\n" for f, defined in FLAGS.items() if defined) + "<list>\n"
    end = "</list>\n"

    def equal(self, name: str, value: str, body: str) -> str:
        return f"<#ifeq <#{name}>|{value}>\n{body}<#endif>\n"

    def unequal(self, name: str, value: str, body: str) -> str:
        return f"<#ifneq <#{name}>|{value}>\n{body}<#endif>\n"

    def defined(self, name: str, body: str) -> str:
        return f"<#ifdef {name}>\n{body}<#endif>\n"

    def choose(self, name: str, cases: dict[str, str], default: str) -> str:
        inner = "".join(f"<#ifeq <#{name}>|{value}>\n{body}<#else>\n"
                        for value, body in cases.items())
        return inner + default + "<#endif>\n" * len(cases)


# A stylesheet that carries out our directives, applied to our document.
SHEET = STYLESHEET_START + """\
<xsl:key name="macro" match="define" use="@name"/>
<xsl:template match="define"/>
<xsl:template match="if">
  <xsl:if test="key('macro', name(@*))/@value = @*"><xsl:apply-templates/></xsl:if>
</xsl:template>
<xsl:template match="ifnot">
  <xsl:if test="not(key('macro', name(@*))/@value = @*)"><xsl:apply-templates/></xsl:if>
</xsl:template>
<xsl:template match="ifdef">
  <xsl:if test="key('macro', @name)"><xsl:apply-templates/></xsl:if>
</xsl:template>
<xsl:template match="switch">
  <xsl:variable name="case" select="case[@value = key('macro', ../@name)/@value]"/>
  <xsl:choose>
    <xsl:when test="$case"><xsl:apply-templates select="$case[1]/*"/></xsl:when>
    <xsl:otherwise><xsl:apply-templates select="default/*"/></xsl:otherwise>
  </xsl:choose>
</xsl:template>
<xsl:template match="list | e">
  <xsl:copy><xsl:copy-of select="@*"/><xsl:apply-templates/></xsl:copy>
</xsl:template>
""" + STYLESHEET_END


def conditionals(directory: Path, size: int) -> int:
    """if, ifnot, ifdef and switch over elements, in a row and three deep, half of them false."""
    dialects = {"ours.xml": Ours(), "doc.m4": M4(), "doc.c": Cpp(), "doc.gpp": Gpp()}
    (directory / "sheet.xsl").write_text(SHEET)
    rng = random.Random(5)
    made = 0
    written = 0

    def element() -> str:
        nonlocal written
        written += 1
        return f'<e id="{written}" kind="plain"/>\n'

    def simple(bodies: list[str], holds: bool) -> list[str]:
        """One if, ifnot or ifdef around the bodies, one per dialect."""
        kind = rng.randrange(3)
        if kind == 2:
            flag = rng.choice([f for f, defined in FLAGS.items() if defined == holds])
            return [d.defined(flag, b) for d, b in zip(dialects.values(), bodies)]
        name = rng.choice(list(VALUES))
        others = [letter for letter in LETTERS if letter != VALUES[name]]
        value = VALUES[name] if holds == (kind == 0) else rng.choice(others)
        if kind == 0:
            return [d.equal(name, value, b) for d, b in zip(dialects.values(), bodies)]
        return [d.unequal(name, value, b) for d, b in zip(dialects.values(), bodies)]

    def switch() -> list[str]:
        name = rng.choice(list(VALUES))
        cases = {letter: element() for letter in rng.sample(LETTERS, 2)}
        default = element()
        return [d.choose(name, cases, default) for d in dialects.values()]

    def nested() -> list[str]:
        """Three directives, each holding an element and the next."""
        nonlocal made
        truths = [rng.random() < 0.5 for _ in range(3)]
        made += truths.index(False) if False in truths else 3
        bodies = [""] * len(dialects)
        for holds in reversed(truths):
            own = element()
            bodies = simple([own + body for body in bodies], holds)
        return bodies

    outs = [open(directory / name, "w") for name in dialects]
    for out, dialect in zip(outs, dialects.values()):
        out.write(dialect.start)
    directives = 0
    while directives < size:
        kind = rng.randrange(6)
        if kind == 0:
            directives += 3
            texts = nested()
        elif kind == 1:
            directives += 1
            made += 1
            texts = switch()
        else:
            directives += 1
            holds = rng.random() < 0.5
            made += holds
            texts = simple([element()] * len(dialects), holds)
        for out, text in zip(outs, texts):
            out.write(text)
    for out, dialect in zip(outs, dialects.values()):
        out.write(dialect.end)
        out.close()
    return made + 1
