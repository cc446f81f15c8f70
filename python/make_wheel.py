#!/usr/bin/env python3
"""Packs the built Python package and the module into a wheel: make_wheel.py PACKAGE LIBRARY FOLDER.

The wheel asks for a system whose C library is no older than this one's. Its files are as old as
SOURCE_DATE_EPOCH says. Prints the wheel's path.
"""

import base64
import hashlib
import os
import platform
import re
import sys
import time
import zipfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


def metadata(version):
    # The description is the module's docstring, which is what help() shows first.
    text = (ROOT / "python/imgbasic/__init__.py").read_text(encoding="utf-8").split('"""')[1]
    return (f"Metadata-Version: 2.1\nName: imgbasic\nVersion: {version}\n"
            f"Summary: {text.splitlines()[0]}\nLicense: MIT\nLicense-File: LICENSE\n"
            "Requires-Python: >=3.10\nRequires-Dist: numpy\n"
            f"Description-Content-Type: text/plain\n\n{text}\n")


def main():
    package, library, folder = map(Path, sys.argv[1:])
    version = re.search('VERSION = "(.+)"', (package / "_options.py").read_text())[1]
    system = platform.libc_ver()[1].replace(".", "_")
    tag = f"py3-none-manylinux_{system}_{platform.machine()}"
    info = f"imgbasic-{version}.dist-info"
    files = {f"imgbasic/{file.name}": file.read_bytes() for file in sorted(package.glob("*.py"))}
    files["imgbasic/libimgbasic.so"] = library.read_bytes()
    files[f"{info}/LICENSE"] = (ROOT / "LICENSE").read_bytes()
    files[f"{info}/METADATA"] = metadata(version).encode()
    files[f"{info}/WHEEL"] = (f"Wheel-Version: 1.0\nGenerator: imgbasic\nRoot-Is-Purelib: false\n"
                              f"Tag: {tag}\n").encode()
    record = "".join(
        f"{name},sha256={base64.urlsafe_b64encode(hashlib.sha256(data).digest()).decode().rstrip('=')}"
        f",{len(data)}\n" for name, data in files.items())
    files[f"{info}/RECORD"] = f"{record}{info}/RECORD,,\n".encode()

    date = time.gmtime(int(os.environ["SOURCE_DATE_EPOCH"]))[:6]
    wheel = folder / f"imgbasic-{version}-{tag}.whl"
    with zipfile.ZipFile(wheel, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, data in files.items():
            entry = zipfile.ZipInfo(name, date)
            entry.external_attr = (0o100755 if name.endswith(".so") else 0o100644) << 16
            archive.writestr(entry, data, zipfile.ZIP_DEFLATED)
    print(wheel)


if __name__ == "__main__":
    main()
