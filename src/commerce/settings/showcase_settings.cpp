#include "commerce/settings/showcase_settings.h"

namespace kv {
namespace {

constexpr std::size_t left = 0;
constexpr std::size_t center = 1;
constexpr std::size_t right = 2;
constexpr std::size_t floatLeft = 3;
constexpr std::size_t floatRight = 4;

std::size_t alignmentOf(std::string_view align, std::string_view style) {
  const bool isFloating = style == showcaseAlignments[floatLeft].style;
  if (align == showcaseAlignments[left].align) return isFloating ? floatLeft : left;
  // The style looked for is that of the other side, which OK never stores with this one.
  if (align == showcaseAlignments[right].align) return isFloating ? floatRight : right;
  return center;
}

}  // namespace

Result<ShowcaseForm> loadShowcase(Database& catalogue) {
  auto row = catalogue.prepare(
      "SELECT vetalign, vetalignstyle, vetopzioni, vetsize, colonnevetrina, singleitem_vet FROM generale");
  if (!row) return fail(row.error());
  const auto found = row->step();
  if (!found) return fail(found.error());
  ShowcaseForm form;
  if (!*found) return form;
  form.alignment = alignmentOf(row->text(0), row->text(1));
  const std::int64_t bits = row->integer(2);
  for (std::size_t i = 0; i < form.fields.size(); ++i) form.fields[i] = ((bits >> i) & 1) != 0;
  form.fontSize = static_cast<int>(row->integer(3));
  form.columns = static_cast<int>(row->integer(4));
  form.singleItem = row->flag(5);
  return form;
}

Result<> storeShowcase(Database& catalogue, const ShowcaseForm& form) {
  auto writer = catalogue.prepare(
      "UPDATE generale SET vetalign = ?1, vetalignstyle = ?2, vetopzioni = ?3, vetsize = ?4, colonnevetrina = ?5,"
      " singleitem_vet = ?6");
  if (!writer) return fail(writer.error());
  int bits = 0;
  for (std::size_t i = 0; i < form.fields.size(); ++i) bits |= form.fields[i] ? 1 << i : 0;
  const ShowcaseAlignment& alignment = showcaseAlignments[form.alignment];
  writer->bind(1, alignment.align);
  writer->bind(2, alignment.style);
  writer->bind(3, bits);
  const auto bindNumber = [&](int index, int number) {
    if (number == 0) return writer->bindNull(index);
    writer->bind(index, number);
  };
  bindNumber(4, form.fontSize);
  bindNumber(5, form.columns);
  writer->bind(6, form.singleItem);
  return writer->execute();
}

}  // namespace kv
