#include "shell/workbench/fields/related_words.h"

#include "platform/text/text.h"

namespace kv {

std::vector<std::string> relatedWords(CatalogueSets& sets) {
  std::vector<std::string> words;
  if (!sets.isBound()) return words;
  auto rows = sets.session().catalogue.prepare("SELECT DISTINCT correlazione FROM articoli WHERE correlazione <> ''");
  if (!rows) return words;
  for (;;) {
    const auto row = rows->step();
    if (!row || !*row) break;
    std::string word(rows->text(0));
    if (!trim(word).empty()) words.push_back(std::move(word));
  }
  return words;
}

}  // namespace kv
