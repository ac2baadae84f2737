// One pass over the articles. Every article is read once, whatever the checks look for.
#include "builder/doctor/doctor_facts.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr int slots = 4;
constexpr int articlePictures = 3;
constexpr std::array<std::string_view, 4> textColumns{"titolo", "sottotitolo", "descrizione", "note"};
constexpr std::size_t titleColumn = 0, subtitleColumn = 1, descriptionColumn = 2, notesColumn = 3, firstMemo = 2;
constexpr std::array<std::string_view, 3> priceColumns{"prezzo", "offerta", "offertaprezzo"};
constexpr std::string_view variantStems[]{"opzione1", "opzione2", "opzione3", "opzione4"};

/// Where the families of columns begin in the statement.
struct FactColumns {
  int texts = 6, prices = 0, pictures = 0, variants = 0;
};

std::string articleSelect(int languages, FactColumns& at) {
  std::string sql = "SELECT ID, catID, codice, fuoricatalogo, link, ID";
  for (const std::string_view column : textColumns) sql += ", " + languageColumns(column, languages);
  at.prices = at.texts + static_cast<int>(textColumns.size()) * languages;
  for (const std::string_view column : priceColumns) {
    for (const std::string_view suffix : listinoSuffixes) sql += ", " + std::string(column) + std::string(suffix);
  }
  at.pictures = at.prices + static_cast<int>(priceColumns.size()) * listini;
  for (int slot = 0; slot < articlePictures; ++slot) {
    const std::string digit = std::to_string(slot);
    sql += ", immagine" + digit + ", imgX" + digit + ", imgY" + digit;
  }
  at.variants = at.pictures + 3 * articlePictures;
  for (int slot = 1; slot <= slots; ++slot) {
    for (int listino = 0; listino < listini; ++listino) sql += ", " + variantColumn(slot, listino);
  }
  return sql + " FROM articoli";
}

class ArticleFactReader {
 public:
  ArticleFactReader(DoctorFacts& facts, const TextLook& look, PictureShelf& shelf)
      : facts_(facts), look_(look), shelf_(shelf) {
    for (std::size_t i = 0; i < facts.variants.size(); ++i) variantIndex_[facts.variants[i].ID] = i;
  }

  Result<> readAll(Database& catalogue) {
    auto row = catalogue.prepare(articleSelect(facts_.languages, at_));
    if (!row) return fail(row.error());
    for (auto found = row->step();; found = row->step()) {
      if (!found) return fail(found.error());
      if (!*found) return {};
      readOne(*row);
    }
  }

 private:
  void readOne(const Statement& row) {
    ArticleFact article;
    article.ID = row.integer(0);
    article.codice = trim(row.text(2));
    article.isHidden = row.flag(3);
    article.titolo = trim(row.text(at_.texts));
    article.department = departmentOf(row.text(1));
    readPrices(row, article);
    readMissing(row, article);
    const bool counts = !article.isHidden && article.department != noIndex;
    if (counts) ++facts_.departments[article.department].articles;
    facts_.articles.push_back(std::move(article));
    readVariants(row);
    // No visitor sees the others.
    if (facts_.articles.back().isHidden) return;
    readTexts(row);
    readPictures(row);
  }

  /// Articles of one department mostly follow each other.
  std::size_t departmentOf(std::string_view ID) {
    if (ID == lastID_) return lastDepartment_;
    lastID_ = ID;
    const auto found = facts_.departmentIndex.find(foldCase(ID));
    lastDepartment_ = found == facts_.departmentIndex.end() ? noIndex : found->second;
    return lastDepartment_;
  }

  void readPrices(const Statement& row, ArticleFact& article) const {
    for (int listino = 0; listino < listini; ++listino) {
      const auto bit = static_cast<ListFlags>(1U << static_cast<unsigned>(listino));
      const std::int64_t price = row.integer(at_.prices + listino);
      if (price == 0) article.unpriced |= bit;
      if (!row.flag(at_.prices + listini + listino)) continue;
      article.onOffer |= bit;
      const std::int64_t offer = row.integer(at_.prices + 2 * listini + listino);
      if (price != 0 && offer >= price) article.badOffer |= bit;
      if (price != 0 && offer == 0) article.freeOffer |= bit;
    }
  }

  std::string_view field(const Statement& row, std::size_t column, int language) const {
    return row.text(at_.texts + static_cast<int>(column) * facts_.languages + language - 1);
  }

