#!/usr/bin/env python3
"""The help texts: every name has one, the program shows it, and every example gives the answer it tells.

Usage: test_help.py VESKO COMPILER
"""
import os
import re
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "scripts"))
import make_help  # noqa: E402

VESKO, COMPILER = os.path.abspath(sys.argv[1]), sys.argv[2]
MARK = "~~~~ %d"
ORDERED = ["[1, 2; 3, 4]", "[1Z, 2Z; 3Z, 4Z]", "[1B, 2B; 3B, 4B]", "binary(2, 2)", "1:3"]
KINDS = {
    "numbers of all kinds": ORDERED + ["[1i, 2; 3, 4]"], "numbers that are not complex": ORDERED,
    "real numbers": ORDERED[:1], "integers": ORDERED[1:2], "ranges": ORDERED[4:], "complex numbers": ["[1i, 2; 3, 4]"],
    "matrices of more dimensions": ["zeros(2, 2, 2)"], "lists of numbers": ["(1, 2)"],
    "lists": ["(1, 2)", '("a", [1])'], "texts": ['"ab"'], "sets": ["{1, 2}"], "hash tables": ['{"a" => 1}'],
    "null": ["[]"], "others": ["sin", "{a = 1}", "1 to 2"],
}
SAMPLES = sorted({sample for samples in KINDS.values() for sample in samples})


def answers(commands):
    """The output of the program by command, each of which is a list of lines; trailing blanks are cut."""
    lines = []
    for k, command in enumerate(commands):
        lines += command + ['"%s"' % (MARK % k)]
    with tempfile.TemporaryDirectory(prefix="vesko-test-") as home:
        done = subprocess.run([VESKO, "-rtpath", os.path.dirname(VESKO)], input="\n".join(lines) + "\n",
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, cwd=home, timeout=120,
                              env=dict(os.environ, HOME=home), encoding="utf-8")
    output = [line.rstrip() for line in done.stdout.split("\n")]
    found = []
    for k in range(len(commands)):
        end = output.index("   " + MARK % k)
        found.append(output[:end])
        output = output[end + 1:]
    return found


class Help(unittest.TestCase):
    maxDiff = None
    entries = make_help.entries() + make_help.shapes()
    texts = make_help.texts(COMPILER)

    def test_every_name_has_a_text(self):
        names = (list(make_help.builtins(COMPILER)) + make_help.keywords(COMPILER) + make_help.commands()
                 + make_help.constants() + [name for entry in self.entries for name in entry.see])
        self.assertGreater(len(names), 400)
        self.assertEqual([name for name in names if name not in self.texts], [],
                         "names without an entry in docs/help")
        named = [name for entry in self.entries for name in entry.names]
        self.assertEqual([name for name in set(named) if named.count(name) > 1], [], "names with two entries")

    def test_lines_are_short(self):
        for name, text in self.texts.items():
            for line in text.splitlines():
                self.assertLessEqual(len(line), make_help.WIDTH, "%s: %s" % (name, line))

    def test_the_program_shows_the_texts(self):
        for name, shown in zip(self.texts, answers([['help "%s"' % name] for name in self.texts])):
            self.assertEqual("\n".join(shown), self.texts[name].rstrip("\n"), "help " + name)

    def test_examples_give_their_answers(self):
        """All share a run of the program: their variables stay."""
        examples = [(entry.names[0], *pair) for entry in self.entries for pair in entry.examples()]
        self.assertGreater(len(examples), 250)
        for (name, lines, expected), shown in zip(examples, answers([lines for _, lines, _ in examples])):
            shown = [re.sub(r"^(   Error +)\d+", r"\g<1>1", line) for line in shown]
            self.assertEqual("\n".join(shown), "\n".join(expected), "the example of %s: %s" % (name, lines))

    def test_kinds_that_are_taken(self):
        """Each name takes the kinds that its text tells, and refuses all others."""
        calls = [(name, entry.takes, sample) for entry in self.entries if entry.takes for name in entry.names
                 for sample in SAMPLES]
        self.assertGreater(len(calls), 800)
        results = answers([["%s((%s));" % (name, sample)] for name, _, sample in calls])
        for (name, takes, sample), shown in zip(calls, results):
            taken = any(sample in KINDS[kind] for kind in takes)
            self.assertEqual("Error" not in "".join(shown), taken, "%s(%s): %s" % (name, sample, shown))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
