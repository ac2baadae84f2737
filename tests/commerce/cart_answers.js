// What the cart's own script asks for orders: node cart_answers.js CODE CASES
// CODE holds js0.js, js1.js and js2.js; CASES is a file of lines, each a JSON object with the variables of the build as
// `script`, and goods (smallest units), weight (ten-thousandths), method (its position, from 1) and zone. Prints for
// each line: allowed, cost and VAT in smallest units.
"use strict";
const fs = require("fs");
const path = require("path");
const vm = require("vm");

const [code, cases] = process.argv.slice(2);
// What the build would put for the tags comes from the cases.
const sources = ["js0.js", "js1.js", "js2.js"].map(function (name) {
  return fs.readFileSync(path.join(code, name), "latin1").replace(/<<\d-\w+>>/g, "");
});

fs.readFileSync(cases, "utf8").split("\n").filter(Boolean).forEach(function (line) {
  const order = JSON.parse(line);
  const context = vm.createContext({ document: { cookie: "", addEventListener: function () {} }, console: console });
  context.window = Object.assign(context, { addEventListener: function () {} });
  vm.runInContext(sources[0], context);
  vm.runInContext(order.script, context);
  vm.runInContext(sources[1], context);
  vm.runInContext(sources[2], context);
  const asked = context.orderTotals([{ p: order.goods, q: 1, v: 0, w: order.weight, s: [] }], order.method, order.zone);
  console.log([asked.ammesso ? 1 : 0, asked.spese, asked.ivaspese].join(" "));
});
