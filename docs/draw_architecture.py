#!/usr/bin/env python3
"""Draws which rooms (folders of lib/, plugin/ and host/) include which, into images/architecture.svg.

With --check nothing is drawn: it fails when an arrow is forbidden, when rooms include each other in
a circle, and when the picture lacks an arrow or has one too many. Drawing needs graphviz.
"""

import html
import os
import re
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
PICTURE = os.path.join(ROOT, "docs/images/architecture.svg")
PARTS = {"lib": "#e8f0fa", "lib/image": "#d6e4f5", "plugin": "#fdf1dc", "host": "#e6f4e4"}

# (from, to, except from): a room may not include from there, nor may what is inside it.
FORBIDDEN = [
    ("lib", "plugin", None),
    ("lib", "host", None),
    ("plugin", "host", None),
    ("lib/base", "lib/image", None),
    ("lib/base", "lib/ui", None),
    ("lib/image", "lib/ui", None),
    ("lib/ui", "lib/image", None),
    ("plugin", "lib/ui", "plugin/imgbasic/dialogs"),
    ("host", "lib/ui", None),
]
WINDOW_HEADERS = {"lib/base/platform.h", "windows.h", "commctrl.h"}


def inside(path, part):
    return path == part or path.startswith(part + "/")


def read_includes():
    """The headers that each source file names, as paths from the root of the tree."""
    listing = ["git", "ls-files", "-co", "--exclude-standard", "lib", "plugin", "host"]
    files = subprocess.run(listing, cwd=ROOT, check=True, capture_output=True, text=True).stdout
    includes = {}
    for file in files.split():
        path = os.path.join(ROOT, file)
        if file.endswith((".cpp", ".h")) and os.path.exists(path):
            with open(path, encoding="utf-8") as source:
                includes[file] = re.findall(r'^\s*#\s*include\s*["<]([^">]+)', source.read(), re.M)
    return includes


def find_arrows(includes):
    """From (including room, included room) to one pair of files that shows it."""
    arrows = {}
    for file, headers in includes.items():
        for header in headers:
            ends = os.path.dirname(file), os.path.dirname(header)
            if header in includes and ends[0] != ends[1]:
                arrows.setdefault(ends, (file, header))
    return arrows


def reachable(start, edges):
    seen, waiting = set(), [start]
    while waiting:
        for next_ in edges.get(waiting.pop(), ()):
            if next_ not in seen:
                seen.add(next_)
                waiting.append(next_)
    return seen


def as_edges(arrows):
    edges = {}
    for source, target in arrows:
        edges.setdefault(source, []).append(target)
    return edges


def find_faults(includes, arrows):
    for (source, target), (file, header) in sorted(arrows.items()):
        for origin, goal, spared in FORBIDDEN:
            excepted = spared is not None and inside(source, spared)
            if inside(source, origin) and inside(target, goal) and not excepted:
                yield f"{file} includes {header}: {origin} must not lean on {goal}"
    for file in sorted(includes):
        if inside(file, "lib/image"):
            for header in sorted(WINDOW_HEADERS & reachable(file, includes)):
                yield f"{file} includes {header}, itself or by another header: no windows in images"
    edges = as_edges(arrows)
    circle = sorted(room for room in edges if room in reachable(room, edges))
    if circle:
        shown = "; ".join(
            f"{file} includes {header}"
            for (source, target), (file, header) in sorted(arrows.items())
            if source in circle and target in circle and source in reachable(target, edges)
        )
        yield f"rooms in a circle: {', '.join(circle)} ({shown})"


def without_implied(arrows):
    """Leaves out arrows that a longer way along others implies."""
    edges = as_edges(arrows)
    return sorted(
        (source, target)
        for source, target in arrows
        if not any(target in reachable(other, edges) for other in edges[source])
    )


def drawn_arrows():
    with open(PICTURE, encoding="utf-8") as picture:
        titles = re.findall(r"<title>(.*?)</title>", picture.read())
    return sorted(tuple(html.unescape(t).split("->")) for t in titles if "&gt;" in t)


def cluster(part, rooms):
    """The box of one part, with the rooms that no smaller part has, and its smaller parts."""
    smaller = [other for other in PARTS if other != part and inside(other, part)]
    yield f'subgraph "cluster_{part}" {{ label="{part}/" color="{PARTS[part]}"'
    yield f'style="filled,rounded" fillcolor="{PARTS[part]}"'
    for room in rooms:
        if inside(room, part) and not any(inside(room, other) for other in smaller):
            label = room[len(part) + 1 :] or room
            yield f'"{room}" [label="{label}"]'
    for other in smaller:
        yield from cluster(other, rooms)
    yield "}"


def draw(includes, arrows):
    rooms = sorted({os.path.dirname(file) for file in includes})
    lines = [
        "digraph {",
        'graph [fontname="sans-serif" fontsize=13 labeljust=l nodesep=0.25 ranksep=0.45]',
        'node [shape=box style="filled,rounded" fillcolor=white color="#607080"',
        'fontname="sans-serif" fontsize=12 height=0.35]',
        'edge [color="#506070" arrowsize=0.7]',
    ]
    for part in PARTS:
        if "/" not in part:
            lines.extend(cluster(part, rooms))
    lines.extend(f'"{source}" -> "{target}"' for source, target in arrows)
    lines.append("}")
    subprocess.run(["dot", "-Tsvg", "-o", PICTURE], check=True, text=True, input="\n".join(lines))


def main():
    includes = read_includes()
    arrows = find_arrows(includes)
    faults = list(find_faults(includes, arrows))
    if not faults and sys.argv[1:] != ["--check"]:
        draw(includes, without_implied(arrows))
    elif not faults and drawn_arrows() != without_implied(arrows):
        faults.append("the picture shows other arrows: run docs/draw_architecture.py to draw it anew")
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
