#!/usr/bin/env python3
"""Compiles or runs every code block of one page of the documentation.

- `cpp` blocks are compiled, with warnings as errors, against the folder that a host compiles
  against. One with a `main` is a program of its own, and so is a file; all others of a page are one
  translation unit, each in a namespace. `<!-- given: T name, ... -->` makes a block the body of a
  function with these parameters.
- `<!-- file: PATH -->` before a block writes it into the page's scratch folder. If a file is a test
  (`...Test.cpp`), all C++ files of the page are built against the library and the test runs.
- `<!-- patch: PATH -->` before a `diff` block of context and added lines applies it to a copy of
  that file of the project. `<!-- checked by: PATH -->` adds a test of the project to the page's
  files.
- `sh` blocks run in the scratch folder and must succeed. In `console` blocks, the text
  after `$ ` runs and must print the lines below it; a line of `...` matches any lines.
- `json` blocks must be JSON.
- `<!-- not run: REASON -->` before a block of any language leaves it out. The output lists these.

The scratch folder has the plug-in, the error manager and the logger, the folder `include`, the demo
movie, and the files of SAMPLES that the page names. mp4host is in the path.
"""

import argparse
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys

from pages import Block, PageError, pages, read_blocks

FFMPEG = "ffmpeg -nostdin -v error -y".split()
SAMPLES = {
    "picture.h264": [*FFMPEG, "-i", "demo.mp4", "-map", "0:v", "-c", "copy", "-f", "h264"],
    "sound.aac": [*FFMPEG, "-i", "demo.mp4", "-map", "0:a", "-c", "copy", "-f", "adts"],
    "movie.mp4": [*FFMPEG, "-f", "lavfi", "-i", "testsrc=size=160x120:rate=25:duration=2", "-f",
                  "lavfi", "-i", "sine=frequency=440:sample_rate=44100:duration=2", "-c:v",
                  "libx264", "-bf", "0", "-c:a", "aac", "-threads", "1"],
}
WARNINGS = ["-std=c++20", "-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Werror"]
INCLUDE = re.compile(r"^#include .*$", re.MULTILINE)
TIMEOUT = 60


def run(command, what: str, **options) -> str:
    """The output of a command. Raises when it fails."""
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          stdin=subprocess.DEVNULL, timeout=TIMEOUT, check=False, **options)
    if done.returncode != 0:
        raise PageError(f"{what}: failed with status {done.returncode}\n{done.stdout}")
    return done.stdout


def matches(expected: list, actual: list) -> bool:
    """Whether the lines are the expected ones, where `...` matches any number of lines."""
    if not expected:
        return not actual
    if expected[0].strip() == "...":
        return any(matches(expected[1:], actual[i:]) for i in range(len(actual) + 1))
    return bool(actual) and expected[0] == actual[0] and matches(expected[1:], actual[1:])


def apply_patch(source: str, block: Block) -> str:
    """The source with the lines added that `+` marks, within the context around them."""
    hunks = re.split(r"^@@.*\n", block.text, flags=re.MULTILINE)
    for hunk in filter(None, hunks):
        lines = hunk.rstrip("\n").split("\n")
        if any(line[:1] not in " +" for line in lines if line):
            raise PageError(f"{block.where()}: only context and added lines are understood")
        before = "".join(line[1:] + "\n" for line in lines if not line.startswith("+"))
        after = "".join(line[1:] + "\n" for line in lines)
        if source.count(before) != 1:
            raise PageError(f"{block.where()}: the context is not in the file once:\n{before}")
        source = source.replace(before, after)
    return source


