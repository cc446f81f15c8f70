#!/usr/bin/env python3
"""Runs the plug-in in GIMP without windows, all cases in one start, and compares the pixels with
those of the command line. headless_test.scm has the cases that need more than one call.

Usage: headless_test.py FOLDER, the folder of the built programs. Exit status 77: no GIMP here.
"""

import filecmp
import os
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree
import zipfile

HERE = os.path.dirname(os.path.abspath(__file__))
SAMPLE = os.path.join(HERE, "../../samples/landscape.ora")
PROFILE = "/usr/share/color/icc/ghostscript/a98.icc"  # GIMP's package depends on the one it is in
SIZE = (280, 160)

# Name of the case, its pictures, the procedure's options, the command line.
CASES = [
    ("nega", ["opaque8", "opaque16", "soft8", "soft16"], "imgbasic-nega 1 i d 2", ["nega"]),
    ("nega-merged", ["soft8", "soft16"], "imgbasic-nega 1 i d 0", ["nega"]),
    ("gray", ["opaque8", "opaque16", "soft16"], "imgbasic-gray 1 i d 2 7 2",
     ["gray", "--method", "ntsc", "--tint", "draw", "--draw-color", "336699"]),
    ("mono", ["opaque8", "soft16"], "imgbasic-mono 1 i d 100 2", ["mono", "--threshold", "100"]),
    ("reduce", ["opaque8", "opaque16", "soft16"], "imgbasic-col-reduce 1 i d 12 3 2 0 0",
     ["col_reduce", "--colors", "12"]),
    ("reduce-pattern", ["soft8"], "imgbasic-col-reduce 1 i d 8 1 2 0 1",
     ["col_reduce", "--colors", "8", "--dither", "pattern", "--graduate"]),
    ("scaling", ["opaque8", "opaque16", "soft8", "soft16"],
     "imgbasic-scaling 1 i d 0 130 0 1 1 1 2 0 1 1", ["scaling", "--width", "130", "--boundary", "clip",
                                                      "--bound-alpha"]),
    ("scaling-percent", ["soft16"], "imgbasic-scaling 1 i d 1 0 0 33 50 1 1 0 1 1",
     ["scaling", "--ratio", "33", "--ratio-height", "50", "--interp", "average"]),
]

# The document of the cases on several layers, topmost first: picture, x, y.
LAYERS = [("opaque8", 0, 0), ("soft8", 30, 20), ("soft8", 0, 0)]
LAYER_CASES = [
    ("shared", ["col_reduce", "--colors", "12", "--dither", "pattern", "--share-palette",
                "--target", "all"]),
    ("scaled", ["scaling", "--width", "170"]),
]

SAME = [
    ("nega-visible", "want-visible"), ("profile", "nega-opaque8"), ("selection", "nega-opaque8"),
    ("precision-350", "nega-soft16"), ("precision-650", "nega-soft16"),
    ("precision-700", "nega-soft16"), ("untouched", "soft8"),
] + [(f"{picture}-{result}", picture + source) for picture in ["soft8", "soft16"]
     for result, source in [("merged", ""), ("loose", ""), ("decomposed", "-before"),
                            ("merged-visible", "-before")]]

# What GIMP tells about the calls that must fail.
SENTENCES = [
    "imgbasic-mono: threshold is 0; it must be 1 to 255",
    "imgbasic-nega: target-type is 3; it must be 0 to 2",
    "each side must be 1 to 8192 pixels",
    "merging needs the four layers [R], [G], [B] and [A] of one name",
    "the pixels of the layer 'Background' are locked",
    "the layer 'Background' goes on outside the image",
    "is a layer group; choose one of its layers",
    "choose Image > Mode > RGB first",
]


