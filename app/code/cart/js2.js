// ***1.0.7***
// The cart page and the order form. The totals follow the same rule as kvTotali of kvtotals.php, told there, in whole
// numbers alone: amounts in smallest units of the currency, thresholds and weights in ten-thousandths, rates in
// millionths. What is sent with the order is the cart; the server computes the order again.
/* global LeggiCarrello, ScriviCarrello, TestoCarrello, Biscotto, ScriviBiscotto, Avvisa, scala, TestoImporto, Interi, Parte */
/* global ImportoRiga, IvaCompresa, IvaNelleRighe, NomePaese, scimp, scperc, scl, totiva, SpOk, IvaOk, tipopeso, ivacompresa */
/* global aliquotaspese, minimo, qminima, zonainiziale, obbl_rsoc, obbl_piva, obbl_tel, obbl_magg */
/* exported MostraCarrello, SpedPaese, CaricaDati, InviaOrdine */
"use strict";

let listinoCorrente = 0;
let mousePremuto = false;

/** A new element with these properties. */
function Crea(nome, proprieta) {
  return Object.assign(document.createElement(nome), proprieta);
}

/** A product of amount and millionths by other millionths, rounded half up once. */
function ParteDoppia(prodotto, milionesimi) {
  const alto = Math.floor(prodotto / 1e6) * milionesimi;
  const basso = prodotto % 1e6 * milionesimi;
  return Math.floor(alto / 1e6) + Math.floor((alto % 1e6 * 1e6 + basso + 5e11) / 1e12);
}

/** The discount factor of the order in millionths: the customer's own percent, else the one by amount. */
function FattoreOrdine(merce) {
  const personale = typeof scl === "number" ? scl : 0;
  if (personale > 0) {
    return Math.max(0, 1000000 - Interi(personale, 10000));
  }
  const sopra = merce * (10000 / scala) > Interi(scimp[listinoCorrente], 10000);
  return sopra ? Math.max(0, Math.min(1000000, Interi(scperc[listinoCorrente], 1000000))) : 1000000;
}

/** A value of one of the generated tables as a whole number, 0 where the build wrote none. */
function Tavola(nome, posto, per) {
  return Array.isArray(window[nome]) ? Interi(window[nome][posto], per) : 0;
}

/** The shipping cost of a slot, by weight or by the amount of the goods. */
function Spese(posto, merce, peso) {
  const aPeso = tipopeso === "1";
  const misura = aPeso ? peso : merce * (10000 / scala);
  const ultima = aPeso ? 10 : 3;
  for (let n = 1; n < ultima; n++) {
    if (misura <= Tavola((aPeso ? "imppeso" : "impord") + n, posto, 10000)) {
      return Tavola((aPeso ? "impspp" : "impspese") + n, posto, scala);
    }
  }
  return Tavola((aPeso ? "impspp" : "impspese") + ultima, posto, scala);
}

/**
 * Whether a method (from 1) may be used in a zone (1 to 8). SpOk has a character for each filled slot in the order
 * of the slots; the filled slots are the first ones, eight for each method, so a slot after the characters has no method.
 */
function Ammesso(metodo, zona) {
  return SpOk.charAt((metodo - 1) * 8 + zona - 1) === "1";
}

/** The VAT on shipping: added, taken off, or neither. */
function IvaSpese(conIva, spese) {
  const aliquota = Interi(aliquotaspese, 1000000);
  if (ivacompresa === "1") {
    return conIva ? 0 : -IvaCompresa(spese, aliquota);
  }
  return conIva ? Parte(spese, aliquota) : 0;
}

/** The totals for a payment method (from 1) and a zone (1 to 8); zona 0: goods alone, before the order form. */
function totali(righe, metodo, zona) {
  const posto = (metodo - 1) * 8 + zona - 1;
  // Before the order form the zone is the one that the form starts with.
  const conIva = zona === 0 ? totiva !== 0 : IvaOk.charAt(zona - 1) === "1";
  let merce = 0;
  let iva = 0;
  let peso = 0;
  righe.forEach(function (riga) {
    const importo = ImportoRiga(riga) * riga.q;
    merce += importo;
    iva += importo * riga.v;
    peso += riga.w * riga.q;
  });
  const fattore = FattoreOrdine(merce);
  const sconto = Parte(merce, 1000000 - fattore);
  const spese = zona === 0 ? 0 : Spese(posto, merce - sconto, peso);
  const esito = {
    merce: merce,
    sconto: sconto,
    iva: conIva ? ParteDoppia(iva, fattore) : (ivacompresa === "1" ? 0 - IvaNelleRighe(righe, fattore) : 0),
    spese: spese,
    ivaspese: zona === 0 ? 0 : IvaSpese(conIva, spese),
    ammesso: zona > 0 && Ammesso(metodo, zona)
  };
  esito.totale = merce - sconto + esito.iva + spese + esito.ivaspese;
  return esito;
}

