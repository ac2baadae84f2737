#pragma once
// The key that signs requests for a shop's orders, as the catalogue keeps it: in the side table `chiave_ordini`, which
// a shop has only once its orders were asked for. It is no matter of the undo history, and a copy of the catalogue that
// is restored gets the key of the catalogue it replaces, for that is the one the shop's server knows.

#include <string>
#include <string_view>

#include "platform/database/database.h"

namespace kv {

/// The characters of a key: 32 bytes as lower-case hexadecimal digits.
inline constexpr std::size_t orderKeyDigits = 64;

/// The key of a catalogue; empty when there is none, and for a text that is none.
/// Failures as Database::prepare.
Result<std::string> readOrderKey(Database& catalogue);
/// Keeps a key in place of any former one; makes the table where the shop has none.
/// Malformed for a text that is no key; other failures as Database::createTable.
Result<> writeOrderKey(Database& catalogue, const std::string& key);
/// Removes the key with its table. Nothing happens where there is none.
Result<> dropOrderKey(Database& catalogue);

}  // namespace kv
