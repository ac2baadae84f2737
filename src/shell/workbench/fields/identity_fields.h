#pragma once
// The fields of the merchant's identity, which are kept beside the settings (shop_identity.h).

#include <string>

#include "shell/workbench/fields/editor_table.h"
#include "store/catalogue/undo_history.h"

namespace kv {

/// Whether an editor writes one of them.
bool isIdentityField(const Editor& editor);

/// The stored text; empty when it can't be read.
std::string identityText(CatalogueSets& sets, const Editor& editor);

/// Stores a text as one step of the history, named after the label. Failures as prepareIdentity and writeIdentity.
Result<> storeIdentity(CatalogueSets& sets, UndoHistory& history, const Editor& editor, const std::string& text);

}  // namespace kv
