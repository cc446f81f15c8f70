#!/usr/bin/env python3
"""Measures the filters over 16 megapixels beside other libraries at like tasks and prints one
table, medians of several repetitions on one core.

    bench/peers.py PROGRAM [REPETITIONS]
"""
import json
import os
import statistics
import subprocess
import sys
import time

MEGAPIXELS = 4928 * 3264 / 1e6
# Operation, picture, our benchmark, the peers' benchmarks.
ROWS = [
    ("tone inversion", "opaque", "Nega/merged_16MP", ["PointPeer/opencv_invert"]),
    ("gray, ntsc", "opaque", "Gray/opaque_16MP/2", ["PointPeer/opencv_gray"]),
    ("gray, value", "opaque", "Gray/opaque_16MP/3", ["PointPeer/opencv_gray"]),
    ("gray, saturation", "opaque", "Gray/opaque_16MP/7", ["PointPeer/opencv_gray"]),
    ("gray, cb", "opaque", "Gray/opaque_16MP/8", ["PointPeer/opencv_gray"]),
    ("gray, red", "opaque", "Gray/opaque_16MP/4", ["PointPeer/opencv_gray"]),
    ("gray, ntsc", "soft-edged", "Gray/soft_16MP/2", []),
    ("gray, ntsc", "translucent", "Gray/translucent_16MP/2", []),
    ("gray, red", "translucent", "Gray/translucent_16MP/4", []),
    ("gray, saturation", "translucent", "Gray/translucent_16MP/7", []),
    ("two levels", "opaque", "Mono/opaque_16MP", ["PointPeer/opencv_two_levels"]),
    ("two levels", "soft-edged", "Mono/soft_16MP", []),
    ("two levels", "translucent", "Mono/translucent_16MP", []),
    ("one channel as a layer", "opaque", "ChanDecomp", ["PointPeer/opencv_channel"]),
    ("merge of four layers", "opaque", "ChanMerge/opaque", ["PointPeer/opencv_merge"]),
]
for percentage in ("50%", "33.3%", "200%"):
    for kernel, peers in (("nearest", ["opencv_nearest", "vips_nearest"]),
                          ("average", ["opencv_area", "vips_linear"]),
                          ("bilinear_clamp", ["opencv_linear", "vips_linear"])):
        ROWS.append((f"{kernel.split('_')[0]} to {percentage}", "opaque",
                     f"Scaling/{kernel}/{percentage}/opaque/16MP",
                     [f"ScalingPeer/{peer}/{percentage}/opaque/16MP" for peer in peers]))
for kernel in ("average", "bilinear_clamp"):
    ROWS.append((f"{kernel.split('_')[0]} to 50%", "soft-edged",
                 f"Scaling/{kernel}/50%/soft_edged/16MP", []))
for colors in (16, 256):
    for dither, name, diffused in ((0, "", 0), (1, ", pattern", None), (3, ", diffused", 1)):
        ROWS.append((f"{colors} colours{name}", "opaque",
                     f"ColReduce/opaque_16MP/{colors}/{dither}",
                     [] if diffused is None else
                     [f"ColReduce{peer}/opaque_16MP/{colors}/{diffused}"
                      for peer in ("Leptonica", "Imagequant")]))
NAMES = {"opencv": "OpenCV", "vips": "libvips", "ColReduceLeptonica": "Leptonica",
         "ColReduceImagequant": "libimagequant"}
PILLOW = {"average to 50%": ("resize", 2), "average to 33.3%": ("resize", 3),
          "16 colours": ("quantize", 16), "256 colours": ("quantize", 256)}


def measure(program, names, repetitions, *options):
    """Megapixels a second and the ratio to a memory copy of each benchmark, medians."""
    pattern = "^(" + "|".join(names) + ")/manual_time$"
    command = ["taskset", "-c", str(max(os.sched_getaffinity(0))), program,
               "--benchmark_format=json", "--benchmark_min_time=0.2",
               f"--benchmark_repetitions={repetitions}",
               "--benchmark_enable_random_interleaving=true", "--benchmark_filter=" + pattern,
               *options]
    output = json.loads(subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout)
    runs = {}
    for run in output["benchmarks"]:
        if run["run_type"] == "iteration":
            runs.setdefault(run["name"].removesuffix("/manual_time"), []).append(run)
    return {name: (statistics.median(MEGAPIXELS * 1e9 / run["real_time"] for run in repeated),
                   statistics.median(run["copy_ratio"] for run in repeated))
            for name, repeated in runs.items()}


def pillow_rate(operation, repetitions):
    """Pillow's megapixels a second, which has 8 bits a channel; None where it is missing."""
    try:
        from PIL import Image
    except ImportError:
        return None
    kind, number = PILLOW[operation]
    picture = Image.effect_noise((4928, 3264), 60)
    picture = Image.merge("RGB", [picture, picture.rotate(90), picture.rotate(180)])
    times = []
    for _ in range(repetitions):
        begin = time.perf_counter()
        if kind == "resize":
            picture.convert("RGBA").resize((4928 // number, 3264 // number), Image.Resampling.BOX)
        else:
            picture.quantize(number, Image.Quantize.MEDIANCUT, dither=Image.Dither.NONE)
        times.append(time.perf_counter() - begin)
    return MEGAPIXELS / statistics.median(times)


def best_peer(operation, peers, rates, repetitions):
    """The name and rate of the quickest peer."""
    found = [(rates[peer][0], NAMES[peer.split("/")[peer.startswith(("Point", "Scaling"))]
                                    .split("_")[0]]) for peer in peers if peer in rates]
    if operation in PILLOW and (rate := pillow_rate(operation, repetitions)):
        found.append((rate, "Pillow, 8 bits"))
    return max(found, default=None)


def main():
    program, repetitions = sys.argv[1], int((sys.argv + ["3"])[2])
    ours = [row[2] for row in ROWS]
    rates = measure(program, ours + sorted({peer for row in ROWS for peer in row[3]}), repetitions)
    avx2 = measure(program, ours, repetitions, "--simd=avx2")
    print("| operation | picture | Mpixel/s | × copy | AVX2 alone, × copy | best peer, Mpixel/s | |\n"
          "| --- | --- | --- | --- | --- | --- | --- |")
    for operation, picture, name, peers in ROWS:
        rate, ratio = rates[name]
        line = f"| {operation} | {picture} | {rate:.0f} | {ratio:.2f} | {avx2[name][1]:.2f} | "
        best = best_peer(operation, peers, rates, repetitions)
        line += ("| |" if best is None else
                 f"{best[1]} {best[0]:.0f} | {rate / best[0]:.1f} times as fast |")
        print(line)


main()
