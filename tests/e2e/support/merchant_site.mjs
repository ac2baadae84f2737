// A merchant who publishes by FTP to a web host on this machine, and what that host then holds.
import { execFileSync, spawn } from "node:child_process";
import { createHash } from "node:crypto";
import { cpSync, existsSync, readFileSync, readdirSync, rmSync, writeFileSync } from "node:fs";
import { createConnection } from "node:net";
import { join } from "node:path";
import { setTimeout as pause } from "node:timers/promises";
import { fileURLToPath } from "node:url";
import { freePort } from "./free_port.mjs";
import { run, startHost } from "./model_shop.mjs";

const localFtp = fileURLToPath(new URL("../../../tools/local-ftp", import.meta.url));
const user = "mario";
const password = "Segreto-di-Mario";
const folders = ["online", "scripts"];

/** Name and digest of each file directly in a folder. */
export function filesOf(folder) {
  const files = {};
  for (const entry of readdirSync(folder, { withFileTypes: true })) {
    if (entry.isFile()) {
      files[entry.name] = createHash("sha256").update(readFileSync(join(folder, entry.name))).digest("hex");
    }
  }
  return files;
}

/** Changes a database of a shop while the program isn't running: the catalogue as the merchant's edits do. */
export function edit(shop, statements, database = "catalog.mdb") {
  execFileSync("sqlite3", [join(shop, database), statements.join("; ")]);
}

/** The shop as its merchant has it: edited, built and published by the command line program. */
export class PublishedShop {
  constructor(cli, shop, environment) {
    Object.assign(this, { cli, shop, environment });
  }

  build() {
    run(this.cli, ["build", this.shop], this.environment);
  }

  /** As if nothing had ever been sent anywhere. */
  forgetWhatWasSent() {
    edit(this.shop, ["DELETE FROM file"], "kvftp.mdb");
  }

  /** Publishes to a site; the names of the files that were sent. */
  publish(site, ...words) {
    edit(this.shop, [`UPDATE generale SET hostname = '127.0.0.1', username = '${user}', password = '${password}', `
      + "folderFTP = 'online', folderCGI = 'scripts'"]);
    writeFileSync(join(this.shop, "firewall.net"), `MODE: 1\r\nFPRT: ${site.ftpPort}\r\n`, { mode: 0o600 });
    const said = run(this.cli, ["publish", this.shop, ...words], this.environment);
    return said.trim().split("\n").filter((line) => !line.startsWith("File inviati"));
  }
}

/** A web host without a file of the shop, and the FTP server that writes into it. */
export class EmptySite {
  /** shop: built for the host. The site's folder and its servers' are made below `folder`. */
  static async open(shop, folder) {
    const site = new EmptySite();
    site.folder = join(folder, "site");
    cpSync(shop, site.folder, { recursive: true });
    site.host = await startHost(site.folder, join(folder, "host"));
    for (const name of folders) {
      rmSync(join(site.folder, name), { recursive: true });
    }
    site.ftpPort = await freePort();
    site.ftp = spawn(localFtp, [site.folder, String(site.ftpPort), user],
      { env: { ...process.env, KORVANE_FTP_PASSWORD: password }, stdio: "ignore" });
    await site.ftpAnswers();
    return site;
  }

  async ftpAnswers() {
    for (let attempt = 0; attempt < 300; attempt++) {
      const answers = await new Promise((done) => {
        const socket = createConnection(this.ftpPort, "127.0.0.1");
        socket.once("connect", () => { socket.destroy(); done(true); });
        socket.once("error", () => done(false));
      });
      if (answers) {
        return;
      }
      await pause(50);
    }
    throw new Error("tools/local-ftp did not start");
  }

  hasFolder(name) {
    return existsSync(join(this.folder, name));
  }

  /** All files of both folders with their digests. */
  files() {
    return Object.fromEntries(folders.map((name) => [name, filesOf(join(this.folder, name))]));
  }

  /** The tables of the catalogue with their rows as text, in an order of their own; those of customers are the host's. */
  tables() {
    const ask = (statement) => execFileSync("mariadb", ["--no-defaults", "-S", join(this.host.home, "run/mysql.sock"),
      "-u", "root", "-N", "-r", "--binary-mode", "negozio", "-e", statement],
    { encoding: "latin1", maxBuffer: 1 << 28 });
    const tables = {};
    for (const name of ask("SHOW TABLES WHERE Tables_in_negozio NOT LIKE 'kv\\_%'").trim().split("\n")) {
      tables[name] = ask(`SELECT * FROM \`${name}\``).split("\n").sort();
    }
    return tables;
  }

  async close() {
    const ended = new Promise((done) => this.ftp.once("exit", done));
    this.ftp.kill();
    await ended;
    await this.host.stop();
  }
}
