// Which visits are led to the shop's own domain: node redirect_test.js FOLDER, which holds the expanded scripts.
"use strict";
const assert = require("assert");
const fs = require("fs");
const path = require("path");
const vm = require("vm");

const [folder] = process.argv.slice(2);
const source = (name) => fs.readFileSync(path.join(folder, name), "latin1");

/** Where a visitor of `visited` ends up in a shop with these settings; null where they stay. */
function led(visited, address, autoredirect) {
  const ready = [];
  let target = null;
  const { hostname, pathname, search, hash } = new URL(visited);
  const listen = (event, act) => { if (event === "DOMContentLoaded") { ready.push(act); } };
  const nothing = () => ({ setAttribute() {}, append() {}, classList: { add() {} } });
  const context = vm.createContext({
    URL, console, window: { addEventListener() {} }, navigator: { cookieEnabled: true },
    location: { hostname, pathname, search, hash, replace(where) { target = where; } },
    document: { cookie: "", addEventListener: listen, querySelectorAll: () => [], querySelector: () => null,
      getElementById: nothing, createElement: nothing, body: nothing() },
  });
  vm.runInContext(source("js0.js"), context);
  vm.runInContext(`autoredirect = ${autoredirect}; checkcookies = 0;`, context);
  const constant = /const shopAddress = "[^"]*";/;
  assert.match(source("js1.js"), constant);
  vm.runInContext(source("js1.js").replace(constant, `const shopAddress = "${address}";`), context);
  ready.forEach((act) => act());
  return target;
}

const cases = {
  anotherDomainLeadsToTheShops: [led("http://altro.example/a/cat007.php?n=1#2", "http://bottega.example", 1),
    "http://bottega.example/cat007.php?n=1#2"],
  theShopsDomainStays: [led("http://bottega.example/index.php", "http://bottega.example", 1), null],
  withoutTheSettingEverybodyStays: [led("http://altro.example/index.php", "http://bottega.example", 0), null],
  anEmptyAddressLeadsNowhere: [led("http://altro.example/index.php", "", 1), null],
  anAddressOfASchemeAloneLeadsNowhere: [led("http://altro.example/index.php", "http://", 1), null],
};
for (const [name, [found, wanted]] of Object.entries(cases)) {
  assert.strictEqual(found, wanted, name);
}
