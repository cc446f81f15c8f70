#!/usr/bin/env python3
"""Works the plug-in's dialogs in GIMP by the keyboard, and looks at the canvas meanwhile.
interactive_test.scm has the steps.

Usage: interactive_test.py FOLDER, the folder of the built programs. Exit status 77: no GIMP or no
virtual screen here.
"""

import os
import shutil
import struct
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
BLUE, ORANGE = 0x3060C0, 0xCF9F3F  # the layer, and the same inverted
CANVAS = 15000  # pixels of one colour that only the canvas can show, beside the dialog
PATIENCE = 90  # seconds


def wait_for(condition):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.1)
    return True


class Screen:
    """A virtual screen, whose pixels are in a file (X11's window dump)."""

    def __init__(self, folder):
        self.dump = os.path.join(folder, "Xvfb_screen0")
        read_end, write_end = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", "1400x1000x24", "-fbdir", folder],
            pass_fds=[write_end], stderr=subprocess.DEVNULL)
        os.environ["DISPLAY"] = ":" + os.read(read_end, 16).decode().strip()

    def count(self, color):
        with open(self.dump, "rb") as file:
            data = file.read()
        return data.count(struct.pack("<I", color)[:3])  # what the fourth byte is does not matter

    def shows(self, color):
        return wait_for(lambda: self.count(color) > CANVAS)

    def xdotool(self, *words):
        return subprocess.run(["xdotool", *words], text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, check=False).stdout

    def wait_for_window(self, title):
        self.window = ""

        def found():
            self.window = self.xdotool("search", "--onlyvisible", "--name", f"^{title}$").strip()
            return self.window
        return wait_for(found)

    def press(self, *keys):
        self.xdotool("windowfocus", "--sync", self.window.splitlines()[0])
        for key in keys:
            self.xdotool("key", key)

    def press_in_image(self, key):
        if not self.wait_for_window(".* – GIMP"):
            return False
        self.press(key)
        return True

    def place_image(self):
        """Without a window manager it may lie beyond the screen."""
        if not self.wait_for_window(".* – GIMP"):
            return False
        window = self.window.splitlines()[0]
        self.xdotool("windowmove", window, "0", "0", "windowsize", window, "1400", "1000")
        return True


def carry_out(screen, step):
    """Does what the script asks for; false when the screen never shows what it should."""
    action, _, title = step.partition(" ")
    if action == "place":
        return screen.place_image()
    if action == "undo":
        return screen.press_in_image("ctrl+z")
    if not screen.wait_for_window(title):
        return False
    if action == "size":
        screen.press("ctrl+a", "1", "5", "0", "Tab", "alt+r")
        return True
    if not screen.shows(ORANGE):
        return False
    screen.press("Escape" if action == "cancel" else "alt+r")
    return action != "cancel" or screen.shows(BLUE)


def work(screen, gimp, folder):
    """Carries out the steps that the script asks for, to its end or to the first that fails."""
    asked = 1
    last = time.monotonic()
    while gimp.poll() is None:
        if time.monotonic() > last + PATIENCE:
            return f"nothing happened after step {asked - 1}"
        request = os.path.join(folder, f"ask-{asked}")
        if os.path.exists(request) and os.path.getsize(request) > 0:
            with open(request, encoding="utf-8") as file:
                step = file.read().strip()
            if not carry_out(screen, step):
                return f"step {asked}, {step}"
            asked += 1
            last = time.monotonic()
        time.sleep(0.1)
    return ""


def run(plugin, folder):
    screen = Screen(folder)
    os.makedirs(os.path.join(folder, "profile/plug-ins/imgbasic-gimp"))
    os.symlink(plugin, os.path.join(folder, "profile/plug-ins/imgbasic-gimp/imgbasic-gimp"))
    script = f'(define folder "{folder}/")(load "{HERE}/interactive_test.scm")'
    with open(os.path.join(folder, "log"), "w", encoding="utf-8") as log:
        gimp = subprocess.Popen(["gimp", "-n", "-s", "-b", script], stdout=log,
                                stderr=subprocess.STDOUT, env={
                                    **os.environ, "GIMP2_DIRECTORY": folder + "/profile",
                                    "LC_ALL": "C.UTF-8", "LANGUAGE": ""})
    try:
        failures = [work(screen, gimp, folder)]
    finally:
        gimp.kill()
        gimp.wait()
        screen.server.terminate()
        screen.server.wait()
    with open(os.path.join(folder, "report.txt"), encoding="utf-8") as file:
        lines = file.read().splitlines()
    failures += [line[2:] for line in lines if not line.startswith("1 ")]
    if lines[-1:] != ["1 end"]:
        failures.append("all of the script ran")
    failures = [failure for failure in failures if failure]
    for failure in failures:
        print("FAILED: " + failure)
    if failures:
        with open(os.path.join(folder, "log"), encoding="utf-8") as log:
            print("".join(line for line in log if "theme engine" not in line and line.strip()))
    return 1 if failures else 0


def main():
    plugin = os.path.join(os.path.abspath(sys.argv[1]), "imgbasic-gimp")
    missing = [name for name in ["gimp", "Xvfb", "xdotool"] if shutil.which(name) is None]
    if missing or not os.path.exists(plugin):
        print("SKIPPED: no", ", ".join(missing) or "plug-in for GIMP was built")
        return 77
    with tempfile.TemporaryDirectory() as folder:
        return run(plugin, folder)


if __name__ == "__main__":
    sys.exit(main())
