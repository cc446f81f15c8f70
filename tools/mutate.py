#!/usr/bin/env python3
"""Plants the small faults of mutations.toml one by one into a copy of the tree under build/mutate
and lets the native tests look for them: first the program that a fault names, and when that sees
nothing all others, the quickest first. Prints who saw each fault, and fails when nobody saw one, or
when its text is not found exactly once.

    tools/mutate.py [WORD ...]    only the faults with one of these words in file or description
"""
import filecmp
import os
import re
import resource
import shutil
import subprocess
import sys
import time
import tomllib

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
TREE = os.path.join(ROOT, "build", "mutate")
BUILD = os.path.join(TREE, "build", "native")
# A fault may make a program hang; on a busy machine a sound one takes long.
LONGEST_RUN = 300  # seconds of processor time
LONGEST_WAIT = 3600  # seconds


def copy_tree():
    """Copies what git knows; files that are the same keep their times, so that little is built."""
    files = subprocess.run(["git", "-C", ROOT, "ls-files", "-co", "--exclude-standard"],
                           capture_output=True, check=True, text=True).stdout.splitlines()
    for name in files:
        source, target = os.path.join(ROOT, name), os.path.join(TREE, name)
        if os.path.isfile(source) and not (os.path.isfile(target)
                                           and filecmp.cmp(source, target, shallow=False)):
            os.makedirs(os.path.dirname(target), exist_ok=True)
            shutil.copy(source, target)
    subprocess.run(["cmake", "--preset", "native", "-DIMGBASIC_BENCH=OFF"], cwd=TREE, check=True,
                   capture_output=True)


def build(target):
    done = subprocess.run(["cmake", "--build", BUILD, "--target", target, "--", "--quiet"],
                          capture_output=True, text=True)
    if done.returncode != 0:
        raise RuntimeError("does not compile:\n" + done.stdout[-2000:])


def limit_processor_time():
    resource.setrlimit(resource.RLIMIT_CPU, (LONGEST_RUN, LONGEST_RUN))


def run(program, test_filter="*"):
    """The tests that failed, or how else the program ended; empty when it passed."""
    command = [os.path.join(BUILD, "bin", program), "--gtest_brief=1",
               "--gtest_fail_fast", "--gtest_filter=" + test_filter]
    try:
        done = subprocess.run(command, capture_output=True, timeout=LONGEST_WAIT,
                              preexec_fn=limit_processor_time)
    except subprocess.TimeoutExpired:
        return "no end"
    output = done.stdout.decode(errors="replace")
    if "[  PASSED  ] 0 tests" in output and done.returncode == 0:
        raise RuntimeError(f"{program} has no test {test_filter}")
    if done.returncode == 0:
        return ""
    failed = re.search(r"\[  FAILED  \] (\S+?),? ", output)
    return failed.group(1) if failed else f"exit status {done.returncode}"


def quickest_first():
    """The test programs, which must pass as they are."""
    build("all")
    listing = subprocess.run(["ctest", "--test-dir", BUILD, "--show-only"],
                             capture_output=True, check=True, text=True).stdout
    times = {}
    for program in re.findall(r"Test +#\d+: (\w+)", listing):
        begin = time.monotonic()
        if failed := run(program):
            sys.exit(f"mutate: {program} fails without a fault: {failed}")
        times[program] = time.monotonic() - begin
    return sorted(times, key=times.get)


def seen_by(fault, programs):
    """Which test sees the fault, None when none does; the tree holds it."""
    build(fault["program"])
    if failed := run(fault["program"], fault.get("tests", "*")):
        return failed
    build("all")
    for program in programs:
        if failed := run(program):
            return f"{failed} (not by {fault['program']} {fault.get('tests', '*')})"
    return None


def judge(fault, programs):
    """Plants the fault, and removes it again; how that went and whether it was seen."""
    path = os.path.join(TREE, fault["file"])
    with open(path, encoding="utf-8") as source:
        text = source.read()
    # Layout is free: any space in the table is any space in the file.
    pattern = r"\s+".join(map(re.escape, fault["find"].split()))
    places = list(re.finditer(pattern, text))
    if len(places) != 1:
        return f"FOUND {len(places)} TIMES", False
    begin, end = places[0].span()
    try:
        with open(path, "w", encoding="utf-8") as source:
            source.write(text[:begin] + fault["with"] + text[end:])
        test = seen_by(fault, programs)
        return (test, True) if test else ("SEEN BY NO TEST", False)
    except RuntimeError as error:
        return str(error), False
    finally:
        with open(path, "w", encoding="utf-8") as source:
            source.write(text)


def main():
    with open(os.path.join(ROOT, "tools", "mutations.toml"), "rb") as table:
        faults = tomllib.load(table)["fault"]
    words = sys.argv[1:]
    if words:
        faults = [f for f in faults if any(w in f["file"] + " " + f["breaks"] for w in words)]
    copy_tree()
    programs = quickest_first()
    unseen = 0
    for fault in faults:
        result, seen = judge(fault, programs)
        unseen += 0 if seen else 1
        print(f"{'seen' if seen else 'NOT '}  {fault['file']}: {fault['breaks']}\n      {result}",
              flush=True)
    print(f"{len(faults) - unseen} of {len(faults)} faults were seen")
    sys.exit(1 if unseen or not faults else 0)


main()
