#pragma once
// The statements by which the variant editor changes `opzioni` and `dettagliop`. Each is whole or not at all.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/database.h"

namespace kv {

/// The fields of an option to be added; an empty one is null.
struct NewOption {
  std::string codice;
  std::string testo;
  std::optional<Money> prezzo;
  std::optional<double> peso;
};

/// "opzione1, opzione2, ..., opzione4_9": the forty slot columns of an article.
std::string allSlotColumns();
/// Adds a row with nothing but its automatic ID, which is returned.
Result<std::int64_t> insertVariant(Database& catalogue);
/// Deletes a variant and its options.
Result<> removeVariant(Database& catalogue, std::int64_t ID);
/// Copies a variant with all its columns, and its options with theirs; the new ID.
Result<std::int64_t> copyVariant(Database& catalogue, std::int64_t ID);
/// Adds options to a variant, their texts in the language of the suffix; the ID of the last one.
Result<std::int64_t> insertOptions(Database& catalogue, std::int64_t variant, std::string_view suffix,
                                   const std::vector<NewOption>& options);
/// Moves the default mark of a variant to an option.
Result<> moveMark(Database& catalogue, std::int64_t variant, std::int64_t option);
/// Runs a statement with up to two whole numbers as ?1 and ?2.
Result<> executeFor(Database& catalogue, std::string_view sql, std::int64_t first, std::int64_t second = 0);

}  // namespace kv
