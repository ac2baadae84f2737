// The model shop in a fresh folder, set up and built as a merchant would, served by tools/local-host.
import { execFileSync, spawn } from "node:child_process";
import { existsSync, readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { createInterface } from "node:readline";
import { fileURLToPath } from "node:url";

const localHost = fileURLToPath(new URL("../../../tools/local-host", import.meta.url));

/**
 * What a run changes in the model shop: pages so small that departments have several, how the search works, and a content
 * of 0.3 litres for the first mug, so that it has a price by the litre.
 */
function adjustments({ template, wholeWords }) {
  return [
    `UPDATE generale SET template = '${template}', ricercaparole = ${wholeWords ? 1 : 0}, ricartperpag = 3`,
    "UPDATE categorie SET maxarticoli = 3 WHERE ID = 'cat007'",
    "CREATE TABLE IF NOT EXISTS unita (ID INTEGER PRIMARY KEY, contenuto MONEY_INTEGER, misura TEXT(2) COLLATE NOCASE)",
    "INSERT INTO unita SELECT ID, 3000, 'l' FROM articoli WHERE codice = 'TZ-001'",
  ].join("; ");
}

/** Runs a program; its output is of interest only when it fails. */
export function run(program, words, environment) {
  try {
    return execFileSync(program, words, { env: environment, encoding: "utf8", stdio: ["ignore", "pipe", "pipe"] });
  } catch (error) {
    throw new Error(`${program} ${words.join(" ")}\n${error.stdout ?? ""}${error.stderr ?? error}`);
  }
}

/** The folders of a user who has only this shop. */
export function userOf(folder) {
  return { ...process.env, XDG_DATA_HOME: join(folder, "data"), XDG_CONFIG_HOME: join(folder, "config") };
}

/** Executes statements in the catalogue of a shop. */
export function runIn(shop, statements) {
  return run("sqlite3", [join(shop, "catalog.mdb"), statements], process.env);
}

/** Makes the model shop below `folder`, set up for tools/local-host; the result is the shop's folder. */
export function newShop({ cli, template, wholeWords, folder }) {
  const shop = join(folder, "shop");
  run(cli, ["new", shop], userOf(folder));
  runIn(shop, adjustments({ template, wholeWords }));
  run(localHost, ["prepare", shop], userOf(folder));
  return shop;
}

/** Builds and exports a shop; what the program said of the build. */
export function buildShop({ cli, folder }, shop) {
  const said = run(cli, ["build", shop], userOf(folder));
  run(cli, ["export-sql", shop], userOf(folder));
  // Visitors of the tests fill a form at once, and all come from one address.
  writeFileSync(join(shop, "online/kvlimiti.php"),
    "<?php return ['tempo_minimo' => 0, 'ordini' => [100000, 15], 'ordini_email' => [100000, 60],"
    + " 'registrazioni' => [100000, 15], 'accessi' => [100000, 15], 'collegamenti' => [100000, 15]];\n");
  return said;
}

/** Makes, builds and exports the model shop below `folder`; the result is the shop's folder. */
export function makeShop(options) {
  const shop = newShop(options);
  buildShop(options, shop);
  return shop;
}

/** A shop that is served: addresses without a closing slash, the folder of mails, the servers' logs. */
export class Host {
  constructor(process, home, lines) {
    const address = (name) => lines.find((line) => line.startsWith(`${name} `)).slice(name.length + 1);
    this.process = process;
    this.home = home;
    this.shop = address("shop").replace(/\/$/, "");
    this.backoffice = address("backoffice").replace(/\/$/, "");
    this.mail = address("mail");
  }

  /** Whatever a server wrote into one of its logs. */
  log(name) {
    const path = join(this.home, "log", name);
    return existsSync(path) ? readFileSync(path, "latin1") : "";
  }

  async stop() {
    if (this.process.exitCode !== null) {
      return;
    }
    const ended = new Promise((done) => this.process.once("exit", done));
    this.process.stdin.end();
    await ended;
  }
}

/** Starts the servers, which end with this program however it ends, and loads the shop's database. */
export async function serve(shop, home) {
  const host = await startHost(shop, home);
  run(localHost, ["load", shop, "--home", home], process.env);
  return host;
}

/** Starts the servers with an empty database. */
export async function startHost(shop, home) {
  const started = spawn(localHost, ["start", shop, "--home", home, "--hold"], { stdio: ["pipe", "pipe", "inherit"] });
  const lines = [];
  for await (const line of createInterface({ input: started.stdout })) {
    lines.push(line);
    if (line.startsWith("mail ")) {
      return new Host(started, home, lines);
    }
  }
  throw new Error("tools/local-host did not start");
}
