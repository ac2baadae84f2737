#pragma once
// The files and folders of a server over SFTP; paths are absolute, names UTF-8. A refusal of the server is the failure
// of statusFailure. For the sources of platform/transfer.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/transfer/local_file.h"
#include "platform/transfer/protocols/ssh_line.h"

namespace kv {

/// Files and folders of a server over a connection by SSH.
class SftpChannel {
 public:
  /// `line` outlives the object and is logged in when a routine is called.
  explicit SftpChannel(SshLine& line) : line_(line) {}

  /// The folder in which a session begins.
  Result<std::string> home(Patience& patience);
  /// Whether there is a folder of this path. transferFolderMissing when there is none, or none for this user.
  Result<> requireFolder(const std::string& path, Patience& patience);
  /// Whether there is something of this path.
  Result<> requireEntry(const std::string& path, Patience& patience);
  /// Makes a folder. transferFolderMissing when the server refuses: it says no more of a folder that is there.
  Result<> makeFolder(const std::string& path, Patience& patience);
  Result<> deleteFile(const std::string& path, Patience& patience);
  /// Renames; many servers refuse a new name that is taken.
  Result<> rename(const std::string& from, const std::string& to, Patience& patience);
  /// Sets the permissions of Unix, such as 0755.
  Result<> setRights(const std::string& path, unsigned long rights, Patience& patience);
  /// The lines of a folder's listing, "." and ".." left out.
  Result<std::vector<std::string>> list(const std::string& path, Patience& patience);

  /// How a file is stored.
  struct StoreWay {
    TransferMode mode = TransferMode::Binary;  ///< Ascii: CR LF becomes LF
    bool appends = false;                      ///< at the end of what is there; else in place of it
    std::function<void(std::uint64_t)> sent;   ///< told of the bytes that the server has taken; may be empty
  };
  Result<> store(const std::string& localPath, const std::string& path, const StoreWay& way, Patience& patience);

 private:
  /// What the server knows of a file: size, time, rights.
  Result<LIBSSH2_SFTP_ATTRIBUTES> attributes(const std::string& path, Patience& patience);
  /// Opens a remote file to write it, or to append to it.
  Result<LIBSSH2_SFTP_HANDLE*> open(const std::string& path, bool appends, Patience& patience);
  /// Closes one; the failure before it counts more than that of the closing.
  Result<> close(LIBSSH2_SFTP_HANDLE* handle, const Result<>& before, Patience& patience);
  /// Goes to the end of a file that is appended to.
  Result<> seekEnd(LIBSSH2_SFTP_HANDLE* handle, Patience& patience);
  /// Writes the local file piece by piece.
  Result<> send(LocalFile& local, LIBSSH2_SFTP_HANDLE* remote, const StoreWay& way, Patience& patience);
  /// Adds the lines of a folder's listing.
  Result<> readFolder(LIBSSH2_SFTP_HANDLE* folder, std::vector<std::string>& lines, Patience& patience);
  SshLine& line_;
};

}  // namespace kv
