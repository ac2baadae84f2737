// ***1.0.7***
// The cart page and the order form. The totals follow the same rule as kvTotali of kvcart.php, which decides.
/* global LeggiCarrello, ScriviCarrello, Avvisa */
/* global valuta, valuta2, exch, SecVal, sepmigl, sepdec, PutDec, PutDec2, scimp, scperc, scl */
/* global SpOk, IvaOk, tipopeso, ivacompresa, aliquotaspese, minimo, zonainiziale */
/* global obbl_rsoc, obbl_piva, obbl_tel, obbl_magg */
/* exported MostraCarrello, SpedPaese, CaricaDati, InviaOrdine */
"use strict";

let listinoCorrente = 0;
/** Numbers of the articles in the cart that the server told can't be bought. */
let nonDisponibili = [];

/** An amount in the shop's notation, with two decimals or none. */
function Formato(importo, decimali) {
  const parti = Math.abs(importo).toFixed(decimali ? 2 : 0).split(".");
  const intero = parti[0].replace(/\B(?=(\d{3})+$)/g, sepmigl);
  return (importo < 0 ? "-" : "") + intero + (parti.length > 1 ? sepdec + parti[1] : "");
}

function Arrotonda(importo) {
  const scala = PutDec === 1 ? 100 : 1;
  return Math.round((importo + (importo < 0 ? -1e-9 : 1e-9)) * scala) / scala;
}

function TestoImporto(importo) {
  const secondo = SecVal === 1 ? " (" + valuta2 + Formato(importo / exch, PutDec2 === 1) + ")" : "";
  return valuta + Formato(importo, PutDec === 1) + secondo;
}

/** The price of one piece of a line, with its quantity discount. */
function ImportoRiga(riga) {
  let fattore = 1;
  let raggiunta = 0;
  riga.scaglioni.split(",").filter(Boolean).forEach(function (coppia) {
    const soglia = Number(coppia.split(":")[0]);
    if (riga.q >= soglia && soglia >= raggiunta) {
      raggiunta = soglia;
      fattore = Number(coppia.split(":")[1]);
    }
  });
  return Arrotonda(riga.importo * fattore);
}

/** The discount factor of the order: the customer's own percent, else the one by amount. */
function FattoreOrdine(merce) {
  const personale = typeof scl === "number" ? scl : 0;
  if (personale > 0) {
    return 1 - personale / 100;
  }
  return merce > scimp[listinoCorrente] ? scperc[listinoCorrente] : 1;
}

/** The value of one of the generated tables, 0 where the build wrote none. */
function Tabella(nome, posto) {
  return Array.isArray(window[nome]) ? window[nome][posto] || 0 : 0;
}

/** The shipping cost of a slot, by weight or by the amount of the goods. */
function Spese(posto, merce, peso) {
  if (tipopeso === "1") {
    for (let n = 1; n <= 9; n++) {
      if (peso <= Tabella("imppeso" + n, posto)) {
        return Tabella("impspp" + n, posto);
      }
    }
    return Tabella("impspp10", posto);
  }
  if (merce <= Tabella("impord1", posto)) {
    return Tabella("impspese1", posto);
  }
  return merce <= Tabella("impord2", posto) ? Tabella("impspese2", posto) : Tabella("impspese3", posto);
}

/** The totals for a payment method (from 1) and a zone (1 to 8); zona 0: goods alone, before the order form. */
function totali(righe, metodo, zona) {
  const posto = (metodo - 1) * 8 + zona - 1;
  const conIva = zona === 0 || IvaOk.charAt(zona - 1) === "1";
  let merce = 0;
  let iva = 0;
  let peso = 0;
  righe.forEach(function (riga) {
    const importo = Arrotonda(ImportoRiga(riga) * riga.q);
    merce += importo;
    iva += importo * riga.iva;
    peso += riga.peso * riga.q;
  });
  merce = Arrotonda(merce);
  const fattore = FattoreOrdine(merce);
  const sconto = Arrotonda(merce * (1 - fattore));
  const spese = zona === 0 ? 0 : Spese(posto, merce - sconto, peso);
  const esito = {
    merce: merce,
    sconto: sconto,
    iva: conIva ? Arrotonda(iva * fattore) : 0,
    spese: spese,
    ivaspese: conIva && ivacompresa !== "1" ? Arrotonda(spese * aliquotaspese) : 0,
    ammesso: SpOk.charAt(posto) === "1"
  };
  esito.totale = Arrotonda(merce - sconto + esito.iva + esito.spese + esito.ivaspese);
  return esito;
}

