"""The workloads: for each the same work as a vesko program and as programs of the peers.

A body that leaves its result in r is measured twice: at top level, and as <name>_f in a function. Every program
shows its result. "prepare", where it is given, is called with the folder in which the programs run.
"""
import os

STATEMENTS = 20000


def indent(body):
    return "\n".join("    " + line for line in body.strip("\n").split("\n"))


def both(name, vesko, python, lua):
    top = {
        "vesko": vesko.strip("\n") + "\nr\n",
        "lua": lua.strip("\n") + "\nprint(r)\n",
        "python": python.strip("\n") + "\nprint(r)\n",
    }
    in_function = {
        "vesko": "f = function () -> r\n%s\nend;\nf()\n" % indent(vesko),
        "lua": "local function f()\n    local r\n%s\n    return r\nend\nprint(f())\n" % indent(lua),
        "python": "def f():\n%s\n    return r\nprint(f())\n" % indent(python),
    }
    return {name: top, name + "_f": in_function}


def statements():
    """Short expression statements, each parsed and run once."""
    lines = []
    for k in range(STATEMENTS):
        a, b = k % 97 + 1, k % 31 + 2
        target = "y" if k % 4 == 3 else "x"
        lines.append(target + " = " + ["%d + %d * 2", "(%d - %d) * 3", "%d * x - %d", "y + %d / %d"][k % 4] % (a, b))
    return {
        "vesko": "x = 0;\ny = 0;\n" + ";\n".join(lines) + ";\nx\n",
        "lua": "x = 0\ny = 0\n" + "\n".join(lines) + "\nprint(x)\n",
        "python": "x = 0\ny = 0\n" + "\n".join(lines) + "\nprint(x)\n",
    }


def patterns():
    """Substitution, all matches and splitting of a text of 1.2 MB."""
    text = '20000 * "the quick brown fox jumps over the lazy dog 12345 <a@b.com>\\n"'
    return {
        "vesko": "s = " + text + ";\nr = ~s/(\\w+) (\\w+)/\\2 \\1/g(s);\nm = ~/(\\w+)@(\\w+)\\.com/g(r);\n"
                 "p = split(r, ~/\\s+/);\nr.length + m.nrows + p.length\n",
        "python": "import re\ns = " + text + "\nr = re.sub(r'(\\w+) (\\w+)', r'\\2 \\1', s)\n"
                  "m = [x.regs for x in re.finditer(r'(\\w+)@(\\w+)\\.com', r)]\n"
                  "p = re.split(r'\\s+', r)\nprint(len(r) + len(m) + len(p))\n",
    }


def write_lines(folder):
    """A text of 100 megabytes."""
    with open(os.path.join(folder, "lines.txt"), "w", encoding="utf-8") as file:
        for k in range(1450000):
            file.write("the quick brown fox jumps over the lazy dog %07d times, and more\n" % k)


def product(n, times):
    """The product of two n by n matrices."""
    return {
        "vesko": "a = (1:%d)' * (1:%d) * 0.001;\nb = a + 1;\nfor %d\n    c = a * b;\nend\nc[%d, %d]\n"
                 % (n, n, times, n, n),
        "numpy": "import numpy as np\nv = np.arange(1.0, %d)\na = np.outer(v, v) * 0.001\nb = a + 1\n"
                 "for _ in range(%d):\n    c = a @ b\nprint(c[-1, -1])\n" % (n + 1, times),
    }


def each(function, numpy_function, times):
    """A function of each of a million elements."""
    return {
        "vesko": "x = linspace(0.01, 30, 1000000);\nfor %d\n    y = %s(x);\nend\ny[1000000]\n" % (times, function),
        "numpy": "import numpy as np\nx = np.linspace(0.01, 30, 1000000)\n"
                 "for _ in range(%d):\n    y = np.%s(x)\nprint(y[-1])\n" % (times, numpy_function),
    }


