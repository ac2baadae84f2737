#pragma once
// A file of this machine, read from start to end in pieces, as it is to be sent. For the sources of platform/transfer.

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/files/file_access.h"
#include "platform/transfer/transfer.h"

namespace kv {

/// A local file that is sent, read piece by piece.
class LocalFile {
 public:
  /// Opens a file. transferLocalFile, naming it, when it can't be read.
  static Result<LocalFile> open(const std::string& path, TransferMode mode);
  /// The next piece; empty at the end of the file. It is valid until the next call.
  Result<std::string_view> next();

 private:
  LocalFile(Descriptor descriptor, std::string path, TransferMode mode);
  /// A piece of a text with CR LF for each line end.
  std::string_view withLineEnds(std::string_view piece);
  Descriptor descriptor_;
  std::string path_;
  TransferMode mode_;
  bool afterReturn_ = false;  // the last byte of the piece before was a CR
  std::string piece_;
  std::string converted_;
};

}  // namespace kv
