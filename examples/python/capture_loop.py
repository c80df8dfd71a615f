#!/usr/bin/env python3
"""Corrects captures of one scanner as they come, with one handle and one block of memory: what a
capture application does for as long as it runs.

    capture_loop.py scanner.cal folder capture.bmp...

Writes the corrected images into the folder, under the names of the captures: in their own folder
they would be overwritten. A capture that is refused is told and skipped.
"""
import os
import sys

import numpy as np
import qk7


class Loop:
    """A calibrator with the memory that its images go to.

    The size protocol: the block begins without memory. The first capture is answered by -21 and the
    size needed, and calibrated once more; all that follow find a block that fits. Without `out`,
    correct() does the same and makes a new block for each image.
    """

    def __init__(self, calibrator: qk7.Calibrator) -> None:
        self._calibrator = calibrator
        self._out: qk7.ByteArray = np.empty(0, np.uint8)

    def correct(self, capture: qk7.Bitmap) -> qk7.Bitmap:
        """The corrected image, until the next call."""
        try:
            return self._calibrator.correct(capture, self._out)
        except qk7.CalibrationError as fault:
            if fault.needed is None:
                raise
            self._out = np.empty(fault.needed, np.uint8)
        return self._calibrator.correct(capture, self._out)


def main(block: str, folder: str, *captures: str) -> int:
    status = 0
    with qk7.Calibrator(qk7.read_block(block)) as calibrator:
        loop = Loop(calibrator)
        for name in captures:
            try:
                corrected = loop.correct(qk7.Bitmap.read(name))
                corrected.write(os.path.join(folder, os.path.basename(name)))
            except (OSError, ValueError, qk7.CalibrationError) as fault:
                print(f"{name}: {fault}", file=sys.stderr)
                status = 1
    return status


if __name__ == "__main__":
    if len(sys.argv) < 4:
        print(f"usage: {sys.argv[0]} scanner.cal folder capture.bmp...", file=sys.stderr)
        sys.exit(2)
    try:
        sys.exit(main(*sys.argv[1:]))
    except (OSError, ValueError, qk7.CalibrationError) as fault:
        sys.exit(str(fault))
