#!/usr/bin/env python3
"""The full-screen worksheet, driven by keys in a terminal of a fixed size: tmux sends the keys and shows the screen.

Usage: test_screen.py VESKO
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

VESKO = None
ESCAPE = re.compile(r"\x1b\[[0-9;]*m")


class Screen:
    """A terminal with vesko in it."""

    count = 0

    def __init__(self, columns=60, rows=12, term="screen-256color", startup="", args=""):
        Screen.count += 1
        self.socket = "vesko-%d-%d" % (os.getpid(), Screen.count)
        self.home = tempfile.mkdtemp()
        with open(os.path.join(self.home, ".veskorc"), "w") as file:
            file.write(startup)
        self.tmux("-f", "/dev/null", "new-session", "-d", "-x", str(columns), "-y", str(rows),
                  "HOME=%s TERM=%s LC_ALL=C.UTF-8 %s %s; stty -a | grep -o '.icanon'; sleep 60" % (self.home, term, VESKO, args))
        self.wait(lambda lines: any(line.startswith(">>") for line in lines))

    def tmux(self, *args):
        return subprocess.run(["tmux", "-L", self.socket, *args], stdout=subprocess.PIPE, check=True).stdout.decode()

    def close(self):
        subprocess.run(["tmux", "-L", self.socket, "kill-server"], stderr=subprocess.DEVNULL)
        shutil.rmtree(self.home)

    def keys(self, *names):
        self.tmux("send-keys", *names)
        return self

    def type(self, *lines):
        """Types lines of text, with Enter behind all but the last."""
        for i, line in enumerate(lines):
            if i:
                self.keys("Enter")
            if line:
                self.tmux("send-keys", "-l", "--", re.sub(";$", r"\\;", line))  # tmux has a use for ;
        return self

    def paste(self, text):
        subprocess.run(["tmux", "-L", self.socket, "load-buffer", "-"], input=text.encode(), check=True)
        self.tmux("paste-buffer", "-d", "-r")
        return self

    def lines(self, colours=False):
        text = self.tmux("capture-pane", "-p", *(["-e"] if colours else []))
        lines = [line.rstrip() for line in text.split("\n")]
        while lines and not lines[-1]:
            lines.pop()
        return lines

    def cursor(self):
        return tuple(map(int, self.tmux("display-message", "-p", "#{cursor_x} #{cursor_y}").split()))

    def wait(self, condition, seconds=20):
        end = time.time() + seconds
        while True:
            lines = self.lines()
            if condition(lines):
                return lines
            if time.time() > end:
                raise AssertionError("the screen shows\n" + "\n".join(lines))
            time.sleep(0.02)

    def shows(self, *expected):
        """The screen comes to show exactly these lines."""
        return self.wait(lambda lines: lines == list(expected))

    def ends_with(self, *expected):
        return self.wait(lambda lines: lines[-len(expected):] == list(expected))


class Case(unittest.TestCase):
    def screen(self, *args, **more):
        screen = Screen(*args, **more)
        self.addCleanup(screen.close)
        return screen

    def assertColours(self, screen, row, *pieces):
        """The row has these words one after another, each in the colour of its number (30 to 37)."""
        line = screen.lines(colours=True)[row]
        found = [(ESCAPE.sub("", text).strip(), colour) for colour, text in
                 re.findall(r"\x1b\[(?:1;)?(3[0-7])m((?:(?!\x1b\[(?:1;)?3[0-7]m).)*)", line)]
        found = [(text, colour) for text, colour in found if text not in ("", ">>")]
        self.assertEqual(found, [(text, str(colour)) for text, colour in pieces])


class Editing(Case):
    def test_results_stand_right_below_their_command(self):
        s = self.screen()
        s.type("a = 3", "", "b = [1, 2", "; 3, 4]", "")
        s.shows(">> a = 3", "    3", ">>", ">> b = [1, 2", "   ; 3, 4]", "    1            2", "    3            4", ">>")

    def test_blocks_go_on_until_their_end(self):
        s = self.screen()
        s.type("for i = 1:2", "i", "end", "")
        s.shows(">> for i = 1:2", "   i", "   end", "    1", "    2", ">>")
        self.assertEqual(s.cursor(), (3, 5))

    def test_changes_within_a_line_and_joined_lines(self):
        s = self.screen()
        s.type("x = 12345").keys("Left", "Left", "BSpace", "Left", "DC").type("7")
        s.shows(">> x = 1745")
        s.keys("Enter")
        s.shows(">> x = 1745", "    1745", ">>")
        s.type("if true", "y = 1;").keys("Left", "Left").keys(*["BSpace"] * 20)
        s.shows(">> x = 1745", "    1745", ">> 1;")

    def test_a_line_above_is_edited_and_the_command_read_anew(self):
        s = self.screen()
        s.type("if false", "z = 5", "").keys("Up", "Up", *["BSpace"] * 5).type("true").keys("Down", "Down", "Enter")
        s.type("end", "")
        s.shows(">> if true", "   z = 5", "   end", "    5", ">>")
        s.keys("Up")  # one entry in the history
        s.shows(">> if true", "   z = 5", "   end", "    5", ">> if true", "   z = 5", "   end")

    def test_history_recalls_entries_of_many_lines(self):
        s = self.screen()
        s.type("p = 1", "if p", "q = 2", "end", "")
        s.keys("Up", "Up", "Up", "Up")
        s.ends_with("    2", ">> p = 1")
        s.keys("Down")
        s.ends_with("    2", ">> if p", "   q = 2", "   end")
        self.assertEqual(s.cursor(), (6, 8))
        s.keys("Enter")
        s.ends_with(">> if p", "   q = 2", "   end", "    2", ">>")

    def test_an_abandoned_entry_leaves_no_trace(self):
        s = self.screen()
        s.type("k = 1", "for i = 1:3").keys("Enter", "C-a")
        s.ends_with(">> for i = 1:3", ">>")
        s.keys("Up")
        s.ends_with(">> for i = 1:3", ">> k = 1")

    def test_ctrl_s_runs_the_command_from_its_first_line(self):
        s = self.screen()
        s.type("a = 1", "").type("w = a + 1").keys("Left", "Left", "C-s")
        s.shows(">> a = 1", "    1", ">> w = a + 1", "    2", ">>")

    def test_pasted_lines_arrive_once_and_whole(self):
        s = self.screen(rows=40)
        s.paste("".join("v%d = %d\r\n" % (k, k) for k in range(12)) + "for i = 1:2\n\ti\nend\n")
        lines = s.wait(lambda lines: lines[-1:] == [">>"] and lines[-3:-1] == ["    1", "    2"])
        expected = [text for k in range(12) for text in (">> v%d = %d" % (k, k), "    %d" % k)]
        self.assertEqual(lines[:24], expected)
        self.assertEqual(lines[24:27], [">> for i = 1:2", "    i", "   end"])

    def test_long_lines_scroll_sideways_and_utf8_is_shown(self):
        s = self.screen(columns=20)
        s.type("s = 'abcdefghijklmnop'")
        s.shows(" 'abcdefghijklmnop'")
        self.assertEqual(s.cursor(), (19, 0))
        s.keys("Home")
        s.shows(">> s = 'abcdefghijkl")
        self.assertEqual(s.cursor(), (3, 0))


class Window(Case):
    def test_output_of_a_loop_scrolls_to_its_end(self):
        s = self.screen(rows=6)
        s.type("for i = 1:5000", "i", "end", "")
        s.shows("    4996", "    4997", "    4998", "    4999", "    5000", ">>")

    def test_resize_keeps_the_cursor_in_view(self):
        s = self.screen(rows=12)
        s.type("for i = 1:9", "i", "end", "")
        s.ends_with("    9", ">>")
        s.tmux("resize-window", "-x", "30", "-y", "4")
        s.shows("    7", "    8", "    9", ">>")
        s.type("1 + 1", "")
        s.shows("    9", ">> 1 + 1", "    2", ">>")

    def test_worksheet_mode_runs_commands_in_place(self):
        s = self.screen()
        s.type("a = 1", "b = a + 1", "chmode", "")
        s.ends_with(">> chmode", ">>")
        s.keys("Up", "Up", "Up", "Up", "Up", "BSpace").type("5", "")
        s.wait(lambda lines: lines[:3] == [">> a = 5", "    5", ">>"])
        s.type("chmode", "")
        s.shows(">> a = 5", "    5", ">> chmode", ">> b = a + 1", "    2", ">> chmode", ">>")
        s.type("a", "")
        s.ends_with(">> a", "    5", ">>")

    def test_a_program_asks_for_a_line(self):
        s = self.screen()
        s.type('name = readline("Who? "); name + "!"', "")
        s.ends_with("   Who?")
        s.type("me").keys(*["BSpace"] * 9).type("you", "")
        s.shows('>> name = readline("Who? "); name + "!"', "   Who? you", "   you!", ">>")


class Interrupts(Case):
    def test_ctrl_c_ends_a_loop_and_a_half_typed_entry(self):
        s = self.screen()
        s.type("n = 0;", "while true", "n += 1;", "end", "")
        time.sleep(0.3)
        s.keys("C-c")
        s.ends_with("   end", ">>")
        s.type("n > 10").keys("C-c")
        s.ends_with(">> n > 10", ">>")
        s.type("n > 10", "")
        s.ends_with(">> n > 10", "    1", ">>")

    def test_the_terminal_is_sane_at_every_end(self):
        s = self.screen()
        s.type("exit", "")
        s.ends_with(" icanon")
        t = self.screen()
        shell = int(t.tmux("display-message", "-p", "#{pane_pid}"))
        subprocess.run(["pkill", "-TERM", "-P", str(shell)], check=True)
        t.wait(lambda lines: lines[-1:] == [" icanon"])


class Drawing(Case):
    BOX = ["┌─────┐", "│ hi  │", "└─────┘", "", " +"]

    def test_a_program_draws_reads_keys_and_leaves(self):
        s = self.screen()
        s.type('screen_putch(0, 0, "x"), screen_init(1), screen_drawbox(1, 2, 3)', "")
        s.wait(lambda lines: [line.strip() for line in lines[-4:]] == ["-2", "-1", "-1", ">>"])
        s.type("screen_init();", "screen_size()", "")  # a program that ends without leaving does not blind the prompt
        s.wait(lambda lines: [line.strip() for line in lines[-2:]] == ["-2", ">>"])
        s.type("if screen_init() == 0", 'screen_drawbox(0, 0, 2, 6); screen_drawtext(1, 2, "hi");',
               'screen_paint([4, 4], [1, 80], "+"); screen_refresh();', 'while screen_getch() != "left"', "sleep(0.01);",
               "end", "screen_end();", "end", "")
        s.shows(*self.BOX)
        s.keys("Up", "x", "Left")
        s.ends_with("   end", ">>")

    def test_the_curve_of_the_library_moves(self):
        s = self.screen(columns=70, rows=16, args="-rtpath " + os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "rt"))
        s.type('run("curve.vk")', "")
        s.wait(lambda lines: "middle  0.00" in lines[0] and sum(line.count("*") for line in lines) == 68)
        s.keys("Right").type("-")
        s.wait(lambda lines: "middle  0.50, scale 0.12" in lines[0])
        s.type("q")
        s.shows('>> run("curve.vk")', "    0.5", ">>")

    def test_an_error_and_ctrl_c_bring_the_worksheet_back(self):
        s = self.screen()
        box = 'screen_init(); screen_drawbox(0, 0, 2, 6); screen_drawtext(1, 2, "hi"); screen_putch(4, 1, 43);'
        s.type("if true", box, "screen_refresh();", 'while screen_getch() == ""', "sleep(0.01);", "end",
               "v = [1, 2];", "v[3]", "end", "")
        s.shows(*self.BOX)
        s.type("x")
        s.wait(lambda lines: lines[-1] == ">>" and "Error" in lines[-2])
        s.type("while true", box, "screen_refresh();", "end", "")
        s.shows(*self.BOX)
        s.keys("C-c")
        s.ends_with("   end", ">>")


class Colours(Case):
    RED, GREEN, BLUE, MAGENTA, CYAN, WHITE = 31, 32, 34, 35, 36, 37

    def test_a_block_keyword_waits_for_its_end(self):
        s = self.screen()
        s.type("if a", "b = 'if' + [1, 2]")
        s.wait(lambda lines: len(lines) == 2 and lines[1].endswith("]"))
        self.assertColours(s, 0, ("if", self.RED), ("a", self.GREEN))
        s.keys("Enter").type("end")
        s.wait(lambda lines: lines[-1] == "   end")
        self.assertColours(s, 0, ("if", self.MAGENTA), ("a", self.GREEN))
        self.assertColours(s, 1, ("b", self.GREEN), ("=", self.MAGENTA), ("'if'", self.CYAN), ("+", self.MAGENTA),
                           ("[", self.GREEN), ("1", self.BLUE), (",", self.MAGENTA), ("2", self.BLUE),
                           ("]", self.GREEN))

    def test_what_stands_where_it_cannot_is_red(self):
        s = self.screen()
        s.type("q = (2")
        s.shows(">> q = (2")
        self.assertColours(s, 0, ("q", self.GREEN), ("=", self.MAGENTA), ("(", self.RED), ("2", self.BLUE))
        s.type(")", "for i = 1:3", "break", "if i", "break", "end", "end")
        s.wait(lambda lines: len(lines) == 8 and lines[-1] == "   end")
        self.assertColours(s, 0, ("q", self.GREEN), ("=", self.MAGENTA), ("(", self.GREEN), ("2", self.BLUE),
                           (")", self.GREEN))
        self.assertColours(s, 3, ("break", self.GREEN))
        self.assertColours(s, 5, ("break", self.RED))

    def test_a_terminal_without_colours_works(self):
        s = self.screen(term="vt100")
        s.type("1 + (2", ")", "")
        s.shows(">> 1 + (2", "   )", "    3", ">>")


if __name__ == "__main__":
    VESKO = os.path.abspath(sys.argv.pop(1))
    unittest.main()
