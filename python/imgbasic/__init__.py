"""The filters of imgbasic for numpy arrays.

A picture is an array of height x width x 4 channels, red, green, blue and straight alpha, or x 3,
which is taken as opaque, of uint8 or uint16. Results have the same channels and type. No argument
is changed, and several threads may call at once.
"""

import re
from fractions import Fraction
from inspect import Parameter, Signature

import numpy as np

from ._module import FilterObject
from ._options import FILTERS, VERSION as __version__

__all__ = ["gray", "mono", "nega", "chan_decomp", "chan_merge", "col_reduce", "scaling"]

_FULL = 0xFF00  # most intensity and opacity in the module's channels


def _check(array):
    if not isinstance(array, np.ndarray) or array.dtype not in (np.uint8, np.uint16):
        raise TypeError("a picture must be a numpy array of uint8 or uint16, not "
                        f"{getattr(array, 'dtype', type(array).__name__)}")
    if array.ndim != 3 or array.shape[2] not in (3, 4):
        raise TypeError("a picture must be an array of height x width x 3 or 4, not "
                        f"{' x '.join(map(str, array.shape))}")
    if array.size == 0:
        raise ValueError("a picture must have pixels, not " + " x ".join(map(str, array.shape)))


def _to_pixels(array):
    """The module's channels: each the nearest to the array's value."""
    _check(array)
    pixels = np.full(array.shape[:2] + (4,), _FULL, np.uint16)
    channels = pixels[..., :array.shape[2]]
    if array.dtype == np.uint8:
        np.multiply(array, 256, out=channels, dtype=np.uint16)
    else:
        # value * 256 / 257, without leaving 16 bits
        np.floor_divide(array, 257, out=channels)
        channels += array % 257 >= 129
        np.subtract(array, channels, out=channels)
    return pixels


