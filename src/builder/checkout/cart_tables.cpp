#include "builder/checkout/cart_tables.h"

#include "builder/values/line_end.h"
#include "platform/numbers/number_format.h"
#include "store/schema/schema.h"
#include "tags/engine/tag_engine.h"

namespace kv {

namespace {

constexpr std::int64_t mostSlots = std::int64_t{paymentMethods} * shippingZones;

// Runs in every page: hands the cart what the server knows of the visitor.
constexpr std::string_view cartStart =
    "<script language=\"JavaScript\">\r\n"
    "<!--\r\n"
    "document.cookie = \"kvstore_disp=<?php echo $cartdisp; ?>\";\r\n"
    "document.cookie = \"kvstore_cliente=<?php echo $ordercliente; ?>\";\r\n"
    "var scl = <?php echo $scontocliente; ?>;\r\n"
    "MostraCarrello(<?php echo $listino; ?>);\r\n"
    "//-->\r\n"
    "</script>";

bool isActive(const FieldRow& pagamento, int method) { return pagamento.flag("attivo" + std::to_string(method)); }

// Threshold and factor of the discount by order amount, for each listino.
void appendDiscounts(std::string& out, const FieldRow& generale) {
  std::string amounts, factors;
  for (const std::string_view suffix : listinoSuffixes) {
    const std::string_view comma = amounts.empty() ? "" : ",";
    const std::string n(suffix);
    amounts.append(comma).append(plainNumber(generale.money("importo" + n)));
    factors.append(comma).append(plainNumber((100.0 - generale.number("scimp" + n)) / 100.0));
  }
  out.append("var scimp = new Array(").append(amounts).append(");").append(lineEnd);
  out.append("var scperc = new Array(").append(factors).append(");").append(lineEnd);
}

void fillShipping(PageTagRow& row, const CartTags& tags) {
  row.set("java_importi", tags.shipping.amounts.java_importi);
  row.set("java_permessi", tags.shipping.amounts.java_permessi);
  row.set("java_iva", tags.shipping.amounts.java_iva);
  row.set("java_iva_spese", tags.shipping.amounts.java_iva_spese);
  row.set("java_importi_peso", tags.shipping.java_importi_peso);
  row.set("java_tipopeso", tags.pagamento.flag("imppeso") ? "1" : "0");
  row.set("java_aliquotaspese", plainNumber(tags.shippingVat));
}

void fillOrderForm(PageTagRow& row, const FieldRow& generale) {
  row.set("java_campi", MakeObbligatori(generale));
  row.set("java_ivacompresa", generale.flag("ivacompresa") ? "1" : "0");
  row.set("java_qminima", plainNumber(generale.integer("qminima")));
  row.set("java_minimo", plainNumber(generale.money("minimo")));
  row.set("java_search", "return SubmitSearchForm(1)");
  row.set("java_daticliente", "CaricaDati()");
  row.set("java_ANDORsearch", generale.text("operatorericerca") == "1" ? "any" : "all");
  row.set("java_sepsearch", generale.flag("ricercaparole") ? "var sleft = \"#\"; var sright = \"#\";"
                                                           : "var sleft = \",#.*\"; var sright = \"\";");
}

}  // namespace

Result<std::string> MakePaesi(Database& catalogue, const FieldRow& pagamento) {
  const std::string selected = pagamento.text("paesesel");
  auto query = catalogue.prepare(std::string("SELECT strID, paese, zona FROM paesi ORDER BY ") +
                                 (pagamento.flag("alfabetico") ? "paese, ID" : "ID"));
  if (!query) return fail(query.error());
  std::string out = "<select size=\"1\" name=\"LSStato\" onChange=\"SpedPaese()\">\r\n";
  auto more = query->step();
  for (; more && *more; more = query->step()) {
    out += "<option ";
    if (!selected.empty() && query->text(0) == selected) out += "selected ";
    out.append("value =\"").append(formatNumber(query->integer(2), "0")).append("\">");
    out.append(query->text(1)).append("</option>").append(lineEnd);
  }
  if (!more) return fail(more.error());
  return MettiVirgolette(out.append("</select>").append(lineEnd));
}

std::string MakePagamenti(const FieldRow& pagamento) {
  std::string out = "<select size=\"1\" name=\"Pagamento\" onChange=\"SpedPaese()\">\r\n";
  for (int i = 1; i <= paymentMethods; ++i) {
    if (!isActive(pagamento, i)) continue;
    out += pagamento.integer("selezionato") == i ? "<option selected>" : "<option>";
    out.append(pagamento.text("nome" + std::to_string(i))).append("</option>").append(lineEnd);
  }
  return out + "</select>";
}

Result<std::string> MakeTipoSel(Database& catalogue, const FieldRow& pagamento) {
  std::int64_t before = 0;
  for (int i = 1; i <= paymentMethods && i < pagamento.integer("selezionato"); ++i) before += isActive(pagamento, i);
  const std::string country = pagamento.text("paesesel");
  auto query = catalogue.prepare("SELECT zona FROM paesi WHERE strID = ?");
  if (!query) return fail(query.error());
  query->bind(1, country);
  const auto found = query->step();
  if (!found) return fail(found.error());
  const std::int64_t slot = before * shippingZones + (*found ? query->integer(0) : 0);
  return std::to_string(slot < 1 || slot > mostSlots ? 1 : slot);
}

std::string JavaValuta(const FieldRow& generale, const CurrencyForm& form) {
  const float rate = generale.single("cambio");
  const bool second = generale.flag("usa_cambio") && rate != 0;
  std::string out;
  const auto line = [&out](std::string_view name, std::string_view value) {
    out.append("var ").append(name).append("=").append(value).append(";").append(lineEnd);
  };
  const auto text = [&line](std::string_view name, const std::string& value) { line(name, "\"" + value + "\""); };
  text("valuta", form.label);
  text("valuta2", form.label2);
  line("exch", plainNumber(rate != 0 ? rate : 1.0F));
  line("SecVal", second ? " 1" : " 0");
  text("sepmigl", form.sepmigl);
  text("sepdec", form.sepdec);
  line("PutDec", form.decimals ? " 1" : " 0");
  line("PutDec2", form.decimals2 ? " 1" : " 0");
  appendDiscounts(out, generale);
  return MettiVirgolette(out);
}

std::string MakeObbligatori(const FieldRow& generale) {
  constexpr std::int64_t company = 1, taxNumber = 2, telephone = 4, ofAge = 8;
  const std::int64_t mask = generale.integer("campi_obbligatori");
  std::string out;
  const auto line = [&out](std::string_view text) { out.append(out.empty() ? "" : lineEnd).append(text); };
  if ((mask & company) != 0) line("obbl_rsoc = 1;");
  if ((mask & taxNumber) != 0) line("obbl_piva = 1;");
  if ((mask & telephone) != 0) line("obbl_tel = 1;");
  // The buyer confirms to be of age unless the merchant has switched it off.
  if ((mask & ofAge) == 0) line("obbl_magg = 0;");
  return out;
}

Result<ShippingTables> makeShippingTables(Database& catalogue, const FieldRow& pagamento, const ShippingPrice& price) {
  auto amounts = MakeImporti(catalogue, pagamento, price);
  if (!amounts) return fail(amounts.error());
  auto weights = MakeImportiPeso(catalogue, pagamento, price);
  if (!weights) return fail(weights.error());
  return ShippingTables{std::move(*amounts), std::move(*weights)};
}

Result<> fillCartTags(PageTagRow& row, const CartTags& tags) {
  auto countries = MakePaesi(tags.catalogue, tags.pagamento);
  if (!countries) return fail(countries.error());
  row.set("paesi", std::move(*countries));
  row.set("pagamento", MakePagamenti(tags.pagamento));
  auto slot = MakeTipoSel(tags.catalogue, tags.pagamento);
  if (!slot) return fail(slot.error());
  row.set("java_zona", std::move(*slot));
  fillShipping(row, tags);
  fillOrderForm(row, tags.generale);
  row.set("java_valuta", JavaValuta(tags.generale, tags.form));
  row.set("java_carrello", std::string(cartStart));
  return {};
}

}  // namespace kv