/** A row of label and amount in a table of totals. */
function RigaTotale(tabella, testo, importo, classe) {
  const riga = tabella.insertRow();
  riga.className = classe || "";
  const intestazione = document.createElement("th");
  intestazione.scope = "row";
  intestazione.textContent = testo;
  riga.appendChild(intestazione);
  riga.insertCell().textContent = TestoImporto(importo);
}

function ScriviTotali(posto, somme, conSpese) {
  posto.textContent = "";
  const tabella = document.createElement("table");
  tabella.className = "totali";
  RigaTotale(tabella, "<<4-carrello_merce>>", somme.merce);
  if (somme.sconto > 0) {
    RigaTotale(tabella, "<<4-sconto>>", -somme.sconto);
  }
  if (somme.iva > 0) {
    RigaTotale(tabella, "<<4-carrello_iva>>", somme.iva);
  }
  if (conSpese) {
    RigaTotale(tabella, "<<4-carrello_spedizione>>", somme.spese);
    if (somme.ivaspese > 0) {
      RigaTotale(tabella, "<<4-carrello_iva_spedizione>>", somme.ivaspese);
    }
  }
  RigaTotale(tabella, "<<4-carrello_totale>>", somme.totale, "totale");
  posto.appendChild(tabella);
}

/** Changes the quantity of a line, 0 takes it out, and draws the cart again. */
function CambiaQuantita(indice, quantita) {
  const righe = LeggiCarrello();
  const pezzi = Math.floor(Number(quantita)) || 0;
  if (pezzi > 0) {
    righe[indice].q = pezzi;
  } else {
    righe.splice(indice, 1);
  }
  ScriviCarrello(righe);
  DisegnaCarrello();
}

/** The cells of one cart line. */
function RigaCarrello(tabella, riga, indice) {
  const cella = tabella.insertRow();
  const nome = cella.insertCell();
  nome.textContent = riga.testo;
  riga.o.filter(Boolean).forEach(function (scelta) {
    const nota = document.createElement("small");
    nota.textContent = scelta;
    nome.append(document.createElement("br"), nota);
  });
  if (nonDisponibili.includes(riga.id)) {
    const avviso = document.createElement("strong");
    avviso.textContent = "<<4-articolo_non_disponibile>>";
    nome.append(document.createElement("br"), avviso);
  }
  const campo = document.createElement("input");
  campo.type = "number";
  campo.min = "0";
  campo.value = String(riga.q);
  campo.setAttribute("aria-label", "<<4-quantita>>" + ": " + riga.testo);
  campo.addEventListener("change", function () { CambiaQuantita(indice, campo.value); });
  cella.insertCell().appendChild(campo);
  cella.insertCell().textContent = TestoImporto(ImportoRiga(riga));
  cella.insertCell().textContent = TestoImporto(Arrotonda(ImportoRiga(riga) * riga.q));
  const togli = document.createElement("button");
  togli.type = "button";
  togli.className = "secondario";
  togli.textContent = "<<4-togli>>";
  togli.addEventListener("click", function () { CambiaQuantita(indice, 0); });
  cella.insertCell().appendChild(togli);
}

/** Draws the cart into the element carrello and its totals into carrello-totali. */
function DisegnaCarrello() {
  const posto = document.getElementById("carrello");
  const righe = LeggiCarrello();
  document.querySelectorAll(".se-pieno").forEach(function (parte) { parte.hidden = righe.length === 0; });
  if (!posto) {
    return;
  }
  posto.textContent = righe.length === 0 ? "<<4-carrello_vuoto>>" : "";
  if (righe.length > 0) {
    const tabella = document.createElement("table");
    const testa = tabella.createTHead().insertRow();
    const nomi = ["<<4-carrello_articolo>>", "<<4-quantita>>", "<<4-prezzo>>", "<<4-carrello_importo>>", ""];
    nomi.forEach(function (nome) {
      const colonna = document.createElement("th");
      colonna.scope = "col";
      colonna.textContent = nome;
      testa.appendChild(colonna);
    });
    const corpo = tabella.createTBody();
    righe.forEach(function (riga, indice) { RigaCarrello(corpo, riga, indice); });
    posto.appendChild(tabella);
  }
  ScriviTotali(document.getElementById("carrello-totali"), totali(righe, 1, 0), false);
}

