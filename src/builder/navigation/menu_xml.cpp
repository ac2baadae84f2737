#include "builder/navigation/menu_xml.h"

#include <cstdint>
#include <vector>

#include "builder/values/link_naming.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::size_t indentPerLevel = 4;

constexpr std::string_view opening =
    "<?xml version=\"1.0\" encoding=\"ISO-8859-1\" ?>\r\n"
    "<!DOCTYPE shopmenu [\r\n"
    "  <!ELEMENT shopmenu (submenu*)>\r\n"
    "  <!ELEMENT submenu (menuitem*)>\r\n"
    "  <!ELEMENT menuitem (title*, image*, link*, submenu*)>\r\n"
    "  <!ELEMENT title (#PCDATA)>\r\n"
    "  <!ELEMENT image (#PCDATA)>\r\n"
    "  <!ELEMENT link (#PCDATA)>\r\n"
    "]>\r\n"
    "<shopmenu>\r\n";

// A "|" in a title or a name is a double quote wherever the shop shows it.
std::string menuQuoted(std::string_view text) { return replaceAll(text, "|", "\""); }

std::string xmlText(std::string_view text) {
  return replaceAll(replaceAll(replaceAll(menuQuoted(text), "&", "&amp;"), "<", "&lt;"), ">", "&gt;");
}

void addLine(std::string& out, std::size_t indent, std::string_view text) {
  out.append(indent, ' ').append(text).append("\r\n");
}

std::size_t indentOf(const MenuDepartment& department) {
  const std::int64_t level = department.livello.value_or(0);
  return level > 0 ? static_cast<std::size_t>(level) * indentPerLevel : 0;
}

void openItem(std::string& out, const MenuDepartment& department, std::string_view lingua) {
  const std::size_t indent = indentOf(department);
  addLine(out, indent, "<menuitem>");
  if (!department.immagine1.empty())
    addLine(out, indent + 2, "<image>" + menuQuoted(department.immagine1) + "</image>");
  addLine(out, indent + 2, "<title>" + xmlText(department.titolo) + "</title>");
  addLine(out, indent + 2, "<link>" + xmlText(PageFile(department.pagina, 1, lingua)) + "</link>");
}

}  // namespace

std::string CatEsploraXML(const DepartmentTree& departments, std::string_view lingua) {
  std::string out(opening);
  const std::vector<WalkStep>& walk = departments.walk();
  std::vector<std::size_t> unclosed;  // indexes in the walk, the ancestors of the department at hand
  const auto close = [&out, &departments, &walk, &unclosed] {
    const WalkStep& step = walk[unclosed.back()];
    const std::size_t indent = indentOf(departments.at(step));
    if (step.end > unclosed.back() + 1) addLine(out, indent + 2, "</submenu>");
    addLine(out, indent, "</menuitem>");
    unclosed.pop_back();
  };
  if (!walk.empty()) addLine(out, 2, "<submenu>");
  for (std::size_t index = 0; index < walk.size(); ++index) {
    while (!unclosed.empty() && walk[unclosed.back()].end <= index) close();
    const MenuDepartment& department = departments.at(walk[index]);
    openItem(out, department, lingua);
    if (walk[index].end > index + 1) addLine(out, indentOf(department) + 2, "<submenu>");
    unclosed.push_back(index);
  }
  while (!unclosed.empty()) close();
  if (!walk.empty()) addLine(out, 2, "</submenu>");
  addLine(out, 0, "</shopmenu>");
  return out;
}

}  // namespace kv
