#pragma once
// The editors whose values are not columns of the current row but kept in tables of their own (side_fields.h).

#include <string>
#include <vector>

#include "shell/workbench/fields/editor_table.h"
#include "store/catalogue/side_fields.h"

namespace kv {

/// Whether an editor of an article or a department is one of them.
bool isSideEditor(const Editor& editor);

/// The field that such an editor writes.
SideField sideFieldOf(const Editor& editor);

/// The stored value of the current row's field in a language; Null on no row, or when it can't be read.
Value sideValue(CatalogueSets& sets, const Editor& editor, int language);

/// Most characters of a text that such an editor takes; 0 for all other editors.
int sideWidth(const Editor& editor);

/// Stores the field of the current row in the language that is being edited; its table must be there. Failures as
/// writeSideField.
Result<> storeSideValue(CatalogueSets& sets, const Editor& editor, const Value& value);

/// What may be chosen as maker: nothing, or one of the shop's.
std::vector<std::string> makerChoices(CatalogueSets& sets);

}  // namespace kv