/** The value of a cookie, empty when there is none. */
function Biscotto(nome) {
  const voce = document.cookie.split("; ").find(function (coppia) { return coppia.startsWith(nome + "="); });
  return (voce || "").slice(nome.length + 1);
}

/** Shows the cart for a listino; called by the script that the build puts into the cart and order pages. */
function MostraCarrello(listino) {
  const lettere = Biscotto("kvstore_disp");
  listinoCorrente = listino;
  nonDisponibili = Biscotto("kvstore_art").split(".").filter(function (numero, posto) {
    return lettere.charAt(posto) === "0";
  }).map(Number);
  if (document.Ordine) {
    CaricaZona();
    SpedPaese();
  } else {
    DisegnaCarrello();
  }
}

/** Sets country and method to the starting slot, when the page's own selection doesn't name it already. */
function CaricaZona() {
  const form = document.Ordine;
  if (form.Pagamento.selectedIndex < 0) {
    form.Pagamento.selectedIndex = Math.floor((zonainiziale - 1) / 8);
  }
}

/** The order's totals for the chosen country and payment method; called at each change of either. */
function SpedPaese() {
  const form = document.Ordine;
  const metodo = form.Pagamento.selectedIndex + 1;
  const somme = totali(LeggiCarrello(), metodo, Number(form.LSStato.value));
  ScriviTotali(document.getElementById("carrello-totali"), somme, true);
  form.Pagamento.setCustomValidity(somme.ammesso ? "" : "<<4-metodo_non_ammesso>>");
  return somme;
}

/** Fills the order form with the data of the customer, which the server left in the cookie kvstore_cliente. */
function CaricaDati() {
  const nomi = { nome: "Nome", cognome: "Cognome", rsoc: "RagioneSociale", piva: "PartitaIVA", indirizzo: "Indirizzo",
    cap: "CAP", citta: "Citta", provincia: "Provincia", telefono: "Telefono", email: "Email" };
  Biscotto("kvstore_cliente").split("|").forEach(function (coppia) {
    const taglio = coppia.indexOf("=");
    const campo = document.Ordine[nomi[coppia.slice(0, taglio)]];
    if (taglio > 0 && campo && campo.value === "") {
      campo.value = decodeURIComponent(coppia.slice(taglio + 1));
    }
  });
  document.Ordine.RagioneSociale.required = obbl_rsoc === 1;
  document.Ordine.PartitaIVA.required = obbl_piva === 1;
  document.Ordine.Telefono.required = obbl_tel === 1;
  document.Ordine.Maggiorenne.required = obbl_magg === 1;
}

/** JSON in plain ASCII, since the form travels in the page's own coding. */
function Ascii(testo) {
  return testo.replace(/[\u0080-\uffff]/g, function (lettera) {
    return "\\u" + lettera.charCodeAt(0).toString(16).padStart(4, "0");
  });
}

/** Prepares the order form for sending; false stops it. */
function InviaOrdine() {
  const form = document.Ordine;
  const righe = LeggiCarrello();
  const somme = SpedPaese();
  if (righe.length === 0) {
    Avvisa("<<4-ordine_vuoto>>");
    return false;
  }
  if (somme.merce < minimo) {
    Avvisa("<<4-ordine_minimo>>" + " (" + TestoImporto(minimo) + ")");
    return false;
  }
  form.Dettaglio.value = Ascii(JSON.stringify(righe.map(function (riga) {
    return { id: riga.id, q: riga.q, o: riga.o };
  })));
  form.Metodo.value = String(form.Pagamento.selectedIndex + 1);
  form.NomePagamento.value = form.Pagamento.options[form.Pagamento.selectedIndex].text;
  form.Paese.value = form.LSStato.options[form.LSStato.selectedIndex].text;
  return form.reportValidity();
}
