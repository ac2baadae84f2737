#include "commerce/settings/makers.h"

#include <algorithm>

#include "platform/text/single_line.h"
#include "platform/text/text.h"
#include "store/catalogue/side_fields.h"

namespace kv {
namespace {

std::string makerColumns() {
  std::string names;
  for (const MakerField& field : makerFields) names += (names.empty() ? "" : ", ") + std::string(field.column);
  return names;
}

Result<> removeMaker(Database& catalogue, std::int64_t ID) {
  for (const char* sql : {"DELETE FROM sicurezza WHERE produttore = ?", "DELETE FROM produttori WHERE ID = ?"}) {
    auto row = catalogue.prepare(sql);
    if (!row) return fail(row.error());
    row->bind(1, ID);
    if (auto done = row->execute(); !done) return done;
  }
  return {};
}

/// Writes a maker over its row, or as a new one.
Result<> writeMakerRow(Database& catalogue, const Maker& maker) {
  const std::string sql = maker.ID == 0
                              ? "INSERT INTO produttori (" + makerColumns() + ") VALUES (?, ?, ?, ?, ?, ?)"
                              : "UPDATE produttori SET (" + makerColumns() + ") = (?, ?, ?, ?, ?, ?) WHERE ID = ?";
  auto row = catalogue.prepare(sql);
  if (!row) return fail(row.error());
  int parameter = 0;
  for (const std::string& text : maker.texts) row->bind(++parameter, text);
  if (maker.ID != 0) row->bind(++parameter, maker.ID);
  return row->execute();
}

}  // namespace

Result<MakerEditor> MakerEditor::load(Database& catalogue) {
  MakerEditor editor;
  if (!hasSideTable(catalogue, "produttori")) return editor;
  auto rows = catalogue.prepare("SELECT ID, " + makerColumns() + " FROM produttori ORDER BY nome, ID");
  if (!rows) return fail(rows.error());
  auto more = rows->step();
  for (; more && *more; more = rows->step()) {
    Maker maker{rows->integer(0), {}};
    for (std::size_t i = 0; i < makerFields.size(); ++i) maker.texts[i] = rows->text(static_cast<int>(i) + 1);
    editor.makers_.push_back(std::move(maker));
  }
  if (!more) return fail(more.error());
  editor.loaded_ = editor.makers_;
  return editor;
}

std::string MakerEditor::line(std::size_t maker) const {
  const std::string& name = makers_[maker].texts[makerName];
  return name.empty() ? "(senza nome)" : name;
}

void MakerEditor::remove(std::size_t maker) { makers_.erase(makers_.begin() + static_cast<std::ptrdiff_t>(maker)); }

void MakerEditor::set(std::size_t maker, std::size_t field, std::string_view text) {
  makers_[maker].texts[field] = trim(singleLine(text));
}

std::optional<MakerFault> MakerEditor::fault() const {
  for (std::size_t i = 0; i < makers_.size(); ++i) {
    const std::string& name = makers_[i].texts[makerName];
    if (name.empty()) return MakerFault{i, makerName, "Indicare il nome del produttore."};
    const auto same = [&](const Maker& other) { return equalsIgnoringCase(other.texts[makerName], name); };
    if (std::any_of(makers_.begin(), makers_.begin() + static_cast<std::ptrdiff_t>(i), same)) {
      return MakerFault{i, makerName, "C'è già un produttore con questo nome."};
    }
  }
  return {};
}

Result<> MakerEditor::store(Database& catalogue) const {
  for (const Maker& old : loaded_) {
    if (std::ranges::find(makers_, old.ID, &Maker::ID) != makers_.end()) continue;
    if (auto removed = removeMaker(catalogue, old.ID); !removed) return removed;
  }
  for (const Maker& maker : makers_) {
    if (std::ranges::find(loaded_, maker) != loaded_.end()) continue;
    if (auto written = writeMakerRow(catalogue, maker); !written) return written;
  }
  return {};
}

Result<> MakerEditor::save(Database& catalogue) const {
  if (!isChanged()) return {};
  if (auto ready = prepareSideField(catalogue, SideField::Maker); !ready) return ready;
  if (auto begun = catalogue.begin(); !begun) return begun;
  if (auto stored = store(catalogue); !stored) {
    catalogue.rollback();
    return stored;
  }
  return catalogue.commit();
}

}  // namespace kv
