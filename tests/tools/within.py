"""Runs the driver of a test within a time, after which everything that it started ends, whatever session that is in.

    python3 within.py SECONDS PROGRAM [ARGUMENT...]

Ends with the program's own status. When the time is over (or at SIGALRM, which says so), it prints what was running,
line by line with its age, and ends with 124. SIGTERM and SIGINT end everything, too, and so does the end of the program:
no server outlives its test. The work is a child's: should this process be killed by force, the child ends everything
all the same.
"""
import ctypes
import os
import pathlib
import signal
import subprocess
import sys
import time

TOO_LONG = 124
LAST_SECONDS = 10
# Source: prctl(2). Processes whose parent has ended become children of this one, not of the first of the machine.
PR_SET_PDEATHSIG, PR_SET_CHILD_SUBREAPER = 1, 36
PRCTL = ctypes.CDLL(None, use_errno=True).prctl
SIGNALS = (signal.SIGALRM, signal.SIGTERM, signal.SIGINT)


class Over(Exception):
    """The time is over, or somebody ends the run; the argument is the signal."""


def over(number, _):
    raise Over(number)


def children():
    """The child processes of each process that has some. Source: proc(5), fields 3 and 4 of stat."""
    found = {}
    for entry in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            text = (entry / "stat").read_text(errors="replace")
        except OSError:
            continue
        state, parent = text[text.rindex(")") + 2:].split()[:2]
        if state not in "ZX":
            found.setdefault(int(parent), []).append(int(entry.name))
    return found


def below(pid, depth=0, known=None):
    """Every process below `pid` with its depth, parents first."""
    known = children() if known is None else known
    for child in sorted(known.get(pid, [])):
        yield depth, child
        yield from below(child, depth + 1, known)


def line_of(pid):
    try:
        words = pathlib.Path(f"/proc/{pid}/cmdline").read_bytes().rstrip(b"\0").split(b"\0")
        age = time.time() - os.stat(f"/proc/{pid}").st_mtime
    except OSError:
        return "(has ended)"
    return f"{b' '.join(words).decode(errors='replace')[:300]} ({age:.0f} s)"


def send(pid, which):
    try:
        os.kill(pid, which)
    except ProcessLookupError:
        pass


def reap_ended():
    """Whether a child is left after those that ended have been reaped."""
    try:
        while os.waitpid(-1, os.WNOHANG)[0]:
            pass
    except ChildProcessError:
        return False
    return True


def end_all(program):
    """The program first, which may put its own things in order; then by force whatever is there still. None: a program
    that has only just been started."""
    for pid in [program] if program else children().get(os.getpid(), []):
        send(pid, signal.SIGTERM)
    give_up = time.monotonic() + LAST_SECONDS
    while reap_ended() and program in children().get(os.getpid(), []) and time.monotonic() < give_up:
        time.sleep(0.05)
    while reap_ended():
        for _, pid in below(os.getpid()):
            send(pid, signal.SIGKILL)
        time.sleep(0.05)


def status_of(program):
    """Waits for the program, and for whatever else ends meanwhile."""
    while True:
        pid, status = os.wait()
        if pid == program:
            return os.waitstatus_to_exitcode(status)


def run_within(seconds, *words):
    PRCTL(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    program = None
    try:
        # Kept: an object that goes away reaps the child that has ended already.
        child = subprocess.Popen(words)
        program = child.pid
        signal.alarm(int(seconds))
        status = status_of(program)
    except Over as reason:
        status = 128 + reason.args[0]
        if reason.args[0] == signal.SIGALRM:
            status = TOO_LONG
            print(f"{pathlib.Path(words[0]).name} did not end within {seconds} s; running were:", flush=True)
            for depth, pid in below(os.getpid()):
                print("  " * (depth + 1) + f"{pid} {line_of(pid)}", flush=True)
    for one in SIGNALS:
        signal.signal(one, signal.SIG_IGN)
    end_all(program)
    return status if status >= 0 else 128 - status


def main(*words):
    own, inner = os.getpid(), 0

    def passed_on(number, _):
        send(inner, number)

    # Until the child has its own handlers, and its number is known here, no signal comes through.
    signal.pthread_sigmask(signal.SIG_BLOCK, SIGNALS)
    inner = os.fork()
    for one in SIGNALS:
        signal.signal(one, passed_on if inner else over)
    if inner == 0:
        os.setpgid(0, 0)  # what is sent to the group of the one above comes by it, once
        PRCTL(PR_SET_PDEATHSIG, signal.SIGTERM, 0, 0, 0)
        if os.getppid() != own:
            return 128 + signal.SIGTERM
    signal.pthread_sigmask(signal.SIG_UNBLOCK, SIGNALS)
    return run_within(*words) if inner == 0 else os.waitstatus_to_exitcode(os.waitpid(inner, 0)[1])


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
