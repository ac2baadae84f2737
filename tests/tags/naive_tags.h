#pragma once
// The rules of tags and references written down step by step, without regard to cost: what the fast routines are
// compared with.

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/numbers/number_format.h"
#include "tags/custom/custom_tags.h"
#include "tags/engine/tag_engine.h"
#include "tags/language/language_module.h"

namespace kv::test {

inline std::string naiveNormalizzaTag(std::string text) {
  const std::pair<const char*, const char*> steps[] = {
      {"&lt;&lt;", "<<"}, {"<&lt;", "<<"},  {"&lt;<", "<<"}, {"&gt;&gt;", ">>"}, {">&gt;", ">>"},
      {"&gt;>", ">>"},    {"%3c", "%3C"},   {"%3e", "%3E"},  {"%3C%3C", "<<"},   {"<%3C", "<<"},
      {"%3C<", "<<"},     {"%3E%3E", ">>"}, {">%3E", ">>"},  {"%3E>", ">>"}};
  for (const auto& [what, env] : steps) {
    const std::string from = what;
    const std::string to = env;
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
      text.replace(at, from.size(), to);
    }
  }
  return text;
}

inline std::string naiveValue(const std::string& name, const std::string& tag, const TagContext& context, int kind) {
  if (name == "/COUNTER/") {
    return context.reparto ? "<?php echo $Contatore; ?>" : formatNumber(std::int64_t{context.contatore}, "######0");
  }
  if (kind == 4) return context.words == nullptr ? tag : context.words->TagLingua(name);
  if (kind == 5) return context.customTags == nullptr ? std::string() : context.customTags->TagPersonale(name);
  const std::string* column = context.row == nullptr ? nullptr : context.row->find(name);
  const std::string php = "<?php echo ViewArt(\"" + name + "\"); ?>";
  if (column != nullptr) return kind == 2 && context.reparto ? php : *column;
  return kind == 2 ? php : tag;
}

/// No value: a tag without an end. `steps` bounds the replacements; no value either when they are used up.
inline std::optional<std::string> naiveEspandiTag(std::string text, const TagContext& context, int kind, int steps) {
  text = naiveNormalizzaTag(std::move(text));
  const std::string prefix = "<<" + std::to_string(kind) + "-";
  for (std::size_t at = text.find(prefix); at != std::string::npos; at = text.find(prefix, at)) {
    const std::size_t name = at + prefix.size();
    const std::size_t end = text.find(">>", name);
    if (end == std::string::npos || steps-- == 0) return std::nullopt;
    const std::string tag = text.substr(at, end + 2 - at);
    const std::string value = naiveValue(text.substr(name, end - name), tag, context, kind);
    text.replace(at, tag.size(), value);
    if (!value.empty()) ++at;
  }
  return text;
}

inline std::string lowered(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return text;
}

/// For names and texts in ASCII.
inline std::string naiveReplaceString(std::string text, std::string name, const std::string& pageExtension) {
  const bool hasBlank = name.find(' ') != std::string::npos;
  for (int round = 0; round < (hasBlank ? 2 : 1); ++round) {
    if (round == 1) {
      for (std::size_t at = name.find(' '); at != std::string::npos; at = name.find(' ')) name.replace(at, 1, "%20");
    }
    const std::size_t dot = name.find('.');
    const std::string base = name.substr(0, dot);
    std::string ext = dot == std::string::npos ? "" : name.substr(dot);
    const std::string lower = lowered(ext);
    const bool ends = lower.size() == 4 || (lower.size() > 4 && !(lower[4] >= 'a' && lower[4] <= 'z') &&
                                            !(lower[4] >= '0' && lower[4] <= '9'));
    if (!pageExtension.empty() && pageExtension != ".htm" && lower.starts_with(".htm") && ends &&
        !lowered(base).ends_with("results")) {
      ext.replace(0, 4, pageExtension);
    }
    const std::pair<const char*, const char*> pairs[] = {{"\"", "\""}, {"'", "'"}, {" ", " "},
                                                         {"=", " "},   {"=", ">"}, {" ", ">"}};
    for (const auto& [open, close] : pairs) {
      const std::string wanted = lowered(open + name + close);
      for (std::size_t at = lowered(text).find(wanted); at != std::string::npos;
           at = lowered(text).find(wanted, at + 1)) {
        text.replace(at + 1, name.size(), base + "<<1-IDlingua>>" + ext);
      }
    }
  }
  return text;
}

}  // namespace kv::test
