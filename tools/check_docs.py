#!/usr/bin/python3
"""./dev check-docs, the part in Python: does what the documents say, and looks up what they name.

An indented block of a page is taken for commands: of a shell, of Python where it begins with
`import`, of GIMP where it begins with a parenthesis. Each page gets a folder that looks like the
tree with a user's pictures in it, and one shell that goes through its blocks from top to bottom, so
that a page only works where its own steps lead. docs/many-machines.md has a test of its own.
"""

import os
import re
import shlex
import subprocess
import sys
import tempfile
from pathlib import Path

TREE = Path(__file__).resolve().parent.parent
PAGES = ["README.md", "README.ja.md", "CONTRIBUTING.md"]
PAGES += sorted(str(page.relative_to(TREE)) for page in (TREE / "docs").glob("*.md"))
PROGRAM = TREE / "build/native/bin/imgbasic"
ON_THEIR_OWN = {"docs/many-machines.md"}

# How lines begin that are not run here, and why.
NOT_RUN = {
    "./dev bench": "measures for minutes",
    "taskset -c 1": "measures for minutes",
    "cd /usr/share/backgrounds": "is in a package of its own",
    "./dev check": "takes an hour",
    "./dev demo": "is run beside this program",
    "./dev dist": "./dev check-dist does it",
    "./dev format": "changes the tree",
    "./dev gimp": "opens a window",
    "./dev test": "takes half an hour",
    "lib/image/point/": "names of files",
    "bench/nega_bench.cpp": "names of files",
    "tests/image/point/": "names of files",
    "sudo ": "asks for a password",
}

# What stands around the calls of a page for GIMP; each returns the layer or group that it made.
GIMP_CALLS = """(let* ((image (car (gimp-file-load 1 "photo.png" "photo.png")))
                         (drawable (car (gimp-image-get-active-layer image)))
                         (group drawable)) {calls})"""

faults = []
unused = set(NOT_RUN)


def blocks(text):
    """The indented blocks of a page: how many lines stand before, and the block's lines."""
    for block in re.finditer(r"(?<=\n\n)(?:    .*\n|\n(?=    ))+", text):
        yield text.count("\n", 0, block.start()), [line[4:] for line in block[0].splitlines()]


def is_run(line):
    for start in NOT_RUN:
        if line.startswith(start):
            unused.discard(start)
            return False
    return True


def commands(page):
    """What the page tells a shell, each line where it is on the page, Python and GIMP to do."""
    text = (TREE / page).read_text(encoding="utf-8")
    shell, python, gimp = [""] * text.count("\n"), [], []
    for start, block in blocks(text):
        if block[0].startswith("import "):
            python += block
        elif block[0].startswith("("):
            gimp += [line.partition(" ;")[0] for line in block]
        else:
            shell[start:start + len(block)] = [line if is_run(line) else "" for line in block]
    return shell, python, gimp


def make_folder(folder):
    """What looks like the tree."""
    (folder / "home").mkdir()
    (folder / "build").mkdir()
    for entry in [*TREE.iterdir(), TREE / "build/native"]:
        if entry.name != "build":
            (folder / entry.relative_to(TREE)).symlink_to(entry)


def make_pictures(folder):
    """The pictures that the pages under docs/ speak of."""
    sample = TREE / "samples/landscape.ora"
    for name in ["photo.png", "photo.jpg", "scan.png", "scan.tif"]:
        subprocess.run([PROGRAM, "scaling", sample, "--ratio", "20", "--quiet", "-o", folder / name],
                       check=True)
    (folder / "drawing.ora").write_bytes(sample.read_bytes())


