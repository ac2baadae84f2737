#include "commerce/variants/variant_editor.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "commerce/shipping/single_row.h"
#include "commerce/variants/variant_rows.h"
#include "commerce/variants/variant_texts.h"
#include "platform/database/recordset.h"
#include "platform/numbers/number_format.h"
#include "platform/numbers/typed_number.h"
#include "platform/ports/failure_text.h"
#include "platform/text/single_line.h"
#include "platform/text/text.h"

namespace kv {
namespace {

/// The rows of a query with one whole number as its parameter, each given to `use`; stops silently at a failure.
template <class Use>
void eachRow(Database& catalogue, const std::string& sql, std::int64_t parameter, const Use& use) {
  auto query = catalogue.prepare(sql);
  if (!query) return;
  if (sql.find("?1") != std::string::npos) query->bind(1, parameter);
  for (auto more = query->step(); more && *more; more = query->step()) use(*query);
}

std::string optionColumn(OptionCell cell, std::string_view suffix) {
  switch (cell) {
    case OptionCell::Codice:
      return "codice";
    case OptionCell::Testo:
      return "testo" + std::string(suffix);
    case OptionCell::Prezzo:
      return "prezzo";
    default:
      return "peso";
  }
}

/// What a cell stores of a typed text, `number` being its text as a number of the store; none when the column can't
/// hold it.
std::optional<Value> optionValue(OptionCell cell, const std::string& typed, const std::string& number) {
  constexpr double most = std::numeric_limits<float>::max();
  if (cell == OptionCell::Codice || cell == OptionCell::Testo) return Value(singleLine(typed));
  if (number.empty()) return Value(Null{});
  if (cell == OptionCell::Prezzo) {
    const auto money = Money::parse(number);
    return money ? std::optional<Value>(*money) : std::nullopt;
  }
  const auto weight = toNumber(number);
  const bool fits = weight && *weight >= -most && *weight <= most;
  return fits ? std::optional<Value>(*weight) : std::nullopt;
}

}  // namespace

VariantEditor::VariantEditor(Session& session, UserPort& user, char decimalSeparator)
    : session_(session), user_(user), separator_(decimalSeparator) {
  const auto flag = [&](std::string_view column) {
    const auto value = readSingle(session_.catalogue, "generale", column);
    return value && asFlag(*value);
  };
  settings = {flag("nodiff"), flag("showsigns")};
}

std::string_view VariantEditor::suffix() const {
  return languageSuffixes[static_cast<std::size_t>(std::clamp(session_.currentLanguage, 1, maxLanguages)) - 1];
}

bool VariantEditor::told(const Result<>& outcome) {
  if (!outcome) user_.message(failureText(outcome.error()), Icon::Exclamation);
  return outcome.has_value();
}

bool VariantEditor::toldOnce(const Result<>& outcome) {
  failure_ = outcome ? std::string() : failureText(outcome.error());
  // The detail below the empty line differs from field to field.
  const std::string condition = failure_.substr(0, failure_.find("\n\n"));
  if (!outcome && condition != toldFailure_) user_.message(failure_, Icon::Exclamation);
  toldFailure_ = condition;
  return outcome.has_value();
}

std::vector<VariantRow> VariantEditor::variants() {
  std::vector<VariantRow> rows;
  eachRow(session_.catalogue, "SELECT ID, nome" + std::string(suffix()) + " FROM opzioni ORDER BY ID", 0,
          [&rows](const Statement& row) {
            rows.push_back({row.integer(0), std::string(row.text(1))});
          });
  return rows;
}

std::size_t VariantEditor::start(const std::vector<VariantRow>& variants, std::string_view txtID) {
  const std::string_view digits = trim(txtID);
  std::int64_t ID = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), ID);
  const auto found = std::ranges::find(variants, ID, &VariantRow::ID);
  return found == variants.end() ? 0 : static_cast<std::size_t>(found - variants.begin());
}

bool VariantEditor::canRename(const VariantRow& row) { return row.ID != noVariantID && row.nome != noVariantName; }

bool VariantEditor::rename(std::int64_t ID, std::string_view nome) {
  auto statement =
      session_.catalogue.prepare("UPDATE opzioni SET nome" + std::string(suffix()) + " = ?1 WHERE ID = ?2");
  if (!statement) return toldOnce(fail(statement.error()));
  const std::string cut(firstCharacters(singleLine(nome), longestVariantName));
  statement->bind(1, cut);
  statement->bind(2, ID);
  return toldOnce(statement->execute());
}

std::optional<std::int64_t> VariantEditor::addVariant() {
  const auto ID = insertVariant(session_.catalogue);
  if (ID) return *ID;
  ignore(told(fail(ID.error())), "the user knows");
  return std::nullopt;
}

bool VariantEditor::deleteVariant(std::int64_t ID) {
  const std::vector<VariantRow> rows = variants();
  const auto refuse = [this](std::string_view text) {
    user_.message(std::string(text), Icon::Exclamation);
    return false;
  };
  const auto row = std::ranges::find(rows, ID, &VariantRow::ID);
  if (row == rows.end()) return refuse(variantsNone);
  if (ID == noVariantID) return refuse(variantFixed);
  const auto used = session_.catalogue.scalar("SELECT EXISTS (SELECT 1 FROM articoli WHERE " + std::to_string(ID) +
                                              " IN (" + allSlotColumns() + "))");
  if (!used) return told(fail(used.error()));
  if (asFlag(*used)) return refuse(variantInUse);
  Question question;
  question.text = "Eliminare la variante selezionata ('" + row->nome + "')?";
  if (user_.question(question) != Answer::Yes) return false;
  return told(removeVariant(session_.catalogue, ID));
}

