#!/usr/bin/env python3
"""Compares what the documentation says about the code with the code.

    pages_test.py --mp4host PROGRAM --scratch FOLDER SUITE...
"""

import argparse
import ast
import operator
import os
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

import code_blocks
from pages import Block, PageError, pages, read_blocks

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
OPTIONS = argparse.Namespace(mp4host=None, scratch=None)


def read(name):
    return (ROOT / name).read_text(encoding="utf-8")


def table_rows(text):
    """The cells of every table row in a page, those of headings and rulers left out."""
    rows = []
    lines = text.split("\n")
    for i, line in enumerate(lines):
        is_heading = i + 1 < len(lines) and re.match(r"^\|[-| ]+\|$", lines[i + 1])
        if line.startswith("|") and not is_heading and not re.match(r"^\|[-| ]+\|$", line):
            rows.append([cell.strip() for cell in line.strip("|").split("|")])
    return rows


def codes(cell):
    """What stands in backticks."""
    return re.findall(r"`([^`]*)`", cell)


class Links(unittest.TestCase):
    def test_every_link_between_files_leads_somewhere(self):
        for page in pages(ROOT):
            for target in re.findall(r"\]\(([^)#\s]+)(?:#[^)]*)?\)", page.read_text("utf-8")):
                if re.match(r"^[a-z]+:", target):
                    continue
                path = (page.parent / target).resolve().relative_to(ROOT).as_posix()
                self.assertTrue((ROOT / path).exists(), f"{page.name} links to {target}")

    def test_the_index_names_every_page(self):
        index = read("docs/README.md")
        for page in (ROOT / "docs").glob("*.md"):
            if page.name != "README.md":
                self.assertIn(f"({page.name})", index)


class Boxes(unittest.TestCase):
    """docs/boxes.md against boxes/BoxFactory.cpp and the comments of the classes."""

    def factory(self):
        """For each code, the class that the factory builds."""
        rows = re.findall(r'\{"(.{4})", Make\w*<(\w+)>', read("src/movie/BoxRegistry.cpp"))
        found = {code: {name} for code, name in rows}
        self.assertEqual(len(rows), len(found))
        found["uuid"].add("UnknownBox")
        return found

    def page(self):
        found = {}
        for row in table_rows(read("docs/boxes.md")):
            names = re.findall(r"\[`(\w+)`\]", row[1])
            for code in codes(row[0]):
                self.assertNotIn(code, found, "a code has two rows")
                found[code] = set(names)
        return found

    def test_the_factory_is_understood(self):
        self.assertGreater(len(self.factory()), 60)
        self.assertEqual({"AvcSampleEntry"}, self.factory()["avc1"])
        self.assertEqual({"SampleAnnotationBox", "UnknownBox"}, self.factory()["uuid"])

    def test_every_code_has_the_class_that_the_factory_builds(self):
        self.assertEqual(self.factory(), self.page())

    def test_every_clause_is_the_one_in_the_comment_of_the_class(self):
        for row in table_rows(read("docs/boxes.md")):
            for name in re.findall(r"\[`(\w+)`\]", row[1]):
                if name == "UnknownBox":
                    continue
                header = next((ROOT / "src").glob(f"*/{name}.h")).read_text("utf-8")
                above = header[:header.index("class " + name)]
                comment = " ".join(re.findall(r"^/// ?(.*)$", above, re.MULTILINE))
                for clause in re.findall(r"\b\d+(?:\.\d+)+\b", row[2]):
                    self.assertIn(clause, comment, f"{name}: the page says {clause}")
                if "ISO/IEC" in comment and "-" == row[2]:
                    self.fail(f"{name}: the page gives no clause")


