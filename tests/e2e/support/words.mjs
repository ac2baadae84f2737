// The words of the shop's pages, from the language modules that the shop was built with.
import { readFileSync } from "node:fs";
import { dirname, join } from "node:path";

/** The shop's languages: name of the module, code, and suffix of the pages. */
export const languages = [
  { name: "italiano", code: "it", suffix: "" },
  { name: "inglese", code: "en", suffix: "_l2" },
  { name: "francese", code: "fr", suffix: "_l3" },
  { name: "tedesco", code: "de", suffix: "_l4" },
];

/** The texts of a module by their tag, `acquista` for <<4-acquista>>; those of several lines are one text. */
export function readWords(cli, language) {
  const path = join(dirname(dirname(cli)), "share/korvane/languages", `${language.name}.lng`);
  const lines = new TextDecoder("windows-1252").decode(readFileSync(path)).split(/\r?\n/);
  const words = {};
  let name = null;
  for (const line of lines) {
    const tag = /^<<4-(\w+)>>$/.exec(line);
    if (tag) {
      name = tag[1];
      words[name] = "";
    } else if (/^\[/.test(line)) {
      name = null;
    } else if (name !== null && line !== "") {
      words[name] += (words[name] === "" ? "" : "\n") + line;
    }
  }
  return words;
}
