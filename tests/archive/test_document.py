"""The commands of docs/archives.md: run as they stand, in their order, in a folder of their own."""
import os
import pathlib
import re
import shutil
import subprocess
import sys

import pytest

DOCUMENT = pathlib.Path(__file__).parents[2] / "docs/archives.md"

# What was started in the background ends with the script.
PRELUDE = "set -euo pipefail\ntrap 'kill $(jobs -p) 2>/dev/null; wait' EXIT\n"
CITATION = "parallel() { command parallel --will-cite \"$@\"; }\n"


def commands():
    return re.findall(r"^```sh\n(.*?)^```$", DOCUMENT.read_text(), re.MULTILINE | re.DOTALL)


def can_run(block):
    return all(shutil.which(tool) for tool in ("parallel", "jq") if re.search(rf"\b{tool} ", block))


@pytest.fixture
def programs(tmp_path):
    """A PATH with the tool and this Python under their usual names."""
    folder = tmp_path / "bin"
    folder.mkdir()
    (folder / "qk7").symlink_to(os.environ["QK7"])
    (folder / "python3").symlink_to(sys.executable)
    return f"{folder}:{os.environ['PATH']}"


def images(folder):
    return {path.relative_to(folder): path.read_bytes() for path in sorted(folder.rglob("*.bmp"))}


@pytest.mark.skipif("QK7" not in os.environ, reason="QK7 has to name the tool")
def test_commands_of_the_document_work(programs, tmp_path):
    blocks = commands()
    assert len(blocks) == 9
    work = tmp_path / "work"
    work.mkdir()
    script = PRELUDE + CITATION + "".join(filter(can_run, blocks))
    done = subprocess.run(["bash", "-c", script], cwd=work, capture_output=True, timeout=120,
                          env={**os.environ, "PATH": programs, "LC_ALL": "C.UTF-8"})
    assert done.returncode == 0, done.stderr.decode()
    made = images(work / "results/images")
    assert len(made) == 4
    assert images(work / "results-of-cluster/images") == made
    by_tool = images(work / "corrected")
    assert len(by_tool) == (4 if shutil.which("parallel") else 2)
    assert by_tool.items() <= made.items()
    cost = done.stdout.decode().splitlines()[-1]
    assert f"prints\n\n```text\n{cost}\n```\n" in DOCUMENT.read_text()
