// ***1.0.7***
// The cart page beyond its lines: picture and link of each, the way to the order or what keeps from it, what shipping would
// cost by country before there is an order form, and what is missing until it costs nothing. The rule is that of
// kvstima.php.
/* global orderTotals, isMethodAllowed, addTotalRow, amountText, tableValue, SpOk, tipopeso, zonainiziale, scale, create */
/* global needsCorrection, wholeParts, minimo, valuta */
"use strict";

/** The payment methods (from 1) that a zone allows, the one that the order form starts with first. */
function zoneMethods(zone) {
  const first = Math.floor((zonainiziale - 1) / 8) + 1;
  const methods = [];
  for (let method = 1; method <= Math.ceil(SpOk.length / 8); method++) {
    if (isMethodAllowed(method, zone)) {
      methods.push(method);
    }
  }
  return methods.filter(function (method) { return method === first; })
    .concat(methods.filter(function (method) { return method !== first; }));
}

/** The amount in ten-thousandths above which a slot ships for nothing; null when it never does, or by weight. */
function freeShippingThreshold(slot) {
  const thresholds = tipopeso === "1" ? [] : [[3, "impord2"], [2, "impord1"]];
  let threshold = null;
  for (const [step, name] of thresholds) {
    if (tableValue("impspese" + step, slot, scale) !== 0) {
      break;
    }
    threshold = tableValue(name, slot, 10000);
  }
  return threshold;
}

/** What is said of free shipping; empty where there is none. */
function freeShippingText(totals, slot) {
  const threshold = freeShippingThreshold(slot);
  if (threshold === null || totals.spese === 0) {
    return threshold === null ? "" : "<<4-spedizione_gratuita>>" + ".";
  }
  const unit = 10000 / scale;
  const missing = Math.floor(threshold / unit) - (totals.merce - totals.sconto) + 1;
  return "<<4-gratuita_oltre>>" + " " + amountText(Math.floor(threshold / unit)) + ". " + "<<4-carrello_manca>>" + ": " +
    amountText(missing) + ".";
}

/** Shows what the lines would cost with shipping to the chosen country. */
function showEstimate(lines, choice, result) {
  const zone = parseInt(choice.value, 10);
  const methods = zoneMethods(zone);
  result.textContent = methods.length === 0 ? "<<4-stima_nessuna>>" : "";
  if (methods.length === 0 || lines.length === 0) {
    return;
  }
  const totals = orderTotals(lines, methods[0], zone);
  const costs = methods.map(function (method) { return orderTotals(lines, method, zone).spese; });
  const table = document.createElement("table");
  table.className = "totali";
  addTotalRow(table, "<<4-carrello_spedizione>>", totals.spese);
  if (totals.ivaspese !== 0) {
    addTotalRow(table, "<<4-carrello_iva_spedizione>>", totals.ivaspese);
  }
  addTotalRow(table, "<<4-stima_totale>>", totals.totale, "totale");
  result.append(table);
  const remarks = [freeShippingText(totals, (methods[0] - 1) * 8 + zone - 1)];
  if (Math.min(...costs) !== Math.max(...costs)) {
    remarks.push("<<4-stima_secondo>>" + ": " + amountText(Math.min(...costs)) + " - " + amountText(Math.max(...costs)) + ".");
  }
  remarks.filter(Boolean).forEach(function (text) {
    const note = document.createElement("p");
    // An amount stays together with its currency at the end of a line.
    note.textContent = text.replaceAll(valuta, valuta.replaceAll(" ", "\u00a0"));
    result.append(note);
  });
}

/** Puts picture and link to the name of each line of the drawn cart. */
function decorateLines(lines) {
  document.querySelectorAll("#carrello tbody tr").forEach(function (tableRow, index) {
    const line = lines[index];
    const cell = tableRow.cells[0];
    const name = cell.firstChild;
    if (line.u) {
      const link = document.createElement("a");
      link.href = line.u;
      link.textContent = line.n;
      name.replaceWith(link);
    }
    if (line.f) {
      const picture = document.createElement("img");
      picture.src = line.f;
      picture.alt = "";
      picture.className = "provino";
      cell.prepend(picture);
    }
  });
}

/** The reasons why the lines can't be ordered as they are, one sentence each. */
function orderFaults(lines) {
  const faults = lines.some(needsCorrection) ? ["<<4-carrello_da_correggere>>"] : [];
  const missing = wholeParts(minimo, scale) - orderTotals(lines, 1, 0).merce;
  if (missing > 0) {
    faults.push("<<4-carrello_minimo>>" + ": " + amountText(wholeParts(minimo, scale)) + ". " + "<<4-carrello_manca>>" + ": " +
      amountText(missing) + ".");
  }
  return faults;
}

/** Opens or closes the way to the order; a closed one says why. */
function openOrder(lines) {
  const step = document.getElementById("kv-ordina");
  if (!step) {
    return;
  }
  step.dataset.href = step.dataset.href || step.getAttribute("href");
  let reason = document.getElementById("kv-motivo");
  if (!reason) {
    reason = create("div", { id: "kv-motivo" });
    reason.setAttribute("role", "status");
    step.parentElement.before(reason);
  }
  const faults = lines.length === 0 ? [] : orderFaults(lines);
  reason.textContent = faults.join(" ");
  reason.className = faults.length > 0 ? "avviso" : "";
  if (faults.length > 0) {
    step.removeAttribute("href");
    step.setAttribute("role", "link");
    step.setAttribute("aria-disabled", "true");
    step.setAttribute("aria-describedby", "kv-motivo");
  } else {
    step.href = step.dataset.href;
    step.removeAttribute("aria-disabled");
  }
}

document.addEventListener("kv-carrello", function (event) {
  const choice = document.querySelector("#kv-stima select");
  const result = document.getElementById("kv-stima-esito");
  decorateLines(event.detail);
  openOrder(event.detail);
  if (!choice || !result) {
    return;
  }
  showEstimate(event.detail, choice, result);
  choice.onchange = function () { showEstimate(event.detail, choice, result); };
});
