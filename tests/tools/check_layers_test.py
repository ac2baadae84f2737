"""Feeds tools/check-layers good and bad trees and reads what it says."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(sys.argv.pop(1)) / "tools" / "check-layers"
TABLE = """# Architecture
| Level | Folders | What |
|---|---|---|
| 0 | `base` | |
| 1 | `left`, `right` | |
| 2 | `roomy` | |

`left` -> `right`

| Folder | Rooms, lowest first |
|---|---|
| `roomy` | `cellar`, `hall`, `hall/attic` |
"""


class CheckLayers(unittest.TestCase):
    def check(self, files):
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            (root / "ARCHITECTURE.md").write_text(TABLE)
            for name, includes in files.items():
                path = root / "src" / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text("".join(f'#include "{include}"\n' for include in includes))
            run = subprocess.run([SCRIPT, root], capture_output=True, text=True)
            return run.returncode, run.stdout

    def test_lower_folders_the_own_folder_and_a_drawn_arrow_are_allowed(self):
        status, said = self.check({
            "base/a.h": [], "left/b.h": ["base/a.h", "right/c.h"], "left/d.cpp": ["left/b.h"], "right/c.h": []})
        self.assertEqual((status, said), (0, "layers: 2 files keep to the table\n"))

    def test_an_include_of_a_higher_folder_is_a_wrong_arrow(self):
        status, said = self.check({"base/a.h": ["left/b.h"], "left/b.h": []})
        self.assertEqual(status, 1)
        self.assertIn('base/a.h: base (level 0) may not include "left/b.h" (level 1)\n', said)

    def test_equals_need_an_arrow_and_it_points_one_way(self):
        status, said = self.check({"right/c.h": ["left/b.h"], "left/b.h": []})
        self.assertEqual((status, said), (1, 'right/c.h: right (level 1) may not include "left/b.h" (level 1)\n'))

    def test_two_folders_that_include_each_other_are_a_cycle(self):
        status, said = self.check({"right/c.h": ["left/d.h"], "left/b.h": ["right/e.h"]})
        self.assertEqual(status, 1)
        self.assertIn("cycle of folders: left -> right -> left\n", said)

    def test_files_of_one_folder_that_include_each_other_are_a_cycle(self):
        status, said = self.check({"base/a.h": ["base/b.h"], "base/b.h": ["base/a.h"]})
        self.assertEqual((status, said), (1, "cycle of files: base/a.h -> base/b.h -> base/a.h\n"))

    def test_a_way_around_through_the_parent_folder_is_refused(self):
        status, said = self.check({"base/a.h": ["../left/b.h"]})
        self.assertEqual((status, said), (1, 'base/a.h: include "../left/b.h" leaves its folder by ".."\n'))

    def test_a_folder_outside_the_table_is_refused(self):
        status, said = self.check({"extra/a.h": []})
        self.assertEqual((status, said), (1, "extra/a.h: the folder extra has no level in ARCHITECTURE.md\n"))

    def test_a_room_includes_itself_and_the_rooms_before_it(self):
        status, said = self.check({"roomy/cellar/a.h": [], "roomy/hall/b.h": ["roomy/cellar/a.h"],
                                   "roomy/hall/attic/c.cpp": ["roomy/hall/b.h", "roomy/cellar/a.h", "base/d.h"]})
        self.assertEqual((status, said), (0, "layers: 2 files keep to the table\n"))

    def test_a_room_that_includes_a_later_one_is_refused(self):
        status, said = self.check({"roomy/hall/b.h": ["roomy/hall/attic/c.h"], "roomy/hall/attic/c.h": []})
        self.assertEqual((status, said), (1, 'roomy/hall/b.h: the room hall may not include "roomy/hall/attic/c.h", '
                                             "a room further up\n"))

    def test_a_file_outside_the_rooms_of_its_folder_is_refused(self):
        status, said = self.check({"roomy/a.h": [], "roomy/shed/b.h": []})
        self.assertEqual((status, said), (1, "roomy/a.h: roomy has no room for files outside its rooms in "
                                             "ARCHITECTURE.md\nroomy/shed/b.h: roomy has no room shed in "
                                             "ARCHITECTURE.md\n"))


if __name__ == "__main__":
    unittest.main()
