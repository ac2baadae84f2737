#pragma once
// The commands of the merchant on the tree of departments and its articles: insert, move, delete, copy, paste, drag.
// Each acts on the open catalogue in one transaction, keeps its invariants by itself, and leaves the cursors on what
// was made or moved. A failure of the store leaves catalogue, lists and cursors as they were.

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/user_port.h"
#include "store/catalogue/catalogue_sets.h"

namespace kv {

/// Which of the two lists a move is about.
enum class TreeList { Articles = 0, Departments = 1 };

/// What of the window the commands reach for; either may be empty.
struct EditingHooks {
  /// Enables or disables a command by its key.
  /// Called after a copy, with the keys of the two pastes.
  std::function<void(std::string_view key, bool enabled)> StatoComando;
  /// Shows the wait cursor, or the usual one again.
  std::function<void(bool busy)> pointer;
};

/// IDs of articles of the current department. Those of other departments, and unknown ones, are passed over.
using ArticleGroup = std::vector<std::int64_t>;

/// IDs of departments, in the order of the tree.
using DepartmentGroup = std::vector<std::string>;

/// Shows the wait cursor as long as it lives, where the window has one.
class WaitPointer {
 public:
  explicit WaitPointer(const EditingHooks& hooks) : hooks_(hooks) { show(true); }
  WaitPointer(const WaitPointer&) = delete;
  WaitPointer& operator=(const WaitPointer&) = delete;
  ~WaitPointer() { show(false); }

 private:
  void show(bool busy) const {
    if (hooks_.pointer) hooks_.pointer(busy);
  }
  const EditingHooks& hooks_;
};

/// Each command returns once everything is shown; whether it is a step of the history is the caller's matter.
class TreeEditing {
 public:
  /// The sets are bound whenever a command runs.
  TreeEditing(CatalogueSets& sets, UserPort& user, EditingHooks hooks = {})
      : sets_(sets), user_(user), hooks_(std::move(hooks)) {}

  /// The page model that the window's list shows: the one a new department starts with.
  /// The name of a template, called whenever another department becomes current.
  void showModel(std::string model) { model_ = std::move(model); }

  /// InserisciArticoloDopo, -Prima (insert an article after, before): a new article after or before the current one, at
  /// the end or the start of the list when none is current; nothing without a department. It becomes the current one.
  /// Other articles are renumbered only where the new one needs room.
  Result<> InserisciArticoloDopo();
  Result<> InserisciArticoloPrima();
  /// InserisciRepartoDopo, -Prima (insert a department after, before): a new department after or before the current
  /// one, under the same parent; nothing without a department.
  Result<> InserisciRepartoDopo();
  Result<> InserisciRepartoPrima();
  /// NuovoSottoreparto (new sub-department): the last one under the current department, or at the top level when there
  /// is none.
  /// It becomes the current one.
  Result<> NuovoSottoreparto();

  /// Sposta (move): exchanges the current row with its neighbour: direzione -1 up, +1 down. At the end of the list
  /// nothing changes.
  Result<> Sposta(int direzione, TreeList list);

  /// EliminaArticolo, EliminaReparto (delete an article, a department): asks first, with No as the default. A
  /// department with sub-departments, and the only one, stay, and the merchant is told why.
  /// Afterwards the article at the same index is current, or the last one; for a department its parent.
  Result<> EliminaArticolo();
  Result<> EliminaReparto();

  /// CopiaArticolo, CopiaReparto (copy an article, a department) to the clipboard tables of the catalogue. With a
  /// department go its articles, if the merchant says so; Yes is the default.
  /// What was in the clipboard is replaced.
  Result<> CopiaArticolo();
  Result<> CopiaReparto();
  /// IncollaArticoli, IncollaReparto (paste the articles, the department): after the current article; before the
  /// current department, or at the top level when there is none. Several articles are asked for; Yes is the default.
  Result<> IncollaArticoli();
  Result<> IncollaReparto();

  // The same for several articles: one question, one change. The order of the IDs doesn't count.

  /// EliminaArticoli: asks once, with No as the default; then the article after the first of them is current.
  Result<> EliminaArticoli(const ArticleGroup& group);
  /// CopiaArticoli: to the clipboard table, in the order of the department.
  Result<> CopiaArticoli(const ArticleGroup& group);
  /// SpostaArticoli: each exchanges its position with the neighbour that isn't one of them; direzione -1 up, +1 down.
  Result<> SpostaArticoli(const ArticleGroup& group, int direzione);
  /// SegnaArticoli (mark the articles): sets a flag of `articoli`, by its column.
  Result<> SegnaArticoli(const ArticleGroup& group, std::string_view column, bool on);
  /// DuplicaArticoli (duplicate): copies after the last of them, with all that a paste carries; the clipboard stays as
  /// it is. The last copy becomes the current article.
  Result<> DuplicaArticoli(const ArticleGroup& group);
  /// SpostaInReparto (move into a department): hangs them at its end, in their order, with all their columns. The
  /// current department stays, on the article after the first of them. Nothing for their own department, and for an
  /// unknown one.
  Result<> SpostaInReparto(const ArticleGroup& group, const std::string& department);

