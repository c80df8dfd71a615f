"""What is done with a block of each kind."""

import json
import pathlib
import re
import subprocess

import transcript

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Werror"]


class Fault(Exception):
    pass


class Place:
    """A folder in which the blocks of one page run, one after the other: what one leaves, the next
    one finds."""

    def __init__(self, folder, root, build, environment):
        self.folder, self.root, self.build = pathlib.Path(folder), root, build
        self.environment, self.python = environment, []
        for name in ("apps", "docs", "examples", "include", "tests"):
            (self.folder / name).symlink_to(root / name)
        (self.folder / "build").mkdir()
        (self.folder / "build/release").symlink_to(build)

    def run(self, command, **options):
        return subprocess.run(command, cwd=self.folder, env=self.environment, text=True,
                              errors="replace", stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=300, **options)

    def must(self, command):
        done = self.run(command)
        if done.returncode != 0:
            shown = command[-1] if command[0] == "bash" else " ".join(map(str, command))
            raise Fault(f"status {done.returncode} of:\n{shown}\n{done.stdout}")
        return done.stdout


def run_shell(block, place):
    place.must(["bash", "-euo", "pipefail", "-c", block.text])


def run_transcript(block, place):
    for command, lines in transcript.parts(block.text):
        done = place.run(["bash", "-c", command])
        if not transcript.matches(lines, done.stdout):
            raise Fault(f"$ {command}\nprints\n{done.stdout}(status {done.returncode}) in place of\n"
                        + "\n".join(lines))


# A statement that prints, and a comment behind it: what it prints.
PRINTS = re.compile(r"^\s*(?:print\(|std::c(?:out|err) ).*(?:\)  +#|; //) (.+)$", re.MULTILINE)


def must_print(block, output):
    for text in PRINTS.findall(block.text):
        if text not in output.splitlines():
            raise Fault(f"prints\n{output}without the line\n{text}")


def framed(block, place, suffix):
    """A part of a program stands in a frame, which declares what the part uses."""
    if "frame" not in block.marks and re.search(r"\bmain\(", block.text):
        return block.text
    frame = place.root / "tests/docs/frames" / (block.marks.get("frame", "default" + suffix) + ".in")
    text = frame.read_text(encoding="utf-8")
    if text.count("@BLOCK@") != 1:
        raise Fault(f"{frame} has no place for the block")
    return text.replace("@BLOCK@", block.text)


def compile_and_run(block, place, suffix, compiler):
    source = place.folder / ("block" + suffix)
    source.write_text(framed(block, place, suffix), encoding="utf-8")
    place.must(["bash", "-c", f"{compiler} {' '.join(WARNINGS)} {source.name} -o block "
                "$(pkg-config --cflags --libs TessarinCalibrateSDK)"])
    must_print(block, place.must(["./block"]))


def run_c(block, place):
    compile_and_run(block, place, ".c", "cc -std=c99 -D_POSIX_C_SOURCE=200809L -pthread")


def run_cpp(block, place):
    compile_and_run(block, place, ".cpp", "c++ -std=c++17")


def run_python(block, place):
    """The blocks of a page are one program: each runs behind those before it."""
    place.python.append(block.text)
    (place.folder / "block.py").write_text("\n".join(place.python), encoding="utf-8")
    must_print(block, place.must([place.environment["PYTHON"], "block.py"]))


def run_cmake(block, place):
    """The lines of a project that has an application in one file."""
    outside = place.folder / "outside"
    outside.mkdir(exist_ok=True)
    (outside / "app.c").write_text("#include <TessarinCalibrateSDK.h>\nint main(void) "
                                   "{ return CalibrateGetErrorDescription(0) == 0; }\n")
    (outside / "CMakeLists.txt").write_text(
        "cmake_minimum_required(VERSION 3.16)\nproject(outside C CXX)\nadd_executable(app app.c)\n"
        + block.text)
    place.must(["cmake", "-S", "outside", "-B", "outside/build",
                f"-DCMAKE_PREFIX_PATH={place.environment['PREFIX']}"])
    place.must(["cmake", "--build", "outside/build"])
    place.must(["outside/build/app"])


def run_json(block, place):
    document = json.loads(block.text)
    schema = re.fullmatch(r"qk7/(\w+)/\d+", document.get("schema", ""))
    if schema:
        (place.folder / "block.json").write_text(block.text)
        place.must([place.environment["PYTHON"], "-m", "jsonschema", "-i", "block.json",
                    str(place.root / f"apps/qk7/schema/{schema[1]}.schema.json")])


RUNNERS = {"setup": run_shell, "sh": run_shell, "console": run_transcript, "c": run_c, "cpp": run_cpp,
           "python": run_python, "cmake": run_cmake, "json": run_json}
# Formulas, layouts and pictures made of letters; and what the site takes from the sources.
NOT_CODE = {"text"}
SITE = re.compile(r"\{(doxygen\w+|eval-rst)\}")
