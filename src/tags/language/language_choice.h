#pragma once
// How many languages the shop has, and which (rules of frmLingue).

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "store/shop/session.h"

namespace kv {

/// The title of the dialog.
inline constexpr std::string_view languagesTitle = "Korvane - Configurazione lingue";

/// The installed modules: the bare names of "<applicationFolder>/languages/*.lng", sorted.
std::vector<std::string> languageModules(const std::string& applicationFolder);

/// What the fields show. Languages are counted from 1; `codes[n - 1]` is the one of language n.
struct LanguageChoice {
  int count = 1;                                ///< 1 to 4
  std::array<std::string, maxLanguages> codes;  ///< bare names of modules; kept when the number goes down

  /// Whether the box of language n can be used.
  bool isEnabled(int n) const { return n >= 1 && n <= count; }
  /// Sets the number; a box that comes into use without a code takes the first module that no other box in use has,
  /// or else the first.
  void setCount(int number, const std::vector<std::string>& modules);
  /// Whether every box in use has a code.
  bool canAccept() const;
  /// The first language in use whose code an earlier one has too; 0 when all are different.
  int repeated() const;
};

/// The question before a shop with two equal languages is stored; No is the default. `language`: as repeated().
Question repeatedQuestion(const LanguageChoice& choice, int language);

/// The shop's languages as the session holds them.
LanguageChoice languagesOf(const Session& session);

/// The routines of the window that run after a change; either may be empty.
struct LanguageHooks {
  std::function<void()> MostraLingue;              ///< show languages: fills the selector again
  std::function<void(int language)> CambiaLingua;  ///< change language: edits in this one from now on
};

/// OK: stores number and codes in `lingue` and in the session; a language beyond the number has no code in either.
/// Then MostraLingue runs and, when the language being edited is beyond the number, CambiaLingua with language 1. After
/// a failure nothing has changed.
Result<> storeLanguages(Session& session, const LanguageChoice& choice, const LanguageHooks& hooks);

}  // namespace kv
