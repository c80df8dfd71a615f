#!/usr/bin/env python3
"""Tells how contaminated the sensor is, and of each capture how dirty the platen and how dry the
finger were.

    levels.py scanner.cal empty.bmp capture.bmp...
"""
import sys

import qk7


def main(block: str, empty: str, *captures: str) -> None:
    with qk7.Calibrator(qk7.read_block(block)) as calibrator:
        level = calibrator.contamination(qk7.Bitmap.read(empty))
        print(f"{empty}: contamination {level:.2f}")
        # The levels are those of the last capture that was corrected, with dynamic_finger_mask,
        # which is the default.
        for name in captures:
            calibrator.correct(qk7.Bitmap.read(name))
            dirt, dry_finger = calibrator.levels
            print(f"{name}: dirt {dirt:.2f}, dry finger {dry_finger:.2f}")


if __name__ == "__main__":
    if len(sys.argv) < 4:
        print(f"usage: {sys.argv[0]} scanner.cal empty.bmp capture.bmp...", file=sys.stderr)
        sys.exit(2)
    try:
        main(*sys.argv[1:])
    except (OSError, ValueError, qk7.CalibrationError) as fault:
        sys.exit(str(fault))
