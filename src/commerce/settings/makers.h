#pragma once
// The makers of the shop's articles, with the person who answers for them in the European Union (rules of
// frmProduttori). Which maker an article or a department has is chosen beside its other fields.
// Source: Regulation (EU) 2023/988, article 19.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/database.h"

namespace kv {

inline constexpr std::string_view makersTitle = "Korvane - Produttori";
inline constexpr std::string_view makersUnsaved = "Le modifiche ai produttori andranno perse. Uscire ugualmente?";

/// A field of a maker: its column in `produttori`, the caption and the name of its control.
struct MakerField {
  std::string_view column;
  std::string_view label;
  std::string_view control;
  std::string_view hint;
};
inline constexpr std::array<MakerField, 6> makerFields{
    {{"nome", "&Nome:", "txtNome", "Il nome o il marchio registrato del produttore"},
     {"indirizzo", "&Indirizzo:", "txtIndirizzo", "Via, CAP, città e Paese"},
     {"contatto", "&Contatto elettronico:", "txtContatto", "Un indirizzo e-mail o una pagina web"},
     {"responsabile", "&Responsabile:", "txtResponsabile",
      "Chi risponde del prodotto nell'Unione europea, se il produttore ha sede altrove"},
     {"resp_indirizzo", "In&dirizzo del responsabile:", "txtRespIndirizzo", "Via, CAP, città e Paese"},
     {"resp_contatto", "C&ontatto del responsabile:", "txtRespContatto", "Un indirizzo e-mail o una pagina web"}}};
inline constexpr std::size_t makerName = 0;

/// One maker; `texts` by makerFields. A new one has number 0 until it is saved.
struct Maker {
  std::int64_t ID = 0;
  std::array<std::string, makerFields.size()> texts;

  bool operator==(const Maker&) const = default;
};

/// What keeps the makers from being saved.
struct MakerFault {
  std::size_t maker = 0;  ///< index in the list
  std::size_t field = 0;  ///< index in makerFields
  std::string message;
};

/// The makers of the shop while they are edited.
class MakerEditor {
 public:
  /// The makers of the shop by their names; none while it has no such table. Failures as Database::prepare.
  static Result<MakerEditor> load(Database& catalogue);

  const std::vector<Maker>& makers() const { return makers_; }
  /// What the list shows of a maker: its name, "(senza nome)" without one.
  std::string line(std::size_t maker) const;
  /// Adds an empty one at the end.
  void add() { makers_.emplace_back(); }
  /// Removes one by its index.
  void remove(std::size_t maker);
  /// Sets a field to a text without the spaces around it.
  void set(std::size_t maker, std::size_t field, std::string_view text);

  /// Whether there is something to store.
  bool isChanged() const { return makers_ != loaded_; }
  /// The first fault: a maker without a name, or with one that another has already; nothing when all can be saved.
  std::optional<MakerFault> fault() const;
  /// Stores the makers, all of them or none; makes the tables where the shop has none. Articles and departments lose a
  /// maker that was removed. Failures as the store's.
  Result<> save(Database& catalogue) const;

 private:
  Result<> store(Database& catalogue) const;
  std::vector<Maker> makers_, loaded_;
};

}  // namespace kv
