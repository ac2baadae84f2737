#include "shell/workbench/fields/side_editors.h"

#include "store/schema/side_tables.h"

namespace kv {
namespace {

std::string keyOfRow(CatalogueSets& sets, EditedSet set) {
  return set == EditedSet::Articoli ? std::to_string(sets.article()) : sets.department();
}

}  // namespace

bool isSideEditor(const Editor& editor) { return editor.beside && editor.set != EditedSet::Generale; }

SideField sideFieldOf(const Editor& editor) {
  if (editor.column == "contenuto") return SideField::Content;
  if (editor.column == "consegna") return SideField::Delivery;
  return editor.column == "misura" ? SideField::Measure : SideField::Maker;
}

Value sideValue(CatalogueSets& sets, const Editor& editor, int language) {
  auto value = readSideField(sets.session().catalogue, sideFieldOf(editor), keyOfRow(sets, editor.set), language);
  return value ? *value : Value(Null{});
}

int sideWidth(const Editor& editor) {
  return isSideEditor(editor) && sideFieldOf(editor) == SideField::Delivery ? deliveryWidth : 0;
}

Result<> storeSideValue(CatalogueSets& sets, const Editor& editor, const Value& value) {
  const SideField field = sideFieldOf(editor);
  // Nothing costs what has no content.
  const bool isAmount = field == SideField::Content && asMoney(value) > Money();
  const Value stored = field != SideField::Content ? value : isAmount ? Value(asMoney(value)) : Value(Null{});
  return writeSideField(sets.session().catalogue, field, keyOfRow(sets, editor.set), stored,
                        sets.session().currentLanguage);
}

std::vector<std::string> makerChoices(CatalogueSets& sets) {
  std::vector<std::string> choices{""};
  if (!sets.isBound()) return choices;
  for (std::string& name : makerNames(sets.session().catalogue)) choices.push_back(std::move(name));
  return choices;
}

}  // namespace kv
