#include "shell/dialogs/folder_choice.h"

#include <filesystem>

#include "platform/files/files.h"
#include "platform/ports/failure_text.h"
#include "platform/text/text.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

/// What a working folder is to the session: its column, its name inside the shop's folder, its member of the session.
struct WorkingFolder {
  const char* column;
  const char* name;
  std::string Session::*field;
};
constexpr std::array<WorkingFolder, 2> workingFolders{
    {{"siteonline", "online", &Session::onlineFolder}, {"sitescript", "scripts", &Session::scriptFolder}}};

/// Whether two paths lead to one folder, by a link or written in another case too.
bool isSameFolder(const std::string& a, const std::string& b) {
  if (equalsIgnoringCase(withoutTrailingSeparator(a), withoutTrailingSeparator(b))) return true;
  std::error_code failure;
  return std::filesystem::equivalent(a, b, failure) && !failure;
}

/// Why a path can't be a working folder; empty when it can.
std::string refusal(const std::string& path, const Session& session) {
  const std::string subject = "La cartella '" + path + "' ";
  if (!folderExists(path)) return subject + "non esiste: l'impostazione non sarà salvata";
  if (isRoot(path)) return subject + "è la root di un disco: l'impostazione non sarà salvata";
  if (isSameFolder(path, session.ShopFolder)) {
    return subject + "è la cartella del negozio: l'impostazione non sarà salvata";
  }
  return {};
}

Result<> store(Session& session, const WorkingFolder& folder, const std::string& value) {
  auto statement = session.catalogue.prepare(std::string("UPDATE generale SET ") + folder.column + " = ?");
  if (!statement) return fail(statement.error());
  statement->bind(1, std::string_view(value));
  return statement->execute();
}

Result<> keep(Session& session, const WorkingFolder& folder, FolderField::Source source, const std::string& path) {
  switch (source) {
    case FolderField::Source::Stored:
      return {};
    case FolderField::Source::Browsed:
      return store(session, folder, path);
    case FolderField::Source::Reset:
      return store(session, folder, "");
  }
  return {};
}

bool applyField(Session& session, UserPort& user, const WorkingFolder& folder, const FolderField& field) {
  const std::string typed(trim(field.text));
  if (const std::string text = refusal(typed, session); !text.empty()) {
    user.message(text, Icon::Exclamation);
    return false;
  }
  const std::string path = withoutTrailingSeparator(absolutePath(typed));
  if (auto kept = keep(session, folder, field.source, path); !kept) {
    user.message(failureText(kept.error()), Icon::Critical);
    return false;
  }
  session.*folder.field = path;
  return true;
}

}  // namespace

FolderChoice::FolderChoice(const Session& session) {
  for (std::size_t i = 0; i < workingFolders.size(); ++i) {
    fields_[i].text = session.*workingFolders[i].field;
    defaults_[i] = joinPath(session.ShopFolder, workingFolders[i].name);
  }
}

void FolderChoice::set(BuildFolder folder, std::string_view path) {
  fields_[indexOf(folder)] = {std::string(path), FolderField::Source::Browsed};
}

void FolderChoice::reset(BuildFolder folder) {
  fields_[indexOf(folder)] = {defaults_[indexOf(folder)], FolderField::Source::Reset};
}

bool FolderChoice::apply(Session& session, UserPort& user) const {
  bool all = true;
  for (std::size_t i = 0; i < workingFolders.size(); ++i) {
    if (!applyField(session, user, workingFolders[i], fields_[i])) all = false;
  }
  return all;
}

}  // namespace kv
