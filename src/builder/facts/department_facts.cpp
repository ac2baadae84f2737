#include "builder/facts/department_facts.h"

#include "platform/database/field_row.h"
#include "store/schema/schema.h"

namespace kv {

namespace {

Department departmentOf(const FieldRow& row) {
  Department department;
  department.ID = row.text("ID");
  department.titolo = row.text("titolo");
  department.pagina = row.text("pagina");
  department.model = row.text("template");
  department.genitore = row.text("genitore");
  department.descrizione = row.text("descrizione");
  department.note = row.text("note");
  department.immagine = row.text("immagine0");
  department.affiancati = row.text("affiancati");
  department.maxarticoli = row.integer("maxarticoli");
  department.imageWidth = row.integer("imgX0");
  department.imageHeight = row.integer("imgY0");
  department.vatRate = row.single("iva") / 100.0F;
  if (!row.isNull("sconto")) department.sconto = row.single("sconto");
  return department;
}

MenuDepartment menuDepartmentOf(const FieldRow& row) {
  MenuDepartment department;
  department.ID = row.text("ID");
  department.titolo = row.text("titolo");
  department.pagina = row.text("pagina");
  if (!row.isNull("genitore")) department.genitore = row.text("genitore");
  if (!row.isNull("livello")) department.livello = row.integer("livello");
  department.nascosto = row.flag("nascosto");
  department.immagine1 = row.text("immagine1");
  department.imgX1 = row.integer("imgX1");
  department.imgY1 = row.integer("imgY1");
  return department;
}

}  // namespace

Result<DepartmentRows> readDepartments(Database& catalogue, int language) {
  auto query = catalogue.prepare(SelezionaLingua("categorie", language, "ORDER BY livello, ordinamento"));
  if (!query) return fail(query.error());
  DepartmentRows rows;
  auto more = query->step();
  for (; more && *more; more = query->step()) {
    const FieldRow row(*query);
    rows.departments.push_back(departmentOf(row));
    rows.inMenus.push_back(menuDepartmentOf(row));
  }
  if (!more) return fail(more.error());
  return rows;
}

}  // namespace kv
