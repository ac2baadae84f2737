#include "import/tables/catalogue_names.h"

#include <functional>

#include "platform/database/rows.h"
#include "platform/text/text.h"
#include "store/catalogue/catalogue_lists.h"

namespace kv {
namespace {

constexpr std::string_view pathSign = " > ";

struct NamedDepartment {
  std::string ID, genitore, titolo;
};

Result<std::vector<NamedDepartment>> readNamed(Database& catalogue) {
  auto rows = catalogue.prepare("SELECT ID, genitore, titolo FROM categorie ORDER BY livello, ordinamento, contatore");
  if (!rows) return fail(rows.error());
  std::vector<NamedDepartment> named;
  const auto read = forEachRow(*rows, [&](const Statement& row) {
    named.push_back({std::string(row.text(0)), std::string(row.text(1)), std::string(row.text(2))});
  });
  if (!read) return fail(read.error());
  return named;
}

using DepartmentsByID = std::unordered_map<std::string, const NamedDepartment*>;

/// The titles from the root down to a department.
std::string namedPath(const NamedDepartment& department, const DepartmentsByID& byID) {
  std::string path;
  // Departments in a circle end the walk as well.
  std::size_t steps = 0;
  for (const NamedDepartment* at = &department; at != nullptr && steps <= byID.size(); ++steps) {
    path = (at->titolo.empty() ? at->ID : at->titolo) + (path.empty() ? "" : std::string(pathSign)) + path;
    const auto parent = byID.find(foldCase(at->genitore));
    at = parent == byID.end() ? nullptr : parent->second;
  }
  return path;
}

void addName(std::unordered_map<std::string, CatalogueName>& to, std::string name, std::string ID) {
  const auto [found, added] = to.try_emplace(std::move(name), CatalogueName{std::move(ID)});
  if (!added) found->second.isAmbiguous = true;
}

CatalogueName find(const std::unordered_map<std::string, CatalogueName>& in, const std::string& name) {
  const auto found = in.find(name);
  return found == in.end() ? CatalogueName() : found->second;
}

}  // namespace

std::string plainPath(std::string_view path) {
  std::string plain;
  for (;;) {
    const std::size_t end = path.find('>');
    plain += (plain.empty() ? std::string_view() : pathSign);
    plain += trim(path.substr(0, end));
    if (end == std::string_view::npos) return foldCase(plain);
    path.remove_prefix(end + 1);
  }
}

bool isBelow(std::string_view plainPath, std::string_view above) {
  return plainPath.starts_with(above) && plainPath.substr(above.size()).starts_with(pathSign);
}

SplitPath splitPath(std::string_view path) {
  const std::size_t last = path.rfind('>');
  if (last == std::string_view::npos) return {"", std::string(trim(path))};
  return {std::string(trim(path.substr(0, last))), std::string(trim(path.substr(last + 1)))};
}

std::string missingDepartment(std::string_view path) { return "Il reparto \"" + std::string(path) + "\" non esiste"; }

Result<CatalogueNames> CatalogueNames::read(Database& catalogue) {
  const auto named = readNamed(catalogue);
  if (!named) return fail(named.error());
  DepartmentsByID byID;
  for (const NamedDepartment& each : *named) byID.emplace(foldCase(each.ID), &each);
  CatalogueNames names;
  for (const NamedDepartment& each : *named) names.addDepartment(each.ID, namedPath(each, byID));
  const auto read = forEachRow(catalogue, "SELECT ID, nome FROM opzioni ORDER BY ID", [&](const Statement& row) {
    names.addVariant(row.integer(0), std::string(row.text(1)));
  });
  if (!read) return fail(read.error());
  return names;
}

std::string_view CatalogueNames::pathOf(std::string_view department) const {
  const auto found = paths_.find(foldCase(department));
  return found == paths_.end() ? std::string_view() : std::string_view(found->second.path);
}

CatalogueName CatalogueNames::department(std::string_view path) const {
  CatalogueName found = find(departments_, plainPath(path));
  if (!found.ID.empty()) return found;
  const auto byID = paths_.find(foldCase(trim(path)));
  return byID == paths_.end() ? CatalogueName() : CatalogueName{byID->second.ID};
}

std::string_view CatalogueNames::variantName(std::int64_t ID) const {
  const auto found = variantNames_.find(ID);
  return found == variantNames_.end() ? std::string_view() : std::string_view(found->second);
}

CatalogueName CatalogueNames::variant(std::string_view name) const { return find(variants_, foldCase(trim(name))); }

void CatalogueNames::addDepartment(const std::string& ID, const std::string& path) {
  paths_.emplace(foldCase(ID), NamedPath{ID, path});
  addName(departments_, plainPath(path), ID);
}

void CatalogueNames::addVariant(std::int64_t ID, const std::string& name) {
  variantNames_.emplace(ID, name);
  addName(variants_, foldCase(trim(name)), std::to_string(ID));
}

}  // namespace kv
