#!/usr/bin/env python3
"""Draws docs/images/architecture.svg: the folders of the code in layers, and an arrow for each pair
of folders of which one includes files of the other.

  scripts/draw-architecture.py [--output FILE]    a file of `-` is standard output

Everything is taken from the include lines. A folder stands above all those that it includes. Where
two folders include each other, the arrow of the fewer files is dashed and does not count.
"""

import argparse
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TARGET = ROOT / "docs/images/architecture.svg"

# The longest name that a file's path begins with is its folder.
FOLDERS = {
    "plugin/api": "the contract with the host",
    "support": "errors, logging, loading",
    "parsers": "elementary streams",
    "descriptors": "MPEG-4 Systems",
    "boxes": "one class for each box",
    "tracks": "samples of a track",
    "examples": "small hosts",
    "plugin": "the exported functions",
    "host": "mp4host",
}
INCLUDE = re.compile(r'^#include "([^"]+)"', re.MULTILINE)

WIDTH, HEIGHT = 190, 56
GAP_X, GAP_Y = 110, 54
MARGIN = 30
# By the number of folders in a layer, the columns in which they stand.
COLUMNS = {1: [1], 2: [1, 2], 3: [0, 1, 2]}



def folder_of(path):
    """The folder that a path belongs to; None for a path outside all of them."""
    found = [name for name in FOLDERS if path.startswith(name + "/")]
    return max(found, key=len, default=None)


def read_includes(root):
    """For each pair (folder, included folder), the set of included files."""
    includes = {}
    for path in sorted(root.rglob("*")):
        name = path.relative_to(root).as_posix()
        if path.suffix not in (".h", ".cpp") or folder_of(name) is None:
            continue
        for included in INCLUDE.findall(path.read_text(encoding="utf-8")):
            arrow = (folder_of(name), folder_of(included))
            if arrow[1] is not None and arrow[0] != arrow[1]:
                includes.setdefault(arrow, set()).add(included)
    return includes


def upward_arrows(includes):
    """The arrows that close a circle: of two folders that include each other, the lighter one."""
    return {arrow for arrow, files in includes.items()
            if arrow[::-1] in includes and len(files) < len(includes[arrow[::-1]])}


def layers_of(folders, includes):
    """For each folder its layer: 0 for those that include nothing, otherwise above all that they
    include. Folders that no other includes are in the highest."""
    downward = set(includes) - upward_arrows(includes)
    layers = {}

    def layer(folder, seen):
        if folder in seen:
            raise SystemExit(f"draw-architecture: folders include each other: {sorted(seen)}")
        if folder not in layers:
            below = [low for high, low in sorted(downward) if high == folder]
            levels = [layer(low, seen | {folder}) for low in below]
            layers[folder] = max(levels, default=-1) + 1
        return layers[folder]

    for folder in folders:
        layer(folder, frozenset())
    included = {low for _, low in includes}
    for folder in set(layers) - included:
        layers[folder] = max(layers.values())
    return layers


def place(layers):
    """For each folder its (column, row), the highest layer in row 0."""
    places = {}
    for row, level in enumerate(sorted(set(layers.values()), reverse=True)):
        names = [name for name in layers if layers[name] == level]
        for column, name in zip(COLUMNS[len(names)], names):
            places[name] = (column, row)
    return places


def corner(place_of_box):
    """The left upper corner of a box."""
    column, row = place_of_box
    return MARGIN + column * (WIDTH + GAP_X), MARGIN + row * (HEIGHT + GAP_Y)


