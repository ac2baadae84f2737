"""An SFTP server that means harm, as the subsystem of an SSH server: what it does with the listing of a folder is said by
the file "modo" of the folder it runs in. Source of the packets: draft-ietf-secsh-filexfer-02."""
import struct
import sys

INIT, CLOSE, OPENDIR, READDIR, REALPATH = 1, 4, 11, 12, 16
VERSION, STATUS, HANDLE, NAME = 2, 101, 102, 104
OK, END = 0, 1
HOSTILE_NAMES = [b".", b"..", b"../segreto", b"a/b", b"/etc", b"a\nDELE x", b"a\r\nb", b"\x1b[2Jvuota", b"www"]


def text(data):
    return struct.pack(">I", len(data)) + data


def say(kind, body):
    sys.stdout.buffer.write(struct.pack(">IB", len(body) + 1, kind) + body)
    sys.stdout.buffer.flush()


def status(number, code):
    say(STATUS, struct.pack(">II", number, code) + text(b"") + text(b""))


def names(number, entries):
    listed = (text(name) + text(b"drwxr-xr-x 2 ada web 4096 Jan  1 12:00 " + name) + struct.pack(">I", 0)
              for name in entries)
    say(NAME, struct.pack(">II", number, len(entries)) + b"".join(listed))


def list_folder(mode, number, is_first):
    if mode == "nomi" and is_first:
        names(number, HOSTILE_NAMES)
    elif mode == "nomi":
        status(number, END)
    elif mode == "lungo":
        names(number, [b"%03d" % i + b"x" * 1900 for i in range(60)])
    elif mode == "molti":
        names(number, [b"%04d" % i for i in range(3000)])
    elif mode == "vuoto":
        names(number, [])
    elif mode == "altri":
        while True:  # answers to what nobody has asked
            number += 1
            say(STATUS, struct.pack(">II", number, OK) + text(b"x" * 30000) + text(b""))
    elif mode == "enorme":
        sys.stdout.buffer.write(struct.pack(">IB", 0x7fffffff, NAME) + b"x" * 1000)
        sys.stdout.buffer.flush()
    elif mode == "bugiardo":
        say(NAME, struct.pack(">II", number, 1000) + text(b"uno")[:5])
    elif mode == "va via":
        sys.exit()


def main():
    with open("modo", encoding="ascii") as file:
        mode = file.read()
    packets = sys.stdin.buffer
    is_first = True
    while len(head := packets.read(4)) == 4:
        packet = packets.read(struct.unpack(">I", head)[0])
        kind, number = packet[0], struct.unpack(">I", packet[1:5])[0]
        if kind == INIT:
            say(VERSION, struct.pack(">I", 3))
        elif kind == REALPATH:
            names(number, [b"/home/ada"])
        elif kind == OPENDIR:
            say(HANDLE, struct.pack(">I", number) + text(b"h"))
        elif kind == READDIR:
            list_folder(mode, number, is_first)
            is_first = False
        else:
            status(number, OK)


if __name__ == "__main__":
    main()
