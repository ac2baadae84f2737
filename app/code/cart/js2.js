// ***1.0.7***
// The cart page and the order form. The totals follow the same rule as kvOrderTotals of kvtotals.php, told there, in whole
// numbers alone: amounts in smallest units of the currency, thresholds and weights in ten-thousandths, rates in
// millionths. What is sent with the order is the cart; the server computes the order again.
/* global readCart, writeCart, cartText, cookieValue, writeCookie, notify, scale, amountText, wholeParts, share */
/* global pieceAmount, includedVat, vatInLines, countryName, scimp, scperc, scl, totiva, SpOk, IvaOk, tipopeso, ivacompresa */
/* global aliquotaspese, minimo, qminima, zonainiziale, obbl_rsoc, obbl_piva, obbl_tel, obbl_magg */
/* exported MostraCarrello, SpedPaese, CaricaDati, InviaOrdine */
"use strict";

let currentListino = 0;
let isMouseDown = false;

/** A new element with these properties. */
function create(name, properties) {
  return Object.assign(document.createElement(name), properties);
}

/** A product of amount and millionths by other millionths, rounded half up once. */
function shareOfShare(product, millionths) {
  const high = Math.floor(product / 1e6) * millionths;
  const low = product % 1e6 * millionths;
  return Math.floor(high / 1e6) + Math.floor((high % 1e6 * 1e6 + low + 5e11) / 1e12);
}

/** The discount factor of the order in millionths: the customer's own percent, else the one by amount. */
function orderFactor(goods) {
  const own = typeof scl === "number" ? scl : 0;
  if (own > 0) {
    return Math.max(0, 1000000 - wholeParts(own, 10000));
  }
  const isAbove = goods * (10000 / scale) > wholeParts(scimp[currentListino], 10000);
  return isAbove ? Math.max(0, Math.min(1000000, wholeParts(scperc[currentListino], 1000000))) : 1000000;
}

/** A value of one of the generated tables as a whole number, 0 where the build wrote none. */
function tableValue(name, slot, per) {
  return Array.isArray(window[name]) ? wholeParts(window[name][slot], per) : 0;
}

/** The shipping cost of a slot, by weight or by the amount of the goods. */
function shippingCost(slot, goods, weight) {
  const byWeight = tipopeso === "1";
  const measure = byWeight ? weight : goods * (10000 / scale);
  const last = byWeight ? 10 : 3;
  for (let n = 1; n < last; n++) {
    if (measure <= tableValue((byWeight ? "imppeso" : "impord") + n, slot, 10000)) {
      return tableValue((byWeight ? "impspp" : "impspese") + n, slot, scale);
    }
  }
  return tableValue((byWeight ? "impspp" : "impspese") + last, slot, scale);
}

/**
 * Whether a method (from 1) may be used in a zone (1 to 8). SpOk has a character for each filled slot in the order
 * of the slots; the filled slots are the first ones, eight for each method, so a slot after the characters has no method.
 */
function isMethodAllowed(method, zone) {
  return SpOk.charAt((method - 1) * 8 + zone - 1) === "1";
}

/** The VAT on shipping: added, taken off, or neither. */
function shippingVat(withVat, shipping) {
  const rate = wholeParts(aliquotaspese, 1000000);
  if (ivacompresa === "1") {
    return withVat ? 0 : -includedVat(shipping, rate);
  }
  return withVat ? share(shipping, rate) : 0;
}

/** The totals for a payment method (from 1) and a zone (1 to 8); zone 0: goods alone, before the order form. */
function orderTotals(lines, method, zone) {
  const slot = (method - 1) * 8 + zone - 1;
  // Before the order form the zone is the one that the form starts with.
  const withVat = zone === 0 ? totiva !== 0 : IvaOk.charAt(zone - 1) === "1";
  let goods = 0;
  let vat = 0;
  let weight = 0;
  lines.forEach(function (line) {
    const amount = pieceAmount(line) * line.q;
    goods += amount;
    vat += amount * line.v;
    weight += line.w * line.q;
  });
  const factor = orderFactor(goods);
  const discount = share(goods, 1000000 - factor);
  const shipping = zone === 0 ? 0 : shippingCost(slot, goods - discount, weight);
  const result = {
    merce: goods,
    sconto: discount,
    iva: withVat ? shareOfShare(vat, factor) : (ivacompresa === "1" ? 0 - vatInLines(lines, factor) : 0),
    spese: shipping,
    ivaspese: zone === 0 ? 0 : shippingVat(withVat, shipping),
    ammesso: zone > 0 && isMethodAllowed(method, zone)
  };
  result.totale = goods - discount + result.iva + shipping + result.ivaspese;
  return result;
}

