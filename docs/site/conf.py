"""The site of docs/: Sphinx reads the pages as Markdown, Breathe the comments of the headers.

The pages are to be read as they stand, too, in an editor or on a forge. So they hold no directives
but those of the reference, and the list of pages in index.md is the table of contents.
"""

import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGES = ROOT / "docs"

project = "QK7 calibration"
author = ""
version = release = re.search(r"VERSION (\d+\.\d+\.\d+)",
                              (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"))[1]
html_title = f"{project} {version}"

extensions = ["myst_parser", "breathe"]
breathe_projects = {"headers": str(ROOT / "build/docs/xml")}
breathe_default_project = "headers"
primary_domain = None
highlight_language = "none"
myst_heading_anchors = 4
nitpick_ignore_regex = [(r"c(pp)?:.*", r".*")]  # types of the language and names in words
suppress_warnings = []

html_theme = "furo"
html_show_copyright = False
html_show_sourcelink = False
html_copy_source = False
html_static_path = ["static"]
html_css_files = ["site.css"]

exclude_patterns = ["site"]
if not (ROOT / "include/TessarinCalibrateSDK.hpp").exists():
    exclude_patterns.append("cpp-reference.md")


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


def setup(app):
    app.connect("source-read", read_page)
