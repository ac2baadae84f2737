#pragma once
// The commands of the merchant on the tree of departments and its articles: insert, move, delete, copy, paste, drag.
// Each acts on the open catalogue in one transaction, keeps its invariants by itself, and leaves the cursors on what
// was made or moved. A failure of the store leaves the catalogue as it was, with the cursors requeried.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/ports/user_port.h"
#include "store/catalogue/catalogue_sets.h"

namespace kv {

enum class TreeList { Articles = 0, Departments = 1 };

/// What of the window the commands reach for; either may be empty.
struct EditingHooks {
  /// Enables or disables a command by its key.
  std::function<void(std::string_view key, bool enabled)> StatoComando;
  /// Shows the busy pointer, or the usual one again.
  std::function<void(bool busy)> pointer;
};

class TreeEditing {
 public:
  TreeEditing(CatalogueSets& sets, UserPort& user, EditingHooks hooks = {})
      : sets_(sets), user_(user), hooks_(std::move(hooks)) {}

  /// The page model that the window's list shows: the one a new department starts with.
  void showModel(std::string model) { model_ = std::move(model); }

  /// A new article behind or before the current one, at the end or the start of the list when none is current; nothing
  /// without a department. It becomes the current one.
  Result<> InserisciArticoloDopo();
  Result<> InserisciArticoloPrima();
  /// A new department behind or before the current one, under the same parent; nothing without a department.
  Result<> InserisciRepartoDopo();
  Result<> InserisciRepartoPrima();
  /// A new last department under the current one, or at the top level when there is none.
  Result<> NuovoSottoreparto();

  /// Exchanges the current row with its neighbour: direzione -1 up, +1 down. At the end of the list nothing changes.
  Result<> Sposta(int direzione, TreeList list);

  /// Each asks first, with No as the default; refusals are told.
  Result<> EliminaArticolo();
  Result<> EliminaReparto();

  Result<> CopiaArticolo();
  Result<> CopiaReparto();
  Result<> IncollaArticoli();
  Result<> IncollaReparto();

  /// SpostaNodo (move a node): hangs a department under another, or under the root. Refused, without a word: onto
  /// itself or onto its own descendant. All departments take the order numbers of the tree as it then stands.
  Result<> SpostaNodo(const std::string& key, const std::string& nuovoParent);

 private:
  Result<> insertArticle(bool after);
  Result<std::int64_t> NuovoArticolo(std::int64_t ordine);
  Result<> insertDepartment(bool after);
  Result<std::string> NuovoReparto(std::int64_t ordine);
  Result<std::string> addDepartment(std::int64_t ordine, const std::string& genitore, std::int64_t livello,
                                    bool sideBySide);
  Result<std::string> addUnderCurrent();
  Result<> deleteDepartment();
  Result<> copyArticles(const std::string& condition, const Value& value);
  Result<> fill(std::string_view table, std::string_view clipboard, std::int64_t from, std::int64_t to);
  Result<std::int64_t> pasteArticles();
  Result<> finishAt(const std::string& department);
  bool ask(const std::string& text, Answer preset) const;

  CatalogueSets& sets_;
  UserPort& user_;
  EditingHooks hooks_;
  std::string model_;
};

}  // namespace kv
