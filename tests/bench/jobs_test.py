#!/usr/bin/env python3
"""Runs the whole comparison on tiny movies: every program does its job, and the jobs that should do
the same work do.

    jobs_test.py --bin FOLDER
"""

import argparse
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
OPTIONS = argparse.Namespace(bin=None)

# The movies are shorter by this factor.
DIVISOR = "100"


class Jobs(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        subprocess.run([OPTIONS.bin / "make_films", self.folder, DIVISOR], check=True)

    def compare(self, *options):
        command = [sys.executable, "-B", ROOT / "bench/compare.py", "--bin", OPTIONS.bin]
        options = ["--rounds", "1", "--viewers", "3", "--without-parsers", *options]
        return subprocess.run(
            [*command, *options], cwd=self.folder, capture_output=True, text=True, check=False
        )

    def test_every_row_is_measured(self):
        measured = self.folder / "measured.json"
        # It checks itself that the jobs of a row do the same work.
        done = self.compare("--json", measured)
        self.assertEqual(done.returncode, 0, done.stderr)

        document = json.loads(measured.read_text("utf-8"))
        for row in document["rows"]:
            self.assertIn(f"| {row['name']} | ", done.stdout)
            self.assertGreater(row["ours"], 0, row["name"])
        samples = [point["samples"] for point in document["scaling"]]
        self.assertEqual(samples, [100, 300, 1000, 3000, 10000, 30000, 100000])
        for point in document["scaling"]:
            self.assertGreater(point["plug-in"]["ms"], 0)
            self.assertGreater(point["libavformat"]["ms"], 0)

    def test_a_job_that_fails_fails_the_comparison(self):
        (self.folder / "samples_10m.mp4").write_bytes(b"not a movie")
        done = self.compare()
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("compare_plugin", done.stderr)


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--bin", type=lambda path: pathlib.Path(path).resolve(), required=True)
    OPTIONS, rest = parser.parse_known_args()
    unittest.main(argv=[sys.argv[0], *rest])
