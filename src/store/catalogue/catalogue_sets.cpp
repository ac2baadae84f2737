#include "store/catalogue/catalogue_sets.h"

#include <algorithm>
#include <limits>

namespace kv {

Result<> CatalogueSets::bind() {
  auto generale = readSettings(session_);
  if (!generale) return fail(generale.error());
  auto categorie = readDepartments(session_);
  if (!categorie) return fail(categorie.error());
  auto following = readFollowing(session_, *categorie);
  if (!following) return fail(following.error());
  generale_ = std::move(*generale);
  categorie_ = std::move(*categorie);
  fratelli_ = std::move(following->fratelli);
  articoli_ = std::move(following->articoli);
  departmentArticles_ = -1;
  return {};
}

void CatalogueSets::release() {
  articoli_.reset();
  fratelli_.reset();
  categorie_.reset();
  generale_.reset();
  tree_.clear();
  departmentArticles_ = -1;
}

Result<> CatalogueSets::CambiaLingua(int language) {
  auto at = cursors();
  if (!at) return fail(at.error());
  const int before = session_.currentLanguage;
  session_.currentLanguage = std::clamp(language, 1, std::max(session_.languageCount, 1));
  auto generale = readSettings(session_);
  auto lists = generale ? readLists(session_, *at) : Result<CatalogueLists>(fail(generale.error()));
  if (!lists) {
    session_.currentLanguage = before;
    return fail(lists.error());
  }
  lists->generale = std::move(*generale);
  show(std::move(*lists));
  return {};
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

Result<CatalogueCursors> CatalogueSets::cursors() {
  if (!isBound()) return CatalogueCursors{std::string(treeRoot), 0};
  for (Recordset* rows : {&*categorie_, &*articoli_}) {
    if (auto read = rows->load(); !read) return fail(read.error());
  }
  return CatalogueCursors{department(), article()};
}

void CatalogueSets::moveBack(std::size_t position) {
  if (position < categorie_->size()) {
    categorie_->moveTo(position);
  } else {
    leaveRows(*categorie_);
  }
}

Result<bool> CatalogueSets::goToDepartment(std::string_view ID) {
  const std::size_t before = categorie_->position();
  if (ID == treeRoot) {
    leaveRows(*categorie_);
  } else {
    auto found = categorie_->seek("ID", Value(std::string(ID)));
    if (!found || !*found) return found;
  }
  if (suppressed_) return true;
  auto following = readFollowing(session_, *categorie_);
  if (!following) {
    moveBack(before);
    return fail(following.error());
  }
  takeFollowing(std::move(*following));
  notifyFollowing();
  return true;
}

void CatalogueSets::takeFollowing(FollowingLists following) {
  fratelli_ = std::move(following.fratelli);
  articoli_ = std::move(following.articoli);
  departmentArticles_ = onDepartment() ? static_cast<std::int64_t>(articoli_->size()) : -1;
}

void CatalogueSets::notifyFollowing() {
  notifyStatus();
  if (!isHeard()) return;
  listener_->departmentMoved();
  listener_->articlesChanged();
  listener_->articleMoved();
}

void CatalogueSets::show(CatalogueLists lists) {
  if (lists.generale) generale_ = std::move(lists.generale);
  categorie_ = std::move(lists.categorie);
  tree_ = std::move(lists.tree);
  if (lists.articles) setArticleCount(*lists.articles);
  takeFollowing(std::move(lists.following));
  if (isHeard()) listener_->treeRebuilt();
  notifyFollowing();
}

void CatalogueSets::showArticles(Recordset articles, std::int64_t ofShop) {
  articoli_ = std::move(articles);
  departmentArticles_ = onDepartment() ? static_cast<std::int64_t>(articoli_->size()) : -1;
  if (isHeard()) listener_->articlesChanged();
  setArticleCount(ofShop);
  notifyStatus();
  if (isHeard()) listener_->articleMoved();
}

Result<bool> CatalogueSets::goToArticle(std::int64_t ID) {
  auto found = articoli_->seek("ID", Value(ID));
  if (found && *found && isHeard()) listener_->articleMoved();
  return found;
}

void CatalogueSets::goToArticleIndex(std::size_t index) {
  if (index < articoli_->size()) {
    articoli_->moveTo(index);
  } else {
    leaveRows(*articoli_);
  }
  if (isHeard()) listener_->articleMoved();
}

Result<bool> CatalogueSets::MostraArticolo(std::int64_t ID) {
  auto row = session_.catalogue.prepare("SELECT catID FROM articoli WHERE ID = ?");
  if (!row) return fail(row.error());
  row->bind(1, ID);
  auto holds = row->step();
  if (!holds || !*holds) return holds;
  const Value holder{std::string(row->text(0))};
  row->reset();
  const std::size_t before = categorie_->position();
  auto reached = categorie_->seek("ID", holder);
  if (!reached || !*reached) return reached;
  auto following = readFollowing(session_, *categorie_);
  auto found = following ? following->articoli.seek("ID", Value(ID)) : Result<bool>(fail(following.error()));
  if (!found) {
    moveBack(before);
    return found;
  }
  takeFollowing(std::move(*following));
  notifyFollowing();
  return found;
}

Result<> CatalogueSets::store(EditedSet set, std::string_view column, const Value& value) {
  Recordset& rows = edited(set);
  const bool isTitle = set == EditedSet::Categorie && column == "titolo";
  if (auto read = isTitle ? rows.load() : Result<>(); !read) return read;
  const std::string ID = isTitle ? department() : std::string();
  if (auto begun = rows.edit(); !begun) return begun;
  auto done = rows.set(column, value);
  if (done) done = rows.update();
  if (!done) {
    rows.cancelUpdate();
    return done;
  }
  if (isTitle) showTitle(ID, asText(value));
  return {};
}

void CatalogueSets::showTitle(const std::string& ID, const std::string& title) {
  const auto node = std::ranges::find(tree_, ID, &TreeNode::ID);
  if (node != tree_.end()) node->titolo = title;
  if (isHeard()) listener_->titleChanged(ID, title);
}

Result<> CatalogueSets::CostruisciAlbero(int mode) {
  auto nodes = readTree(session_);
  if (!nodes) return fail(nodes.error());
  if (mode == 1) {
    auto departments = readDepartments(session_);
    if (!departments) return fail(departments.error());
    categorie_ = std::move(*departments);
  }
  tree_ = std::move(*nodes);
  if (isHeard()) listener_->treeRebuilt();
  return {};
}

Result<> CatalogueSets::recount() {
  auto total = countAllArticles(session_);
  if (!total) return fail(total.error());
  setArticleCount(*total);
  departmentArticles_ = onDepartment() ? static_cast<std::int64_t>(articoli_->size()) : -1;
  notifyStatus();
  return {};
}

void CatalogueSets::setArticleCount(std::int64_t ofShop) {
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  session_.articleCount = static_cast<std::int32_t>(std::clamp<std::int64_t>(ofShop, 0, most));
}

std::string CatalogueSets::statusLine() const {
  const std::string total = std::to_string(session_.articleCount);
  return " Articoli: " + (departmentArticles_ < 0 ? total : std::to_string(departmentArticles_) + " /" + total);
}

void CatalogueSets::notifyStatus() {
  if (isHeard()) listener_->statusChanged();
}

}  // namespace kv
