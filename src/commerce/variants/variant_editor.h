#pragma once
// The table of variants and their options, as the variant editor shows and changes it (rules of frmOpzioni). Every
// change is stored at once; the two settings are stored by accept() alone. Who opens the dialog restores the rows when
// it is left.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/shop/session.h"

namespace kv {

/// ID of the variant that means none.
inline constexpr std::int64_t noVariantID = 1;
/// The most characters of a variant's name.
inline constexpr std::size_t longestVariantName = 50;

struct VariantRow {
  std::int64_t ID = 0;
  std::string nome;  ///< in the language being edited
};

/// An option as its row of the grid shows it.
struct OptionRow {
  std::int64_t ID = 0;
  std::string codice;
  std::string testo;    ///< in the language being edited
  std::string prezzo;   ///< difference of price, with the user's decimal separator; empty for null
  std::string peso;     ///< difference of weight
  bool marked = false;  ///< the default option
};

/// A cell of an option that can be typed into.
enum class OptionCell { Codice, Testo, Prezzo, Peso };

/// An article that uses a variant.
struct ArticleUse {
  std::int64_t ID = 0;
  std::string titolo;  ///< in the language being edited
};

/// The two settings of the shop that the dialog shows.
struct VariantSettings {
  bool nodiff = false;     ///< the price difference of a choice shows by itself
  bool showsigns = false;  ///< "+" before positive differences

  /// Whether `showsigns` can be chosen.
  bool canShowSigns() const { return nodiff; }
};

/// Routines that store tell the user of a failure themselves, and then return false or nothing.
class VariantEditor {
 public:
  /// Both outlive this object. decimalSeparator: of the numbers in the grid.
  VariantEditor(Session& session, UserPort& user, char decimalSeparator);

  /// Why the name or cell that was typed last could not be stored, in Italian; empty when it could, or was no number.
  const std::string& failure() const { return failure_; }

  // The variants.
  /// All of them, by ID.
  std::vector<VariantRow> variants();
  /// Index of the variant that a slot holds, given as text: the first one when there is none with this ID.
  static std::size_t start(const std::vector<VariantRow>& variants, std::string_view txtID);
  /// Whether Duplica and Elimina are on for a variant. 0: none is current.
  static bool canRemove(std::int64_t ID) { return ID > noVariantID; }
  /// Whether a variant takes options.
  static bool canHaveOptions(std::int64_t ID) { return ID > 0 && ID != noVariantID; }
  /// Whether the name of a variant can be edited.
  static bool canRename(const VariantRow& row);
  /// Stores a name, cut to 50 characters.
  bool rename(std::int64_t ID, std::string_view nome);
  /// Nuova: a variant without a name; its ID.
  std::optional<std::int64_t> addVariant();
  /// Elimina: a variant with its options, unless the user refuses. Refused for the fixed one and for one that any slot
  /// of any price list of any article holds. ID 0: there is no variant.
  bool deleteVariant(std::int64_t ID);
  /// Duplica: a copy of a variant with all its columns and options; its ID.
  std::optional<std::int64_t> duplicateVariant(std::int64_t ID);
  /// The articles with a variant in any slot of any price list, by ID; none for the fixed variant.
  std::vector<ArticleUse> uses(std::int64_t ID);
  /// How many these are.
  std::int64_t useCount(std::int64_t ID);

  // The options of a variant.
  /// By ID.
  std::vector<OptionRow> options(std::int64_t variant);
  /// Adds an option without a text; its ID. None for the fixed variant.
  std::optional<std::int64_t> addOption(std::int64_t variant);
  bool deleteOption(std::int64_t ID);
  /// Index of the row to show after the one at `index` was deleted; -1 when no row remains.
  static int afterDeletion(int index, int rowsLeft);
  /// Stores a cell. An empty number is null. False, and the cell stays, for a text that is no number of the column.
  bool setOption(std::int64_t ID, OptionCell cell, const std::string& typed);
  /// Makes an option the default one; no other option of its variant is it then.
  bool markOption(std::int64_t variant, std::int64_t ID);
  /// Adds a row for each line of a text copied from a spreadsheet: code, text, price, weight, parted by tabs; what is
  /// missing is empty. False, nothing added and the user told, when a number is none.
  bool pasteOptions(std::int64_t variant, std::string_view text);

  // The panel of all languages: a line for each language of the shop, its name, ": " and the text.
  /// TraduciVariante (translate a variant).
  std::string TraduciVariante(std::int64_t ID);
  /// TraduciOpzione (translate an option).
  std::string TraduciOpzione(std::int64_t ID);
  /// Whether the shop has more than one language.
  bool hasLanguages() const { return session_.languageCount > 1; }

  /// The settings as they are shown.
  VariantSettings settings;
  /// OK: stores both settings.
  bool accept();

 private:
  std::string_view suffix() const;  // of the language being edited
  bool told(const Result<>& outcome);
  /// The same of what is typed: told once, until something could be stored.
  bool toldOnce(const Result<>& outcome);
  std::string translated(std::string_view table, std::string_view column, std::int64_t ID);

  Session& session_;
  UserPort& user_;
  char separator_;
  std::string failure_, toldFailure_;
};

}  // namespace kv