def _from_pixels(pixels, like, source=None):
    """An array of the type and channels of `like`. Where two values of 16 bits became the one that
    is there, it is the same of them as in the `source`."""
    pixels = np.minimum(pixels[..., :like.shape[2]], _FULL)
    if like.dtype == np.uint8:
        return ((pixels + 128) // 256).astype(np.uint8)
    if like.shape[2] == 4 and pixels[..., 3].min() >= _FULL - 1:
        pixels[..., 3] = _FULL  # opaque but for what the sums of an interpolation leave
    array = pixels + (pixels + 128) // 256
    if source is not None and source.shape == array.shape:
        array -= (array % 257 == 129) & (source % 257 == 128)
    return array


def _fields(name, given, opaque):
    """The object's fields and their values, of options that are given, or else their defaults."""
    fields = {}
    for parameter, option in FILTERS[name].options.items():
        value = given.get(parameter)
        if value is not None:
            fields[option.field] = option.stored(f"{name}: {parameter}", value)
        elif option.initial is not None:
            fields[option.field] = option.opaque if opaque else option.initial
    return fields


def _run(name, array, given):
    pixels = _to_pixels(array)
    height, width = array.shape[:2]
    fields = _fields(name, given, pixels[..., 3].min() == _FULL)
    colors = {color: given[color] for color in _COLORS if color in given}
    with FilterObject(name, width, height, **colors) as process:
        for field, value in fields.items():
            setattr(process.fields, field, value)
        new_width, new_height = process.begin(0, pixels)
        if FILTERS[name].changes_size and (new_width, new_height) == (width, height):
            return array.copy()
        result = np.zeros((new_height, new_width, 4), np.uint16)
        process.visit(0, 0, pixels, result)
    return _from_pixels(result, array, array)


_COLORS = {"draw_color": 0x000000, "back_color": 0xFFFFFF}  # and their defaults


def _gray(array, given):
    for color in _COLORS.keys() & given.keys():
        if not 0 <= given[color] <= 0xFFFFFF:
            raise ValueError(f"gray: {color} must be 0 to 0xFFFFFF, not {given[color]:#x}")
    return _run("gray", array, given)


_SIZE = ("width", "height", "ratio", "ratio_height")


def _in_proportion(side, numerator, denominator):
    return max((2 * side * numerator + denominator) // (2 * denominator), 1)


def _part(side, percent):
    """That many percent of a side, truncated; exact, 33.3 being 333/10."""
    try:
        return int(side * Fraction(str(percent)) / 100)
    except ValueError:
        raise ValueError(f"scaling: a ratio must be a number, percent, not {percent!r}") from None


def _new_size(shape, width=None, height=None, ratio=None, ratio_height=None):
    old_height, old_width = shape[:2]
    if (ratio is None) == (width is None and height is None):
        raise ValueError("scaling: give a width, a height or both, or else a ratio")
    if ratio is not None:
        return (_part(old_width, ratio),
                _part(old_height, ratio if ratio_height is None else ratio_height))
    if ratio_height is not None:
        raise ValueError("scaling: ratio_height goes with ratio")
    if width is None:
        return _in_proportion(height, old_width, old_height), height
    return width, _in_proportion(width, old_height, old_width) if height is None else height


def _scaling(array, given):
    _check(array)
    size = {parameter: given.pop(parameter) for parameter in _SIZE if parameter in given}
    given["width"], given["height"] = _new_size(array.shape, **size)
    return _run("scaling", array, given)


def _help(name):
    lines = [FILTERS[name].text + "."]
    for parameter, option in FILTERS[name].options.items():
        if option.is_switch:
            lines.append(f"{parameter}={not option.initial}: {option.text}")
        elif option.words:
            lines.append(f"{parameter}: {option.text}")
            lines += [f"    {word!r}: {meaning}" for word, meaning in option.words.items()]
        else:
            lines.append(f"{parameter}, {option.range_text()}: {option.text}")
        if option.initial != option.opaque:
            lines.append(f"    Unless given {option.shown(option.initial)!r}, but "
                         f"{option.shown(option.opaque)!r} for an opaque picture.")
    return re.sub("--([a-z-]+)", lambda flag: flag[1].replace("-", "_"), "\n".join(lines))


def _function(name, work=None, more=()):
    """A filter's function for one array, with the options of the module's table by keyword."""
    defaults = {parameter: None if parameter in _SIZE else option.default()
                for parameter, option in FILTERS[name].options.items()} | dict(more)
    signature = Signature(
        [Parameter("array", Parameter.POSITIONAL_ONLY)] +
        [Parameter(parameter, Parameter.KEYWORD_ONLY, default=default)
         for parameter, default in defaults.items()])

    def function(*arguments, **options):
        array = signature.bind(*arguments, **options).arguments["array"]
        return work(array, options) if work else _run(name, array, options)

    function.__name__ = function.__qualname__ = name
    function.__signature__ = signature
    function.__doc__ = _help(name)
    return function


gray = _function("gray", _gray, _COLORS)
mono = _function("mono")
nega = _function("nega")
col_reduce = _function("col_reduce")
scaling = _function("scaling", _scaling)


def chan_decomp(array, /):
    """Split a picture into four, red, green, blue and alpha, each x 4: a colour channel on opaque
    black, and alpha as the alpha of black."""
    pixels = _to_pixels(array)
    like = np.empty((0, 0, 4), array.dtype)
    layers = []
    with FilterObject("chan_decomp", pixels.shape[1], pixels.shape[0]) as process:
        process.begin(0, pixels)
        for layer in range(4):
            layers.append(np.zeros_like(pixels))
            process.visit(0, layer, pixels, layers[-1])
    return tuple(_from_pixels(layer, like) for layer in layers)


def chan_merge(red, green, blue, alpha, /):
    """Join four pictures of one size and type into one x 4: the red of the first, the green of the
    second, the blue of the third and the alpha of the fourth."""
    pixels = [_to_pixels(array) for array in (red, green, blue, alpha)]
    if any(array.shape[:2] != red.shape[:2] or array.dtype != red.dtype
           for array in (green, blue, alpha)):
        raise ValueError("chan_merge: the four pictures must have one size and type")
    names = [b"[R]picture", b"[G]picture", b"[B]picture", b"[A]picture"]
    result = np.zeros_like(pixels[0])
    with FilterObject("chan_merge", red.shape[1], red.shape[0]) as process:
        process.begin(0, pixels[0])
        for layer, source in enumerate(pixels):
            process.visit(0, layer, source, result, names[layer])
        process.begin(1, pixels[0])
        for source, name in zip(pixels, names):
            # Every layer that is merged is gone, so that the next one is on top.
            process.visit(1, 0, source, result, name)
    return _from_pixels(result, np.empty((0, 0, 4), red.dtype))
