#include "builder/article/variant_lists.h"

#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "store/schema/schema.h"
#include "tags/engine/tag_engine.h"

namespace kv {

namespace {

constexpr std::int64_t emptyVariant = 1;

// In upper or lower case: a list must not end before its own last value.
std::string withoutOptionEnd(std::string text) {
  constexpr std::string_view optionEnd = "</option>";
  for (std::size_t at = findIgnoringCase(text, optionEnd); at != std::string::npos;
       at = findIgnoringCase(text, optionEnd, at)) {
    text.erase(at, optionEnd.size());
  }
  return text;
}

}  // namespace

VariantList::VariantList(const FieldRow& generale) : form_(generale) {
  // The column's name says the opposite of what it does: set, differences are shown.
  if (!generale.flag("nodiff")) {
    differences_ = Differences::Hidden;
  } else if (!generale.flag("showsigns")) {
    differences_ = Differences::WithoutPlus;
  }
}

std::string VariantList::option(const VariantValue& value, std::string_view nome) const {
  std::string text(trim(StripCodice(value.testo)));
  const std::string_view code = trim(value.codice);
  if (!value.selezionato.empty()) text += " *";
  std::string label = std::string(nome) + ": ";
  if (!code.empty()) label += StripCodice(code) + " ";
  label = withoutOptionEnd(label + text);
  text = withoutOptionEnd(std::move(text));
  if (text.empty()) return {};
  std::string out = value.selezionato.empty() ? "<option " : "<option selected ";
  out += "value=\"<<" + form_.NumeroJS(value.prezzo) + ">>=" + trimmedNumber(value.peso) + "#" +
         InterpretaCodice(code) + "|" + label + "\">" + text;
  if (value.prezzo != Money() && differences_ != Differences::Hidden) {
    std::string_view sign = differences_ == Differences::WithoutPlus ? "" : "+ ";
    if (value.prezzo < Money()) sign = "- ";
    out.append(" ( ").append(sign).append(form_.label).append("<<importo>> )");
  }
  return out.append("</option>");
}

Result<VariantReader> VariantReader::open(Database& catalogue, const FieldRow& generale, std::string_view lingua) {
  auto names = catalogue.prepare(SelezionaLingua("opzioni", lingua, "WHERE ID=?"));
  if (!names) return fail(names.error());
  auto values = catalogue.prepare(SelezionaLingua("dettagliop", lingua, "WHERE OpID=?"));
  if (!values) return fail(values.error());
  VariantReader reader;
  reader.list_ = VariantList(generale);
  reader.names_ = std::move(*names);
  reader.values_ = std::move(*values);
  return reader;
}

Result<std::string> VariantReader::CreaNomeOpzione(std::int64_t id) {
  if (id == emptyVariant) return std::string();
  names_.bind(1, id);
  const auto found = names_.step();
  if (!found) return fail(found.error());
  std::string name;
  if (*found) {
    const std::string nome = FieldRow(names_).text("nome");
    name = StripCodice(std::string_view(nome).substr(0, nome.find('|')));
  }
  names_.reset();
  return name;
}

Result<std::string> VariantReader::InserisciOpzione(std::int64_t id, std::string_view nome) {
  std::string out;
  if (id == emptyVariant) return out;
  values_.bind(1, id);
  for (;;) {
    const auto more = values_.step();
    if (!more) return fail(more.error());
    if (!*more) return out;
    const FieldRow row(values_);
    out += list_.option(
        // A space marks no value as the default one, as an empty text does.
        {row.text("testo"), row.text("codice"), row.money("prezzo"), row.single("peso"),
         std::string(trim(row.text("selezionato")))},
        nome);
  }
}

}  // namespace kv
