#pragma once
// Copying the texts of one language into another (rules of frmReplica). Only text columns that have a version for each
// language are copied; numbers, such as the size of a department's button picture, stay.

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "commerce/prices/price_change.h"
#include "store/shop/session.h"

namespace kv {

inline constexpr std::string_view replicateLanguagesTitle = "Korvane - Replica lingue";
/// The captions of the boxes chkCopy(0) to chkCopy(3).
inline constexpr std::array<std::string_view, 4> copiedParts{"Impostazioni generali del negozio e del sito", "Reparti",
                                                             "Articoli", "Varianti"};
/// The captions of the options optCopy(0) and optCopy(1).
inline constexpr std::array<std::string_view, 2> copyModes{"Aggiorna tutti i campi", "Aggiorna solo i campi vuoti"};

/// What the fields of the dialog say.
struct LanguageReplication {
  int source = 1;       ///< 1 to 4
  int destination = 2;  ///< 1 to 4, another one
  std::array<bool, copiedParts.size()> parts{};
  bool onlyEmpty = false;  ///< a field that is filled stays; a space fills one
};

/// How a language is offered: "Lingua 2 (inglese)".
std::string languageItem(const Session& session, int language);
/// The languages that are offered as destination: all of the shop but the source.
std::vector<int> destinationsOf(const Session& session, int source);

/// How much a replication would write: only what would become another text counts.
struct ReplicationCount {
  std::size_t fields = 0;
  std::size_t rows = 0;
  std::vector<std::string> beyond;  ///< titles of articles with a price out of range, for which the run is refused
  /// "Campi da scrivere: 12, in 4 righe", and whose price is out of range; `written`: "Campi scritti: ...".
  std::string text(bool written = false) const;
};
/// Counts what a replication would write. Failures: as the store's.
Result<ReplicationCount> countReplication(Database& catalogue, const LanguageReplication& replication);

/// The OK command of frmReplica: asks, then copies all that is ticked in one transaction. After an error nothing has
/// been copied, and the user is told. Progress and repainting go through `user`.
BulkEnd ReplicaLingue(Database& catalogue, const LanguageReplication& replication, UserPort& user);

/// One table of a replication.
struct ReplicatedTable {
  std::string_view name;
  std::string_view caption;  ///< of the progress
};
/// ReplicaLingua (replicate the language): one table in one pass, its rows in the order of their keys.
/// An empty `nome1` to `nome4` of pagamento becomes a space.
Result<> ReplicaLingua(Database& catalogue, const ReplicatedTable& table, const LanguageReplication& replication,
                       UserPort& user);

}  // namespace kv
