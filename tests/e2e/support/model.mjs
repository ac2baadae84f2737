// What the tests know of the model shop, in the two languages of the tests. Amounts in cents, VAT included.

/** Articles by their code: title, and what a visitor pays. */
export const articles = {
  mug: { it: 'Tazza "Alba"', en: '"Alba" mug', code: "TZ-001", price: 1800, retailer: 1196, litres: 0.3 },
  set: { it: "Servizio di sei tazzine", en: "Set of six espresso cups", price: 7200, before: 8400 },
  tumbler: { it: "Bicchiere in gres", en: "Stoneware tumbler", price: 1200 },
  plate: { it: 'Piatto "Ginestra"', en: '"Ginestra" plate', price: 2400 },
};

export const departments = {
  ceramics: { it: "Ceramiche", en: "Ceramics" },
  cups: { it: "Tazze e tazzine", en: "Mugs and cups" },
  retailers: { it: "Rivenditori", en: "Retailers" },
};

/** Variants with the options that the tests choose; the differences go into the price. */
export const variants = {
  glaze: { it: "Smalto", en: "Glaze", ochre: { it: "Ocra", en: "Ochre", difference: 200 } },
  wrapping: { it: "Confezione regalo", en: "Gift wrapping", paper: { it: "Carta", en: "Paper", difference: 300 } },
};

export const countries = {
  italy: { it: "Italia", en: "Italy" },
  france: { it: "Francia", en: "France" },
  switzerland: { it: "Svizzera", en: "Switzerland" },
};

export const methods = {
  cash: { it: "Contrassegno", en: "Cash on delivery" },
  transfer: { it: "Bonifico anticipato", en: "Bank transfer in advance" },
};

/** The person who orders. */
export const person = {
  Nome: "Ζωή", Cognome: "D'Ambrosio", Indirizzo: "via dei Mulini 3", CAP: "00100", Citta: "Rocca Piana",
  Telefono: "000 555 0199", Email: "zoe@cliente.example",
};
