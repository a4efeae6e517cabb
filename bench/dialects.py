"""How each tool writes each kind of piece: a table a tool, a format string a kind.

A document is its dialect's "start", or <list>, the pieces, and its "end", or </list>. A kind
that is missing needs no text in the dialect, or the tool does not take part where it occurs."""


def literal(text: str) -> str:
    """A format string that gives the text."""
    return text.replace("{", "{{").replace("}", "}}")


ELEMENT = '<e id="{id}" kind="plain"/>\n'
GROUP = '<g id="{number}">\n{pairs}</g>\n'
PART = "parts/part{number:05}.xml"

XMLPP = {
    "text": "{text}",
    "element": ELEMENT,
    "define": '<define name="{name}" value="{value}"/>\n',
    "references": '<e id="{id}" a="$({one})" b="x/$({two})/y" c="$({three}:{default})"/>\n',
    "if": '<if {name}="{value}">\n{body}</if>\n',
    "ifnot": '<ifnot {name}="{value}">\n{body}</ifnot>\n',
    "ifdef": '<ifdef name="{name}">\n{body}</ifdef>\n',
    "switch": '<switch name="{name}">\n<case value="{one}">\n{first}</case>\n'
              '<case value="{two}">\n{second}</case>\n<default>\n{third}</default>\n</switch>\n',
    "group": GROUP,
    "pair": '<define name="V{id}" expression="{a} * {b} + ({number} % 1000) + {c} % {d} - 1"/>\n'
            '<ifex expression="($(V{id}) &gt; {bound}) &amp;&amp; ($(V{id}) != {bound})">'
            '<e id="{id}" v="$(V{id})"/></ifex>\n',
    "for": '<for index="I" start="0" end="{rounds}" incr="1">\n<unit i="$(I)"/>\n</for>\n',
    "loops": """\
<for index="I" start="0" end="{rounds}" incr="1">
<row i="$(I)">
<foreach A="a1,a2,a3,a4,a5" B="b1,b2,b3,b4,b5">
<for index="J" start="0" end="100" incr="1">
<cell i="$(I)" a="$(A)" b="$(B)" j="$(J)"/>
</for>
</foreach>
</row>
</for>
""",
    "include": f'<include filename="{PART}"/>\n',
    "fragment": '<xmldef name="block{id}"><block kind="{id}" x="$(X)">'
                '<left x="$(X)"/><right y="$(Y)/$(X)"/></block></xmldef>\n',
    "put": '<xmlput name="block{id}" macros="X={x};Y={y}"/>\n',
}

# m4 has no loops of its own: these are written as its manual writes them.
M4_FOR = """\
m4_define(`forloop', `m4_pushdef(`$1', `$2')_forloop($@)m4_popdef(`$1')')m4_dnl
m4_define(`_forloop', `$4`'m4_ifelse($1, `$3', `', `m4_define(`$1', m4_incr($1))$0($@)')')m4_dnl
"""
M4 = {
    "element": ELEMENT,
    "define": "m4_define(`{name}', `{value}')m4_dnl\n",
    "defaults": "m4_define(`OR', `m4_ifdef(`$1', `m4_indir(`$1')', `$2')')m4_dnl\n",
    "references": '<e id="{id}" a="{one}" b="x/{two}/y" c="OR(`{three}\', `{default}\')"/>\n',
    "if": "m4_ifelse({name}, `{value}', `\n{body}')\n",
    "ifnot": "m4_ifelse({name}, `{value}', `', `\n{body}')\n",
    "ifdef": "m4_ifdef(`{name}', `\n{body}')\n",
    "switch": "m4_ifelse({name}, `{one}', `\n{first}', {name}, `{two}', `\n{second}', "
              "`\n{third}')\n",
    "group": GROUP,
    "pair": "m4_define(`V{id}', m4_eval({a} * {b} + ({number} % 1000) + {c} % {d} - 1))m4_dnl\n"
            "m4_ifelse(m4_eval((V{id} > {bound}) && (V{id} != {bound})), 1, "
            "`<e id=\"{id}\" v=\"V{id}\"/>')\n",
    "for": M4_FOR + "forloop(`I', `0', `{last}', `<unit i=\"I\"/>\n')",
    "loops": M4_FOR + """\
m4_define(`foreach', `m4_pushdef(`$1')_foreach($@)m4_popdef(`$1')')m4_dnl
m4_define(`_arg1', `$1')m4_dnl
m4_define(`_foreach', `m4_ifelse(`$2', `()', `',
`m4_define(`$1', _arg1$2)$3`'$0(`$1', (m4_shift$2), `$3')')')m4_dnl
forloop(`I', `0', `{last}', `<row i="I">
foreach(`A', (`a1', `a2', `a3', `a4', `a5'), `foreach(`B', (`b1', `b2', `b3', `b4', `b5'), `
forloop(`J', `0', `99', `<cell i="I" a="A" b="B" j="J"/>
')')')</row>
')""",
    "include": f"m4_include(`{PART}')",
    "fragment": "m4_define(`block{id}', `<block kind=\"{id}\" x=\"$1\">"
                "<left x=\"$1\"/><right y=\"$2/$1\"/></block>')m4_dnl\n",
    "put": "block{id}(`{x}', `{y}')\n",
}

