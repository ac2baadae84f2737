// ***1.0.7***
// What helps a shopper on every page, where scripts run: suggestions while they type a search, the small cart after
// something was put into it, the pictures of an article one after the other. Every page works without.
/* global TestoImporto, lingua */
"use strict";

/** Milliseconds between the last key and the question, so that one word typed is one question. */
const attesaTasti = 180;

/** A new element with some attributes; children follow. */
function Elemento(nome, attributi, ...figli) {
  const elemento = document.createElement(nome);
  Object.entries(attributi).forEach(function ([chiave, valore]) { elemento.setAttribute(chiave, valore); });
  elemento.append(...figli);
  return elemento;
}

/** A picture that says nothing beside its words; nothing without an address. */
function Figura(indirizzo) {
  return indirizzo === "" ? "" : Elemento("img", { src: indirizzo, alt: "", loading: "lazy" });
}

/**
 * Makes a search field a combobox with a list of articles. The focus stays in the field; arrows move the mark through the
 * list, Enter opens the marked article and without a mark searches, Escape closes the list.
 * Source: WAI-ARIA Authoring Practices Guide 1.2, pattern "Combobox", editable with list autocomplete.
 */
class Suggerimenti {
  constructor(campo, numero) {
    this.campo = campo;
    this.id = "kv-suggeriti" + numero;
    this.voci = [];
    this.scelta = -1;
    this.domanda = 0;
    this.lista = Elemento("ul", { id: this.id, role: "listbox", "aria-label": "<<4-suggerimenti>>", class: "suggeriti" });
    this.lista.hidden = true;
    this.stato = Elemento("span", { role: "status", class: "nascosto" });
    Object.entries({ role: "combobox", autocomplete: "off", "aria-autocomplete": "list", "aria-expanded": "false",
      "aria-controls": this.id }).forEach(function ([nome, valore]) { campo.setAttribute(nome, valore); });
    campo.form.append(this.lista, this.stato);
    campo.addEventListener("input", () => this.aspetta());
    campo.addEventListener("keydown", (evento) => this.tasto(evento));
    campo.addEventListener("blur", () => this.chiudi());
    // A press must not take the focus from the field, or the list would close before the click.
    this.lista.addEventListener("mousedown", (evento) => evento.preventDefault());
  }

  aspetta() {
    clearTimeout(this.attesa);
    this.attesa = setTimeout(() => this.chiedi(), attesaTasti);
  }

  /** Asks the server; an answer that comes after that to a later question is dropped. */
  async chiedi() {
    const testo = this.campo.value.trim();
    const numero = ++this.domanda;
    if (testo.length < 2) {
      this.chiudi();
      return;
    }
    try {
      const risposta = await fetch("kvsuggerisci" + lingua + ".php?q=" + encodeURIComponent(testo));
      const voci = risposta.ok ? await risposta.json() : [];
      if (numero === this.domanda && document.activeElement === this.campo) {
        this.mostra(voci);
      }
    } catch {
      // Without an answer the field is what it is without scripts.
      this.chiudi();
    }
  }

  mostra(voci) {
    this.voci = voci;
    this.scelta = -1;
    this.lista.textContent = "";
    voci.forEach((voce, posto) => {
      const riga = Elemento("li", { id: this.id + "-" + posto, role: "option", "aria-selected": "false" },
        Elemento("span", { class: "foto" }, Figura(voce.i)), Elemento("span", { class: "nome" }, voce.t), " ",
        Elemento("span", { class: "prezzo" }, voce.p));
      riga.addEventListener("click", () => this.apri(posto));
      this.lista.append(riga);
    });
    this.lista.hidden = voci.length === 0;
    this.campo.setAttribute("aria-expanded", String(voci.length > 0));
    this.campo.removeAttribute("aria-activedescendant");
    this.stato.textContent = voci.length === 0 ? "" : "<<4-suggerimenti>>" + ": " + voci.length;
  }

