// The checks of articles.
#include <bit>

#include "builder/doctor/checks.h"
#include "platform/text/text.h"

namespace kv {
namespace {

FindingTarget articleTarget(const ArticleFact& article, std::string_view column, int language = 1, int listino = 0) {
  return {FindingSubject::Article, std::to_string(article.ID), std::string(column), language, listino};
}

/// A finding of the article at an index.
Finding articleFinding(const DoctorFacts& facts, std::size_t index, const std::string& text, FindingTarget target) {
  Finding finding;
  finding.text = "Articolo " + facts.articleName(index) + ": " + text;
  finding.target = std::move(target);
  return finding;
}

bool hasBit(unsigned flags, int bit) { return (flags >> static_cast<unsigned>(bit) & 1U) != 0; }

FieldWrite articleWrite(const ArticleFact& article, std::string column, Value value) {
  return {"articoli", article.ID, std::move(column), std::move(value)};
}

std::string inList(int listino) { return listino == 0 ? "" : " nel listino " + std::to_string(listino); }

/// " nei listini 1, 2 e 5"; of the first list alone nothing.
std::string inLists(ListFlags lists) {
  std::vector<int> numbers;
  for (int listino = 0; listino < listini; ++listino) {
    if (hasBit(lists, listino)) numbers.push_back(listino);
  }
  if (numbers.size() == 1) return inList(numbers.front());
  std::string text = " nei listini ";
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    text += (i == 0 ? "" : i + 1 == numbers.size() ? " e " : ", ") + std::to_string(numbers[i]);
  }
  return text;
}

/// A finding for each of the price lists, mended by ending the offer there.
void addOffers(Findings& found, const DoctorFacts& facts, std::size_t index, ListFlags lists, const std::string& text) {
  const ArticleFact& article = facts.articles[index];
  const std::string_view field = article.isHidden ? "offerta" : "offertaprezzo";
  for (int listino = 0; lists != 0 && listino < listini; ++listino) {
    if (!hasBit(lists, listino)) continue;
    const std::string column = "offerta" + std::string(listinoSuffixes[static_cast<std::size_t>(listino)]);
    found.push_back(articleFinding(facts, index, text + inList(listino), articleTarget(article, field, 1, listino)));
    found.back().mending = "Togli l'offerta";
    found.back().writes = {articleWrite(article, column, false)};
  }
}

/// The offers that a fact of the articles in the catalogue, or of those that are out of it, names.
Findings offersOf(const DoctorFacts& facts, bool areHidden, ListFlags ArticleFact::*offers, const std::string& text) {
  Findings found;
  for (std::size_t i = 0; i < facts.articles.size(); ++i) {
    const ArticleFact& article = facts.articles[i];
    if (article.isHidden == areHidden) addOffers(found, facts, i, article.*offers, text);
  }
  return found;
}

/// "inglese" for the second language of a shop.
std::string languageName(const DoctorFacts& facts, int index) {
  return facts.languageNames[static_cast<std::size_t>(index)];
}

/// Price lists in which any article of the catalogue has a price; the first one is always in use.
ListFlags listsInUse(const DoctorFacts& facts) {
  unsigned used = 1;
  for (const ArticleFact& article : facts.articles) {
    if (!article.isHidden) used |= ~static_cast<unsigned>(article.unpriced);
  }
  return static_cast<ListFlags>(used & 0x3FFU);
}

}  // namespace

Findings findMissingCodes(const DoctorFacts& facts) {
  Findings found;
  for (std::size_t i = 0; i < facts.articles.size(); ++i) {
    const ArticleFact& article = facts.articles[i];
    if (article.isHidden || !article.codice.empty()) continue;
    found.push_back(articleFinding(facts, i, "manca il codice, che distingue l'articolo negli ordini",
                                   articleTarget(article, "codice")));
  }
  return found;
}

Findings findDoubledCodes(const DoctorFacts& facts) {
  std::unordered_map<std::string, std::size_t> first;
  first.reserve(facts.articles.size());
  Findings found;
  for (std::size_t i = 0; i < facts.articles.size(); ++i) {
    const ArticleFact& article = facts.articles[i];
    if (article.isHidden || article.codice.empty()) continue;
    const auto [same, isNew] = first.emplace(foldCase(article.codice), i);
    if (isNew) continue;
    found.push_back(articleFinding(facts, i, "ha lo stesso codice dell'articolo " + facts.articleName(same->second),
                                   articleTarget(article, "codice")));
  }
  return found;
}

Findings findMissingTitles(const DoctorFacts& facts) {
  Findings found;
  for (std::size_t i = 0; i < facts.articles.size(); ++i) {
    const ArticleFact& article = facts.articles[i];
    if (article.isHidden || !hasBit(article.untitled, 0)) continue;
    found.push_back(articleFinding(facts, i, "manca il titolo", articleTarget(article, "titolo")));
  }
  return found;
}

