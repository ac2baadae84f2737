// ***1.0.7***
// What every page of the shop needs: the cart's store, buying, the department menu, the search form, pictures.
// The cart is one cookie, kvstore_cart and the shop's number: lines joined by "_", in each the article's number, the
// pieces and the keys of the chosen variant values by slot, joined by "." ("12.3.a1b2c3_45.1"). Names and prices never
// are in it: cart and order page have them from the server.
/* global idnegozio, qminima, autoredirect, checkcookies */
/* global valuta, valuta2, exch, SecVal, sepmigl, sepdec, PutDec, PutDec2 */
/* exported Acquista, RepGoTo, SubmitSearchForm, PopupImage, vatInLines, countryName */
"use strict";

const scale = PutDec === 1 ? 100 : 1;

const cartCookie = "kvstore_cart" + idnegozio;
const shopAddress = "<<1-perl_shopURL>>";
/** A cookie holds 4096 characters with its name and marks; the server reads 200 lines. */
const maxCartLength = 3900;
const maxCartLines = 200;

/** The value of a cookie, empty when there is none. */
function cookieValue(name) {
  const entry = document.cookie.split("; ").find(function (pair) { return pair.startsWith(name + "="); });
  return (entry || "").slice(name.length + 1);
}

/** Sets a cookie of the shop's folder for so many seconds; 0 takes it away. */
function writeCookie(name, value, seconds) {
  document.cookie = name + "=" + value + "; path=" + location.pathname.replace(/[^/]*$/, "") + "; max-age=" + seconds +
    "; SameSite=Lax" + (location.protocol === "https:" ? "; Secure" : "");
}

/** The lines of the cart: id, q (pieces), k (keys by slot), c (article and keys, which tell lines apart). */
function readCart() {
  const lines = [];
  cookieValue(cartCookie).split("_").forEach(function (text) {
    const parts = /^([1-9]\d{0,8})\.([1-9]\d{0,4})((?:\.[0-9a-f]{0,6}){0,4})$/.exec(text);
    if (parts) {
      const keys = parts[3].slice(1).split(".");
      lines.push({ id: Number(parts[1]), q: Number(parts[2]), k: keys, c: lineMark(parts[1], keys) });
    }
  });
  return lines;
}

/** What tells a line from all others: the article and the chosen values. */
function lineMark(id, keys) {
  return [id].concat(keys).join(".").replace(/\.+$/, "");
}

/** The cart as the cookie and the order form carry it. */
function cartText(lines) {
  return lines.map(function (line) { return lineMark(line.id + "." + line.q, line.k); }).join("_");
}

/** Stores the lines and renews the counters on the page. False: the browser keeps no cookie, or the cart is full. */
function writeCart(lines) {
  const text = cartText(lines);
  if (text.length > maxCartLength || lines.length > maxCartLines) {
    return false;
  }
  writeCookie(cartCookie, text, lines.length === 0 ? 0 : 30 * 86400);
  countCart();
  return cookieValue(cartCookie) === text;
}

/** Writes the number of pieces into each element of class kv-conta. */
function countCart() {
  const pieces = readCart().reduce(function (sum, line) { return sum + line.q; }, 0);
  document.querySelectorAll(".kv-conta").forEach(function (element) {
    element.textContent = pieces > 0 ? String(pieces) : "";
  });
}

/** The room of short messages at the foot of the window; it must be there before its text to be read out. */
function noticeElement() {
  let element = document.getElementById("kv-avviso");
  if (!element) {
    element = document.createElement("div");
    element.id = "kv-avviso";
    element.setAttribute("role", "status");
    document.body.appendChild(element);
  }
  return element;
}

/** A short message at the foot of the window, read out by screen readers. */
function notify(text) {
  const element = noticeElement();
  element.textContent = text;
  element.classList.add("visibile");
  clearTimeout(notify.timer);
  notify.timer = setTimeout(function () { element.classList.remove("visibile"); }, 4000);
}

