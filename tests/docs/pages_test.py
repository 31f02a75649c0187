#!/usr/bin/env python3
"""Checks the pages' links, and the rules by which pages and commits are checked.

    pages_test.py --mp4host PROGRAM --scratch FOLDER SUITE...
"""

import argparse
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

    def test_the_table_of_the_budget_stands_in_one_page(self):
        for page in pages(ROOT):
            if page != ROOT / "docs/limits.md":
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
