"""Blocks that are not run are looked at all the same: commands of the project have to be there."""

import re
import subprocess

PROGRAM = re.compile(r"(?:^|[;&|(]\s*|\s)((?:scripts|build/release)/[\w./-]+)")
FILTER = re.compile(r"(build/release/\S+).*?--gtest_filter='?([^'\s]+)'?")
TARGET = re.compile(r"cmake --build --preset release --target ((?:[\w]+ ?)+)")


def faults(block, root, build):
    """Words for each command of the block that the tree or the build does not have."""
    for line in block.text.split("\n"):
        command = line.strip().removeprefix("$ ")
        if not command.startswith("#"):
            yield from faults_of_line(command, root, build)
    if block.kind == "sh":
        done = subprocess.run(["bash", "-n", "-c", block.text], capture_output=True, text=True)
        if done.returncode != 0:
            yield done.stderr.strip()


def faults_of_line(command, root, build):
    first = PROGRAM.match(command) or PROGRAM.search(command.split(" #")[0].split("  ")[0])
    if first:
        path = located(first[1], root, build)
        if not path.exists():
            yield f"there is no {first[1]}"
    tests = FILTER.search(command)
    if tests and first and located(tests[1], root, build).exists():
        if not has_tests(located(tests[1], root, build), tests[2]):
            yield f"{tests[1]} has no test {tests[2]}"
    targets = TARGET.search(command)
    if targets and (build / "build.ninja").exists():
        rules = (build / "build.ninja").read_text(errors="replace")
        for name in targets[1].split():
            if f"\nbuild {name}: phony" not in rules:
                yield f"the build has no target {name}"


def located(name, root, build):
    return build / name.removeprefix("build/release/") if name.startswith("build/") else root / name


def has_tests(program, chosen):
    done = subprocess.run([program, "--gtest_list_tests", f"--gtest_filter={chosen}"],
                          capture_output=True, text=True)
    return any(line.startswith("  ") for line in done.stdout.split("\n"))
