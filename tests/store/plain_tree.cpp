#include "store/plain_tree.h"
#include "support/value_of.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

namespace kv::test {
namespace {

const std::string root = "###";

PlainField fieldOf(const Statement& row, int column) {
  return row.isNull(column) ? PlainField() : PlainField(std::string(row.text(column)));
}

std::string shown(const PlainField& field) { return field.value_or("null"); }

/// The numbers of a map's rows that belong to a list, by their order and then by their number.
template <class Rows, class Belongs>
std::vector<std::int64_t> inOrder(const Rows& rows, Belongs belongs) {
  std::vector<std::int64_t> list;
  for (const auto& [number, row] : rows) {
    if (belongs(row)) list.push_back(number);
  }
  std::ranges::stable_sort(list, {}, [&](std::int64_t number) { return rows.at(number).order; });
  return list;
}

/// The order of a new row after or before the current one; rows with that number move up one by one.
template <class Rows>
std::int64_t makePlace(Rows& rows, const std::vector<std::int64_t>& list, std::int64_t current, bool after) {
  if (list.empty()) return 1;
  const auto orderOf = [&](std::size_t place) -> std::int64_t& { return rows.at(list[place]).order; };
  const auto found = std::ranges::find(list, current);
  if (found == list.end()) return after ? orderOf(list.size() - 1) + 1 : orderOf(0) - 1;
  const auto place = static_cast<std::size_t>(found - list.begin());
  std::int64_t order = orderOf(place) + (after ? 1 : -1);
  std::size_t next = after ? place + 1 : place;
  if (after ? next == list.size() || orderOf(next) > order : place == 0 || orderOf(place - 1) < order) return order;
  if (!after) order = orderOf(place - 1) + 1;
  for (std::int64_t counter = order + 1; next < list.size(); ++next) orderOf(next) = counter++;
  return order;
}

template <class Rows>
void exchange(Rows& rows, const std::vector<std::int64_t>& list, std::int64_t current, int direction) {
  const auto place = std::ranges::find(list, current) - list.begin() + direction;
  if (place < 0 || place >= std::ssize(list)) return;
  std::swap(rows.at(current).order, rows.at(list[static_cast<std::size_t>(place)]).order);
}

}  // namespace

void PlainTree::read(Database& catalogue) {
  departments_.clear();
  articles_.clear();
  auto rows = catalogue.prepare(queries[0]);
  ASSERT_TRUE(rows);
  while (valueOf(rows->step())) {
    departments_[rows->integer(0)] = {rows->integer(0),
                                      std::string(rows->text(1)),
                                      std::string(rows->text(3)),
                                      rows->integer(4),
                                      rows->integer(5),
                                      rows->flag(6),
                                      {fieldOf(*rows, 7), fieldOf(*rows, 8)},
                                      fieldOf(*rows, 9),
                                      fieldOf(*rows, 10)};
    lastDepartment_ = std::max(lastDepartment_, rows->integer(0));
  }
  rows = catalogue.prepare(queries[1]);
  ASSERT_TRUE(rows);
  while (valueOf(rows->step())) {
    articles_[rows->integer(0)] = {rows->integer(0),
                                   std::string(rows->text(1)),
                                   rows->integer(2),
                                   {fieldOf(*rows, 3), fieldOf(*rows, 4)},
                                   fieldOf(*rows, 5)};
    lastArticle_ = std::max(lastArticle_, rows->integer(0));
  }
}

std::string PlainTree::asText() const {
  std::string text;
  for (const auto& [number, row] : departments_) {
    for (const std::string& field :
         {std::to_string(number), row.ID, row.ID, row.parent, std::to_string(row.level), std::to_string(row.order),
          std::string(row.hasChildren ? "1" : "0"), shown(row.titles[0]), shown(row.titles[1]), shown(row.sideBySide)})
      text += field + "|";
    text += shown(row.model) + "\n";
  }
  for (const auto& [ID, row] : articles_) {
    for (const std::string& field :
         {std::to_string(ID), row.catID, std::to_string(row.order), shown(row.titles[0]), shown(row.titles[1])})
      text += field + "|";
    text += shown(row.price) + "\n";
  }
  return text;
}

std::vector<std::int64_t> PlainTree::articlesOf(const std::string& department) const {
  return inOrder(articles_, [&](const PlainArticle& row) { return row.catID == department; });
}

std::vector<std::int64_t> PlainTree::childrenOf(const std::string& parent) const {
  return inOrder(departments_, [&](const PlainDepartment& row) { return row.parent == parent; });
}

const PlainDepartment* PlainTree::find(const std::string& ID) const {
  for (const auto& [number, row] : departments_) {
    if (row.ID == ID) return &row;
  }
  return nullptr;
}

PlainDepartment* PlainTree::editable(const std::string& ID) {
  const PlainDepartment* found = find(ID);
  return found == nullptr ? nullptr : &departments_.at(found->number);
}

PlainCursors PlainTree::atFirstArticle(const std::string& department) const {
  const auto list = articlesOf(department);
  return {department, list.empty() ? 0 : list.front()};
}

PlainCursors PlainTree::insertArticle(const PlainCursors& at, bool after) {
  if (find(at.department) == nullptr) return at;
  const std::int64_t order = makePlace(articles_, articlesOf(at.department), at.article, after);
  ++lastArticle_;
  articles_[lastArticle_] = {lastArticle_, at.department, order, {}, {}};
  return {at.department, lastArticle_};
}

PlainDepartment& PlainTree::addDepartment(const std::string& parent, std::int64_t level, std::int64_t order) {
  std::array<char, 32> key{};
  std::snprintf(key.data(), key.size(), "cat%03lld", static_cast<long long>(++lastDepartment_));
  PlainDepartment& row = departments_[lastDepartment_];
  row = {lastDepartment_, key.data(), parent, level, order, false, {}, {}, model_};
  row.titles[language_] = "Nuovo Reparto";
  return row;
}

PlainCursors PlainTree::insertDepartment(const PlainCursors& at, bool after) {
  const PlainDepartment* current = find(at.department);
  if (current == nullptr) return at;
  const std::int64_t order = makePlace(departments_, childrenOf(current->parent), current->number, after);
  PlainDepartment& made = addDepartment(current->parent, current->level, order);
  made.sideBySide = " ";
  return {made.ID, 0};
}

PlainCursors PlainTree::addUnder(const PlainCursors& at) {
  PlainDepartment* above = editable(at.department);
  const std::string parent = above == nullptr ? root : at.department;
  const auto list = childrenOf(parent);
  const std::int64_t order = list.empty() ? 1 : departments_.at(list.back()).order + 1;
  if (above != nullptr) above->hasChildren = true;
  return {addDepartment(parent, above == nullptr ? 1 : above->level + 1, order).ID, 0};
}

PlainCursors PlainTree::moveArticle(const PlainCursors& at, int direction) {
  if (at.article != 0) exchange(articles_, articlesOf(at.department), at.article, direction);
  return at;
}

PlainCursors PlainTree::moveDepartment(const PlainCursors& at, int direction) {
  const PlainDepartment* current = find(at.department);
  if (current == nullptr) return at;
  const std::string before = asText();
  exchange(departments_, childrenOf(current->parent), current->number, direction);
  return asText() == before ? at : atFirstArticle(at.department);
}

PlainCursors PlainTree::deleteArticle(const PlainCursors& at, bool yes) {
  if (at.article == 0 || !yes) return at;
  auto list = articlesOf(at.department);
  const auto place = static_cast<std::size_t>(std::ranges::find(list, at.article) - list.begin());
  articles_.erase(at.article);
  list.erase(list.begin() + static_cast<std::ptrdiff_t>(place));
  return {at.department, list.empty() ? 0 : list[std::min(place, list.size() - 1)]};
}

PlainCursors PlainTree::deleteDepartment(const PlainCursors& at, bool yes) {
  const PlainDepartment* current = find(at.department);
  if (current == nullptr || current->hasChildren || departments_.size() < 2) return at;
  if (!articlesOf(at.department).empty() && !yes) return at;
  const std::string parent = current->parent;
  std::erase_if(articles_, [&](const auto& row) { return row.second.catID == at.department; });
  departments_.erase(current->number);
  if (PlainDepartment* above = editable(parent)) above->hasChildren = !childrenOf(parent).empty();
  return atFirstArticle(parent);
}

PlainCursors PlainTree::copyArticle(const PlainCursors& at) {
  if (at.article != 0) articleClipboard_ = {articles_.at(at.article)};
  return at;
}

PlainCursors PlainTree::copyDepartment(const PlainCursors& at, bool yes) {
  const PlainDepartment* current = find(at.department);
  if (current == nullptr) return at;
  const auto list = articlesOf(at.department);
  clipboardBringsArticles_ = yes && !list.empty();
  if (clipboardBringsArticles_) articleClipboard_.clear();
  for (std::size_t i = 0; clipboardBringsArticles_ && i < list.size(); ++i)
    articleClipboard_.push_back(articles_.at(list[i]));
  departmentClipboard_ = *current;
  return at;
}

PlainCursors PlainTree::pasteArticles(const PlainCursors& at, bool yes) {
  if (find(at.department) == nullptr || articleClipboard_.empty()) return at;
  if (articleClipboard_.size() > 1 && !yes) return at;
  PlainCursors cursors = at;
  for (const PlainArticle& clipped : articleClipboard_) {
    cursors = insertArticle(cursors, true);
    PlainArticle& made = articles_.at(cursors.article);
    made.titles = clipped.titles;
    made.price = clipped.price;
  }
  return cursors;
}

PlainCursors PlainTree::pasteDepartment(const PlainCursors& at, bool yes) {
  if (!departmentClipboard_) return at;
  const PlainCursors made = find(at.department) == nullptr ? addUnder(at) : insertDepartment(at, false);
  PlainDepartment& row = *editable(made.department);
  row.titles = departmentClipboard_->titles;
  row.sideBySide = departmentClipboard_->sideBySide;
  row.model = departmentClipboard_->model;
  if (clipboardBringsArticles_) pasteArticles(made, yes);
  return atFirstArticle(made.department);
}

bool PlainTree::isUnder(std::string key, const std::string& ancestor) const {
  while (key != root && key != ancestor) key = find(key)->parent;
  return key == ancestor;
}

PlainCursors PlainTree::drag(const PlainCursors& at, const std::string& key, const std::string& target) {
  if (find(key) == nullptr || (target != root && isUnder(target, key))) return at;
  // The order in which the tree was built: level by level, each in its order.
  std::vector<std::int64_t> nodes;
  for (const auto& [number, row] : departments_) nodes.push_back(number);
  std::ranges::stable_sort(nodes, {}, [&](std::int64_t number) {
    const PlainDepartment& row = departments_.at(number);
    return std::pair(row.level, row.order);
  });
  editable(key)->parent = target;
  std::int64_t index = 1;  // of the root
  for (const std::int64_t number : nodes) {
    PlainDepartment& row = departments_.at(number);
    row.order = ++index;
    row.level = 1;
    for (std::string above = row.parent; above != root; above = find(above)->parent) ++row.level;
    row.hasChildren = !childrenOf(row.ID).empty();
  }
  return atFirstArticle(key);
}

PlainCursors PlainTree::setArticleTitle(const PlainCursors& at, const std::string& title) {
  if (at.article != 0) articles_.at(at.article).titles[language_] = title;
  return at;
}

PlainCursors PlainTree::setPrice(const PlainCursors& at, const std::string& tenThousandths) {
  if (at.article != 0) articles_.at(at.article).price = tenThousandths;
  return at;
}

PlainCursors PlainTree::setDepartmentTitle(const PlainCursors& at, const std::string& title) {
  if (PlainDepartment* row = editable(at.department)) row->titles[language_] = title;
  return at;
}

}  // namespace kv::test
