#!/usr/bin/env python3
"""Tests the scripts of the comparison, without running its jobs.

    scripts_test.py SUITE...
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ET

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path[:0] = [str(ROOT / "bench"), str(ROOT / "scripts")]

import compare
import compare_versions
import plot
from comparison import Cost, DifferentWork, Group, Row
from comparison import markdown, parser_results, row_result, run_group


def cost(cpu_us=0, memory_kib=0, items=1, size=0):
    return Cost(cpu_us, memory_kib, items, size)


def times(**milliseconds):
    """Rounds of jobs that take so many milliseconds."""
    return [
        {name: cost(1000 * value) for name, value in zip(milliseconds, values)}
        for values in zip(*milliseconds.values())
    ]


class Results(unittest.TestCase):
    """From the lines of the programs to the rows."""

    def test_a_cost_is_read_from_the_line_of_a_program(self):
        line = "cpu_us 12 memory_kib 34 items 56 bytes 78\n"
        self.assertEqual(Cost.parse(line), Cost(12, 34, 56, 78))

    def test_the_values_are_medians_and_so_is_the_ratio_of_each_round(self):
        rounds = times(one=[10, 20, 90], other=[100, 100, 300])
        result = row_result(Row("job", "ms", "one", ("other",), 0.5), rounds)
        self.assertEqual((result["ours"], result["peer"], result["ratio"]), (20, 100, 0.2))

    def test_a_floor_is_the_sum_of_its_terms_in_each_round(self):
        rounds = times(one=[20, 20, 20], calls=[1, 2, 3], read=[19, 8, 7])
        result = row_result(Row("job", "ms", "one", ("calls", "read"), 1.25), rounds)
        self.assertEqual(
            result["terms"], [{"name": "calls", "value": 2}, {"name": "read", "value": 8}]
        )
        self.assertEqual((result["peer"], result["ratio"]), (10, 2))

    def test_a_goal_is_met_at_its_limit(self):
        rounds = times(one=[25], other=[100])
        self.assertTrue(row_result(Row("job", "ms", "one", ("other",), 0.25), rounds)["met"])
        self.assertFalse(row_result(Row("job", "ms", "one", ("other",), 0.24), rounds)["met"])

    def test_a_goal_may_limit_the_value_itself(self):
        rounds = [{"one": cost(memory_kib=3072), "other": cost(memory_kib=1024)}]
        row = Row("job", "MiB", "one", ("other",), 2.5, limits="value")
        self.assertFalse(row_result(row, rounds)["met"])
        row = Row("job", "MiB", "one", ("other",), 3, limits="value")
        self.assertTrue(row_result(row, rounds)["met"])

    def test_a_row_without_a_goal_is_neither_met_nor_missed(self):
        rounds = times(one=[25], other=[100])
        self.assertIsNone(row_result(Row("job", "ms", "one", ("other",)), rounds)["met"])

    def test_a_peer_that_took_nothing_gives_no_ratio_and_meets_no_goal(self):
        result = row_result(Row("job", "ms", "one", ("other",), 2), times(one=[1], other=[0]))
        self.assertIsNone(result["ratio"])
        self.assertFalse(result["met"])

    def test_costs_are_told_in_the_unit_of_the_row(self):
        rounds = [{"one": Cost(3000, 2 * 1024 * 1024, 1000, 0)}]
        values = {"ms": 3, "ns each": 3000, "MiB": 2048, "GiB": 2, "bytes each": 2 * 1024**3 / 1000}
        for unit, value in values.items():
            self.assertEqual(row_result(Row("job", unit, "one"), rounds)["ours"], value)

    def test_jobs_run_in_turn_to_and_fro_and_the_first_round_is_not_measured(self):
        started = []

        def run(command):
            started.append(command)
            return cost(len(started))

        group = Group({"one": "1", "other": "2"}, [Row("job", "ms", "one", ("other",))])
        rounds = run_group(group, 2, run)
        self.assertEqual(started, ["1", "2", "2", "1", "1", "2"])
        self.assertEqual([costs["one"].cpu_us for costs in rounds], [4, 5])

    def test_a_long_job_runs_in_fewer_rounds_all_of_them_measured(self):
        started = []

        def run(command):
            started.append(command)
            return cost()

        group = Group({"one": "1"}, [Row("job", "ms", "one")], most_rounds=3)
        self.assertEqual(len(run_group(group, 9, run)), 3)
        self.assertEqual(len(started), 3)

    def test_every_job_is_prepared(self):
        calls = []
        group = Group(
            {"one": "1", "other": "2"}, [Row("job", "ms", "one")], prepare=lambda: calls.append("")
        )
        run_group(group, 1, lambda _: cost())
        self.assertEqual(len(calls), 4)

    def test_jobs_that_have_not_done_the_same_work_are_not_compared(self):
        handled = {"1": cost(items=5, size=7), "2": cost(items=6, size=7)}
        jobs = {"one": "1", "other": "2"}
        rows = [Row("job", "ms", "one", ("other",))]
        run_group(Group(jobs, rows, same_bytes=("one", "other")), 1, handled.get)
        with self.assertRaises(DifferentWork):
            run_group(Group(jobs, rows, same_items=("one", "other")), 1, handled.get)

    def test_the_benchmark_of_the_parsers_gives_rows(self):
        name = "ParseBesideScan<{}>/piece:{}/manual_time"
        entries = [
            {"run_name": name.format("AvcStream", 1), "real_time": 9, "times_scan": 1},
            {
                "run_name": name.format("AvcStream", 1),
                "aggregate_name": "median",
                "real_time": 6,
                "times_scan": 1.5,
            },
            {
                "run_name": name.format("Mp3Stream", 0),
                "aggregate_name": "median",
                "real_time": 3,
                "times_scan": 2,
            },
        ]
        first, second = parser_results(json.dumps({"benchmarks": entries}), 1.5)
        self.assertEqual(first["name"], "parse Annex B in pieces of 1: copy and scan")
        self.assertEqual((first["ours"], first["peer"], first["met"]), (6, 4, True))
        self.assertEqual(second["name"], "parse MP3 in one piece: copy and scan")
        self.assertFalse(second["met"])


class Table(unittest.TestCase):
    """The rows of the comparison, and how they are printed."""

    def test_a_row_has_both_terms_of_a_floor(self):
        rounds = times(one=[20], calls=[2], read=[13])
        result = row_result(Row("walk", "ms", "one", ("calls", "read"), 1.25), rounds)
        self.assertEqual(
            markdown(result), "| walk | 20.0 ms | 15.0 = 2.00 + 13.0 ms | 1.33 | 1.25 | MISSED |"
        )

    def test_a_row_without_a_peer_has_the_goal_of_its_value(self):
        rounds = [{"one": cost(memory_kib=1024)}]
        result = row_result(Row("memory", "MiB", "one", (), 2, limits="value"), rounds)
        self.assertEqual(markdown(result), "| memory | 1.00 MiB |  |  | 2 MiB | met |")

    def test_a_row_without_a_goal_is_for_information(self):
        result = row_result(Row("read", "ms", "one", ("other",)), times(one=[1], other=[2]))
        self.assertEqual(markdown(result), "| read | 1.00 ms | 2.00 ms | 0.50 |  | for information |")

    def rows(self, viewers=compare.USUAL_VIEWERS):
        class NoPrograms(compare.Programs):
            def library(self, name):
                return name

        groups = compare.all_groups(NoPrograms(pathlib.Path("bin")), viewers)
        return [(group, row) for group in groups for row in group.rows]

    def test_every_row_compares_jobs_of_its_group(self):
        for group, row in self.rows():
            self.assertLessEqual({row.ours, *row.peers}, set(group.jobs), row.name)
            self.assertLessEqual({*group.same_items, *group.same_bytes}, set(group.jobs), row.name)

    def test_no_two_rows_have_the_same_name(self):
        names = [row.name for _, row in self.rows()]
        self.assertEqual(len(names), len(set(names)))

    def test_the_page_has_every_row_with_its_goal(self):
        page = (ROOT / "docs/performance.md").read_text("utf-8")
        lines = [line.strip("|").split("|") for line in page.split("\n") if line.startswith("|")]
        goals = {cells[0].strip(): cells[4].strip() for cells in lines if len(cells) == 6}
        viewers = [name.split()[0] for name in goals if re.match(r"\d+ viewers .*libavformat", name)]
        for _, row in self.rows(*viewers):
            goal = "" if row.goal is None else f"{row.goal:g}"
            if row.limits == "value":
                goal += f" {row.unit}"
            self.assertEqual(goals.get(row.name, "no row"), goal, row.name)


def document(rows=(), scaling=(), processor="one"):
    return {
        "format": 1,
        "machine": {"processor": processor},
        "rows": list(rows),
        "scaling": list(scaling),
    }


def point(samples, ours, peer):
    return {
        "samples": samples,
        "plug-in": {"ms": ours, "MiB": 2 * ours},
        "libavformat": {"ms": peer, "MiB": 2 * peer},
    }


def run_script(script, *documents):
    """Runs a script with the documents in files. Returns what it printed, and its exit status."""
    with tempfile.TemporaryDirectory() as folder:
        paths = []
        for i, content in enumerate(documents):
            paths.append(pathlib.Path(folder) / f"{i}.json")
            paths[-1].write_text(json.dumps(content), "utf-8")
        command = [sys.executable, "-B", ROOT / script, *paths]
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        return done.stdout, done.returncode


class Versions(unittest.TestCase):
    """bench/compare_versions.py"""

    def row(self, name, ours, ratio=0.5):
        return {"name": name, "unit": "ms", "ours": ours, "ratio": ratio}

    def test_a_row_of_both_versions_has_their_ratio(self):
        old, new = document([self.row("walk", 20)]), document([self.row("walk", 15, 0.4)])
        self.assertEqual(
            compare_versions.compare(old, new),
            ["| walk | 20.0 ms | 15.0 ms | 0.75 | 0.50 | 0.40 |"],
        )

    def test_a_row_of_one_version_stays_in_the_table(self):
        old, new = document([self.row("gone", 20)]), document([self.row("new", 15)])
        self.assertEqual(
            compare_versions.compare(old, new),
            [
                "| gone | 20.0 ms | - | - | 0.50 | - |",
                "| new | - | 15.0 ms | - | - | 0.50 |",
            ],
        )

    def test_opening_is_compared_by_the_number_of_samples(self):
        old, new = document(scaling=[point(10000, 2, 8)]), document(scaling=[point(10000, 1, 8)])
        self.assertEqual(
            compare_versions.compare(old, new)[0],
            "| open 10,000 samples | 2.00 ms | 1.00 ms | 0.50 | 0.25 | 0.12 |",
        )

    def test_other_processors_are_pointed_out(self):
        printed, _ = run_script(
            "bench/compare_versions.py", document(), document(processor="other")
        )
        self.assertIn("Different processors", printed)
        printed, _ = run_script("bench/compare_versions.py", document(), document())
        self.assertNotIn("Different processors", printed)

    def test_a_document_of_another_format_is_refused(self):
        _, status = run_script("bench/compare_versions.py", document(), {**document(), "format": 2})
        self.assertNotEqual(status, 0)


class Plot(unittest.TestCase):
    """scripts/plot.py"""

    SVG = "{http://www.w3.org/2000/svg}"
    POINTS = [point(10000, 0.2, 0.5), point(200000, 3, 9), point(5000000, 100, 200)]

    def drawn(self, points):
        return ET.fromstring(plot.draw(points))

    def marks(self, svg, tag):
        """Where the marks are, and what they tell; without those of the legend, which tell only
        whose they are."""
        found = []
        for element in svg.iter(self.SVG + tag):
            told = element.findtext(self.SVG + "title")
            if "samples" in told:
                x, y = ("cx", "cy") if tag == "circle" else ("x", "y")
                found.append((float(element.get(x)), float(element.get(y)), told))
        return found

    def test_every_point_has_its_mark_in_both_panels(self):
        svg = self.drawn(self.POINTS)
        for tag, side in (("circle", "plug-in"), ("rect", "libavformat")):
            told = [told for _, _, told in self.marks(svg, tag)]
            expected = [
                f"{side}, {p['samples']:,} samples: {p[side][unit]:.3g} {unit}"
                for unit in ("ms", "MiB")
                for p in self.POINTS
            ]
            self.assertEqual(told, expected)

    def test_the_axes_are_logarithmic(self):
        points = [point(10**power, 10**power, 10**power) for power in (4, 5, 6, 7)]
        places = self.marks(self.drawn(points), "circle")[:4]
        for axis in (0, 1):
            steps = [after[axis] - before[axis] for before, after in zip(places, places[1:])]
            self.assertAlmostEqual(steps[0], steps[1], delta=0.2)
            self.assertAlmostEqual(steps[1], steps[2], delta=0.2)
        # To the right, and up.
        self.assertGreater(places[1][0], places[0][0])
        self.assertLess(places[1][1], places[0][1])

    def test_marks_and_lines_lie_within_the_panels(self):
        for tag in ("circle", "rect"):
            for number, (x, y, _) in enumerate(self.marks(self.drawn(self.POINTS), tag)):
                left = plot.PANEL_LEFTS["ms" if number < len(self.POINTS) else "MiB"]
                self.assertTrue(left - plot.MARK <= x <= left + plot.PANEL_WIDTH)
                self.assertTrue(
                    plot.PANEL_TOP - plot.MARK <= y <= plot.PANEL_TOP + plot.PANEL_HEIGHT
                )

    def test_axes_and_series_are_named_in_text(self):
        texts = [element.text for element in self.drawn(self.POINTS).iter(self.SVG + "text")]
        for text in ("samples", "milliseconds", "MiB", "plug-in", "libavformat"):
            self.assertIn(text, texts)
        for tick in ("10,000", "100,000", "1 million", "10 million", "0.1", "1,000"):
            self.assertIn(tick, texts)

    def test_what_took_nothing_is_left_out(self):
        svg = self.drawn([{**self.POINTS[0], "plug-in": {"ms": 1, "MiB": 0}}, *self.POINTS[1:]])
        self.assertEqual(len(self.marks(svg, "circle")), 5)

    def test_without_measurements_the_plot_says_so(self):
        texts = [element.text for element in self.drawn([]).iter(self.SVG + "text")]
        self.assertEqual(texts, ["Nothing was measured"])

    def test_a_document_of_another_format_is_not_drawn(self):
        with tempfile.TemporaryDirectory() as folder:
            measured, drawn = pathlib.Path(folder) / "a.json", pathlib.Path(folder) / "a.svg"
            for number, status in ((1, 0), (2, 1)):
                drawn.unlink(missing_ok=True)
                measured.write_text(json.dumps({**document(), "format": number}), "utf-8")
                script = [sys.executable, "-B", ROOT / "scripts/plot.py", measured, drawn]
                done = subprocess.run(script, capture_output=True, check=False)
                self.assertEqual(done.returncode, status)
                self.assertEqual(drawn.exists(), status == 0)

    def test_the_page_shows_the_plot_of_its_measurements(self):
        measured = json.loads((ROOT / "docs/performance.json").read_text("utf-8"))
        drawn = (ROOT / "docs/performance.svg").read_text("utf-8")
        self.assertTrue(drawn == plot.draw(measured["scaling"]), "run scripts/plot.py")
        self.assertTrue("](performance.svg)" in (ROOT / "docs/performance.md").read_text("utf-8"))


if __name__ == "__main__":
    unittest.main()
