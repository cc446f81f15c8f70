#!/usr/bin/env python3
"""Writes the seeds that the inflate fuzzer starts from into a folder, the same at every run.

    fuzz/inflate_seeds.py fuzz/corpus/inflate

A seed is a compressed pixel stream; its reserved header field says how large the pieces are in
which it is read. Its name tells the data and how zlib compressed it.
"""
import os
import random
import struct
import sys
import zlib

LARGEST = 3600  # bytes of DEFLATE data; the fuzzer's own inputs have up to 4096
METHODS = {  # level, strategy
    "fast": (1, zlib.Z_DEFAULT_STRATEGY),
    "best": (9, zlib.Z_DEFAULT_STRATEGY),
    "fixed": (6, zlib.Z_FIXED),
    "huffman": (6, zlib.Z_HUFFMAN_ONLY),
    "rle": (6, zlib.Z_RLE),
    "stored": (0, zlib.Z_DEFAULT_STRATEGY),
}


def deflate(data, method):
    level, strategy = METHODS[method]
    compressor = zlib.compressobj(level, zlib.DEFLATED, -15, 8, strategy)
    return compressor.compress(data) + compressor.flush()


def stream(data, deflated, piece, size=None, crc=None, has_crc=True):
    size = len(data) if size is None else size
    crc = zlib.crc32(data) if crc is None else crc
    header = struct.pack("<HHII", 0xFA41, 1 if has_crc else 0, size, piece)
    return header + (struct.pack("<I", crc) if has_crc else b"") + deflated


def photo(count):
    pixel = [128, 128, 128, 255]
    pixels = bytearray()
    for _ in range(count // 4):
        pixel[:3] = [max(0, min(255, value + random.randint(-3, 3))) for value in pixel[:3]]
        pixels += bytes(pixel)
    return bytes(pixels)


def runs(count):
    data = bytearray()
    while len(data) < count:
        data += random.randbytes(random.randint(1, 20)) * random.randint(1, 60)
    return bytes(data[:count])


def far_match():
    """The same 258 bytes 32 KiB apart, and more than one window of zeros behind them."""
    start = random.randbytes(300)
    return start + bytes(32768 - len(start)) + start[:258] + bytes(90000) + b"end"


def flushed(data):
    compressor = zlib.compressobj(6, zlib.DEFLATED, -15)
    deflated = compressor.compress(data) + compressor.flush(zlib.Z_FULL_FLUSH)
    deflated += compressor.compress(data) + compressor.flush(zlib.Z_SYNC_FLUSH)
    return stream(data + data, deflated + compressor.flush(), 100)


def seeds():
    kinds = {
        "empty": b"",
        "one": b"x",
        "photo": photo(3000),
        "flat": bytes([1, 2, 3, 255]) * 3000,
        "noise": random.randbytes(1200),
        "runs": runs(9000),
        "text": b"the quick brown fox jumps over the lazy dog. " * 40,
        "far": far_match(),
    }
    for kind, data in kinds.items():
        for method in METHODS:
            deflated = deflate(data, method)
            if len(deflated) <= LARGEST:
                piece = random.choice([1, 7, 300, 40000])
                yield f"{kind}-{method}", stream(data, deflated, piece, has_crc=method != "best")
    data = photo(900)
    deflated = deflate(data, "best")
    yield "photo-flushed", flushed(data)
    yield "photo-ends-early", stream(data, deflated, 100, size=len(data) + 5)
    yield "photo-goes-on", stream(data[:500], deflated, 100)
    yield "photo-cut", stream(data, deflated[:-40], 100)
    yield "photo-other-crc", stream(data, deflated, 100, crc=0)


random.seed(7)
for name, seed in seeds():
    with open(os.path.join(sys.argv[1], name), "wb") as file:
        file.write(seed)