  chiudi() {
    this.domanda++;
    clearTimeout(this.attesa);
    this.mostra([]);
  }

  apri(posto) {
    location.href = this.voci[posto].u;
  }

  /** Moves the mark; before the first and after the last entry it is in the field alone. */
  segna(posto) {
    const quante = this.voci.length + 1;
    this.scelta = (posto + 1 + quante) % quante - 1;
    Array.from(this.lista.children).forEach((riga, n) => {
      riga.setAttribute("aria-selected", String(n === this.scelta));
      if (n === this.scelta) {
        riga.scrollIntoView({ block: "nearest" });
      }
    });
    if (this.scelta < 0) {
      this.campo.removeAttribute("aria-activedescendant");
    } else {
      this.campo.setAttribute("aria-activedescendant", this.id + "-" + this.scelta);
    }
  }

  tasto(evento) {
    if (evento.isComposing || this.lista.hidden) {
      return;
    }
    if (evento.key === "ArrowDown" || evento.key === "ArrowUp") {
      this.segna(this.scelta + (evento.key === "ArrowDown" ? 1 : -1));
    } else if (evento.key === "Enter" && this.scelta >= 0) {
      this.apri(this.scelta);
    } else if (evento.key === "Escape") {
      this.chiudi();
    } else {
      return;
    }
    evento.preventDefault();
  }
}

/**
 * The small cart: the line that was added first, the sum, the way to the cart. It takes no focus, but is next in the order
 * of Tab after what was bought by (null: after the page), and goes when the focus gets to anything else, which it could
 * cover.
 */
async function MostraMiniCarrello(segno, acquisto) {
  const risposta = await fetch("kvminicarrello" + lingua + ".php");
  if (!risposta.ok) {
    return;
  }
  const dati = await risposta.json();
  ChiudiMiniCarrello();
  const righe = dati.righe.filter(function (riga) { return riga.c === segno; })
    .concat(dati.righe.filter(function (riga) { return riga.c !== segno; })).slice(0, 3);
  const elenco = Elemento("ul", { class: "righe" });
  righe.forEach(function (riga) {
    elenco.append(Elemento("li", {}, Elemento("span", { class: "foto" }, Figura(riga.f)),
      Elemento("span", { class: "nome" }, riga.q + " \u00d7 " + riga.n + (riga.o === "" ? "" : " (" + riga.o + ")")),
      Elemento("span", {}, TestoImporto(riga.t))));
  });
  const chiudi = Elemento("button", { type: "button", class: "secondario", "aria-label": "<<4-chiudi>>" }, "\u00d7");
  chiudi.addEventListener("click", ChiudiMiniCarrello);
  const altre = dati.righe.length > righe.length ? [Elemento("p", { class: "nota" }, "+ " + (dati.righe.length - righe.length))] : [];
  const mini = Elemento("section", { id: "kv-mini", class: "mini-carrello", "aria-label": "<<4-menu_carrello>>" },
    Elemento("h2", {}, "<<4-menu_carrello>>"), chiudi, elenco, ...altre,
    Elemento("p", { class: "somma" }, "<<4-carrello_merce>>" + ": ", Elemento("strong", {}, TestoImporto(dati.merce))),
    Elemento("p", {}, Elemento("a", { class: "bottone", href: "cart.htm" }, "<<4-carrello_vai>>")));
  if (acquisto) {
    acquisto.after(mini);
  } else {
    document.body.append(mini);
  }
}

/** Takes the small cart away; a focus in it goes back to the button that bought. */
function ChiudiMiniCarrello() {
  const aperto = document.getElementById("kv-mini");
  if (!aperto) {
    return;
  }
  const prima = aperto.previousElementSibling;
  const bottone = aperto.contains(document.activeElement) && prima ? prima.querySelector("[type=submit], .bottone") : null;
  aperto.remove();
  if (bottone) {
    bottone.focus();
  }
}