class Test:
    def __init__(self, programs, folder):
        self.command = os.path.join(programs, "imgbasic")
        self.folder = folder
        self.failed = 0

    def path(self, name):
        return os.path.join(self.folder, name)

    def imgbasic(self, *words):
        subprocess.run([self.command, *words, "--force", "--quiet"], check=True)

    def expect(self, what, condition):
        if not condition:
            print("FAILED: " + what)
            self.failed += 1

    def compare(self, pairs):
        """Compares pictures by the bytes that one and the same program writes of their pixels."""
        missing = {name for pair in pairs for name in pair
                   if not os.path.exists(self.path(name + ".png"))}
        files = {self.path(name + ".png") for pair in pairs for name in pair if name not in missing}
        plain = self.path("plain")
        os.mkdir(plain)
        self.imgbasic("scaling", *files, "--ratio", "100", "--plain", "--strip", "-o", plain)
        for name, other in pairs:
            same = name not in missing and other not in missing and filecmp.cmp(
                f"{plain}/{name}.png", f"{plain}/{other}.png", shallow=False)
            self.expect(f"{name} has the pixels of {other}", same)

    def make_pictures(self):
        with zipfile.ZipFile(SAMPLE) as sample, open(self.path("mist.png"), "wb") as mist:
            mist.write(sample.read("data/layer4.png"))
        for name, source in [("opaque", SAMPLE), ("soft", self.path("mist.png"))]:
            for depth in ["8", "16"]:
                self.imgbasic("scaling", source, "--ratio", "20", "--interp", "average",
                              "--depth", depth, "--plain", "-o", self.path(name + depth + ".png"))

    def write_document(self, file, size, layers):
        """Packs pictures (bytes), each at a place, for the command line."""
        stack = "".join(f'<layer src="data/{i}.png" x="{x}" y="{y}"/>'
                        for i, (_, x, y) in enumerate(layers))
        with zipfile.ZipFile(file, "w") as document:
            document.writestr("mimetype", "image/openraster")
            document.writestr("stack.xml",
                              f'<image w="{size[0]}" h="{size[1]}"><stack>{stack}</stack></image>')
            for i, (picture, _, _) in enumerate(layers):
                document.writestr(f"data/{i}.png", picture)

    def filter_layers(self, name, words):
        """The layers that the command line makes of the document, as want-NAME-0.png and on."""
        source, result, alone = map(self.path, ["layers.ora", "result.ora", "alone.ora"])
        pictures = [(open(self.path(p + ".png"), "rb").read(), x, y) for p, x, y in LAYERS]
        self.write_document(source, SIZE, pictures)
        self.imgbasic(*words, source, "-o", result)
        with zipfile.ZipFile(result) as document:
            image = xml.etree.ElementTree.fromstring(document.read("stack.xml"))
            for i, layer in enumerate(image.iter("layer")):
                self.write_document(alone, (image.get("w"), image.get("h")),
                                    [(document.read(layer.get("src")), layer.get("x"),
                                      layer.get("y"))])
                self.imgbasic("scaling", alone, "--ratio", "100", "--plain", "--depth", "8",
                              "-o", self.path(f"want-{name}-{i}.png"))

    def run_gimp(self, plugin):
        profile = self.path("profile")
        os.makedirs(os.path.join(profile, "plug-ins/imgbasic-gimp"))
        os.symlink(plugin, os.path.join(profile, "plug-ins/imgbasic-gimp/imgbasic-gimp"))
        script = [f'(define folder "{self.folder}/")(define icc "file://{PROFILE}")',
                  f'(load "{HERE}/headless_test.scm")']
        for name, pictures, call, _ in CASES:
            for picture in pictures:
                script.append(f'(filter-file "{picture}" "{name}-{picture}" '
                              f"(lambda (i d) ({call})))")
        script.append("(other-cases)")
        with open(self.path("cases.scm"), "w", encoding="utf-8") as file:
            file.write("\n".join(script))
        run = subprocess.run(
            ["gimp", "-i", "-d", "-f", "-b", f'(load "{self.path("cases.scm")}")',
             "-b", "(gimp-quit 1)"],
            env={**os.environ, "GIMP2_DIRECTORY": profile, "LC_ALL": "C.UTF-8", "LANGUAGE": ""},
            text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=1200)
        return run.stdout

    def filter_pictures(self):
        """Lets the command line do the same, and returns which pictures must be the same."""
        pairs = list(SAME)
        for name, pictures, _, words in CASES:
            for picture in pictures:
                result = f"{name}-{picture}"
                self.imgbasic(*words, self.path(picture + ".png"), "--plain",
                              "-o", self.path(f"want-{result}.png"))
                pairs.append((result, "want-" + result))
        for name, words in LAYER_CASES:
            self.filter_layers(name, words)
            pairs.extend((f"{name}-{i}", f"want-{name}-{i}") for i in range(len(LAYERS)))
        self.imgbasic("nega", self.path("visible.png"), "-o", self.path("want-visible.png"))
        return pairs

    def read_report(self, log):
        for sentence in SENTENCES:
            self.expect(f"GIMP tells: {sentence}", sentence in log)
        with open(self.path("report.txt"), encoding="utf-8") as report:
            lines = report.read().splitlines()
        self.expect("all of the script ran", lines[-1:] == ["1 end"])
        for line in lines:
            self.expect(line[2:], line.startswith("1 "))


def main():
    programs = os.path.abspath(sys.argv[1])
    plugin = os.path.join(programs, "imgbasic-gimp")
    if shutil.which("gimp") is None or not os.path.exists(plugin):
        print("SKIPPED: no GIMP, or the plug-in was not built")
        return 77
    with tempfile.TemporaryDirectory() as folder:
        test = Test(programs, folder)
        test.make_pictures()
        log = test.run_gimp(plugin)
        test.compare(test.filter_pictures())
        test.read_report(log)
        if test.failed:
            print(log)
            if "KEEP" in os.environ:
                shutil.copytree(folder, os.environ["KEEP"], symlinks=True)
    return 1 if test.failed else 0


if __name__ == "__main__":
    sys.exit(main())