/** Smallest units as digits in the shop's notation, with two decimals or none. */
function formatUnits(units, unit) {
  const digits = String(Math.abs(units)).padStart(unit === 100 ? 3 : 1, "0");
  const cut = unit === 100 ? digits.length - 2 : digits.length;
  const whole = digits.slice(0, cut).replace(/\B(?=(\d{3})+$)/g, sepmigl);
  return (units < 0 ? "-" : "") + whole + (unit === 100 ? sepdec + digits.slice(cut) : "");
}

/** Smallest units with the currency's label, in the second currency too where the shop shows one. */
function amountText(units) {
  if (SecVal !== 1) {
    return valuta + formatUnits(units, scale);
  }
  return valuta + formatUnits(units, scale) + " (" + exchangeText(units) + ")";
}

/** Smallest units in the second currency, with its label. */
function exchangeText(units) {
  const unit = PutDec2 === 1 ? 100 : 1;
  const second = Math.floor(Number((Math.abs(units) / scale / exch * unit).toPrecision(15)) + 0.5);
  return valuta2 + formatUnits(units < 0 ? -second : second, unit);
}

/** A decimal of the build's tables as a whole number of its parts. */
function wholeParts(value, per) {
  return Math.floor((Number(value) || 0) * per + 0.5);
}

/** An amount by millionths, rounded half up. */
function share(amount, millionths) {
  return Math.floor(amount / 1e6) * millionths + Math.floor((amount % 1e6 * millionths + 500000) / 1e6);
}

/** The price of one piece of a line, by the factor of the highest quantity step reached. */
function pieceAmount(line) {
  let factor = 1000000;
  line.s.forEach(function (step) {
    if (line.q >= step[0]) {
      factor = step[1];
    }
  });
  return share(Math.max(0, line.p), Math.max(0, factor));
}

/** The VAT that an amount includes at a rate in millionths, rounded half up. */
function includedVat(amount, rate) {
  const base = BigInt(1000000 + rate);
  return Number((BigInt(amount) * BigInt(rate) * 2n + base) / (base * 2n));
}

/** The VAT in the prices of the lines, less the discount of the order: by rate, each rounded. */
function vatInLines(lines, factor) {
  const amounts = new Map();
  lines.forEach(function (line) {
    amounts.set(line.a || 0, (amounts.get(line.a || 0) || 0) + pieceAmount(line) * line.q);
  });
  let vat = 0;
  amounts.forEach(function (amount, rate) { vat += includedVat(share(amount, factor), rate); });
  return vat;
}

/** The country of an option in the shop's own words. */
function countryName(entry) {
  return entry.dataset.paese || entry.text;
}

/** Smallest units by the content of a piece, in ten-thousandths of its measure: the price of one unit. */
function unitPriceText(amount, content, measure) {
  return valuta + formatUnits(Math.floor((amount * 20000 + content) / (content * 2)), scale) + " / " + measure;
}

/** Shows the price of one piece of an article as chosen: with the values of its variants and the pieces typed. */
function followPrice(data) {
  const article = data.closest("article");
  const price = article.querySelector("strong.prezzo");
  const exchange = article.querySelector(".cambio");
  const unitPrice = article.querySelector(".unitario");
  const field = article.querySelector("input[name^=qt]");
  const choices = Array.from(article.querySelectorAll("select[name^=op]"));
  const update = function () {
    const sum = choices.reduce(function (part, choice) {
      return part + (choice.value === "" ? 0 : Math.round(parseFloat(choice.value) * scale));
    }, Number(data.dataset.prezzo));
    const pieces = Math.max(1, Math.floor(Number(field ? field.value : 1)) || 1);
    const amount = pieceAmount({ p: sum, q: pieces, s: JSON.parse(data.dataset.passi) });
    price.textContent = valuta + formatUnits(amount, scale);
    if (exchange && SecVal === 1) {
      exchange.textContent = exchangeText(amount);
    }
    if (unitPrice && data.dataset.contenuto) {
      unitPrice.textContent = unitPriceText(amount, Number(data.dataset.contenuto), data.dataset.misura);
    }
  };
  if (price && (choices.length > 0 || data.dataset.passi !== "[]")) {
    article.addEventListener("change", update);
    article.addEventListener("input", update);
    // The browser may have kept what was chosen before.
    update();
  }
}

