#include "builder/navigation/navigation.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>

#include "builder/values/line_end.h"
#include "builder/values/link_naming.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::string_view sizeMask = "#####";
constexpr std::string_view hardSpace = "&nbsp;";

std::string repeated(std::string_view text, std::int64_t times) {
  std::string out;
  for (std::int64_t i = 0; i < times; ++i) out += text;
  return out;
}

std::string quoted(std::string_view text) { return replaceAll(text, "|", "\""); }

// What comes before a department below the top level.
std::string indentation(const MenuDepartment& department) {
  const std::int64_t depth = department.depth();
  if (depth == 0) return {};
  return repeated(hardSpace, 2 * depth - 1) + " ";
}

// The wrapper of a department with nothing beneath; an entry without text stays away as a whole.
std::string leafText(const MenuTemplates& templates, const std::string& entry) {
  return entry.empty() ? std::string() : replaceAll(quoted(templates.nochildren), "%rep", entry);
}

std::string dropDown(const std::string& options) {
  std::string out =
      "<form name=\"kvReparti\">\r\n"
      "<select name=\"kvRepartiMenu\" onChange=\"RepGoTo()\">\r\n"
      "<option selected value=\"#\"> </option>\r\n";
  return out.append(options).append("</select>\r\n</form>");
}

}  // namespace

DepartmentNavigation::DepartmentNavigation(DepartmentTree departments, NavigationLook look)
    : tree_(std::move(departments)), look_(std::move(look)) {
  std::string options;
  for (std::size_t index = 0; index < tree_.walk().size(); ++index) {
    const MenuDepartment& department = tree_.at(tree_.walk()[index]);
    entries_.push_back(CatLink(department, false));
    if (look_.templates.wraps()) leaves_.push_back(leafText(look_.templates, entries_.back()));
    options += CatMenu(department);
    if (department.livello && *department.livello <= look_.livelliaperti) alwaysOpen_.push_back(index);
  }
  menu_ = dropDown(options);
}

std::string DepartmentNavigation::link(const MenuDepartment& department) const {
  return PageFile(department.pagina, 1, look_.lingua);
}

std::string DepartmentNavigation::plainEntry(const MenuDepartment& department, bool corrente) const {
  const bool image = !department.immagine1.empty();
  std::string out = indentation(department);
  if (department.depth() > 0) {
    out.append(hardSpace).append(hardSpace);
  } else {
    out += image ? "<BR>" : "<B>• </B>";
  }
  const std::string label = image ? "<img src=\"" + department.immagine1 + "\" width=\"" +
                                        formatNumber(department.imgX1, sizeMask) + "\" height=\"" +
                                        formatNumber(department.imgY1, sizeMask) + "\" border=\"0\">"
                                  : replaceAll(look_.titleFont, "###", department.titolo);
  if (corrente) {
    out += "<B>" + label + "</B>";
  } else {
    out += "<a href=\"" + link(department) + "\">" + label + "</a>";
  }
  return out.append("<BR>").append(lineEnd);
}

// One placeholder after the other: a title may hold the name of one that comes later.
std::string DepartmentNavigation::templateEntry(const MenuDepartment& department, bool corrente) const {
  const bool image = !department.immagine1.empty();
  std::string text = look_.templates.entry({department.depth() == 0, image, corrente});
  if (image) {
    text = replaceAll(text, "%image", department.immagine1);
    text = replaceAll(text, "%x", formatNumber(department.imgX1, sizeMask));
    text = replaceAll(text, "%y", formatNumber(department.imgY1, sizeMask));
  }
  text = replaceAll(text, "%title", department.titolo);
  text = replaceAll(text, "%link", link(department));
  return repeated(look_.templates.tab, department.depth()) + text;
}

std::string DepartmentNavigation::CatLink(const MenuDepartment& department, bool corrente) const {
  return quoted(look_.templates.present ? templateEntry(department, corrente) : plainEntry(department, corrente));
}

std::string DepartmentNavigation::CatMenu(const MenuDepartment& department) const {
  std::string out = "<option value=\"" + link(department) + "\">" + indentation(department);
  if (department.depth() > 0) out.append(hardSpace).append(hardSpace);
  return quoted(out + " " + department.titolo + "</option>" + std::string(lineEnd));
}

std::string DepartmentNavigation::CatLinkRep(const MenuDepartment& department) const {
  return quoted("<a href=\"" + link(department) + "\">" + department.titolo + "</a>");
}

