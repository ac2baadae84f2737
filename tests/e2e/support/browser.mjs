// Debian's chromium, driven over its debugging port. Each visit is a visitor of their own, who notes what a visitor
// would call a fault: an error of a script, a file that is not there, a call to another host.
import { strict as assert } from "node:assert";
import { accessSync, constants } from "node:fs";
import { chromium } from "playwright-core";

const flags = ["--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
  "--disable-component-update", "--disable-sync", "--disable-dev-shm-usage"];

/** The path of chromium on this machine. */
export function findChromium() {
  const path = ["/usr/bin/chromium", "/usr/bin/chromium-browser"].find((candidate) => {
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

export function openBrowser(options = {}) {
  return chromium.launch({
    executablePath: findChromium(),
    chromiumSandbox: process.getuid() !== 0,
    args: chromiumFlags(),
    ...options,
  });
}

/** The two screens: a telephone, and a desk. */
export const screens = [
  { width: 375, height: 812, isMobile: true, hasTouch: true },
  { width: 1280, height: 900, isMobile: false, hasTouch: false },
];

/** One visitor with one page. */
export class Visit {
  static async begin(browser, screen, locale) {
    const { width, height, ...touch } = screen;
    const context = await browser.newContext({ viewport: { width, height }, locale, ...touch });
    context.setDefaultTimeout(30000);
    const page = await context.newPage();
    return new Visit(context, page);
  }

  constructor(context, page) {
    this.context = context;
    this.page = page;
    this.faults = [];
    page.on("pageerror", (error) => this.faults.push(`script error on ${page.url()}: ${error.message}`));
    page.on("console", (message) => {
      if (message.type() === "error" || message.type() === "warning") {
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
}
