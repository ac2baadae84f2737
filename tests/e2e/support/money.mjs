// Amounts as the model shop writes them: 1.234,50.
const amount = /-?\s?\d{1,3}(?:\.\d{3})*,\d{2}(?!\d)/g;

/** All amounts of a text in cents, in their order. */
export function amountsIn(text) {
  return (text.match(amount) ?? []).map((found) => Number(found.replace(/[.,\s]/g, "")));
}

/** Cents as the shop writes them. */
export function written(cents) {
  const whole = String(Math.floor(cents / 100)).replace(/\B(?=(\d{3})+$)/g, ".");
  return `${whole},${String(cents % 100).padStart(2, "0")}`;
}
