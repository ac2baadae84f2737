"""What a program has left running."""
import os
import pathlib


def processes_below(folder):
    """The command lines of running processes that name the folder."""
    found = []
    for entry in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
        try:
            line = entry.read_bytes().replace(b"\0", b" ").decode(errors="replace")
        except OSError:
            continue
        if str(folder) in line and int(entry.parent.name) != os.getpid():
            found.append(line)
    return found
