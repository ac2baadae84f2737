#include "platform/transfer/protocols/sftp_channel.h"

#include <array>
#include <utility>

#include "platform/transfer/command_runner.h"
#include "platform/transfer/protocols/ftp_control.h"

namespace kv {
namespace {

// So many bytes are on their way at once: what a distant server needs, and no more than a moment's sending.
constexpr std::size_t windowSize = std::size_t{256} * 1024;
constexpr std::size_t mostListed = 100'000;                           // entries
constexpr std::size_t longestListed = std::size_t{16} * 1024 * 1024;  // bytes of all entries
constexpr std::size_t entriesBetweenPauses = 64;
constexpr std::size_t longestEntry = 4096;
constexpr long fileRights = 0644, folderRights = 0755;

unsigned int lengthOf(const std::string& path) { return static_cast<unsigned int>(path.size()); }

/// Turns CR LF into LF, across the pieces of a file: a server that stores the bytes as they are gets a text as Unix
/// programs read it, what an FTP server makes of ASCII mode.
class UnixLines {
 public:
  void add(std::string_view piece, std::string& to) {
    for (const char byte : piece) {
      if (afterReturn_ && byte != '\n') to += '\r';
      afterReturn_ = byte == '\r';
      if (!afterReturn_) to += byte;
    }
  }
  void end(std::string& to) {
    if (std::exchange(afterReturn_, false)) to += '\r';
  }

 private:
  bool afterReturn_ = false;
};

/// What the server hasn't confirmed yet of a local file, filled up from it.
class SentWindow {
 public:
  SentWindow(LocalFile& local, TransferMode mode) : local_(local), mode_(mode) {}
  /// Reads on; false at the end of the file, when all of it has been confirmed.
  Result<bool> fill() {
    while (!isRead_ && bytes_.size() < windowSize) {
      const auto piece = local_.next();
      if (!piece) return fail(piece.error());
      isRead_ = piece->empty();
      if (mode_ == TransferMode::Binary) {
        bytes_ += *piece;
      } else {
        isRead_ ? lines_.end(bytes_) : lines_.add(*piece, bytes_);
      }
    }
    return !bytes_.empty();
  }
  const std::string& bytes() const { return bytes_; }
  void confirm(std::size_t count) { bytes_.erase(0, count); }

