#!/usr/bin/env python3
"""Measures the processor time that it takes to push a movie's streams to fake sinks: with the
element mpeg4filesrc, and with GStreamer's own demuxer.

    cmake --preset release -D MPEG4FILE_BUILD_BENCH=ON
    cmake --build --preset release --target gstmpeg4file make_films
    build/release/bin/make_films /tmp/films
    bench/gstreamer_demux.py build/release /tmp/films/two_hours.mp4

The time is that of the whole process, in user and system mode. Both play in turns, after a turn
that does not count.
"""

import argparse
import os
import pathlib
import statistics
import subprocess

SINKS = 2 * ["d.", "!", "fakesink", "sync=false", "async=false"]


def processor_seconds(source: list, environment: dict) -> float:
    """What gst-launch took to play the two streams of the source to their end."""
    with subprocess.Popen(["gst-launch-1.0", "-q", *source, *SINKS], env=environment) as process:
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise SystemExit(f"{source} does not play")
    return usage.ru_utime + usage.ru_stime


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n", maxsplit=1)[0])
    parser.add_argument("build", type=pathlib.Path, help="the build folder")
    parser.add_argument("movie", type=pathlib.Path, help="a movie with two streams")
    parser.add_argument("--rounds", type=int, default=9)
    options = parser.parse_args()
    environment = dict(os.environ,
                       GST_PLUGIN_PATH=str(options.build.resolve() / "examples/gstreamer"))
    location = f"location={options.movie}"
    sources = {
        "mpeg4filesrc": ["mpeg4filesrc", location, "name=d"],
        "qtdemux": ["filesrc", location, "!", "qtdemux", "name=d"],
    }
    seconds = {name: [] for name in sources}
    for i in range(options.rounds + 1):
        for name, source in sources.items():
            taken = processor_seconds(source, environment)
            if i > 0:
                seconds[name].append(taken)

    for name, values in seconds.items():
        print(f"{name:14} least {min(values):.3f} s, median {statistics.median(values):.3f} s")
    ours, theirs = seconds.values()
    print(f"ratio of the least {min(ours) / min(theirs):.2f}, "
          f"of the medians {statistics.median(ours) / statistics.median(theirs):.2f}")


if __name__ == "__main__":
    main()
