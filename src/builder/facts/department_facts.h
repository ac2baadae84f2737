#pragma once
// The departments of one language, as their pages and as the menus need them.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "builder/navigation/department_tree.h"
#include "platform/database/database.h"
#include "platform/ports/result.h"

namespace kv {

/// One department with what its pages show.
struct Department {
  std::string ID;
  std::string titolo, descrizione, note;         ///< plain texts, in the language
  std::string pagina;                            ///< file stem of its page, without the language suffix
  std::string model;                             ///< column `template`: the page model's file without ".htm"
  std::string genitore;                          ///< ID of the parent, empty for a null
  std::string immagine;                          ///< file name of its picture, empty for none
  std::int64_t imageWidth = 0, imageHeight = 0;  ///< in pixels, 0 when not known
  std::string affiancati;                        ///< columns of its article grid as typed; no number: as in the shop
  std::int64_t maxarticoli = 0;                  ///< articles on a sub-page; below 1: the default
  float vatRate = 0;                             ///< a fraction
  std::optional<float> sconto;                   ///< discount in percent; not set for a null
};

/// All departments in the order of level, then `ordinamento`.
struct DepartmentRows {
  std::vector<Department> departments;
  std::vector<MenuDepartment> inMenus;  ///< the same departments, for the tree
};

/// Reads the departments in a language, counted from 1. Failures as Database::prepare and Statement::step.
Result<DepartmentRows> readDepartments(Database& catalogue, int language);

}  // namespace kv
