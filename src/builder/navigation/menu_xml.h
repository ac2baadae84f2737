#pragma once
// shopmenu.xml: the departments of one language as a small XML document, for readers outside the pages. It shows what
// the menus of the pages show: hidden departments are left out with all that is beneath them.

#include <string>
#include <string_view>

#include "builder/navigation/department_tree.h"

namespace kv {

/// CatEsploraXML (explore departments, XML): the whole document, lines ending in CR LF. Within an item the image comes
/// before the title, although the document type names the title first.
/// `lingua`: language suffix, for the links to the department pages.
std::string CatEsploraXML(const DepartmentTree& departments, std::string_view lingua);

}  // namespace kv
