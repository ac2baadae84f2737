"""tools/screenshots makes every picture it names, without a display, in the size that was asked for.

    python3 screenshots_test.py ROOT PROGRAMS
"""
import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest

ROOT, PROGRAMS = (pathlib.Path(word).resolve() for word in sys.argv[1:3])


def run(*words):
    environment = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
    command = [ROOT / "tools/screenshots", "--programs", PROGRAMS, *words]
    return subprocess.run(command, env=environment, check=False, capture_output=True, text=True)


def size_of(picture):
    """Width and height in the header of a PNG. Source: RFC 2083, section 4.1.1."""
    head = picture.read_bytes()[:24]
    assert head[:8] == b"\x89PNG\r\n\x1a\n", picture
    return struct.unpack(">II", head[16:24])


class Screenshots(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.out = pathlib.Path(self.folder.name)
        self.addCleanup(self.folder.cleanup)

    def pictures(self, folder):
        return {picture.stem: size_of(picture) for picture in (self.out / folder).glob("*.png")}

    def test_every_scene_leaves_a_picture_of_the_size_asked_for(self):
        names = run("--list").stdout.split()
        self.assertGreater(len(names), 30)
        made = run("--out", self.out, "--size", "1280x800", "--palette", "light")
        self.assertEqual(made.returncode, 0, made.stderr)
        self.assertEqual(self.pictures("1280x800-light"), dict.fromkeys(names, (1280, 800)))

    def test_a_denser_screen_gives_more_pixels(self):
        made = run("--out", self.out, "--size", "1280x800", "--palette", "dark", "--scale", "2", "reparti")
        self.assertEqual(made.returncode, 0, made.stderr)
        self.assertEqual(self.pictures("1280x800-dark-x2"), {"reparti": (2560, 1600)})

    def test_an_unknown_option_is_refused(self):
        self.assertEqual(run("--colour", "red").returncode, 2)
        self.assertEqual(list(self.out.iterdir()), [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
