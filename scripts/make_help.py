#!/usr/bin/env python3
"""Writes the help texts, one file a subject, from docs/help and the tables of the program.

Usage: make_help.py COMPILER FOLDER

docs/help holds the texts as sections of entries:

    ---- section
    == name, name : first paragraph
    usage: name(x, option = default)
    takes: kinds of values
    text, and examples with their answers:
    >> name(1)
        2
    see: name, name

All but the first line may be missing. The names of an entry share its text. What the tables of the program
know is put in here: the inputs and parameters of a built-in unless a usage tells them, whether it is built,
the domains in every shape, and the lists of names.
"""
import glob
import os
import re
import subprocess
import sys
import textwrap

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
WIDTH = 72
INDENT = "    "
LATER = "%s is not built yet: a call is an error."

# Domains in shapes: what the elements are, how one is written, and the kind that makers know them by; what a shape
# is, its rows and columns in an example.
ELEMENTS = {
    "R": ("real numbers", "%d", "_D"), "Z": ("whole numbers of any kind", "%d", "_D"),
    "C": ("real or complex numbers", "%di", "_C"), "D": ("numbers of the kind real", "%d", "_D"),
    "I": ("numbers of the kind integer", "%dZ", "_Z"), "B": ("bytes", "%dB", "_B"),
    "DC": ("numbers of the kind complex", "%di", "_C"),
}
SHAPES = {"n": ("a vector", 1, 3), "nn": ("a square matrix", 2, 2), "n1": ("a column", 3, 1), "1n": ("a row", 1, 3),
          "mn": ("a matrix", 2, 3)}
for n in (2, 3, 4):
    SHAPES.update({"%d" % n: ("a vector of %d" % n, 1, n), "%d%d" % (n, n): ("a %d by %d matrix" % (n, n), n, n),
                   "%d1" % n: ("a column of %d" % n, n, 1), "1%d" % n: ("a row of %d" % n, 1, n)})


