#!/usr/bin/env python3
"""Runs language tests: programs with their answers beside the questions.

Usage: run_language.py VESKO FILE-OR-FOLDER...

A test is a .vk file. It is fed to the program's standard input, and all that the program prints must be the
text behind the marks of the file, in order. The mark is "//=" beside the question, "%=" on a line of its own:

    1 + 2       //=     3
    [1; 2]
    %=     1
    %=     2

One blank behind a mark is not part of the text; blanks at the end of a line do not count. Lines that begin
with "%:" steer the run:

    %: status N       expected exit status (0 unless given)
    %: startup        the file is the user's start-up file; standard input is empty
    %: args A B ...   command-line arguments, in place of the run-time path of the repository; {dir} is the
                      folder of the test
    %: no newline     the last line is fed without its line end
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile

SECONDS = 60
ANSWER = re.compile(r"(?:^\s*%|//)= ?(.*)")
RUNTIME = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "rt")
RUN_TIME_PATH = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "rt")


class Case:
    def __init__(self, path):
        self.path = path
        self.source = open(path, "rb").read()
        self.status, self.startup, self.args = 0, False, ["-rtpath", RUN_TIME_PATH]
        self.expected = []
        for line in self.source.decode("utf-8", "surrogateescape").split("\n"):
            text = line.strip()
            answer = ANSWER.search(line)
            if answer:
                self.expected.append(answer.group(1).rstrip())
            elif text.startswith("%: status"):
                self.status = int(text.split()[2])
            elif text.startswith("%: startup"):
                self.startup = True
            elif text.startswith("%: args"):
                here = os.path.dirname(os.path.abspath(path))
                self.args = [a.format(dir=here) for a in text.split()[2:]]
            elif text.startswith("%: no newline"):
                self.source = self.source.rstrip(b"\n")

    def run(self, program):
        """The complaint, or None."""
        home = tempfile.mkdtemp(prefix="vesko-test-")
        try:
            if self.startup:
                with open(os.path.join(home, ".veskorc"), "wb") as rc:
                    rc.write(self.source)
            env = dict(os.environ, HOME=home)
            done = subprocess.run(
                [program] + self.args,
                input=b"" if self.startup else self.source,
                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=env, cwd=home, timeout=SECONDS,
            )
        except subprocess.TimeoutExpired:
            return "no end within %d seconds" % SECONDS
        finally:
            shutil.rmtree(home, ignore_errors=True)
        text = done.stdout.decode("utf-8", "surrogateescape")
        got = [line.rstrip() for line in text.split("\n")]
        if got and got[-1] == "":
            got.pop()
        if got != self.expected:
            return difference(self.expected, got)
        if done.returncode != self.status:
            return "exit status %d, expected %d" % (done.returncode, self.status)
        return None


def difference(expected, got):
    for k in range(max(len(expected), len(got))):
        want = expected[k] if k < len(expected) else "<nothing more>"
        have = got[k] if k < len(got) else "<nothing more>"
        if want != have:
            return "answer %d\n    expected: %s\n    got:      %s\n  whole output:\n%s" % (
                k + 1, want, have, "\n".join("    " + line for line in got))
    return None


def collect(paths):
    for path in paths:
        if os.path.isdir(path):
            for folder, _, names in sorted(os.walk(path)):
                for name in sorted(names):
                    if name.endswith(".vk"):
                        yield os.path.join(folder, name)
        else:
            yield path


def main():
    program, failed, count = os.path.abspath(sys.argv[1]), 0, 0
    for path in collect(sys.argv[2:]):
        count += 1
        complaint = Case(path).run(program)
        if complaint:
            failed += 1
            print("FAIL %s: %s" % (path, complaint.encode("utf-8", "replace").decode()))
    print("%d of %d language tests passed" % (count - failed, count))
    sys.exit(1 if failed or not count else 0)


if __name__ == "__main__":
    main()