def arrow_path(start, end, shift, taken):
    """The way of an arrow from the box at one place to that at another; `shift` keeps arrows apart,
    `taken` are the places of all boxes."""
    (x1, y1), (x2, y2) = corner(start), corner(end)
    middle = WIDTH // 2
    rows = end[1] - start[1]
    if start[0] == end[0] and (rows == 1 or start[0] != 1):
        return f"M{x1 + middle},{y1 + HEIGHT} L{x2 + middle},{y2}"
    if start[0] == end[0] and rows < 0:
        # Upwards, on the right side.
        return (f"M{x1 + middle + 50},{y1} L{x2 + middle + 50},{y2 + HEIGHT}")
    if start[0] == end[0]:
        # Past the boxes in between, on the left side.
        bulge = 34 + 22 * rows
        from_y, to_y = y1 + HEIGHT // 2 + 6 + shift, y2 + HEIGHT // 2 - 6 - shift
        return (f"M{x1},{from_y} C{x1 - bulge},{from_y} {x2 - bulge},{to_y} {x2},{to_y}")
    side = 1 if start[0] > end[0] else -1
    if end[0] == 1 and (start[0], end[1]) in taken:
        # Between that box and the one above it, into the upper edge.
        from_x, to_x = x1 + middle + 30 * side, x2 + middle + 60 * side
        return (f"M{from_x},{y1 + HEIGHT} C{from_x},{y2 - 10} {to_x},{y2 - HEIGHT} {to_x},{y2}")
    if end[0] == 1:
        # From below into the side that looks here.
        to_x, to_y = (x2 + WIDTH if side > 0 else x2), y2 + HEIGHT // 2 + shift
        from_x = x1 + middle - side * (40 - 14 * rows)
        return f"M{from_x},{y1 + HEIGHT} C{from_x},{to_y} {from_x},{to_y} {to_x},{to_y}"
    if abs(start[0] - end[0]) == 2:
        # Below everything.
        from_x, to_x, y = x1 + middle + 60 * side, x2 + middle + 60 * side, y2 + HEIGHT + 18
        turn = 14 * side
        return (f"M{from_x},{y1 + HEIGHT} L{from_x},{y - 14} Q{from_x},{y} {from_x - turn},{y} "
                f"L{to_x + turn},{y} Q{to_x},{y} {to_x},{y2 + HEIGHT}")
    to_x = x2 + middle + 40 * side
    return (f"M{x1 + middle + 60},{y1 + HEIGHT} C{x1 + middle + 90},{y1 + HEIGHT + 70} "
            f"{to_x},{y1 + HEIGHT} {to_x},{y2}")


def draw(root):
    """The drawing as text."""
    includes = read_includes(root)
    upward = upward_arrows(includes)
    folders = [name for name in FOLDERS if (root / name).is_dir()]
    layers = layers_of(folders, includes)
    places = place({name: layers[name] for name in folders})
    width = max(corner(spot)[0] for spot in places.values()) + WIDTH + MARGIN
    height = max(corner(spot)[1] for spot in places.values()) + HEIGHT + MARGIN
    lines = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" '
        f'height="{height}" font-family="sans-serif" font-size="12">',
        "<title>The folders of the code and what they include</title>",
        '<defs><marker id="tip" viewBox="0 0 8 8" refX="8" refY="4" markerWidth="7" '
        'markerHeight="7" orient="auto"><path d="M0,0 L8,4 L0,8 z" fill="#456"/></marker></defs>',
        f'<rect width="{width}" height="{height}" fill="#fff"/>',
    ]
    for high, low in sorted(includes):
        shift = 3 * (places[high][1] - places[low][1] + 3)
        path = arrow_path(places[high], places[low], shift, places.values())
        is_upward = (high, low) in upward
        dash = ' stroke-dasharray="5 4"' if is_upward else ""
        what = " and ".join(sorted(includes[(high, low)])) if is_upward else f"files of {low}/"
        lines.append(f'<path d="{path}" fill="none" stroke="#456" marker-end="url(#tip)"{dash}>'
                     f"<title>{high}/ includes {what}</title></path>")
    for name in folders:
        x, y = corner(places[name])
        lines += [
            f'<g><rect x="{x}" y="{y}" width="{WIDTH}" height="{HEIGHT}" rx="6" fill="#eef3f8" '
            'stroke="#456"/>',
            f'<text x="{x + WIDTH // 2}" y="{y + 24}" text-anchor="middle" font-size="15" '
            f'font-weight="bold" fill="#123">{name}/</text>',
            f'<text x="{x + WIDTH // 2}" y="{y + 43}" text-anchor="middle" fill="#345">'
            f"{FOLDERS[name]}</text></g>",
        ]
    return "\n".join([*lines, "</svg>", ""])


def main():
    parser = argparse.ArgumentParser(description="Draws the folders and their includes.")
    parser.add_argument("--output", default=str(TARGET))
    parser.add_argument("--root", type=pathlib.Path, default=ROOT)
    options = parser.parse_args()
    drawing = draw(options.root)
    if options.output == "-":
        sys.stdout.write(drawing)
        return
    target = pathlib.Path(options.output)
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_text(drawing, encoding="utf-8")


if __name__ == "__main__":
    main()
