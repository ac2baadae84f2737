#include "shell/workbench/appearance.h"

namespace kv {
namespace {

constexpr std::string_view section = "Finestra";
constexpr std::string_view key = "Aspetto";
constexpr std::string_view light = "chiaro";
constexpr std::string_view dark = "scuro";

}  // namespace

Appearance storedAppearance(const Settings& settings) {
  const std::string stored = settings.get(section, key);
  if (stored == light) return Appearance::Light;
  return stored == dark ? Appearance::Dark : Appearance::Desktop;
}

Result<> storeAppearance(Settings& settings, Appearance appearance) {
  std::string_view stored;
  if (appearance == Appearance::Light) stored = light;
  if (appearance == Appearance::Dark) stored = dark;
  return settings.set(section, key, stored);
}

}  // namespace kv
