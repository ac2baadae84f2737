#include "tags/custom/custom_tags.h"

#include "platform/files/files.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {

bool areCustomTagsOn(std::string_view setting) {
  const std::string_view text = trim(setting);
  return equalsIgnoringCase(text, "true") || equalsIgnoringCase(text, "vero") || toNumber(text).value_or(0) != 0;
}

const std::string* CustomTags::find(std::string_view name) const {
  const std::size_t section = index_.findName(name);
  return section == TagIndex::none ? nullptr : &entries_[section].text;
}

const std::string& CustomTags::TagPersonale(std::string_view nome) const {
  static const std::string nothing;
  const bool whole = nome.size() >= 4 && nome.starts_with("<<") && nome.ends_with(">>");
  const std::size_t section = index_.find(nome, whole);
  return section == TagIndex::none ? nothing : entries_[section].text;
}

void CustomTags::clear() {
  entries_.clear();
  index_.clear();
}

void CustomTags::add(std::string_view fileText, bool ofShop) {
  const auto keepsAll = [](std::string_view) { return false; };
  for (TagSection& section : readSections(fileText, index_, keepsAll)) {
    const std::string_view tag = section.tag;
    entries_.push_back({std::string(tag.substr(4, tag.size() - 6)), std::move(section.text), ofShop});
  }
}

CustomTags CaricaTagPersonali(const std::string& shopFolder, const std::string& applicationFolder) {
  CustomTags tags;
  const auto addFile = [&tags](const std::string& folder, std::string_view name, bool ofShop) {
    const auto path = findEntry(folder, name);
    if (!path) return;
    if (const auto text = readText(*path)) tags.add(*text, ofShop);
  };
  addFile(shopFolder, "shoptag.tag", true);
  addFile(applicationFolder, "personal.tag", false);
  return tags;
}

}  // namespace kv
