"""The site of docs/: Sphinx reads the pages as Markdown, Breathe the comments of the headers.

The pages are to be read as they stand, too, in an editor or on a forge. So they hold no directives
but those of the reference, and the list of pages in index.md is the table of contents.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGES = ROOT / "docs"

project = "QK7 calibration"
author = ""
version = release = re.search(r"VERSION (\d+\.\d+\.\d+)",
                              (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"))[1]
html_title = f"{project} {version}"

sys.path.insert(0, str(ROOT / "python"))
extensions = ["myst_parser", "breathe", "sphinx.ext.autodoc", "sphinx.ext.napoleon"]
autodoc_typehints = "description"
autodoc_typehints_description_target = "documented_params"
napoleon_use_ivar = True
breathe_projects = {"headers": str(ROOT / "build/docs/xml")}
breathe_default_project = "headers"
breathe_domain_by_file_pattern = {"*.h": "c"}
primary_domain = None
highlight_language = "none"
myst_heading_anchors = 4
nitpick_ignore_regex = [(r"c(pp)?:.*", r".*"), (r"py:.*", r".*")]  # types of the languages

html_theme = "furo"
html_show_copyright = False
html_show_sourcelink = False
html_copy_source = False
html_show_search_summary = False  # would be fetched, which a page from a folder may not
html_static_path = ["static"]
html_css_files = ["site.css"]
pygments_style = "default"
pygments_dark_style = "github-dark"

exclude_patterns = ["site"]
for needed, page in {"include/TessarinCalibrateSDK.hpp": "cpp-reference.md",
                     "python/qk7": "python-reference.md"}.items():
    if not (ROOT / needed).exists():
        exclude_patterns.append(page)


def contents(text):
    """A table of contents for each list of pages, under its heading; new pages come last."""
    listed = set()
    out = []
    for part in re.split(r"^(?=## )", text, flags=re.M):
        pages = re.findall(r"^- .*?\]\((\S+?)\.md\)", part, flags=re.M)
        listed.update(pages)
        caption = part.split("\n", 1)[0].strip("# ")
        out.append(part)
        if pages:
            out.append(toctree(caption, pages))
    new = sorted(page.stem for page in PAGES.glob("*.md")
                 if page.stem not in listed | {"index"} and page.name not in exclude_patterns)
    if new:
        out.append(toctree("More", new))
    return "".join(out)


def toctree(caption, pages):
    return "\n".join(["", "```{toctree}", ":hidden:", f":caption: {caption}", "", *pages, "```", "", ""])


def read_page(app, name, source):
    if name == "index":
        source[0] = contents(source[0])
    source[0] = re.sub(r"\[([^]]*)\]\((\.\./[^)]*)\)", outside, source[0])


def outside(match):
    """A link out of docs/ leads to a file of the tree, which the site does not have; but README and
    SECURITY do not stand alone, and examples are worth to be had."""
    words, target = match.groups()
    if target.startswith("../examples/") and (PAGES / target).is_file():
        return match[0]
    return words


def read_docstring(app, what, name, thing, options, lines):
    """The words of a Python module are plain text: what is indented there is code."""
    out, depth = [], 0
    for line in lines if what == "module" else []:
        deeper = len(line) - len(line.lstrip()) if line.strip() else depth
        if deeper > 0 and depth == 0:
            out += ["", "::", ""]
        out.append(line)
        depth = deeper
    lines[:] = out or lines


def leave_out_module(app, name, template, context, doctree):
    """The theme's script is a module, which Debian's package loads as a plain one: it cannot run, and
    from a folder no module can. What it would do is not needed."""
    context["script_files"] = [file for file in context["script_files"]
                               if not str(getattr(file, "filename", file)).endswith("furo.js")]


def mend_style(app, failure):
    """Debian's package is compiled without what follows the reader's choice of a dark screen, and
    takes a style sheet from the root of a server that serves Debian's."""
    path = pathlib.Path(app.outdir) / "_static/styles/furo.css"
    if failure or not path.exists():
        return
    text = re.sub(r"@import url\(/javascript/[^)]*\);\n", "", path.read_text(encoding="utf-8"))
    if "prefers-color-scheme: dark" not in text:
        dark = re.search(r'body\[data-theme="dark"\] \{([^}]*)\}', text)[1]
        text += "@media screen and (prefers-color-scheme: dark) {\n"
        text += 'body:not([data-theme="light"]) {' + dark + "} }\n"
    path.write_text(text, encoding="utf-8")


def setup(app):
    app.connect("source-read", read_page)
    app.connect("autodoc-process-docstring", read_docstring)
    app.connect("html-page-context", leave_out_module, priority=900)
    app.connect("build-finished", mend_style)
