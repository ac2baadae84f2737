// ***1.0.7***
// What helps a shopper on every page, where scripts run: suggestions while they type a search, the small cart after
// something was put into it, the pictures of an article one after the other. Every page works without.
/* global amountText, lingua */
"use strict";

/** Milliseconds between the last key and the question, so that one word typed is one question. */
const keyDelay = 180;

/** A new element with some attributes; children follow. */
function makeElement(name, attributes, ...children) {
  const element = document.createElement(name);
  Object.entries(attributes).forEach(function ([key, value]) { element.setAttribute(key, value); });
  element.append(...children);
  return element;
}

/** A picture that says nothing beside its words; nothing without an address. */
function plainPicture(address) {
  return address === "" ? "" : makeElement("img", { src: address, alt: "", loading: "lazy" });
}

/**
 * Makes a search field a combobox with a list of articles. The focus stays in the field; arrows move the mark through the
 * list, Enter opens the marked article and without a mark searches, Escape closes the list.
 * Source: WAI-ARIA Authoring Practices Guide 1.2, pattern "Combobox", editable with list autocomplete.
 */
class Suggestions {
  constructor(field, number) {
    this.field = field;
    this.id = "kv-suggeriti" + number;
    this.entries = [];
    this.choice = -1;
    this.question = 0;
    this.list = makeElement("ul", { id: this.id, role: "listbox", "aria-label": "<<4-suggerimenti>>", class: "suggeriti" });
    this.list.hidden = true;
    this.status = makeElement("span", { role: "status", class: "nascosto" });
    Object.entries({ role: "combobox", autocomplete: "off", "aria-autocomplete": "list", "aria-expanded": "false",
      "aria-controls": this.id }).forEach(function ([name, value]) { field.setAttribute(name, value); });
    field.form.append(this.list, this.status);
    field.addEventListener("input", () => this.wait());
    field.addEventListener("keydown", (event) => this.press(event));
    field.addEventListener("blur", () => this.close());
    // A press must not take the focus from the field, or the list would close before the click.
    this.list.addEventListener("mousedown", (event) => event.preventDefault());
  }

  wait() {
    clearTimeout(this.timer);
    this.timer = setTimeout(() => this.ask(), keyDelay);
  }

  /** Asks the server; an answer that comes after that to a later question is dropped. */
  async ask() {
    const text = this.field.value.trim();
    const number = ++this.question;
    if (text.length < 2) {
      this.close();
      return;
    }
    try {
      const answer = await fetch("kvsuggerisci" + lingua + ".php?q=" + encodeURIComponent(text));
      const entries = answer.ok ? await answer.json() : [];
      if (number === this.question && document.activeElement === this.field) {
        this.show(entries);
      }
    } catch {
      // Without an answer the field is what it is without scripts.
      this.close();
    }
  }

  show(entries) {
    this.entries = entries;
    this.choice = -1;
    this.list.textContent = "";
    entries.forEach((entry, index) => {
      const item = makeElement("li", { id: this.id + "-" + index, role: "option", "aria-selected": "false" },
        makeElement("span", { class: "foto" }, plainPicture(entry.i)), makeElement("span", { class: "nome" }, entry.t), " ",
        makeElement("span", { class: "prezzo" }, entry.p, entry.n === "" ? "" : makeElement("small", {}, " " + entry.n)));
      item.addEventListener("click", () => this.open(index));
      this.list.append(item);
    });
    this.list.hidden = entries.length === 0;
    this.field.setAttribute("aria-expanded", String(entries.length > 0));
    this.field.removeAttribute("aria-activedescendant");
    this.status.textContent = entries.length === 0 ? "" : "<<4-suggerimenti>>" + ": " + entries.length;
  }

  close() {
    this.question++;
    clearTimeout(this.timer);
    this.show([]);
  }

  open(index) {
    location.href = this.entries[index].u;
  }

  /** Moves the mark; before the first and after the last entry it is in the field alone. */
  mark(index) {
    const count = this.entries.length + 1;
    this.choice = (index + 1 + count) % count - 1;
    Array.from(this.list.children).forEach((item, n) => {
      item.setAttribute("aria-selected", String(n === this.choice));
      if (n === this.choice) {
        item.scrollIntoView({ block: "nearest" });
      }
    });
    if (this.choice < 0) {
      this.field.removeAttribute("aria-activedescendant");
    } else {
      this.field.setAttribute("aria-activedescendant", this.id + "-" + this.choice);
    }
  }

  press(event) {
    if (event.isComposing || this.list.hidden) {
      return;
    }
    if (event.key === "ArrowDown" || event.key === "ArrowUp") {
      this.mark(this.choice + (event.key === "ArrowDown" ? 1 : -1));
    } else if (event.key === "Enter" && this.choice >= 0) {
      this.open(this.choice);
    } else if (event.key === "Escape") {
      this.close();
    } else {
      return;
    }
    event.preventDefault();
  }
}

/**
 * The small cart: the line that was added first, the sum, the way to the cart. It takes no focus, but is next in the order
 * of Tab after what was bought by (null: after the page), and goes when the focus gets to anything else, which it could
 * cover.
 */
