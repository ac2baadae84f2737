// What pages can do with scripts alone: print on a button, which stays hidden without them; say the roles of tables,
// which some browsers forget where a table is laid out as cards.
const roles = { table: "table", "thead, tbody": "rowgroup", tr: "row", th: "columnheader", td: "cell" };
for (const [elements, role] of Object.entries(roles)) {
  for (const element of document.querySelectorAll(elements)) {
    element.setAttribute("role", role);
  }
}
for (const button of document.querySelectorAll("[data-stampa]")) {
  button.hidden = false;
  button.addEventListener("click", () => window.print());
}