# HTML mode. gpp has no loops, and no conditions that would end a call of itself: rounds are
# written out, and cells are ten times ten.
GPP = {
    "element": ELEMENT,
    "define": "<#define {name}|{value}>\n",
    "references": '<e id="{id}" a="<#{one}>" b="x/<#{two}>/y" '
                  'c="<#ifdef {three}><#{three}><#else>{default}<#endif>"/>\n',
    "if": "<#ifeq <#{name}>|{value}>\n{body}<#endif>\n",
    "ifnot": "<#ifneq <#{name}>|{value}>\n{body}<#endif>\n",
    "ifdef": "<#ifdef {name}>\n{body}<#endif>\n",
    "switch": "<#ifeq <#{name}>|{one}>\n{first}<#else>\n<#ifeq <#{name}>|{two}>\n{second}<#else>\n"
              "{third}<#endif>\n<#endif>\n",
    "group": GROUP,
    "pair": "<#defeval V{id}|<#eval {a} * {b} + ({number} % 1000) + {c} % {d} - 1>>\n"
            "<#if (<#V{id}> \\> {bound}) && (<#V{id}> != {bound})>"
            '<e id="{id}" v="<#V{id}>"/><#endif>\n',
    "for": '<#define round|<unit i="#1"/>>\n{each}',
    "loops": "<#define ten|"
             + "".join(f'<cell i="#1" a="#2" b="#3" j="#4{j}"/>\n' for j in range(10))
             + ">\n<#define hundred|" + "".join(f"<#ten #1|#2|#3|{j or ''}>" for j in range(10))
             + ">\n<#define all|" + "".join(f"<#hundred #1|#2|b{b}>" for b in range(1, 6))
             + '>\n<#define round|<row i="#1">\n' + "".join(f"<#all #1|a{a}>" for a in range(1, 6))
             + "</row>\n>\n{each}",
    "round": "<#round {id}>\n",
    "include": f"<#include {PART}>\n",
    "fragment": '<#define block{id}|<block kind="{id}" x="#1">'
                '<left x="#1"/><right y="#2/#1"/></block>>\n',
    "put": "<#block{id} {x}|{y}>\n",
}

# Its fragments need the traditional mode, which puts arguments into quotes, too.
CPP = {
    "element": ELEMENT,
    "define": "#define {name} {value}\n",
    "if": "#if {name} == {value}\n{body}#endif\n",
    "ifnot": "#if {name} != {value}\n{body}#endif\n",
    "ifdef": "#ifdef {name}\n{body}#endif\n",
    "switch": "#if {name} == {one}\n{first}#elif {name} == {two}\n{second}#else\n{third}#endif\n",
    "include": f'#include "{PART}"\n',
    "fragment": '#define block{id}(X,Y) <block kind="{id}" x="X">'
                '<left x="X"/><right y="Y/X"/></block>\n',
    "put": "block{id}({x},{y})\n",
}

ENVSUBST = {
    "references": '<e id="{id}" a="${{{one}}}" b="x/${{{two}}}/y" c="${{{three}}}"/>\n',
}

JINJA2 = {
    "loops": "{{% set rounds = {rounds} %}}" + literal("""\
{% for i in range(rounds) %}<row i="{{ i }}">
{% for a in ["a1", "a2", "a3", "a4", "a5"] %}{% for b in ["b1", "b2", "b3", "b4", "b5"] -%}
{% for j in range(100) %}<cell i="{{ i }}" a="{{ a }}" b="{{ b }}" j="{{ j }}"/>
{% endfor %}{% endfor %}{% endfor %}</row>
{% endfor %}"""),
}

XINCLUDE = {
    "include": f'<xi:include xmlns:xi="http://www.w3.org/2001/XInclude" href="{PART}"/>\n',
}

# Names of files, for xargs.
NAMES = {"start": "start.txt\n", "include": f"{PART}\n", "end": "end.txt\n"}

# Applied to DATA. It counts by going through nodes, and has a template for each fragment.
STYLESHEET = {
    "start": """\
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="xml" indent="yes" omit-xml-declaration="yes"/>
<xsl:strip-space elements="*"/>
""",
    "end": "</xsl:stylesheet>\n",
    "loops": literal("""\
<xsl:template match="/"><list>
  <xsl:for-each select="/list/i"><xsl:variable name="I" select="position() - 1"/>
    <row i="{$I}">
      <xsl:for-each select="/list/a"><xsl:variable name="A" select="@v"/>
        <xsl:for-each select="/list/b"><xsl:variable name="B" select="@v"/>
          <xsl:for-each select="/list/j">
            <cell i="{$I}" a="{$A}" b="{$B}" j="{position() - 1}"/>
          </xsl:for-each>
        </xsl:for-each>
      </xsl:for-each>
    </row>
  </xsl:for-each>
</list></xsl:template>
"""),
    "fragments": '<xsl:template match="list"><list><xsl:apply-templates/></list></xsl:template>\n',
    "fragment": '<xsl:template match="block{id}"><block kind="{id}" x="{{@X}}">'
                '<left x="{{@X}}"/><right y="{{@Y}}/{{@X}}"/></block></xsl:template>\n',
}
DATA = {
    "loops": "{each}" + "".join(f'<a v="a{i}"/><b v="b{i}"/>' for i in range(1, 6)) + "<j/>" * 100,
    "round": "<i/>",
    "put": '<block{id} X="{x}" Y="{y}"/>\n',
}

# Files by their names. One whose name has a place for a value is written for each piece.
DIALECTS = {
    "doc.xml": XMLPP, "doc.m4": M4, "doc.gpp": GPP, "doc.c": CPP, "doc.env": ENVSUBST,
    "doc.j2": JINJA2, "xinclude.xml": XINCLUDE, "sheet.xsl": STYLESHEET, "data.xml": DATA,
    "names.txt": NAMES, "start.txt": {"end": ""}, "end.txt": {"start": ""},
    PART: {"include": '<part id="{number}">\n'  # eight elements, about 400 bytes
                      + "".join(f'  <option name="option{i}" value="{{number}}.{i}" '
                                'group="common"/>\n' for i in range(7)) + "</part>\n"},
}
