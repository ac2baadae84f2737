// What OK of a payment module's dialog writes.

#include <optional>

#include "commerce/gateways/gateway_account.h"
#include "commerce/gateways/template_filling.h"
#include "commerce/shipping/single_row.h"
#include "platform/files/files.h"
#include "platform/files/private_file.h"
#include "platform/text/text.h"

namespace kv {
namespace {

/// A file to be written, and what it was before.
struct WrittenFile {
  std::string path;
  std::string text;
  std::optional<std::string> before;  ///< none: there was no such file
};

/// A file of a folder to be made from a template of the folder of a module; false when the template can't be read.
bool addFilled(std::vector<WrittenFile>& files, const std::string& from, const std::string& to,
               std::span<const Placeholder> values) {
  const auto entry = findEntry(std::string(folderOf(from)), baseName(from));
  const auto text = entry ? readText(*entry) : Result<std::string>(fail(ErrorKind::Missing, from, "no template"));
  if (!text) return false;
  const auto target = findEntry(std::string(folderOf(to)), baseName(to)).value_or(to);
  files.push_back({target, fillTemplate(*text, values), std::nullopt});
  return true;
}

void restoreFiles(const std::vector<WrittenFile>& files, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const WrittenFile& file = files[i];
    if (file.before) {
      ignore(writePrivateText(file.path, *file.before), "the first failure is the one to tell");
    } else {
      ignore(deleteFile(file.path), "the first failure is the one to tell");
    }
  }
}

/// All of the files or none.
Result<> writeFiles(std::vector<WrittenFile>& files) {
  for (WrittenFile& file : files) {
    if (!fileExists(file.path)) continue;
    auto before = readText(file.path);
    if (!before) return fail(before.error());
    file.before = std::move(*before);
  }
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (auto written = writePrivateText(files[i].path, files[i].text); !written) {
      restoreFiles(files, i);
      return written;
    }
  }
  return {};
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

Result<> GatewayAccount::save(Session& session) const {
  const std::string code = joinPath(session.ShopFolder, "code");
  const auto folder = findEntry(code, module_->folder);
  const auto conf = folder && found_ ? findEntry(*folder, "conf.ini") : std::nullopt;
  if (!conf) return {};
  std::vector<Placeholder> values;
  for (const std::string_view key : module_->placeholders) values.emplace_back(key, stored(*module_->find(key)));

  std::vector<WrittenFile> files{{*conf, confText(), std::nullopt}};
  const std::string_view form = value("newsys") == "1" ? "newform.kpg" : "form.kpg";
  bool complete =
      addFilled(files, joinPath(*folder, form), joinPath(code, std::string(module_->folder) + ".kpg"), values);
  std::vector<std::string_view> scripts = module_->scripts;
  if (module_->hasModes() && sellaMode(mode_).isFilled) {
    scripts = {sellaMode(mode_).answer};
    values.resize(1);  // its scripts know the merchant's code alone
  }
  for (const std::string_view script : scripts) {
    const std::string stem = joinPath(*folder, script);
    complete = complete && addFilled(files, stem + ".new", stem + ".php", values);
  }
  if (auto written = writeFiles(files); !written) return written;
  if (module_->column.empty() || !complete) return {};
  auto kept = storeSingle(session.catalogue, "generale", module_->column, Value(value("info")));
  if (!kept) restoreFiles(files, files.size());
  return kept;
}

}  // namespace kv
