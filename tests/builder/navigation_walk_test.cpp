// The navigation beside a slow walk that searches all departments for every node, over random trees: hidden
// departments, orphans, circles of parents, levels that don't fit, titles that hold placeholders.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

#include "builder/navigation/menu_xml.h"
#include "builder/navigation/navigation.h"
#include "platform/text/text.h"

namespace kv::test {
namespace {

constexpr int trees = 400;
constexpr int mostDepartments = 24;
constexpr std::string_view root = "###";

/// The walk word for word: each node searches all rows for its children.
class SlowWalk {
 public:
  SlowWalk(const std::vector<MenuDepartment>& rows, const NavigationLook& look) : rows_(rows), look_(look) {}

  std::string openSet(const std::string& id) const {
    std::string open;
    const std::string parent = id == root ? "" : at(id)->genitore.value_or("");
    for (const MenuDepartment& row : rows_) {
      const bool near = id != root && row.genitore && (*row.genitore == id || *row.genitore == parent);
      if (near || (row.livello && *row.livello < look_.livelliaperti + 1)) open += "#" + row.ID;
    }
    std::string up = parent;
    for (std::size_t steps = 0; id != root && up != root && steps <= rows_.size(); ++steps) {
      if (at(up) == nullptr) break;
      if ((open + "#").find("#" + up + "#") == std::string::npos) open += "#" + up;
      up = at(up)->genitore.value_or("");
    }
    return open + "#";
  }

  void walk(const std::string& id, const std::string& current, const std::string& open, std::string& link,
            std::string& menu) const {
    link.clear();
    menu.clear();
    if (id != root) {
      if (open.find("#" + id + "#") != std::string::npos) link = entry(*at(id), id == current);
      menu = option(*at(id));
    }
    std::string beneath;
    for (const MenuDepartment& row : rows_) {
      if (row.genitore != id || row.nascosto) continue;
      std::string childLink, childMenu;
      walk(row.ID, current, open, childLink, childMenu);
      beneath += childLink;
      menu += childMenu;
    }
    const MenuTemplates& templates = look_.templates;
    if (!templates.present || templates.children.empty() || templates.nochildren.empty() || id == root) {
      link += beneath;
    } else if (!link.empty() && !beneath.empty()) {
      link = replaceAll(replaceAll(replaceAll(templates.children, "|", "\""), "%rep", link), "%subrep", beneath);
    } else if (!link.empty()) {
      link = replaceAll(replaceAll(templates.nochildren, "|", "\""), "%rep", link);
    }
  }

  std::string path(std::string id) const {
    std::string out;
    for (std::size_t steps = 0; !id.empty() && id != root; ++steps) {
      const MenuDepartment* row = at(id);
      if (row == nullptr || !row->genitore || steps > rows_.size()) return {};
      if (steps > 0 && !row->genitore->empty() && !row->nascosto)
        out = "<font size=\"1\">" + plainLink(*row) + " &gt; </font>" + out;
      id = *row->genitore;
    }
    return out;
  }

  std::string beneath(const std::string& id) const {
    const std::string start = "<BR><font size=\"1\">&gt;&gt;&nbsp;</font>";
    std::string out = start;
    for (const MenuDepartment& row : rows_) {
      if (row.genitore == id && !row.ID.empty() && !row.nascosto)
        out += "<font face=\"Arial\" size=\"1\">" + plainLink(row) + " | </font>";
    }
    return out == start ? "" : out;
  }

  void xml(const std::string& id, std::string& out) const {
    const MenuDepartment* row = id == root ? nullptr : at(id);
    const std::string indent(row == nullptr ? 0U : 4U * static_cast<std::size_t>(level(*row)), ' ');
    if (row != nullptr) {
      out += indent + "<menuitem>\r\n";
      if (!row->immagine1.empty()) out += indent + "  <image>" + row->immagine1 + "</image>\r\n";
      out += indent + "  <title>" + escaped(row->titolo) + "</title>\r\n";
      out += indent + "  <link>" + escaped(address(*row)) + "</link>\r\n";
    }
    std::vector<std::string> children;
    for (const MenuDepartment& child : rows_) {
      if (child.genitore == id && !child.nascosto) children.push_back(child.ID);
    }
    if (!children.empty()) out += indent + "  <submenu>\r\n";
    for (const std::string& child : children) xml(child, out);
    if (!children.empty()) out += indent + "  </submenu>\r\n";
    if (row != nullptr) out += indent + "</menuitem>\r\n";
  }

