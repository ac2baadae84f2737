// A Jet database read by this program and by mdb-reader, which shares no code with it: equal cell by cell.
// node jet_agreement.test.mjs JET_ROWS; KORVANE_TEST_OPERATIONS rows, else 1,500.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { test } from "node:test";
import MDBReader from "mdb-reader";

const program = process.argv[2];
const count = process.env.KORVANE_TEST_OPERATIONS ?? "1500";
const seed = process.env.KORVANE_TEST_SEED ?? "1";

/** A field as jet_rows prints it: flags and amounts are numbers. */
function plainField(value, name) {
  if (value === null || value === undefined) return null;
  if (name === "Vendita1") return Math.round(Number(value) * 10000);
  return typeof value === "boolean" ? Number(value) : value;
}

for (const version of ["3", "4"]) {
  test(`Jet ${version}: both readers give equal cells`, () => {
    const folder = mkdtempSync(join(tmpdir(), "korvane-jet-"));
    try {
      const file = join(folder, "orsa.mdb");
      const printed = execFileSync(program, [file, version, seed, count], { maxBuffer: 1 << 30 });
      const ours = printed.toString().trimEnd().split("\n").map((line) => JSON.parse(line));
      const table = new MDBReader(readFileSync(file)).getTable("Articoli");
      const names = table.getColumnNames();
      const theirs = table.getData().map((row) => names.map((name) => plainField(row[name], name)));
      assert.equal(ours.length, theirs.length);
      ours.forEach((row, index) => assert.deepEqual(row, theirs[index], `row ${index}`));
    } finally {
      rmSync(folder, { recursive: true });
    }
  });
}
