"""Whether what a page links to is there: files of the tree, and headings of pages."""

import re

import pages


def faults(readers, root):
    """readers: every page by its path from the root."""
    anchors = {name: pages.anchors(reader) for name, reader in readers.items()}
    for name, reader in readers.items():
        for line, target in pages.links(reader):
            fault = fault_of(name, target, anchors, root)
            if fault:
                yield f"{name}:{line}: {fault}"


def fault_of(name, target, anchors, root):
    if re.match(r"\w+:", target):
        return None  # elsewhere: asked of nobody
    path, _, heading = target.partition("#")
    there = ((root / name).parent / path).resolve() if path else root / name
    if not there.exists():
        return f"there is no {target}"
    page = there.relative_to(root.resolve()).as_posix()
    if heading and heading not in anchors.get(page, ()):
        return f"{page} has no heading #{heading}"
    return None
