// ***1.0.7***
// What every page of the shop needs: the cart's store, buying, the department menu, the search form, pictures.
// The cart is a list of lines in the browser's own store; beside it the cookie kvstore_art holds the article numbers,
// by which the server checks that they can still be bought. The server works every price out again when it takes the
// order, so what stands here is for showing only.
/* global idnegozio, qminima, autoredirect, checkcookies */
/* exported Acquista, SvuotaCarrello, RepGoTo, SubmitSearchForm, PopupImage */
"use strict";

const chiaveCarrello = "kvstore_cart_" + idnegozio;
const indirizzoNegozio = "<<1-perl_shopURL>>";

/** The lines of the cart; an empty list when there is none or the browser keeps nothing. */
function LeggiCarrello() {
  try {
    const righe = JSON.parse(localStorage.getItem(chiaveCarrello) || "[]");
    return Array.isArray(righe) ? righe : [];
  } catch (errore) {
    return [];
  }
}

/** Stores the lines, renews the cookie of article numbers and the counters on the page. False: nothing was kept. */
function ScriviCarrello(righe) {
  try {
    localStorage.setItem(chiaveCarrello, JSON.stringify(righe));
  } catch (errore) {
    return false;
  }
  const numeri = Array.from(new Set(righe.map(function (riga) { return riga.id; })));
  document.cookie = "kvstore_art=" + numeri.join(".") + "; path=" + location.pathname.replace(/[^/]*$/, "") +
    "; SameSite=Lax";
  ContaCarrello();
  return true;
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

/** A short message at the foot of the window, read out by screen readers. */
function Avvisa(testo) {
  let posto = document.getElementById("kv-avviso");
  if (!posto) {
    posto = document.createElement("div");
    posto.id = "kv-avviso";
    posto.setAttribute("role", "status");
    document.body.appendChild(posto);
  }
  posto.textContent = testo;
  posto.classList.add("visibile");
  clearTimeout(Avvisa.attesa);
  Avvisa.attesa = setTimeout(function () { posto.classList.remove("visibile"); }, 4000);
}

/**
 * The chosen value of a variant selector, null when the page has none of that name. Its value has the form
 * price=weight#code|label, price and weight being differences.
 */
function Variante(nome) {
  const scelta = document.itemsform.elements[nome];
  if (!scelta || scelta.selectedIndex < 0) {
    return null;
  }
  const valore = scelta.options[scelta.selectedIndex].value;
  const parti = /^(-?[\d.]*)=(-?[\d.]*)#([^|]*)\|([\s\S]*)$/.exec(valore);
  return parti === null ? null : { importo: Number(parti[1]) || 0, peso: Number(parti[2]) || 0, testo: parti[4] };
}

/**
 * Puts an article into the cart. opzione1 to opzione4 name the selectors on the page; scaglioni holds the quantity
 * discount as "quantity:factor" pairs joined by commas.
 */
function Acquista(articolo, prezzo, iva, quantita, opzione1, opzione2, opzione3, peso, opzione4, id, scaglioni) {
  const pezzi = Math.floor(Number(String(quantita).replace(",", ".")));
  if (!(pezzi > 0)) {
    Avvisa("<<4-quantita_errata>>");
    return;
  }
  if (pezzi < qminima) {
    Avvisa("<<4-quantita_minima>>" + " (" + qminima + ")");
    return;
  }
  const riga = { id: id, testo: articolo, q: pezzi, importo: Number(prezzo) || 0, iva: Number(iva) || 0,
    peso: Number(peso) || 0, o: ["", "", "", ""], scaglioni: scaglioni || "" };
  [opzione1, opzione2, opzione3, opzione4].forEach(function (nome, posto) {
    const variante = Variante(nome);
    if (variante !== null) {
      riga.importo += variante.importo;
      riga.peso += variante.peso;
      riga.o[posto] = variante.testo;
    }
  });
  const righe = LeggiCarrello();
  const uguale = righe.find(function (altra) {
    return altra.id === riga.id && JSON.stringify(altra.o) === JSON.stringify(riga.o);
  });
  if (uguale) {
    riga.q += uguale.q;
    Object.assign(uguale, riga);
  } else {
    righe.push(riga);
  }
  Avvisa(ScriviCarrello(righe) ? "<<4-aggiunto_al_carrello>>" : "<<4-carrello_non_conservato>>");
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

/** Opens the big picture of an article in a layer over the page; any key or click closes it. */
function PopupImage(file, larghezza, altezza) {
  const velo = document.createElement("dialog");
  const immagine = document.createElement("img");
  velo.className = "ingrandimento";
  immagine.src = file;
  immagine.alt = "";
  immagine.width = larghezza;
  immagine.height = altezza;
  velo.appendChild(immagine);
  document.body.appendChild(velo);
  velo.addEventListener("click", function () { velo.close(); });
  velo.addEventListener("close", function () { velo.remove(); });
  velo.showModal();
}

document.addEventListener("DOMContentLoaded", function () {
  ContaCarrello();
  if (checkcookies === 1 && !navigator.cookieEnabled) {
    Avvisa("<<4-cookie_necessari>>");
  }
  // The flags of the language links carry no text of their own.
  document.querySelectorAll(".lingue img:not([alt])").forEach(function (bandiera) {
    bandiera.alt = bandiera.getAttribute("src").replace(/^kvan_|\.gif$/g, "");
  });
  if (document.kvReparti) {
    document.kvReparti.kvRepartiMenu.setAttribute("aria-label", "<<4-menu_reparti>>");
  }
  // A shop reachable under several domains keeps its cart under one of them.
  if (autoredirect === 1 && indirizzoNegozio !== "" && new URL(indirizzoNegozio).hostname !== location.hostname) {
    location.replace(indirizzoNegozio + location.pathname.replace(/^.*\//, "/") + location.search + location.hash);
  }
});