  // The same for several departments: one question, one change.

  /// EliminaReparti: asks once, with No as the default, and says how many articles go with them. A department that
  /// holds others than these stays, and so do all when no other would be left; the merchant is told why. The nearest
  /// department above that stays is current then.
  Result<> EliminaReparti(const DepartmentGroup& group);
  /// CopiaReparti: to the clipboard tables, which then say by ID, `genitore` and `catID` what belongs where.
  Result<> CopiaReparti(const DepartmentGroup& group);
  /// SpostaReparti: each exchanges its position with the sibling that isn't one of them; direzione -1 up, +1 down.
  Result<> SpostaReparti(const DepartmentGroup& group, int direzione);

  /// SpostaNodo (move a node): hangs a department under another, or under the root. Refused, without a word: onto
  /// itself or onto its own descendant. All departments take the order numbers of the tree that results.
  /// "###" names the root. Unknown IDs change nothing.
  Result<> SpostaNodo(const std::string& key, const std::string& nuovoParent);
  /// SpostaNodi: the same for several; one that is under another of them goes along with it. Refused for all when it is
  /// for one.
  Result<> SpostaNodi(const DepartmentGroup& group, const std::string& nuovoParent);

 private:
  /// What a new department starts with.
  struct DepartmentPlan {
    std::int64_t ordine = 1;   ///< order number among its siblings
    std::string genitore;      ///< ID of the parent, "###" for the root
    std::int64_t livello = 1;  ///< depth in the tree, 1 at the top level
    bool sideBySide = false;   ///< `affiancati` is a space rather than null
  };
  struct NewDepartment {
    std::int64_t contatore = 0;  ///< serial number
    std::string ID;
    std::int64_t livello = 1;
  };
  /// A department of the clipboard. The IDs are of the department it was copied from, and empty when it was copied
  /// alone.
  struct ClippedDepartment {
    std::int64_t row = 0;
    std::string ID, genitore;
    bool withArticles = false;  ///< its articles were copied, too
  };
  /// What was pasted, by the IDs of the clipboard.
  using Pasted = std::map<std::string, NewDepartment>;

  // Parts of commands; each writes inside the transaction of its command and shows nothing.
  /// Its ID.
  Result<std::int64_t> NuovoArticolo(const std::string& department, std::int64_t ordine);
  Result<NewDepartment> NuovoReparto(bool after);
  Result<NewDepartment> addDepartment(const DepartmentPlan& plan);
  Result<NewDepartment> addUnderCurrent();
  Result<NewDepartment> addUnder(const std::string& parent, std::int64_t level);
  /// False when there is no neighbour in that direction.
  Result<bool> exchange(TreeList list, std::int64_t key, const Value& holder, int direzione);
  Result<> copyArticles(const std::string& condition, const Value& value);
  /// The departments of a JSON array of IDs, in its order.
  Result<> copyDepartments(const std::string& group, bool withArticles);
  Result<std::vector<ClippedDepartment>> clippedDepartments();
  Result<NewDepartment> pasteOne(const ClippedDepartment& clipped, const Pasted& parents);
  Result<> fill(std::string_view table, std::string_view clipboard, std::int64_t from, std::int64_t to);
  Result<std::int64_t> pasteArticles(const CatalogueCursors& at);
  /// Copies of rows of a table, after an article; the ID of the last one.
  Result<std::int64_t> insertCopies(const CatalogueCursors& at, const std::string& source,
                                    const std::vector<std::int64_t>& rows);
  /// Articles can be pasted now, and the department that was copied before no longer.
  void enablePasteOfArticles() const;
  /// A department can be pasted now, and articles when it was copied with its own.
  void enablePasteOfDepartment(bool withArticles) const;

  // Whole commands that the public ones are made of, and their questions.
  Result<> insertArticle(bool after);
  Result<> insertDepartment(bool after);
  Result<> deleteDepartment(const std::string& department, const std::string& parent);
  Result<> pasteDepartment(const ClippedDepartment& clipped, bool withArticles);
  Result<> pasteDepartments(const std::vector<ClippedDepartment>& clipped, bool withArticles);
  Result<bool> wantsArticles();
  bool ask(const std::string& text, Answer preset) const;

  CatalogueSets& sets_;
  UserPort& user_;
  EditingHooks hooks_;
  std::string model_;  ///< empty until showModel()
};

}  // namespace kv
