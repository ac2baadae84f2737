#pragma once
// A gate before the calls by which files are read and written. Usually there is none, and asking costs one comparison.
// Whoever sets one decides, call by call, whether the system is reached at all: so a full disk or a failing one can be
// brought about at any moment of a long run.

#include <string>

namespace kv {

/// What a call is about to do.
enum class FileStep {
  OpenToRead,
  Read,    ///< a piece of a file
  List,    ///< the entries of a folder
  Create,  ///< a file, or the unfinished neighbour that will replace one
  Write,   ///< a piece of a file
  Close,   ///< of a file that was written; the last moment at which bytes may turn out not to be kept
  Rename,
  Remove,  ///< a file or an empty folder
  MakeFolder
};

/// Decides which of the system's calls fail instead of being made.
class FileGate {
 public:
  virtual ~FileGate() = default;
  /// Asked before each call; `path` is the file or folder meant, for Rename the new name. 0 lets the call through; any
  /// other number is the errno that the caller gets. A refused Close closes all the same.
  virtual int refusal(FileStep step, const std::string& path) = 0;
};

/// Puts a gate before the file calls of this process, or none (null), and returns the one that was there. The gate
/// must live until another one, or none, is set.
FileGate* setFileGate(FileGate* gate);

}  // namespace kv
