#!/usr/bin/env python3
"""Draws what compare.py found as one picture: how much of the floor's speed everybody reaches. What
is beyond the scale stands at its end.

    chart.py RESULTS SVG
"""

import json
import math
import sys

# in the order in which they are drawn: the library comes last and stays visible
SERIES = (
    ("copies", "floor with the interface's copies", "ring", "#555555"),
    ("awscli", "awscli", "square", "#e69f00"),
    ("s3cmd", "s3cmd", "triangle", "#cc79a7"),
    ("rclone", "rclone", "diamond", "#009e73"),
    ("s3", "s3 (libs3)", "cross", "#d55e00"),
    ("library", "MIRQOS", "disc", "#0072b2"),
)
TICKS = (1, 2, 5, 10, 20, 50, 100, 200)  # percent
SERVERS = {"null": "Against nginx, which drops uploads and serves files",
           "real": "Against the RADOS Gateway, on a store in memory"}

WIDTH = 880
LEFT, RIGHT = 270, 30
ROW = 22
TOP = 122
PANEL = 58  # between two panels


def x_of(percent):
    low, high = math.log(TICKS[0]), math.log(TICKS[-1])
    place = (math.log(min(max(percent, TICKS[0]), TICKS[-1])) - low) / (high - low)
    return LEFT + place * (WIDTH - LEFT - RIGHT)


def marker(shape, color, x, y):
    if shape == "disc":
        return f'<circle cx="{x:.1f}" cy="{y}" r="6" fill="{color}"/>'
    if shape == "ring":
        return (f'<circle cx="{x:.1f}" cy="{y}" r="6.5" fill="none" stroke="{color}" '
                'stroke-width="1.5"/>')
    if shape == "cross":
        return (f'<path d="M{x - 4:.1f} {y - 4}l8 8m0 -8l-8 8" stroke="{color}" stroke-width="2.4" '
                'fill="none"/>')
    outline = {"square": "m-4.5 -4.5h9v9h-9z", "triangle": "m0 -5.5l5.5 9.5h-11z",
               "diamond": "m0 -6l5.5 6l-5.5 6l-5.5 -6z"}[shape]
    return f'<path d="M{x:.1f} {y}{outline}" fill="{color}"/>'


def text(x, y, words, options=""):
    return f'<text x="{x:.1f}" y="{y}" {options}>{words}</text>'


def legend(y):
    parts = []
    x = 24
    for _, name, shape, color in (SERIES[-1], *SERIES[:-1]):
        parts += [marker(shape, color, x, y), text(x + 12, y + 4, name)]
        x += 40 + 7.2 * len(name)
    return parts


def panel(rows, top):
    bottom = top + ROW * len(rows)
    parts = [text(24, top - 24, SERVERS[rows[0]["server"]], 'font-weight="bold"')]
    for number, row in enumerate(rows):
        if number % 2 == 0:
            parts.append(f'<rect x="16" y="{top + ROW * number}" width="{WIDTH - 32}" '
                         f'height="{ROW}" fill="#f5f5f5"/>')
    for tick in TICKS:
        x = x_of(tick)
        strong = 'stroke="#222" stroke-width="1.5"' if tick == 100 else 'stroke="#ddd"'
        parts += [f'<line x1="{x:.1f}" y1="{top}" x2="{x:.1f}" y2="{bottom}" {strong}/>',
                  text(x, top - 6, f"{tick}%", 'text-anchor="middle" fill="#555" font-size="11"')]
    for number, row in enumerate(rows):
        y = top + ROW * number + ROW // 2
        parts.append(text(LEFT - 14, y + 4, row["title"], 'text-anchor="end"'))
        floor = row["who"]["floor"]["rate"]
        for who, _, shape, color in SERIES:
            if who in row["who"]:
                # the library's place is that of the ratio in the table, which is one of pairs
                share = (100 / row["to_floor"] if who == "library"
                         else 100 * row["who"][who]["rate"] / floor)
                parts.append(marker(shape, color, x_of(share), y))
    return parts, bottom


def draw(results):
    title = "How much of the floor's speed is reached"
    parts = [text(24, 32, title, 'font-size="17" font-weight="bold"'), *legend(58)]
    top = TOP
    for server in SERVERS:
        rows = [row for row in results if row["server"] == server]
        if rows:
            drawn, bottom = panel(rows, top)
            parts += drawn
            top = bottom + PANEL
    height = top - PANEL + 20
    return "\n".join((
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
        f'viewBox="0 0 {WIDTH} {height}" font-family="Helvetica, Arial, sans-serif" font-size="13" '
        'fill="#222">',
        '<rect width="100%" height="100%" fill="white"/>', *parts, "</svg>", ""))


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1]) as file:
        results = json.load(file)
    with open(sys.argv[2], "w") as file:
        file.write(draw(results))


if __name__ == "__main__":
    main()