WORKLOADS = {
    "start": {"vesko": "", "lua": "", "python": ""},
    "statements": statements(),
    **both("bare", """
for i = 1:10000000
end
r = i;
""", """
for i in range(1, 10000001):
    pass
r = i + 1
""", """
local last = 0
for i = 1, 10000000 do
    last = i
end
r = last + 1
"""),
    **both("count", """
s = 0;
for i = 1:5000000
    s = s + i * 2;
end
r = s;
""", """
s = 0
for i in range(1, 5000001):
    s = s + i * 2
r = s
""", """
local s = 0
for i = 1, 5000000 do
    s = s + i * 2
end
r = s
"""),
    **both("branches", """
n = 0;
for i = 1:1500
    for j = 1:1000
        if j > i
            n = n + 1;
        elseif j == i
            n = n + 2;
        else
            n = n - 1;
        end
    end
end
r = n;
""", """
n = 0
for i in range(1, 1501):
    for j in range(1, 1001):
        if j > i:
            n = n + 1
        elif j == i:
            n = n + 2
        else:
            n = n - 1
r = n
""", """
local n = 0
for i = 1, 1500 do
    for j = 1, 1000 do
        if j > i then
            n = n + 1
        elseif j == i then
            n = n + 2
        else
            n = n - 1
        end
    end
end
r = n
"""),
    **both("collatz", """
longest = 0;
for k = 1:15000
    n = k + 0;
    steps = 0;
    while n != 1
        if n % 2 == 0
            n = n / 2;
        else
            n = 3 * n + 1;
        end
        steps = steps + 1;
    end
    if steps > longest
        longest = steps;
    end
end
r = longest;
""", """
longest = 0
for k in range(1, 15001):
    n = k
    steps = 0
    while n != 1:
        if n % 2 == 0:
            n = n // 2
        else:
            n = 3 * n + 1
        steps = steps + 1
    if steps > longest:
        longest = steps
r = longest
""", """
local longest = 0
for k = 1, 15000 do
    local n = k
    local steps = 0
    while n ~= 1 do
        if n % 2 == 0 then
            n = n // 2
        else
            n = 3 * n + 1
        end
        steps = steps + 1
    end
    if steps > longest then
        longest = steps
    end
end
r = longest
"""),
    "fib": {
        "vesko": """
fib = function n -> r
    if n < 2
        r = n;
    else
        r = this(n - 1) + this(n - 2);
    end
end;
fib(27)
""",
        "lua": """
local function fib(n)
    if n < 2 then
        return n
    else
        return fib(n - 1) + fib(n - 2)
    end
end
print(fib(27))
""",
        "python": """
def fib(n):
    if n < 2:
        return n
    else:
        return fib(n - 1) + fib(n - 2)
print(fib(27))
""",
    },
    "closure": {
        "vesko": """
add = [k = 3] x -> x + this.k;
s = 0;
for i = 1:1000000
    s = add(s);
end
s
""",
        "lua": """
local function make(k)
    return function(x) return x + k end
end
local add = make(3)
local s = 0
for i = 1, 1000000 do
    s = add(s)
end
print(s)
""",
        "python": """
def make(k):
    return lambda x: x + k
add = make(3)
s = 0
for i in range(1000000):
    s = add(s)
print(s)
""",
    },
    **both("vector", """
v = [];
for i = 1:1000000
    v[i] = i * 2;
end
s = 0;
for i = 1:1000000
    s = s + v[i];
end
r = s;
""", """
v = []
for i in range(1000000):
    v.append((i + 1) * 2)
s = 0
for i in range(1000000):
    s = s + v[i]
r = s
""", """
local v = {}
for i = 1, 1000000 do
    v[i] = i * 2
end
local s = 0
for i = 1, 1000000 do
    s = s + v[i]
end
r = s
"""),
    **both("list", """
l = (0, ~);
for i = 1:500000
    l#i = i * 2;
end
s = 0;
for i = 1:500000
    s = s + l#i;
end
r = s;
""", """
l = []
for i in range(500000):
    l.append((i + 1) * 2)
s = 0
for i in range(500000):
    s = s + l[i]
r = s
""", """
local l = {}
for i = 1, 500000 do
    l[i] = i * 2
end
local s = 0
for i = 1, 500000 do
    s = s + l[i]
end
r = s
"""),
    **both("string", """
s = "";
for i = 1:300000
    s += "ab";
end
n = 0;
for i = 1:300000
    if s[i] == "a"
        n = n + 1;
    end
end
r = n;
""", """
s = ""
for i in range(300000):
    s += "ab"
n = 0
for i in range(300000):
    if s[i] == "a":
        n = n + 1
r = n
""", """
local t = {}
for i = 1, 300000 do
    t[i] = "ab"
end
local s = table.concat(t)
local n = 0
for i = 1, 300000 do
    if s:sub(i, i) == "a" then
        n = n + 1
    end
end
r = n
"""),
    **both("hash", """
h = {default => 0};
for k = 1:1000
    for i = 1:200
        h@i = h@i + k;
    end
end
s = 0;
for i = 1:200
    s = s + h@i;
end
r = s;
""", """
h = {}
for k in range(1, 1001):
    for i in range(1, 201):
        h[i] = h.get(i, 0) + k
s = 0
for i in range(1, 201):
    s = s + h[i]
r = s
""", """
local h = {}
for k = 1, 1000 do
    for i = 1, 200 do
        h[i] = (h[i] or 0) + k
    end
end
local s = 0
for i = 1, 200 do
    s = s + h[i]
end
r = s
"""),
    **both("hash1000", """
h = {default => 0};
for k = 1:300
    for i = 1:1000
        h@i += k;
    end
end
s = 0;
for i = 1:1000
    s += h@i;
end
r = s;
""", """
h = {}
for k in range(1, 301):
    for i in range(1, 1001):
        h[i] = h.get(i, 0) + k
s = 0
for i in range(1, 1001):
    s += h[i]
r = s
""", """
local h = {}
for k = 1, 300 do
    for i = 1, 1000 do
        h[i] = (h[i] or 0) + k
    end
end
local s = 0
for i = 1, 1000 do
    s = s + h[i]
end
r = s
"""),
    **both("set1000", """
n = 0;
for k = 1:100
    s = {};
    for i = 1:1000
        s.add(i);
    end
    for i = 1:2000
        if i (- s
            n += 1;
        end
    end
end
r = n;
""", """
n = 0
for k in range(100):
    s = set()
    for i in range(1, 1001):
        s.add(i)
    for i in range(1, 2001):
        if i in s:
            n += 1
r = n
""", """
local n = 0
for k = 1, 100 do
    local s = {}
    for i = 1, 1000 do
        s[i] = true
    end
    for i = 1, 2000 do
        if s[i] then
            n = n + 1
        end
    end
end
r = n
"""),
    **both("domain", """
x = 0 in _R;
y = 0 in (-1 to 1e13);
for i = 1:1000000
    x += 2;
    y = y + x;
    y = i;
end
r = x + y;
""", """
def real(v):
    if not isinstance(v, (int, float)):
        raise TypeError
    return v
def inside(v):
    if not -1 <= v <= 1e13:
        raise ValueError
    return v
x = real(0)
y = inside(0)
for i in range(1, 1000001):
    x = real(x + 2)
    y = inside(y + x)
    y = inside(i)
r = x + y
""", """
local function real(v)
    if type(v) ~= "number" then error("type") end
    return v
end
local function inside(v)
    if v < -1 or v > 1e13 then error("value") end
    return v
end
local x = real(0)
local y = inside(0)
for i = 1, 1000000 do
    x = real(x + 2)
    y = inside(y + x)
    y = inside(i)
end
r = x + y
"""),
    "object": {
        "vesko": """
Counter = class
    n = 0
    common step = function k -> r
        parent.n += k;
        r = parent.n;
    end
end;
c = Counter.new();
s = 0;
for i = 1:300000
    c.n += 1;
    s += c.step(2);
end
s
""",
        "lua": """
local Counter = {}
Counter.__index = Counter
function Counter.new() return setmetatable({n = 0}, Counter) end
function Counter:step(k)
    self.n = self.n + k
    return self.n
end
local c = Counter.new()
local s = 0
for i = 1, 300000 do
    c.n = c.n + 1
    s = s + c:step(2)
end
print(s)
""",
        "python": """
class Counter:
    def __init__(self):
        self.n = 0
    def step(self, k):
        self.n += k
        return self.n
c = Counter()
s = 0
for i in range(300000):
    c.n += 1
    s += c.step(2)
print(s)
""",
    },
    "sort": {
        "vesko": """
x = [1:999999, 1000000] * 7919 % 1000003;
for 5
    y = sort(x);
end
y[500000]
""",
        "numpy": """
import numpy as np
x = np.arange(1.0, 1000001.0) * 7919 % 1000003
for _ in range(5):
    y = np.sort(x)
print(y[499999])
""",
        "c++": """
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>
int main() {
    std::vector<double> x, y;
    for (int i = 1; i <= 1000000; i++) x.push_back(std::fmod(i * 7919.0, 1000003));
    for (int k = 0; k < 5; k++) {
        y = x;
        std::sort(y.begin(), y.end());
    }
    std::printf("%g\\n", y[499999]);
}
""",
    },
    "patterns": patterns(),
    "lines": {
        "prepare": write_lines,
        "vesko": """
f = fopen("lines.txt");
n = 0;
line = f.readline();
while f.eof == 0
    n = n + line.length;
    line = f.readline();
end
n
""",
        "lua": """
local n = 0
for line in io.lines("lines.txt") do
    n = n + #line
end
print(n)
""",
        "python": """
n = 0
with open("lines.txt") as file:
    for line in file:
        n = n + len(line) - 1
print(n)
""",
    },
    "format": {
        "vesko": """
f = fopen("numbers.txt", "w");
for i = 1:1000000
    fprintf(f, "%d %.6f %g\\n", i, i / 7, i / 3);
end
f.tell()
""",
        "lua": """
local f = io.open("numbers.txt", "w")
for i = 1, 1000000 do
    f:write(string.format("%d %.6f %g\\n", i, i / 7, i / 3))
end
print(f:seek())
""",
        "python": """
f = open("numbers.txt", "w")
for i in range(1, 1000001):
    f.write("%d %.6f %g\\n" % (i, i / 7, i / 3))
print(f.tell())
""",
    },
    "sortby": {
        "vesko": """
l = (0, ~);
x = 12345;
for i = 1:100000
    x = (x * 1103515245 + 12345) % 2147483648;
    l#i = x;
end
by = sort["<", (a, b) -> a - b];
for 5
    s = by(l);
end
s#1
""",
        "lua": """
local l = {}
local x = 12345.0
for i = 1, 100000 do
    x = math.fmod(x * 1103515245 + 12345, 2147483648)
    l[i] = x
end
local s
for k = 1, 5 do
    s = table.move(l, 1, #l, 1, {})
    table.sort(s, function(a, b) return a < b end)
end
print(s[1])
""",
        "python": """
from functools import cmp_to_key
from math import fmod
l = []
x = 12345.0
for i in range(100000):
    x = fmod(x * 1103515245 + 12345, 2147483648)
    l.append(x)
for k in range(5):
    s = sorted(l, key=cmp_to_key(lambda a, b: a - b))
print(s[0])
""",
    },
    "transfers": {
        "vesko": """
a = automaton [other]
    for i = 1:1000000
        this.put(i + 1);
        yield other
        r = this.get();
    end
    r
end;
b = automaton [other]
    s = 0;
    while 1
        s = s + this.get();
        this.put(s);
        yield other
    end
end;
a <-> b;
a.other = b;
b.other = a;
a.run();
""",
        "python": """
def consumer():
    s = 0
    while True:
        s = s + (yield s)
b = consumer()
next(b)
for i in range(1, 1000001):
    r = b.send(i + 1)
print(r)
""",
        "lua": """
local b = coroutine.wrap(function(x)
    local s = 0
    while true do
        s = s + x
        x = coroutine.yield(s)
    end
end)
local r
for i = 1, 1000000 do
    r = b(i + 1)
end
print(r)
""",
    },
    "vecexpr": {
        "vesko": """
x = [1:999999, 1000000];
y = x * 0.5 + 1;
for 100
    z = x + y * 2 - 3;
end
z[1000000]
""",
        "numpy": """
import numpy as np
x = np.arange(1.0, 1000001.0)
y = x * 0.5 + 1
for _ in range(100):
    z = x + y * 2 - 3
print(z[-1])
""",
    },
    "sqrt": each("sqrt", "sqrt", 100),
    "floor": each("floor", "floor", 100),
    "sin": each("sin", "sin", 30),
    "exp": each("exp", "exp", 30),
    "ln": each("ln", "log", 30),
    "tanh": each("tanh", "tanh", 30),
    "product400": product(400, 20),
    "product1000": product(1000, 3),
}
