#pragma once
// Departments and articles as plain values, and the merchant's commands computed on them one row at a time, without a
// statement: what the commands of the catalogue are held against.

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/database/database.h"
#include "platform/database/value.h"

namespace kv::test {

/// A field as the engine's text; empty for null.
using PlainField = std::optional<std::string>;

struct PlainArticle {
  std::int64_t ID = 0;
  std::string catID;
  std::int64_t order = 0;
  std::array<PlainField, 2> titles;  ///< of two languages
  PlainField price;                  ///< in ten-thousandths
};

struct PlainDepartment {
  std::int64_t number = 0;
  std::string ID, parent;
  std::int64_t level = 1;
  std::int64_t order = 0;
  bool hasChildren = false;
  std::array<PlainField, 2> titles;
  PlainField sideBySide, model;
};

/// The positions of the cursors: "###" and 0 for none.
struct PlainCursors {
  std::string department;
  std::int64_t article = 0;
  friend bool operator==(const PlainCursors&, const PlainCursors&) = default;
};

class PlainTree {
 public:
  /// The queries whose rows asText() gives, one after the other.
  static constexpr std::array<const char*, 2> queries{
      "SELECT contatore, ID, pagina, genitore, livello, ordinamento, COALESCE(hafigli, 0), titolo, titolo_l2, "
      "affiancati, template FROM categorie ORDER BY contatore",
      "SELECT ID, catID, ordinamento, titolo, titolo_l2, prezzo FROM articoli ORDER BY ID"};

  /// Takes over the rows of a catalogue. Clipboard and the numbers given so far stay.
  void read(Database& catalogue);
  std::string asText() const;

  /// The page model that new departments start with.
  void showModel(std::string model) { model_ = std::move(model); }
  /// The language being edited, 1 or 2: new departments have a title in it, and titles are set in it.
  void showLanguage(int language) { language_ = static_cast<std::size_t>(language - 1); }

  // Each gives the cursors after the command; a command that does nothing leaves them. `yes`: how the merchant
  // answers.
  PlainCursors insertArticle(const PlainCursors& at, bool after);
  PlainCursors insertDepartment(const PlainCursors& at, bool after);
  PlainCursors addUnder(const PlainCursors& at);
  PlainCursors moveArticle(const PlainCursors& at, int direction);
  PlainCursors moveDepartment(const PlainCursors& at, int direction);
  PlainCursors deleteArticle(const PlainCursors& at, bool yes);
  PlainCursors deleteDepartment(const PlainCursors& at, bool yes);
  PlainCursors copyArticle(const PlainCursors& at);
  PlainCursors copyDepartment(const PlainCursors& at, bool yes);
  PlainCursors pasteArticles(const PlainCursors& at, bool yes);
  PlainCursors pasteDepartment(const PlainCursors& at, bool yes);
  PlainCursors drag(const PlainCursors& at, const std::string& key, const std::string& target);
  PlainCursors setArticleTitle(const PlainCursors& at, const std::string& title);
  PlainCursors setPrice(const PlainCursors& at, const std::string& tenThousandths);
  PlainCursors setDepartmentTitle(const PlainCursors& at, const std::string& title);

  std::size_t departmentCount() const { return departments_.size(); }
  std::size_t articleCount() const { return articles_.size(); }
  /// IDs of the articles of a department in their order.
  std::vector<std::int64_t> articlesOf(const std::string& department) const;
  /// Serial numbers of the departments under a parent in their order.
  std::vector<std::int64_t> childrenOf(const std::string& parent) const;
  const PlainDepartment* find(const std::string& ID) const;

 private:
  PlainDepartment* editable(const std::string& ID);
  PlainCursors atFirstArticle(const std::string& department) const;
  PlainDepartment& addDepartment(const std::string& parent, std::int64_t level, std::int64_t order);
  bool isUnder(std::string key, const std::string& ancestor) const;

  std::map<std::int64_t, PlainDepartment> departments_;  ///< by serial number
  std::map<std::int64_t, PlainArticle> articles_;
  std::vector<PlainArticle> articleClipboard_;
  std::optional<PlainDepartment> departmentClipboard_;
  bool clipboardBringsArticles_ = false;
  std::int64_t lastDepartment_ = 0, lastArticle_ = 0;  ///< the numbers given; none is given twice
  std::string model_;
  std::size_t language_ = 0;
};

}  // namespace kv::test
