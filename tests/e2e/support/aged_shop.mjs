// A model shop as earlier releases left it: columns that they didn't have, stamps of their generations, and scripts of
// their time, with lines that have been changed since. Chance chooses, the same for the same seed.
import { mkdirSync, readFileSync, readdirSync, rmSync, writeFileSync } from "node:fs";
import { basename, join } from "node:path";

/** The columns of `generale` that came later, and what a shop has in them after they were added. */
const laterColumns = {
  p3p: "'ALL CUR ADM CONi PHY ONL UNI PUR COM NAV INT OUR STP'",
  subtitleincart: "0", regprices: "0", singleitem_search: "0", singleitem_vet: "0", reglist: "0", showsigns: "1",
};
/** Lines of earlier releases, by the scripts they were in. None of them is reached: they only have to parse. */
const formerLines = {
  "lognew.php": ['?><input type="password" name="pw" maxlength="12"><?php', '$home = "index.php";'],
  "funcs.php": ["$Out = implode ('', file ($name));", 'if(!isset($Lingua)){ $Lingua = ""; }',
    "if ($cliente == 0 && $regpr) {", "}", "global $subtitleincart;"],
  "output.php": ["$Out = implode ('', file ($name));", "$testo = urldecode($testo);"],
  "kvsearch.php": ["$Out = implode ('', file ($name));", ...["pagina", "linkPage"].map((column) =>
    `$fpagina[$artFound]=$rowArt["${column}"].".php?n=".$rowArt["sottopagina"]."#".$rowArt["contatore"];`)],
  "logcheck.php": ['?><input type="password" name="pw" maxlength="12"><?php'],
  "kvorder.php": ['$alldisp = "";', `$email = Array("name"=>"<<4-ordine_email>>","required"=>"1","maxlength"=>"",`
    + `"minlength"=>"","maxvalue"=>"","minvalue"=>"","regexp"=>'^([a-zA-Z0-9_\\-\\.]+)@((\\[[0-9]{1,3}\\.[0-9]{1,3}\\.`
    + `[0-9]{1,3}\\.)|(([a-zA-Z0-9\\-]+\\.)+))([a-zA-Z]{2,4}|[0-9]{1,3})(\\]?)$');`],
  "js2.js": ['DettagliOrd=DettagliOrd+"Articolo: " + theitem + "   ";',
    'RiepilogoCliente=RiepilogoCliente+"<<4-carrello_articolo>>: " + theitem + "   ";',
    "if (document.Ordine.Maggiorenne.checked == false && obbl_magg == 1) { return; }",
    `document.writeln('<tr BGCOLOR="'+sfondocarrello+'"><td colspan=4><FONT COLOR="<<1-colore0>>" `
    + `FACE="Arial,Helvetica" SIZE=-1>' + "<<4-carrello_iva_spedizione>>" + '</FONT></td><td align=right nowrap>`
    + `<INPUT type="text" name="TXivaspese" SIZE="'+lungtesto+'" value="'+valuta+testocasella+'" `
    + `onFocus="document.Ordine.TXspese.blur()" class="txtplain"></td></tr>');`,
    "document.Ordine.Riepilogo.value=RiepilogoCliente;"],
};
/** What of these lines is in no script once they have been changed. */
const formerTexts = ['maxlength="12"', "implode('',file(", '$home="index.php"', '$Lingua="";', '"Articolo:"+theitem',
  "_\\-\\.]+)@", "checked==false&&obbl_magg", "Ordine.TXspese.blur()"];
/** What is in no script of a shop whose visitors may not see or do everything, and still is in those of any other. */
const limitedTexts = ["$cliente==0&&$regpr", '["sottopagina"]."#".$rowArt["contatore"]'];
/** What has been put in beside a line that stays: in every shop, and in a limited one. */
const addedTexts = { "kvorder.php": 'die("Ordinenonvalido")' };
const limitedAdditions = {
  "funcs.php": "if($cliente>0&&$listino==0&&$regobbl)", "output.php": 'if($testo==".37."){$testo=', "js2.js": "totiva==0",
};
const [opening, closing] = ["/* former */", "/* end of former */"];
const stamps = ["1.0.3", "1.0.4", "1.0.6", "1.0.8", "1.0.10", "", null];
/** Texts without the characters that scripts may have between their words. */
export const withoutSpace = (text) => text.replace(/[ \t\r\n]/g, "");

/** Chance from a seed (mulberry32, a small generator in the public domain): a whole number below `limit`. */
function chanceOf(seed) {
  let state = seed;
  return (limit) => {
    state = (state + 0x6D2B79F5) | 0;
    let mixed = Math.imul(state ^ (state >>> 15), 1 | state);
    mixed = (mixed + Math.imul(mixed ^ (mixed >>> 7), 61 | mixed)) ^ mixed;
    return ((mixed ^ (mixed >>> 14)) >>> 0) % limit;
  };
}

