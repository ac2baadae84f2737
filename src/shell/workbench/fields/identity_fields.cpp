#include "shell/workbench/fields/identity_fields.h"

#include <algorithm>

#include "shell/workbench/fields/field_store.h"
#include "store/catalogue/shop_identity.h"

namespace kv {

bool isIdentityField(const Editor& editor) {
  return std::ranges::find(identityColumns, editor.column) != identityColumns.end();
}

std::string identityText(CatalogueSets& sets, const Editor& editor) {
  auto text = readIdentity(sets.session().catalogue, editor.column);
  return text ? *text : std::string();
}

Result<> storeIdentity(CatalogueSets& sets, UndoHistory& history, const Editor& editor, const std::string& text) {
  Database& catalogue = sets.session().catalogue;
  if (auto prepared = prepareIdentity(catalogue); !prepared) return prepared;
  return history.record("Modifica " + plainLabel(editor.label),
                        [&] { return writeIdentity(catalogue, editor.column, text); });
}

}  // namespace kv
