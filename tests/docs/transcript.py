"""Transcripts of a shell: what follows "$ " is typed, the rest is what a command prints.

A line "..." stands for any lines, "..." or "…" within a line for any text, a time of day for any.
"""

import re


def parts(text):
    """Pairs of a command and its lines of output. A command goes on behind a backslash or in lines
    that begin with "> "."""
    found = []
    for line in text.rstrip("\n").split("\n"):
        if line.startswith("$ "):
            found.append([line[2:], []])
        elif line.startswith("> ") and found and not found[-1][1]:
            found[-1][0] += "\n" + line[2:]
        elif not found:
            raise ValueError("a transcript begins with a command, behind \"$ \"")
        else:
            found[-1][1].append(line)
    return found


ANY = re.compile(r"\.\.\.|…|\b\d\d:\d\d:\d\d\.\d{6}\b")


def pattern(lines):
    out = []
    for line in lines:
        if ANY.sub("", line).strip() == "" and line.strip():
            out.append(r"(?:[^\n]*\n)*?")
        else:
            out.append(r"[^\n]*".join(map(re.escape, ANY.split(line.rstrip()))) + r" *\n")
    return "".join(out)


def matches(lines, output):
    if output and not output.endswith("\n"):
        output += "\n"
    return re.fullmatch(pattern(lines), output) is not None
