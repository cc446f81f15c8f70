#!/usr/bin/env python3
"""Plots how the time a pixel depends on the size of the picture, and colour reduction's on the
number of colours; prints the figures.

    bench/growth.py PROGRAM FILE
"""
import json
import os
import subprocess
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt

SIZES = {"NegaGrowth": "nega", "GrayGrowth": "gray, translucent",
         "AverageGrowth": "average to 50 %", "BilinearGrowth": "bilinear to 50 %",
         "ColReduceGrowth": "col_reduce, 256 colours"}
DITHERS = {"0": "none", "1": "pattern", "3": "large diffusion"}
COLORS_PIXELS = 1920 * 1080


def measure(program):
    """The median time of each benchmark in nanoseconds."""
    command = ["taskset", "-c", str(max(os.sched_getaffinity(0))), program,
               "--benchmark_format=json", "--benchmark_min_time=0.1", "--benchmark_repetitions=5",
               "--benchmark_report_aggregates_only=true", "--benchmark_filter=Growth|Colors"]
    output = json.loads(subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout)
    return {run["run_name"].removesuffix("/manual_time"): run["real_time"]
            for run in output["benchmarks"] if run["aggregate_name"] == "median"}


def draw(axes, lines, title, xlabel):
    for label, points in lines.items():
        axes.semilogx(*zip(*sorted(points)), marker="o", markersize=3, label=label)
        print(f"{label}: " + ", ".join(f"{x:g}: {y:.2f} ns" for x, y in sorted(points)))
    axes.set(title=title, xlabel=xlabel, ylabel="ns a pixel")
    ticks = [x for x, _ in sorted(points)]
    axes.set_xticks(ticks, [f"{x:.1g}" if x < 1 else f"{x:.0f}" for x in ticks])
    axes.minorticks_off()
    axes.grid(alpha=0.3)
    axes.legend(fontsize="small")


def main():
    program, file = sys.argv[1:]
    sizes, colors = {}, {}
    for name, time in measure(program).items():
        kind, *arguments = name.split("/")
        first = int(arguments[0])
        if kind in SIZES:
            sizes.setdefault(SIZES[kind], []).append((first * first / 1e6, time / first / first))
        else:
            colors.setdefault(DITHERS[arguments[1]], []).append((first, time / COLORS_PIXELS))
    plt.rcParams.update({"svg.hashsalt": "growth", "svg.fonttype": "none"})
    figure, (left, right) = plt.subplots(1, 2, figsize=(10, 4), layout="constrained")
    draw(left, sizes, "Size of the picture", "megapixels")
    draw(right, colors, "Colour reduction, 2 megapixels", "colours")
    left.set_yscale("log")
    right.set_ylim(bottom=0)
    figure.savefig(file, metadata={"Date": None})


main()
