#!/usr/bin/python3
"""The Python package against the command line: the same pixels for every filter and depth."""

import inspect
import os
import subprocess
import sys
import tempfile
import unittest
import zipfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import numpy as np

BUILD = Path(__file__).resolve().parent.parent / "build/native"
os.environ.setdefault("IMGBASIC_LIBRARY", str(BUILD / "bin/libimgbasic.so"))
sys.path.insert(0, str(BUILD / "python"))
import imgbasic
from imgbasic._module import FilterObject
from imgbasic._options import FILTERS

DEPTHS = {np.uint8: "8", np.uint16: "16"}

# Filter, what the command line is given, and what the function is.
CASES = [
    ("gray", "", {}),
    ("gray", "--method ntsc --tint magenta", {"method": "ntsc", "tint": "magenta"}),
    ("gray", "--method cr --tint draw --draw-color 336699",
     {"method": "cr", "tint": "draw", "draw_color": 0x336699}),
    ("gray", "--tint back --back-color FFCC00", {"tint": "back", "back_color": 0xFFCC00}),
    ("mono", "--threshold 99", {"threshold": 99}),
    ("nega", "", {}),
    ("col_reduce", "", {}),
    ("col_reduce", "--colors 7 --dither pattern --graduate",
     {"colors": 7, "dither": "pattern", "graduate": True}),
    ("scaling", "--width 17", {"width": 17}),
    ("scaling", "--height 50 --interp average", {"height": 50, "interp": "average"}),
    ("scaling", "--ratio 33.3 --ratio-height 210 --interp nearest",
     {"ratio": 33.3, "ratio_height": 210, "interp": "nearest"}),
    ("scaling", "--width 41 --height 23", {"width": 41, "height": 23}),
]
TRANSLUCENT_CASES = [
    ("scaling", "--ratio 150 --boundary repeat --no-bound-alpha",
     {"ratio": 150, "boundary": "repeat", "bound_alpha": False}),
    ("scaling", "--ratio 150 --boundary clamp", {"ratio": 150, "boundary": "clamp"}),
]


