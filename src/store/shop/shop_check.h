#pragma once
// Whether a folder holds a shop that this program can open. Nothing of the running session is touched.

#include <string>

#include "store/shop/session.h"

namespace kv {

/// Why a folder is no shop to open.
enum class ShopFault {
  None,
  NotAShop,        ///< catalog.mdb, kvftp.mdb or source.new is missing
  FolderFailure,   ///< a working folder could not be made
  EarlierProduct,  ///< the catalogue of the earlier product line
  UnknownVersion,  ///< a version that is not from 1000 to 1099
  DatabaseFailure  ///< the catalogue could not be read
};

/// The result of a check.
struct ShopCheck {
  bool ok = false;
  ShopFault kind = ShopFault::None;
  std::string message;  ///< for the user; empty when ok
};

/// Versions of the catalogue that are opened.
constexpr int firstVersion = 1000;
constexpr int lastVersion = 1099;
/// The first version that is not of the earlier product line.
constexpr int firstOwnVersion = 299;

/// What the merchant reads when a catalogue can't be opened: somebody else has it, or it is none.
const char* catalogueFailure(ErrorKind kind);

/// Whether the catalogue has every table that the workbench binds and a build reads first; Corrupt, with the name of
/// the first one that is missing.
Result<> requireTables(Database& catalogue);

/// Judges a folder. Makes `work`, `online`, `scripts` and `db` in it when they are missing. `own` is the handle of
/// the running session, or null: the catalogue it holds is read through it, because its lock excludes any other.
ShopCheck validateShop(const std::string& folder, Database* own = nullptr);

}  // namespace kv
