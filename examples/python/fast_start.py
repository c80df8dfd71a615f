#!/usr/bin/env python3
"""Starts fast: takes the prepared warp table of a scanner from a file in place of preparing it, and
leaves it there where it is missing or belongs to another calibration.

    fast_start.py scanner.cal scanner.pre capture.bmp corrected.bmp

Tells "loaded" or "prepared". Either way the corrected image is the same.
"""
import sys

import qk7


def started(data: qk7.ByteArray, table: str) -> qk7.Calibrator:
    """A calibrator that is ready, by the table where that is the right one."""
    try:
        calibrator = qk7.Calibrator(data, precalculated=qk7.read_block(table))
        print("loaded")
    except (OSError, qk7.CalibrationError) as fault:
        print(fault, file=sys.stderr)
        calibrator = qk7.Calibrator(data)
        qk7.write_block(table, calibrator.get_precalculated_data())
        print("prepared")
    return calibrator


def main(block: str, table: str, capture: str, output: str) -> None:
    with started(qk7.read_block(block), table) as calibrator:
        calibrator.correct(qk7.Bitmap.read(capture)).write(output)


if __name__ == "__main__":
    if len(sys.argv) != 5:
        print(f"usage: {sys.argv[0]} scanner.cal scanner.pre capture.bmp corrected.bmp",
              file=sys.stderr)
        sys.exit(2)
    try:
        main(*sys.argv[1:])
    except (OSError, ValueError, qk7.CalibrationError) as fault:
        sys.exit(str(fault))
