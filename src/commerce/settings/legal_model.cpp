#include "commerce/settings/legal_model.h"

#include "platform/database/field_row.h"
#include "platform/files/files.h"
#include "platform/text/text.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

/// A field of `generale` that tells who sells, and how the merchant knows it.
struct SellerField {
  std::string_view column, name;
  bool isTranslated;
};
constexpr SellerField sellerFields[] = {{"titolo", "nome del negozio", true},
                                        {"email", "e-mail", false},
                                        {"email_ordini", "e-mail per gli ordini", false},
                                        {"testo2", "testo libero 2", true},
                                        {"condizioni", "condizioni di vendita", true},
                                        {"recesso", "diritto di recesso", true},
                                        {"datipers", "dati personali", true},
                                        {"anticipato", "testo del pagamento anticipato", true},
                                        {"firma_email", "firma delle e-mail", false}};

/// Whether a text says what the model shop says, or names its seller. An empty text says nothing.
bool isOfModel(std::string_view text, std::string_view model, std::string_view seller) {
  text = trim(text);
  if (text.empty()) return false;
  return text == trim(model) || (!seller.empty() && text.find(seller) != std::string_view::npos);
}

/// The first language whose text of a field is the model's; 0 for none.
int languageOfModel(const SellerField& field, const FieldRow& own, const FieldRow& model, int languages) {
  const std::string seller(trim(model.text("titolo")));
  for (int language = 1; language <= (field.isTranslated ? languages : 1); ++language) {
    const std::string column =
        std::string(field.column) + std::string(languageSuffixes[static_cast<std::size_t>(language - 1)]);
    if (isOfModel(own.text(column), model.text(column), seller)) return language;
  }
  return 0;
}

}  // namespace

Result<std::optional<LegalDuty>> ownDataDuty(Session& session, const std::string& applicationFolder) {
  const auto file = findEntry(joinPath(applicationFolder, "new"), catalogueFile);
  if (!file) return std::nullopt;
  auto catalogue = ApriDatabase(*file, false);
  if (!catalogue) return fail(catalogue.error());
  const auto model = firstRow(*catalogue, "SELECT * FROM generale");
  if (!model) return fail(model.error());
  const auto own = firstRow(session.catalogue, "SELECT * FROM generale");
  if (!own) return fail(own.error());

  LegalDuty duty{"Dati propri", DutyState::Met, "Nessun dato del venditore è quello del negozio modello.", {}};
  std::string left;
  for (const SellerField& field : sellerFields) {
    const int language = languageOfModel(field, *own, *model, session.languageCount);
    if (language == 0) continue;
    if (left.empty()) duty.target = {DutySubject::Settings, std::string(field.column), 0, language, {}};
    left.append(left.empty() ? "" : ", ").append(field.name);
  }
  if (!left.empty()) {
    duty.state = DutyState::Missing;
    duty.text = "Sono ancora quelli del negozio modello: " + left + ".";
  }
  return duty;
}

}  // namespace kv
