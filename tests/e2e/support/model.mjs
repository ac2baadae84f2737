// What the tests know of the model shop, in its four languages. Amounts in cents, VAT included.

/** Articles by their code: title, and what a visitor pays. */
export const articles = {
  mug: { it: 'Tazza "Alba"', en: '"Alba" mug', fr: "Mug «\u00a0Alba\u00a0»", de: "Becher „Alba“",
    code: "TZ-001", price: 1800, retailer: 1196, litres: 0.3 },
  set: { it: "Servizio di sei tazzine", en: "Set of six espresso cups", fr: "Service de six tasses à espresso",
    de: "Set aus sechs Espressotassen", price: 7200, before: 8400 },
  tumbler: { it: "Bicchiere in gres", en: "Stoneware tumbler", fr: "Gobelet en grès", de: "Trinkbecher aus Steinzeug",
    price: 1200 },
  plate: { it: 'Piatto "Ginestra"', en: '"Ginestra" plate', fr: "Assiette «\u00a0Ginestra\u00a0»",
    de: "Teller „Ginestra“", price: 2400 },
};

export const departments = {
  ceramics: { it: "Ceramiche", en: "Ceramics", fr: "Céramiques", de: "Keramik" },
  cups: { it: "Tazze e tazzine", en: "Mugs and cups", fr: "Tasses et mugs", de: "Tassen und Becher" },
  retailers: { it: "Rivenditori", en: "Retailers", fr: "Revendeurs", de: "Fachhandel" },
};

/** Variants with the options that the tests choose; the differences go into the price. */
export const variants = {
  glaze: { it: "Smalto", en: "Glaze", fr: "Émail", de: "Glasur",
    ochre: { it: "Ocra", en: "Ochre", fr: "Ocre", de: "Ocker", difference: 200 } },
  wrapping: { it: "Confezione regalo", en: "Gift wrapping", fr: "Emballage cadeau", de: "Geschenkverpackung",
    paper: { it: "Carta", en: "Paper", fr: "Papier", de: "Papier", difference: 300 } },
};

export const countries = {
  italy: { it: "Italia", en: "Italy", fr: "Italie", de: "Italien" },
  france: { it: "Francia", en: "France", fr: "France", de: "Frankreich" },
  switzerland: { it: "Svizzera", en: "Switzerland", fr: "Suisse", de: "Schweiz" },
};

export const methods = {
  cash: { it: "Contrassegno", en: "Cash on delivery", fr: "Contre remboursement", de: "Nachnahme" },
  transfer: { it: "Bonifico anticipato", en: "Bank transfer in advance", fr: "Virement bancaire",
    de: "Vorkasse per Überweisung" },
};

/** The person who orders. */
export const person = {
  Nome: "Ζωή", Cognome: "D'Ambrosio", Indirizzo: "via dei Mulini 3", CAP: "00100", Citta: "Rocca Piana",
  Telefono: "000 555 0199", Email: "zoe@cliente.example",
};