/** The lines of the cart with what the server told of each: n (name), o (choices), p, s, v, w, ok, m (most pieces). */
function RigheServite() {
  const posto = document.getElementById("kv-carrello-dati");
  const dati = new Map();
  JSON.parse(posto ? posto.textContent : "[]").forEach(function (riga) { dati.set(riga.c, riga); });
  const voci = LeggiCarrello();
  const righe = voci.filter(function (voce) { return dati.has(voce.c); }).map(function (voce) {
    return Object.assign({}, dati.get(voce.c), { id: voce.id, q: voce.q, k: voce.k });
  });
  // The cart was changed on another page since the server wrote this one: ask it again, but not in a circle.
  if (righe.length < voci.length && Biscotto("kvstore_di_nuovo") === "") {
    ScriviBiscotto("kvstore_di_nuovo", "1", 10);
    location.reload();
  }
  return righe;
}

/** Whether a line can be bought with its present pieces. */
function Comprabile(riga) {
  return riga.ok && (riga.m === null || riga.q <= riga.m);
}

/** A row of label and amount in a table of totals. */
function RigaTotale(tabella, testo, importo, classe) {
  const riga = tabella.insertRow();
  riga.className = classe || "";
  riga.appendChild(Crea("th", { scope: "row", textContent: testo }));
  riga.insertCell().textContent = TestoImporto(importo);
}

function ScriviTotali(posto, somme, conSpese) {
  if (!posto) {
    return;
  }
  posto.textContent = "";
  const tabella = Crea("table", { className: "totali" });
  RigaTotale(tabella, "<<4-carrello_merce>>", somme.merce);
  if (somme.sconto > 0) {
    RigaTotale(tabella, "<<4-sconto>>", -somme.sconto);
  }
  if (somme.iva !== 0) {
    RigaTotale(tabella, somme.iva > 0 ? "<<4-carrello_iva>>" : "<<4-carrello_iva_esente>>", somme.iva);
  }
  if (conSpese) {
    RigaTotale(tabella, "<<4-carrello_spedizione>>", somme.spese);
    if (somme.ivaspese !== 0) {
      RigaTotale(tabella, "<<4-carrello_iva_spedizione>>", somme.ivaspese);
    }
  }
  RigaTotale(tabella, "<<4-carrello_totale>>", somme.totale, "totale");
  posto.appendChild(tabella);
}

/**
 * Does something as soon as no button of the mouse is down. A quantity is taken when its field is left, often by a press on
 * a button: what moves that away under the pointer would cost its click.
 */
function DopoLaPressione(atto) {
  if (mousePremuto) {
    document.addEventListener("mouseup", function () { setTimeout(atto, 0); }, { once: true, capture: true });
  } else {
    atto();
  }
}

["mousedown", "mouseup", "dragend"].forEach(function (tipo) {
  document.addEventListener(tipo, function () { mousePremuto = tipo === "mousedown"; }, true);
});

/** Changes the quantity of a line and draws the cart again; 0 takes the line out, and the keyboard goes to the next one. */
function CambiaQuantita(segno, quantita) {
  const righe = LeggiCarrello();
  const indice = righe.findIndex(function (riga) { return riga.c === segno; });
  const pezzi = Math.min(99999, Math.floor(Number(quantita)) || 0);
  if (indice < 0) {
    return;
  }
  righe[indice].q = pezzi;
  ScriviCarrello(righe.filter(function (riga) { return riga.q > 0; }));
  if (pezzi > 0) {
    DopoLaPressione(DisegnaCarrello);
    return;
  }
  DisegnaCarrello();
  const campi = document.querySelectorAll("#carrello input");
  const prossimo = campi[Math.min(indice, campi.length - 1)] || document.getElementById("carrello");
  if (prossimo) {
    prossimo.focus();
  }
}

