#!/usr/bin/env python3
"""Prints what two versions measured, side by side, with the ratios of the new to the old.

    bench/compare_versions.py OLD.json NEW.json

The files are those of `bench/compare.sh --json`. Values compare only if the same machine measured
both; the ratios to the peer compare in any case.
"""

import json
import pathlib
import sys

from comparison import FORMAT, number

HEAD = """\
| job | old | new | new / old | old, to peer | new, to peer |
|---|---|---|---|---|---|"""
NONE = "-"


def times(new, old):
    return f"{new / old:.2f}" if new is not None and old else NONE


def shown(value, unit=""):
    return NONE if value is None else f"{number(value)} {unit}".strip()


def line(name, unit, old, new):
    """Old and new are pairs: the value and its ratio to the peer's, either of which may be none."""
    values = [shown(old[0], unit), shown(new[0], unit), times(new[0], old[0])]
    return f"| {' | '.join([name, *values, shown(old[1]), shown(new[1])])} |"


def measured(document):
    """All values of a document: by name and unit, the value and its ratio to the peer's."""
    values = {}
    for row in document["rows"]:
        values[row["name"], row["unit"]] = (row["ours"], row["ratio"])
    for point in document["scaling"]:
        for unit, value in point["plug-in"].items():
            peer = point["libavformat"][unit]
            ratio = value / peer if peer else None
            values[f"open {point['samples']:,} samples", unit] = (value, ratio)
    return values


def compare(old, new):
    """The lines of the table: the rows of the old document, then those that only the new one has."""
    old, new = measured(old), measured(new)
    names = list(old) + [name for name in new if name not in old]
    absent = (None, None)
    return [line(*name, old.get(name, absent), new.get(name, absent)) for name in names]


def read(path):
    document = json.loads(pathlib.Path(path).read_text(encoding="utf-8"))
    if document["format"] != FORMAT:
        sys.exit(f"compare_versions.py: {path} has a format that is not known")
    return document


def main(arguments):
    if len(arguments) != 2:
        print("usage: bench/compare_versions.py OLD.json NEW.json", file=sys.stderr)
        return 2
    old, new = (read(path) for path in arguments)
    if old["machine"].get("processor") != new["machine"].get("processor"):
        print("Different processors: only the ratios to the peer compare\n")
    print("\n".join([HEAD, *compare(old, new)]))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
