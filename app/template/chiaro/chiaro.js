// The department menu of narrow screens, and the buttons around a quantity. Everything works without: the menu then
// stays open and the quantity is typed.
"use strict";

document.addEventListener("DOMContentLoaded", function () {
  const apri = document.querySelector(".apri");
  if (apri) {
    apri.addEventListener("click", function () {
      apri.setAttribute("aria-expanded", apri.getAttribute("aria-expanded") === "true" ? "false" : "true");
    });
  }
  document.addEventListener("keydown", function (evento) {
    if (evento.key === "Escape" && apri && apri.getAttribute("aria-expanded") === "true") {
      apri.setAttribute("aria-expanded", "false");
      apri.focus();
    }
  });
  document.querySelectorAll("[data-passo]").forEach(function (passo) {
    passo.addEventListener("click", function () {
      const campo = passo.parentElement.querySelector("input");
      const valore = Math.round(Number(campo.value) || 0) + Number(passo.dataset.passo);
      campo.value = String(Math.max(Number(campo.min) || 1, Math.min(Number(campo.max) || 99999, valore)));
    });
  });
});
