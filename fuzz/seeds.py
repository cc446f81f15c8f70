#!/usr/bin/env python3
"""Writes the seeds of the fuzzers that need few into a folder for each of them. Those of raster
are made by ImageMagick, the others the same at every run.

    fuzz/seeds.py fuzz/corpus
"""
import io
import os
import random
import subprocess
import sys
import zipfile

KEY = "[HKEY_CURRENT_USER\\Software\\orvex\\brelo2\\plugin\\imgbasic\\"
MONO = KEY + 'mono]\n"Threshold"=dword:00000007\n"TargetType"=dword:00000002\n'
GRAY = KEY + 'gray]\n"Threshold"=dword:00000063\n'
STACK = """<?xml version="1.0" encoding="UTF-8"?>
<image version="0.0.5" w="5" h="4" xmlns:m="m"><!-- kept --><stack>
 <layer name="sky" src="data/a.png" x="-1" y="2" opacity="0.5" composite-op="svg:plus" m:a="1"/>
 <stack name="folder" isolation="isolate" visibility="hidden">
  <layer src="data/b.png" alpha-preserve="true"/><stack/><text>kept</text>
 </stack>
 <layer src="data/b.png" composite-op="own:kind" edit-locked="true"/>
</stack></image>"""
PLAIN_STACK = "<image w='2' h='1'><stack><layer src='data/a.png'/></stack></image>"

# The files' names and how ImageMagick makes them from a small picture.
PICTURES = {
    "gray.png": ["-colorspace", "Gray"],
    "deep.png": ["-depth", "16", "-alpha", "set"],
    "palette.png": ["-colors", "4", "-density", "300"],
    "adam7.png": ["-interlace", "PNG"],
    "baseline.jpg": ["-orient", "RightTop"],
    "progressive.jpg": ["-interlace", "Plane", "-quality", "30"],
    "cmyk.jpg": ["-colorspace", "CMYK"],
    "lossy.webp": [],
    "lossless.webp": ["-define", "webp:lossless=true", "-alpha", "set"],
    "lzw.tif": ["-compress", "LZW"],
    "deep.tif": ["-depth", "16", "-compress", "Zip"],
    "bilevel.tif": ["-monochrome", "-compress", "Group4"],
    "tiles.tif": ["-define", "tiff:tile-geometry=16x16", "-compress", "JPEG"],
    "still.gif": ["-colors", "8"],
    "true.bmp": [],
    "palette.bmp": ["-type", "Palette", "-compress", "RLE"],
    "true.ppm": [],
    "plain.pgm": ["-compress", "None"],
}


def archive():
    png = subprocess.run(["convert", "gradient:[2x1]", "-depth", "8", "png:-"],
                         capture_output=True, check=True).stdout
    file = io.BytesIO()
    with zipfile.ZipFile(file, "w") as entries:
        for name, content in {"stack.xml": PLAIN_STACK, "data/a.png": png, "own": "x"}.items():
            entries.writestr(zipfile.ZipInfo(name), content)
    return file.getvalue()


def texts():
    yield "settings/empty", b""
    yield "settings/usual", ("REGEDIT4\n\n" + GRAY + "\n" + MONO).encode()
    yield "settings/twice", (MONO + GRAY + MONO.lower()).replace("\n", "\r\n").encode()
    yield "settings/strange", ("\ufeff; own\n" + GRAY + MONO.replace("dword:", "hex:")).encode()
    yield "openraster/stack", STACK.encode()
    yield "openraster/not-utf-8", STACK.encode().replace(b"fold", b"\x96\x90ld")
    yield "openraster/plain", PLAIN_STACK.encode()
    yield "openraster/archive", archive()
    for index in range(6):
        steps = bytes([index % 2]) + random.Random(index).randbytes(90)
        yield f"dialog_rules/{index}", steps


for path, content in texts():
    os.makedirs(os.path.dirname(os.path.join(sys.argv[1], path)), exist_ok=True)
    with open(os.path.join(sys.argv[1], path), "wb") as out:
        out.write(content)
os.makedirs(os.path.join(sys.argv[1], "raster"), exist_ok=True)
for picture, options in PICTURES.items():
    subprocess.run(["convert", "-size", "7x5", "gradient:red-blue", "+set", "date:create",
                    "+set", "date:modify", *options,
                    os.path.join(sys.argv[1], "raster", picture)], check=True)