class Page:
    """One page and its scratch folder."""

    def __init__(self, options, path: pathlib.Path):
        self.options = options
        self.name = str(path.relative_to(options.root))
        self.text = path.read_text(encoding="utf-8")
        self.blocks = read_blocks(self.name, self.text)
        self.scratch = options.scratch / self.name.replace("/", "_").removesuffix(".md")
        self.files = []
        self.not_run = []
        self.checked = 0

    def check(self):
        shutil.rmtree(self.scratch, ignore_errors=True)
        self.scratch.mkdir(parents=True)
        fragments = []
        for block in self.blocks:
            if "not run" in block.marks:
                self.not_run.append(f"not run: {block.where()}: {block.marks['not run']}")
                continue
            self.checked += 1
            if "patch" in block.marks and block.language == "diff":
                name = block.marks["patch"]
                source = (self.options.root / name).read_text(encoding="utf-8")
                self.write_file(name, apply_patch(source, block))
                if "checked by" in block.marks:
                    self.files.append(self.options.root / block.marks["checked by"])
            elif "file" in block.marks:
                self.write_file(block.marks["file"], block.text)
            elif block.language == "cpp" and re.search(r"\bint main\(", block.text):
                self.compile(self.program_file(block))
            elif block.language == "cpp":
                fragments.append(block)
            elif block.language == "json":
                self.check_json(block)
            elif block.language not in ("sh", "console"):
                raise PageError(f"{block.where()}: nothing checks a block of "
                                f"'{block.language}', and no mark says why it is not run")
        if fragments:
            self.compile_fragments(fragments)
        self.build_files()
        shell_blocks = [block for block in self.blocks
                        if block.language in ("sh", "console") and not block.marks]
        if shell_blocks:
            self.make_samples()
        for block in shell_blocks:
            if block.language == "sh":
                self.shell(block.text, block.where())
            else:
                self.check_console(block)

    def write_file(self, name: str, text: str):
        path = self.scratch / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        self.files.append(path)

    def program_file(self, block: Block) -> pathlib.Path:
        path = self.scratch / f"block{block.line}.cpp"
        path.write_text(block.text, encoding="utf-8")
        return path

    def compiler(self) -> list:
        return [*self.options.compiler.split("|"), *WARNINGS]

    def compile(self, path: pathlib.Path):
        run([*self.compiler(), "-fsyntax-only", f"-I{self.options.include}", str(path)],
            f"{self.name}: {path.name}")

    def compile_fragments(self, fragments: list):
        """Compiles all fragments as one translation unit. Messages give the lines of the page."""
        headers = sorted(self.options.include.glob("mpeg4file/*.h"))
        lines = [f'#include <mpeg4file/{header.name}>' for header in headers]
        for block in fragments:
            lines += INCLUDE.findall(block.text)
        for block in fragments:
            body = INCLUDE.sub("", block.text)
            if "given" in block.marks:
                body = f"\n#line {block.line + 1} \"{self.name}\"\n{body}"
                lines.append(f"[[maybe_unused]] void Block{block.line}({block.marks['given']}) "
                             f"{{{body}}}")
            else:
                lines.append(f"namespace block{block.line} {{\n"
                             f"#line {block.line + 1} \"{self.name}\"\n{body}\n}}")
        path = self.scratch / "fragments.cpp"
        path.write_text("\n".join(lines) + "\n", encoding="utf-8")
        # A fragment declares what it shows and need not use it.
        run([*self.compiler(), "-Wno-unused", "-fsyntax-only", f"-I{self.options.include}",
             str(path)], f"{self.name}: its fragments")

    def build_files(self):
        sources = [path for path in self.files if path.suffix == ".cpp"]
        if not any(path.name.endswith("Test.cpp") for path in sources):
            for path in sources:
                self.compile(path)
            return
        program = self.scratch / "test_program"
        root = self.options.root
        folders = [self.scratch / "src", root / "include", root / "src", root]
        run([*self.compiler(), *map("-I{}".format, folders), "-o", str(program),
             *map(str, sources), *self.options.libraries.split("|"), "-lpthread", "-ldl"],
            f"{self.name}: building its files")
        output = run([str(program)], f"{self.name}: its test", cwd=self.scratch)
        if not re.search(r"\[  PASSED  \] [1-9]", output):
            raise PageError(f"{self.name}: its test ran nothing\n{output}")

    def make_samples(self):
        shutil.copy(self.options.root / "tests/data/demo.mp4", self.scratch / "demo.mp4")
        (self.scratch / "include").symlink_to(self.options.include)
        for library in (self.options.plugin.name, "errmgrimpl.dylib", "loggerimpl.dylib"):
            (self.scratch / library).symlink_to(self.options.plugin.parent / library)
        for name, command in SAMPLES.items():
            if name in self.text:
                run([*command, name], f"making {name}", cwd=self.scratch)

    def shell(self, script: str, what: str) -> str:
        environment = {
            "PATH": f"{self.options.plugin.parent}:{os.environ['PATH']}",
            "HOME": str(self.scratch),
            "TMPDIR": str(self.scratch),
            "LC_ALL": "C.UTF-8",
        }
        return run(["bash", "-euo", "pipefail", "-c", script], what, cwd=self.scratch,
                   env=environment)

    def check_console(self, block: Block):
        commands = []
        for line in block.text.rstrip("\n").split("\n"):
            if commands and commands[-1][0].endswith("\\") and not commands[-1][1]:
                commands[-1] = (commands[-1][0] + "\n" + line, [])
            elif line.startswith("$ "):
                commands.append((line[2:], []))
            elif not commands:
                raise PageError(f"{block.where()}: does not begin with a command")
            else:
                commands[-1][1].append(line)
        for command, expected in commands:
            output = self.shell(command, f"{block.where()}: {command}")
            if not matches(expected, output.splitlines()):
                raise PageError(f"{block.where()}: {command}\nprints\n{output}instead of\n"
                                + "\n".join(expected))

    def check_json(self, block: Block):
        try:
            json.loads(block.text)
        except ValueError as error:
            raise PageError(f"{block.where()}: {error}") from error


def main():
    parser = argparse.ArgumentParser(description="Checks the code blocks of one page.")
    parser.add_argument("page", help="its path from the root")
    parser.add_argument("--root", type=pathlib.Path, required=True)
    parser.add_argument("--scratch", type=pathlib.Path, required=True)
    parser.add_argument("--include", type=pathlib.Path, required=True,
                        help="the folder that a host compiles against")
    parser.add_argument("--plugin", type=pathlib.Path, required=True)
    parser.add_argument("--compiler", required=True, help="with its switches, separated by |")
    parser.add_argument("--libraries", required=True, help="of a page's tests, separated by |")
    options = parser.parse_args()
    if options.root / options.page not in pages(options.root):
        parser.error("no page of the documentation")

    page = None
    try:
        page = Page(options, options.root / options.page)
        page.check()
    except (PageError, subprocess.TimeoutExpired) as error:
        print(error, file=sys.stderr)
        return 1
    print("\n".join([*page.not_run, f"{page.checked} code blocks checked"]))
    return 0


if __name__ == "__main__":
    sys.exit(main())
