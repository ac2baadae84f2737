#include "commerce/settings/legal_site.h"

#include <algorithm>
#include <array>

#include "platform/files/files.h"
#include "platform/files/listing.h"
#include "platform/text/text.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

constexpr std::string_view orderTag = "<<4-invia_ordine>>", withdrawalPage = "kvrecesso.php";
// One of them is in every wording that says so, in the languages that are shipped.
constexpr std::array<std::string_view, 9> payingWords{"paga",     "acquista", "compra",  "pay",   "buy",
                                                      "paiement", "acheter",  "zahlung", "kaufen"};

/// The pages of the template as texts; those that can't be read are missing.
Result<std::vector<std::string>> templatePages(const Session& session, const std::string& application) {
  const std::string folder = joinPath(application, session.templatePath);
  std::vector<std::string> pages;
  const auto names = readFileNames(folder, "*.htm");
  if (!names) return fail(names.error());
  for (const std::string& name : *names) {
    if (auto page = readText(joinPath(folder, name))) pages.push_back(std::move(*page));
  }
  return pages;
}

bool isInAny(const std::vector<std::string>& pages, std::string_view text) {
  return std::ranges::any_of(pages, [&](const std::string& page) { return page.find(text) != std::string::npos; });
}

/// What a language module says for a tag: its next line. Empty where module or tag is missing.
std::string wordOf(const std::string& application, const std::string& language, std::string_view tag) {
  const auto file = findEntry(entryPath(application, languagesFolder), language + ".lng");
  const auto module = file ? readText(*file) : Result<std::string>(fail(ErrorKind::Missing, application, language));
  if (!module) return {};
  const auto lines = splitLines(*module);
  const auto found = std::ranges::find_if(lines, [&](std::string_view line) { return trim(line) == tag; });
  const bool hasWord = found != lines.end() && found + 1 != lines.end() && !(found + 1)->starts_with("<<");
  return hasWord ? std::string(trim(*(found + 1))) : std::string();
}

bool saysPaying(std::string_view button) {
  return std::ranges::any_of(payingWords,
                             [&](auto word) { return findIgnoringCase(button, word) != std::string::npos; });
}

/// Directive 2011/83/EU, article 8, paragraph 2.
LegalDuty orderButton(const Session& session, const std::string& application, const std::vector<std::string>& pages) {
  LegalDuty duty{"Pulsante dell'ordine", DutyState::Met, "Il pulsante dice che ordinare obbliga a pagare.", {}};
  if (!isInAny(pages, orderTag)) {
    return {duty.title,
            DutyState::Missing,
            "La pagina dell'ordine del template non ha il pulsante \"Ordine con obbligo di pagare\".",
            {DutySubject::Command, {}, 0, 1, "template"}};
  }
  for (int language = 1; language <= session.languageCount; ++language) {
    const std::string& name = session.languageNames[static_cast<std::size_t>(language - 1)];
    const std::string button = wordOf(application, name, orderTag);
    const DutyTarget target{DutySubject::Command, {}, 0, language, "languages"};
    if (button.empty()) {
      return {duty.title, DutyState::Missing, "Nel modulo linguistico " + name + " manca il testo del pulsante.",
              target};
    }
    if (saysPaying(button)) continue;
    return {duty.title, DutyState::Check,
            "In " + name + " il pulsante dice \"" + button + "\": deve dire che ordinare obbliga a pagare.", target};
  }
  return duty;
}

/// Directive 2011/83/EU, article 11a, of Directive (EU) 2023/2673.
LegalDuty withdrawalFunction(const Session& session, const std::string& application,
                             const std::vector<std::string>& pages) {
  const std::string title = "Funzione di recesso";
  const bool hasScript = findEntry(entryPath(session.ShopFolder, "code"), withdrawalPage) ||
                         findEntry(entryPath(application, "code"), withdrawalPage);
  if (!hasScript) {
    return {title, DutyState::Missing, "Negli script del negozio manca la pagina con cui si recede da un ordine.", {}};
  }
  if (isInAny(pages, withdrawalPage)) {
    return {title, DutyState::Met, "Le pagine portano alla funzione con cui si recede da un ordine.", {}};
  }
  return {title,
          DutyState::Missing,
          "Nessuna pagina del template porta alla funzione di recesso (" + std::string(withdrawalPage) + ").",
          {DutySubject::Command, {}, 0, 1, "template"}};
}

}  // namespace

Result<std::vector<LegalDuty>> siteDuties(const Session& session, const std::string& applicationFolder) {
  const auto pages = templatePages(session, applicationFolder);
  if (!pages) return fail(pages.error());
  return std::vector<LegalDuty>{orderButton(session, applicationFolder, *pages),
                                withdrawalFunction(session, applicationFolder, *pages)};
}

}  // namespace kv
