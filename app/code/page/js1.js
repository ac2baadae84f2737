// ***1.0.7***
// What every page of the shop needs: the cart's store, buying, the department menu, the search form, pictures.
// The cart is one cookie, kvstore_cart and the shop's number: lines joined by "_", in each the article's number, the
// pieces and the keys of the chosen variant values by slot, joined by "." ("12.3.a1b2c3_45.1"). Names and prices never
// stand in it: cart and order page have them from the server.
/* global idnegozio, qminima, autoredirect, checkcookies */
/* global valuta, valuta2, exch, SecVal, sepmigl, sepdec, PutDec, PutDec2 */
/* exported Acquista, SvuotaCarrello, RepGoTo, SubmitSearchForm, PopupImage, IvaNelleRighe, NomePaese */
"use strict";

const scala = PutDec === 1 ? 100 : 1;

const biscottoCarrello = "kvstore_cart" + idnegozio;
const indirizzoNegozio = "<<1-perl_shopURL>>";
/** A cookie holds 4096 letters with its name and marks; the server reads 200 lines. */
const lungoCarrello = 3900;
const righeCarrello = 200;

/** The value of a cookie, empty when there is none. */
function Biscotto(nome) {
  const voce = document.cookie.split("; ").find(function (coppia) { return coppia.startsWith(nome + "="); });
  return (voce || "").slice(nome.length + 1);
}

/** Sets a cookie of the shop's folder for so many seconds; 0 takes it away. */
function ScriviBiscotto(nome, valore, secondi) {
  document.cookie = nome + "=" + valore + "; path=" + location.pathname.replace(/[^/]*$/, "") + "; max-age=" + secondi +
    "; SameSite=Lax" + (location.protocol === "https:" ? "; Secure" : "");
}

/** The lines of the cart: id, q (pieces), k (keys by slot), c (article and keys, which tell lines apart). */
function LeggiCarrello() {
  const righe = [];
  Biscotto(biscottoCarrello).split("_").forEach(function (testo) {
    const parti = /^([1-9]\d{0,8})\.([1-9]\d{0,4})((?:\.[0-9a-f]{0,6}){0,4})$/.exec(testo);
    if (parti) {
      const chiavi = parti[3].slice(1).split(".");
      righe.push({ id: Number(parti[1]), q: Number(parti[2]), k: chiavi, c: Segno(parti[1], chiavi) });
    }
  });
  return righe;
}

/** What tells a line from all others: the article and the chosen values. */
function Segno(id, chiavi) {
  return [id].concat(chiavi).join(".").replace(/\.+$/, "");
}

/** The cart as the cookie and the order form carry it. */
function TestoCarrello(righe) {
  return righe.map(function (riga) { return Segno(riga.id + "." + riga.q, riga.k); }).join("_");
}

/** Stores the lines and renews the counters on the page. False: the browser keeps no cookie, or the cart is full. */
function ScriviCarrello(righe) {
  const testo = TestoCarrello(righe);
  if (testo.length > lungoCarrello || righe.length > righeCarrello) {
    return false;
  }
  ScriviBiscotto(biscottoCarrello, testo, righe.length === 0 ? 0 : 30 * 86400);
  ContaCarrello();
  return Biscotto(biscottoCarrello) === testo;
}

function SvuotaCarrello() {
  ScriviCarrello([]);
}

/** Writes the number of pieces into each element of class kv-conta. */
function ContaCarrello() {
  const pezzi = LeggiCarrello().reduce(function (somma, riga) { return somma + riga.q; }, 0);
  document.querySelectorAll(".kv-conta").forEach(function (posto) {
    posto.textContent = pezzi > 0 ? String(pezzi) : "";
  });
}

/** The place of short messages at the foot of the window; it must stand before its text does to be read out. */
function PostoAvviso() {
  let posto = document.getElementById("kv-avviso");
  if (!posto) {
    posto = document.createElement("div");
    posto.id = "kv-avviso";
    posto.setAttribute("role", "status");
    document.body.appendChild(posto);
  }
  return posto;
}

/** A short message at the foot of the window, read out by screen readers. */
function Avvisa(testo) {
  const posto = PostoAvviso();
  posto.textContent = testo;
  posto.classList.add("visibile");
  clearTimeout(Avvisa.attesa);
  Avvisa.attesa = setTimeout(function () { posto.classList.remove("visibile"); }, 4000);
}

