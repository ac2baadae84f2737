#include "tags/package/template_package.h"

#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {

std::vector<std::string> templatePackages(const std::string& applicationFolder) {
  std::vector<std::string> packages;
  const auto folder = findEntry(applicationFolder, "template");
  if (!folder) return packages;
  for (std::string& name : listFolders(*folder)) {
    if (!pageModels(joinPath(*folder, name)).empty()) packages.push_back(std::move(name));
  }
  return packages;
}

bool CanCopy(std::string_view nome) {
  if (startsWithIgnoringCase(nome, "kvan_col_")) return false;
  for (const std::string_view ending : {".php", ".kpg", ".pl"}) {
    if (endsWithIgnoringCase(nome, ending)) return false;
  }
  for (const std::string_view name : {"kvan_preview.jpg", "kvan_note.txt"}) {
    if (equalsIgnoringCase(nome, name)) return false;
  }
  return !matchesLike(nome, "js#.js") && !matchesLike(nome, "*.*htm*");
}

std::string vetCell(std::string_view fileText) {
  std::string text(fileText);
  std::erase_if(text, [](char character) { return character == '\r' || character == '\n'; });
  return std::string(trim(text));
}

std::string CaricaVetFile(const std::string& folder) {
  const auto path = findEntry(folder, "kvan_vet.ini");
  if (!path) return {};
  const auto text = readText(*path);
  return text ? vetCell(*text) : std::string();
}

}  // namespace kv
