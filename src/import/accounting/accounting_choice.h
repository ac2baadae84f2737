#pragma once
// The choice of a variant of the accounting package and of where its data are, as the dialog frmOGChoose holds it
// until OK.

#include <array>
#include <string>
#include <vector>

#include "import/accounting/accounting_variants.h"

namespace kv {

/// The dialog of programs and companies without its window.
class AccountingChoice {
 public:
  /// What OK says while no variant is chosen.
  static constexpr std::string_view noVariant = "Selezionare una variante di Orsa Gestionale";

  /// Reads the path of each variant; the first installed one is chosen.
  void load(const Settings& settings);
  /// The variants that have a path, by number.
  std::vector<int> installed() const;
  /// The path of a variant, 0 to 5; empty when it isn't installed.
  const std::string& path(int number) const { return paths_.at(static_cast<std::size_t>(number)); }
  /// Gives a variant a path, and chooses it unless the path is empty. Nothing is stored yet.
  void setPath(int number, std::string path);
  /// Chooses a variant; -1: none.
  void choose(int number) { chosen_ = number; }
  /// The variant that is chosen; -1 when there is none, or when it isn't installed.
  int chosen() const;
  /// Why OK can't close the dialog; empty when it can.
  std::string refusal() const;
  /// Stores the paths that were changed. Failures as Settings::set.
  Result<> apply(Settings& settings) const;

 private:
  std::array<std::string, 6> paths_, stored_;
  int chosen_ = -1;
};

}  // namespace kv