/** The lines of the cart with what the server told of each: n (name), o (choices), p, s, v, w, ok, m (most pieces). */
function servedLines() {
  const element = document.getElementById("kv-carrello-dati");
  const data = new Map();
  JSON.parse(element ? element.textContent : "[]").forEach(function (line) { data.set(line.c, line); });
  const entries = readCart();
  const lines = entries.filter(function (entry) { return data.has(entry.c); }).map(function (entry) {
    return Object.assign({}, data.get(entry.c), { id: entry.id, q: entry.q, k: entry.k });
  });
  // The cart was changed on another page since the server wrote this one: ask it again, but not in a circle.
  if (lines.length < entries.length && cookieValue("kvstore_di_nuovo") === "") {
    writeCookie("kvstore_di_nuovo", "1", 10);
    location.reload();
  }
  return lines;
}

/** Whether a line can be bought with its present pieces. */
function isBuyable(line) {
  return line.ok && (line.m === null || line.q <= line.m);
}

/** A row of label and amount in a table of totals. */
function addTotalRow(table, text, amount, className) {
  const row = table.insertRow();
  row.className = className || "";
  row.appendChild(create("th", { scope: "row", textContent: text }));
  row.insertCell().textContent = amountText(amount);
}

function writeTotals(element, totals, withShipping) {
  if (!element) {
    return;
  }
  element.textContent = "";
  const table = create("table", { className: "totali" });
  addTotalRow(table, "<<4-carrello_merce>>", totals.merce);
  if (totals.sconto > 0) {
    addTotalRow(table, "<<4-sconto>>", -totals.sconto);
  }
  if (totals.iva !== 0) {
    addTotalRow(table, totals.iva > 0 ? "<<4-carrello_iva>>" : "<<4-carrello_iva_esente>>", totals.iva);
  }
  if (withShipping) {
    addTotalRow(table, "<<4-carrello_spedizione>>", totals.spese);
    if (totals.ivaspese !== 0) {
      addTotalRow(table, "<<4-carrello_iva_spedizione>>", totals.ivaspese);
    }
  }
  addTotalRow(table, "<<4-carrello_totale>>", totals.totale, "totale");
  element.appendChild(table);
}

/**
 * Does something as soon as no button of the mouse is down. A quantity is taken when its field is left, often by a press on
 * a button: what moves that away under the pointer would cost its click.
 */
function afterPress(act) {
  if (isMouseDown) {
    document.addEventListener("mouseup", function () { setTimeout(act, 0); }, { once: true, capture: true });
  } else {
    act();
  }
}

["mousedown", "mouseup", "dragend"].forEach(function (type) {
  document.addEventListener(type, function () { isMouseDown = type === "mousedown"; }, true);
});

/** Changes the quantity of a line and draws the cart again; 0 takes the line out, and the keyboard goes to the next one. */
function changeQuantity(mark, quantity) {
  const lines = readCart();
  const index = lines.findIndex(function (line) { return line.c === mark; });
  const pieces = Math.min(99999, Math.floor(Number(quantity)) || 0);
  if (index < 0) {
    return;
  }
  lines[index].q = pieces;
  writeCart(lines.filter(function (line) { return line.q > 0; }));
  if (pieces > 0) {
    afterPress(drawCart);
    return;
  }
  drawCart();
  const fields = document.querySelectorAll("#carrello input");
  const next = fields[Math.min(index, fields.length - 1)] || document.getElementById("carrello");
  if (next) {
    next.focus();
  }
}

/** A note under the name of a cart line. */
function addNote(cell, element, text) {
  cell.append(document.createElement("br"), create(element, { textContent: text }));
}

