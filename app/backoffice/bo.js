// What pages can do with scripts alone: print on a button, which stays hidden without them.
for (const pulsante of document.querySelectorAll("[data-stampa]")) {
  pulsante.hidden = false;
  pulsante.addEventListener("click", () => window.print());
}
