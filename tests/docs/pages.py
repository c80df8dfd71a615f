"""The blocks and the links of a Markdown page."""

import dataclasses
import pathlib
import re

FENCE = re.compile(r"^( *)(`{3,})(\S*)(?: .*)?$")
MARK = re.compile(r"^ *<!-- (setup|not run|frame):(.*?)(-->)?$")


@dataclasses.dataclass
class Block:
    page: str
    line: int  # of its first line, from 1
    kind: str  # the word behind the fence; "indented" for one without
    text: str
    marks: dict  # "not run", "frame": what the comments above it say

    @property
    def place(self):
        return f"{self.page}:{self.line}"


class Reader:
    """Goes through a page once."""

    def __init__(self, page, text):
        self.page, self.lines, self.at = page, text.split("\n"), 0
        self.blocks, self.prose, self.marks = [], [], {}

    def read(self):
        while self.at < len(self.lines):
            line = self.lines[self.at]
            fence, mark = FENCE.match(line), MARK.match(line)
            if fence:
                self.fenced(fence)
            elif mark:
                self.mark(mark)
            elif self.begins_indented(line):
                self.indented()
            else:
                self.keep_prose(line)
        return self

    def add(self, kind, line, text):
        self.blocks.append(Block(self.page, line, kind, text, self.marks))
        self.marks = {}

    def fenced(self, fence):
        indent, ticks, kind = fence.groups()
        first = self.at + 1
        self.at = first
        while self.at < len(self.lines) and self.lines[self.at].strip() != ticks:
            self.at += 1
        if self.at == len(self.lines):
            raise ValueError(f"{self.page}:{first}: the fence is not closed")
        text = [line[len(indent):] for line in self.lines[first:self.at]]
        self.add(kind, first + 1, "\n".join(text) + "\n")
        self.at += 1

    def mark(self, mark):
        kind, words, closed = mark.groups()
        first, lines = self.at + 1, [words]
        while not closed:
            self.at += 1
            line = self.lines[self.at]
            closed = line.rstrip().endswith("-->")
            lines.append(line.rstrip().removesuffix("-->"))
        self.at += 1
        if kind == "setup":
            self.blocks.append(Block(self.page, first, "setup", "\n".join(lines) + "\n", {}))
        else:
            self.marks[kind] = " ".join(" ".join(lines).split())

    def begins_indented(self, line):
        """Four blanks behind an empty line or a mark; in a list, four more than its words have."""
        above = self.lines[self.at - 1] if self.at else ""
        if not line.startswith("    ") or not line.strip() or (above.strip() and not self.marks):
            return False
        return line.startswith(" " * (4 + self.list_depth()))

    def list_depth(self):
        """Where the words of the list begin that may go on here."""
        for line in reversed(self.lines[:self.at]):
            item = re.match(r"(?:[-*]|\d+\.) +", line)
            if item:
                return len(item[0])
            if line.strip() and not line.startswith(" "):
                return 0
        return 0

    def indented(self):
        first = self.at
        while self.at < len(self.lines) and (self.lines[self.at].startswith("    ")
                                             or not self.lines[self.at].strip()):
            self.at += 1
        text = "\n".join(line[4:] for line in self.lines[first:self.at]).strip("\n")
        self.add("indented", first + 1, text + "\n")

    def keep_prose(self, line):
        if line.strip() and self.marks:
            raise ValueError(f"{self.page}:{self.at + 1}: no block follows the mark")
        self.prose.append((self.at + 1, line))
        self.at += 1


def read(path, name):
    return Reader(name, pathlib.Path(path).read_text(encoding="utf-8")).read()


# Links

LINK = re.compile(r"!?\[[^]]*\]\(([^)\s]+)\)")
CODE = re.compile(r"`[^`]*`")


def links(reader):
    """Line and target of every link, those in code left out; a link may begin a line further up."""
    text = "\n".join(CODE.sub("``", line) for _, line in reader.prose)
    numbers = [number for number, _ in reader.prose]
    for found in LINK.finditer(text):
        yield numbers[text.count("\n", 0, found.start())], found[1]


def anchor(heading):
    words = re.sub(r"[`*]|\]\([^)]*\)", "", heading).strip().lower()
    return re.sub(r"[^\w\- ]", "", words).replace(" ", "-")


def anchors(reader):
    return {anchor(re.sub(r"^#+ ", "", line)) for _, line in reader.prose if re.match(r"#+ ", line)}
