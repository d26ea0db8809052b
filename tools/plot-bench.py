#!/usr/bin/python3
"""Draws the table of `make bench`: tools/plot-bench.py VELBENCH.JSON PICTURE.SVG

A bar for each row: ours to the floor, or, for rows that are so short that a ratio tells little, nanoseconds beyond the
floor. The goal is a black line across the row, the spread (half the distance between the quartiles) a whisker. A row that
misses its goal is red. Numbers that were not timed stand in the table alone.
"""

import json
import sys

import matplotlib

matplotlib.use("svg")
from matplotlib import pyplot  # noqa: E402

MET, MISSED, TOLD = "#4c78a8", "#d62728", "#a8a8a8"
PANELS = (("x", "ours to the floor", 1.0), ("ns over", "nanoseconds beyond the floor", 0.0))
ROW_INCHES = 0.2


def colour(row):
    """By whether the row meets its goal, or has none."""
    return TOLD if "goal" not in row else MET if row["met"] else MISSED


def draw(axes, rows, title, base):
    """One panel: the rows from top to bottom, bars from what stands for no cost."""
    places = range(len(rows))
    axes.barh(places, [row["figure"] - base for row in rows], left=base, color=[colour(row) for row in rows],
              xerr=[row["spread"] for row in rows], error_kw={"elinewidth": 0.8, "capsize": 2})
    for place, row in zip(places, rows):
        if "goal" in row:
            axes.plot([row["goal"]] * 2, [place - 0.45, place + 0.45], color="black", linewidth=1.5)
    axes.axvline(base, color="black", linewidth=0.6)
    axes.set_yticks(list(places), [row["measure"] for row in rows], fontsize=7)
    axes.set_ylim(len(rows) - 0.5, -0.5)
    axes.set_xlabel(title, fontsize=8)
    axes.tick_params(axis="x", labelsize=7)
    axes.grid(axis="x", linewidth=0.3)
    axes.set_axisbelow(True)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], encoding="utf-8") as file:
        table = json.load(file)
    panels = [(title, base, [row for row in table if row["unit"] == unit]) for unit, title, base in PANELS]
    panels = [panel for panel in panels if panel[2]]
    if not panels:
        sys.exit("no row of the table was timed")
    # The same table makes the same file.
    pyplot.rcParams.update({"svg.hashsalt": "velbench", "svg.fonttype": "none", "font.family": "sans-serif"})
    heights = [len(rows) + 3 for _, _, rows in panels]
    figure, axes = pyplot.subplots(len(panels), 1, figsize=(10, ROW_INCHES * sum(heights)), squeeze=False,
                                   gridspec_kw={"height_ratios": heights}, layout="constrained")
    for place, (title, base, rows) in zip(axes[:, 0], panels):
        draw(place, rows, title, base)
    figure.savefig(sys.argv[2], metadata={"Date": None})
    print(f"drawn to {sys.argv[2]}")


if __name__ == "__main__":
    main()
