#pragma once
// The live lists of the workbench on the open catalogue: all departments with the department cursor, the articles of
// the current department, its siblings, and the settings. The cursors drive one another: a department brings its
// articles and siblings along. Nothing here knows a window; one listener is told what has moved.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/recordset.h"
#include "store/shop/session.h"

namespace kv {

/// The implicit root of the department tree, which has no row.
inline constexpr std::string_view treeRoot = "###";
inline constexpr std::string_view treeRootTitle = "Negozio";

/// A department as the tree shows it.
struct TreeNode {
  std::string ID, genitore, titolo;
  std::int64_t livello = 1;
};

/// Who is told. While the sets are suppressed nobody is.
class SetsListener {
 public:
  virtual ~SetsListener() = default;
  /// The department cursor stands on another department or on none; articles and siblings have followed.
  virtual void departmentMoved() = 0;
  virtual void articleMoved() = 0;
  /// The rows of the article list are others, or stand in another order.
  virtual void articlesChanged() = 0;
  /// CostruisciAlbero has run: the tree is to be shown anew.
  virtual void treeRebuilt() = 0;
  virtual void titleChanged(const std::string& department, const std::string& title) = 0;
  /// The counts of the status line are others.
  virtual void statusChanged() = 0;
};

/// The record sets of the catalogue tables that are bound to editors.
enum class EditedSet { Generale, Categorie, Articoli };

class CatalogueSets {
 public:
  explicit CatalogueSets(Session& session) : session_(session) {}

  void listen(SetsListener* listener) { listener_ = listener; }

  /// Opens the sets in the session's language; the department cursor stands before the first row. The session's
  /// catalogue must stay open until release().
  Result<> bind();
  void release();
  bool isBound() const { return generale_.has_value(); }

  /// Set while code moves the cursors itself, so that the listener does nothing.
  void suppress(bool suppressed) { suppressed_ = suppressed; }
  bool isSuppressed() const { return suppressed_; }

  /// CambiaLingua (change the language): binds the sets in language 1 to 4 and goes back to the department and article
  /// that were current.
  Result<> CambiaLingua(int language);

  /// The row sets; bound.
  Recordset& dataGenerale() { return *generale_; }
  Recordset& dataCategorie() { return *categorie_; }
  Recordset& dataFratelli() { return *fratelli_; }
  Recordset& dataArticoli() { return *articoli_; }
  Recordset& edited(EditedSet set);

  bool onDepartment() const;
  bool onArticle() const;
  std::string department() const;  ///< ID of the current department; "###" when on none
  std::int64_t article() const;    ///< ID of the current article; 0 when on none
  /// Articles of the current department; -1 when on none.
  std::int64_t departmentArticles() const { return departmentArticles_; }
  /// The counts as the status line shows them: " Articoli: 3 /4", or " Articoli: 4" on no department.
  std::string statusLine() const;

  /// Moves the cursor; false, and it stays, when there is no such row. "###" takes it off the table.
  Result<bool> goToDepartment(std::string_view ID);
  Result<bool> goToArticle(std::int64_t ID);
  /// Takes the article cursor to a place of the list, from 0; off the list when there is no such place.
  void goToArticlePlace(std::size_t place);

  /// MostraArticolo (show an article): its department, then itself. False when it is gone. The window brings the
  /// articles' tab forward.
  Result<bool> MostraArticolo(std::int64_t ID);

  /// Writes one field of the current row at once. TextInNumber and Malformed: as Recordset::set.
  Result<> store(EditedSet set, std::string_view column, const Value& value);

  /// CostruisciAlbero (build the tree): reads all departments, parents before children; mode 1 requeries the
  /// department cursor first, which then stands on no row. The listener is told.
  Result<> CostruisciAlbero(int mode);
  const std::vector<TreeNode>& tree() const { return tree_; }

  /// Runs the list's query again without moving anything else; the article cursor is on no row then.
  Result<> requeryArticles();
  Result<> requerySiblings();
  Result<> requeryDepartments();
  /// Adds to the counts of articles of the shop and, when it is the current one, of the department; neither goes
  /// below 0.
  void addArticles(std::int64_t number);
  /// Counts the articles of shop and department again.
  Result<> recount();
  /// Runs the handlers of a moved department cursor, as they stood suppressed.
  Result<> departmentHasMoved();

  Session& session() { return session_; }

 private:
  Result<Recordset> open(const std::string& table, const std::string& rest);
  Result<> openArticles();
  Result<> openSiblings();
  void tellStatus();

  Session& session_;
  SetsListener* listener_ = nullptr;
  std::optional<Recordset> generale_, categorie_, fratelli_, articoli_;
  std::vector<TreeNode> tree_;
  std::int64_t departmentArticles_ = -1;
  bool suppressed_ = false;
};

}  // namespace kv