 private:
  const MenuDepartment* at(const std::string& id) const {
    const auto found = std::ranges::find(rows_, id, &MenuDepartment::ID);
    return found == rows_.end() ? nullptr : &*found;
  }
  static std::int64_t level(const MenuDepartment& row) { return row.livello.value_or(0); }
  std::string address(const MenuDepartment& row) const { return row.pagina + look_.lingua + ".php?n=1"; }
  static std::string escaped(const std::string& text) {
    return replaceAll(replaceAll(replaceAll(replaceAll(text, "|", "\""), "&", "&amp;"), "<", "&lt;"), ">", "&gt;");
  }
  std::string plainLink(const MenuDepartment& row) const {
    return replaceAll("<a href=|" + address(row) + "|>" + row.titolo + "</a>", "|", "\"");
  }
  static std::string indent(const MenuDepartment& row) {
    std::string out;
    if (level(row) <= 1) return out;
    for (std::int64_t i = 0; i < 2 * (level(row) - 1) - 1; ++i) out += "&nbsp;";
    return out + " ";
  }
  std::string option(const MenuDepartment& row) const {
    const std::string mark = level(row) > 1 ? "&nbsp;&nbsp;" : "";
    return replaceAll("<option value=|" + address(row) + "|>" + indent(row) + mark + " " + row.titolo + "</option>\r\n",
                      "|", "\"");
  }
  std::string entry(const MenuDepartment& row, bool current) const {
    const bool top = level(row) <= 1, image = !row.immagine1.empty();
    const std::string width = row.imgX1 == 0 ? "" : std::to_string(row.imgX1);
    const std::string height = row.imgY1 == 0 ? "" : std::to_string(row.imgY1);
    if (!look_.templates.present) {
      const std::string mark = !top ? "&nbsp;&nbsp;" : image ? "<BR>" : "<B>• </B>";
      const std::string label =
          image ? "<img src=|" + row.immagine1 + "| width=|" + width + "| height=|" + height + "| border=|0|>"
                : replaceAll(look_.titleFont, "###", row.titolo);
      const std::string text = current ? "<B>" + label + "</B>" : "<a href=|" + address(row) + "|>" + label + "</a>";
      return replaceAll(indent(row) + mark + text + "<BR>\r\n", "|", "\"");
    }
    std::string text = look_.templates.entry({top, image, current});
    if (image) {
      text = replaceAll(text, "%image", row.immagine1);
      text = replaceAll(replaceAll(text, "%x", width), "%y", height);
    }
    text = replaceAll(replaceAll(text, "%title", row.titolo), "%link", address(row));
    for (std::int64_t i = 1; i < level(row); ++i) text = look_.templates.tab + text;
    return replaceAll(text, "|", "\"");
  }

  const std::vector<MenuDepartment>& rows_;
  const NavigationLook& look_;
};

/// Trees and looks of a fixed seed.
class Chance {
 public:
  explicit Chance(unsigned seed) : engine_(seed) {}

  int below(int limit) { return static_cast<int>(engine_() % static_cast<unsigned>(limit)); }

  std::vector<MenuDepartment> rows() {
    static const std::array<std::string, 5> titles{"Vasi", "5|x|7 & <b>", "%link %rep", "%subrep ###", "Città"};
    std::vector<MenuDepartment> rows(static_cast<std::size_t>(1 + below(mostDepartments)));
    const int count = static_cast<int>(rows.size());
    for (int i = 0; i < count; ++i) {
      MenuDepartment& row = rows[static_cast<std::size_t>(i)];
      row.ID = "cat" + std::to_string(i);
      row.pagina = below(6) == 0 ? "p&" + row.ID : row.ID;
      row.titolo = titles[static_cast<std::size_t>(below(5))] + std::to_string(i);
      const int kind = below(20);
      if (kind < 5 || i == 0) {
        row.genitore = std::string(root);
      } else if (kind < 16) {
        row.genitore = "cat" + std::to_string(below(i));
      } else if (kind < 18) {
        row.genitore = "cat" + std::to_string(below(count));  // any: itself, a circle
      } else if (kind == 18) {
        row.genitore = below(2) == 0 ? "" : "gone";
      }
      row.livello = 1;
      if (row.genitore && i > 0) {
        for (int j = 0; j < i; ++j) {
          const MenuDepartment& other = rows[static_cast<std::size_t>(j)];
          if (other.ID == *row.genitore) row.livello = other.livello.value_or(0) + 1;
        }
      }
      if (below(12) == 0) row.livello = below(4);
      if (below(30) == 0) row.livello.reset();
      row.nascosto = below(6) == 0;
      if (below(3) == 0) row.immagine1 = "i" + std::to_string(i) + ".gif";
      row.imgX1 = below(3) * 40;
      row.imgY1 = below(3) * 30;
    }
    if (below(2) == 0) std::ranges::stable_sort(rows, {}, [](const auto& row) { return row.livello.value_or(0); });
    return rows;
  }