/** A note under the name of a cart line. */
function Nota(cella, elemento, testo) {
  cella.append(document.createElement("br"), Crea(elemento, { textContent: testo }));
}

/** The notes of a line: the chosen values, and why it can't be ordered as it is. */
function NoteRiga(cella, riga) {
  if (riga.o !== "") {
    Nota(cella, "small", riga.o);
  }
  if (riga.t) {
    Nota(cella, "small", "<<4-tempo_consegna>>" + " " + riga.t);
  }
  if (riga.ok && riga.m !== null && riga.m > 0 && riga.q > riga.m) {
    Nota(cella, "strong", "<<4-pezzi_disponibili>>" + ": " + riga.m);
  } else if (!Comprabile(riga)) {
    Nota(cella, "strong", "<<4-riga_non_disponibile>>");
  } else if (riga.q < qminima) {
    Nota(cella, "strong", "<<4-quantita_minima>>" + " (" + qminima + ")");
  }
}

/** Whether a line keeps the order from being placed. */
function DaCorreggere(riga) {
  return !Comprabile(riga) || riga.q < qminima;
}

/** Shows what of a cart line depends on its pieces. */
function RiempiRiga(celle, riga) {
  celle.className = DaCorreggere(riga) ? "da-correggere" : "";
  celle.cells[0].textContent = riga.n;
  NoteRiga(celle.cells[0], riga);
  celle.querySelector("input").value = String(riga.q);
  celle.cells[2].textContent = riga.ok ? TestoImporto(ImportoRiga(riga)) : "";
  celle.cells[3].textContent = riga.ok ? TestoImporto(ImportoRiga(riga) * riga.q) : "";
}

/** The cells of one cart line; each carries its column's title for narrow screens. */
function RigaCarrello(corpo, riga, nomi) {
  const celle = corpo.insertRow();
  nomi.forEach(function (nome) { celle.insertCell().dataset.titolo = nome; });
  const campo = Crea("input", { type: "number", min: "0", max: "99999", inputMode: "numeric" });
  campo.setAttribute("aria-label", nomi[1] + ": " + riga.n);
  campo.addEventListener("change", function () { CambiaQuantita(riga.c, campo.value); });
  celle.cells[1].appendChild(campo);
  const togli = Crea("button", { type: "button", className: "secondario", textContent: "<<4-togli>>" });
  togli.setAttribute("aria-label", "<<4-togli>>" + ": " + riga.n);
  togli.addEventListener("click", function () { CambiaQuantita(riga.c, 0); });
  celle.cells[4].appendChild(togli);
  RiempiRiga(celle, riga);
}

/** The cart's lines as a table. */
function TabellaCarrello(righe) {
  const nomi = ["<<4-carrello_articolo>>", "<<4-quantita>>", "<<4-prezzo>>", "<<4-carrello_importo>>", ""];
  const tabella = document.createElement("table");
  const testa = tabella.createTHead().insertRow();
  nomi.forEach(function (nome) {
    testa.appendChild(nome === "" ? Crea("td", {}) : Crea("th", { scope: "col", textContent: nome }));
  });
  const corpo = tabella.createTBody();
  righe.forEach(function (riga) { RigaCarrello(corpo, riga, nomi); });
  return tabella;
}

/**
 * Draws the lines. Where they are those that are drawn already their fields and buttons stay, and with them the focus and
 * the button that is being pressed.
 */
function DisegnaRighe(posto, righe) {
  const segni = righe.map(function (riga) { return riga.c; }).join("_");
  const disegnate = posto.querySelectorAll("tbody tr");
  posto.tabIndex = -1;
  if (disegnate.length > 0 && posto.dataset.righe === segni) {
    righe.forEach(function (riga, n) { RiempiRiga(disegnate[n], riga); });
    return;
  }
  posto.dataset.righe = segni;
  posto.replaceChildren(righe.length === 0 ? "<<4-carrello_vuoto>>" : TabellaCarrello(righe));
}

/** Draws the cart into the element carrello and its totals into carrello-totali. */
function DisegnaCarrello() {
  const posto = document.getElementById("carrello");
  const righe = RigheServite();
  document.querySelectorAll(".se-pieno").forEach(function (parte) { parte.hidden = righe.length === 0; });
  if (posto) {
    DisegnaRighe(posto, righe);
  }
  if (!document.Ordine) {
    ScriviTotali(document.getElementById("carrello-totali"), totali(righe, 1, 0), false);
    document.dispatchEvent(new CustomEvent("kv-carrello", { detail: righe }));
  }
}