async function showMiniCart(mark, purchase) {
  const answer = await fetch("kvminicarrello" + lingua + ".php");
  if (!answer.ok) {
    return;
  }
  const data = await answer.json();
  closeMiniCart();
  const lines = data.righe.filter(function (line) { return line.c === mark; })
    .concat(data.righe.filter(function (line) { return line.c !== mark; })).slice(0, 3);
  const list = makeElement("ul", { class: "righe" });
  lines.forEach(function (line) {
    list.append(makeElement("li", {}, makeElement("span", { class: "foto" }, plainPicture(line.f)),
      makeElement("span", { class: "nome" }, line.q + " \u00d7 " + line.n + (line.o === "" ? "" : " (" + line.o + ")")),
      makeElement("span", {}, amountText(line.t))));
  });
  const closer = makeElement("button", { type: "button", class: "secondario", "aria-label": "<<4-chiudi>>" }, "\u00d7");
  closer.addEventListener("click", closeMiniCart);
  const more = data.righe.length > lines.length ? [makeElement("p", { class: "nota" }, "+ " + (data.righe.length - lines.length))] : [];
  const mini = makeElement("section", { id: "kv-mini", class: "mini-carrello", "aria-label": "<<4-menu_carrello>>" },
    makeElement("h2", {}, "<<4-menu_carrello>>"), closer, list, ...more,
    makeElement("p", { class: "somma" }, "<<4-carrello_merce>>" + ": ", makeElement("strong", {}, amountText(data.merce))),
    makeElement("p", {}, makeElement("a", { class: "bottone", href: "cart.htm" }, "<<4-carrello_vai>>")));
  if (purchase) {
    purchase.after(mini);
  } else {
    document.body.append(mini);
  }
}

/** Takes the small cart away; a focus in it goes back to the button that bought. */
function closeMiniCart() {
  const opened = document.getElementById("kv-mini");
  if (!opened) {
    return;
  }
  const purchase = opened.previousElementSibling;
  const button = opened.contains(document.activeElement) && purchase ? purchase.querySelector("[type=submit], .bottone") : null;
  opened.remove();
  if (button) {
    button.focus();
  }
}

/** Shows one of the pictures of an article in the position of the big one. */
function choosePicture(gallery, chosen) {
  const big = gallery.querySelector(".grande");
  const picture = makeElement("img", { src: chosen.getAttribute("href"), alt: chosen.dataset.testo });
  big.replaceChildren(picture);
  gallery.querySelectorAll(".provini a").forEach(function (thumbnail) {
    if (thumbnail === chosen) {
      thumbnail.setAttribute("aria-current", "true");
    } else {
      thumbnail.removeAttribute("aria-current");
    }
  });
}

/** The pictures of an article in a layer: arrows go on and back, Escape closes it and gives the focus back. */
function openGallery(pictures, first, text) {
  let index = first;
  const picture = makeElement("img", { alt: text });
  const count = makeElement("p", { role: "status" });
  const button = function (name, mark, act) {
    const made = makeElement("button", { type: "button", "aria-label": name, class: "secondario" }, mark);
    made.addEventListener("click", act);
    return made;
  };
  const go = function (step) {
    index = (index + step + pictures.length) % pictures.length;
    picture.src = pictures[index];
    count.textContent = (index + 1) + " / " + pictures.length;
  };
  const layer = makeElement("dialog", { class: "galleria-grande", "aria-label": "<<4-immagine_grande>>" }, picture,
    makeElement("div", { class: "comandi" }));
  layer.lastChild.append(...(pictures.length < 2 ? [] : [button("<<4-precedente>>", "\u2039", function () { go(-1); }), count,
    button("<<4-seguente>>", "\u203a", function () { go(1); })]), button("<<4-chiudi>>", "\u00d7", function () { layer.close(); }));
  layer.addEventListener("keydown", function (event) {
    if (pictures.length > 1 && (event.key === "ArrowRight" || event.key === "ArrowLeft")) {
      go(event.key === "ArrowRight" ? 1 : -1);
    }
  });
  layer.addEventListener("close", function () { layer.remove(); });
  document.body.append(layer);
  go(0);
  layer.showModal();
}

/** Lets the small pictures choose the big one, which opens in its full size. */
function prepareGallery(gallery) {
  const thumbnails = Array.from(gallery.querySelectorAll(".provini a"));
  const big = gallery.querySelector(".grande");
  thumbnails.forEach(function (thumbnail) {
    thumbnail.addEventListener("click", function (event) {
      event.preventDefault();
      choosePicture(gallery, thumbnail);
    });
  });
  const opener = makeElement("button", { type: "button", class: "secondario ingrandisci" }, "<<4-immagine_apri>>");
  opener.addEventListener("click", function () {
    const chosen = Math.max(0, thumbnails.findIndex(function (thumbnail) { return thumbnail.hasAttribute("aria-current"); }));
    const pictures = thumbnails.length > 0 ? thumbnails.map(function (thumbnail) { return thumbnail.href; }) : [gallery.dataset.grande];
    openGallery(pictures, chosen, gallery.dataset.testo);
  });
  big.addEventListener("click", function (event) {
    event.preventDefault();
    opener.click();
  });
  big.after(opener);
}

document.addEventListener("DOMContentLoaded", function () {
  document.querySelectorAll("form.cerca input[name=q], form.ricerca input[name=q]").forEach(function (field, number) {
    new Suggestions(field, number);
  });
  document.querySelectorAll(".galleria").forEach(prepareGallery);
});
document.addEventListener("kv-aggiunto", function (event) {
  showMiniCart(event.detail, document.activeElement?.closest(".acquisto")).catch(closeMiniCart);
});
document.addEventListener("focusin", function (event) {
  if (!event.target.closest("#kv-mini")) {
    closeMiniCart();
  }
});
document.addEventListener("keydown", function (event) {
  if (event.key === "Escape") {
    closeMiniCart();
  }
});
