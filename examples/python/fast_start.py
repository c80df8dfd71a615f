#!/usr/bin/env python3
"""Starts fast: takes the prepared warp table of a scanner from a file in place of preparing it, and
leaves it there where it is missing or belongs to another calibration. A file of another kind stays as
it is.

    fast_start.py scanner.cal scanner.pre capture.bmp corrected.bmp

Tells "loaded" or "prepared". Either way the corrected image is the same.
"""
import sys
from typing import Optional

import qk7

#: What tables begin with.
TAGS = b"CAL\0" b"PRE\0" b"001\0"


def table_in(path: str) -> Optional[qk7.ByteArray]:
    """The table in a file; none where there is no file."""
    try:
        table = qk7.read_block(path)
    except FileNotFoundError:
        return None
    if not TAGS.startswith(table[:len(TAGS)].tobytes()):  # cut off or empty it may be written anew
        raise ValueError(f"{path}: is no table")
    return table


def started(data: qk7.ByteArray, path: str) -> qk7.Calibrator:
    """A calibrator that is ready, by the table where that is the right one."""
    table = table_in(path)
    if table is not None:
        try:
            calibrator = qk7.Calibrator(data, precalculated=table)
            print("loaded")
            return calibrator
        except qk7.CalibrationError as fault:
            print(fault, file=sys.stderr)
    calibrator = qk7.Calibrator(data)
    qk7.write_block(path, calibrator.get_precalculated_data())
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
