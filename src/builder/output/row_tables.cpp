#include "builder/output/row_tables.h"

#include "builder/page/page_prologue.h"
#include "platform/files/files.h"

namespace kv {

Result<> RowTables::create(const std::string& shopFolder) {
  const std::string path = entryPath(shopFolder, "db/sql.mdb");
  ignore(deleteFile(path), "the copy replaces it");
  if (auto copied = copyFile(entryPath(shopFolder, "new.mdb"), path); !copied) return copied;
  auto opened = Database::open(path, OpenMode::Scratch);
  if (!opened) return fail(opened.error());
  build_ = std::move(*opened);
  return build_.begin();
}

Result<> RowTables::startLanguage(std::string_view lingua) {
  firstLanguage_ = lingua.empty();
  const auto open = [this](DerivedRowWriter& writer, const std::string& table,
                           const std::vector<std::string>& extra) -> Result<> {
    auto opened = DerivedRowWriter::open(build_, table, columns_, extra);
    if (!opened) return fail(opened.error());
    writer = std::move(*opened);
    return {};
  };
  auto opened = open(articles_, "articoli" + std::string(lingua), {"pagina", "sottopagina"});
  if (opened && firstLanguage_) opened = open(details_, "dettaglio", {"beforecode", "aftercode"});
  if (opened && firstLanguage_) opened = open(order_, "ordinamento", {});
  return opened;
}

Result<Statement> RowTables::insertInto(std::string_view table, const std::vector<std::string>& columns) {
  std::string names, marks;
  for (const std::string& column : columns) {
    names.append(names.empty() ? "" : ", ").append(column);
    marks.append(marks.empty() ? "?" : ", ?");
  }
  return build_.prepare("INSERT INTO " + std::string(table) + " (" + names + ") VALUES (" + marks + ")");
}

Result<> RowTables::writeArticles(const PageIdentity& page, int affiancati, const DerivedRows& rows) {
  std::vector<DerivedField> pageFields(2), cellFields(2);
  pageFields[0].set(std::string_view(page.root));
  pageFields[1].setWhole(page.subPage);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (auto written = articles_.write(rows[i], pageFields); !written) return written;
    if (!firstLanguage_) continue;
    CellCode code = cellCode(static_cast<int>(i), affiancati, i + 1 == rows.size());
    cellFields[0].set(std::move(code.before));
    cellFields[1].set(std::move(code.after));
    if (auto written = details_.write(rows[i], cellFields); !written) return written;
    if (auto written = order_.write(rows[i], {}); !written) return written;
  }
  return {};
}

}  // namespace kv
