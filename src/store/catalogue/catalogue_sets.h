#pragma once
// The live lists of the workbench on the open catalogue: all departments with the department cursor, the articles of
// the current department, its siblings, and the settings. The cursors drive one another: a department brings its
// articles and siblings along. Nothing here knows a window; one listener is told what has moved.
//
// Whatever fails leaves lists and cursors as they were: what is to be shown is read first, and shown when all of it is
// there (catalogue_lists.h).

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/catalogue/catalogue_lists.h"

namespace kv {

/// Who is notified. While the sets are suppressed nobody is.
class SetsListener {
 public:
  virtual ~SetsListener() = default;
  /// The department cursor is on another department or on none; articles and siblings have followed.
  virtual void departmentMoved() = 0;
  /// The article cursor is on another article or on none.
  virtual void articleMoved() = 0;
  /// The article list has other rows, or another order.
  virtual void articlesChanged() = 0;
  /// CostruisciAlbero has run: the tree is to be shown again from the start.
  virtual void treeRebuilt() = 0;
  /// The merchant has given a department another title; the tree has it already.
  virtual void titleChanged(const std::string& department, const std::string& title) = 0;
  /// The status line has other counts.
  virtual void statusChanged() = 0;
};

/// The record sets of the catalogue tables that are bound to editors.
enum class EditedSet { Generale, Categorie, Articoli };

/// The record sets of the window, and its cursors.
class CatalogueSets {
 public:
  explicit CatalogueSets(Session& session) : session_(session) {}

  /// Who is told from now on; null: nobody.
  void listen(SetsListener* listener) { listener_ = listener; }

  /// Opens the sets in the session's language; the department cursor is before the first row. The session's
  /// catalogue must stay open until release().
  Result<> bind();
  /// Lets go of the catalogue; the lists are empty.
  void release();
  bool isBound() const { return generale_.has_value(); }

  /// Set while code moves the cursors itself, so that the listener does nothing.
  void suppress(bool suppressed) { suppressed_ = suppressed; }
  bool isSuppressed() const { return suppressed_; }

  /// CambiaLingua (change the language): binds the sets in language 1 to 4 and goes back to the department and article
  /// that were current. A failure leaves the language as it was, too.
  Result<> CambiaLingua(int language);

  // The row sets; bound.
  Recordset& dataGenerale() { return *generale_; }
  Recordset& dataCategorie() { return *categorie_; }  ///< the cursor is on the current department
  Recordset& dataFratelli() { return *fratelli_; }    ///< the current department's siblings, itself included
  Recordset& dataArticoli() { return *articoli_; }    ///< the cursor is on the current article
  Recordset& edited(EditedSet set);

  bool onDepartment() const;
  bool onArticle() const;
  std::string department() const;  ///< ID of the current department; "###" when on none
  std::int64_t article() const;    ///< ID of the current article; 0 when on none
  /// department() and article() for whoever writes by them: fails when their rows cannot be read.
  Result<CatalogueCursors> cursors();
  /// Articles of the current department; -1 when on none.
  std::int64_t departmentArticles() const { return departmentArticles_; }
  /// The counts as the status line shows them: " Articoli: 3 /4", or " Articoli: 4" on no department.
  std::string statusLine() const;

  /// Moves the cursor; false, and it stays, when there is no such row. "###" takes it off the table.
  Result<bool> goToDepartment(std::string_view ID);
  Result<bool> goToArticle(std::int64_t ID);
  /// Takes the article cursor to a position of the list, from 0; off the list when it is not that long.
  void goToArticleIndex(std::size_t index);

  /// MostraArticolo (show an article): its department, then itself. False, and nothing moves, when the article or its
  /// department is gone. The window brings the articles' tab forward.
  Result<bool> MostraArticolo(std::int64_t ID);

  /// Writes one field of the current row at once. TextInNumber and Malformed: as Recordset::set.
  Result<> store(EditedSet set, std::string_view column, const Value& value);

  /// CostruisciAlbero (build the tree): reads all departments, parents before children; mode 1 requeries the
  /// department cursor too, which then is on no row. The listener is told.
  Result<> CostruisciAlbero(int mode);
  const std::vector<TreeNode>& tree() const { return tree_; }

  /// Counts the articles of shop and department again.
  Result<> recount();

  /// Shows lists that were read, and tells the listener of all of them.
  void show(CatalogueLists lists);
  /// Shows other articles of the current department, the cursor where it is in `articles`; `ofShop`: all the shop has.
  void showArticles(Recordset articles, std::int64_t ofShop);

  Session& session() { return session_; }

 private:
  /// Puts a department cursor back that moved for nothing; a position beyond the rows: on none.
  void moveBack(std::size_t position);
  void takeFollowing(FollowingLists following);
  void notifyFollowing();
  /// The new title of a department, in the tree and for who listens.
  void showTitle(const std::string& ID, const std::string& title);
  void setArticleCount(std::int64_t ofShop);
  void notifyStatus();
  bool isHeard() const { return !suppressed_ && listener_ != nullptr; }

  Session& session_;
  SetsListener* listener_ = nullptr;
  std::optional<Recordset> generale_, categorie_, fratelli_, articoli_;
  std::vector<TreeNode> tree_;
  std::int64_t departmentArticles_ = -1;
  bool suppressed_ = false;
};

}  // namespace kv
