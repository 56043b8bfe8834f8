#!/usr/bin/env python3
"""Injects faults: refuses the n-th request for memory, or interrupts at the n-th node, for n = 1, 2, ... until a
program runs to its end without the fault. Whatever happens, the program must go on with the next command, count its
links right and end well. Needs the checking build.

Usage: test_faults.py VESKO FILE-OR-FOLDER...
       test_faults.py VESKO --signals SECONDS      interrupts from outside at random moments
"""
import os
import random
import signal
import subprocess
import sys
import time
from concurrent.futures import ThreadPoolExecutor

SECONDS = 120
SIGN_OF_LIFE = b'"alive " + "and well"\n'
ANSWER = b"alive and well"
COMMON = ("audit:", "Sanitizer", "runtime error", "allocrealmat", "ucrelease")


def complaint(done):
    text = (done.stdout + done.stderr).decode("utf-8", "replace")
    for word in COMMON:
        if word in text:
            return text[max(text.find(word) - 500, 0):][:3000]
    if done.returncode != 0:
        return "exit status %d\n%s" % (done.returncode, text[-3000:])
    if ANSWER not in done.stdout:
        return "no command after the fault\n" + text[-3000:]
    return None


def run(program, source, fault, n):
    env = dict(os.environ, HOME="/nonexistent", **{fault: str(n)})
    return subprocess.run([program], input=source + 2 * SIGN_OF_LIFE, env=env, timeout=SECONDS,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE)


def scenario(program, path, fault):
    """Raises n until the fault does not come to pass any more. The number of faults, or a complaint."""
    with open(path, "rb") as file:
        source = file.read()
    step = os.cpu_count() or 1
    with ThreadPoolExecutor(step) as pool:
        n = 1
        while True:
            ns = range(n, n + step)
            for k, done in zip(ns, pool.map(lambda k: run(program, source, fault, k), ns)):
                text = complaint(done)
                if text:
                    return "%s=%d: %s" % (fault, k, text)
                if b"fault: injected" not in done.stderr:
                    return k - 1
            n += step


def scenarios(program, paths):
    failed = False
    for path in collect(paths):
        for fault in ("VESKO_REFUSE", "VESKO_INTERRUPT"):
            result = scenario(program, path, fault)
            failed |= isinstance(result, str)
            print("%s %s: %s" % (os.path.basename(path), fault, result), flush=True)
    return failed


def collect(paths):
    for path in paths:
        if os.path.isdir(path):
            yield from (os.path.join(path, name) for name in sorted(os.listdir(path)))
        else:
            yield path


WORK = b"""f = function(n) -> r
    r = ();
    for i = 1:n
        r = (i, "text" + "more", [i, 2; 3, i] * [1; i], {"k" => i});
        try
            r = [1, 2] * [3, 4];
        catch anything
            r = (r, ~);
        end
    end
end;
"""


def ignore_interrupts():
    """Interrupts that come before the program's own handler stands are dropped."""
    signal.signal(signal.SIGINT, signal.SIG_IGN)


def signals(program, seconds):
    seed = random.randrange(1 << 30)
    print("seed %d" % seed)
    random.seed(seed)
    source = WORK + 400 * (b"f(2000);\nx = (1, [2, 3], \"s\", ~);\n") + 200 * SIGN_OF_LIFE
    end, sent = time.time() + seconds, 0
    while time.time() < end:
        child = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                 env=dict(os.environ, HOME="/nonexistent"), preexec_fn=ignore_interrupts)
        with ThreadPoolExecutor(1) as pool:
            talk = pool.submit(child.communicate, source, SECONDS)
            while child.poll() is None and time.time() < end:
                child.send_signal(signal.SIGINT)
                sent += 1
                time.sleep(random.expovariate(500))
            out, err = talk.result()
        text = complaint(subprocess.CompletedProcess(program, child.returncode, out, err))
        if text:
            print("after %d interrupts: %s" % (sent, text))
            return True
    print("%d interrupts" % sent)
    return False


def main():
    program = os.path.abspath(sys.argv[1])
    if sys.argv[2] == "--signals":
        sys.exit(signals(program, float(sys.argv[3])))
    sys.exit(scenarios(program, sys.argv[2:]))


if __name__ == "__main__":
    main()
