#include "tags/language/language_choice.h"

#include <algorithm>

#include "platform/files/files.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

constexpr std::string_view moduleEnding = ".lng";

std::size_t indexOf(int language) { return static_cast<std::size_t>(language - 1); }

/// A module that no box in use shows yet.
std::string freeModule(const LanguageChoice& choice, const std::vector<std::string>& modules) {
  const auto isTaken = [&choice](const std::string& module) {
    const auto end = choice.codes.begin() + choice.count;
    return std::find(choice.codes.begin(), end, module) != end;
  };
  const auto free = std::ranges::find_if_not(modules, isTaken);
  if (free != modules.end()) return *free;
  return modules.empty() ? std::string() : modules.front();
}

}  // namespace

std::vector<std::string> languageModules(const std::string& applicationFolder) {
  std::vector<std::string> modules;
  const auto folder = findEntry(applicationFolder, languagesFolder);
  if (!folder) return modules;
  for (const std::string& name : listFiles(*folder, "*.lng")) {
    modules.push_back(name.substr(0, name.size() - moduleEnding.size()));
  }
  return modules;
}

void LanguageChoice::setCount(int number, const std::vector<std::string>& modules) {
  count = std::clamp(number, 1, maxLanguages);
  for (int n = 1; n <= count; ++n) {
    if (codes[indexOf(n)].empty()) codes[indexOf(n)] = freeModule(*this, modules);
  }
}

bool LanguageChoice::canAccept() const {
  return std::none_of(codes.begin(), codes.begin() + count, [](const std::string& code) { return code.empty(); });
}

int LanguageChoice::repeated() const {
  for (int n = 2; n <= count; ++n) {
    const auto own = codes.begin() + n - 1;
    if (!own->empty() && std::find(codes.begin(), own, *own) != own) return n;
  }
  return 0;
}

Question repeatedQuestion(const LanguageChoice& choice, int language) {
  return {"La lingua " + std::to_string(language) + " è uguale a un'altra: " + choice.codes[indexOf(language)] +
              ".\nIl negozio avrebbe due volte le stesse pagine. Continuare comunque?",
          Buttons::YesNo, Answer::No, Icon::Exclamation};
}

LanguageChoice languagesOf(const Session& session) {
  return {std::clamp(session.languageCount, 1, maxLanguages), session.languageNames};
}

Result<> storeLanguages(Session& session, const LanguageChoice& choice, const LanguageHooks& hooks) {
  auto codes = choice.codes;
  // The number isn't stored in the table: an empty code ends the list.
  for (int n = choice.count + 1; n <= maxLanguages; ++n) codes[indexOf(n)].clear();
  auto statement = session.catalogue.prepare("UPDATE lingue SET lingua1 = ?, lingua2 = ?, lingua3 = ?, lingua4 = ?");
  if (!statement) return fail(statement.error());
  int column = 0;
  for (const std::string& code : codes) statement->bind(++column, std::string_view(code));
  if (auto stored = statement->execute(); !stored) return stored;
  session.languageNames = codes;
  session.languageCount = choice.count;
  if (hooks.MostraLingue) hooks.MostraLingue();
  if (session.currentLanguage > session.languageCount && hooks.CambiaLingua) hooks.CambiaLingua(1);
  return {};
}

}  // namespace kv
