#pragma once
// How many languages the shop has, and which (rules of frmLingue).

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "store/shop/session.h"

namespace kv {

inline constexpr std::string_view languagesTitle = "Korvane - Configurazione lingue";

/// The installed modules: the bare names of "<applicationFolder>/languages/*.lng", sorted.
std::vector<std::string> languageModules(const std::string& applicationFolder);

/// What the fields show. Languages are counted from 1; `codes[n - 1]` is the one of language n.
struct LanguageChoice {
  int count = 1;  ///< 1 to 4
  std::array<std::string, maxLanguages> codes;

  /// Whether the box of language n can be used.
  bool isEnabled(int n) const { return n >= 1 && n <= count; }
  /// Sets the number; a box that comes into use without a code takes the first module that no other box in use has,
  /// or else the first.
  void setCount(int number, const std::vector<std::string>& modules);
  /// Every box in use has a code.
  bool canAccept() const;
};

/// The shop's languages as the session holds them.
LanguageChoice languagesOf(const Session& session);

/// What of the window follows; either may be empty.
struct LanguageHooks {
  std::function<void()> MostraLingue;
  std::function<void(int language)> CambiaLingua;
};

/// OK: stores number and codes in `lingue` and in the session; a language beyond the number has no code in either.
/// Then the window's selector is renewed, and when the language being edited is beyond the number, language 1 is taken
/// up. On a failure nothing has changed.
Result<> storeLanguages(Session& session, const LanguageChoice& choice, const LanguageHooks& hooks);

}  // namespace kv
