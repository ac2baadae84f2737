#include "sqlexport/export_files.h"

#include "platform/files/files.h"
#include "store/schema/schema.h"

namespace kv {

LanguageFiles languageFiles(ExportKind kind, std::string_view suffix, const std::string& sec) {
  const std::string load = "db", drop = "dbdel", language(suffix);
  const std::string kept = (kind == ExportKind::Incremental ? "upd" : "") + language + ".sc";
  const std::string published = language + ".sql";
  return {sec + load + kept, sec + drop + kept, load + published, drop + published};
}

// Its extension is that of the kept files: it is never sent, and a build sweeps it away with them.
std::string unfinishedLoad(ExportKind kind, const std::string& sec) {
  return sec + (kind == ExportKind::Incremental ? "updnew.sc" : "new.sc");
}

Result<> finishLoad(ExportKind kind, const std::string& onlineFolder, const std::string& sec) {
  return renameFile(joinPath(onlineFolder, unfinishedLoad(kind, sec)),
                    joinPath(onlineFolder, languageFiles(kind, "", sec).cachedLoad));
}

void publishCopies(ExportKind kind, const std::string& onlineFolder, const std::string& sec, ExportReport& report) {
  const auto publish = [&](const std::string& from, const std::string& to) {
    const auto copied = copyFile(joinPath(onlineFolder, from), joinPath(onlineFolder, to), AtLink::Replace);
    // A language that the shop doesn't have has no file to copy.
    if (!copied && !fileExists(joinPath(onlineFolder, from))) return;
    (copied ? report.published : report.unwritten).push_back(to);
  };
  for (const std::string_view suffix : languageSuffixes) {
    const LanguageFiles files = languageFiles(kind, suffix, sec);
    publish(files.cachedLoad, files.load);
    publish(files.cachedDrop, files.drop);
  }
}

Result<> deleteCache(ExportKind kind, const std::string& onlineFolder, const std::string& sec) {
  Result<> outcome;
  ignore(deleteFile(joinPath(onlineFolder, unfinishedLoad(kind, sec))), "it is written over");
  for (const std::string_view suffix : languageSuffixes) {
    const LanguageFiles files = languageFiles(kind, suffix, sec);
    for (const std::string& name : {files.cachedLoad, files.cachedDrop}) {
      auto deleted = deleteFile(joinPath(onlineFolder, name));
      if (!deleted && deleted.error().kind != ErrorKind::Missing && outcome) outcome = std::move(deleted);
    }
  }
  return outcome;
}

}  // namespace kv