def picture(dtype, channels):
    """Noise on slopes, colours under no opacity, and pairs of 16-bit values that are one inside."""
    random = np.random.default_rng(7)
    top = np.iinfo(dtype).max
    slopes = np.linspace(0, top, 24)[:, None, None] * np.linspace(0.4, 1, 31)[None, :, None]
    noise = random.integers(-top // 8, top // 8, (24, 31, channels))
    array = np.clip(slopes + noise, 0, top).astype(dtype)
    array[5, 4] = 257 * 40 % (top + 1) + 128 % (top + 1)
    array[5, 5:9, :3] = random.integers(0, 255, (4, 3)) * (257 if top > 255 else 1) + top // 512
    if channels == 4:
        array[..., 3] = top - array[::-1, :, 3] // 2 * (random.random((24, 31)) < 0.5)
        array[8:10, 5:20, 3] = 0
    return array


class Files(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def path(self, name):
        return str(self.folder / name)

    def write(self, array):
        height, width, channels = array.shape
        subprocess.run(
            ["convert", "-size", f"{width}x{height}", "-depth", DEPTHS[array.dtype.type],
             "-endian", "LSB", "rgba:-" if channels == 4 else "rgb:-",
             f"PNG{channels * 8 * array.itemsize}:" + self.path("in.png")],
            input=array.tobytes(), check=True)

    def read(self, name, like, shape):
        raw = subprocess.run(
            ["convert", self.path(name), "-depth", DEPTHS[like.dtype.type], "-endian", "LSB",
             "rgba:-" if like.shape[2] == 4 else "rgb:-"], stdout=subprocess.PIPE, check=True)
        return np.frombuffer(raw.stdout, like.dtype).reshape(shape)

    def run_command(self, *arguments):
        subprocess.run([BUILD / "bin/imgbasic", *arguments, "--quiet", "--force"], check=True,
                       env=os.environ | {"XDG_CONFIG_HOME": self.path("none")})


class CommandLine(Files):
    def test_filters_give_the_same_pixels(self):
        for dtype in DEPTHS:
            opaque = picture(dtype, 4)
            opaque[..., 3] = np.iinfo(dtype).max
            for source, cases in [(picture(dtype, 3), CASES), (opaque, CASES[-1:]),
                                  (picture(dtype, 4), CASES + TRANSLUCENT_CASES)]:
                self.write(source)
                for name, arguments, options in cases:
                    with self.subTest(name, arguments=arguments, source=(dtype, source.shape)):
                        self.run_command(name, self.path("in.png"), "-o", self.path("out.png"),
                                         *arguments.split())
                        before = source.copy()
                        result = getattr(imgbasic, name)(source, **options)
                        self.assertEqual((result.dtype, result.shape[2]),
                                         (dtype, source.shape[2]))
                        np.testing.assert_array_equal(
                            result, self.read("out.png", result, result.shape))
                        np.testing.assert_array_equal(source, before)

    def test_channels_are_the_same_layers_and_picture(self):
        for dtype in DEPTHS:
            with self.subTest(dtype=dtype):
                source = picture(dtype, 4)
                self.write(source)
                self.run_command("chan_decomp", self.path("in.png"), "-o", self.path("four.ora"))
                self.run_command("chan_merge", self.path("four.ora"), "--layer", "3", "-o",
                                 self.path("one.png"))
                layers = imgbasic.chan_decomp(source)
                with zipfile.ZipFile(self.path("four.ora")) as archive:
                    files = sorted(n for n in archive.namelist() if n.startswith("data/"))
                    archive.extractall(self.folder)
                self.assertEqual(len(files), 4)
                for file, layer in zip(files, layers):
                    np.testing.assert_array_equal(layer, self.read(file, layer, layer.shape))
                merged = imgbasic.chan_merge(*layers)
                np.testing.assert_array_equal(merged,
                                              self.read("one.png", merged, merged.shape))


class Package(unittest.TestCase):
    def test_arrays_in_any_order_of_memory(self):
        source = picture(np.uint16, 4)
        np.testing.assert_array_equal(imgbasic.mono(source[::-2, 3:].transpose(1, 0, 2)),
                                      imgbasic.mono(source[::-2, 3:].transpose(1, 0, 2).copy()))
        np.testing.assert_array_equal(imgbasic.scaling(source, width=31), source)

    def test_objects_begin_with_the_defaults_of_the_tables(self):
        for name, row in FILTERS.items():
            with FilterObject(name, 1, 1) as process:
                for parameter, option in row.options.items():
                    self.assertEqual(getattr(process.fields, option.field), option.initial or 0,
                                     f"{name} {parameter}")

    def test_threads_get_what_one_gets(self):
        sources = [np.roll(picture(np.uint8, 4), i, 1) for i in range(40)]

        def work(source):
            return imgbasic.col_reduce(imgbasic.gray(source, tint="red"), colors=5).tobytes()

        with ThreadPoolExecutor(4) as pool:
            self.assertEqual(list(pool.map(work, sources)), list(map(work, sources)))

    def test_faults_name_what_is_possible(self):
        good = picture(np.uint8, 3)
        for fault, words, call in [
                (ValueError, "1 to 255", lambda: imgbasic.mono(good, threshold=256)),
                (ValueError, "'ntsc'", lambda: imgbasic.gray(good, method="grey")),
                (ValueError, "1 to 8192", lambda: imgbasic.scaling(good, ratio=0.1)),
                (ValueError, "a width", lambda: imgbasic.scaling(good, width=3, ratio=5)),
                (ValueError, "a number", lambda: imgbasic.scaling(good, ratio="half")),
                (ValueError, "0xFFFFFF", lambda: imgbasic.gray(good, draw_color=1 << 24)),
                (ValueError, "one size", lambda: imgbasic.chan_merge(good, good, good, good[1:])),
                (ValueError, "pixels", lambda: imgbasic.nega(good[:0])),
                (TypeError, "float64", lambda: imgbasic.nega(good / 2)),
                (TypeError, "24 x 31", lambda: imgbasic.nega(good[..., 0])),
                (TypeError, "list", lambda: imgbasic.nega([[0, 0, 0]])),
                (TypeError, "tone", lambda: imgbasic.nega(good, tone=1)),
                (TypeError, "1 to 256", lambda: imgbasic.col_reduce(good, colors=2.5))]:
            with self.subTest(inspect.getsource(call)), self.assertRaisesRegex(fault, words):
                call()


if __name__ == "__main__":
    unittest.main()