 private:
  LocalFile& local_;
  TransferMode mode_;
  UnixLines lines_;
  std::string bytes_;
  bool isRead_ = false;
};

Result<> withoutValue(const Result<ssize_t>& done) { return done ? Result<>() : fail(done.error()); }

/// A refusal that has one meaning here, whatever the server calls it.
Result<> asMissing(const Result<>& done) {
  if (done || !isFileCommandFailure(done.error().number)) return done;
  return transferFailure(transferFolderMissing, done.error().what);
}

}  // namespace

Result<std::string> SftpChannel::home(Patience& patience) {
  std::array<char, longestEntry> path{};
  const auto size = line_.complete(
      [&] {
        return libssh2_sftp_symlink_ex(line_.sftp(), ".", 1, path.data(), static_cast<unsigned int>(path.size() - 1),
                                       LIBSSH2_SFTP_REALPATH);
      },
      patience);
  if (!size) return fail(size.error());
  std::string found = serverText({path.data(), static_cast<std::size_t>(*size)});
  return found.starts_with('/') ? found : std::string("/");
}

Result<LIBSSH2_SFTP_ATTRIBUTES> SftpChannel::attributes(const std::string& path, Patience& patience) {
  LIBSSH2_SFTP_ATTRIBUTES found{};
  const auto seen = line_.complete(
      [&] { return libssh2_sftp_stat_ex(line_.sftp(), path.c_str(), lengthOf(path), LIBSSH2_SFTP_STAT, &found); },
      patience);
  if (!seen) return fail(seen.error());
  return found;
}

Result<> SftpChannel::requireFolder(const std::string& path, Patience& patience) {
  const auto found = attributes(path, patience);
  if (!found) return asMissing(fail(found.error()));
  const bool isFile = (found->flags & LIBSSH2_SFTP_ATTR_PERMISSIONS) != 0 && !LIBSSH2_SFTP_S_ISDIR(found->permissions);
  if (isFile) return transferFailure(transferFolderMissing, "non è una cartella");
  return {};
}

Result<> SftpChannel::requireEntry(const std::string& path, Patience& patience) {
  const auto found = attributes(path, patience);
  return found ? Result<>() : fail(found.error());
}

Result<> SftpChannel::makeFolder(const std::string& path, Patience& patience) {
  return asMissing(withoutValue(line_.complete(
      [&] { return libssh2_sftp_mkdir_ex(line_.sftp(), path.c_str(), lengthOf(path), folderRights); }, patience)));
}

Result<> SftpChannel::deleteFile(const std::string& path, Patience& patience) {
  return withoutValue(
      line_.complete([&] { return libssh2_sftp_unlink_ex(line_.sftp(), path.c_str(), lengthOf(path)); }, patience));
}

Result<> SftpChannel::rename(const std::string& from, const std::string& to, Patience& patience) {
  constexpr long manner = LIBSSH2_SFTP_RENAME_OVERWRITE | LIBSSH2_SFTP_RENAME_ATOMIC | LIBSSH2_SFTP_RENAME_NATIVE;
  return withoutValue(line_.complete(
      [&] {
        return libssh2_sftp_rename_ex(line_.sftp(), from.c_str(), lengthOf(from), to.c_str(), lengthOf(to), manner);
      },
      patience));
}

Result<> SftpChannel::setRights(const std::string& path, unsigned long rights, Patience& patience) {
  LIBSSH2_SFTP_ATTRIBUTES wanted{};
  wanted.flags = LIBSSH2_SFTP_ATTR_PERMISSIONS;
  wanted.permissions = rights;
  return withoutValue(line_.complete(
      [&] { return libssh2_sftp_stat_ex(line_.sftp(), path.c_str(), lengthOf(path), LIBSSH2_SFTP_SETSTAT, &wanted); },
      patience));
}

Result<LIBSSH2_SFTP_HANDLE*> SftpChannel::open(const std::string& path, bool appends, Patience& patience) {
  const unsigned long flags = LIBSSH2_FXF_WRITE | LIBSSH2_FXF_CREAT | (appends ? 0UL : LIBSSH2_FXF_TRUNC);
  return line_.obtain<LIBSSH2_SFTP_HANDLE>(
      [&] {
        return libssh2_sftp_open_ex(line_.sftp(), path.c_str(), lengthOf(path), flags, fileRights,
                                    LIBSSH2_SFTP_OPENFILE);
      },
      patience);
}

Result<> SftpChannel::close(LIBSSH2_SFTP_HANDLE* handle, const Result<>& before, Patience& patience) {
  // Over a connection that has ended nothing is closed but the connection.
  if (!before && endsConnection(before.error().number)) return before;
  const auto closed = line_.complete([&] { return libssh2_sftp_close_handle(handle); }, patience);
  return before ? withoutValue(closed) : before;
}

Result<> SftpChannel::seekEnd(LIBSSH2_SFTP_HANDLE* handle, Patience& patience) {
  LIBSSH2_SFTP_ATTRIBUTES found{};
  const auto seen = line_.complete([&] { return libssh2_sftp_fstat_ex(handle, &found, 0); }, patience);
  if (seen) libssh2_sftp_seek64(handle, found.filesize);
  return withoutValue(seen);
}

Result<> SftpChannel::send(LocalFile& local, LIBSSH2_SFTP_HANDLE* remote, const StoreWay& way, Patience& patience) {
  SentWindow window(local, way.mode);
  std::uint64_t sent = 0;
  for (;;) {
    const auto more = window.fill();
    if (!more) return fail(more.error());
    if (!*more) return {};
    const std::string& bytes = window.bytes();
    const auto count = line_.complete([&] { return libssh2_sftp_write(remote, bytes.data(), bytes.size()); }, patience);
    if (!count) return fail(count.error());
    window.confirm(static_cast<std::size_t>(*count));
    sent += static_cast<std::uint64_t>(*count);
    if (way.sent) way.sent(sent);
    if (auto paused = patience.pause(); !paused) return paused;
  }
}

Result<> SftpChannel::store(const std::string& localPath, const std::string& path, const StoreWay& way,
                            Patience& patience) {
  // No line end is made longer here: the file is read as it is.
  auto local = LocalFile::open(localPath, TransferMode::Binary);
  if (!local) return fail(local.error());
  const auto remote = open(path, way.appends, patience);
  if (!remote) return fail(remote.error());
  Result<> done = way.appends ? seekEnd(*remote, patience) : Result<>();
  if (done) done = send(*local, *remote, way, patience);
  return close(*remote, done, patience);
}

Result<> SftpChannel::readFolder(LIBSSH2_SFTP_HANDLE* folder, std::vector<std::string>& lines, Patience& patience) {
  std::array<char, longestEntry> name{}, whole{};
  std::size_t bytes = 0;
  for (;;) {
    LIBSSH2_SFTP_ATTRIBUTES found{};
    const auto size = line_.complete(
        [&] {
          return libssh2_sftp_readdir_ex(folder, name.data(), name.size(), whole.data(), whole.size() - 1, &found);
        },
        patience);
    if (!size) return fail(size.error());
    if (*size == 0) return {};
    const std::string_view entry(name.data(), static_cast<std::size_t>(*size));
    if (entry == "." || entry == "..") continue;
    lines.push_back(serverText(whole.data()));
    bytes += lines.back().size();
    if (lines.size() > mostListed || bytes > longestListed) {
      return transferFailure(transferFileCommand, "elenco troppo lungo");
    }
    if (lines.size() % entriesBetweenPauses != 0) continue;
    if (auto paused = patience.pause(); !paused) return paused;
  }
}

Result<std::vector<std::string>> SftpChannel::list(const std::string& path, Patience& patience) {
  const auto folder = line_.obtain<LIBSSH2_SFTP_HANDLE>(
      [&] { return libssh2_sftp_open_ex(line_.sftp(), path.c_str(), lengthOf(path), 0, 0, LIBSSH2_SFTP_OPENDIR); },
      patience);
  if (!folder) return fail(folder.error());
  std::vector<std::string> lines;
  if (auto done = close(*folder, readFolder(*folder, lines, patience), patience); !done) return fail(done.error());
  return lines;
}

}  // namespace kv