Findings findUntranslatedArticles(const DoctorFacts& facts) {
  struct Text {
    std::string_view column, text;
    LanguageFlags missing;
  };
  Findings found;
  for (std::size_t i = 0; i < facts.articles.size(); ++i) {
    const ArticleFact& article = facts.articles[i];
    const LanguageFlags untitled = hasBit(article.untitled, 0) ? LanguageFlags{0} : article.untitled;
    if (article.isHidden || (untitled | article.undescribed | article.unsubtitled | article.unnoted) == 0) continue;
    const std::array<Text, 4> texts{{{"titolo", "manca il titolo", untitled},
                                     {"sottotitolo", "manca il sottotitolo", article.unsubtitled},
                                     {"descrizione", "manca la descrizione", article.undescribed},
                                     {"note", "mancano le note", article.unnoted}}};
    for (int language = 1; language < facts.languages; ++language) {
      for (const Text& text : texts) {
        if (!hasBit(text.missing, language)) continue;
        found.push_back(articleFinding(facts, i, std::string(text.text) + " in " + languageName(facts, language),
                                       articleTarget(article, text.column, language + 1)));
      }
    }
  }
  return found;
}

Findings findDoubledTitles(const DoctorFacts& facts) {
  // An article is told once, in the first language that has its title twice.
  std::vector<bool> isTold(facts.articles.size());
  Findings found;
  for (int language = 0; language < facts.languages; ++language) {
    std::unordered_map<std::size_t, std::size_t> first;
    first.reserve(facts.articles.size());
    for (std::size_t i = 0; i < facts.articles.size(); ++i) {
      const ArticleFact& article = facts.articles[i];
      const std::size_t key = article.titleKeys[static_cast<std::size_t>(language)];
      if (article.isHidden || article.department == noIndex || key == 0) continue;
      const auto [same, isNew] = first.emplace(key, i);
      if (isNew || isTold[i]) continue;
      isTold[i] = true;
      const std::string where = language == 0 ? "" : " in " + languageName(facts, language);
      found.push_back(articleFinding(
          facts, i, "ha lo stesso titolo dell'articolo " + facts.articleName(same->second) + " nel reparto" + where,
          articleTarget(article, "titolo", language + 1)));
    }
  }
  return found;
}

Findings findZeroPrices(const DoctorFacts& facts) {
  const ListFlags used = listsInUse(facts);
  Findings found;
  for (std::size_t i = 0; i < facts.articles.size(); ++i) {
    const ArticleFact& article = facts.articles[i];
    const unsigned unpriced = static_cast<unsigned>(article.unpriced) & used;
    if (article.isHidden || unpriced == 0) continue;
    // One for all lists: an import that brings one of ten prices would be told nine times for each article.
    found.push_back(articleFinding(facts, i,
                                   "si può ordinare al prezzo di 0" + inLists(static_cast<ListFlags>(unpriced)),
                                   articleTarget(article, "prezzo", 1, std::countr_zero(unpriced))));
  }
  return found;
}

Findings findBadOffers(const DoctorFacts& facts) {
  return offersOf(facts, false, &ArticleFact::badOffer, "il prezzo in offerta non è inferiore al prezzo");
}

Findings findFreeOffers(const DoctorFacts& facts) {
  return offersOf(facts, false, &ArticleFact::freeOffer, "è in offerta al prezzo di 0");
}

Findings findHiddenOffers(const DoctorFacts& facts) {
  return offersOf(facts, true, &ArticleFact::onOffer, "è fuori catalogo, ma in offerta");
}

Findings findStrayArticles(const DoctorFacts& facts) {
  Findings found;
  for (std::size_t i = 0; i < facts.articles.size(); ++i) {
    const ArticleFact& article = facts.articles[i];
    if (article.department != noIndex) continue;
    found.push_back(
        articleFinding(facts, i, "il suo reparto non esiste, nessuno può vederlo", articleTarget(article, "")));
  }
  return found;
}

Findings findLostVariants(const DoctorFacts& facts) {
  Findings found;
  for (const LostVariant& lost : facts.lostVariants) {
    const ArticleFact& article = facts.articles[lost.article];
    const std::string column = "opzione" + std::to_string(lost.slot);
    found.push_back(articleFinding(facts, lost.article,
                                   "la variante " + std::to_string(lost.slot) + inList(lost.listino) + " non esiste",
                                   articleTarget(article, column, 1, lost.listino)));
    found.back().mending = "Togli la variante";
    found.back().writes = {articleWrite(article, variantColumn(lost.slot, lost.listino), std::int64_t{1})};
  }
  return found;
}

}  // namespace kv