/** Smallest units as digits in the shop's notation, with two decimals or none. */
function Formato(minimi, unita) {
  const cifre = String(Math.abs(minimi)).padStart(unita === 100 ? 3 : 1, "0");
  const taglio = unita === 100 ? cifre.length - 2 : cifre.length;
  const intero = cifre.slice(0, taglio).replace(/\B(?=(\d{3})+$)/g, sepmigl);
  return (minimi < 0 ? "-" : "") + intero + (unita === 100 ? sepdec + cifre.slice(taglio) : "");
}

/** Smallest units with the currency's label, in the second currency too where the shop shows one. */
function TestoImporto(minimi) {
  if (SecVal !== 1) {
    return valuta + Formato(minimi, scala);
  }
  return valuta + Formato(minimi, scala) + " (" + TestoCambio(minimi) + ")";
}

/** Smallest units in the second currency, with its label. */
function TestoCambio(minimi) {
  const unita = PutDec2 === 1 ? 100 : 1;
  const secondo = Math.floor(Number((Math.abs(minimi) / scala / exch * unita).toPrecision(15)) + 0.5);
  return valuta2 + Formato(minimi < 0 ? -secondo : secondo, unita);
}

/** A decimal of the build's tables as a whole number of its parts. */
function Interi(valore, per) {
  return Math.floor((Number(valore) || 0) * per + 0.5);
}

/** An amount by millionths, rounded half up. */
function Parte(importo, milionesimi) {
  return Math.floor(importo / 1e6) * milionesimi + Math.floor((importo % 1e6 * milionesimi + 500000) / 1e6);
}

/** The price of one piece of a line, by the factor of the highest quantity step reached. */
function ImportoRiga(riga) {
  let fattore = 1000000;
  riga.s.forEach(function (passo) {
    if (riga.q >= passo[0]) {
      fattore = passo[1];
    }
  });
  return Parte(Math.max(0, riga.p), Math.max(0, fattore));
}

/** The VAT that an amount includes at a rate in millionths, rounded half up. */
function IvaCompresa(importo, aliquota) {
  const base = BigInt(1000000 + aliquota);
  return Number((BigInt(importo) * BigInt(aliquota) * 2n + base) / (base * 2n));
}

/** The VAT in the prices of the lines, less the discount of the order: by rate, each rounded. */
function IvaNelleRighe(righe, fattore) {
  const importi = new Map();
  righe.forEach(function (riga) {
    importi.set(riga.a || 0, (importi.get(riga.a || 0) || 0) + ImportoRiga(riga) * riga.q);
  });
  let iva = 0;
  importi.forEach(function (importo, aliquota) { iva += IvaCompresa(Parte(importo, fattore), aliquota); });
  return iva;
}

/** The country of an option in the shop's own words. */
function NomePaese(voce) {
  return voce.dataset.paese || voce.text;
}

/** Smallest units by the content of a piece, in ten-thousandths of its measure: the price of one unit. */
function TestoUnitario(importo, contenuto, misura) {
  return valuta + Formato(Math.floor((importo * 20000 + contenuto) / (contenuto * 2)), scala) + " / " + misura;
}

/** Shows the price of one piece of an article as chosen: with the values of its variants and the pieces typed. */
function SeguiPrezzo(dati) {
  const articolo = dati.closest("article");
  const prezzo = articolo.querySelector("strong.prezzo");
  const cambio = articolo.querySelector(".cambio");
  const unitario = articolo.querySelector(".unitario");
  const campo = articolo.querySelector("input[name^=qt]");
  const scelte = Array.from(articolo.querySelectorAll("select[name^=op]"));
  const aggiorna = function () {
    const somma = scelte.reduce(function (parte, scelta) {
      return parte + (scelta.value === "" ? 0 : Math.round(parseFloat(scelta.value) * scala));
    }, Number(dati.dataset.prezzo));
    const pezzi = Math.max(1, Math.floor(Number(campo ? campo.value : 1)) || 1);
    const importo = ImportoRiga({ p: somma, q: pezzi, s: JSON.parse(dati.dataset.passi) });
    prezzo.textContent = valuta + Formato(importo, scala);
    if (cambio && SecVal === 1) {
      cambio.textContent = TestoCambio(importo);
    }
    if (unitario && dati.dataset.contenuto) {
      unitario.textContent = TestoUnitario(importo, Number(dati.dataset.contenuto), dati.dataset.misura);
    }
  };
  if (prezzo && (scelte.length > 0 || dati.dataset.passi !== "[]")) {
    articolo.addEventListener("change", aggiorna);
    articolo.addEventListener("input", aggiorna);
    // The browser may have kept what was chosen before.
    aggiorna();
  }
}

