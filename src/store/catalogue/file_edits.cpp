#include "store/catalogue/file_edits.h"

#include <algorithm>

#include "platform/files/files.h"
#include "platform/files/private_file.h"

namespace kv {
namespace {

using FileBytes = std::optional<std::string>;

Result<> putBytes(const std::string& path, const FileBytes& bytes) {
  if (bytes) return writePrivateBytes(path, *bytes);
  return fileExists(path) ? deleteFile(path) : Result<>();
}

/// Whether a file is as an edit knows it; what can't be read isn't.
bool holds(const std::string& path, const FileBytes& expected) {
  if (!fileExists(path)) return !expected;
  const auto bytes = readBytes(path);
  return bytes && expected && *bytes == *expected;
}

}  // namespace

Result<> exchangeFiles(const FileEdits& edits, bool back) {
  for (const FileEdit& edit : edits) {
    if (!holds(edit.path, back ? edit.after : edit.before)) {
      return fail(ErrorKind::Malformed, edit.path, "the file was changed meanwhile");
    }
  }
  return writeFileEdits(edits, back);
}

Result<> writeFileEdits(const FileEdits& edits, bool back) {
  for (std::size_t i = 0; i < edits.size(); ++i) {
    auto written = putBytes(edits[i].path, back ? edits[i].before : edits[i].after);
    if (written) continue;
    for (std::size_t done = 0; done < i; ++done) {
      ignore(putBytes(edits[done].path, back ? edits[done].after : edits[done].before),
             "the first failure is the one to tell");
    }
    return written;
  }
  return {};
}

void addFileEdits(FileEdits& edits, FileEdits later) {
  for (FileEdit& edit : later) {
    const auto known = std::ranges::find(edits, edit.path, &FileEdit::path);
    if (known == edits.end()) {
      edits.push_back(std::move(edit));
    } else {
      known->after = std::move(edit.after);
    }
  }
  std::erase_if(edits, [](const FileEdit& edit) { return edit.before == edit.after; });
}

}  // namespace kv
