// Language modules and files of custom tags, whose bytes come from anywhere: reading them never crashes, a lookup gives
// a section's text or says that there is none, and the first of two sections of one name wins.
#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "platform/ports/result.h"
#include "platform/text/text.h"
#include "tags/custom/custom_tags.h"
#include "tags/language/language_module.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = kv::fromWindows1252({reinterpret_cast<const char*>(data), size});
  const auto words = kv::LanguageModule::parse(text);
  kv::CustomTags tags;
  tags.add(text, true);
  tags.add(text, false);
  require(tags.entries().size() % 2 == 0);

  // A name that holds tags or brackets of its own can hide another one.
  const auto isOdd = [](const kv::CustomTag& tag) {
    return tag.name.find('>') != std::string::npos || tag.name.find("<<5-") != std::string::npos;
  };
  const bool hasOddNames = std::any_of(tags.entries().begin(), tags.entries().end(), isOdd);
  for (const kv::CustomTag& entry : tags.entries()) {
    const std::string& found = tags.TagPersonale(entry.name);
    const bool looksWhole = entry.name.starts_with("<<") && entry.name.ends_with(">>");
    require(looksWhole || found == tags.TagPersonale("<<5-" + entry.name + ">>"));
    const auto same = [&](const kv::CustomTag& other) { return other.name == entry.name; };
    const auto first = std::find_if(tags.entries().begin(), tags.entries().end(), same);
    require(hasOddNames || found == first->text);
  }

  const std::string_view view = text;
  for (std::size_t at = view.find("<<4-"); at != std::string_view::npos; at = view.find("<<4-", at + 1)) {
    const std::size_t end = view.find(">>", at + 4);
    if (end == std::string_view::npos) break;
    const std::string_view name = view.substr(at + 4, end - at - 4);
    const std::string* found = words.find(name);
    const std::string whole = "<<4-" + std::string(name) + ">>";
    require(words.TagLingua(name) == (found == nullptr ? whole : *found));
    require(words.TagLingua(whole) == words.TagLingua(name));
  }
  kv::ignore(words.TagLingua(view), "only faults count");
  kv::ignore(tags.TagPersonale(view), "only faults count");
  return 0;
}
