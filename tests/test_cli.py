#!/usr/bin/env python3
"""The program as a process: command line, run-time path, start-up file, pipes, signals, bad input.

Usage: test_cli.py VESKO
"""
import os
import signal
import subprocess
import sys
import tempfile
import time
import unittest

VESKO = None
NO_CONFIG = "cannot open configuration file\n" if not os.path.exists("/etc/vesko_rt/rtpath") else ""


def run(args=(), text="", startup=None, home=True, cwd=None):
    with tempfile.TemporaryDirectory() as folder:
        env = {k: v for k, v in os.environ.items() if k != "HOME"}
        if home:
            env["HOME"] = folder
        if startup is not None:
            with open(os.path.join(folder, ".veskorc"), "wb") as file:
                file.write(startup.encode() if isinstance(startup, str) else startup)
        data = text.encode() if isinstance(text, str) else text
        done = subprocess.run([VESKO, *args], input=data, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              env=env, cwd=cwd or folder, timeout=60)
        return done.returncode, done.stdout.decode("utf-8", "replace")


class CommandLine(unittest.TestCase):
    def test_help_words_start_as_usual(self):
        for word in ("-h", "-help", "-usage"):
            status, output = run([word], "1 + 1\n")
            self.assertEqual((status, output.replace(NO_CONFIG, "").split()), (0, ["2"]))

    def test_other_words_are_refused_without_a_line_end(self):
        self.assertEqual(run(["-x"]), (0, "unrecognized parameter"))
        self.assertEqual(run(["-path", "/tmp"]), (0, "unrecognized parameter"))

    def test_too_many_arguments_are_ignored(self):
        status, output = run(["a", "b", "c"], "1 + 1\n")
        self.assertEqual(status, 0)
        self.assertTrue(output.startswith("Wrong number of arguments; ignored\n"))
        self.assertEqual(output.split()[-1], "2")


class RuntimePath(unittest.TestCase):
    SHOW = "help_file_path\nlibpaths\n"

    def paths(self, args, **more):
        return run(args, self.SHOW, **more)[1].replace(NO_CONFIG, "").split()

    def test_given_on_the_command_line_with_and_without_a_slash(self):
        for path in ("/a/b", "/a/b/"):
            self.assertEqual(self.paths(["-rtpath", path]), ["/a/b/share/", "(.,", "/a/b/test/)"])

    def test_given_path_leaves_the_configuration_unread(self):
        self.assertNotIn("configuration", run(["-rtpath", "/a"])[1])

    def test_folder_of_an_absolute_command_name(self):
        if not NO_CONFIG:
            self.skipTest("this machine has a configuration file")
        folder = os.path.dirname(VESKO)
        self.assertEqual(self.paths([]), [folder + "/share/", "(.,", folder + "/test/)"])


class StartUpFile(unittest.TestCase):
    def test_runs_before_the_input(self):
        status, output = run(["-rtpath", "/a"], "x * 2\n", startup="x = 21;\n")
        self.assertEqual((status, output.split()), (0, ["42"]))

    def test_missing_home(self):
        self.assertIn("   Home directory not found.\n", run(["-rtpath", "/a"], home=False)[1])

    def test_a_folder_or_an_unreadable_file_is_passed_over(self):
        with tempfile.TemporaryDirectory() as folder:
            os.mkdir(os.path.join(folder, ".veskorc"))
            done = subprocess.run([VESKO, "-rtpath", "/a"], input=b"1 + 1\n", stdout=subprocess.PIPE,
                                  env=dict(os.environ, HOME=folder), timeout=60)
            self.assertEqual((done.returncode, done.stdout.split()), (0, [b"2"]))

    def test_errors_name_file_and_line_and_the_rest_runs(self):
        with tempfile.TemporaryDirectory() as folder:
            rc = os.path.join(folder, ".veskorc")
            with open(rc, "w", encoding="utf-8") as file:
                file.write("\n\n1 + * 2\n3 + 4\n")
            done = subprocess.run([VESKO, "-rtpath", "/a"], input=b"", stdout=subprocess.PIPE,
                                  env=dict(os.environ, HOME=folder), timeout=60)
            lines = done.stdout.decode().split("\n")
            self.assertIn("Error %s 3: " % rc, lines[0])
            self.assertEqual(lines[-2].split(), ["7"])

    def test_line_ends_of_all_sorts(self):
        self.assertEqual(run(["-rtpath", "/a"], startup=b"1 + 1\r\n2 + 2\n3 + 3\r4 + 4")[1].split(),
                         ["2", "4", "6", "8"])


