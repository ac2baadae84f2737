// html-validate on a page as the server sends it.
import { HtmlValidate } from "html-validate";

// How the text is laid out (spaces at line ends, the order of attributes) is no matter of validity.
const validator = new HtmlValidate({
  extends: ["html-validate:standard", "html-validate:a11y"],
});

/**
 * What the generator of pages writes byte for byte as it always has, so that merchants' own templates and style sheets
 * go on finding it: a rule, and the line on which it may find fault. `classico` shows these as they are; `chiaro` asks
 * its scripts to rewrite them. Whatever else is found in a page is a fault of the template.
 */
export const emittedMarkup = [
  // The menu of departments goes on by its own event. The same departments are links in the list before it.
  { rule: "wcag/h32", line: /^<form name="kvReparti">$/ },
  // The anchor of an article, to which links of merchants lead; the article has the same name as its id.
  { rule: "no-deprecated-attr", line: /^<a name=\d+><\/a>/ },
  // The table of the showcase: its columns, alignment and size of characters are settings of the shop.
  ...["no-deprecated-attr", "deprecated", "element-permitted-content"].flatMap((rule) => [
    { rule, line: /^<div align="center"><center><table border="0" cellpadding="4" cellspacing="0">/ },
    { rule, line: /^(?:<tr>)?<td valign="top" align="center" width="\d+%">$/ },
    { rule, line: /^<font size="\d">$/ },
  ]),
];

/** What is wrong with a text of HTML, one line each. accepted: faults that are none, as `emittedMarkup` has them. */
export async function htmlFaults(html, accepted = []) {
  const { results } = await validator.validateString(html);
  const lines = html.split("\n").map((line) => line.trim());
  return results.flatMap((result) => result.messages)
    .filter(({ ruleId, line }) => !accepted.some((one) => one.rule === ruleId && one.line.test(lines[line - 1])))
    .map((found) => `line ${found.line}, ${found.ruleId}: ${found.message}: ${lines[found.line - 1].slice(0, 160)}`);
}