/** The notes of a line: the chosen values, and why it can't be ordered as it is. */
function addLineNotes(cell, line) {
  if (line.o !== "") {
    addNote(cell, "small", line.o);
  }
  if (line.t) {
    addNote(cell, "small", "<<4-tempo_consegna>>" + " " + line.t);
  }
  if (line.ok && line.m !== null && line.m > 0 && line.q > line.m) {
    addNote(cell, "strong", "<<4-pezzi_disponibili>>" + ": " + line.m);
  } else if (!isBuyable(line)) {
    addNote(cell, "strong", "<<4-riga_non_disponibile>>");
  } else if (line.q < qminima) {
    addNote(cell, "strong", "<<4-quantita_minima>>" + " (" + qminima + ")");
  }
}

/** Whether a line keeps the order from being placed. */
function needsCorrection(line) {
  return !isBuyable(line) || line.q < qminima;
}

/** Shows what of a cart line depends on its pieces. */
function fillLine(tableRow, line) {
  tableRow.className = needsCorrection(line) ? "da-correggere" : "";
  tableRow.cells[0].textContent = line.n;
  addLineNotes(tableRow.cells[0], line);
  tableRow.querySelector("input").value = String(line.q);
  tableRow.cells[2].textContent = line.ok ? amountText(pieceAmount(line)) : "";
  tableRow.cells[3].textContent = line.ok ? amountText(pieceAmount(line) * line.q) : "";
}

/** The cells of one cart line; each carries its column's title for narrow screens. */
function addCartLine(body, line, names) {
  const tableRow = body.insertRow();
  names.forEach(function (name) { tableRow.insertCell().dataset.titolo = name; });
  const field = create("input", { type: "number", min: "0", max: "99999", inputMode: "numeric" });
  field.setAttribute("aria-label", names[1] + ": " + line.n);
  field.addEventListener("change", function () { changeQuantity(line.c, field.value); });
  tableRow.cells[1].appendChild(field);
  const remover = create("button", { type: "button", className: "secondario", textContent: "<<4-togli>>" });
  remover.setAttribute("aria-label", "<<4-togli>>" + ": " + line.n);
  remover.addEventListener("click", function () { changeQuantity(line.c, 0); });
  tableRow.cells[4].appendChild(remover);
  fillLine(tableRow, line);
}

/** The cart's lines as a table. */
function cartTable(lines) {
  const names = ["<<4-carrello_articolo>>", "<<4-quantita>>", "<<4-prezzo>>", "<<4-carrello_importo>>", ""];
  const table = document.createElement("table");
  const head = table.createTHead().insertRow();
  names.forEach(function (name) {
    head.appendChild(name === "" ? create("td", {}) : create("th", { scope: "col", textContent: name }));
  });
  const body = table.createTBody();
  lines.forEach(function (line) { addCartLine(body, line, names); });
  return table;
}

/**
 * Draws the lines. Where they are those that are drawn already their fields and buttons stay, and with them the focus and
 * the button that is being pressed.
 */
function drawLines(element, lines) {
  const marks = lines.map(function (line) { return line.c; }).join("_");
  const drawn = element.querySelectorAll("tbody tr");
  element.tabIndex = -1;
  if (drawn.length > 0 && element.dataset.righe === marks) {
    lines.forEach(function (line, n) { fillLine(drawn[n], line); });
    return;
  }
  element.dataset.righe = marks;
  element.replaceChildren(lines.length === 0 ? "<<4-carrello_vuoto>>" : cartTable(lines));
}

/** Draws the cart into the element carrello and its totals into carrello-totali. */
function drawCart() {
  const element = document.getElementById("carrello");
  const lines = servedLines();
  document.querySelectorAll(".se-pieno").forEach(function (part) { part.hidden = lines.length === 0; });
  if (element) {
    drawLines(element, lines);
  }
  if (!document.Ordine) {
    writeTotals(document.getElementById("carrello-totali"), orderTotals(lines, 1, 0), false);
    document.dispatchEvent(new CustomEvent("kv-carrello", { detail: lines }));
  }
}

/** Shows the cart for a listino; called by the script that the build puts into the cart and order pages. */
function MostraCarrello(listino) {
  currentListino = listino;
  drawCart();
  if (document.Ordine) {
    if (document.Ordine.Pagamento.selectedIndex < 0) {
      document.Ordine.Pagamento.selectedIndex = Math.floor((zonainiziale - 1) / 8);
    }
    SpedPaese();
  }
}