/** The key of the chosen value of a variant selector; empty when the page has none of that name. */
function chosenKey(name) {
  const choice = document.getElementsByName(name)[0];
  return choice && choice.selectedIndex >= 0 ? choice.options[choice.selectedIndex].dataset.k || "" : "";
}

/**
 * Puts an article into the cart. option1 to option4 name the selectors on the page. Name, price, VAT and weight come
 * along for scripts of the merchant's own; the cart asks the server for them.
 */
function Acquista(article, price, vat, quantity, option1, option2, option3, weight, option4, id) {
  const pieces = Math.floor(Number(String(quantity).trim().replace(",", ".")));
  if (!(pieces > 0 && pieces < 100000)) {
    notify("<<4-quantita_errata>>");
    return;
  }
  if (pieces < qminima) {
    notify("<<4-quantita_minima>>" + " (" + qminima + ")");
    return;
  }
  const keys = [option1, option2, option3, option4].map(chosenKey);
  const mark = lineMark(id, keys);
  const lines = readCart();
  const equal = lines.find(function (other) { return other.c === mark; });
  if (equal) {
    equal.q = Math.min(equal.q + pieces, 99999);
  } else {
    lines.push({ id: id, q: pieces, k: keys });
  }
  const isKept = writeCart(lines);
  notify(isKept ? "<<4-aggiunto_al_carrello>>" : "<<4-carrello_non_conservato>>");
  if (isKept) {
    document.dispatchEvent(new CustomEvent("kv-aggiunto", { detail: mark }));
  }
}

/** Goes to the department chosen in the drop-down. */
function RepGoTo() {
  const menu = document.kvReparti.kvRepartiMenu;
  const page = menu.options[menu.selectedIndex].value;
  if (page !== "#") {
    window.location.href = page;
  }
}

/** Checks the search form before it is sent; page is the page of results to show. */
function SubmitSearchForm(page) {
  const form = document.kvCerca;
  if (form.q.value.trim().length < 2) {
    form.q.focus();
    return false;
  }
  form.p.value = String(page);
  return true;
}

/** Opens the big picture of an article in a layer over the page; Escape, Enter or a click closes it. */
function PopupImage(file, width, height) {
  const layer = document.createElement("dialog");
  const picture = document.createElement("img");
  const closer = document.createElement("button");
  layer.className = "ingrandimento";
  layer.setAttribute("aria-label", "<<4-immagine_grande>>");
  picture.src = file;
  picture.alt = "";
  picture.width = width;
  picture.height = height;
  closer.type = "button";
  closer.textContent = "\u00d7";
  closer.setAttribute("aria-label", "<<4-chiudi>>");
  layer.append(picture, closer);
  document.body.appendChild(layer);
  layer.addEventListener("click", function () { layer.close(); });
  layer.addEventListener("close", function () { layer.remove(); });
  layer.showModal();
}

document.addEventListener("DOMContentLoaded", function () {
  noticeElement();
  countCart();
  document.querySelectorAll(".kv-prezzo").forEach(followPrice);
  if (checkcookies === 1 && !navigator.cookieEnabled) {
    notify("<<4-cookie_necessari>>");
  }
  // The flags of the language links carry no text of their own.
  document.querySelectorAll(".lingue img:not([alt])").forEach(function (flag) {
    flag.alt = flag.getAttribute("src").replace(/^kvan_|\.gif$/g, "");
  });
  if (document.kvReparti) {
    const menu = document.kvReparti.kvRepartiMenu;
    menu.setAttribute("aria-label", "<<4-menu_reparti>>");
    // The build leaves its first entry empty.
    menu.options[0].text = menu.options[0].text.trim() || "<<4-scegli_reparto>>";
  }
  // A shop reachable under several domains keeps its cart under one of them.
  if (autoredirect === 1 && /^https?:\/\/[^/]/i.test(shopAddress) && new URL(shopAddress).hostname !== location.hostname) {
    location.replace(shopAddress + location.pathname.replace(/^.*\//, "/") + location.search + location.hash);
  }
});

// A page that comes back from the browser's own store shows the cart of then.
window.addEventListener("pageshow", function (event) {
  if (event.persisted) {
    countCart();
  }
});
