#!/usr/bin/env python3
"""Writes the seeds that the exports fuzzer starts from into a folder, the same at every run.

    fuzz/exports_seeds.py fuzz/corpus/exports

A seed is a run as a well-behaved host makes it, in the bytes that exports_check.cpp reads; its
name says of which filter.
"""
import os
import sys

FILTERS = ["gray", "mono", "nega", "chan_decomp", "chan_merge", "col_reduce", "scaling"]


def number(value):
    return [value + 3]


def create(name, width=9, height=7, layer=0, sub=-1, huge=None, slot=0, reference=0):
    size = [width + 2, height + 2, 1] if huge is None else [9, 9, 0, huge]
    place = number(layer) + number(sub)
    return [slot, 0, FILTERS.index(name), 1, *size, *place, 0x40, reference]


def dialog(steps=(), slot=0):
    return [slot, 1, 1, 2, len(steps), *sum(steps, [])]


def phase(index, tell=1, slot=0, whole=True):
    return [slot, 2, *([1, 0x5A] if whole else []), tell, index]


def options(*values, slot=0):
    """Values in the order of the filter's options, and of scaling whether to skip the dialog."""
    return [slot, 3, *sum(([1, *number(value)] for value in values), [])]


def visit(position=None, index=0, tag=0, area=(1, 1, 6, 5), kind="whole", slot=0):
    buffers = {"whole": [1, 77, 1, 1], "scaled": [1, 77, 1], "part": [4, 2, 0]}[kind]
    place = [1] if position is None else [0, *number(position[0]), *number(position[1])]
    name = [ord("s"), tag, 1, 30]
    numbers = sum((number(side) for side in area), [])
    return [slot, 6, *numbers, *buffers, 1, *name, *number(50), *place, index, 1, 1, 0]


def adjust(slot=0):
    return [slot, 4, *number(5), *number(9), 1, *number(0), *number(1), *number(-1)]


def end(slot=0):
    return [slot, 5]


def merge():
    places = [(i, -1) for i in range(4)]
    collect = [visit(place, 0, tag) for tag, place in enumerate(places)]
    join = [visit((0, -1), 1, tag) for tag in range(4)]
    return sum([dialog(), phase(0), *collect, phase(1), *join, end()], create("chan_merge"))


def reduce(target, dither, share, graduate):
    chosen = options(5, dither, target, share, graduate)
    visits = visit((0, -1)) + visit((1, -1)) + visit((0, 0))
    return create("col_reduce") + dialog() + chosen + phase(0) + visits + end()


def scale(kernel, boundary):
    chosen = options(0, 13, 5, 40, 40, 1, kernel, boundary, 1, 1) + [1]
    body = phase(0) + visit(kind="scaled") + adjust()
    return create("scaling") + chosen + dialog() + body + end()


SEEDS = {
    "gray": create("gray") + dialog() + options(3, 7, 1) + phase(0) + visit()
    + adjust() + end(),
    "mono": create("mono") + dialog() + options(50, 2) + phase(0) + visit() + visit((1, -1)),
    "nega": create("nega") + dialog([phase(0), visit((0, -1)), visit((1, -1))]) + end(),
    "nega-in-folder": create("nega", sub=1) + options(2) + phase(0) + visit() + visit((0, -1)),
    "decompose": create("chan_decomp") + dialog() + phase(0) + 5 * visit() + end(),
    "merge": merge(),
    "reduce-merged": reduce(0, 1, 0, 0),
    "reduce-shared": reduce(1, 2, 1, 0),
    "reduce-graduated": reduce(0, 3, 1, 1),
    "nearest": scale(0, 0),
    "average": scale(1, 0),
    "bilinear": scale(2, 2),
    "huge": create("gray", huge=1) + options(0, 0, 1)
    + phase(0, whole=False) + visit(kind="part", area=(60, 2, 66, 5)),
    "repeat": create("mono") + create("mono", slot=1, reference=1) + dialog([dialog()], slot=1)
    + end() + end(1),
}


def main():
    folder = sys.argv[1]
    os.makedirs(folder, exist_ok=True)
    for name, seed in SEEDS.items():
        with open(os.path.join(folder, name), "wb") as file:
            file.write(bytes(seed))


if __name__ == "__main__":
    main()