/** Shows one of the pictures of an article in the position of the big one. */
function ScegliImmagine(galleria, scelta) {
  const grande = galleria.querySelector(".grande");
  const immagine = Elemento("img", { src: scelta.getAttribute("href"), alt: scelta.dataset.testo });
  grande.replaceChildren(immagine);
  galleria.querySelectorAll(".provini a").forEach(function (provino) {
    if (provino === scelta) {
      provino.setAttribute("aria-current", "true");
    } else {
      provino.removeAttribute("aria-current");
    }
  });
}

/** The pictures of an article in a layer: arrows go on and back, Escape closes it and gives the focus back. */
function ApriGalleria(immagini, primo, testo) {
  let posto = primo;
  const immagine = Elemento("img", { alt: testo });
  const conto = Elemento("p", { role: "status" });
  const bottone = function (nome, segno, atto) {
    const nuovo = Elemento("button", { type: "button", "aria-label": nome, class: "secondario" }, segno);
    nuovo.addEventListener("click", atto);
    return nuovo;
  };
  const vai = function (passo) {
    posto = (posto + passo + immagini.length) % immagini.length;
    immagine.src = immagini[posto];
    conto.textContent = (posto + 1) + " / " + immagini.length;
  };
  const velo = Elemento("dialog", { class: "galleria-grande", "aria-label": "<<4-immagine_grande>>" }, immagine,
    Elemento("div", { class: "comandi" }));
  velo.lastChild.append(...(immagini.length < 2 ? [] : [bottone("<<4-precedente>>", "\u2039", function () { vai(-1); }), conto,
    bottone("<<4-seguente>>", "\u203a", function () { vai(1); })]), bottone("<<4-chiudi>>", "\u00d7", function () { velo.close(); }));
  velo.addEventListener("keydown", function (evento) {
    if (immagini.length > 1 && (evento.key === "ArrowRight" || evento.key === "ArrowLeft")) {
      vai(evento.key === "ArrowRight" ? 1 : -1);
    }
  });
  velo.addEventListener("close", function () { velo.remove(); });
  document.body.append(velo);
  vai(0);
  velo.showModal();
}

/** Lets the small pictures choose the big one, which opens in its full size. */
function PreparaGalleria(galleria) {
  const provini = Array.from(galleria.querySelectorAll(".provini a"));
  const grande = galleria.querySelector(".grande");
  provini.forEach(function (provino) {
    provino.addEventListener("click", function (evento) {
      evento.preventDefault();
      ScegliImmagine(galleria, provino);
    });
  });
  const apri = Elemento("button", { type: "button", class: "secondario ingrandisci" }, "<<4-immagine_apri>>");
  apri.addEventListener("click", function () {
    const scelta = Math.max(0, provini.findIndex(function (provino) { return provino.hasAttribute("aria-current"); }));
    const immagini = provini.length > 0 ? provini.map(function (provino) { return provino.href; }) : [galleria.dataset.grande];
    ApriGalleria(immagini, scelta, galleria.dataset.testo);
  });
  grande.addEventListener("click", function (evento) {
    evento.preventDefault();
    apri.click();
  });
  grande.after(apri);
}

document.addEventListener("DOMContentLoaded", function () {
  document.querySelectorAll("form.cerca input[name=q], form.ricerca input[name=q]").forEach(function (campo, numero) {
    new Suggerimenti(campo, numero);
  });
  document.querySelectorAll(".galleria").forEach(PreparaGalleria);
});
document.addEventListener("kv-aggiunto", function (evento) {
  MostraMiniCarrello(evento.detail, document.activeElement?.closest(".acquisto")).catch(ChiudiMiniCarrello);
});
document.addEventListener("focusin", function (evento) {
  if (!evento.target.closest("#kv-mini")) {
    ChiudiMiniCarrello();
  }
});
document.addEventListener("keydown", function (evento) {
  if (evento.key === "Escape") {
    ChiudiMiniCarrello();
  }
});
