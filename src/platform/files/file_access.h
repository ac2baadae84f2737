#pragma once
// What the sources about files share: errors of the system as Errors, descriptors that close themselves, and the
// permission rule. For the sources of this folder.

#include <sys/stat.h>

#include <string>
#include <string_view>
#include <utility>

#include "platform/files/file_gate.h"
#include "platform/ports/result.h"

namespace kv {

/// An errno as a failure at `where`.
tl::unexpected<Error> systemFailure(int number, const std::string& where);

/// Asks the gate; false, with errno set, when it refuses the step. Source of the condition: FileGate::refusal.
bool mayProceed(FileStep step, const std::string& path);

/// A file descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor();

  bool isOpen() const { return number_ >= 0; }
  int number() const { return number_; }
  /// Closes now: 0, or an errno when the last bytes couldn't be kept. `path` is what the gate is asked about.
  int close(const std::string& path);

 private:
  int closeNow();
  int number_;
};

/// Whether the owner, root included, may write what `status` describes, and this process may write `path`.
bool mayWrite(const std::string& path, const struct stat& status);
/// ReadOnly when entries of the folder of `path` may not be added or removed. A missing folder is no failure here.
Result<> requireWritableFolderOf(const std::string& path);

/// Whether a name is one that an unfinished replacement carries.
bool isUnfinishedName(std::string_view name);

/// The new content of a file, made beside it and put in its place by commit(); removed when that never comes.
class Replacement {
 public:
  /// ReadOnly when the old file may not be written. A new file gets `mode` less the process's mask.
  static Result<Replacement> begin(const std::string& path, mode_t mode);
  Replacement(Replacement&& other) noexcept;
  Replacement& operator=(Replacement&&) = delete;
  ~Replacement();

  Result<> write(std::string_view bytes);
  /// Gives the new file the modification time of `status`.
  void keepTime(const struct stat& status);
  Result<> commit();

 private:
  Replacement(Descriptor descriptor, std::string temporary, std::string target);
  Descriptor descriptor_;
  std::string temporary_;  // empty once there is nothing to remove
  std::string target_;
};

}  // namespace kv
