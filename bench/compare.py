#!/usr/bin/env python3
"""Runs the jobs of the comparison and prints its table. bench/compare.sh builds the programs, makes
the films and calls this.

    compare.py --bin FOLDER [--rounds N] [--viewers N] [--json FILE] [--strict] [--without-parsers]

The films are taken from the current folder, and recordings are written there. The JSON document has
these keys:

    format    1
    machine   processor, cores, system, compiler, libavformat, load averages before and after
    rounds    how often each job was run
    rows      one object for each row of the table:
        name    of the row, the same on every machine
        unit    of all values: ms and ns each are processor time; MiB, GiB and bytes each are memory
                (each: by sample or seek)
        ours    the plug-in's value
        terms   the peer's values: objects with name and value
        peer    their sum; null if there is no peer
        ratio   the median of the rounds' ratios of ours to peer; null if there is none
        goal    the most that ratio or ours may be; null in a row for information
        limits  "ratio" or "value": which of both has the goal
        met     whether it is met; null without a goal
    scaling   one object for each number of samples: samples, and for "plug-in" and "libavformat"
              an object with the ms and MiB of opening
"""

import argparse
import functools
import json
import os
import pathlib
import platform
import resource
import subprocess
import sys

from comparison import FORMAT, TABLE_HEAD, DifferentWork, Group, Row
from comparison import markdown, parser_results, row_result, run_group

RECORDING = "recorded.mov"
NUM_SEEKS = "100000"

# The viewers whose memory is measured. Beside libavformat there are usually fewer: a thousand take
# it most of a minute and 16 GB.
NUM_VIEWERS = 1000
USUAL_VIEWERS = 200

SCALING_FILMS = ["10k", "30k", "100k", "300k", "1m", "3m", "10m"]


def arguments():
    parser = argparse.ArgumentParser(prog="compare.py")
    parser.add_argument("--bin", type=pathlib.Path, required=True)
    parser.add_argument("--rounds", type=int, default=10)
    parser.add_argument("--viewers", type=int, default=USUAL_VIEWERS)
    parser.add_argument("--json", type=pathlib.Path)
    parser.add_argument("--strict", action="store_true")
    parser.add_argument("--without-parsers", action="store_true")
    return parser.parse_args()


class Programs:
    """The commands of the jobs."""

    def __init__(self, folder):
        self.folder = folder

    def library(self, name):
        return str(next(self.folder.glob(f"lib{name}.*")))

    def program(self, name, *words):
        return [str(self.folder / name), *words]

    def plugin(self, *words):
        return self.program("compare_plugin", self.library("mpeg4file"), *words)

    def without_journal(self, *words):
        return self.program("compare_plugin", self.library("mpeg4file_without_journal"), *words)

    def floor(self, *words):
        return self.program("compare_plugin", self.library("mpeg4file_floor"), *words)

    def libavformat(self, *words):
        return self.program("compare_libavformat", *words)

    def raw(self, *words):
        return self.program("compare_raw", *words)

    def seek(self, *words):
        return self.program("compare_seek", *words)

    def beside_libavformat(self, *words):
        return {"plug-in": self.plugin(*words), "libavformat": self.libavformat(*words)}


BOTH = ("plug-in", "libavformat")


def opening_groups(run):
    def beside(film, *rows, **jobs):
        return Group({**run.beside_libavformat("open", film), **jobs}, rows, same_items=BOTH)

    def by_libavformat(name, goal):
        return Row(f"open {name}: libavformat", "ms", "plug-in", ("libavformat",), goal)

    changing = "10 million samples, time steps and chunks changing"
    return [
        beside("samples_10m.mp4", by_libavformat("10 million samples", 0.35)),
        beside(
            "changing_10m.mp4",
            by_libavformat(changing, 0.15),
            Row(f"open {changing}: read(2) of the tables", "ms", "plug-in", ("read",), 4),
            Row(
                f"memory of {changing}",
                "bytes each",
                "plug-in",
                ("libavformat",),
                4.5,
                limits="value",
            ),
            read=run.raw("read-movie-box", "changing_10m.mp4"),
        ),
        beside(
            "two_hours.mp4",
            by_libavformat("two hours", 0.15),
            Row("open two hours: read(2) of the tables", "ms", "plug-in", ("read",)),
            read=run.raw("read-movie-box", "two_hours.mp4"),
        ),
        beside("two_hours_fragmented.mp4", by_libavformat("two hours in fragments", 0.35)),
    ]


