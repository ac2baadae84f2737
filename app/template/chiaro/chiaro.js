// The department menu of narrow screens, and the buttons around a quantity. Everything works without: the menu then
// stays open and the quantity is typed.
"use strict";

document.addEventListener("DOMContentLoaded", function () {
  const opener = document.querySelector(".apri");
  if (opener) {
    opener.addEventListener("click", function () {
      opener.setAttribute("aria-expanded", opener.getAttribute("aria-expanded") === "true" ? "false" : "true");
    });
  }
  document.addEventListener("keydown", function (event) {
    if (event.key === "Escape" && opener && opener.getAttribute("aria-expanded") === "true") {
      opener.setAttribute("aria-expanded", "false");
      opener.focus();
    }
  });
  document.querySelectorAll("[data-passo]").forEach(function (step) {
    step.addEventListener("click", function () {
      const field = step.parentElement.querySelector("input");
      const value = Math.round(Number(field.value) || 0) + Number(step.dataset.passo);
      field.value = String(Math.max(Number(field.min) || 1, Math.min(Number(field.max) || 99999, value)));
    });
  });
});
