// The cart in the browser, the server and a calculation with whole numbers of any length must agree to the last unit:
//   node totals_match.js PHP FOLDER [CASES]
// FOLDER holds the expanded scripts. The cases are the same in each run.
"use strict";
const fs = require("fs");
const path = require("path");
const vm = require("vm");
const { execFileSync } = require("child_process");

const [php, folder, count] = process.argv.slice(2);
let seed = 20260131;

/** A whole number from 0 to `below` - 1 (mulberry32, a small generator in the public domain). */
function random(below) {
  seed = (seed + 0x6D2B79F5) | 0;
  let t = Math.imul(seed ^ (seed >>> 15), 1 | seed);
  t = (t + Math.imul(t ^ (t >>> 7), 61 | t)) ^ t;
  return ((t ^ (t >>> 14)) >>> 0) % below;
}

/** A number as the build's tables write it: no zero before the point, a space in front. */
function plain(value, decimals) {
  return " " + String(Number((value / 10 ** decimals).toFixed(decimals))).replace(/^0\./, ".");
}

function list(make) {
  return Array.from({ length: 32 }, make);
}

function makeCase(number) {
  const decimals = number % 2;
  const factors = Array.from({ length: 10 }, function () { return random(3) ? 1000000 : 500000 + random(500000); });
  const tables = {
    impord1: list(function () { return random(2000000); }), impord2: list(function () { return random(9000000); }),
    scimp: Array.from({ length: 10 }, function () { return random(3000000); }), scperc: factors
  };
  const shipping = {};
  ["impspese1", "impspese2", "impspese3"].forEach(function (name) { shipping[name] = list(function () { return random(5000); }); });
  for (let n = 1; n <= 10; n++) {
    tables["imppeso" + n] = list(function () { return n * 20000 + random(20000); });
    shipping["impspp" + n] = list(function () { return random(9000); });
  }
  const arrays = Object.keys(tables).map(function (name) {
    return name + "=new Array(" + tables[name].map(function (v) { return plain(v, name === "scperc" ? 6 : 4); }) + ");";
  }).concat(Object.keys(shipping).map(function (name) {
    return name + "=new Array(" + shipping[name].map(function (v) { return (v / (decimals ? 100 : 1)).toFixed(decimals ? 2 : 0); }) + ");";
  }));
  const letters = function (length) { return Array.from({ length: length }, function () { return random(5) ? 1 : 0; }).join(""); };
  const rate = 100000 + random(15) * 10000;
  const script = 'var valuta="EUR ";\nvar exch= 1;\nvar SecVal= 0;\nvar sepmigl=".";\nvar sepdec=",";\nvar PutDec= ' +
    decimals + ";\n" + arrays.join("\n") + "\nvar SpOk='" + letters(24) + "';\nvar IvaOk='" + letters(8) +
    "';\ntipopeso = \"" + random(2) + "\";\naliquotaspese = " + plain(rate, 6) + ";\nivacompresa = \"" + random(2) + "\";\n";
  const lines = Array.from({ length: 1 + random(8) }, function () {
    return { p: random(random(4) ? 30000 : 90000000), q: 1 + random(random(3) ? 12 : 900), v: random(3) ? [0, 40000, 100000, 220000, 55000][random(5)] : random(300000),
      a: [0, 40000, 100000, 220000, 81000][random(5)], w: random(50000), s: random(2) ? [] : [[3, 950000 - random(1000)], [10, 876543]] };
  });
  return { script: script, lines: lines, method: 1 + random(4), zone: 1 + random(8), listino: random(10),
    own: random(3) ? 0 : random(10001) / 100 };
}

/** a / b, a half up. */
function rounded(a, b) {
  return (2n * a + b) / (2n * b);
}

