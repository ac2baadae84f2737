// What OK of a payment module's dialog writes.

#include <algorithm>
#include <optional>

#include "commerce/gateways/gateway_account.h"
#include "commerce/gateways/template_filling.h"
#include "commerce/shipping/single_row.h"
#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {
namespace {

/// Adds a file that a template is made into; false when the template can't be read.
bool addFilled(std::vector<FilledFile>& files, const std::string& from, const std::string& to,
               std::span<const Placeholder> values) {
  const auto entry = findEntry(std::string(folderOf(from)), baseName(from));
  const auto text = entry ? readText(*entry) : Result<std::string>(fail(ErrorKind::Missing, from, "no template"));
  if (!text) return false;
  const auto target = findEntry(std::string(folderOf(to)), baseName(to)).value_or(to);
  files.push_back({target, ElaboraPG(*text, values)});
  return true;
}

/// What writing the files changes.
Result<FileEdits> editsOf(const std::vector<FilledFile>& files) {
  FileEdits edits;
  for (const FilledFile& file : files) {
    edits.push_back({file.path, std::nullopt, toWindows1252(file.text)});
    if (!fileExists(file.path)) continue;
    auto bytes = readBytes(file.path);
    if (!bytes) return fail(bytes.error());
    edits.back().before = std::move(*bytes);
  }
  return edits;
}

}  // namespace

std::string GatewayAccount::confText() const {
  std::string lines = kept_;
  const auto addLine = [&lines](std::string_view key, std::string_view value) {
    lines.append(key).append("=").append(value).append("\r\n");
  };
  if (module_->hasModes()) {
    addLine("php(default)", sellaMode(mode_).start);
    addLine("php", sellaMode(mode_).answer);
  }
  for (const AccountKey& key : module_->keys) {
    addLine(key.key, key.role == KeyRole::Lines ? textOnOneLine(stored(key)) : stored(key));
  }
  return lines;
}

bool GatewayAccount::fill(const std::string& code, const std::string& folder, std::vector<FilledFile>& files) const {
  std::vector<Placeholder> values;
  for (const std::string_view key : module_->placeholders) values.emplace_back(key, stored(*module_->find(key)));
  const std::string_view form = value("newsys") == "1" ? "newform.kpg" : "form.kpg";
  if (!addFilled(files, joinPath(folder, form), joinPath(code, std::string(module_->folder) + ".kpg"), values)) {
    return false;
  }
  std::vector<std::string_view> scripts = module_->scripts;
  if (module_->hasModes() && sellaMode(mode_).isFilled) {
    scripts = {sellaMode(mode_).answer};
    values.resize(1);  // its scripts know the merchant's code alone
  }
  for (const std::string_view script : scripts) {
    const std::string stem = joinPath(folder, script);
    if (!addFilled(files, stem + ".new", stem + ".php", values)) return false;
  }
  return true;
}

Result<FileEdits> GatewayAccount::save(Session& session) const {
  const std::string code = entryPath(session.ShopFolder, "code");
  const auto folder = findEntry(code, module_->folder);
  const auto conf = folder && found_ ? findEntry(*folder, "conf.ini") : std::nullopt;
  if (!conf) return FileEdits();
  std::vector<FilledFile> files{{*conf, confText()}};
  const bool complete = fill(code, *folder, files);
  auto edits = editsOf(files);
  if (!edits) return edits;
  if (auto written = writeFileEdits(*edits, false); !written) return fail(written.error());
  if (!module_->column.empty() && complete) {
    if (auto kept = storeSingle(session.catalogue, "generale", module_->column, Value(value("info"))); !kept) {
      ignore(writeFileEdits(*edits, true), "the first failure is the one to tell");
      return fail(kept.error());
    }
  }
  FileEdits changed;
  addFileEdits(changed, std::move(*edits));
  return changed;
}

bool GatewayAccount::isUpToDate(const std::string& shopFolder) const {
  const std::string code = entryPath(shopFolder, "code");
  const auto folder = findEntry(code, module_->folder);
  std::vector<FilledFile> files;
  if (!folder || !isComplete() || !fill(code, *folder, files)) return true;
  return std::ranges::all_of(files, [](const FilledFile& file) {
    const auto bytes = readBytes(file.path);
    return bytes && *bytes == toWindows1252(file.text);
  });
}

}  // namespace kv
