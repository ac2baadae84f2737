#pragma once
// The rollback of the two dialogs that edit whole tables: shipping and variants work on the real tables, with a copy
// of each kept aside, from which Annulla restores the rows. Rows are restored, not tables, so that keys and indexes
// stay and the history sees no difference.

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "store/catalogue/catalogue_sets.h"
#include "store/shop/session.h"

namespace kv {

/// Runs such a dialog until it is closed: true when it ended with OK. An error: it could not be opened.
using TableDialog = std::function<Result<bool>()>;
/// The same for variants. `current`: ID of the variant in the slot as a text, " " when the field is null. The ID that
/// was chosen; none when the dialog was left.
using VariantDialog = std::function<Result<std::optional<std::int64_t>>(const std::string& current)>;

class TableRollback {
 public:
  /// The engine's number of the error with which a dialog cannot be opened for want of memory.
  static constexpr int outOfMemory = 7;

  /// Both outlive this object.
  TableRollback(CatalogueSets& sets, Environment& env) : sets_(sets), env_(env) {}

  /// SalvaTabelleSpedizione (save the tables of shipping): runs the dialog; unless it ends with OK, the rows of
  /// `shippingTables` and the last automatic numbers become what they were. Want of memory releases the lists of the
  /// window, opens the dialog once more and reloads the session silently afterwards. False, and nothing runs, while a
  /// dialog of this object is open. A failure to copy opens no dialog; one to restore leaves the edits.
  Result<bool> SalvaTabelleSpedizione(const TableDialog& dialog);
  /// SalvaTabelleVarianti (save the tables of variants): the same for `variantTables`; with OK the column of the
  /// current article takes the ID that was chosen. `column`: of a slot in a price list, "opzione1_3". Nothing runs
  /// without a current article.
  Result<bool> SalvaTabelleVarianti(const std::string& column, const VariantDialog& dialog);

 private:
  using Tables = std::span<const std::string_view>;
  Result<bool> guarded(Tables tables, const TableDialog& dialog);  // sets the flag against a second opening
  Result<bool> run(Tables tables, const TableDialog& dialog);
  Result<> storeVariant(const std::string& column, std::int64_t article, std::int64_t ID);

  CatalogueSets& sets_;
  Environment& env_;
  bool running_ = false;
};

}  // namespace kv