def run(folder, page, argv, **settings):
    """Does what a page says, in its folder and without what this user has set."""
    environment = {"HOME": str(folder / "home"), "PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8",
                   "IMGBASIC_LIBRARY": str(TREE / "build/native/bin/libimgbasic.so"),
                   "PYTHONPATH": str(TREE / "build/native/python")} | settings
    result = subprocess.run(argv, cwd=folder, env=environment, stdin=subprocess.DEVNULL, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    # GIMP goes on after a failure, and a test program without tests; both end well.
    in_vain = re.search("execution error|PASSED  . 0 tests", result.stdout)
    if result.returncode or in_vain:
        faults.append(f"{page}: {shlex.join(argv)[:40]}... ended with {result.returncode}:\n"
                      + "\n".join(result.stdout.splitlines()[-12:]))


def do(page):
    shell, python, gimp = commands(page)
    if not any(shell + python + gimp):
        return 0
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        make_folder(folder)
        # The README has to bring its reader to a program that runs, and to pictures to try it with.
        path = os.environ["PATH"]
        if page.startswith("docs/"):
            make_pictures(folder)
            path = f"{TREE}/build/native/bin:{path}"
        shell[0] = f"set -eEuo pipefail; trap 'echo {page}:$LINENO: $BASH_COMMAND' ERR"
        run(folder, page, ["bash", "-c", "\n".join(shell)], PATH=path)
        if python:
            array = "import numpy\narray = numpy.zeros((90, 120, 4), numpy.uint8)\n"
            run(folder, page, ["/usr/bin/python3", "-c", array + "\n".join(python)])
        if gimp:
            calls = " ".join(f"(set! group (car {call})) (set! drawable group)" for call in gimp)
            run(folder, page, ["gimp", "-i", "-d", "-f", "-b", GIMP_CALLS.format(calls=calls),
                               "-b", "(gimp-quit 1)"])
    return sum(map(bool, shell)) - 1 + len(python) + len(gimp)


def anchors(page):
    """What the headings of a page are called in links."""
    headings = re.findall(r"^#+ (.*)", page.read_text(encoding="utf-8"), re.M)
    return {re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-") for heading in headings}


def look_up(page):
    """Looks for what a page links to, and for the files and the verbs of ./dev that it names."""
    text = (TREE / page).read_text(encoding="utf-8")
    for link in re.findall(r"\]\((?!https?:)([^)]+)\)", text):
        name, _, anchor = link.partition("#")
        target = (TREE / page).parent / name if name else TREE / page
        if not target.exists() or anchor and anchor not in anchors(target):
            faults.append(f"{page}: leads to {link}, which is not there")
    folders = "|".join(folder.name for folder in TREE.iterdir() if folder.is_dir())
    for file in re.findall(rf"(?<![\w./*-])(?:{folders})/[\w./*-]+", text):
        if not file.startswith(("build/", "dist/")) and "NAME" not in file:
            if not list(TREE.glob(file.rstrip("./"))):
                faults.append(f"{page}: names {file}, which is not there")
    verbs = re.findall(r"^([a-z-]+)\)$", (TREE / "dev").read_text(encoding="utf-8"), re.M)
    for verb in re.findall(r"\./dev\s+([a-z-]+)", text):
        if verb not in verbs + ["help"]:
            faults.append(f"{page}: names ./dev {verb}, which is no verb")


def check_flags():
    """The flags that the two pages about the command line speak of are in its help."""
    def help_of(*words):
        return subprocess.run([PROGRAM, *words, "--help"], check=True, stdout=subprocess.PIPE,
                              text=True).stdout

    names = re.findall(r"^  ([a-z_]+) ", help_of().partition("Subcommands:")[2], re.M)
    flags = set(re.findall(r"--[a-z-]+", " ".join(map(help_of, names))))
    for page in ["README.md", "docs/command-line.md"]:
        spans = " ".join(re.findall(r"`([^`]+)`", (TREE / page).read_text(encoding="utf-8")))
        faults.extend(f"{page}: names {flag}, which no command has"
                      for flag in set(re.findall(r"(?<!\S)--[a-z-]+", spans)) - flags)


def texts_of_windows():
    """The Japanese texts of the options dialogs with the lists in them, and those of the viewer."""
    def read(pattern, files):
        found = {text for file in TREE.glob(files) if file.name != "texts.h"  # messages
                 for text in re.findall(pattern, file.read_text(encoding="utf-8"))}
        return {text for text in found if not text.isascii()}

    dialogs = read(r'"([^"\n]+)"', "plugin/imgbasic/dialogs/dialogs.rc")
    dialogs |= read(r'\{"([^"]+)", "', "plugin/imgbasic/*.h")
    viewer = read(r'L"([^"]+)"', "host/viewer/*")
    return dialogs, {re.sub(r"\(&.\)|…", "", text) for text in viewer}


def check_japanese_words():
    """What README.ja.md quotes stands on the screen so, and no word of the dialogs is missing."""
    dialogs, viewer = texts_of_windows()
    quoted = set(re.findall("「([^」]+)」", (TREE / "README.ja.md").read_text(encoding="utf-8")))
    faults.extend(f"README.ja.md: no window says 「{word}」" for word in quoted - dialogs - viewer)
    faults.extend(f"README.ja.md: lacks 「{word}」" for word in dialogs - quoted)
    return len(quoted)


def main():
    index = (TREE / "docs/index.md").read_text(encoding="utf-8")
    done = 0
    for page in PAGES:
        print(f"== {page}", flush=True)
        look_up(page)
        if page not in ON_THEIR_OWN:
            done += do(page)
        name = page.removeprefix("docs/")
        if name not in ("index.md", "README.md") and f"({name})" not in index.replace("../", ""):
            faults.append(f"docs/index.md: lacks {name}")
    check_flags()
    words = check_japanese_words()
    faults.extend(f"check_docs.py: no page says {start!r} any more" for start in unused)
    print(*faults, sep="\n")
    print(f"{done} lines of commands run, {words} words of the windows looked up, "
          f"{len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
