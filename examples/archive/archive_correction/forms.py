"""Which form an archive has."""
from __future__ import annotations

import os

from archive_correction.entry import Archive
from archive_correction.listed import Listed
from archive_correction.tree import Tree
from archive_correction.zipped import Zip


def open_archive(path: str) -> Archive:
    """A folder is a tree, a name that ends in .zip a zip archive, any other file a manifest.

    Raises OSError or ValueError where it cannot be opened.
    """
    if os.path.isdir(path):
        return Tree(path)
    if path.lower().endswith(".zip"):
        return Zip(path)
    return Listed(path)
