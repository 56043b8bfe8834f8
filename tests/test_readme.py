#!/usr/bin/env python3
"""The sessions in the README answer as it says: typed one after another, they print what stands below them.

Usage: test_readme.py VESKO README
"""
import difflib
import os
import re
import subprocess
import sys
import tempfile

VESKO, README = map(os.path.abspath, sys.argv[1:])
RUNTIME = os.path.join(os.path.dirname(README), "rt")


def answers(lines):
    with tempfile.TemporaryDirectory() as home:
        done = subprocess.run([VESKO, "-rtpath", RUNTIME], input="\n".join(lines).encode(), env={"HOME": home},
                              stdout=subprocess.PIPE, cwd=home, timeout=60, check=True)
    return [line.rstrip() for line in done.stdout.decode().split("\n")[:-1]]


def typed_lines(lines):
    """How many of the lines below a prompt are typed: a block goes on up to its `end`."""
    if len(lines) == 1 or "unexpected EOF" not in (answers(lines[:1]) or [""])[-1]:
        return 1
    return next(n for n, line in enumerate(lines, 1) if line.startswith("end"))


def session(text):
    """The typed lines of all sessions, and what is shown below them."""
    typed, shown = [], []
    for block in re.findall(r"^```\n(>> .*?)^```", text, re.S | re.M):
        for entry in re.split(r"^>> ", block, flags=re.M)[1:]:
            lines = [re.sub("^   ", "", line) for line in entry.split("\n")[:-1]]
            end = typed_lines(lines)
            typed += lines[:end]
            shown += ["   " + line if line else "" for line in lines[end:]]
    return typed, shown


def main():
    with open(README, encoding="utf-8") as file:
        typed, shown = session(file.read())
    found = answers(typed)
    print("\n".join(difflib.unified_diff(shown, found, "README", "vesko", lineterm="", n=2)))
    sys.exit(shown != found or not typed)


if __name__ == "__main__":
    main()
