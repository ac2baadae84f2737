// The cursors, the states that follow them, and the life of a shop in the workbench.

#include "shell/workbench/workbench.h"
#include "platform/database/recordset.h"

#include <algorithm>

#include "platform/files/files.h"
#include "store/shop/load_shop.h"
#include "store/shop/session_start.h"

namespace kv {

Workbench::Workbench(Session& session, Environment& env, WorkbenchView& view, WorkbenchPorts ports)
    : session_(session),
      env_(env),
      view_(view),
      ports_(std::move(ports)),
      sets_(session),
      history_(sets_),
      editing_(sets_, env.user,
               {[this](std::string_view key, bool enabled) { StatoComando(key, enabled); },
                [this](bool busy) { view_.showBusy(busy); }}),
      fields_(sets_, history_, ports_.decimalSeparator) {
  sets_.listen(this);
}

Workbench::~Workbench() { releaseSession(); }

void Workbench::bindSession() {
  tell(sets_.bind());
  if (sets_.isBound()) history_.begin();
}

void Workbench::releaseSession() {
  history_.end();
  sets_.release();
}

void Workbench::showShop() {
  history_.clear();
  tab_ = Tab::Departments;
  session_.currentListino = 0;
  view_.showTitle(session_.title);
  CambiaLingua(1);
  tell(sets_.recount());
  MostraLingue();
  view_.showListino(session_.currentListino);
  // What was copied in an earlier session is offered in this one.
  for (const auto& [key, table] :
       {std::pair{"incolla articolo", "cliparticoli"}, std::pair{"incolla categoria", "clipcategorie"}}) {
    const auto count = session_.catalogue.scalar(std::string("SELECT COUNT(*) FROM ") + table);
    StatoComando(key, count && asInteger(*count) > 0);
  }
  if (!sets_.tree().empty()) goToDepartment(sets_.tree().front().ID);
  AggiornaSchede();
}

void Workbench::StatoComando(std::string_view key, bool enabled) {
  const auto found = states_.find(key);
  if (found != states_.end() && found->second == enabled) return;
  states_.insert_or_assign(std::string(key), enabled);
  view_.enableKey(key, enabled);
  view_.entriesChanged();
}

bool Workbench::isEnabled(std::string_view key) const {
  if (key.empty()) return true;
  const auto found = states_.find(key);
  return found != states_.end() && found->second;
}

void Workbench::AggiornaSchede() {
  view_.showTab(tab_);
  refreshTabKeys();
  refreshStates();
  view_.entriesChanged();
}

void Workbench::selectTab(Tab tab) {
  view_.finishEdits();
  tab_ = tab;
  AggiornaSchede();
}

void Workbench::refreshTabKeys() {
  const bool tree = tab_ == Tab::Departments || tab_ == Tab::Articles;
  StatoComando("espansione", tree && !sets_.tree().empty());
  StatoComando(ftpFolders, std::ranges::all_of(std::array{"hostname", "username", "password"}, [this](const char* c) {
                 return fields_.settingText(c).find_first_not_of(' ') != std::string::npos;
               }));
}

void Workbench::refreshPictureKeys() {
  for (const ImageKey& image : imageKeys()) {
    EditedSet set = EditedSet::Generale;
    if (image.subject == CommandSubject::Article) set = EditedSet::Articoli;
    if (image.subject == CommandSubject::Department) set = EditedSet::Categorie;
    StatoComando(image.key, !fields_.picture(set, image.column.back() - '0').empty());
  }
}

void Workbench::refreshArticleKeys() {
  for (const std::string_view key : articleKeys()) StatoComando(key, sets_.onArticle());
}

void Workbench::refreshDepartmentKeys() {
  for (const std::string_view key : departmentKeys()) StatoComando(key, sets_.onDepartment());
}

void Workbench::refreshStates() {
  refreshArticleKeys();
  refreshDepartmentKeys();
  refreshPictureKeys();
}

void Workbench::refreshAll() {
  refreshStates();
  refreshTabKeys();
  for (const EditedSet set : {EditedSet::Generale, EditedSet::Categorie, EditedSet::Articoli}) view_.fieldsChanged(set);
  view_.showStatus(session_.statusLine);
  view_.entriesChanged();
}

void Workbench::departmentMoved() {
  std::string model = sets_.onDepartment() ? asText(sets_.dataCategorie().get("template")) : std::string();
  if (model.empty() && !session_.models.empty()) model = session_.models.front();
  editing_.showModel(std::move(model));
  refreshDepartmentKeys();
  refreshPictureKeys();
  view_.selectDepartment(sets_.department());
  view_.fieldsChanged(EditedSet::Categorie);
}

void Workbench::articleMoved() {
  refreshArticleKeys();
  refreshPictureKeys();
  view_.selectArticle();
  view_.fieldsChanged(EditedSet::Articoli);
}

void Workbench::articlesChanged() { view_.articlesChanged(); }

void Workbench::treeRebuilt() {
  view_.rebuildTree();
  refreshTabKeys();
}

void Workbench::titleChanged(const std::string& department, const std::string& title) {
  view_.departmentTitle(department, title);
}

void Workbench::statusChanged() { view_.showStatus(session_.statusLine); }

void Workbench::CambiaLingua(int language) {
  view_.finishEdits();
  view_.showBusy(true);
  const auto changed = sets_.CambiaLingua(language);
  view_.showBusy(false);
  tell(changed);
  view_.showLanguages();
  refreshAll();
}

void Workbench::MostraLingue() {
  view_.showLanguages();
  view_.entriesChanged();
}

void Workbench::selectListino(int listino) {
  view_.finishEdits();
  session_.currentListino = std::clamp(listino, 0, listini - 1);
  view_.showListino(session_.currentListino);
  view_.articlesChanged();
  refreshAll();
}

void Workbench::goToDepartment(const std::string& ID) {
  view_.finishEdits();
  if (!isOpen() || (ID == sets_.department() && sets_.onDepartment())) return;
  const auto found = sets_.goToDepartment(ID);
  if (!found) tell(fail(found.error()));
}

void Workbench::goToArticlePlace(std::size_t place) {
  view_.finishEdits();
  if (!isOpen() || (sets_.onArticle() && sets_.dataArticoli().position() == place)) return;
  sets_.goToArticlePlace(place);
}

void Workbench::MostraArticolo(std::int64_t ID) {
  view_.finishEdits();
  const auto found = sets_.MostraArticolo(ID);
  if (!found) return tell(fail(found.error()));
  if (*found) selectTab(Tab::Articles);
}

bool Workbench::canMoveNode(const std::string& key, const std::string& nuovoParent) const {
  if (key.empty() || key == treeRoot || key == nuovoParent) return false;
  const auto& nodes = sets_.tree();
  const auto nodeOf = [&](const std::string& ID) { return std::ranges::find(nodes, ID, &TreeNode::ID); };
  if (nodeOf(key) == nodes.end()) return false;
  // A tree of n departments is at most n deep, whatever its rows say.
  std::size_t steps = 0;
  for (std::string each = nuovoParent; each != treeRoot && steps <= nodes.size(); ++steps) {
    const auto node = nodeOf(each);
    if (node == nodes.end() || node->genitore == key) return false;
    each = node->genitore;
  }
  return true;
}

void Workbench::SpostaNodo(const std::string& key, const std::string& nuovoParent) {
  view_.finishEdits();
  if (!canMoveNode(key, nuovoParent)) return;
  view_.showBusy(true);
  const auto moved = history_.record("Trascina reparto", [&] { return editing_.SpostaNodo(key, nuovoParent); });
  view_.showBusy(false);
  tell(moved);
  view_.entriesChanged();
}

void Workbench::leaveField(const Editor& editor, const std::string& text) {
  if (!isOpen()) return;
  const FieldStore::Outcome outcome = fields_.leave(editor, text);
  tell(outcome.done);
  view_.fieldsChanged(editor.set);
  if (!outcome.written) return;
  if (editor.column == "template") editing_.showModel(text);
  refreshTabKeys();
  view_.entriesChanged();
  if (!outcome.note.empty()) env_.user.message(outcome.note, Icon::Exclamation);
}

bool Workbench::isEditorEnabled(const Editor& editor) {
  if (editor.set == EditedSet::Articoli) return isEnabled(articleMask);
  if (editor.set == EditedSet::Categorie) return isEnabled(departmentMask);
  const std::string_view column = editor.column;
  if (column == "valuta2" || column == "decimali2" || column == "cambio" || column == reverseRateField) {
    return fields_.setting("usa_cambio");
  }
  if (column == "reglist") return fields_.setting("regobbl") || fields_.setting("regprices");
  if (column == "perl") return !fields_.setting("serverNT");
  return isOpen();
}

std::vector<std::string> Workbench::choicesOf(const Editor& editor) {
  if (editor.source == ChoiceSource::Models) return session_.models;
  if (editor.source == ChoiceSource::RelatedWords) return fields_.relatedWords();
  std::vector<std::string> choices;
  for (std::string_view rest = editor.choices; !rest.empty();) {
    const std::size_t end = rest.find('|');
    choices.emplace_back(rest.substr(0, end));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return choices;
}

std::string Workbench::picturePath(const Editor& editor) {
  const std::string name = fields_.picture(editor.set, editor.number);
  return name.empty() ? name : joinPath(joinPath(session_.ShopFolder, "work"), name);
}

void Workbench::tell(const Result<>& outcome) {
  if (outcome) return;
  env_.user.message(outcome.error().what, Icon::Critical);
}

}  // namespace kv
