#include "support/golden_case.h"

#include <algorithm>

#include "platform/files/files.h"
#include "platform/text/text.h"
#include "support/golden_blocks.h"

namespace kv::test {
namespace {

constexpr std::string_view filesPart = "files", ownRowsPart = "rows";

bool isHexadecimal(std::string_view name) { return endsWithIgnoringCase(name, ".gif"); }

// The part of a line "name | first line | second line".
TxtarPart filePart(std::string_view line) {
  const std::vector<std::string> cells = splitCells(line);
  TxtarPart part{cells.front(), {}, ""};
  if (isHexadecimal(part.name)) part.flags.emplace_back("hex");
  for (std::size_t i = 1; i < cells.size(); ++i) {
    const std::string& cell = cells[i];
    const bool quoted = cell.size() > 1 && cell.front() == '"' && cell.back() == '"';
    part.text += (quoted ? cell.substr(1, cell.size() - 2) : cell) + "\n";
  }
  return part;
}

// The parts with those that "files" has lines for in place of it.
std::vector<TxtarPart> withFiles(const std::vector<TxtarPart>& parts) {
  std::vector<TxtarPart> all;
  for (const TxtarPart& part : parts) {
    if (part.name != filesPart) {
      all.push_back(part);
      continue;
    }
    for (const std::string_view line : splitLines(part.text)) all.push_back(filePart(line));
  }
  return all;
}

}  // namespace

Result<GoldenCase> readGoldenCase(const std::string& path) {
  auto text = readBytes(path);
  if (!text) return fail(text.error());
  GoldenCase one{parseTxtar(*text), {}};
  const TxtarPart* name = one.own.find("base");
  if (name == nullptr || name->flags.empty()) return one;
  const std::string cases(folderOf(path));
  auto base = readGoldenCase(joinPath(std::string(folderOf(cases)), "base/" + name->flags.front() + ".txt"));
  if (!base) return fail(base.error());
  one.base = withBase(*base);
  return one;
}

Txtar withBase(const GoldenCase& one) {
  Txtar whole{one.own.comment, withFiles(one.own.parts)};
  for (const TxtarPart& part : one.base.parts) {
    const auto own = std::ranges::find(whole.parts, part.name, &TxtarPart::name);
    if (own == whole.parts.end()) {
      whole.parts.push_back(part);
    } else if (part.name == ownRowsPart) {
      own->text.insert(0, part.text + "\n");
    }
  }
  return whole;
}

std::vector<TxtarPart> withoutBase(const GoldenCase& one, std::vector<TxtarPart> produced) {
  std::erase_if(produced, [&](const TxtarPart& part) {
    const TxtarPart* base = one.base.find(part.name);
    return base != nullptr && base->text == part.text && base->flags == part.flags;
  });
  return produced;
}

}  // namespace kv::test
