#pragma once
// Files of the shop that a command has written, so that undo and redo take them along with its rows.

#include <optional>
#include <string>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

/// The bytes of one file before and after a command; none where there was, or is, no file.
struct FileEdit {
  std::string path;
  std::optional<std::string> before, after;
};
using FileEdits = std::vector<FileEdit>;

/// Writes the files, `back`: as they were before. All of them or none; each readable by its owner alone.
/// Malformed when one is no longer as the command left it, or found it when not `back`: then nothing is written.
Result<> exchangeFiles(const FileEdits& edits, bool back);

/// The same without a look at what the files hold now.
Result<> writeFileEdits(const FileEdits& edits, bool back);

/// Adds edits that came later: a file that was written twice is one edit, and one that is as before is none.
void addFileEdits(FileEdits& edits, FileEdits later);

}  // namespace kv
