// Debian's chromium, driven over its debugging port. Each visit is a visitor of their own, who notes what a visitor
// would call a fault: an error of a script, a file that is not there, a call to another host.
import { strict as assert } from "node:assert";
import { execFileSync } from "node:child_process";
import { accessSync, constants } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { fileURLToPath } from "node:url";
import { chromium } from "playwright-core";

// Nothing takes a second; a machine that does ten things at once gets its time.
const waitMilliseconds = 180000;
const flags = ["--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
  "--disable-component-update", "--disable-sync", "--disable-dev-shm-usage"];

const testFonts = fileURLToPath(new URL("../../../tools/test-fonts", import.meta.url));

/** The environment of a browser that sees the fonts of one family of tools/test-fonts, whatever the machine has. */
export function fontsOf(family) {
  const file = join(tmpdir(), `fonts-${family}.conf`);
  execFileSync(testFonts, [file, family]);
  return { ...process.env, FONTCONFIG_FILE: file };
}

/** The path of chromium on this machine. Its build without a screen lays pages out alike, with a third less work. */
export function findChromium() {
  const path = ["/usr/bin/chromium-headless-shell", "/usr/bin/chromium", "/usr/bin/chromium-browser"].find((candidate) => {
    try {
      accessSync(candidate, constants.X_OK);
      return true;
    } catch {
      return false;
    }
  });
  assert.ok(path, "chromium is missing: run tools/install-deps");
  return path;
}

/** Chromium's flags for this user: its sandbox cannot be had as root. */
export function chromiumFlags() {
  return process.getuid() === 0 ? [...flags, "--no-sandbox"] : flags;
}

/** Opens a browser without a screen. fonts: the family of fonts that its pages are laid out with. */
export function openBrowser(fonts = "usual") {
  return chromium.launch({
    executablePath: findChromium(),
    chromiumSandbox: process.getuid() !== 0,
    args: chromiumFlags(),
    env: fontsOf(fonts),
  });
}

/** The two screens: a telephone, and a desk. */
export const screens = [
  { width: 375, height: 812, isMobile: true, hasTouch: true },
  { width: 1280, height: 900, isMobile: false, hasTouch: false },
];

// Pages that visitors have left, by browser and by what their context was opened with.
const leftPages = new WeakMap();

/** One visitor with one page, who comes with nothing that an earlier one had. */
export class Visit {
  /** A visitor in the page that an earlier one left, where there is one: a new page takes a second of processor. */
  static async begin(browser, screen, locale) {
    const kind = JSON.stringify([screen, locale]);
    const left = leftPages.get(browser) ?? new Map();
    leftPages.set(browser, left.set(kind, left.get(kind) ?? []));
    const { width, height, ...touch } = screen;
    const again = left.get(kind).pop();
    if (again !== undefined) {
      await again.setViewportSize({ width, height });
      return new Visit(again.context(), again, left.get(kind));
    }
    const context = await browser.newContext({ viewport: { width, height }, locale, ...touch });
    context.setDefaultTimeout(waitMilliseconds);
    return new Visit(context, await context.newPage(), left.get(kind));
  }

  constructor(context, page, left) {
    this.context = context;
    this.page = page;
    this.left = left;
    this.faults = [];
    page.on("pageerror", (error) => this.faults.push(`script error on ${page.url()}: ${error.message}`));
    page.on("console", (message) => {
      // A message may come late, of the page that the visitor before this one left for an empty one.
      if (["error", "warning"].includes(message.type()) && page.url() !== "about:blank") {
        this.faults.push(`console on ${page.url()}: ${message.text()}`);
      }
    });
    page.on("request", (request) => {
      const { hostname, protocol } = new URL(request.url());
      if (protocol.startsWith("http") && hostname !== "127.0.0.1") {
        this.faults.push(`asked another host: ${request.url()}`);
      }
    });
    page.on("response", (response) => {
      if (response.status() >= 400) {
        this.faults.push(`${response.status()} for ${response.url()}`);
      }
    });
  }

  /** Fails when the visitor met a fault. */
  check() {
    assert.equal(this.faults.join("\n"), "");
  }

  /** Goes for good, and leaves the page to the next: without cookies, which are all that the shop keeps in it, or files. */
  async leave() {
    this.page.removeAllListeners();
    await this.page.goto("about:blank");
    await this.context.clearCookies();
    const session = await this.context.newCDPSession(this.page);
    await session.send("Network.clearBrowserCache");
    await session.detach();
    this.left.push(this.page);
  }
}