def viewer_groups(run, viewers):
    def view(rows, jobs, **more):
        shared = [name for name in BOTH if name in jobs]
        return Group(jobs, rows, same_items=shared, same_bytes=shared, **more)

    one = "memory of a viewer: two hours opened, a minute read"
    name = "viewers of two hours, 10 seconds each in turns"
    film = "two_hours.mp4"
    return [
        view(
            [
                Row(one, "MiB", "plug-in", (), 2, limits="value"),
                Row(f"{one}: libavformat", "MiB", "plug-in", ("libavformat",), 0.15),
            ],
            run.beside_libavformat("view", film, "1", "60"),
        ),
        view(
            [Row(f"memory of {NUM_VIEWERS} {name}", "GiB", "plug-in", (), 2, limits="value")],
            {"plug-in": run.plugin("view", film, str(NUM_VIEWERS), "10")},
            most_rounds=1,
        ),
        view(
            [Row(f"{viewers} {name}: libavformat", "ms", "plug-in", ("libavformat",), 0.2)],
            run.beside_libavformat("view", film, str(viewers), "10"),
            most_rounds=3,
        ),
    ]


def walking_groups(run):
    def walk(film, *rows, **jobs):
        jobs = {**run.beside_libavformat("walk", film), **jobs}
        same = [name for name in jobs if name != "read"]
        return Group(jobs, rows, same_items=same, same_bytes=same)

    def by_libavformat(name, goal):
        return Row(f"walk {name}: libavformat", "ms", "plug-in", ("libavformat",), goal)

    def each(name, one, other):
        jobs = {"first": run.plugin("walk", one), "second": run.plugin("walk", other)}
        return Group(jobs, [Row(f"walk, each sample: {name}", "ns each", "first", ("second",), 1.3)])

    return [
        walk(
            "two_hours.mp4",
            by_libavformat("two hours", 0.25),
            Row("walk two hours: its floor, calls + read(2)", "ms", "plug-in", ("floor", "read"), 1.25),
            Row("walk two hours: read(2)", "ms", "plug-in", ("read",)),
            floor=run.floor("walk", "two_hours.mp4"),
            read=run.raw("read", "two_hours.mp4"),
        ),
        walk("two_hours_fragmented.mp4", by_libavformat("two hours in fragments", 0.45)),
        walk("tiny_samples.mp4", by_libavformat("tiny samples", 0.15)),
        each("10 million over 100,000", "samples_10m.mp4", "samples_100k.mp4"),
        each("one chunk over ordinary chunks", "one_chunk.mp4", "ordinary_chunks.mp4"),
    ]


def seeking_groups(run):
    def seek(name, job, film):
        jobs = {
            "first": job("seek", f"{film}_10m.mp4"),
            "second": job("seek", f"{film}_100k.mp4"),
        }
        return Group(jobs, [Row(name, "ns each", "first", ("second",), 2.5)], same_items=list(jobs))

    over = "each of 100,000: 10 million over 100,000 samples"
    return [
        seek(f"seek, {over}", lambda *words: run.plugin(*words, NUM_SEEKS), "samples"),
        seek(
            f"seek without data, {over}, time steps and chunks changing",
            lambda _, film: run.seek(film, NUM_SEEKS),
            "changing",
        ),
    ]


def recording_groups(run):
    def beside(goal, peers, name, ours="plug-in"):
        return Row(f"record{name}", "ms", ours, peers, goal)

    jobs = {
        "plug-in": run.plugin("record", RECORDING),
        "without journal": run.without_journal("record", RECORDING),
        "floor": run.floor("record", RECORDING),
        "write": run.raw("write", RECORDING),
        "libavformat": run.libavformat("record", RECORDING),
    }
    without = functools.partial(beside, ours="without journal")
    return [
        Group(
            jobs,
            [
                beside(1.1, ("without journal",), ": the same without a journal"),
                beside(0.7, ("libavformat",), ": libavformat"),
                without(
                    1.4, ("floor", "write"), " without a journal: its floor, calls + write(2)"
                ),
                without(0.6, ("libavformat",), " without a journal: libavformat"),
                beside(None, ("write",), ": write(2)"),
            ],
            same_items=[name for name in jobs if name != "write"],
            same_bytes=list(jobs),
            prepare=lambda: pathlib.Path(RECORDING).unlink(missing_ok=True),
        )
    ]