std::optional<std::int64_t> VariantEditor::duplicateVariant(std::int64_t ID) {
  if (!canRemove(ID)) return std::nullopt;
  const auto copy = copyVariant(session_.catalogue, ID);
  if (copy) return *copy;
  ignore(told(fail(copy.error())), "the user knows");
  return std::nullopt;
}

std::vector<ArticleUse> VariantEditor::uses(std::int64_t ID) {
  std::vector<ArticleUse> articles;
  if (!canRemove(ID)) return articles;
  eachRow(
      session_.catalogue,
      "SELECT ID, titolo" + std::string(suffix()) + " FROM articoli WHERE ?1 IN (" + allSlotColumns() + ") ORDER BY ID",
      ID, [&articles](const Statement& row) {
        articles.push_back({row.integer(0), std::string(row.text(1))});
      });
  return articles;
}

std::int64_t VariantEditor::useCount(std::int64_t ID) {
  if (!canRemove(ID)) return 0;
  const auto count = session_.catalogue.scalar("SELECT COUNT(*) FROM articoli WHERE " + std::to_string(ID) + " IN (" +
                                               allSlotColumns() + ")");
  return count ? asInteger(*count) : 0;
}

std::vector<OptionRow> VariantEditor::options(std::int64_t variant) {
  std::vector<OptionRow> rows;
  const auto shown = [this](const Statement& row, int column, const std::string& number) {
    return row.isNull(column) ? std::string() : shownNumber(number, separator_);
  };
  eachRow(session_.catalogue,
          "SELECT ID, codice, testo" + std::string(suffix()) +
              ", prezzo, peso, selezionato FROM dettagliop WHERE OpID = ?1 ORDER BY ID",
          variant, [&](const Statement& row) {
            rows.push_back({row.integer(0), std::string(row.text(1)), std::string(row.text(2)),
                            shown(row, 3, trimmedNumber(row.money(3))), shown(row, 4, trimmedNumber(row.single(4))),
                            row.text(5) == "."});
          });
  return rows;
}

std::optional<std::int64_t> VariantEditor::addOption(std::int64_t variant) {
  if (!canHaveOptions(variant)) return std::nullopt;
  const auto ID = insertOptions(session_.catalogue, variant, suffix(), {NewOption()});
  if (ID) return *ID;
  ignore(told(fail(ID.error())), "the user knows");
  return std::nullopt;
}

bool VariantEditor::deleteOption(std::int64_t ID) {
  return told(executeFor(session_.catalogue, "DELETE FROM dettagliop WHERE ID = ?1", ID));
}

int VariantEditor::afterDeletion(int index, int rowsLeft) { return std::min(index, rowsLeft - 1); }

bool VariantEditor::setOption(std::int64_t ID, OptionCell cell, const std::string& typed) {
  failure_.clear();
  const auto value = optionValue(cell, typed, storedNumber(typed, separator_));
  if (!value) return false;
  auto row = session_.catalogue.openRecordset("SELECT * FROM dettagliop WHERE ID = " + std::to_string(ID));
  if (!row) return toldOnce(fail(row.error()));
  row->moveFirst();
  if (auto begun = row->edit(); !begun) return toldOnce(begun);
  if (auto set = row->set(optionColumn(cell, suffix()), *value); !set) return toldOnce(set);
  return toldOnce(row->update());
}

bool VariantEditor::markOption(std::int64_t variant, std::int64_t ID) {
  return told(moveMark(session_.catalogue, variant, ID));
}

bool VariantEditor::accept() {
  auto statement = session_.catalogue.prepare("UPDATE generale SET nodiff = ?1, showsigns = ?2");
  if (!statement) return told(fail(statement.error()));
  statement->bind(1, settings.nodiff);
  statement->bind(2, settings.showsigns);
  return told(statement->execute());
}

std::string VariantEditor::translated(std::string_view table, std::string_view column, std::int64_t ID) {
  std::string names;
  for (const std::string_view language : languageSuffixes) {
    names += (names.empty() ? "" : ", ") + std::string(column) + std::string(language);
  }
  std::string lines;
  const int languages = std::clamp(session_.languageCount, 1, maxLanguages);
  eachRow(session_.catalogue, "SELECT " + names + " FROM " + std::string(table) + " WHERE ID = ?1", ID,
          [&](const Statement& row) {
            for (int i = 0; i < languages; ++i) {
              lines += (i == 0 ? "" : "\n") + session_.languageNames[static_cast<std::size_t>(i)] + ": ";
              lines += row.text(i);
            }
          });
  return lines;
}

std::string VariantEditor::TraduciVariante(std::int64_t ID) { return translated("opzioni", "nome", ID); }
std::string VariantEditor::TraduciOpzione(std::int64_t ID) { return translated("dettagliop", "testo", ID); }

}  // namespace kv
