#include "tags/package/template_choice.h"

#include <algorithm>

#include "platform/files/files.h"
#include "platform/text/text.h"
#include "tags/package/template_package.h"

namespace kv {
namespace {

constexpr std::size_t nameWidth = 50;

/// A file of a package; empty when there is no package or no such file.
std::string packageFile(const std::string& folder, const std::string& package, std::string_view name) {
  if (package.empty()) return {};
  return findEntry(joinPath(folder, package), name).value_or(std::string());
}

}  // namespace

TemplateChoice::TemplateChoice(const std::string& applicationFolder, std::string_view current)
    : folder_(entryPath(applicationFolder, templateFolder)), packages_(templatePackages(applicationFolder)) {
  type(current);
  if (selected_) return;
  const auto own = std::ranges::find_if(
      packages_, [current](const std::string& package) { return equalsIgnoringCase(package, current); });
  if (own != packages_.end()) select(static_cast<std::size_t>(own - packages_.begin()));
}

std::string TemplateChoice::selectedName() const { return selected_ ? packages_[*selected_] : std::string(); }

void TemplateChoice::select(std::size_t index) {
  if (index < packages_.size()) selected_ = index;
}

void TemplateChoice::type(std::string_view text) {
  selected_.reset();
  const auto found = std::ranges::find(packages_, text);
  if (found != packages_.end()) selected_ = static_cast<std::size_t>(found - packages_.begin());
}

std::string TemplateChoice::preview() const { return packageFile(folder_, selectedName(), "kvan_preview.jpg"); }

std::string TemplateChoice::note() const {
  const std::string path = packageFile(folder_, selectedName(), "kvan_note.txt");
  return path.empty() ? std::string() : readText(path).value_or(std::string());
}

std::string TemplateChoice::accept() const { return std::string(firstCharacters(selectedName(), nameWidth)); }

}  // namespace kv