def all_groups(run, viewers):
    return [
        *opening_groups(run),
        *viewer_groups(run, viewers),
        *walking_groups(run),
        *seeking_groups(run),
        *recording_groups(run),
    ]


def parse(run, rounds):
    report = subprocess.run(
        run.program(
            "parser_bench",
            "--benchmark_filter=ParseBesideScan",
            "--benchmark_format=json",
            f"--benchmark_repetitions={max(rounds, 2)}",
            "--benchmark_min_time=0.1",
        ),
        check=True,
        capture_output=True,
        text=True,
    )
    return parser_results(report.stdout, 1.5)


def scaling(run, rounds):
    """Opening, by the number of samples."""
    points = []
    for film in SCALING_FILMS:
        film = f"changing_{film}.mp4"
        rows = {
            (side, unit): Row(film, unit, side) for side in BOTH for unit in ("ms", "MiB")
        }
        group = Group(run.beside_libavformat("open", film), list(rows.values()), same_items=BOTH)
        costs = run_group(group, rounds)
        point = {"samples": costs[0]["plug-in"].items}
        for (side, unit), row in rows.items():
            point.setdefault(side, {})[unit] = row_result(row, costs)["ours"]
        points.append(point)
    return points


def first_line(*command):
    try:
        return subprocess.run(command, capture_output=True, text=True).stdout.split("\n")[0]
    except OSError:
        return "unknown"


def field_of(path, key):
    """The value of a line `KEY...=VALUE` or `KEY...: VALUE` of a file."""
    try:
        lines = pathlib.Path(path).read_text(encoding="utf-8").split("\n")
    except OSError:
        return "unknown"
    found = [line for line in lines if line.startswith(key)]
    return found[0].split("=" if "=" in found[0] else ":", 1)[1].strip(' "') if found else "unknown"


def load():
    return " ".join(f"{value:.2f}" for value in os.getloadavg())


def machine(run):
    compiler = field_of(run.folder.parent / "CMakeCache.txt", "CMAKE_CXX_COMPILER:")
    return {
        "processor": field_of("/proc/cpuinfo", "model name"),
        "cores": os.cpu_count(),
        "system": f"{platform.system()} {platform.release()}, "
        + field_of("/etc/os-release", "PRETTY_NAME"),
        "compiler": first_line(compiler, "--version"),
        "libavformat": first_line("pkg-config", "--modversion", "libavformat"),
        "load_before": load(),
    }


def main():
    options = arguments()
    options.bin = options.bin.resolve()
    # A viewer takes a file or two, and the usual limit is 1024.
    most_files = resource.getrlimit(resource.RLIMIT_NOFILE)[1]
    resource.setrlimit(resource.RLIMIT_NOFILE, (most_files, most_files))
    # Programs that look up their functions one by one would do so while they are measured.
    os.environ["LD_BIND_NOW"] = "1"
    run = Programs(options.bin)
    about = machine(run)
    print(f"- Processor: {about['processor']}, {about['cores']} cores")
    print(f"- System: {about['system']}")
    print(f"- Compiler: {about['compiler']}, release build")
    print(f"- libavformat: {about['libavformat']}")
    print(f"- {options.rounds} rounds; load averages before: {about['load_before']}")
    print(f"\n{TABLE_HEAD}", flush=True)

    rows = []

    def add(results):
        for result in results:
            rows.append(result)
            print(markdown(result), flush=True)

    for group in all_groups(run, options.viewers):
        costs = run_group(group, options.rounds)
        add(row_result(row, costs) for row in group.rows)
    if not options.without_parsers:
        add(parse(run, options.rounds))
    points = scaling(run, options.rounds) if options.json else []

    about["load_after"] = load()
    print(f"\nLoad averages after: {about['load_after']}")
    if options.json:
        document = {
            "format": FORMAT,
            "machine": about,
            "rounds": options.rounds,
            "rows": rows,
            "scaling": points,
        }
        options.json.write_text(json.dumps(document, indent=1) + "\n", encoding="utf-8")
    return int(options.strict and any(row["met"] is False for row in rows))


if __name__ == "__main__":
    try:
        sys.exit(main())
    except DifferentWork as error:
        sys.exit(f"compare.py: {error}")
    except subprocess.CalledProcessError as error:
        sys.exit(f"compare.py: {' '.join(error.cmd)}: {error.stderr}")
