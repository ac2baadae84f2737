"""Feeds tools/check-words small trees and reads what it finds."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(sys.argv.pop(1)) / "tools" / "check-words"


class CheckWords(unittest.TestCase):
    def check(self, files, *paths):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                path = Path(folder) / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text)
            run = subprocess.run([SCRIPT, folder, *paths], capture_output=True, text=True)
            return run.returncode, run.stdout.splitlines()

    def found(self, name, text):
        """The words found in one file, with their lines."""
        _, said = self.check({name: text})
        return [":".join(line.split(":")[1:3]) for line in said if line.startswith(name)]

    def test_a_clean_tree_is_counted(self):
        self.assertEqual(self.check({"src/a/b.h": "// The index after it.\n", "docs/a.md": "Text.\n"}),
                         (0, ["words: 2 files keep to plain ones"]))

    def test_a_find_names_file_line_and_the_better_word(self):
        self.assertEqual(self.check({"src/a/b.h": "#pragma once\n/// The index behind it.\n"}),
                         (1, ['src/a/b.h:2: "behind": say after']))

    def test_comments_and_texts_are_read_and_identifiers_are_not(self):
        self.assertEqual(self.found("src/a.cpp", 'int behind = f(letter);  // anew\nsay("two blanks"); /* it\nstands */\n'),
                         ['1: "anew"', '2: "blanks"', '3: "stands"'])

    def test_a_function_is_named_after_what_it_does(self):
        self.assertEqual(self.found("src/a.cpp", 'tell(1); // must(2)\nuser.must(4);\nsay("must(5)");\n'),
                         ['1: "tell()"', '2: "must()"'])
        self.assertEqual(self.found("app/a.js", "settle();\n"), ['1: "settle()"'])
        self.assertEqual(self.found("tools/a.py", "file.tell()\n"), [])

    def test_a_comment_inside_a_text_is_part_of_the_text(self):
        self.assertEqual(self.found("src/a.cpp", 'open("http://x", behind); // plain\n'), [])

    def test_names_of_tests_are_read_as_sentences(self):
        self.assertEqual(self.found("tests/a.cpp", "TEST_F(Rows, ANewRowStandsBehindTheLast) {\n"),
                         ['1: "Stands"', '1: "Behind"'])
        self.assertEqual(self.found("tests/a.py", "def test_it_is_made_anew(self):\n"), ['1: "anew"'])
        self.assertEqual(self.found("tests/a.cmake", "add_test(NAME rows.OneStandsAlone COMMAND x)\n"), ['1: "Stands"'])

    def test_scripts_are_known_by_their_first_line(self):
        self.assertEqual(self.found("tools/run", '#!/bin/sh\nbehind=1 # anew\necho "worked out"\n'),
                         ['2: "anew"', '3: "worked out"'])
        self.assertEqual(self.found("tools/list", '#!/usr/bin/env python3\n"""Takes it back."""\nplace = 1\n'),
                         ['2: "Takes it back"'])
        self.assertEqual(self.found("tools/data", "behind\n"), [])

    def test_documents_are_read_whole(self):
        self.assertEqual(self.found("docs/a.md", "One\n`a` stands\n"), ['2: "stands"'])
        self.assertEqual(self.found("README.md", "Nothing is left behind.\n"), ['1: "behind"'])

    def test_plain_english_that_holds_such_a_word_is_left_alone(self):
        self.assertEqual(self.found("docs/a.md", """In place, with two decimal places; it takes the place of another.
A visitor places an order. Letters and digits; ASCII letters; a blank line. "*" stands for any text.
"""), [])

    def test_folders_that_are_asked_for_are_read_alone(self):
        tree = {"src/a/b.h": "// behind\n", "src/c/d.h": "// behind\n"}
        self.assertEqual(self.check(tree, "src/c"), (1, ['src/c/d.h:1: "behind": say after']))


unittest.main()