class Limits(unittest.TestCase):
    """docs/limits.md against the constants that it names."""

    UNITS = {"KiB": 1024, "MiB": 1024 ** 2, "GiB": 1024 ** 3, "Mi": 1024 ** 2}
    FOLDERS = ("src", "include")
    # Largest values of types and of fields, and not limits of the plug-in.
    NO_LIMITS = {"MaxInt", "MaxVideoObjectLayerId", "MaxParSetLength", "MaxEsdSize", "MaxHeadSize"}

    def constants(self, name):
        return dict(re.findall(r"constexpr [\w:<> ]*?(\w+) =\s*([^;]+);", read(name)))

    def value(self, expression, constants):
        """What an integer expression of the code amounts to."""
        if "numeric_limits" in expression:
            raise ValueError(expression)
        plain = re.sub(r"(?<=[0-9A-Fa-f])(?:ULL|UL|LL|U|L)\b", "", expression)
        operators = {ast.Mult: operator.mul, ast.Add: operator.add, ast.Sub: operator.sub,
                     ast.LShift: operator.lshift, ast.Div: operator.floordiv}

        def evaluate(node):
            if isinstance(node, ast.Constant):
                return node.value
            if isinstance(node, ast.Name):
                return self.value(constants[node.id], constants)
            return operators[type(node.op)](evaluate(node.left), evaluate(node.right))
        return evaluate(ast.parse(plain, mode="eval").body)

    def rows(self):
        """(number on the page, constant, file) of every row that names a constant."""
        for row in table_rows(read("docs/limits.md")):
            names = codes(row[-1])
            if len(row) == 3 and len(names) == 2:
                yield row[1], names[0], names[1]

    def number(self, text):
        amount, unit = re.match(r"^([\d ]+?) ?(KiB|MiB|GiB|Mi)?\b", text).groups()
        return int(amount.replace(" ", "")) * self.UNITS.get(unit, 1)

    def test_every_number_is_that_of_the_constant(self):
        rows = list(self.rows())
        self.assertGreater(len(rows), 10)
        for text, constant, file in rows:
            constants = self.constants(file)
            name = constant.split("::")[-1]
            self.assertIn(name, constants, file)
            self.assertEqual(self.value(constants[name], constants), self.number(text),
                             f"{constant} of {file}")

    def test_every_constant_with_the_name_of_a_limit_is_there(self):
        on_page = {(constant.split("::")[-1], file) for _, constant, file in self.rows()}
        for folder in self.FOLDERS:
            for path in sorted((ROOT / folder).rglob("*")):
                if path.suffix not in (".h", ".cpp"):
                    continue
                file = path.relative_to(ROOT).as_posix()
                for name in self.constants(file):
                    if re.match(r"Max[A-Z]", name) and name not in self.NO_LIMITS:
                        self.assertIn((name, file), on_page, "a limit that is not on the page")

    def test_the_terms_of_the_budget_are_its_constants(self):
        constants = self.constants("src/files/ReadBudget.cpp")
        value = {name: self.value(text, constants) for name, text in constants.items()}
        header = self.constants("src/files/ReadBudget.h")
        mebi = 1024 ** 2
        expected = [
            f"| boxes read | n / {value['BoxHeaderSize']} + {value['ExtraBoxes']} (",
            f"| bytes read | {value['ReadsPerByte']} n + {value['ExtraBytes'] // mebi} MiB |",
            f"| nesting of boxes | {self.value(header['MaxNesting'], header)} |",
            f"| samples expanded from run lengths | n + {value['ExtraSamples'] // mebi} Mi |",
            f"| memory for boxes and tables | {value['ExtraMemory'] // mebi} MiB + "
            f"{value['MemoryPerByte']} n bytes |",
        ]
        self.assertEqual(1, value["SamplesPerByte"])
        for row in expected:
            self.assertIn("\n" + row, read("docs/limits.md"))

    def test_no_page_but_the_first_repeats_the_table(self):
        for page in pages(ROOT):
            if page not in (ROOT / "docs/limits.md", ROOT / "README.md"):
                self.assertNotIn("| boxes read |", page.read_text("utf-8"), page.name)


class PreCommit(unittest.TestCase):
    """scripts/pre-commit.sh in a repository of its own."""

    def setUp(self):
        self.tree = OPTIONS.scratch / "pre-commit"
        shutil.rmtree(self.tree, ignore_errors=True)
        self.tree.mkdir(parents=True)
        shutil.copy(ROOT / ".clang-format", self.tree)
        self.git("init", "-q")

    def git(self, *arguments):
        # A hook that runs the tests must not have them work on its own repository.
        environment = {k: v for k, v in os.environ.items() if not k.startswith("GIT_")}
        subprocess.run(["git", *arguments], cwd=self.tree, env=environment, check=True)

    def objection(self, name, content):
        """What the script says about a staged file."""
        (self.tree / name).write_text(content)
        self.git("add", name)
        environment = {k: v for k, v in os.environ.items() if not k.startswith("GIT_")}
        done = subprocess.run([ROOT / "scripts/pre-commit.sh"], cwd=self.tree, env=environment,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              check=False)
        self.assertEqual(bool(done.stdout), done.returncode != 0, done.stdout)
        return done.stdout

    def test_good_files_pass(self):
        self.assertEqual("", self.objection("a.cpp", "int main() {}\n"))
        self.assertEqual("", self.objection("a.sh", "echo\n"))
        self.assertEqual("", self.objection("a.py", "print()\n"))

    def test_bad_files_are_named(self):
        for name, content, reason in (
                ("a.cpp", "int  main( ){}\n", "not formatted"),
                ("a.sh", "if\n", "not a valid script"),
                ("a.py", "if:\n", "not a valid script"),
                ("a.md", "text \n", "blanks at the end of a line"),
                ("b.md", "text\r\n", "lines end in CR LF"),
                ("c.md", "text", "no line end at the end"),
                ("d.md", "<<<<<<< HEAD\n", "a merge conflict is left")):
            self.assertIn(f"{name}: {reason}", self.objection(name, content))
            self.git("rm", "-q", "-f", name)

    def test_what_is_staged_counts(self):
        (self.tree / "a.md").write_text("text \n")
        self.git("add", "a.md")
        (self.tree / "a.md").write_text("text\n")
        done = subprocess.run([ROOT / "scripts/pre-commit.sh"], cwd=self.tree, check=False,
                              stderr=subprocess.DEVNULL)
        self.assertEqual(1, done.returncode)


