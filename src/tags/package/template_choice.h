#pragma once
// What the template choice shows and returns (rules of frmTemplate).

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// The title of the dialog.
inline constexpr std::string_view templateTitle = "Korvane - Scelta del template";
/// Its page of the help.
inline constexpr std::string_view templateHelp = "pagine/template.htm";

/// The installed packages, and which of them is selected.
class TemplateChoice {
 public:
  /// The packages of the application, opened on the shop's own one when it is installed (case ignored, as its folder
  /// is found).
  TemplateChoice(const std::string& applicationFolder, std::string_view current);

  /// The names of the packages, sorted.
  const std::vector<std::string>& packages() const { return packages_; }
  /// The index of the selected package; empty when there is none.
  std::optional<std::size_t> selected() const { return selected_; }
  /// The name of the selected package, empty when there is none.
  std::string selectedName() const;

  /// Selects the package at an index; nothing for an index without one.
  void select(std::size_t index);
  /// Takes the text of the edit field: selects the package of exactly this name, or none when there is no such one.
  void type(std::string_view text);

  /// Full path of the selected package's picture; empty when it has none.
  std::string preview() const;
  /// The whole note of the selected package; empty when it has none.
  std::string note() const;

  /// Whether OK can be used.
  bool canAccept() const { return selected_.has_value(); }
  /// The result of the dialog: the first 50 characters of the name; empty when nothing is selected.
  std::string accept() const;

 private:
  std::string folder_;  // of all packages
  std::vector<std::string> packages_;
  std::optional<std::size_t> selected_;
};

}  // namespace kv
