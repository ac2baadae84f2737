#include "tags/custom/tag_editor.h"

#include <algorithm>

#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {
namespace {

std::string withoutLineEnds(std::string_view text) {
  std::string line(text);
  std::erase_if(line, [](char character) { return character == '\r' || character == '\n'; });
  return line;
}

std::string withCrLf(std::string_view text) {
  return replaceAll(replaceAll(replaceAll(text, "\r\n", "\n"), "\r", "\n"), "\n", "\r\n");
}

/// The path of a file, its name found without regard to case.
std::string tagFile(const std::string& folder, std::string_view name) { return entryPath(folder, name); }

/// Renames `stem`.tag to `stem`.bak, over the one of last time. True when there was such a file.
Result<bool> setAside(const std::string& folder, const std::string& stem) {
  const std::string file = tagFile(folder, stem + ".tag");
  if (!fileExists(file)) return false;
  const std::string aside = tagFile(folder, stem + ".bak");
  if (fileExists(aside)) {
    if (auto deleted = deleteFile(aside); !deleted) return fail(deleted.error());
  }
  if (auto moved = renameFile(file, aside); !moved) return fail(moved.error());
  return true;
}

/// Renames `stem`.new to `stem`.tag; the old one is restored when that fails.
Result<> takeInUse(const std::string& folder, const std::string& stem) {
  const auto hadOld = setAside(folder, stem);
  if (!hadOld) return fail(hadOld.error());
  const std::string file = joinPath(folder, stem + ".tag");
  auto moved = renameFile(joinPath(folder, stem + ".new"), file);
  if (!moved && *hadOld)
    ignore(renameFile(tagFile(folder, stem + ".bak"), file), "the first failure is the one to tell");
  return moved;
}

Result<> storeSwitch(Session& session, bool enabled) {
  auto statement = session.catalogue.prepare("UPDATE generale SET personaltags = ?");
  if (!statement) return fail(statement.error());
  statement->bind(1, std::string_view(enabled ? "1" : "0"));
  return statement->execute();
}

}  // namespace

TagEditor TagEditor::load(Session& session, const std::string& applicationFolder) {
  TagEditor editor;
  editor.tags_ = CaricaTagPersonali(session.ShopFolder, applicationFolder).entries();
  const auto stored = session.catalogue.scalar("SELECT personaltags FROM generale");
  editor.enabled_ = stored && areCustomTagsOn(asText(*stored));
  editor.read_ = editor.tags_;
  editor.wasEnabled_ = editor.enabled_;
  return editor;
}

std::string TagEditor::line(std::size_t index) const {
  const std::string& name = tags_[index].name;
  return name.empty() ? std::string() : "<<5-" + name + ">>";
}

bool TagEditor::add() {
  if (tags_.size() >= maxTags) return false;
  tags_.emplace_back();
  return true;
}

void TagEditor::remove(std::size_t index) {
  if (index < tags_.size()) tags_.erase(tags_.begin() + static_cast<std::ptrdiff_t>(index));
}

bool TagEditor::setName(std::size_t index, std::string_view name) {
  std::string line = withoutLineEnds(name);
  if (line.find(">>") != std::string::npos) return false;
  tags_[index].name = std::move(line);
  return true;
}
void TagEditor::setText(std::size_t index, std::string_view text) { tags_[index].text = withCrLf(text); }
void TagEditor::setOfShop(std::size_t index, bool ofShop) { tags_[index].ofShop = ofShop; }

bool TagEditor::isChanged() const {
  const auto isSame = [](const CustomTag& one, const CustomTag& other) {
    return one.name == other.name && one.text == other.text && one.ofShop == other.ofShop;
  };
  return enabled_ != wasEnabled_ || !std::ranges::equal(tags_, read_, isSame);
}

std::string TagEditor::fileText(bool ofShop) const {
  std::string text;
  for (std::size_t i = 0; i < tags_.size(); ++i) {
    const CustomTag& tag = tags_[i];
    if (tag.ofShop == ofShop && !tag.name.empty()) text += line(i) + "\r\n" + tag.text + "\r\n";
  }
  return text;
}

Result<> TagEditor::save(Session& session, const std::string& applicationFolder) const {
  const std::string ofShop = fileText(true);
  // Both are written before either replaces its old file: on a full disk the old ones stay.
  if (auto written = writeText(joinPath(applicationFolder, "personal.new"), fileText(false)); !written) return written;
  if (!ofShop.empty()) {
    if (auto written = writeText(joinPath(session.ShopFolder, "shoptag.new"), ofShop); !written) return written;
  }
  if (auto taken = takeInUse(applicationFolder, "personal"); !taken) return taken;
  if (!ofShop.empty()) {
    if (auto taken = takeInUse(session.ShopFolder, "shoptag"); !taken) return taken;
  } else if (auto aside = setAside(session.ShopFolder, "shoptag"); !aside) {
    return fail(aside.error());
  }
  return storeSwitch(session, enabled_);
}

}  // namespace kv
