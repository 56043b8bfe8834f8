#!/usr/bin/env python3
"""What `cmake --install` lays down: the files stand where the program looks for them, and it runs from there.

Usage: test_install.py CMAKE BUILD-FOLDER
"""
import os
import subprocess
import sys
import tempfile
import unittest

CMAKE = BUILD = None
QUESTIONS = 'help_file_path\nlibpaths\nrun("determinant.vk")\n'


def output(command, text, cwd="/"):
    """What the program prints; nobody's start-up file takes part."""
    env = dict(os.environ, HOME="/nonexistent")
    done = subprocess.run(command, input=text.encode(), stdout=subprocess.PIPE, cwd=cwd, timeout=60, env=env)
    return done.stdout.decode()


class Installed(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(suffix=" with blanks")
        self.addCleanup(folder.cleanup)
        self.root = folder.name

    def install(self, prefix):
        subprocess.run([CMAKE, "--install", BUILD, "--prefix", prefix], env=dict(os.environ, DESTDIR=self.root),
                       stdout=subprocess.DEVNULL, check=True)
        return self.root + prefix

    def check_answers(self, lines, runtime):
        """The paths lead to the run-time files, and a program that comes with them runs."""
        self.assertEqual([line.strip() for line in lines[:2]],
                         [runtime + "/share/", "(., %s/test/)" % runtime])
        self.assertEqual(lines[2:], output([BUILD + "/vesko", "-rtpath", BUILD], 'run("determinant.vk")').split("\n"))
        self.assertGreater(len(lines), 3)
        self.assertTrue(os.path.exists(runtime + "/share/intro.txt"))

    def test_a_system_is_told_by_its_configuration(self):
        for prefix in "/usr", "/usr/local":
            place = self.install(prefix)
            with open(self.root + "/etc/vesko_rt/rtpath", encoding="utf-8") as file:
                self.assertEqual(file.read(), prefix + "/share/vesko_rt\n")
            runtime = place + "/share/vesko_rt"
            self.check_answers(output([place + "/bin/vesko", "-rtpath", runtime], QUESTIONS).split("\n"), runtime)
            self.assertTrue(os.path.exists(place + "/share/man/man1/vesko.1"))

    def test_any_other_place_keeps_to_itself_and_can_move(self):
        place = self.install("/opt/first")
        self.assertEqual(os.listdir(self.root), ["opt"])
        os.rename(place, self.root + "/moved")
        os.symlink("moved/bin/vesko", self.root + "/link")
        runtime = os.path.realpath(self.root) + "/moved/share/vesko_rt"
        for name in "./moved/bin/vesko", "./link":
            for words in [], ["-help"]:
                self.check_answers(output([name, *words], QUESTIONS, cwd=self.root).split("\n"), runtime)
        self.assertEqual(output(["./link", "-rtpath", "/a"], "help_file_path", cwd=self.root).split(), ["/a/share/"])
        self.assertEqual(output(["./link", "-x"], "", cwd=self.root), "unrecognized parameter")


if __name__ == "__main__":
    BUILD, CMAKE = os.path.abspath(sys.argv.pop()), sys.argv.pop()
    unittest.main(verbosity=1)
