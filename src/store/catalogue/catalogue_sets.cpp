#include "store/catalogue/catalogue_sets.h"
#include "platform/database/recordset.h"

#include <algorithm>
#include <limits>

#include "store/schema/schema.h"

namespace kv {
namespace {

constexpr const char* untitled = "(senza nome)";
constexpr const char* departmentOrder = "ORDER BY livello, ordinamento";

std::string literal(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? "''" : std::string(1, c);
  return quoted + "'";
}

/// Takes a cursor off its rows, to the place before the first.
void leaveRows(Recordset& rows) {
  rows.moveFirst();
  if (!rows.bof()) rows.movePrevious();
}

}  // namespace

Result<Recordset> CatalogueSets::open(const std::string& table, const std::string& rest) {
  return session_.catalogue.openRecordset(SelezionaLingua(table, session_.currentLanguage, rest));
}

Result<> CatalogueSets::bind() {
  auto generale = open("generale", "");
  if (!generale) return fail(generale.error());
  auto categorie = open("categorie", departmentOrder);
  if (!categorie) return fail(categorie.error());
  generale_.emplace(std::move(*generale));
  generale_->moveFirst();
  categorie_.emplace(std::move(*categorie));
  leaveRows(*categorie_);
  if (auto articles = openArticles(); !articles) return articles;
  return openSiblings();
}

void CatalogueSets::release() {
  articoli_.reset();
  fratelli_.reset();
  categorie_.reset();
  generale_.reset();
  tree_.clear();
  departmentArticles_ = -1;
  suppressed_ = false;
}

Result<> CatalogueSets::CambiaLingua(int language) {
  const std::string wasDepartment = isBound() ? department() : std::string(treeRoot);
  const std::int64_t wasArticle = isBound() ? article() : 0;
  session_.currentLanguage = std::clamp(language, 1, std::max(session_.languageCount, 1));
  suppressed_ = true;
  auto bound = bind();
  if (bound) bound = CostruisciAlbero(0);
  suppressed_ = false;
  if (!bound) return bound;
  if (listener_ != nullptr) listener_->treeRebuilt();
  auto found = goToDepartment(wasDepartment);
  if (!found) return fail(found.error());
  if (wasArticle == 0) return {};
  auto article = goToArticle(wasArticle);
  return article ? Result<>() : fail(article.error());
}

Recordset& CatalogueSets::edited(EditedSet set) {
  switch (set) {
    case EditedSet::Categorie:
      return *categorie_;
    case EditedSet::Articoli:
      return *articoli_;
    case EditedSet::Generale:
      break;
  }
  return *generale_;
}

bool CatalogueSets::onDepartment() const { return categorie_ && !categorie_->bof() && !categorie_->eof(); }
bool CatalogueSets::onArticle() const { return articoli_ && !articoli_->bof() && !articoli_->eof(); }

std::string CatalogueSets::department() const {
  return onDepartment() ? asText(categorie_->get("ID")) : std::string(treeRoot);
}

std::int64_t CatalogueSets::article() const { return onArticle() ? asInteger(articoli_->get("ID")) : 0; }

Result<bool> CatalogueSets::goToDepartment(std::string_view ID) {
  if (ID == treeRoot) {
    leaveRows(*categorie_);
  } else {
    auto found = categorie_->seek("ID", Value(std::string(ID)));
    if (!found || !*found) return found;
  }
  if (suppressed_) return true;
  auto followed = departmentHasMoved();
  if (!followed) return fail(followed.error());
  return true;
}

Result<> CatalogueSets::departmentHasMoved() {
  if (auto articles = openArticles(); !articles) return articles;
  articoli_->moveFirst();
  if (auto siblings = requerySiblings(); !siblings) return siblings;
  tellStatus();
  if (suppressed_ || listener_ == nullptr) return {};
  listener_->departmentMoved();
  listener_->articlesChanged();
  listener_->articleMoved();
  return {};
}

Result<bool> CatalogueSets::goToArticle(std::int64_t ID) {
  auto found = articoli_->seek("ID", Value(ID));
  if (found && *found && !suppressed_ && listener_ != nullptr) listener_->articleMoved();
  return found;
}

void CatalogueSets::goToArticlePlace(std::size_t place) {
  if (place < articoli_->size()) {
    articoli_->moveTo(place);
  } else {
    leaveRows(*articoli_);
  }
  if (!suppressed_ && listener_ != nullptr) listener_->articleMoved();
}

Result<bool> CatalogueSets::MostraArticolo(std::int64_t ID) {
  auto row = session_.catalogue.prepare("SELECT catID FROM articoli WHERE ID = ?");
  if (!row) return fail(row.error());
  row->bind(1, ID);
  auto found = row->step();
  if (!found || !*found) return found;
  const std::string holder(row->text(0));
  row->reset();
  auto reached = goToDepartment(holder);
  if (!reached || !*reached) return reached;
  return goToArticle(ID);
}

Result<> CatalogueSets::store(EditedSet set, std::string_view column, const Value& value) {
  Recordset& rows = edited(set);
  if (auto begun = rows.edit(); !begun) return begun;
  auto done = rows.set(column, value);
  if (done) done = rows.update();
  if (!done) {
    rows.cancelUpdate();
    return done;
  }
  if (set != EditedSet::Categorie || column != "titolo") return {};
  const std::string ID = department();
  const std::string title = asText(value);
  const auto node = std::ranges::find(tree_, ID, &TreeNode::ID);
  if (node != tree_.end()) node->titolo = title;
  if (!suppressed_ && listener_ != nullptr) listener_->titleChanged(ID, title);
  return {};
}

Result<> CatalogueSets::CostruisciAlbero(int mode) {
  if (mode == 1) {
    if (auto again = requeryDepartments(); !again) return again;
  }
  auto rows =
      session_.catalogue.prepare("SELECT ID, genitore, titolo" +
                                 std::string(languageSuffixes[static_cast<std::size_t>(session_.currentLanguage - 1)]) +
                                 ", livello FROM categorie " + departmentOrder);
  if (!rows) return fail(rows.error());
  std::vector<TreeNode> nodes;
  for (;;) {
    auto row = rows->step();
    if (!row) return fail(row.error());
    if (!*row) break;
    nodes.push_back({std::string(rows->text(0)), std::string(rows->isNull(1) ? treeRoot : rows->text(1)),
                     std::string(rows->isNull(2) ? untitled : rows->text(2)), rows->integer(3)});
  }
  tree_ = std::move(nodes);
  if (!suppressed_ && listener_ != nullptr) listener_->treeRebuilt();
  return {};
}

Result<> CatalogueSets::openArticles() {
  auto rows = open("articoli", "WHERE catID=" + literal(department()) + " ORDER BY ordinamento");
  if (!rows) return fail(rows.error());
  articoli_.emplace(std::move(*rows));
  departmentArticles_ = onDepartment() ? static_cast<std::int64_t>(articoli_->size()) : -1;
  leaveRows(*articoli_);
  return {};
}

Result<> CatalogueSets::openSiblings() {
  // No department has the parent "#", so the list is empty while the cursor is on none.
  std::string parent = "#";
  if (onDepartment()) {
    const Value held = categorie_->get("genitore");
    parent = isNull(held) ? std::string(treeRoot) : asText(held);
  }
  const std::string condition =
      parent == treeRoot ? "(genitore='###' OR genitore IS NULL)" : "genitore=" + literal(parent);
  auto rows = open("categorie", "WHERE " + condition + " ORDER BY livello, ordinamento");
  if (!rows) return fail(rows.error());
  fratelli_.emplace(std::move(*rows));
  if (!onDepartment()) return {};
  auto found = fratelli_->seek("ID", Value(department()));
  return found ? Result<>() : fail(found.error());
}

Result<> CatalogueSets::requeryArticles() {
  if (auto opened = openArticles(); !opened) return opened;
  if (!suppressed_ && listener_ != nullptr) listener_->articlesChanged();
  return {};
}
Result<> CatalogueSets::requerySiblings() { return openSiblings(); }

Result<> CatalogueSets::requeryDepartments() {
  if (auto again = categorie_->requery(); !again) return again;
  leaveRows(*categorie_);
  return {};
}

void CatalogueSets::addArticles(std::int64_t number) {
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  session_.articleCount = static_cast<std::int32_t>(std::clamp<std::int64_t>(session_.articleCount + number, 0, most));
  if (departmentArticles_ >= 0) departmentArticles_ = std::max<std::int64_t>(departmentArticles_ + number, 0);
  tellStatus();
}

Result<> CatalogueSets::recount() {
  auto total = session_.catalogue.scalar("SELECT COUNT(*) AS nArt FROM articoli");
  if (!total) return fail(total.error());
  session_.articleCount = 0;
  const std::int64_t here = onDepartment() ? static_cast<std::int64_t>(articoli_->size()) : -1;
  departmentArticles_ = -1;
  addArticles(asInteger(*total));
  departmentArticles_ = here;
  tellStatus();
  return {};
}

std::string CatalogueSets::statusLine() const {
  const std::string total = std::to_string(session_.articleCount);
  return " Articoli: " + (departmentArticles_ < 0 ? total : std::to_string(departmentArticles_) + " /" + total);
}

void CatalogueSets::tellStatus() {
  if (!suppressed_ && listener_ != nullptr) listener_->statusChanged();
}

}  // namespace kv