  void readMissing(const Statement& row, ArticleFact& article) const {
    for (int language = 1; language <= facts_.languages; ++language) {
      const std::string_view title = trim(field(row, titleColumn, language));
      if (title.empty()) {
        article.untitled |= static_cast<LanguageFlags>(1U << static_cast<unsigned>(language - 1));
      } else {
        article.titleKeys[static_cast<std::size_t>(language - 1)] = titleKey(article.department, title);
      }
    }
    article.undescribed = missingOf(row, descriptionColumn);
    article.unsubtitled = missingOf(row, subtitleColumn);
    article.unnoted = missingOf(row, notesColumn);
  }

  /// The languages in which a text is missing that language 1 has.
  LanguageFlags missingOf(const Statement& row, std::size_t column) const {
    LanguageFlags flags = 0;
    if (facts_.languages == 1 || trim(field(row, column, 1)).empty()) return flags;
    for (int language = 2; language <= facts_.languages; ++language) {
      const bool isEmpty = trim(field(row, column, language)).empty();
      if (isEmpty) flags |= static_cast<LanguageFlags>(1U << static_cast<unsigned>(language - 1));
    }
    return flags;
  }

  /// Never 0. Case counts for nothing, and titles of other departments are no matter.
  static std::size_t titleKey(std::size_t department, std::string_view title) {
    const std::size_t key = std::hash<std::string>()(foldCase(title)) * 31 + department;
    return key == 0 ? 1 : key;
  }

  static bool isWorthALook(std::string_view text, std::size_t column) {
    if (text.empty()) return false;
    if (text.find_first_of("<&%") != std::string_view::npos) return true;
    if (column >= firstMemo) return false;
    for (const char c : text) {
      if (static_cast<unsigned char>(c) >= 0x80) return true;
    }
    return false;
  }

  FindingTarget target(std::string_view column, int language = 1, int listino = 0) const {
    const std::string key = std::to_string(facts_.articles.back().ID);
    return {FindingSubject::Article, key, std::string(column), language, listino};
  }
  std::string owner() const { return "Articolo " + facts_.articleName(facts_.articles.size() - 1); }

  void readTexts(const Statement& row) const {
    for (std::size_t column = 0; column < textColumns.size(); ++column) {
      for (int language = 1; language <= facts_.languages; ++language) {
        const std::string_view text = field(row, column, language);
        if (!isWorthALook(text, column)) continue;
        const FindingTarget at = target(textColumns[column], language);
        if (column < firstMemo) {
          look_.title(text, TextHome::ArticleText, at, owner());
        } else {
          look_.text(text, TextHome::ArticleText, at, owner());
        }
      }
    }
    const std::string_view link = row.text(4);
    if (!link.empty() && isDeadLink(link, look_.pages)) {
      look_.flaws.push_back({FlawKind::DeadLink, target("link"), owner(), std::string(link)});
    }
  }

  void readPictures(const Statement& row) {
    for (int slot = 0; slot < articlePictures; ++slot) {
      const int at = at_.pictures + 3 * slot;
      if (row.text(at).empty()) continue;
      shelf_.note(row.text(at), {target("immagine" + std::to_string(slot)), facts_.articles.size() - 1, slot,
                                 static_cast<int>(row.integer(at + 1)), static_cast<int>(row.integer(at + 2))});
    }
  }

  void readVariants(const Statement& row) {
    for (int slot = 1; slot <= slots; ++slot) {
      for (int listino = 0; listino < listini; ++listino) {
        const std::int64_t variant = row.integer(at_.variants + (slot - 1) * listini + listino);
        if (variant > 1 || variant < 0) noteVariant(variant, slot, listino);
      }
    }
  }

  void noteVariant(std::int64_t ID, int slot, int listino) {
    const std::size_t article = facts_.articles.size() - 1;
    const auto found = variantIndex_.find(ID);
    if (found == variantIndex_.end()) {
      facts_.lostVariants.push_back({article, slot, listino});
      return;
    }
    VariantFact& variant = facts_.variants[found->second];
    if (variant.article != noIndex) return;
    variant.article = article;
    variant.column = variantStems[slot - 1];
    variant.listino = listino;
  }

  DoctorFacts& facts_;
  const TextLook& look_;
  PictureShelf& shelf_;
  FactColumns at_;
  std::unordered_map<std::int64_t, std::size_t> variantIndex_;
  std::string lastID_;
  std::size_t lastDepartment_ = noIndex;
};

}  // namespace

std::string articleFactsQuery(int languages) {
  FactColumns columns;
  return articleSelect(languages, columns);
}

Result<> readArticleFacts(Database& catalogue, DoctorFacts& facts, const TextLook& look, PictureShelf& shelf) {
  return ArticleFactReader(facts, look, shelf).readAll(catalogue);
}

}  // namespace kv