/** The key of the chosen value of a variant selector; empty when the page has none of that name. */
function Variante(nome) {
  const scelta = document.getElementsByName(nome)[0];
  return scelta && scelta.selectedIndex >= 0 ? scelta.options[scelta.selectedIndex].dataset.k || "" : "";
}

/**
 * Puts an article into the cart. opzione1 to opzione4 name the selectors on the page. Name, price, VAT and weight come
 * along for scripts of the merchant's own; the cart asks the server for them.
 */
function Acquista(articolo, prezzo, iva, quantita, opzione1, opzione2, opzione3, peso, opzione4, id) {
  const pezzi = Math.floor(Number(String(quantita).trim().replace(",", ".")));
  if (!(pezzi > 0 && pezzi < 100000)) {
    Avvisa("<<4-quantita_errata>>");
    return;
  }
  if (pezzi < qminima) {
    Avvisa("<<4-quantita_minima>>" + " (" + qminima + ")");
    return;
  }
  const chiavi = [opzione1, opzione2, opzione3, opzione4].map(Variante);
  const segno = Segno(id, chiavi);
  const righe = LeggiCarrello();
  const uguale = righe.find(function (altra) { return altra.c === segno; });
  if (uguale) {
    uguale.q = Math.min(uguale.q + pezzi, 99999);
  } else {
    righe.push({ id: id, q: pezzi, k: chiavi });
  }
  const tenuto = ScriviCarrello(righe);
  Avvisa(tenuto ? "<<4-aggiunto_al_carrello>>" : "<<4-carrello_non_conservato>>");
  if (tenuto) {
    document.dispatchEvent(new CustomEvent("kv-aggiunto", { detail: segno }));
  }
}

/** Goes to the department chosen in the drop-down. */
function RepGoTo() {
  const menu = document.kvReparti.kvRepartiMenu;
  const pagina = menu.options[menu.selectedIndex].value;
  if (pagina !== "#") {
    window.location.href = pagina;
  }
}

/** Checks the search form before it is sent; pagina is the page of results to show. */
function SubmitSearchForm(pagina) {
  const form = document.kvCerca;
  if (form.q.value.trim().length < 2) {
    form.q.focus();
    return false;
  }
  form.p.value = String(pagina);
  return true;
}

/** Opens the big picture of an article in a layer over the page; Escape, Enter or a click closes it. */
function PopupImage(file, larghezza, altezza) {
  const velo = document.createElement("dialog");
  const immagine = document.createElement("img");
  const chiudi = document.createElement("button");
  velo.className = "ingrandimento";
  velo.setAttribute("aria-label", "<<4-immagine_grande>>");
  immagine.src = file;
  immagine.alt = "";
  immagine.width = larghezza;
  immagine.height = altezza;
  chiudi.type = "button";
  chiudi.textContent = "\u00d7";
  chiudi.setAttribute("aria-label", "<<4-chiudi>>");
  velo.append(immagine, chiudi);
  document.body.appendChild(velo);
  velo.addEventListener("click", function () { velo.close(); });
  velo.addEventListener("close", function () { velo.remove(); });
  velo.showModal();
}

document.addEventListener("DOMContentLoaded", function () {
  PostoAvviso();
  ContaCarrello();
  document.querySelectorAll(".kv-prezzo").forEach(SeguiPrezzo);
  if (checkcookies === 1 && !navigator.cookieEnabled) {
    Avvisa("<<4-cookie_necessari>>");
  }
  // The flags of the language links carry no text of their own.
  document.querySelectorAll(".lingue img:not([alt])").forEach(function (bandiera) {
    bandiera.alt = bandiera.getAttribute("src").replace(/^kvan_|\.gif$/g, "");
  });
  if (document.kvReparti) {
    const menu = document.kvReparti.kvRepartiMenu;
    menu.setAttribute("aria-label", "<<4-menu_reparti>>");
    // The build leaves its first entry empty.
    menu.options[0].text = menu.options[0].text.trim() || "<<4-scegli_reparto>>";
  }
  // A shop reachable under several domains keeps its cart under one of them.
  if (autoredirect === 1 && /^https?:\/\/[^/]/i.test(indirizzoNegozio) && new URL(indirizzoNegozio).hostname !== location.hostname) {
    location.replace(indirizzoNegozio + location.pathname.replace(/^.*\//, "/") + location.search + location.hash);
  }
});

// A page that comes back from the browser's own store shows the cart of then.
window.addEventListener("pageshow", function (evento) {
  if (evento.persisted) {
    ContaCarrello();
  }
});
