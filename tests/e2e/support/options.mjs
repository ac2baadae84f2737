// What a run is told on its command line.
import { parseArgs } from "node:util";
import { mkdirSync, rmSync } from "node:fs";
import { resolve } from "node:path";

const usage = `run.mjs --cli KORVANE_CLI --template NAME --work FOLDER [--shots FOLDER]
  --template  the page template of the model shop
  --work      made empty, removed after a good run
  --shots     pictures of the main pages are left here`;

/** The options, with FOLDER made empty. Ends the program when one is missing. */
export function readOptions() {
  const { values } = parseArgs({
    options: {
      cli: { type: "string" },
      template: { type: "string" },
      work: { type: "string" },
      shots: { type: "string" },
    },
  });
  if (!values.cli || !values.template || !values.work) {
    console.error(usage);
    process.exit(2);
  }
  const options = { ...values, cli: resolve(values.cli), work: resolve(values.work) };
  rmSync(options.work, { recursive: true, force: true });
  mkdirSync(options.work, { recursive: true });
  if (options.shots) {
    mkdirSync(options.shots, { recursive: true });
  }
  return options;
}
