// The cursors, the states that follow them, and the life of a shop in the workbench.

#include "shell/workbench/workbench.h"

#include <algorithm>
#include <array>

#include "platform/database/recordset.h"
#include "platform/files/files.h"
#include "platform/ports/failure_text.h"
#include "platform/text/text.h"
#include "shell/workbench/busy.h"
#include "shell/workbench/fields/current_row.h"
#include "shell/workbench/fields/related_words.h"
#include "shell/workbench/fields/row_picture.h"
#include "shell/workbench/fields/side_editors.h"
#include "shell/workbench/fields/vat_price.h"
#include "store/shop/backup_copies.h"
#include "store/shop/load_shop.h"
#include "store/shop/session_facts.h"
#include "store/shop/session_start.h"

namespace kv {

Workbench::Workbench(Session& session, Environment& env, WorkbenchView& view, WorkbenchPorts ports)
    : session_(session),
      env_(env),
      view_(view),
      ports_(std::move(ports)),
      sets_(session),
      history_(sets_, [this] { return readSessionFacts(session_, env_.applicationFolder); }),
      editing_(sets_, env.user,
               {[this](std::string_view key, bool enabled) { commands_.StatoComando(key, enabled); },
                [this](bool busy) { view_.showBusy(busy); }}),
      fields_(sets_, history_, ports_.decimalSeparator),
      commands_(std::move(ports_.commands),
                {*this, session_, env_, view_, ports_, sets_, history_, editing_, fields_}) {
  sets_.listen(this);
}

Workbench::~Workbench() { releaseSession(); }

void Workbench::bindSession() {
  showError(sets_.bind());
  if (!sets_.isBound()) return;
  stepLog_ = std::make_unique<StepLog>(session_.ShopFolder, env_.clock);
  history_.listen(stepLog_.get());
  history_.begin();
}

void Workbench::releaseSession() {
  history_.end();
  history_.listen(nullptr);
  stepLog_.reset();
  sets_.release();
}

void Workbench::showShop() {
  history_.clear();
  builtAt_ = 0;
  tab_ = Tab::Departments;
  fields_.selectListino(0);
  view_.showTitle("Korvane - " + session_.ShopFolder);
  CambiaLingua(1);
  showError(sets_.recount());
  MostraLingue();
  view_.showListino(listino());
  // What was copied in an earlier session is offered in this one.
  for (const auto& [key, table] :
       {std::pair{"incolla articolo", "cliparticoli"}, std::pair{"incolla categoria", "clipcategorie"}}) {
    const auto count = session_.catalogue.scalar(std::string("SELECT COUNT(*) FROM ") + table);
    commands_.StatoComando(key, count && asInteger(*count) > 0);
  }
  if (!sets_.tree().empty()) goToDepartment(sets_.tree().front().ID);
  AggiornaSchede();
  view_.focusTree();
}

void Workbench::AggiornaSchede() {
  view_.showTab(tab_);
  refreshTabKeys();
  refreshStates();
  view_.entriesChanged();
}

void Workbench::selectTab(Tab tab) {
  if (!view_.finishEdits()) return view_.showTab(tab_);
  tab_ = tab;
  AggiornaSchede();
}

void Workbench::hideDetails(bool hidden) {
  detailsHidden_ = hidden;
  view_.hideDetails(hidden);
}

void Workbench::refreshTabKeys() {
  const bool tree = tab_ == Tab::Departments || tab_ == Tab::Articles;
  commands_.StatoComando(expansionKey, tree && !sets_.tree().empty());
  commands_.StatoComando(
      ftpFolders, std::ranges::all_of(std::array{"hostname", "username", "password"}, [this](const char* column) {
        const std::string text = settingText(sets_, column);
        return text.find_first_not_of(' ') != std::string::npos;
      }));
}

void Workbench::refreshStates() {
  commands_.refreshKeys();
  commands_.StatoComando(articleMask, sets_.onArticle());
  commands_.StatoComando(departmentMask, sets_.onDepartment());
}

void Workbench::refreshAll() {
  refreshStates();
  refreshTabKeys();
  for (const EditedSet set : {EditedSet::Generale, EditedSet::Categorie, EditedSet::Articoli}) view_.fieldsChanged(set);
  view_.showStatus(sets_.statusLine());
  view_.entriesChanged();
}

void Workbench::departmentMoved() {
  std::string model = sets_.onDepartment() ? asText(sets_.dataCategorie().get("template")) : std::string();
  if (model.empty() && !session_.models.empty()) model = session_.models.front();
  editing_.showModel(std::move(model));
  commands_.refreshKeys();
  commands_.StatoComando(departmentMask, sets_.onDepartment());
  view_.selectDepartment(sets_.department());
  view_.fieldsChanged(EditedSet::Categorie);
}

void Workbench::articleMoved() {
  commands_.refreshKeys();
  commands_.StatoComando(articleMask, sets_.onArticle());
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

void Workbench::statusChanged() { view_.showStatus(sets_.statusLine()); }

void Workbench::CambiaLingua(int language) {
  if (!view_.finishEdits()) return view_.showLanguages();
  Result<> changed;
  {
    const BusyGuard busy(view_);
    changed = sets_.CambiaLingua(language);
  }
  showError(changed);
  view_.showLanguages();
  refreshAll();
}

void Workbench::MostraLingue() {
  view_.showLanguages();
  view_.entriesChanged();
}

void Workbench::selectListino(int listino) {
  if (!view_.finishEdits()) return view_.showListino(fields_.listino());
  fields_.selectListino(std::clamp(listino, 0, listini - 1));
  view_.showListino(fields_.listino());
  view_.articlesChanged();
  refreshAll();
}

void Workbench::goToDepartment(const std::string& ID) {
  if (!view_.finishEdits()) return view_.selectDepartment(sets_.department());
  if (!isOpen() || (ID == sets_.department() && sets_.onDepartment())) return;
  const auto found = sets_.goToDepartment(ID);
  if (!found) showError(fail(found.error()));
}

void Workbench::goToArticleAt(std::size_t index) {
  if (!view_.finishEdits()) return view_.selectArticle();
  if (!isOpen() || (sets_.onArticle() && sets_.dataArticoli().position() == index)) return;
  sets_.goToArticleIndex(index);
}

void Workbench::goToArticle(std::int64_t ID) {
  if (!view_.finishEdits()) return view_.selectArticle();
  if (!isOpen() || ID == sets_.article()) return;
  const auto found = sets_.goToArticle(ID);
  if (!found) showError(fail(found.error()));
}

void Workbench::MostraArticolo(std::int64_t ID) {
  if (!view_.finishEdits()) return;
  const auto found = sets_.MostraArticolo(ID);
  if (!found) return showError(fail(found.error()));
  if (*found) selectTab(Tab::Articles);
}

Workbench::LeftField Workbench::leaveField(const Editor& editor, const std::string& text) {
  if (!isOpen()) return {};
  const FieldStore::Reading reading = fields_.read(editor, text);
  if (const std::string& refusal = reading.field.refusal; !refusal.empty()) {
    view_.fieldsChanged(editor.set);
    return {true, refusal};
  }
  const FieldStore::Outcome outcome = fields_.leave(editor, reading);
  if (!outcome.done) return refuseField(editor, text, outcome.done.error());
  unsaved_.erase(&editor);
  view_.fieldsChanged(editor.set);
  const std::string& mark = reading.field.note;
  if (!outcome.written) return {true, mark};
  if (editor.column == "template") editing_.showModel(text);
  refreshTabKeys();
  view_.entriesChanged();
  if (!outcome.note.empty()) env_.user.message(outcome.note, Icon::Exclamation);
  return {true, mark};
}

/// A value that the column doesn't take goes back to the former one. Any other failure may pass: tree and list show
/// what is stored, the field what was typed.
Workbench::LeftField Workbench::refuseField(const Editor& editor, const std::string& text, const Error& error) {
  const std::string message = failureText(error, plainLabel(editor.label));
  if (error.kind == ErrorKind::TextInNumber || error.kind == ErrorKind::Malformed) {
    view_.fieldsChanged(editor.set);
    env_.user.message(message, Icon::Critical);
    return {true, message};
  }
  std::string& known = unsaved_[&editor];
  const bool isTold = !known.empty() && known == text;
  known = text;
  view_.fieldsChanged(editor.set);
  if (editor.kind == FieldKind::DepartmentTitle) view_.departmentTitle(sets_.department(), fields_.shown(editor));
  if (!isTold) env_.user.message(message, Icon::Critical);
  return {false, "Non salvato. " + message};
}

bool Workbench::mayLeave() {
  if (view_.finishEdits()) return true;
  return env_.user.question(
             {"Alcune modifiche non sono state salvate e andranno perse.\nSi desidera uscire ugualmente?",
              Buttons::YesNo, Answer::No, Icon::Exclamation}) == Answer::Yes;
}

bool Workbench::isEditorEnabled(const Editor& editor) {
  if (editor.set == EditedSet::Articoli) return commands_.isEnabled(articleMask);
  if (editor.set == EditedSet::Categorie) return commands_.isEnabled(departmentMask);
  const std::string_view column = editor.column;
  if (column == "valuta2" || column == "decimali2" || column == "cambio" || column == reverseRateField) {
    return isSettingOn(sets_, "usa_cambio");
  }
  if (column == "reglist") return isSettingOn(sets_, "regobbl") || isSettingOn(sets_, "regprices");
  if (column == "perl") return !isSettingOn(sets_, "serverNT");
  return isOpen();
}

std::vector<std::string> Workbench::choicesOf(const Editor& editor) {
  if (editor.source == ChoiceSource::Models) return session_.models;
  if (editor.source == ChoiceSource::RelatedWords) return relatedWords(sets_);
  if (editor.source == ChoiceSource::Makers) return makerChoices(sets_);
  std::vector<std::string> choices;
  for (std::string_view rest = editor.choices; !rest.empty();) {
    const std::size_t end = rest.find('|');
    choices.emplace_back(rest.substr(0, end));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return choices;
}

std::string Workbench::besideField(const Editor& editor, const std::string& text) {
  if (editor.kind != FieldKind::Price || !isOpen() || !sets_.onDepartment()) return {};
  const std::string price =
      priceWithVat(storedNumber(text, decimalSeparator()), asText(sets_.dataCategorie().get("iva")));
  return price.empty() ? price : shownNumber(price, decimalSeparator()) + " con IVA";
}

std::string Workbench::buildStatus() {
  if (!sets_.isBound()) return {};
  constexpr std::int64_t nanoseconds = 1'000'000'000;
  const std::string history = stepLog_ != nullptr && stepLog_->failure() ? " - cronologia non scritta" : "";
  const auto built = fileStamp(entryPath(session_.ShopFolder, "kvftp.dat"));
  if (!built) return "Mai costruito" + history;
  if (built->changedAt != builtAt_) {
    builtAt_ = built->changedAt;
    changesBefore_ = history_.changes();
  }
  const std::uint64_t since = history_.changes() - changesBefore_;
  std::string text = "Costruito il " + formatTime(builtAt_ / nanoseconds);
  if (since > 0) text += since == 1 ? ", poi una modifica" : ", poi " + std::to_string(since) + " modifiche";
  return text + history;
}

std::string Workbench::picturePath(const Editor& editor) {
  const std::string name = pictureName(sets_, {editor.set, editor.number});
  return name.empty() ? name : entryPath(entryPath(session_.ShopFolder, "work"), name);
}

void Workbench::showError(const Result<>& outcome) {
  if (outcome) return;
  env_.user.message(failureText(outcome.error()), Icon::Critical);
}

void Workbench::editThrough(std::string_view step, const WorkbenchDialogs::Dialog& dialog) {
  if (!view_.finishEdits()) return;
  bool changed = false;
  showError(history_.record(std::string(step), [&]() -> Result<> {
    changed = dialog();
    return {};
  }));
  if (!changed) return;
  CambiaLingua(session_.currentLanguage);
  // An import brings articles.
  showError(sets_.recount());
}

void Workbench::openDocument(const std::string& file, const std::string& folder) {
  if (!ports_.open) return;
  if (ApriDocumento(file, folder, env_.settings, ports_.open)) {
    env_.user.message("Impossibile aprire " + file, Icon::Exclamation);
  }
}

void Workbench::openHelp(std::string_view page) {
  openDocument(joinPath(joinPath(env_.applicationFolder, "help"), page));
}

}  // namespace kv
