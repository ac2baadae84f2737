#pragma once
// What the checks of the shop doctor go by: the catalogue read in one pass over each table, the picture folder listed
// once, each text looked at once. Const from then on.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "builder/doctor/findings.h"
#include "builder/doctor/text_flaws.h"
#include "commerce/settings/legal_duties.h"
#include "commerce/shipping/shipping_quote.h"
#include "platform/database/field_row.h"
#include "platform/ports/result.h"
#include "store/shop/session.h"

namespace kv {

/// Flags of the ten price lists, listino 0 in the lowest bit.
using ListFlags = std::uint16_t;
/// Flags of the four languages, language 1 in the lowest bit.
using LanguageFlags = std::uint8_t;

/// No department, or no article.
inline constexpr std::size_t noIndex = static_cast<std::size_t>(-1);

/// One article.
struct ArticleFact {
  std::int64_t ID = 0;
  std::size_t department = noIndex;  ///< index in DoctorFacts::departments
  bool isHidden = false;             ///< out of the catalogue
  ListFlags unpriced = 0;            ///< the price is 0
  ListFlags onOffer = 0;
  ListFlags badOffer = 0;         ///< the offer's price isn't below the price, which isn't 0
  ListFlags freeOffer = 0;        ///< the offer has no price, or 0, and the article has one
  LanguageFlags untitled = 0;     ///< languages of the shop without a title
  LanguageFlags undescribed = 0;  ///< the same of the description, where language 1 has one
  LanguageFlags unsubtitled = 0;  ///< the same of the subtitle
  LanguageFlags unnoted = 0;      ///< the same of the notes
  /// By which equal titles of a department are known, one for each language; 0 without a title.
  std::array<std::size_t, maxLanguages> titleKeys{};
  std::string codice;
  std::string titolo;  ///< of language 1
};

/// One department.
struct DepartmentFact {
  std::string ID, titolo, model, genitore;
  bool isHidden = false;       ///< column `nascosto`
  LanguageFlags untitled = 0;  ///< languages of the shop without a title
  std::size_t parent = noIndex;
  std::size_t articles = 0;  ///< in the catalogue, of the department itself
  std::size_t below = 0;     ///< of the department and those below it
};

/// One value of a variant.
struct VariantValueFact {
  std::int64_t ID = 0;
  std::string codice;
  bool isDefault = false;
  LanguageFlags untitled = 0;  ///< languages of the shop without a text
};
/// One variant, "(nessuna)" left out.
struct VariantFact {
  std::int64_t ID = 0;
  std::string nome;
  std::vector<VariantValueFact> values;
  std::size_t article = noIndex;  ///< the first one that offers it
  std::string column;             ///< there, without price list: "opzione2"
  int listino = 0;                ///< there
};
/// A variant of an article that does not exist.
struct LostVariant {
  std::size_t article = 0;
  int slot = 1, listino = 0;
};

/// A picture in a field.
struct PictureUse {
  FindingTarget target;
  std::size_t owner = noIndex;  ///< index of the article or department
  int slot = 0;                 ///< 0 to 2
  int width = 0, height = 0;    ///< as stored
  std::size_t file = 0;         ///< index in DoctorFacts::files
};
/// A picture that some field names.
struct PictureFile {
  std::string name;
  bool isThere = false, isDamaged = false;
  std::uint64_t bytes = 0;
  ImageSize size;  ///< as shown; 0 x 0 when it can't be read
};

/// What is wrong with a text.
enum class FlawKind { UnknownTag, EndlessTag, Reference, DeadLink };
struct TextFlaw {
  FlawKind kind = FlawKind::UnknownTag;
  FindingTarget target;
  std::string owner;   ///< of the text, as the merchant knows it
  std::string detail;  ///< the tag, the character or the link
};

/// A page model without its marks.
struct ModelFlaw {
  std::string file;
  std::string missing;  ///< the mark, or "" when they are in the wrong order
};

/// When things were made, in nanoseconds since 1970-01-01 00:00 UTC.
struct SiteAges {
  std::optional<std::int64_t> catalogue, built, rows, confirmed;
};

/// A row by a name that the merchant knows.
struct NamedRow {
  std::string key, name;
};

/// Everything the checks go by.
struct DoctorFacts {
  FieldRow generale, pagamento;
  int languages = 1;
  std::array<std::string, maxLanguages> languageNames;
  std::vector<std::string> missingModules;  ///< languages of the shop without an installed module

  std::vector<ArticleFact> articles;
  std::vector<DepartmentFact> departments;
  std::unordered_map<std::string, std::size_t> departmentIndex;  ///< by folded ID
  std::vector<VariantFact> variants;
  std::vector<LostVariant> lostVariants;

  std::vector<PictureUse> pictures;
  std::vector<PictureFile> files;
  std::vector<TextFlaw> flaws;

  bool hasTemplate = false;
  std::vector<std::string> models;  ///< of the template
  std::vector<ModelFlaw> modelFlaws;

  std::vector<NamedRow> strayCountries;  ///< without a zone
  std::vector<ShippingGap> gaps;
  std::vector<std::string> unfinishedPayments;  ///< switched on and not set up
  std::vector<LegalDuty> duties;                ///< what the law asks
  SiteAges ages;

  /// "A12 Vaso", or "n. 7" of an article without code and title.
  std::string articleName(std::size_t index) const;
  /// The title of a department, or its ID.
  std::string departmentName(std::size_t index) const;
};

/// Reads the open shop. Failures as Database::prepare and Statement::step; a missing file of the template or the site
/// is a finding and no failure.
Result<DoctorFacts> readDoctorFacts(Session& session, const std::string& applicationFolder);

/// What a text is looked at with, and the flaws so far. Private to the doctor.
struct TextLook {
  KnownTags known;
  NameSet pages;  ///< folded names of the pages of the site
  std::vector<TextFlaw>& flaws;

  /// Looks for tags and links.
  void text(std::string_view text, TextHome home, const FindingTarget& target, const std::string& owner) const;
  /// The same of a title, with its characters.
  void title(std::string_view text, TextHome home, const FindingTarget& target, const std::string& owner) const;
};

/// The picture files that fields name, each looked at once. Private to the doctor.
class PictureShelf {
 public:
  /// `folder`: that of the shop's pictures; `names`: its files.
  PictureShelf(std::string folder, const std::vector<std::string>& names, DoctorFacts& facts);
  /// Notes a field that names a picture; nothing for an empty name.
  void note(std::string_view name, PictureUse use);

 private:
  std::string folder_;
  DoctorFacts& facts_;
  NameSet listed_;
  std::unordered_map<std::string, std::size_t, TextHash, std::equal_to<>> known_;
};

/// Reads all articles in one pass; departments and variants are there already. Private to the doctor.
Result<> readArticleFacts(Database& catalogue, DoctorFacts& facts, const TextLook& look, PictureShelf& shelf);
/// The query of that pass, with all columns that the checks of articles need.
std::string articleFactsQuery(int languages);
/// Reads template, pages and ages. Failures as Database::prepare, Statement::step and readFileNames. Private to the
/// doctor.
Result<> readSiteFacts(Session& session, const std::string& applicationFolder, DoctorFacts& facts, TextLook& look);

/// Column names with the suffixes of the languages of the shop. Private to the doctor.
std::string languageColumns(std::string_view column, int languages);

}  // namespace kv
