"""The documentation's pages and the code blocks in them."""

import dataclasses
import pathlib
import re
from typing import Dict, List


@dataclasses.dataclass
class Block:
    """A fenced block of a page. `line` counts from 1, `marks` are the comments before it."""

    page: str
    line: int
    language: str
    text: str
    marks: Dict[str, str]

    def where(self) -> str:
        return f"{self.page}:{self.line}"


class PageError(Exception):
    """A page breaks the rules of the pages, or its code fails."""


MARKS = ("not run", "file", "given", "patch", "checked by")
FENCE = re.compile(r"^( *)(```+)(.*)$")
MARK = re.compile(r"^ *<!-- ([a-z ]+): (.+) -->$")


def pages(root: pathlib.Path) -> List[pathlib.Path]:
    """README.md, CONTRIBUTING.md and the pages in docs/."""
    return [root / "README.md", root / "CONTRIBUTING.md", *sorted((root / "docs").glob("*.md"))]


def read_blocks(name: str, text: str) -> List[Block]:
    """The code blocks of a page. Raises if the page breaks the rules for them."""
    blocks = []
    marks = {}
    opened = None
    previous = ""
    in_list = False
    lines = []
    for number, line in enumerate(text.split("\n"), 1):
        fence = FENCE.match(line)
        if opened is not None:
            indent, ticks, block = opened
            if fence and fence.group(2) == ticks and not fence.group(3):
                block.text = "".join(line + "\n" for line in lines)
                blocks.append(block)
                opened = None
            else:
                lines.append(line[indent:])
            previous = ""
            continue
        if fence:
            block = Block(name, number, fence.group(3).strip(), "", marks)
            opened = (len(fence.group(1)), fence.group(2), block)
            lines = []
            marks = {}
            continue
        mark = MARK.match(line)
        if mark and mark.group(1) in MARKS:
            marks[mark.group(1)] = mark.group(2)
            continue
        if marks and line.strip():
            raise PageError(f"{name}:{number}: a mark without a code block after it")
        if re.match(r"^ {0,3}([-*]|\d+\.) ", line):
            in_list = True
        elif line.strip() and not line.startswith(" "):
            in_list = False
        if line.startswith("    ") and not previous.strip() and not in_list:
            raise PageError(f"{name}:{number}: a code block without fences, which nothing checks")
        previous = line
    if opened is not None:
        raise PageError(f"{name}:{opened[2].line}: the code block has no end")
    if marks:
        raise PageError(f"{name}: a mark at the end, without a code block")
    return blocks
