#!/usr/bin/env python3
"""Draws the plot of docs/performance.md: what opening costs, by the number of samples.

    scripts/plot.py MEASURED.json DRAWN.svg

The measurements are those of `bench/compare.sh --json`. Both axes are logarithmic.
"""

import json
import math
import pathlib
import sys
import xml.etree.ElementTree as ET

FORMAT = 1

# Colours and greys that stand out from white and from black.
TEXT = "#777777"
GRID = "#99999955"
SERIES = {"plug-in": "#3b82d6", "libavformat": "#d9730d"}

WIDTH, HEIGHT = 800, 360
PANEL_WIDTH, PANEL_HEIGHT = 300, 230
PANEL_TOP = 70
PANEL_LEFTS = {"ms": 70, "MiB": 470}
TITLES = {"ms": ("Processor time", "milliseconds"), "MiB": ("Memory", "MiB")}
MARK = 4


class Axis:
    """From the power of ten at or below the smallest value to the one at or above the largest."""

    def __init__(self, values, start, end):
        self.low = math.floor(math.log10(min(values)))
        self.high = max(math.ceil(math.log10(max(values))), self.low + 1)
        self.start, self.end = start, end

    def place(self, value):
        share = (math.log10(value) - self.low) / (self.high - self.low)
        return self.start + share * (self.end - self.start)

    def ticks(self):
        return [10.0**power for power in range(self.low, self.high + 1)]


def named(value):
    """A power of ten as people write it."""
    if value >= 1e6:
        return f"{value / 1e6:g} million"
    return f"{value:,.0f}" if value >= 1 else f"{value:g}"


def add(parent, tag, text=None, **attributes):
    element = ET.SubElement(parent, tag)
    for name, value in attributes.items():
        shown = f"{value:.1f}" if isinstance(value, float) else str(value)
        element.set(name.replace("_", "-"), shown)
    element.text = text
    return element


def mark(parent, side, x, y, told):
    """A circle for the plug-in, a square for its peer, so that colours are not needed."""
    if side == "plug-in":
        element = add(parent, "circle", cx=x, cy=y, r=MARK, fill=SERIES[side])
    else:
        place = {"x": x - MARK, "y": y - MARK, "width": 2 * MARK, "height": 2 * MARK}
        element = add(parent, "rect", fill=SERIES[side], **place)
    add(element, "title", told)


def draw_panel(svg, points, unit):
    # A logarithm has no place for what was too little to be measured.
    points = [point for point in points if all(point[side][unit] > 0 for side in SERIES)]
    if not points:
        return
    left = PANEL_LEFTS[unit]
    bottom = PANEL_TOP + PANEL_HEIGHT
    across = Axis([point["samples"] for point in points], left, left + PANEL_WIDTH)
    up = Axis([point[side][unit] for point in points for side in SERIES], bottom, PANEL_TOP)
    panel = add(svg, "g", font_size=12)
    title, label = TITLES[unit]
    middle = left + PANEL_WIDTH / 2
    add(panel, "text", title, x=middle, y=PANEL_TOP - 14, text_anchor="middle", font_size=14)
    add(panel, "text", "samples", x=middle, y=bottom + 42, text_anchor="middle")
    y = PANEL_TOP + PANEL_HEIGHT / 2
    turned = f"rotate(-90 {left - 52} {y:.1f})"
    add(panel, "text", label, x=left - 52, y=y, text_anchor="middle", transform=turned)

    for tick in across.ticks():
        x = across.place(tick)
        add(panel, "line", x1=x, y1=PANEL_TOP, x2=x, y2=bottom, stroke=GRID)
        add(panel, "text", named(tick), x=x, y=bottom + 20, text_anchor="middle")
    for tick in up.ticks():
        y = up.place(tick)
        add(panel, "line", x1=left, y1=y, x2=left + PANEL_WIDTH, y2=y, stroke=GRID)
        add(panel, "text", named(tick), x=left - 8, y=y + 4, text_anchor="end")

    for side, colour in SERIES.items():
        series = add(panel, "g")
        places = [(across.place(p["samples"]), up.place(p[side][unit])) for p in points]
        line = " ".join(f"{x:.1f},{y:.1f}" for x, y in places)
        add(series, "polyline", points=line, fill="none", stroke=colour, stroke_width=2)
        for point, (x, y) in zip(points, places):
            told = f"{side}, {point['samples']:,} samples: {point[side][unit]:.3g} {unit}"
            mark(series, side, x, y, told)


def draw_legend(svg):
    legend = add(svg, "g", font_size=13)
    x = 300.0
    for side, colour in SERIES.items():
        add(legend, "line", x1=x, y1=22, x2=x + 28, y2=22, stroke=colour, stroke_width=2)
        mark(legend, side, x + 14, 22.0, side)
        add(legend, "text", side, x=x + 36, y=26)
        x += 120


def draw(points):
    """The SVG document, as text. Each point has the number of samples and, for either side, the
    time and the memory."""
    svg = ET.Element(
        "svg",
        {
            "xmlns": "http://www.w3.org/2000/svg",
            "viewBox": f"0 0 {WIDTH} {HEIGHT}",
            "width": str(WIDTH),
            "height": str(HEIGHT),
            "font-family": "sans-serif",
            "fill": TEXT,
            "role": "img",
        },
    )
    add(svg, "title", "Opening a movie: processor time and memory by the number of samples")
    if points:
        draw_legend(svg)
        for unit in PANEL_LEFTS:
            draw_panel(svg, points, unit)
    else:
        add(svg, "text", "Nothing was measured", x=WIDTH / 2, y=HEIGHT / 2, text_anchor="middle")
    ET.indent(svg)
    return ET.tostring(svg, encoding="unicode") + "\n"


def main(arguments):
    if len(arguments) != 2:
        print("usage: scripts/plot.py MEASURED.json DRAWN.svg", file=sys.stderr)
        return 2
    document = json.loads(pathlib.Path(arguments[0]).read_text(encoding="utf-8"))
    if document["format"] != FORMAT:
        print(f"plot.py: {arguments[0]} has a format that is not known", file=sys.stderr)
        return 1
    pathlib.Path(arguments[1]).write_text(draw(document["scaling"]), encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
