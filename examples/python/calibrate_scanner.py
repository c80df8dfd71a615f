#!/usr/bin/env python3
"""Calibrates a scanner from a capture of the dot target, measures the result on that capture and on a
second one, for which the target was laid anew, and asks for the verdict.

    calibrate_scanner.py target.bmp second.bmp scanner.cal [qk7]

The library derives the calibration and measures how much of a corrected target keeps the limits of
the EFTS. Whether a calibration can be believed is told by the tool qk7, which looks at each dot and at
the plate: no call of the library does. The tool writes the block when its verdict is good. The exit
status is 0 for a good calibration, 3 for a doubtful one, 1 for a failure.
"""
import json
import subprocess
import sys

import qk7

REQUIRED_PERCENT = 99.9  # good calibrations of clean captures stay above


def generated(target: qk7.Bitmap) -> qk7.ByteArray:
    with qk7.Calibrator() as generator:
        generator.generate_data(target)
        return generator.get_data()


def holds(calibrator: qk7.Calibrator, what: str, capture: qk7.Bitmap) -> bool:
    percent = calibrator.check_efts(calibrator.correct(capture))
    print(f"{what}: {percent:.2f} percent within the EFTS")
    return percent >= REQUIRED_PERCENT


def judge(tool: str, target: str, second: str, output: str) -> int:
    """What the tool thinks, and why."""
    call = subprocess.run([tool, "generate", "--json", "--second", second, "-o", output, target],
                          stdout=subprocess.PIPE, check=False)
    if call.returncode in (0, 3):
        result = json.loads(call.stdout)["results"][0]
        print(f"verdict: {result['verdict']}")
        for reason in result["reasons"]:
            print(reason["words"], file=sys.stderr)
    return call.returncode


def main(target: str, second: str, output: str, tool: str = "qk7") -> int:
    first = qk7.Bitmap.read(target)
    # As it will be loaded later: data may be generated and not load. The dynamic calibration finds no
    # finger on a target, and would whiten the whole image.
    with qk7.Calibrator(generated(first), dynamic_finger_mask=False) as calibrator:
        if not (holds(calibrator, "target", first)
                and holds(calibrator, "second", qk7.Bitmap.read(second))):
            return 1
    return judge(tool, target, second, output)


if __name__ == "__main__":
    if len(sys.argv) not in (4, 5):
        print(f"usage: {sys.argv[0]} target.bmp second.bmp scanner.cal [qk7]", file=sys.stderr)
        sys.exit(2)
    try:
        sys.exit(main(*sys.argv[1:]))
    except (OSError, ValueError, qk7.CalibrationError) as fault:
        sys.exit(str(fault))
