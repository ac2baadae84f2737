// Feeds of products, and exports of other shops: whatever the bytes, a feed is read within the limits or refused, and
// what the shapes of exports make of its rows has a column at most once.
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>

#include "import/tables/export_shapes.h"
#include "platform/sheet/sheet_readers.h"

namespace {

void requireFeed(bool holds) {
  if (!holds) std::abort();
}

kv::SheetTable feedTable() {
  kv::SheetTable table{"articoli", "Articoli", "articoli", "articoli", "ID", "ID", {{"codice", "Codice", {"codice"}}},
                       {}};
  for (const char* name : {"ID", "codice", "titolo", "descrizione", "note", "prezzo", "offerta", "offertaprezzo",
                           "reparto", "peso", "fuoricatalogo"}) {
    table.columns.push_back({name, std::string("Colonna ") + name, name, kv::CellField::Text, name});
  }
  table.columns.push_back({"immagine0", "Immagine", "Picture", kv::CellField::Picture, "immagine0"});
  return table;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  kv::SheetRequest request;
  request.limits.columns = 16;
  request.limits.rows = 64;
  auto content = kv::readFeedBytes("feed.xml", bytes, request);
  if (!content) return 0;
  requireFeed(content->cells.rows() <= 64 && content->cells.width() <= 16);
  const kv::SheetTable table = feedTable();
  for (const auto& shape : kv::exportShapeNames()) {
    kv::ReadSheet sheet{{kv::SheetForm::Feed, 0, {}}, {}, content->cells};
    const auto mapping = kv::applyExportShape(shape.name, table, {}, sheet);
    requireFeed(mapping.has_value() && sheet.cells.rows() <= content->cells.rows());
    std::set<std::size_t> seen;
    for (const auto& column : *mapping) requireFeed(!column || seen.insert(*column).second);
  }
  return 0;
}