class BadInput(unittest.TestCase):
    def check_goes_on(self, data):
        status, output = run(["-rtpath", "/a"], data + b"\n6 * 7\n")
        self.assertEqual(status, 0)
        self.assertEqual(output.split()[-1], "42")
        return output

    def test_all_bytes(self):
        for byte in range(1, 256):
            if byte not in (10, 13, ord('"'), ord("'"), ord("("), ord("["), ord("{"), ord("~")):
                self.check_goes_on(b"1 " + bytes([byte]))

    def test_a_line_of_a_megabyte(self):
        output = self.check_goes_on(b'x = "' + b"a" * 1000000 + b'";')
        self.assertLess(len(output), 1000)

    def test_a_long_sum(self):
        self.check_goes_on(b"1" + b" + 1" * 100000)

    def test_nested_brackets(self):
        for left, right in ((b"(", b")"), (b"[", b"]"), (b"{", b"}")):
            self.check_goes_on(b"x = " + left * 100000 + b"1" + right * 100000 + b";")

    def test_nested_blocks(self):
        for head in (b"if 1, ", b"for 1, ", b"while 0, "):
            self.check_goes_on(head * 100000 + b"1, " + b"end, " * 100000)

    def test_a_block_of_many_lines(self):
        body = b"".join(b"  a%d = %d;\n" % (k % 100, k) for k in range(50000))
        self.check_goes_on(b"if 1\n" + body + b"end")

    def test_many_branches(self):
        self.check_goes_on(b"if 0\n" + b"elseif 0\n" * 20000 + b"else, 3\nend")


class Signals(unittest.TestCase):
    def start(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        return subprocess.Popen([VESKO, "-rtpath", "/a"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                env=dict(os.environ, HOME=self.folder.name))

    def test_interrupt_abandons_the_command_and_keeps_the_variables(self):
        process = self.start()
        process.stdin.write(b"x = 5;\n7\nwhile 1 == 1\nx = x + 1;\nend\nx > 5\n1 + 1\n")
        process.stdin.flush()
        self.assertEqual(process.stdout.readline().split(), [b"7"])
        time.sleep(0.3)
        process.send_signal(signal.SIGINT)
        output = process.communicate(timeout=30)[0].split()
        self.assertEqual((process.returncode, output), (0, [b"1", b"2"]))

    def test_a_closed_pipe_ends_quietly(self):
        process = self.start()
        process.stdout.close()
        process.stdin.write(b"1 + 1\n" * 100)
        try:
            process.stdin.close()
        except BrokenPipeError:
            pass
        self.assertEqual(process.wait(timeout=30), -signal.SIGPIPE)


class Files(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        os.mkfifo(os.path.join(self.folder, "pipe"))

    def interrupt(self, start, command):
        process = subprocess.Popen([VESKO, "-rtpath", "/a"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   cwd=self.folder, env=dict(os.environ, HOME=self.folder))
        self.addCleanup(process.kill)
        process.stdin.write(("%s\n7\n%s\n" % (start, command)).encode())
        process.stdin.flush()
        self.assertEqual(process.stdout.readline().split(), [b"7"])
        time.sleep(0.3)
        process.send_signal(signal.SIGINT)
        process.stdin.write(b"1 + 1\n")
        process.stdin.flush()
        answer = next((line.split() for line in iter(process.stdout.readline, b"") if line.split()), None)
        self.assertEqual((command, answer), (command, [b"2"]))
        return process

    def end(self, process):
        self.assertEqual(process.communicate(timeout=30)[0].split(), [])
        self.assertEqual(process.returncode, 0)

    def test_waiting_for_input_can_be_interrupted(self):
        self.end(self.interrupt("", 'fopen("pipe")'))
        for command in ('f.readline()', 'f.getc()', 'f.read(9)', 'f.scanf("%s")', 'cat "pipe"'):
            # Opened with a plus a pipe does not wait for its other end.
            self.end(self.interrupt('f = fopen("pipe", "r+");', command))

    def test_endless_files_can_be_interrupted(self):
        for command in ('f = fopen("/dev/urandom"); while 1, f.readline(); end', 'f = fopen("/dev/zero"); f.readline()',
                        'cat "/dev/zero"'):
            self.end(self.interrupt("", command))

    def test_waiting_for_a_reader_can_be_interrupted(self):
        for command in ('f.write(long)', 'fprintf(f, "%s", long)', 'f.writeline("x"); f.write(long); f.close()',
                        'for 65536, f.write("x"); end, f.write("x"); f.flush()'):
            reader = os.open(os.path.join(self.folder, "pipe"), os.O_RDONLY | os.O_NONBLOCK)
            start = 'f = fopen("pipe", "w"); long = sprintf("%200000s", "x");'
            process = self.interrupt(start, command)
            os.close(reader)
            self.end(process)

    def test_a_pipe_without_a_reader_is_a_failed_write(self):
        status, output = run(["-rtpath", "/a"], 'f = fopen("pipe", "r+"); g = fopen("pipe", "w");\nf.close();\n'
                             'g.writeline("x");\ng.flush()\n1 + 1\n', cwd=self.folder)
        self.assertEqual((status, output.split("\n")[-3:-1]),
                         (0, ["   Error 4 \"g.flush()\": file 'pipe' writing failed", "    2           "]))

    def test_the_end_of_the_program_writes_what_is_left(self):
        run(["-rtpath", "/a"], 'f = fopen("out", "w"); f.writeline("kept"); exit', cwd=self.folder)
        with open(os.path.join(self.folder, "out"), encoding="utf-8") as file:
            self.assertEqual(file.read(), "kept\n")

    def test_a_program_asks_for_lines(self):
        text = 'x = readline("name?"); y = readline();\nada\n\nx + "," + y\nnobody\nreadline()'
        self.assertEqual(run(["-rtpath", "/a"], text)[1].split("\n")[:4],
                         ["   name?", "   ada,", '   Error  5: symbol "nobody" not defined', "   []"])


if __name__ == "__main__":
    VESKO = os.path.abspath(sys.argv.pop(1))
    unittest.main(verbosity=1)
