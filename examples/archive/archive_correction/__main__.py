"""The command line: see --help, and docs/archives.md."""
from __future__ import annotations

import argparse
import os
import sys
import time
import traceback
from collections.abc import Sequence
from typing import Optional

from archive_correction.engine import cluster
from archive_correction.job import Plan, Summary, run_job
from archive_correction.manifest import FORMS
from archive_correction.outcome import Outcome
from archive_correction.station import JobFault, Order

ALL_CORRECTED, SOME_REFUSED, STOPPED = 0, 1, 3

_EPILOG = """\
Exit status: 0 when all captures are corrected, 1 when some are refused (the manifest tells which and
why), 2 for wrong usage, 3 when the job stopped. Then the same command goes on from there.
"""


def _number(text: str) -> int:
    number = int(text)
    if number < 1:
        raise argparse.ArgumentTypeError("1 or more is expected")
    return number


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="archive_correction", epilog=_EPILOG,
        description="Corrects an archive of captures on the workers of a Dask cluster.")
    parser.add_argument("archive", help="folder or zip archive with a folder of bitmaps for each "
                        "scanner, or manifest (.csv, .jsonl) with scanner, capture and sha256")
    parser.add_argument("-s", "--scanners", required=True, metavar="DIR",
                        help="folder of the calibration blocks, named ID.cal")
    parser.add_argument("-o", "--output", required=True, metavar="DIR", help="folder of the results")
    parser.add_argument("--cache", metavar="DIR",
                        help="folder of the prepared tables (default: tables in that of the results)")
    parser.add_argument("--scheduler", metavar="ADDRESS",
                        help="scheduler that runs: tcp://HOST:PORT or its scheduler file (default: "
                        "workers of this machine, for this job)")
    parser.add_argument("--workers", type=_number, default=os.cpu_count(), metavar="N",
                        help="processes of this machine without --scheduler (default: %(default)s)")
    parser.add_argument("--threads", type=_number, default=1, metavar="N",
                        help="threads of each of them (default: %(default)s)")
    parser.add_argument("-O", "--option", action="append", default=[], metavar="KEY=VALUE",
                        help="option of the library, such as SensitiveMode=true; may be repeated")
    parser.add_argument("--handles", type=_number, default=8, metavar="N",
                        help="handles that a worker keeps at most (default: %(default)s)")
    parser.add_argument("--batch", type=_number, default=64, metavar="N",
                        help="captures that a worker gets at a time (default: %(default)s)")
    parser.add_argument("--ahead", type=_number, default=256, metavar="N",
                        help="batches that the cluster has at a time (default: %(default)s)")
    parser.add_argument("--manifest", choices=sorted(FORMS), default="jsonl",
                        help="form of the manifest (default: %(default)s)")
    parser.add_argument("--verify", action="store_true",
                        help="read results of an earlier run again before they are believed")
    parser.add_argument("-q", "--quiet", action="store_true", help="do not tell refused captures")
    return parser


def _plan(call: argparse.Namespace) -> Plan:
    """With absolute paths, as workers run in folders of their own."""
    output = os.path.abspath(call.output)
    cache = os.path.abspath(call.cache) if call.cache else os.path.join(output, "tables")
    order = Order(os.path.abspath(call.archive), output, cache, tuple(call.option), call.handles)
    return Plan(order, os.path.abspath(call.scanners), call.batch, call.ahead, call.manifest,
                call.verify)


def _say(text: str) -> None:
    print(text.encode(errors="backslashreplace").decode(), file=sys.stderr, flush=True)


def _tell_refused(outcome: Outcome) -> None:
    if outcome.error:
        _say(f"{outcome.capture}: {outcome.error}")


def _words(summary: Summary, seconds: float) -> str:
    rate = summary.corrected / seconds
    return (f"{summary.corrected} corrected, {summary.kept} kept, {summary.refused} refused in "
            f"{seconds:.2f} s ({rate:.1f} per second)")


def _run(call: argparse.Namespace) -> int:
    with cluster(call.scheduler, call.workers, call.threads) as client:
        start = time.monotonic()
        told = None if call.quiet else _tell_refused
        summary = run_job(_plan(call), client, told)
        _say(_words(summary, time.monotonic() - start))
    return SOME_REFUSED if summary.refused else ALL_CORRECTED


def main(arguments: Optional[Sequence[str]] = None) -> int:
    call = _parser().parse_args(arguments)
    try:
        return _run(call)
    except (OSError, ValueError, ImportError, JobFault) as fault:  # ImportError: that of a worker, too
        _say(f"archive_correction: {fault}")
    except KeyboardInterrupt:
        _say("archive_correction: interrupted; the same command goes on from here")
    except Exception:  # Python's own status, 1, would tell of captures that are refused
        traceback.print_exc()
    return STOPPED


if __name__ == "__main__":
    sys.exit(main())
