#include "builder/navigation/menu_templates.h"

#include <vector>

#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::string_view menuFile = "kvan_menu.ini";

struct EntrySection {
  std::string_view name;
  MenuEntryKind kind;
};
constexpr std::array<EntrySection, 8> entrySections{{{"[top titles]", {true, false, false}},
                                                     {"[top titles selected]", {true, false, true}},
                                                     {"[top images]", {true, true, false}},
                                                     {"[top images selected]", {true, true, true}},
                                                     {"[titles]", {false, false, false}},
                                                     {"[titles selected]", {false, false, true}},
                                                     {"[images]", {false, true, false}},
                                                     {"[images selected]", {false, true, true}}}};

bool isHeading(std::string_view line) { return line.size() >= 2 && line.front() == '[' && line.back() == ']'; }

// The text that a heading opens; null for a heading of no meaning here.
std::string* sectionOf(MenuTemplates& menu, std::string_view heading) {
  const std::string name = foldCase(heading);
  for (const EntrySection& section : entrySections) {
    if (name == section.name) return &menu.entries.at(MenuTemplates::index(section.kind));
  }
  if (name == "[tab]") return &menu.tab;
  if (name == "[children]") return &menu.children;
  if (name == "[nochildren]") return &menu.nochildren;
  return nullptr;
}

std::string joined(const std::vector<std::string_view>& lines) {
  std::size_t first = 0, end = lines.size();
  while (first < end && trim(lines[first]).empty()) ++first;
  while (end > first && trim(lines[end - 1]).empty()) --end;
  std::string text;
  for (std::size_t i = first; i < end; ++i) {
    if (i > first) text += "\r\n";
    text += lines[i];
  }
  return text;
}

}  // namespace

MenuTemplates menuTemplates(std::string_view fileText) {
  MenuTemplates menu;
  menu.present = true;
  std::string* section = nullptr;
  std::vector<std::string_view> lines;
  const auto closeSection = [&section, &lines] {
    if (section != nullptr) *section = joined(lines);
    lines.clear();
  };
  for (const std::string_view line : splitLines(fileText)) {
    if (isHeading(trim(line))) {
      closeSection();
      section = sectionOf(menu, trim(line));
    } else {
      lines.push_back(line);
    }
  }
  closeSection();
  return menu;
}

Result<MenuTemplates> CaricaClFile(const std::string& templatePool) {
  const auto path = findEntry(templatePool, menuFile);
  if (!path) return MenuTemplates();
  auto text = readText(*path);
  if (!text) return fail(text.error());
  return menuTemplates(*text);
}

}  // namespace kv
