"""Macro references and expressions."""

import random
from pathlib import Path

from .sheet import STYLESHEET_END, STYLESHEET_START

MACROS = {f"M{i:02}": f"value number {i}" for i in range(100)}
# References with a default name one of these. The first half is defined.
DEFAULTS = {f"N{i:02}": f"given{i}" if i < 10 else f"otherwise{i}" for i in range(20)}
DEFINED = MACROS | {name: value for name, value in DEFAULTS.items() if value.startswith("given")}
# envsubst knows no defaults: where a macro is not defined, its environment holds the default.
ENVIRONMENT = MACROS | DEFAULTS


def macros(directory: Path, size: int) -> int:
    """Expansion of $(name) and $(name:default) in attribute values, out of 100 macros."""
    rng = random.Random(3)
    names = list(MACROS)
    defaults = list(DEFAULTS)
    with (open(directory / "ours.xml", "w") as ours,
          open(directory / "doc.env", "w") as env,
          open(directory / "doc.m4", "w") as m4,
          open(directory / "doc.gpp", "w") as gpp):
        m4.write("m4_define(`OR', `m4_ifdef(`$1', `m4_indir(`$1')', `$2')')m4_dnl\n")
        for name, value in DEFINED.items():
            m4.write(f"m4_define(`{name}', `{value}')m4_dnl\n")
            gpp.write(f"<#define {name}|{value}>\n")
        for out in (ours, env, m4, gpp):
            out.write("<list>\n")
        for name, value in DEFINED.items():
            ours.write(f'<define name="{name}" value="{value}"/>\n')
        for i in range(size):
            one, two, three = rng.choice(names), rng.choice(names), rng.choice(defaults)
            other = DEFAULTS[three]
            ours.write(f'<e id="{i}" a="$({one})" b="x/$({two})/y" c="$({three}:{other})"/>\n')
            env.write(f'<e id="{i}" a="${{{one}}}" b="x/${{{two}}}/y" c="${{{three}}}"/>\n')
            m4.write(f'<e id="{i}" a="{one}" b="x/{two}/y" c="OR(`{three}\', `{other}\')"/>\n')
            gpp.write(f'<e id="{i}" a="<#{one}>" b="x/<#{two}>/y" '
                      f'c="<#ifdef {three}><#{three}><#else>{other}<#endif>"/>\n')
        for out in (ours, env, m4, gpp):
            out.write("</list>\n")
    return size + 1


def expressions(directory: Path, size: int) -> int:
    """Arithmetic: as many define expression as ifex, in groups of eight of each, half true.

    A stylesheet cannot set a variable again, so that every group is an element of its own,
    with definitions of its own, for everyone. It cannot evaluate a text either: here, and only
    here, the document itself becomes the stylesheet."""
    rng = random.Random(4)
    group = 8
    count = 1
    with (open(directory / "ours.xml", "w") as ours,
          open(directory / "doc.m4", "w") as m4,
          open(directory / "sheet.xsl", "w") as xslt):
        ours.write("<list>\n")
        m4.write("<list>\n")
        xslt.write(STYLESHEET_START + '<xsl:template match="/"><list>\n')
        for number in range(size // (2 * group)):
            count += 1
            for out in (ours, m4, xslt):
                out.write(f'<g id="{number}">\n')
            for i in range(group):
                a, b, c, d = (rng.randint(2, 99) for _ in range(4))
                value = a * b + number % 1000 + c % d - 1
                ours.write(f'<define name="V{i}" '
                           f'expression="{a} * {b} + ({number} % 1000) + {c} % {d} - 1"/>\n')
                m4.write(f"m4_define(`V{i}', "
                         f"m4_eval({a} * {b} + ({number} % 1000) + {c} % {d} - 1))m4_dnl\n")
                xslt.write(f'<xsl:variable name="V{i}" '
                           f'select="{a} * {b} + ({number} mod 1000) + {c} mod {d} - 1"/>\n')
                bound = value + (a if i % 2 else -a)
                count += bound < value
                ours.write(f'<ifex expression="($(V{i}) &gt; {bound}) '
                           f'&amp;&amp; ($(V{i}) != {bound})">'
                           f'<e id="{i}" v="$(V{i})"/></ifex>\n')
                m4.write(f"m4_ifelse(m4_eval((V{i} > {bound}) && (V{i} != {bound})), 1, "
                         f"`<e id=\"{i}\" v=\"V{i}\"/>')\n")
                xslt.write(f'<xsl:if test="($V{i} &gt; {bound}) and ($V{i} != {bound})">'
                           f'<e id="{i}" v="{{$V{i}}}"/></xsl:if>\n')
            for out in (ours, m4, xslt):
                out.write("</g>\n")
        ours.write("</list>\n")
        m4.write("</list>\n")
        xslt.write("</list></xsl:template>\n" + STYLESHEET_END)
    (directory / "empty.xml").write_text("<empty/>\n")  # what the stylesheet is applied to
    return count
