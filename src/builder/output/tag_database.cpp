#include "builder/output/tag_database.h"

#include "platform/files/files.h"

namespace kv {

Result<PageTagRow> TagDatabase::create(const std::string& shopFolder) {
  const std::string path = entryPath(shopFolder, "source.mdb");
  tags_.close();
  ignore(deleteFile(path), "the copy replaces it");
  if (auto copied = copyFile(entryPath(shopFolder, "source.new"), path); !copied) return fail(copied.error());
  auto opened = Database::open(path, OpenMode::Scratch);
  if (!opened) return fail(opened.error());
  tags_ = std::move(*opened);
  auto table = tags_.table("categoria");
  if (!table) return fail(table.error());
  return PageTagRow(*table);
}

Result<> TagDatabase::storePageTags(const PageTagRow& row) {
  std::string names, marks;
  for (const std::string& name : row.names()) {
    names += (names.empty() ? "\"" : ",\"") + name + "\"";
    marks += marks.empty() ? "?" : ",?";
  }
  auto insert = tags_.prepare("INSERT INTO categoria (" + names + ") VALUES (" + marks + ")");
  if (!insert) return fail(insert.error());
  int parameter = 0;
  for (const std::string& value : row.values()) insert->bind(++parameter, std::string_view(value));
  return insert->execute();
}

Result<> TagDatabase::store(const PageTagRow& row, const DerivedColumns& columns, const DerivedRows& articles) {
  if (!tags_.isOpen()) return {};
  if (auto begun = tags_.begin(); !begun) return begun;
  if (auto emptied = tags_.execute("DELETE FROM categoria; DELETE FROM articoli"); !emptied) return emptied;
  if (auto stored = storePageTags(row); !stored) return stored;
  auto writer = DerivedRowWriter::open(tags_, "articoli", columns, {});
  if (!writer) return fail(writer.error());
  for (std::size_t i = 0; i < articles.size(); ++i) {
    if (auto written = writer->write(articles[i], {}); !written) return written;
  }
  return tags_.commit();
}

}  // namespace kv
