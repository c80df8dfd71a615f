"""What became of a capture: a line of the journal and of the manifest."""
from __future__ import annotations

import json
from typing import NamedTuple, Optional

from archive_correction.entry import Entry


class Outcome(NamedTuple):
    """Corrected where `error` is empty; then `output` and what follows it are told."""

    capture: str
    scanner: str
    stamp: str = ""
    #: SHA-256 of the calibration block.
    block: str = ""
    #: Of the capture as it was read.
    sha256: str = ""
    error: str = ""
    #: Below the folder of results.
    output: str = ""
    output_bytes: int = 0
    output_sha256: str = ""
    #: None without the dynamic calibration, which finds them.
    dirt_level: Optional[float] = None
    dry_finger_level: Optional[float] = None

    def line(self) -> bytes:
        """One line of JSON."""
        return json.dumps(self._asdict()).encode() + b"\n"

    @classmethod
    def of_line(cls, line: bytes) -> Outcome:
        """ValueError or TypeError where the line is none."""
        return cls(**json.loads(line))


def refused(entry: Entry, error: str, block: str = "", sha256: str = "") -> Outcome:
    """Of a capture that cannot be corrected."""
    return Outcome(entry.name, entry.scanner, entry.stamp, block, sha256, error)
