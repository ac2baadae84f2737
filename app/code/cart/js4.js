// ***1.0.7***
// The cart page beyond its lines: picture and link of each, the way to the order or what keeps from it, what shipping would
// cost by country before there is an order form, and what is missing until it costs nothing. The rule is that of
// kvstima.php.
/* global totali, Ammesso, RigaTotale, TestoImporto, Tavola, SpOk, tipopeso, zonainiziale, scala, Crea, DaCorreggere, Interi */
/* global minimo, valuta */
"use strict";

/** The payment methods (from 1) that a zone allows, the one that the order form starts with first. */
function MetodiZona(zona) {
  const primo = Math.floor((zonainiziale - 1) / 8) + 1;
  const metodi = [];
  for (let metodo = 1; metodo <= Math.ceil(SpOk.length / 8); metodo++) {
    if (Ammesso(metodo, zona)) {
      metodi.push(metodo);
    }
  }
  return metodi.filter(function (metodo) { return metodo === primo; })
    .concat(metodi.filter(function (metodo) { return metodo !== primo; }));
}

/** The amount in ten-thousandths above which a slot ships for nothing; null when it never does, or by weight. */
function SogliaGratuita(posto) {
  const soglie = tipopeso === "1" ? [] : [[3, "impord2"], [2, "impord1"]];
  let soglia = null;
  for (const [passo, nome] of soglie) {
    if (Tavola("impspese" + passo, posto, scala) !== 0) {
      break;
    }
    soglia = Tavola(nome, posto, 10000);
  }
  return soglia;
}

/** What is said of free shipping; empty where there is none. */
function TestoGratuita(somme, posto) {
  const soglia = SogliaGratuita(posto);
  if (soglia === null || somme.spese === 0) {
    return soglia === null ? "" : "<<4-spedizione_gratuita>>" + ".";
  }
  const unita = 10000 / scala;
  const manca = Math.floor(soglia / unita) - (somme.merce - somme.sconto) + 1;
  return "<<4-gratuita_oltre>>" + " " + TestoImporto(Math.floor(soglia / unita)) + ". " + "<<4-carrello_manca>>" + ": " +
    TestoImporto(manca) + ".";
}

/** Shows what the lines would cost with shipping to the chosen country. */
function Stima(righe, scelta, esito) {
  const zona = parseInt(scelta.value, 10);
  const metodi = MetodiZona(zona);
  esito.textContent = metodi.length === 0 ? "<<4-stima_nessuna>>" : "";
  if (metodi.length === 0 || righe.length === 0) {
    return;
  }
  const somme = totali(righe, metodi[0], zona);
  const altre = metodi.map(function (metodo) { return totali(righe, metodo, zona).spese; });
  const tabella = document.createElement("table");
  tabella.className = "totali";
  RigaTotale(tabella, "<<4-carrello_spedizione>>", somme.spese);
  if (somme.ivaspese !== 0) {
    RigaTotale(tabella, "<<4-carrello_iva_spedizione>>", somme.ivaspese);
  }
  RigaTotale(tabella, "<<4-stima_totale>>", somme.totale, "totale");
  esito.append(tabella);
  const note = [TestoGratuita(somme, (metodi[0] - 1) * 8 + zona - 1)];
  if (Math.min(...altre) !== Math.max(...altre)) {
    note.push("<<4-stima_secondo>>" + ": " + TestoImporto(Math.min(...altre)) + " - " + TestoImporto(Math.max(...altre)) + ".");
  }
  note.filter(Boolean).forEach(function (testo) {
    const nota = document.createElement("p");
    // An amount stays together with its currency at the end of a line.
    nota.textContent = testo.replaceAll(valuta, valuta.replaceAll(" ", "\u00a0"));
    esito.append(nota);
  });
}

/** Puts picture and link to the name of each line of the drawn cart. */
function AbbellisciRighe(righe) {
  document.querySelectorAll("#carrello tbody tr").forEach(function (fila, posto) {
    const riga = righe[posto];
    const cella = fila.cells[0];
    const nome = cella.firstChild;
    if (riga.u) {
      const legame = document.createElement("a");
      legame.href = riga.u;
      legame.textContent = riga.n;
      nome.replaceWith(legame);
    }
    if (riga.f) {
      const figura = document.createElement("img");
      figura.src = riga.f;
      figura.alt = "";
      figura.className = "provino";
      cella.prepend(figura);
    }
  });
}

/** The reasons why the lines can't be ordered as they are, one sentence each. */
function Motivi(righe) {
  const motivi = righe.some(DaCorreggere) ? ["<<4-carrello_da_correggere>>"] : [];
  const manca = Interi(minimo, scala) - totali(righe, 1, 0).merce;
  if (manca > 0) {
    motivi.push("<<4-carrello_minimo>>" + ": " + TestoImporto(Interi(minimo, scala)) + ". " + "<<4-carrello_manca>>" + ": " +
      TestoImporto(manca) + ".");
  }
  return motivi;
}

/** Opens or closes the way to the order; a closed one says why. */
function ApriOrdine(righe) {
  const passo = document.getElementById("kv-ordina");
  if (!passo) {
    return;
  }
  passo.dataset.href = passo.dataset.href || passo.getAttribute("href");
  let motivo = document.getElementById("kv-motivo");
  if (!motivo) {
    motivo = Crea("div", { id: "kv-motivo" });
    motivo.setAttribute("role", "status");
    passo.parentElement.before(motivo);
  }
  const motivi = righe.length === 0 ? [] : Motivi(righe);
  motivo.textContent = motivi.join(" ");
  motivo.className = motivi.length > 0 ? "avviso" : "";
  if (motivi.length > 0) {
    passo.removeAttribute("href");
    passo.setAttribute("role", "link");
    passo.setAttribute("aria-disabled", "true");
    passo.setAttribute("aria-describedby", "kv-motivo");
  } else {
    passo.href = passo.dataset.href;
    passo.removeAttribute("aria-disabled");
  }
}

document.addEventListener("kv-carrello", function (evento) {
  const scelta = document.querySelector("#kv-stima select");
  const esito = document.getElementById("kv-stima-esito");
  AbbellisciRighe(evento.detail);
  ApriOrdine(evento.detail);
  if (!scelta || !esito) {
    return;
  }
  Stima(evento.detail, scelta, esito);
  scelta.onchange = function () { Stima(evento.detail, scelta, esito); };
});
