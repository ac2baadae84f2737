#include "tags/engine/reference_name.h"

#include <algorithm>

#include "platform/text/text.h"
#include "tags/engine/tag_engine.h"

namespace kv {

namespace {

ReferenceForm makeForm(std::string name, std::string_view pageExtension) {
  const std::size_t dot = std::min(name.find('.'), name.size());
  const std::string_view base = std::string_view(name).substr(0, dot);
  const std::string_view ext = std::string_view(name).substr(dot);
  const bool isPage = equalsIgnoringCase(ext, ".htm") || matchesLike(ext, ".htm[!a-z0-9]*");
  const bool renames = !pageExtension.empty() && !equalsIgnoringCase(pageExtension, ".htm");
  const bool renamesPage = renames && isPage && !endsWithIgnoringCase(base, "results");
  std::string folded = foldKeepingLength(name);
  return {std::move(name), std::move(folded), dot, renamesPage};
}

}  // namespace

std::vector<ReferenceForm> referenceForms(std::string_view nome, std::string_view pageExtension) {
  std::vector<ReferenceForm> forms;
  if (nome.empty()) return forms;
  forms.push_back(makeForm(std::string(nome), pageExtension));
  if (nome.find(' ') != std::string_view::npos) forms.push_back(makeForm(replaceAll(nome, " ", "%20"), pageExtension));
  return forms;
}

std::string replacementOf(const ReferenceForm& form, std::string_view pageExtension) {
  const std::string_view name = form.name;
  std::string text(name.substr(0, form.baseLength));
  text += languageTag;
  if (form.renamesPage) text += pageExtension;
  return text.append(name.substr(form.baseLength + (form.renamesPage ? pageEnding : 0)));
}

std::string foldKeepingLength(std::string_view text) {
  const auto isFurther = [](char character) { return (character & 0x80) != 0; };
  const auto startsCharacter = [](char character) { return (character & 0xC0) != 0x80; };
  std::string folded(text);
  char all = 0;
  for (char& character : folded) {
    all = static_cast<char>(all | character);
    if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
  }
  if (!isFurther(all)) return folded;
  for (auto at = std::find_if(folded.begin(), folded.end(), isFurther); at != folded.end();) {
    const auto end = std::find_if(at + 1, folded.end(), startsCharacter);
    const std::string lower = foldCase(std::string_view(at, end));
    if (lower.size() == static_cast<std::size_t>(end - at)) std::copy(lower.begin(), lower.end(), at);
    at = std::find_if(end, folded.end(), isFurther);
  }
  return folded;
}

std::string ReplaceString(std::string_view testo, std::string_view nome, std::string_view pageExtension) {
  std::string text(testo);
  for (const ReferenceForm& form : referenceForms(nome, pageExtension)) {
    std::string folded = foldKeepingLength(text);
    const std::string replacement = replacementOf(form, pageExtension);
    const std::string foldedReplacement = foldKeepingLength(replacement);
    for (const auto& [open, close] : referenceDelimiters) {
      const std::string wanted = open + form.folded + close;
      for (std::size_t at = folded.find(wanted); at != std::string::npos; at = folded.find(wanted, at + 1)) {
        folded.replace(at + 1, form.folded.size(), foldedReplacement);
        text.replace(at + 1, form.folded.size(), replacement);
      }
    }
  }
  return text;
}

}  // namespace kv