def source(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        return file.read()


def wrapped(text, indent=""):
    return textwrap.wrap(text, WIDTH, subsequent_indent=indent, break_on_hyphens=False)


# ---- The tables of the program

class Builtin:
    def __init__(self, name, inputs, built=True, parms=""):
        self.name, self.inputs, self.built, self.parms = name, inputs.split(), built, parms


def expanded(compiler, table, macros):
    """The rows of a table, as the preprocessor leaves them, with the strings joined."""
    text = "".join("#define %s [row %s]\n" % pair for pair in macros.items()) + '#include "%s"\n' % table
    done = subprocess.run([compiler, "-E", "-P", "-x", "c++", "-I", os.path.join(ROOT, "src"), "-"],
                          input=text, stdout=subprocess.PIPE, encoding="utf-8", check=True)
    return re.findall(r"\[row (.*?)\]", re.sub(r'"\s+"', "", done.stdout), re.S)


def builtins(compiler):
    """All built-ins by name; the later row of a name counts."""
    found = {}
    rows = expanded(compiler, "builtins/builtins.def", {
        "BF(name, worker, inputs, ...)": "built, name, inputs, __VA_ARGS__",
        "BF_LATER(name, inputs, room)": "later, name, inputs",
        "DOMAIN_SHAPES(class_)": "shapes, class_",
    })
    for row in rows:
        kind, rest = row.split(",", 1)
        if kind == "shapes":
            for shape in SHAPES:
                name = "_" + rest.strip() + shape
                found[name] = Builtin(name, "x", True, shape_parameters(rest.strip(), shape))
            continue
        name, inputs = re.findall(r'"([^"]*)"', rest)[:2]
        table = re.search(r"\.parms = (\w+)", rest)
        found[name] = Builtin(name, inputs, kind == "built", parameters(table.group(1)) if table else "")
    return found


DEFAULTS = {"theEmptyMat": " = null", "theTrueMat": " = true", "theFalseMat": " = false", "zero": " = 0",
            "theNlogBaseMat": " = e"}


def parameters(table):
    """The parameters of a built-in, with the defaults that are known here, from the C++ table of that name."""
    for path in sorted(glob.glob(os.path.join(ROOT, "src/builtins/*.cpp"))):
        found = re.search(r"const BfParm %s\[\w*\] = \{(.*?)\};" % table, source(path), re.S)
        if found:
            parms = re.findall(r'\{"(\w+)", (\w+)', found.group(1))
            return ", ".join(name + DEFAULTS.get(dflt, "") for name, dflt in parms)
    return ""


def keywords(compiler):
    rows = expanded(compiler, "frontend/keywords.def", {"KEY(id, name, text, kind)": "text"})
    return [row.strip().strip('"') for row in rows]


def commands():
    table = re.search(r"SysCommand syscmdfunc\[\] = \{(.*?)\};", source("src/console/syscmd.cpp"), re.S)
    return re.findall(r'"(\w+)"', table.group(1))


def constants():
    text = source("src/builtins/table.cpp")
    return re.findall(r'addConstant\("(\w+)"', text) + ["i", "j", "I", "J"]


# ---- The texts

class Entry:
    def __init__(self, section, names, summary):
        self.section, self.names, self.summary = section, names, summary
        self.usage, self.takes, self.body, self.see = [], [], [], []

    def add(self, line):
        if line.startswith("usage: "):
            self.usage.append(line[7:])
        elif line.startswith(("takes: ", "see: ")):
            field, _, names = line.partition(": ")
            setattr(self, field, names.split(", "))
        else:
            self.body.append(line)

    def examples(self):
        """Pairs of the lines to type and the lines that are to come."""
        pairs = []
        for line in self.body:
            if line.startswith(">> "):
                pairs.append(([line[3:]], []))
            elif line.startswith(".. ") and pairs:
                pairs[-1][0].append(line[3:])
            elif line.startswith("   ") and pairs:
                pairs[-1][1].append(line)
        return pairs


def entries():
    """All entries but those of domains in shapes."""
    found, section = [], ""
    for path in sorted(glob.glob(os.path.join(ROOT, "docs/help/*.txt"))):
        for line in source(path).splitlines():
            if line.startswith("---- "):
                section = line[5:]
            elif line.startswith("== "):
                names, _, summary = line[3:].partition(" : ")
                found.append(Entry(section, [name.strip() for name in names.split(",")], summary))
            elif found:
                found[-1].add(line)
    return found


def shape_parameters(elements, shape):
    names = [c for c in "mn" if c in shape] + (["domain"] if elements in "RZ" else [])
    return ", ".join(name + " = null" for name in names)


def shape_entry(elements, shape):
    """The entry of a domain in a shape."""
    what, number, kind = ELEMENTS[elements]
    form, rows, columns = SHAPES[shape]
    name = "_" + elements + shape
    entry = Entry("Domains", [name], "The domain of %s of %s: 1 if x is one, else 0." % (form, what))
    matrix = "[%s]" % "; ".join(", ".join(number % (i + j + 1) for j in range(columns)) for i in range(rows))
    if rows * columns > 9:
        matrix = "ones(%d, %d, %s)" % (rows, columns, kind)
    sizes = {"n": "[3]", "nn": "[2]", "n1": "[3]", "1n": "[3]", "mn": "[2, 3]"}
    entry.body = [">> %s%s(%s)" % (name, sizes.get(shape, ""), matrix), "    1"]
    entry.see = ["_" + elements, "domains"]
    return entry


def shapes():
    return [shape_entry(elements, shape) for elements in ELEMENTS for shape in SHAPES]


def heading(name, entry, row):
    if entry.usage:
        return entry.usage
    if not row:
        return [name]
    call = "%s(%s)" % (name, ", ".join(row.inputs))
    return [call + " " * max(4, 24 - len(call)) + "parameters: " + row.parms] if row.parms else [call]


def index(found, rows):
    """The names of the built-ins by section."""
    lines, sections = [], {}
    for entry in found:
        sections.setdefault(entry.section, []).extend(name for name in entry.names if name in rows)
    for section, names in sections.items():
        if names:
            names = [name + ("" if rows[name].built else "*") for name in names]
            lines += [section, *textwrap.wrap("  ".join(names), WIDTH, initial_indent=INDENT,
                                              subsequent_indent=INDENT), ""]
    return lines


def set_apart(lines):
    """The lines with a blank one wherever examples begin or end."""
    apart, within = [], False
    for line in lines:
        example = line.startswith((">> ", ".. ")) or (within and line.startswith("   "))
        if example != within and apart and apart[-1] and line:
            apart.append("")
        apart.append(line)
        within = example
    return apart


def text_of(name, entry, rows, found):
    row = rows.get(name)
    body = index(found, rows) if entry.body[:1] == ["{index}"] else set_apart(entry.body)
    blocks = [heading(name, entry, row), wrapped(entry.summary), body]
    if entry.takes:
        blocks.append(wrapped("Takes %s." % ", ".join(entry.takes)))
    if row and not row.built:
        blocks.append(wrapped(LATER % name))
    if entry.see:
        blocks.append(wrapped("See also: " + ", ".join(entry.see), INDENT))
    return "\n\n".join("\n".join(block).strip("\n") for block in blocks if any(block)) + "\n"


def texts(compiler):
    """Subject to text."""
    rows, found = builtins(compiler), entries()
    return {name: text_of(name, entry, rows, found) for entry in found + shapes() for name in entry.names}


def main():
    compiler, folder = sys.argv[1:]
    made = texts(compiler)
    if os.path.islink(folder):
        os.remove(folder)
    os.makedirs(folder, exist_ok=True)
    for old in glob.glob(os.path.join(folder, "*.txt")):
        os.remove(old)
    for name, text in made.items():
        with open(os.path.join(folder, name + ".txt"), "w", encoding="utf-8") as file:
            file.write(text.replace("%", "%%"))


if __name__ == "__main__":
    main()
