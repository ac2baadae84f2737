// What pages can do with scripts alone: print on a button, which stays hidden without them; say the roles of tables,
// which some browsers forget where a table is laid out as cards.
const ruoli = { table: "table", "thead, tbody": "rowgroup", tr: "row", th: "columnheader", td: "cell" };
for (const [elementi, ruolo] of Object.entries(ruoli)) {
  for (const elemento of document.querySelectorAll(elementi)) {
    elemento.setAttribute("role", ruolo);
  }
}
for (const pulsante of document.querySelectorAll("[data-stampa]")) {
  pulsante.hidden = false;
  pulsante.addEventListener("click", () => window.print());
}
