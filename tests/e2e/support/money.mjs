// Amounts as the model shop writes them: 1.234,50 on its own pages, 1,234.50 on English ones.
const amount = /-?\s?\d{1,3}(?:[.,]\d{3})*[.,]\d{2}(?!\d)/g;

/** All amounts of a text in cents, in their order. */
export function amountsIn(text) {
  return (text.match(amount) ?? []).map((found) => Number(found.replace(/[.,\s]/g, "")));
}

/** Cents as the pages of a language write them. */
export function written(cents, { code }) {
  const [group, point] = code === "en" ? [",", "."] : [".", ","];
  const whole = String(Math.floor(cents / 100)).replace(/\B(?=(\d{3})+$)/g, group);
  return `${whole}${point}${String(cents % 100).padStart(2, "0")}`;
}