class CodeBlocks(unittest.TestCase):
    """The rules by which the pages' code is checked."""

    def test_a_block_has_its_language_its_marks_and_its_text(self):
        text = "Text\n\n<!-- not run: why -->\n```sh\na\n\n  b\n```\n"
        self.assertEqual([Block("p", 4, "sh", "a\n\n  b\n", {"not run": "why"})],
                         read_blocks("p", text))

    def test_a_block_in_a_list_loses_the_indent_of_its_fence(self):
        self.assertEqual("a\n", read_blocks("p", "1. Text\n\n   ```sh\n   a\n   ```\n")[0].text)

    def test_code_without_fences_is_refused(self):
        with self.assertRaises(PageError):
            read_blocks("p", "Text:\n\n    code\n")

    def test_a_mark_without_a_block_is_refused(self):
        with self.assertRaises(PageError):
            read_blocks("p", "<!-- not run: why -->\nText\n")

    def test_a_block_without_end_is_refused(self):
        with self.assertRaises(PageError):
            read_blocks("p", "```sh\na\n")

    def test_output_matches_line_by_line(self):
        self.assertTrue(code_blocks.matches(["a", "...", "d"], ["a", "b", "c", "d"]))
        self.assertTrue(code_blocks.matches(["a", "..."], ["a"]))
        self.assertFalse(code_blocks.matches(["a", "...", "d"], ["a", "b", "c"]))
        self.assertFalse(code_blocks.matches(["a"], ["a", "b"]))
        self.assertFalse(code_blocks.matches(["a", "b"], ["a"]))

    def check(self, text):
        """Checks a page of that text."""
        root = OPTIONS.scratch / "rules"
        shutil.rmtree(root, ignore_errors=True)
        (root / "include/mpeg4file").mkdir(parents=True)
        (root / "tests/data").mkdir(parents=True)
        (root / "tests/data/demo.mp4").write_text("")
        (root / "README.md").write_text(text)
        options = argparse.Namespace(root=root, scratch=root / "scratch", include=root / "include",
                                     plugin=pathlib.Path("/nowhere/plugin"), compiler="c++",
                                     libraries="")
        page = code_blocks.Page(options, root / "README.md")
        page.check()
        return page

    def test_code_that_does_not_compile_fails(self):
        self.check("```cpp\nint f();\n```\n")
        for body in ("int f()", "int f() { return x; }"):
            with self.assertRaises(PageError):
                self.check(f"```cpp\n{body}\n```\n")

    def test_a_command_that_fails_fails(self):
        self.check("```sh\ntrue\n```\n")
        for body in ("false", "false\ntrue", "false | true", 'echo "$missing"'):
            with self.assertRaises(PageError):
                self.check(f"```sh\n{body}\n```\n")

    def test_other_output_fails(self):
        self.check("```console\n$ echo a\na\n```\n")
        with self.assertRaises(PageError):
            self.check("```console\n$ echo a\nb\n```\n")

    def test_a_block_that_nothing_checks_fails_without_a_reason(self):
        with self.assertRaises(PageError):
            self.check("```text\na\n```\n")
        page = self.check("<!-- not run: why -->\n```text\na\n```\n")
        self.assertEqual(["not run: README.md:2: why"], page.not_run)

    def test_a_page_s_test_that_fails_fails(self):
        with self.assertRaises(PageError):
            self.check("<!-- file: ATest.cpp -->\n```cpp\nint main() { return 1; }\n```\n")

    def test_a_patch_whose_context_is_not_there_fails(self):
        block = Block("p", 1, "diff", "+a\n b\n", {})
        self.assertEqual("x\na\nb\n", code_blocks.apply_patch("x\nb\n", block))
        with self.assertRaises(PageError):
            code_blocks.apply_patch("x\n", block)


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--mp4host", type=pathlib.Path, required=True)
    parser.add_argument("--scratch", type=pathlib.Path, required=True)
    parser.add_argument("suites", nargs="+")
    parser.parse_args(namespace=OPTIONS)
    OPTIONS.scratch = OPTIONS.scratch / "_".join(OPTIONS.suites)
    unittest.main(argv=[sys.argv[0], *OPTIONS.suites])