/** A line with other spaces, tabs and line breaks around its operators, but for those inside of a text. */
function spaced(line, chance) {
  const space = () => Array.from({ length: chance(3) }, () => [" ", "\t", "\r\n"][chance(3)]).join("");
  return line.split(/("[^"]*"|'[^']*'|<[^>]*>)/).map((piece, index) =>
    index % 2 === 1 ? piece : piece.replace(/ *([=+(){};,]) */g, (whole, sign) =>
      /[<>?]/.test(whole) ? whole : space() + sign + space())).join("").replace(/=(\s+)(?=[=>])/g, "=");
}

/** A script as it was: without the mark of those that are new, and with lines of its time that are never reached. */
function formerScript(name, text, chance) {
  const lines = formerLines[name].map((line) => spaced(line, chance)).join("\r\n");
  const unmarked = text.replaceAll("***1.0.7***", "");
  if (name.endsWith(".js")) {
    return `${unmarked}\r\n${opening}function kvPrima() {\r\n${lines}\r\n}${closing}`;
  }
  return unmarked.replace("<?php", () => `<?php ${opening} if (false) {\r\n${lines}\r\n}${closing}`);
}

/** A script of a site without what it has of its time. */
export function withoutFormer(text) {
  const from = text.indexOf(opening);
  const bare = from < 0 ? text : text.slice(0, from) + text.slice(text.indexOf(closing) + closing.length);
  return withoutSpace(bare.replaceAll("***1.0.7***", ""));
}

/** What chance makes of a shop: statements that age its catalogue, those that give another shop what it will have. */
function agedColumns(chance, limited) {
  const limits = "UPDATE generale SET regprices = 1, singleitem_search = 1";
  const aging = [`UPDATE generale SET versione = ${1000 + chance(100)}`, ...(limited ? [limits] : [])];
  const values = limited ? [limits] : [];
  for (const [column, value] of Object.entries(laterColumns)) {
    if (chance(2) === 0 || (limited && limits.includes(column))) {
      continue;
    }
    aging.push(`ALTER TABLE generale DROP COLUMN ${column}`);
    values.push(`UPDATE generale SET ${column} = ${value}`);
  }
  return { aging: aging.join("; "), values: values.join("; ") };
}

/** Ages the files of a shop; the result is the stamp it has now. */
function ageFiles({ shop, application, seed }, chance) {
  const code = join(shop, "code");
  mkdirSync(code, { recursive: true });
  const stamp = stamps[seed % stamps.length];
  if (stamp === null) {
    rmSync(join(code, "ve.dat"), { force: true });
  } else {
    writeFileSync(join(code, "ve.dat"), stamp === "" ? "" : `${stamp}\r\n`);
  }
  if (stamp !== "1.0.8") {
    writeFileSync(join(code, "SysPay", "form.kpg"), "vecchio\r\n");
  }
  for (const name of Object.keys(formerLines)) {
    const text = readFileSync(join(application, "code", name), "latin1");
    writeFileSync(join(code, name), formerScript(name, text, chance), "latin1");
  }
  return stamp;
}

/**
 * Ages a shop; application: the folder with the scripts as they are shipped; execute: runs statements in the catalogue;
 * limited: visitors may not see or do everything in it. The result: statements that give a shop never aged equal values,
 * and what was done.
 */
export function ageShop(given) {
  const chance = chanceOf(given.seed);
  const { aging, values } = agedColumns(chance, given.limited);
  given.execute(aging);
  const stamp = ageFiles(given, chance);
  return { values, told: `seed ${given.seed}, stamp ${stamp}: ${aging}` };
}

/** What is wrong with the former lines of a patched script of the site. */
export function wrongLines(name, text, limited) {
  const compact = withoutSpace(text);
  const script = basename(name).replace(/(_l\d)?(\.\w+)$/, "$2");
  const gone = limited ? [...formerTexts, ...limitedTexts] : formerTexts;
  const kept = limited ? [] : limitedTexts.filter((former) => withoutSpace(formerLines[script].join("")).includes(former));
  const added = [addedTexts[script], limited ? limitedAdditions[script] : undefined];
  return [...gone.filter((former) => compact.includes(former)).map((former) => `still there: ${former}`),
    ...[...kept, ...added].filter((line) => line && !compact.includes(line)).map((line) => `missing: ${line}`)];
}

/**
 * The files below a folder, by their path from there, as Latin-1 text. Without what chance has chosen in each build:
 * files named by it, and the first line of the database's text.
 */
export function filesBelow(folder, path = "") {
  const files = new Map();
  for (const entry of readdirSync(join(folder, path), { withFileTypes: true })) {
    const inner = join(path, entry.name);
    if (entry.isDirectory()) {
      filesBelow(folder, inner).forEach((text, name) => files.set(name, text));
    } else if (!entry.name.endsWith(".sc")) {
      files.set(inner, readFileSync(join(folder, inner), "latin1").replace(/^#[a-z]{20}\r?\n/, ""));
    }
  }
  return files;
}

/** Whether a file of the site was made of one of the seven scripts that are changed at a build. */
export function isPatched(name) {
  const stem = basename(name).replace(/(_l\d)?\.(php|js)$/, "");
  return Object.keys(formerLines).some((script) => script.replace(/\.\w+$/, "") === stem);
}

