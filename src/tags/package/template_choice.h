#pragma once
// What the template choice shows and returns (rules of frmTemplate).

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

inline constexpr std::string_view templateTitle = "Korvane - Scelta del template";
inline constexpr std::string_view templateHelp = "pagine/template.htm";

class TemplateChoice {
 public:
  /// The packages of the application, opened on the shop's own one when it is installed (case ignored, as its folder
  /// is found).
  TemplateChoice(const std::string& applicationFolder, std::string_view current);

  const std::vector<std::string>& packages() const { return packages_; }
  std::optional<std::size_t> selected() const { return selected_; }
  /// The name of the selected package, empty when there is none.
  std::string selectedName() const;

  void select(std::size_t place);
  /// What stands in the edit field: selects the entry of exactly this text, and none when there is no such entry.
  void type(std::string_view text);

  /// Full path of the selected package's picture; empty when it has none.
  std::string preview() const;
  /// The whole note of the selected package; empty when it has none.
  std::string note() const;

  bool canAccept() const { return selected_.has_value(); }
  /// The result of the dialog: the first 50 letters of the name; empty when nothing is selected.
  std::string accept() const;

 private:
  std::string folder_;  // of all packages
  std::vector<std::string> packages_;
  std::optional<std::size_t> selected_;
};

}  // namespace kv
