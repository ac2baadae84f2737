// html-validate on a page as the server sends it.
import { HtmlValidate } from "html-validate";

// How the text is laid out (spaces at line ends, the order of attributes) is no matter of validity.
const validator = new HtmlValidate({
  extends: ["html-validate:standard", "html-validate:a11y"],
});

/** What is wrong with a text of HTML, one line each. */
export async function htmlFaults(html) {
  const { results } = await validator.validateString(html);
  const lines = html.split("\n");
  return results.flatMap((result) => result.messages)
    .map((found) => `line ${found.line}, ${found.ruleId}: ${found.message}: ${lines[found.line - 1].trim().slice(0, 160)}`);
}