  NavigationLook look() {
    NavigationLook look{{}, "<font color=\"#010203\">###</font>", below(4), below(2) == 0 ? "" : "_l2"};
    if (below(3) == 0) return look;
    look.templates.present = true;
    for (std::size_t i = 0; i < look.templates.entries.size(); ++i) {
      const std::string name = std::to_string(i);
      if (below(8) > 0) look.templates.entries[i] = name + "<a href='%link' x=%x y=%y i=%image>%title</a>" + name;
    }
    if (below(2) == 0) look.templates.tab = "<t|>";
    if (below(4) > 0) look.templates.children = "{%rep|[%subrep]%rep}";
    if (below(4) > 0) look.templates.nochildren = below(6) > 0 ? "(%rep)" : "()";
    return look;
  }

 private:
  std::mt19937 engine_;
};

TEST(NavigationWalkTest, TreeAndDropDownAreThoseOfTheSlowWalk) {
  for (unsigned seed = 0; seed < trees; ++seed) {
    Chance chance(seed);
    const std::vector<MenuDepartment> rows = chance.rows();
    const NavigationLook look = chance.look();
    const SlowWalk slow(rows, look);
    const DepartmentNavigation fast(DepartmentTree(rows), look);
    std::vector<std::string> pages{std::string(root)};
    for (const MenuDepartment& row : rows) pages.push_back(row.ID);
    for (const std::string& page : pages) {
      std::string tree, menu;
      slow.walk(std::string(root), page, slow.openSet(page), tree, menu);
      const Navigation made = fast.CatEsplora(page);
      ASSERT_EQ(made.tree, tree) << "seed " << seed << ", page " << page;
      ASSERT_EQ(made.menu,
                "<form name=\"kvReparti\">\r\n<select name=\"kvRepartiMenu\" onChange=\"RepGoTo()\">\r\n"
                "<option selected value=\"#\"> </option>\r\n" +
                    menu + "</select>\r\n</form>")
          << "seed " << seed;
    }
  }
}

TEST(NavigationWalkTest, PathsAndSubDepartmentsAreThoseOfTheSlowClimb) {
  for (unsigned seed = 0; seed < trees; ++seed) {
    Chance chance(seed);
    const std::vector<MenuDepartment> rows = chance.rows();
    const NavigationLook look = chance.look();
    const SlowWalk slow(rows, look);
    const DepartmentNavigation fast(DepartmentTree(rows), look);
    for (const MenuDepartment& row : rows) {
      ASSERT_EQ(fast.MakePercorsoTitolo(row.ID), slow.path(row.ID)) << "seed " << seed << ", " << row.ID;
      ASSERT_EQ(fast.MakeSottoreparti(row.ID), slow.beneath(row.ID)) << "seed " << seed << ", " << row.ID;
    }
  }
}

TEST(NavigationWalkTest, TheXmlMenuIsThatOfTheSlowWalk) {
  for (unsigned seed = 0; seed < trees; ++seed) {
    Chance chance(seed);
    const std::vector<MenuDepartment> rows = chance.rows();
    const NavigationLook look = chance.look();
    std::string menu;
    SlowWalk(rows, look).xml(std::string(root), menu);
    const std::string made = CatEsploraXML(DepartmentTree(rows), look.lingua);
    const std::size_t start = made.find("<shopmenu>\r\n") + 12;
    ASSERT_EQ(made.substr(start), menu + "</shopmenu>\r\n") << "seed " << seed;
  }
}

}  // namespace
}  // namespace kv::test
