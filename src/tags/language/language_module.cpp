#include "tags/language/language_module.h"

#include "platform/files/files.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "tags/syntax/file_naming.h"

namespace kv {

namespace {

constexpr std::string_view pricelistTag = "<<4-listino_obbligatorio>>";

/// What a shop says to a customer who has no price list, for modules that are older than this tag.
std::string_view pricelistText(std::string_view code) {
  if (equalsIgnoringCase(code, "italiano")) {
    return "Siamo spiacenti, non sei abilitato ad effettuare acquisti: per maggiori informazioni rivolgiti al gestore "
           "del negozio";
  }
  if (equalsIgnoringCase(code, "francese")) {
    return "Nous sommes d&eacutesol&eacutes, mais vous n'avez pas la facult&eacute de faire des achats sur ce site. "
           "Pour plus d'information, veuillez contacter nostre service client.";
  }
  return "Sorry, you're not allowed to buy on this store: please apply to the store manager for further information";
}

std::string withPricelistTag(std::string_view text, std::string_view code) {
  std::string result(text);
  if (!result.empty() && result.back() != '\n' && result.back() != '\r') result += "\r\n";
  result.append("\r\n").append(pricelistTag).append("\r\n").append(pricelistText(code)).append("\r\n");
  return result;
}

bool isNoText(std::string_view line) { return line.empty() || line.front() == '/' || line.front() == '['; }

std::optional<ImageSize> flagSize(const ShopLanguages& languages, const std::string& code) {
  if (code.empty()) return std::nullopt;
  const auto path = findEntry(languages.languagesFolder, code + ".gif");
  if (!path) return std::nullopt;
  const auto size = imageSize(*path);
  if (!size) return std::nullopt;
  return *size;
}

/// The page's name in the first language.
std::string withoutSuffix(std::string page) {
  for (std::size_t i = 1; i < languageSuffixes.size(); ++i) {
    const std::string mark = std::string(languageSuffixes[i]) + ".";
    if (const std::size_t at = page.rfind(mark); at != std::string::npos) page.erase(at, languageSuffixes[i].size());
  }
  return page;
}

}  // namespace

std::string LanguageModule::TagLingua(std::string_view nome) const {
  const bool whole = index_.isWhole(nome);
  const std::size_t section = index_.find(nome, whole);
  if (section != TagIndex::none) return texts_[section];
  return whole ? std::string(nome) : index_.whole(nome);
}

const std::string* LanguageModule::find(std::string_view name) const {
  const std::size_t section = index_.findName(name);
  return section == TagIndex::none ? nullptr : &texts_[section];
}

LanguageModule LanguageModule::parse(std::string_view text) {
  LanguageModule module;
  for (TagSection& section : readSections(text, module.index_, isNoText)) {
    module.texts_.push_back(std::move(section.text));
  }
  return module;
}

Result<LanguageModule> CaricaLngFile(const std::string& languagesFolder, std::string_view code) {
  const std::string name = std::string(code) + ".lng";
  const std::string path = entryPath(languagesFolder, name);
  auto text = readText(path);
  if (!text) return fail(text.error());
  if (text->find(pricelistTag) == std::string::npos) {
    std::string renewed = withPricelistTag(*text, code);
    if (writeText(path, renewed)) *text = std::move(renewed);
  }
  return LanguageModule::parse(*text);
}

FlagSizes readFlagSizes(const ShopLanguages& languages) {
  FlagSizes sizes;
  for (std::size_t i = 0; i < sizes.size() && static_cast<int>(i) < languages.count; ++i) {
    sizes[i] = flagSize(languages, languages.codes[i]);
  }
  return sizes;
}

std::string CreaTagLingua(const ShopLanguages& languages, std::string_view file, int n) {
  const std::size_t language = n >= 1 && n <= maxLanguages ? static_cast<std::size_t>(n - 1) : 0;
  const std::string firstPage = withoutSuffix(PutExt(file, languages.pageExtension));
  std::string page = FileLingua(firstPage, languageSuffixes[language]);
  if (const std::size_t query = page.find("?n="); query != std::string::npos) {
    page.replace(query + 3, std::string::npos, "<?php echo $sp; ?>");
  }
  const std::string& code = languages.codes[language];
  const auto size = languages.flags ? (*languages.flags)[language] : flagSize(languages, code);
  std::string link = "<a href=\"" + page + "\">";
  if (!size) return link + code + "</a>";
  const auto number = [](int value) { return formatNumber(static_cast<std::int64_t>(value), "###0"); };
  link += "<img src=\"kvan_" + code + ".gif\" height=\"" + number(size->height) + "\" width=\"" + number(size->width);
  return link + "\" border=\"0\"></a>";
}

}  // namespace kv
