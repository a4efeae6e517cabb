"""The plain use of Jinja2: jinja2_render.py TEMPLATE OUTPUT"""

import sys
from pathlib import Path

from jinja2 import Environment

# Rendering in one piece costs less than streaming.
template = Environment().from_string(Path(sys.argv[1]).read_text())
Path(sys.argv[2]).write_text(template.render())