// The steps of the walk that the page of a department shows, ascending.
std::vector<std::size_t> DepartmentNavigation::openIndexes(std::string_view corrente) const {
  const std::size_t row = tree_.find(corrente);
  if (row == DepartmentTree::none) return alwaysOpen_;
  std::vector<std::size_t> own;
  const auto add = [this, &own](std::size_t opened) {
    if (const std::size_t index = tree_.indexOf(opened); index != DepartmentTree::none) own.push_back(index);
  };
  const auto parentOf = [this](std::size_t child) { return tree_.rows()[child].genitore.value_or(""); };
  for (const std::size_t child : tree_.childrenOf(tree_.rows()[row].ID)) add(child);
  for (const std::size_t sibling : tree_.childrenOf(parentOf(row))) add(sibling);
  std::unordered_set<std::size_t> climbed;
  for (std::size_t up = tree_.find(parentOf(row)); up != DepartmentTree::none; up = tree_.find(parentOf(up))) {
    if (!climbed.insert(up).second) break;  // a circle of parents
    add(up);
  }
  std::ranges::sort(own);
  std::vector<std::size_t> open;
  open.reserve(own.size() + alwaysOpen_.size());
  std::ranges::set_union(own, alwaysOpen_, std::back_inserter(open));
  open.erase(std::unique(open.begin(), open.end()), open.end());
  return open;
}

std::string DepartmentNavigation::joined(const std::vector<std::size_t>& open, std::size_t current) const {
  std::string out;
  std::size_t size = 0;
  for (const std::size_t index : open) size += entries_[index].size();
  out.reserve(size);
  for (const std::size_t index : open) {
    if (index == current) {
      out += CatLink(tree_.at(tree_.walk()[index]), true);
    } else {
      out += entries_[index];
    }
  }
  return out;
}

std::string DepartmentNavigation::entryText(std::size_t index, std::size_t current) const {
  return index == current ? CatLink(tree_.at(tree_.walk()[index]), true) : entries_[index];
}

// The text of one department and of what is open beneath it, in its wrapper.
std::string DepartmentNavigation::wrappedEntry(std::size_t index, const std::string& beneath,
                                               std::size_t current) const {
  if (index != current && beneath.empty()) return leaves_[index];
  const std::string entry = entryText(index, current);
  if (entry.empty()) return {};
  if (beneath.empty()) return leafText(look_.templates, entry);
  return replaceAll(replaceAll(quoted(look_.templates.children), "%rep", entry), "%subrep", beneath);
}

// What isn't open has no text, and takes with it what is beneath: only departments open up to the top are shown.
std::string DepartmentNavigation::wrapped(const std::vector<std::size_t>& open, std::size_t current) const {
  struct Unclosed {
    std::size_t index = DepartmentTree::none;
    std::string beneath;
  };
  std::vector<Unclosed> chain{{}};  // the root, then ancestors of the department at hand
  const auto close = [this, current, &chain] {
    const Unclosed last = std::move(chain.back());
    chain.pop_back();
    chain.back().beneath += wrappedEntry(last.index, last.beneath, current);
  };
  for (const std::size_t index : open) {
    const WalkStep& step = tree_.walk()[index];
    while (chain.size() > 1 && tree_.walk()[chain.back().index].end <= index) close();
    if (chain.back().index == step.parent) chain.push_back({index, {}});
  }
  while (chain.size() > 1) close();
  return std::move(chain.front().beneath);
}

Navigation DepartmentNavigation::CatEsplora(std::string_view corrente) const {
  const std::size_t row = tree_.find(corrente);
  const std::size_t current = row == DepartmentTree::none ? DepartmentTree::none : tree_.indexOf(row);
  const std::vector<std::size_t> open = openIndexes(corrente);
  return {look_.templates.wraps() ? wrapped(open, current) : joined(open, current), menu_};
}

std::string DepartmentNavigation::MakePercorsoTitolo(std::string_view id) const {
  std::string path;
  std::unordered_set<std::size_t> climbed;
  std::string at(id);
  for (bool own = true; !at.empty() && at != rootDepartment; own = false) {
    const std::size_t row = tree_.find(at);
    if (row == DepartmentTree::none || !climbed.insert(row).second) return {};
    const MenuDepartment& department = tree_.rows()[row];
    if (!department.genitore) return {};
    if (!own && !department.nascosto && !department.genitore->empty()) {
      path.insert(0, "<font size=\"1\">" + CatLinkRep(department) + " &gt; </font>");
    }
    at = *department.genitore;
  }
  return path;
}

std::string DepartmentNavigation::MakeSottoreparti(std::string_view id) const {
  std::string links;
  for (const std::size_t row : tree_.childrenOf(id)) {
    const MenuDepartment& child = tree_.rows()[row];
    if (child.ID.empty() || child.nascosto) continue;
    links += "<font face=\"Arial\" size=\"1\">" + CatLinkRep(child) + " | </font>";
  }
  return links.empty() ? links : "<BR><font size=\"1\">&gt;&gt;&nbsp;</font>" + links;
}

}  // namespace kv
