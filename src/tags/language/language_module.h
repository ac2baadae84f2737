#pragma once
// Language modules: the fixed words of a shop in one language, from "<code>.lng" in the application's folder
// `languages`; and the links of a page to its copies in the other languages.

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/image/image.h"
#include "platform/ports/result.h"
#include "store/schema/schema.h"
#include "tags/syntax/tag_index.h"

namespace kv {

/// The words of one module by tag; case counts. The first of two sections of one name wins.
class LanguageModule {
 public:
  /// TagLingua (language tag): the text of a tag, given bare ("pay_ok") or whole ("<<4-pay_ok>>"); the whole tag when
  /// the module lacks it.
  std::string TagLingua(std::string_view nome) const;
  /// The text of a tag by its bare name, in which there is no ">>"; nullptr when the module lacks it.
  const std::string* find(std::string_view name) const;
  /// The number of sections.
  std::size_t size() const { return texts_.size(); }

  /// Reads the sections of a module's text. Comments ("/..."), headings ("[...") and empty lines are no part of a text.
  static LanguageModule parse(std::string_view text);

 private:
  TagIndex index_{'4'};
  std::vector<std::string> texts_;  // by section of index_
};

/// CaricaLngFile (load language file): loads "<languagesFolder>/<code>.lng" (name found without regard to case). A
/// module without <<4-listino_obbligatorio>> gets it appended on disk; a failure of that write is ignored, and the
/// module is then used as it is. Failures: as readText.
Result<LanguageModule> CaricaLngFile(const std::string& languagesFolder, std::string_view code);

/// The size of each language's flag in pixels, none where "<code>.gif" can't be read.
using FlagSizes = std::array<std::optional<ImageSize>, maxLanguages>;

/// The languages of the shop, for links between the copies of a page.
struct ShopLanguages {
  int count = 1;                                ///< 1 to 4
  std::array<std::string, maxLanguages> codes;  ///< language 1 first; those beyond `count` are not used
  std::string languagesFolder;                  ///< holds the modules and their flags
  std::string pageExtension = ".php";
  std::optional<FlagSizes> flags;  ///< from readFlagSizes, once per run; without it each link reads its flag
};

/// Reads the flags of the languages in use.
FlagSizes readFlagSizes(const ShopLanguages& languages);

/// CreaTagLingua (make language tag): the link to page `file` (named for its own language) in language n: the flag of
/// that language when "<code>.gif" can be read, else its code as text.
std::string CreaTagLingua(const ShopLanguages& languages, std::string_view file, int n);

}  // namespace kv