/** The same rule with big integers, on the values that the browser reads. */
function exact(c, context) {
  const scale = context.PutDec === 1 ? 100n : 1n;
  const whole = function (value, per) { return BigInt(Math.floor((value || 0) * per + 0.5)); };
  let goods = 0n, vat = 0n, weight = 0n;
  c.lines.forEach(function (line) {
    const step = line.s.filter(function (s) { return line.q >= s[0]; }).pop();
    const amount = rounded(BigInt(line.p) * BigInt(step ? step[1] : 1000000), 1000000n) * BigInt(line.q);
    goods += amount;
    vat += amount * BigInt(line.v);
    weight += BigInt(line.w) * BigInt(line.q);
  });
  let factor = 1000000n;
  if (c.own > 0) {
    factor -= whole(c.own, 10000);
  } else if (goods * 10000n / scale > whole(context.scimp[c.listino], 10000)) {
    factor = whole(context.scperc[c.listino], 1000000);
  }
  const discount = rounded(goods * (1000000n - factor), 1000000n);
  const slot = (c.method - 1) * 8 + c.zone - 1;
  const byWeight = context.tipopeso === "1";
  const measure = byWeight ? weight : (goods - discount) * 10000n / scale;
  let n = 1;
  while (n < (byWeight ? 10 : 3) && measure > whole(context[(byWeight ? "imppeso" : "impord") + n][slot], 10000)) {
    n++;
  }
  const shipping = whole(context[(byWeight ? "impspp" : "impspese") + n][slot], Number(scale));
  const taxed = context.IvaOk[c.zone - 1] === "1";
  const included = context.ivacompresa === "1";
  const rate = whole(context.aliquotaspese, 1000000);
  let goodsVat = taxed ? rounded(vat * factor, 1000000000000n) : 0n;
  let shippingVat = taxed && !included ? rounded(shipping * rate, 1000000n) : 0n;
  if (included && !taxed) {
    new Set(c.lines.map(function (line) { return line.a; })).forEach(function (of) {
      const sum = c.lines.filter(function (line) { return line.a === of; }).reduce(function (total, line) {
        const step = line.s.filter(function (s) { return line.q >= s[0]; }).pop();
        return total + rounded(BigInt(line.p) * BigInt(step ? step[1] : 1000000), 1000000n) * BigInt(line.q);
      }, 0n);
      goodsVat -= rounded(rounded(sum * factor, 1000000n) * BigInt(of), 1000000n + BigInt(of));
    });
    shippingVat = -rounded(shipping * rate, 1000000n + rate);
  }
  return String(goods - discount + goodsVat + shipping + shippingVat);
}

function browserContext(c) {
  const context = vm.createContext({ document: { cookie: "", addEventListener: function () {} }, window: {}, console: console });
  context.window = Object.assign(context, { addEventListener: function () {} });
  vm.runInContext(fs.readFileSync(path.join(folder, "js0.js"), "latin1"), context);
  vm.runInContext(c.script, context);
  ["js1.js", "js2.js"].forEach(function (name) {
    vm.runInContext(fs.readFileSync(path.join(folder, name), "latin1"), context);
  });
  context.scl = c.own;
  vm.runInContext("currentListino = " + c.listino, context);
  return context;
}

const cases = Array.from({ length: Number(count) || 400 }, function (unused, number) { return makeCase(number); });
const server = JSON.parse(execFileSync(php, ["-n", path.join(__dirname, "totals_cases.php"), folder],
  { input: JSON.stringify(cases), maxBuffer: 1 << 26 }).toString());
let failed = 0;
cases.forEach(function (c, number) {
  const context = browserContext(c);
  const browser = context.orderTotals(c.lines, c.method, c.zone);
  browser.testo = context.formatUnits(browser.totale, context.PutDec === 1 ? 100 : 1);
  const first = c.lines[0];
  browser.unitario = context.unitPriceText(first.p, first.w + 1, "kg");
  const unit = context.valuta + context.formatUnits(Number(rounded(BigInt(first.p) * 10000n, BigInt(first.w + 1))), context.PutDec === 1 ? 100 : 1) + " / kg";
  const there = Object.assign({}, server[number], { testo: server[number].testo.replace(/^EUR /, "") });
  const big = exact(c, context);
  const names = ["merce", "sconto", "iva", "spese", "ivaspese", "totale", "ammesso", "testo", "unitario"];
  // Before the order form a cart is counted for the zone that the form starts with.
  const startsUntaxed = vm.runInContext("totiva = " + (c.zone > 4 ? 0 : 1), context) === 0;
  const before = context.orderTotals(c.lines, 1, 0);
  const letter = startsUntaxed ? "0" : "1";
  vm.runInContext("IvaOk = '" + letter.repeat(8) + "'", context);
  const inForm = context.orderTotals(c.lines, c.method, c.zone);
  browser.primaDelModulo = before.totale;
  there.primaDelModulo = inForm.merce - inForm.sconto + inForm.iva;
  const differing = names.concat("primaDelModulo").filter(function (name) { return browser[name] !== there[name]; });
  if (differing.length > 0 || String(there.totale) !== big || unit !== there.unitario) {
    failed++;
    if (failed < 4) {
      console.log("case " + number + " differs in " + differing + "; exact total " + big + "\n", browser, there);
    }
  }
});
console.log(cases.length - failed + " of " + cases.length + " carts agree");
process.exit(failed === 0 ? 0 : 1);
