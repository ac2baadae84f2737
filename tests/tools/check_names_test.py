"""Feeds tools/check-names small trees and reads what it finds."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(sys.argv.pop(1)) / "tools" / "check-names"


class CheckNames(unittest.TestCase):
    def check(self, name, text):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
            run = subprocess.run([SCRIPT, folder], capture_output=True, text=True)
            return run.returncode, run.stdout.splitlines()

    def found(self, name, text):
        """The names found in one file, with their lines."""
        return [":".join(line.split(":")[1:3]) for line in self.check(name, text)[1] if line.startswith(name)]

    def test_a_find_names_file_line_and_name(self):
        self.assertEqual(self.check("app/code/cart/kvcart.php", "<?php\nfunction kvLeggiRiga(): void\n{\n}\n"),
                         (1, ['app/code/cart/kvcart.php:2: "kvLeggiRiga": say it in English']))

    def test_a_tree_of_english_names_is_counted(self):
        self.assertEqual(self.check("app/code/cart/kvcart.php", "<?php\nfunction kvReadLine(array $line): void\n{\n}\n"),
                         (0, ["names: 1 scripts have English ones"]))

    def test_classes_constants_and_variables_of_php_are_read(self):
        self.assertEqual(self.found("app/backoffice/a.php", """<?php
const BO_RIGHE = 5;
final class KvCarico
{
    public $nuove = [];
}
foreach ($rows as $chiave => $value) {
    echo "$prezzo";
}
"""), ['2: "BO_RIGHE"', '3: "KvCarico"', '5: "nuove"', '7: "chiave"', '8: "prezzo"'])

    def test_functions_values_parameters_and_members_of_javascript_are_read(self):
        self.assertEqual(self.found("app/template/a/a.js", """function ScriviRiga(testo, line) {
  const tabella = line;
  lines.forEach(function (riga) { riga.n = 1; });
  entries.map((voce) => voce.n);
}
class List {
  constructor(field) {
    this.scelta = -1;
  }
  async chiedi() {
    return 1;
  }
}
"""), ['1: "ScriviRiga"', '1: "testo"', '2: "tabella"', '3: "riga"', '4: "voce"', '8: "scelta"', '10: "chiedi"'])

    def test_given_names_columns_and_texts_are_left_alone(self):
        self.assertEqual(self.found("app/code/page/a.php", """<?php
// La riga del carrello.
function kvTesta(string $html): string
{
    return kvRiga('SELECT prezzo FROM articoli')['prezzo'] . '<p class="nascosto">' . $html;
}
"""), [])

    def test_english_words_that_look_alike_are_no_finds(self):
        self.assertEqual(self.found("app/code/page/a.php", "<?php\n$date = $data = $state = $total = $zone = $form = $module;\n"),
                         [])

    def test_payment_modules_are_read(self):
        self.assertEqual(self.found("app/new/code/Omnipay/omniend.new", "<?php\n$kvCampi = [];\n"), ['2: "kvCampi"'])


unittest.main()
