"""The programs that take part, a row each."""

from dataclasses import dataclass, field

from workloads import DEFAULTS, MACROS


@dataclass
class Tool:
    """A command, run where the documents lie. {out} stands for the output, which is otherwise
    what the command prints, {peers} for the directory of what the bench builds and {bench} for
    this one."""

    command: list[str]
    stdin: str = "/dev/null"
    environment: dict[str, str] = field(default_factory=dict)
    makes: bool = True  # False: there is no output to hold against ours


XMLLINT = ["xmllint", "--noblanks", "--format", "--output", "{out}"]
CPP = ["cpp", "-P", "-undef", "-nostdinc"]

TOOLS = {
    "xmlpp": Tool(["{peers}/xmlpp", "doc.xml", "{out}"]),
    "against": Tool(["{peers}/against", "doc.xml", "{out}"]),
    "true": Tool(["true"], makes=False),
    "tr": Tool(["tr", "\\t", " "], stdin="doc.xml"),
    "cat": Tool(["xargs", "cat"], stdin="names.txt"),
    "pugixml": Tool(["pugixml_copy", "doc.xml", "{out}"]),
    "xmllint": Tool(XMLLINT + ["doc.xml"]),
    "xmllint-out": Tool(XMLLINT + ["xmlpp.out"]),  # our output, as it executes nothing
    "xinclude": Tool(XMLLINT + ["--xinclude", "--nofixup-base-uris", "xinclude.xml"]),
    "xsltproc": Tool(["xsltproc", "--output", "{out}", "sheet.xsl", "data.xml"]),
    "m4": Tool(["m4", "-P", "doc.m4"]),
    "cpp": Tool(CPP + ["doc.c", "{out}"]),
    "cpp-trad": Tool(CPP + ["-traditional-cpp", "doc.c", "{out}"]),
    "gpp": Tool(["gpp", "-H", "-o", "{out}", "doc.gpp"]),
    # It knows no defaults: where a macro is not defined, its environment holds the default.
    "envsubst": Tool(["envsubst"], stdin="doc.env", environment=MACROS | DEFAULTS),
    # Debian's Python, as another one need not have Jinja2.
    "jinja2": Tool(["/usr/bin/python3", "-I", "{bench}/jinja2_render.py", "doc.j2", "{out}"]),
}
