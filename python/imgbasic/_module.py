"""The filter module as its hosts see it; imgbasic_host.h says the same in C."""

import ctypes
import os
import shutil
from ctypes import POINTER, byref, c_bool, c_char_p, c_int, c_int32, c_uint32, c_uint64, c_void_p
from pathlib import Path

from ._options import MODULE_FOLDER


class Process(ctypes.Structure):
    _fields_ = [
        ("functions", c_void_p), ("width", c_int32), ("height", c_int32), ("hostParam", c_int32),
        ("curLayer", c_int32), ("curSubLayer", c_int32), ("drawColor", c_uint32),
        ("backColor", c_uint32), ("ownerWindow", c_void_p), ("applyCallback", c_void_p),
        ("reference", c_void_p), ("TargetType", c_int32), ("mergedImage", c_void_p)]


class Gray(Process):
    _fields_ = [("CalcMode", c_int32), ("ColorMode", c_int32)]


class Mono(Process):
    _fields_ = [("Threshold", c_int32)]


class ReduceColor(Process):
    _fields_ = [("ReduceColor", c_int32), ("DitherType", c_int32), ("SharePalette", c_bool),
                ("GraduateReduce", c_bool)]


class Scaling(Process):
    _fields_ = [
        ("newWidth", c_int32), ("newHeight", c_int32), ("RatioSize", c_bool),
        ("RatioWidth", c_int32), ("RatioHeight", c_int32), ("FixRatio", c_bool),
        ("InterType", c_int32), ("BoundaryType", c_int32), ("BoundAlpha", c_bool),
        ("ChangeBrush", c_bool), ("skipDialog", c_bool)]


OBJECTS = {"gray": Gray, "mono": Mono, "col_reduce": ReduceColor, "scaling": Scaling}
NAME_SIZE = 64


def _find():
    """Where the module is: as IMGBASIC_LIBRARY says, with the package, or with the command line."""
    name = "libimgbasic.so"
    program = shutil.which("imgbasic")
    places = [Path(__file__).with_name(name)]
    if program:
        folder = Path(program).resolve().parent
        places += [folder / name, folder / MODULE_FOLDER / name]
    if chosen := os.environ.get("IMGBASIC_LIBRARY"):
        places = [Path(chosen)]
    for place in places:
        if place.exists():
            return place
    raise ImportError(f"{name}: the filter module is not at {' or '.join(map(str, places))}; "
                      "name its file in the environment variable IMGBASIC_LIBRARY")


def _load():
    path = _find()
    try:
        library = ctypes.CDLL(str(path))
        library.ImagePluginPrepare2.restype = c_void_p
        library.ImagePluginPrepare2.argtypes = [c_char_p] + [c_int] * 5 + [c_uint32] * 2 + [
            c_uint64, c_void_p, c_uint64, c_void_p]
        library.ImagePluginPhase2.argtypes = [c_char_p, c_void_p, c_int] + [
            POINTER(c_uint32)] * 2 + [c_void_p, c_uint64, c_uint64, POINTER(c_uint32)]
        library.ImagePluginExecute4.restype = c_bool
        library.ImagePluginExecute4.argtypes = [c_char_p, c_void_p] + [c_int32] * 4 + [
            c_void_p] * 4 + [c_bool] + [POINTER(c_uint32)] * 5 + [c_char_p]
        library.ImagePluginDispose.restype = c_bool
        library.ImagePluginDispose.argtypes = [c_char_p, c_void_p]
    except (OSError, AttributeError) as fault:
        raise ImportError(f"{path}: is no filter module ({fault}); install another, or name one in "
                          "the environment variable IMGBASIC_LIBRARY") from None
    return library


_library = _load()


class FilterObject:
    """A filter's object for pictures of one size, `curLayer` 0; to be used in a with statement.

    Pixels are C-contiguous arrays of height x width x 4 channels of 16 bits, 0 to 0xFF00.
    """

    def __init__(self, name, width, height, draw_color=0, back_color=0xFFFFFF):
        self._name = name.encode("ascii")
        self._size = width, height
        self._address = _library.ImagePluginPrepare2(
            self._name, width, height, 0, 0, -1, draw_color, back_color, 0, None, 0, None)
        if not self._address:
            raise ValueError(f"the filter module has no filter {name}")
        self.fields = OBJECTS.get(name, Process).from_address(self._address)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        _library.ImagePluginDispose(self._name, self._address)

    def begin(self, phase, merged):
        """Begins a phase with the picture of the whole; the size of its results, width first."""
        width, height = map(c_uint32, self._size)
        answer = _library.ImagePluginPhase2(self._name, self._address, phase, byref(width),
                                            byref(height), merged.ctypes.data, 0, 0,
                                            byref(c_uint32()))
        if answer == 0:
            raise MemoryError(f"{self._name.decode()} has not enough memory for its result")
        return width.value, height.value

    def visit(self, phase, layer, source, result, name=b""):
        """Shows a layer, all of `source`, to the filter, which writes `result`."""
        area = (c_int32 * 4)(0, 0, *self._size)
        opacity = c_uint32(100)
        others = [c_uint32() for _ in range(4)]
        if not _library.ImagePluginExecute4(
                self._name, self._address, phase, layer, -1, 0, result.ctypes.data,
                byref((c_int32 * 4)()), source.ctypes.data, byref(area), False,
                *map(byref, others[:3]), byref(opacity), byref(others[3]),
                ctypes.create_string_buffer(name, NAME_SIZE)):
            raise MemoryError(f"{self._name.decode()} has not enough memory for its result")