/** Offers the methods that the zone allows, and takes the first of them where the chosen one isn't. */
function offerMethods(form, zone) {
  const methods = Array.from(form.Pagamento.options);
  methods.forEach(function (method, index) { method.disabled = !isMethodAllowed(index + 1, zone); });
  const first = methods.findIndex(function (method) { return !method.disabled; });
  if (first >= 0 && (form.Pagamento.selectedIndex < 0 || methods[form.Pagamento.selectedIndex].disabled)) {
    form.Pagamento.selectedIndex = first;
  }
}

/** The order's totals for the chosen country and payment method; called at each change of either. */
function SpedPaese() {
  const form = document.Ordine;
  const zone = parseInt(form.LSStato.value, 10);
  offerMethods(form, zone);
  const totals = orderTotals(servedLines(), form.Pagamento.selectedIndex + 1, zone);
  writeTotals(document.getElementById("carrello-totali"), totals, true);
  form.Pagamento.setCustomValidity(totals.ammesso ? "" : "<<4-metodo_non_ammesso>>");
  return totals;
}

/**
 * Fills the order form with the data of the customer, which the server left in the cookie kvstore_cliente, and takes
 * that cookie away: it holds for this page alone.
 */
function CaricaDati() {
  const form = document.Ordine;
  const names = { nome: "Nome", cognome: "Cognome", rsoc: "RagioneSociale", piva: "PartitaIVA", indirizzo: "Indirizzo",
    cap: "CAP", citta: "Citta", provincia: "Provincia", telefono: "Telefono", email: "Email" };
  cookieValue("kvstore_cliente").split("|").forEach(function (pair) {
    const cut = pair.indexOf("=");
    const name = pair.slice(0, Math.max(0, cut));
    const value = decodeURIComponent(pair.slice(cut + 1));
    const field = Object.keys(names).includes(name) ? form.elements[names[name]] : null;
    if (field && field.value === "") {
      field.value = value;
    }
    if (name === "paese" && value !== "") {
      const country = Array.from(form.LSStato.options).findIndex(function (entry) {
        return countryName(entry) === value || entry.text === value;
      });
      form.LSStato.selectedIndex = country >= 0 ? country : form.LSStato.selectedIndex;
    }
  });
  document.cookie = "kvstore_cliente=; max-age=0";
  form.RagioneSociale.required = obbl_rsoc === 1;
  form.PartitaIVA.required = obbl_piva === 1;
  form.Telefono.required = obbl_tel === 1;
  form.Maggiorenne.required = obbl_magg === 1;
  SpedPaese();
}

/** Sets a hidden field of the order form, which gets it when the template has none. */
function setHiddenField(form, name, value) {
  let field = form.elements[name];
  if (!field) {
    field = form.appendChild(create("input", { type: "hidden", name: name }));
  }
  field.value = value;
}

/** Prepares the order form for sending; false stops it. */
function InviaOrdine() {
  const form = document.Ordine;
  const lines = servedLines();
  const totals = SpedPaese();
  let notice = "";
  if (lines.length === 0) {
    notice = "<<4-ordine_vuoto>>";
  } else if (!lines.every(isBuyable)) {
    notice = "<<4-articolo_non_disponibile>>";
  } else if (lines.some(function (line) { return line.q < qminima; })) {
    notice = "<<4-quantita_minima>>" + " (" + qminima + ")";
  } else if (totals.merce * (10000 / scale) < wholeParts(minimo, 10000)) {
    notice = "<<4-ordine_minimo>>" + " (" + amountText(wholeParts(minimo, scale)) + ")";
  }
  if (notice !== "") {
    notify(notice);
    return false;
  }
  setHiddenField(form, "Dettaglio", cartText(lines));
  setHiddenField(form, "Totale", String(totals.totale));
  setHiddenField(form, "Metodo", String(form.Pagamento.selectedIndex + 1));
  setHiddenField(form, "Paese", countryName(form.LSStato.options[form.LSStato.selectedIndex]));
  return form.reportValidity();
}
