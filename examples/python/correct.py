#!/usr/bin/env python3
"""Corrects one capture.

    correct.py scanner.cal capture.bmp corrected.bmp [Option=value...]

Reads the calibration block of a scanner and a bitmap file, and writes the corrected image as a bitmap
file. DynamicFingerMask=false leaves the light and the background as they are.
"""
import sys

import qk7


def main(block: str, capture: str, output: str, *options: str) -> None:
    with qk7.Calibrator() as calibrator:
        for option in options:
            calibrator.set_option(option)
        calibrator.set_data(qk7.read_block(block))
        calibrator.correct(qk7.Bitmap.read(capture)).write(output)


if __name__ == "__main__":
    if len(sys.argv) < 4:
        print(f"usage: {sys.argv[0]} scanner.cal capture.bmp corrected.bmp [Option=value...]",
              file=sys.stderr)
        sys.exit(2)
    try:
        main(*sys.argv[1:])
    except (OSError, ValueError, qk7.CalibrationError) as fault:
        sys.exit(str(fault))
