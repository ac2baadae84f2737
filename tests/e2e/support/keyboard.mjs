// A shopper without a mouse: goes from control to control by Tab as a browser leads them, and sees where they are.
import { strict as assert } from "node:assert";

/** More controls than any page has. */
const mostSteps = 150;

/**
 * Where Tab has led: whether to `target`, and what keeps the shopper from seeing the focus, empty when nothing does. Some of
 * a control must be in the window and under nothing else. Source: WCAG 2.2, success criteria 2.4.7 and 2.4.11.
 */
function focused(target) {
  const element = document.activeElement;
  if (element === null || element === document.body) {
    return { there: false, fault: "" };
  }
  const { left, right, top, bottom } = element.getBoundingClientRect();
  const { outlineStyle, outlineWidth, boxShadow } = getComputedStyle(element);
  const marked = (outlineStyle !== "none" && parseFloat(outlineWidth) > 0) || boxShadow !== "none";
  const points = [[left + 2, top + 2], [(left + right) / 2, (top + bottom) / 2], [right - 2, bottom - 2]];
  const seen = points.some(([x, y]) => {
    const found = document.elementFromPoint(x, y);
    return found !== null && (element.contains(found) || found.contains(element));
  });
  const name = `${element.outerHTML.slice(0, 80)} at ${Math.round(left)}, ${Math.round(top)}`;
  return { there: element === target, fault: marked && seen ? "" : `${name} is ${marked ? "out of sight" : "not marked"}` };
}

export class Keyboard {
  /** faults: what the shopper could not see on the way, one line each. */
  constructor(page) {
    this.page = page;
    this.faults = new Set();
  }

  /** Presses Tab until `target` has the focus. */
  async tabTo(target) {
    const element = await target.elementHandle();
    for (let steps = 0; steps < mostSteps; steps++) {
      await this.page.keyboard.press("Tab");
      const { there, fault } = await this.page.evaluate(focused, element);
      if (fault !== "") {
        this.faults.add(`${this.page.url().replace(/^.*\//, "")}: ${fault}`);
      }
      if (there) {
        return;
      }
    }
    assert.fail(`Tab does not lead to ${await target.evaluate((found) => found.outerHTML.slice(0, 120))}`);
  }

  /** Types into a field, in the position of what it holds. */
  async fill(field, text) {
    await this.tabTo(field);
    await this.page.keyboard.press("Control+A");
    await this.page.keyboard.insertText(text);
  }

  /** Takes an option of a list by the arrows, however far it is. */
  async choose(list, label) {
    await this.tabTo(list);
    const at = (await list.locator("option").allInnerTexts()).findIndex((text) => text.trim().startsWith(label));
    const from = await list.evaluate((element) => element.selectedIndex);
    for (let step = from; step !== at; step += Math.sign(at - from)) {
      await this.page.keyboard.press(at > from ? "ArrowDown" : "ArrowUp");
    }
    assert.equal(await list.evaluate((element) => element.selectedIndex), at);
  }

  /** Presses Enter on a control and waits for the page that it leads to. */
  async enter(target, address) {
    await this.tabTo(target);
    await Promise.all([this.page.waitForURL(address), this.page.keyboard.press("Enter")]);
  }
}
