#pragma once
// The sections of kvan_menu.ini, by which a template package shapes the tree of departments. Each section is the text
// of one kind of entry, with placeholders for title, link and image, or a wrapper around entries.

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

/// Which of the eight entry sections a department takes.
struct MenuEntryKind {
  bool top = false;       ///< of level 1
  bool image = false;     ///< with a menu image
  bool selected = false;  ///< the department whose page is being built
};

/// Lines parted by CR LF. A section that the file lacks is empty.
struct MenuTemplates {
  bool present = false;                ///< the package has the file: the tree follows it
  std::array<std::string, 8> entries;  ///< by the index of their kind
  std::string tab;                     ///< indentation, once per level below the first
  std::string children;    ///< around a department with sub-departments: %rep its entry, %subrep what is beneath
  std::string nochildren;  ///< around one without: %rep its entry

  /// The section of a kind.
  const std::string& entry(MenuEntryKind kind) const { return entries.at(index(kind)); }
  /// The index of a kind, 0 to 7.
  static constexpr std::size_t index(MenuEntryKind kind) {
    return (kind.top ? 4U : 0U) + (kind.image ? 2U : 0U) + (kind.selected ? 1U : 0U);
  }
  /// Whether the entries are put into wrappers, and sub-departments with them.
  bool wraps() const { return present && !children.empty() && !nochildren.empty(); }
};

/// CaricaClFile (load menu file): the sections of kvan_menu.ini in the template pool; not `present` when there is no
/// such file. Failures: as readText.
Result<MenuTemplates> CaricaClFile(const std::string& templatePool);

/// The sections of a file's text. A heading is a line in square brackets, spaces around it aside, in upper or lower
/// case; a heading that comes again replaces the first one's text. Empty lines around a section's text are left out.
MenuTemplates menuTemplates(std::string_view fileText);

}  // namespace kv
