"""Loops, included files and fragments: one piece of text, many elements."""

from pathlib import Path

from .sheet import STYLESHEET_END, STYLESHEET_START

# m4 has no loops of its own. These two are written as its manual writes them.
M4_LOOPS = """\
m4_define(`forloop', `m4_pushdef(`$1', `$2')_forloop($@)m4_popdef(`$1')')m4_dnl
m4_define(`_forloop', `$4`'m4_ifelse($1, `$3', `', `m4_define(`$1', m4_incr($1))$0($@)')')m4_dnl
m4_define(`foreach', `m4_pushdef(`$1')_foreach($@)m4_popdef(`$1')')m4_dnl
m4_define(`_arg1', `$1')m4_dnl
m4_define(`_foreach', `m4_ifelse(`$2', `()', `',
`m4_define(`$1', _arg1$2)$3`'$0(`$1', (m4_shift$2), `$3')')')m4_dnl
"""

# A stylesheet counts by going through nodes, here those of a document that lists them.
XSLT_LOOPS = STYLESHEET_START + """\
<xsl:template match="/">
  <list>
    <xsl:for-each select="/lists/i">
      <xsl:variable name="I" select="position() - 1"/>
      <row i="{$I}">
        <xsl:for-each select="/lists/a">
          <xsl:variable name="A" select="@v"/>
          <xsl:for-each select="/lists/b">
            <xsl:variable name="B" select="@v"/>
            <xsl:for-each select="/lists/j">
              <cell i="{$I}" a="{$A}" b="{$B}" j="{position() - 1}"/>
            </xsl:for-each>
          </xsl:for-each>
        </xsl:for-each>
      </row>
    </xsl:for-each>
  </list>
</xsl:template>
""" + STYLESHEET_END


def loops(directory: Path, size: int) -> int:
    """for in foreach in for: rows of 5 times 5 times 100 cells with all four variables."""
    rows = size // 2500
    (directory / "ours.xml").write_text(f"""\
<list>
<for index="I" start="0" end="{rows}" incr="1">
<row i="$(I)">
<foreach A="a1,a2,a3,a4,a5" B="b1,b2,b3,b4,b5">
<for index="J" start="0" end="100" incr="1">
<cell i="$(I)" a="$(A)" b="$(B)" j="$(J)"/>
</for>
</foreach>
</row>
</for>
</list>
""")
    (directory / "doc.m4").write_text(M4_LOOPS + f"""\
<list>
forloop(`I', `0', `{rows - 1}', `<row i="I">
foreach(`A', (`a1', `a2', `a3', `a4', `a5'), `foreach(`B', (`b1', `b2', `b3', `b4', `b5'), `
forloop(`J', `0', `99', `<cell i="I" a="A" b="B" j="J"/>
')')')</row>
')</list>
""")
    (directory / "sheet.xsl").write_text(XSLT_LOOPS)
    letters = "".join(f'<a v="a{i}"/><b v="b{i}"/>' for i in range(1, 6))
    (directory / "lists.xml").write_text(
        "<lists>" + "<i/>" * rows + letters + "<j/>" * 100 + "</lists>\n")
    return rows * 2501 + 1


def piece(number: int) -> str:
    """The content of a small file: 8 elements, about 400 bytes."""
    options = "".join(f'  <option name="option{i}" value="{number}.{i}" group="common"/>\n'
                      for i in range(7))
    return f'<part id="{number}">\n{options}</part>\n'


def write_includes(directory: Path, names: list[str]) -> None:
    """The document that includes these files, in every dialect."""
    # All roots declare the namespace of XInclude, which xmllint keeps.
    frame = '<list xmlns:xi="http://www.w3.org/2001/XInclude">\n{}</list>\n'
    includes = {"ours.xml": '<include filename="{}"/>\n',
                "doc.m4": "m4_include(`{}')",
                "doc.c": '#include "{}"\n',
                "doc.gpp": "<#include {}>\n",
                "xinclude.xml": '<xi:include href="{}"/>\n'}
    for document, include in includes.items():
        lines = "".join(include.format(name) for name in names)
        (directory / document).write_text(frame.format(lines))


def includes_many(directory: Path, size: int) -> int:
    """Opening and reading: every include names another small file."""
    names = [f"parts/part{i}.xml" for i in range(size)]
    (directory / "parts").mkdir(exist_ok=True)
    for i, name in enumerate(names):
        (directory / name).write_text(piece(i))
    write_includes(directory, names)
    return size * 8 + 1


def includes_one(directory: Path, size: int) -> int:
    """The same small file again and again; we read it each time."""
    (directory / "part.xml").write_text(piece(1))
    write_includes(directory, ["part.xml"] * size)
    return size * 8 + 1


def fragments(directory: Path, size: int) -> int:
    """Ten fragments of three elements, put with two macros each."""
    with (open(directory / "ours.xml", "w") as ours,
          open(directory / "doc.m4", "w") as m4,
          open(directory / "puts.xml", "w") as puts,
          open(directory / "sheet.xsl", "w") as xslt):
        ours.write("<list>\n")
        puts.write("<list>\n")
        xslt.write(STYLESHEET_START + '<xsl:template match="list">'
                   "<list><xsl:apply-templates/></list></xsl:template>\n")
        for f in range(10):
            ours.write(f'<xmldef name="block{f}"><block kind="{f}" x="$(X)">'
                       '<left x="$(X)"/><right y="$(Y)/$(X)"/></block></xmldef>\n')
            m4.write(f"m4_define(`block{f}', `<block kind=\"{f}\" x=\"$1\">"
                     "<left x=\"$1\"/><right y=\"$2/$1\"/></block>')m4_dnl\n")
            xslt.write(f'<xsl:template match="block{f}"><block kind="{f}" x="{{@X}}">'
                       '<left x="{@X}"/><right y="{@Y}/{@X}"/></block></xsl:template>\n')
        m4.write("<list>\n")
        for i in range(size):
            f = i * 7 % 10
            ours.write(f'<xmlput name="block{f}" macros="X=left{i};Y=right{i % 100}"/>\n')
            m4.write(f"block{f}(`left{i}', `right{i % 100}')\n")
            puts.write(f'<block{f} X="left{i}" Y="right{i % 100}"/>\n')
        for out in (ours, m4, puts):
            out.write("</list>\n")
        xslt.write(STYLESHEET_END)
    return size * 3 + 1
