#pragma once
// What the sources about files share: system errors as Errors, descriptors that close themselves, the permission rule
// and the replacement of a file in one step. For the sources of this folder.

#include <sys/stat.h>

#include <string>
#include <string_view>
#include <utility>

#include "platform/files/file_gate.h"
#include "platform/files/files.h"
#include "platform/ports/result.h"

namespace kv {

/// The failure for an errno at the path `where`: its kind, the system's text and the number.
/// ENOENT is Missing, EACCES and EROFS are ReadOnly, ENOSPC is Full, EBUSY is InUse; what has no kind of its own is
/// Other.
tl::unexpected<Error> systemFailure(int number, const std::string& where);

/// Asks the gate; false, with errno set, when it refuses the step. Source of the condition: FileGate::refusal.
bool mayProceed(FileStep step, const std::string& path);

/// A file descriptor that closes itself. A negative number is one that couldn't be opened.
class Descriptor {
 public:
  /// `number`: what open(2) returned, -1 for its failure.
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&&) = delete;
  /// A failure to close is lost here: call close() where the bytes matter.
  ~Descriptor();

  /// Whether there is a descriptor to use.
  bool isOpen() const { return number_ >= 0; }
  /// The system's number of the descriptor; -1 when it isn't open.
  int number() const { return number_; }
  /// Closes now: 0, or an errno when the last bytes couldn't be kept. `path` is what the gate is asked about.
  int close(const std::string& path);

 private:
  /// Closes without asking the gate: 0 or an errno.
  int closeNow();
  int number_;
};

/// A regular file that is open for reading.
struct OpenedFile {
  Descriptor descriptor;
  struct stat status;
};
/// Opens a file. Missing when it isn't there, Other for a folder and for what is no file.
Result<OpenedFile> openToRead(const std::string& path);
/// Reads up to `size` bytes: the count, 0 at the end.
Result<std::size_t> readPiece(const Descriptor& descriptor, char* buffer, std::size_t size, const std::string& path);

/// Whether the owner, root included, may write what `status` describes, and this process may write `path`.
bool mayWrite(const std::string& path, const struct stat& status);
/// ReadOnly when entries of the folder of `path` may not be added or removed. A missing folder is no failure here.
Result<> requireWritableFolderOf(const std::string& path);

/// Whether a file name is that of a replacement that was never committed.
/// It is what a crash has left, and holds nothing that is needed.
bool isUnfinishedName(std::string_view name);

/// The new content of a file, written beside it under a temporary name and renamed over it by commit(). Without a
/// commit() the destructor removes it and the old file stays.
/// Readers see the old content or the new one, never a part. For a link, `links` says what is replaced.
class Replacement {
 public:
  /// Opens the temporary file. ReadOnly when the old file may not be written, Missing when the folder isn't there. A
  /// new file gets the permission bits `mode`, reduced by the process's mask; an old one keeps its own.
  /// A folder in the way of the file is a failure too, and so is a device or a pipe.
  static Result<Replacement> begin(const std::string& path, mode_t mode, AtLink links);
  Replacement(Replacement&& other) noexcept;
  Replacement& operator=(Replacement&&) = delete;
  ~Replacement();

  /// Appends bytes. Full on a full disk.
  /// After a failure nothing more should be written: let the object go.
  Result<> write(std::string_view bytes);
  /// Appends what the system can carry over from `source` in one call, which goes on from where it is: the count, 0 at
  /// its end and where the system can't. Failures as write().
  Result<std::size_t> takeFrom(const Descriptor& source);
  /// Gives the new file the modification time of `status`.
  /// A file system that can't keep times is no failure.
  void keepTime(const struct stat& status);
  /// Closes the temporary file and renames it over the target. On a failure the old file is as before.
  Result<> commit();

 private:
  Replacement(Descriptor descriptor, std::string temporary, std::string target);
  Descriptor descriptor_;
  std::string temporary_;  // empty once there is nothing to remove
  std::string target_;
};

}  // namespace kv