/** Shows the cart for a listino; called by the script that the build puts into the cart and order pages. */
function MostraCarrello(listino) {
  listinoCorrente = listino;
  DisegnaCarrello();
  if (document.Ordine) {
    if (document.Ordine.Pagamento.selectedIndex < 0) {
      document.Ordine.Pagamento.selectedIndex = Math.floor((zonainiziale - 1) / 8);
    }
    SpedPaese();
  }
}

/** Offers the methods that the zone allows, and takes the first of them where the chosen one isn't. */
function OffriMetodi(form, zona) {
  const metodi = Array.from(form.Pagamento.options);
  metodi.forEach(function (metodo, posto) { metodo.disabled = !Ammesso(posto + 1, zona); });
  const primo = metodi.findIndex(function (metodo) { return !metodo.disabled; });
  if (primo >= 0 && (form.Pagamento.selectedIndex < 0 || metodi[form.Pagamento.selectedIndex].disabled)) {
    form.Pagamento.selectedIndex = primo;
  }
}

/** The order's totals for the chosen country and payment method; called at each change of either. */
function SpedPaese() {
  const form = document.Ordine;
  const zona = parseInt(form.LSStato.value, 10);
  OffriMetodi(form, zona);
  const somme = totali(RigheServite(), form.Pagamento.selectedIndex + 1, zona);
  ScriviTotali(document.getElementById("carrello-totali"), somme, true);
  form.Pagamento.setCustomValidity(somme.ammesso ? "" : "<<4-metodo_non_ammesso>>");
  return somme;
}

/**
 * Fills the order form with the data of the customer, which the server left in the cookie kvstore_cliente, and takes
 * that cookie away: it holds for this page alone.
 */
function CaricaDati() {
  const form = document.Ordine;
  const nomi = { nome: "Nome", cognome: "Cognome", rsoc: "RagioneSociale", piva: "PartitaIVA", indirizzo: "Indirizzo",
    cap: "CAP", citta: "Citta", provincia: "Provincia", telefono: "Telefono", email: "Email" };
  Biscotto("kvstore_cliente").split("|").forEach(function (coppia) {
    const taglio = coppia.indexOf("=");
    const nome = coppia.slice(0, Math.max(0, taglio));
    const valore = decodeURIComponent(coppia.slice(taglio + 1));
    const campo = Object.keys(nomi).includes(nome) ? form.elements[nomi[nome]] : null;
    if (campo && campo.value === "") {
      campo.value = valore;
    }
    if (nome === "paese" && valore !== "") {
      const paese = Array.from(form.LSStato.options).findIndex(function (voce) { return NomePaese(voce) === valore || voce.text === valore; });
      form.LSStato.selectedIndex = paese >= 0 ? paese : form.LSStato.selectedIndex;
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
function CampoNascosto(form, nome, valore) {
  let campo = form.elements[nome];
  if (!campo) {
    campo = form.appendChild(Crea("input", { type: "hidden", name: nome }));
  }
  campo.value = valore;
}

/** Prepares the order form for sending; false stops it. */
function InviaOrdine() {
  const form = document.Ordine;
  const righe = RigheServite();
  const somme = SpedPaese();
  let avviso = "";
  if (righe.length === 0) {
    avviso = "<<4-ordine_vuoto>>";
  } else if (!righe.every(Comprabile)) {
    avviso = "<<4-articolo_non_disponibile>>";
  } else if (righe.some(function (riga) { return riga.q < qminima; })) {
    avviso = "<<4-quantita_minima>>" + " (" + qminima + ")";
  } else if (somme.merce * (10000 / scala) < Interi(minimo, 10000)) {
    avviso = "<<4-ordine_minimo>>" + " (" + TestoImporto(Interi(minimo, scala)) + ")";
  }
  if (avviso !== "") {
    Avvisa(avviso);
    return false;
  }
  CampoNascosto(form, "Dettaglio", TestoCarrello(righe));
  CampoNascosto(form, "Totale", String(somme.totale));
  CampoNascosto(form, "Metodo", String(form.Pagamento.selectedIndex + 1));
  CampoNascosto(form, "Paese", NomePaese(form.LSStato.options[form.LSStato.selectedIndex]));
  return form.reportValidity();
}
