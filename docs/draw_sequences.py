#!/usr/bin/env python3
"""Draws the sequences of protocol.md into images/sequence-*.svg.

A sequence is written in lines: `A -> B: text` for a call, `A --> B: text`
for what it returns, and `[ text` to `]` around what is repeated. The numbers are pixels.
"""

import html
from pathlib import Path

SEQUENCES = {
    "interactive": """\
user -> host: chooses a filter
host -> module: ImagePluginPrepare2 (size, position, colours, window)
module --> host: the filter object
host -> module: ImagePluginDialog (object, apply)
module -> user: shows the dialog
[ for each preview, and for the confirmed options unless they were the last preview's
user -> module: asks for a preview, or confirms
module -> host: apply ()
[ for each phase p
host -> module: ImagePluginPhase2 (p, merged image)
module --> host: 1
[ for each item, and each layer in a folder, from the top
host -> module: ImagePluginExecute4 (p, position, dst, src)
module --> host: true; dst, outRect, resultCode ...
]
]
host -> user: shows the result
host --> module: true
]
module --> host: 1 confirmed: keep the result. -1 cancelled: drop it
host -> module: ImagePluginDispose (object)
""",
    "batch": """\
user -> host: chooses a filter and images
host -> module: ImagePluginBatchPrepare (window, cancelled)
module -> user: shows the dialog, where the filter has one for batches
user -> module: confirms
module --> host: the batch object, which holds the options
[ for each image
host -> module: ImagePluginPrepare2 (size ..., reference: the batch object)
module --> host: an object of the image's own
host -> module: ImagePluginDialog (object, apply)
module -> host: apply (), at once
host -> module: ImagePluginPhase2, ImagePluginExecute4 ...
module --> host: results
host --> module: true
module --> host: 1
host -> module: ImagePluginDispose (object)
]
host -> module: ImagePluginBatchDispose (batch object)
""",
    "two-phases": """\
user -> host: chooses "chan_merge"
host -> module: ImagePluginPrepare2, ImagePluginDialog (object, apply)
module -> host: apply (), without a dialog
host -> module: ImagePluginPhase2 (0, phaseFlag)
module --> host: 1, phaseFlag 1: only show the items
[ for each item, and each layer in a folder, from the top
host -> module: ImagePluginExecute4 (0, position, layerName ...)
module --> host: true; the host copies nothing back
]
host -> module: ImagePluginPhase2 (1)
module --> host: 1, or -2 when the four channels are not there
[ for each item, and each layer in a folder, from the top
host -> module: ImagePluginExecute4 (1, position, dst, src ...)
module --> host: [R], [G], [B]: resultCode 1, remove the layer
module --> host: [A]: the merged layer in dst, its outRect and name
module --> host: any other: nothing to copy
]
host --> module: true
module --> host: 1
host -> module: ImagePluginDispose (object)
""",
}

COLUMNS = {"user": 70, "host": 260, "module": 720}
WIDTH, ROW, TOP = 800, 30, 36
STYLE = """
text { font: 13px sans-serif; fill: #203040 }
.who { font-weight: bold; text-anchor: middle }
.frame { fill: none; stroke: #8090a0; stroke-dasharray: 2 2 }
.label { font-style: italic; fill: #506070 }
line { stroke: #506070 }
.life { stroke: #a0b0c0 }
.answer { stroke-dasharray: 6 4 }
path { fill: #506070 }
"""


def arrow(y, start, end, text, dashed):
    left, right = sorted((start, end))
    back = 9 if end < start else -9
    if left == COLUMNS["user"] and right == COLUMNS["module"]:
        middle = (COLUMNS["host"] + right) / 2  # the host's line is only passed
    else:
        middle = (left + right) / 2
    dashes = ' class="answer"' if dashed else ""
    yield f'<line x1="{start}" y1="{y}" x2="{end}" y2="{y}"{dashes}/>'
    yield f'<path d="M{end},{y} l{back},-4 v8 z"/>'
    yield f'<text x="{middle}" y="{y - 5}" text-anchor="middle">{html.escape(text)}</text>'


def frame(top, bottom, depth):
    x = 14 + 8 * depth
    yield (f'<rect class="frame" x="{x}" y="{top}" width="{WIDTH - 2 * x}" '
           f'height="{bottom - top}" rx="4"/>')


def draw(text):
    steps = text.splitlines()
    shapes, open_frames, y = [], [], TOP
    for step in steps:
        y += ROW
        if step.startswith("[ "):
            shapes.append(f'<text class="label" x="{22 + 8 * len(open_frames)}" y="{y}">'
                          f'{html.escape(step[2:])}</text>')
            open_frames.append(y - 16)
        elif step == "]":
            y -= 18
            shapes += frame(open_frames.pop(), y, len(open_frames))
        else:
            ends, _, words = step.partition(": ")
            start, kind, end = ends.split()
            shapes += arrow(y, COLUMNS[start], COLUMNS[end], words, kind == "-->")
    height = y + 24
    who = "".join(f'<line class="life" x1="{x}" y1="40" x2="{x}" y2="{height - 10}"/>'
                  f'<text class="who" x="{x}" y="30">{name}</text>' for name, x in COLUMNS.items())
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
            f'viewBox="0 0 {WIDTH} {height}">\n<style>{STYLE}</style>\n'
            f'<rect width="{WIDTH}" height="{height}" fill="white"/>\n{who}\n'
            + "\n".join(shapes) + "\n</svg>\n")


for name, text in SEQUENCES.items():
    picture = Path(__file__).with_name("images") / f"sequence-{name}.svg"
    picture.write_text(draw(text), encoding="utf-8")
