#include "platform/transfer/protocols/ftp_transfer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "platform/text/text.h"
#include "platform/transfer/command_runner.h"
#include "platform/transfer/local_file.h"
#include "platform/transfer/protocols/ftp_data.h"

namespace kv {
namespace {

constexpr int leavingSeconds = 5;  // a server that doesn't answer QUIT is left all the same
constexpr std::size_t longestListing = std::size_t{16} * 1024 * 1024;
constexpr std::size_t mostLineEnds = 200'000;  // of a listing; CR LF are two
constexpr int directoryExists = transferOther + 521;

bool isLineEnd(char byte) { return byte == '\n' || byte == '\r'; }

/// Reads a listing to its end. transferNoData when it is longer than any that is one.
Result<> receiveListing(Wire& wire, std::string& text, Patience& patience) {
  std::array<char, 16384> piece{};
  std::size_t ends = 0;
  for (;;) {
    const auto count = wire.read(piece.data(), piece.size(), patience);
    if (!count) return fail(count.error());
    if (*count == 0) return {};
    text.append(piece.data(), *count);
    ends += static_cast<std::size_t>(std::count_if(piece.data(), piece.data() + *count, isLineEnd));
    if (text.size() > longestListing || ends > mostLineEnds) {
      return transferFailure(transferNoData, "elenco troppo lungo");
    }
    if (auto paused = patience.pause(); !paused) return paused;
  }
}

class FtpTransfer final : public Transfer {
 public:
  void listen(TransferEvents events) override {
    events_ = std::move(events);
    session_.control.onLine = events_.line;
    session_.tls.trust = events_.trust;
    runner_.yield = events_.yield;
  }

  TransferCompletion connect(const ConnectionSettings& settings) override;
  TransferCompletion logIn() override {
    return command([this](Patience& patience) -> Result<std::string> {
      if (auto known = logInto(session_, patience); !known) return fail(known.error());
      return std::string();
    });
  }
  TransferCompletion currentFolder() override;
  TransferCompletion changeFolder(const std::string& folder) override { return namedCommand("CWD ", folder); }
  TransferCompletion parentFolder() override { return rawCommand("CDUP"); }
  TransferCompletion makeFolder(const std::string& folder) override;
  TransferCompletion deleteFile(const std::string& name) override { return namedCommand("DELE ", name); }
  TransferCompletion renameFile(const std::string& from, const std::string& to) override;
  TransferCompletion upload(const std::string& path, const std::string& name, TransferMode mode) override {
    return store("STOR ", {path, name, mode});
  }
  TransferCompletion append(const std::string& path, const std::string& name, TransferMode mode) override {
    return store("APPE ", {path, name, mode});
  }
  TransferCompletion rawCommand(const std::string& text) override;
  TransferCompletion list() override;
  TransferCompletion quit() override;
  void abort() override {
    runner_.abort();
    if (!runner_.isBusy()) session_.control.close();
  }
  bool isConnected() const override { return session_.control.isOpen(); }

 private:
  struct SentFile {
    std::string path;  // on this machine
    std::string name;  // on the server
    TransferMode mode;
  };
  using Work = CommandRunner::Work;

  /// Runs the work of one command; its text becomes that of the completion.
  TransferCompletion command(const Work& work) {
    if (!session_.control.isOpen()) return {transferNoConnection, "la connessione è chiusa", {}};
    return run(session_.settings.silenceSeconds, work);
  }
  TransferCompletion run(int silenceSeconds, const Work& work);
  TransferCompletion namedCommand(const std::string& verb, const std::string& name);
  TransferCompletion store(const std::string& verb, const SentFile& file);
  Result<> setType(char type, Patience& patience);
  /// Returns the bytes that were sent.
  Result<std::uint64_t> sendFile(LocalFile& file, Wire& wire, Patience& patience);
  Result<> requireSize(const std::string& name, std::uint64_t bytes, Patience& patience);

  FtpSession session_;
  TransferEvents events_;
  CommandRunner runner_;
};

TransferCompletion FtpTransfer::run(int silenceSeconds, const Work& work) {
  auto completion = runner_.run(silenceSeconds, work);
  if (completion.succeeded()) return completion;
  if (endsConnection(completion.code)) session_.control.close();
  completion.text = session_.control.withoutSecrets(completion.text);
  return completion;
}

TransferCompletion FtpTransfer::connect(const ConnectionSettings& settings) {
  session_.control.close();
  if (settings.protocol != TransferProtocol::Ftp) return {transferOther, "questa connessione è di FTP", {}};
  session_.control.secrets = {settings.password, settings.firewallPassword};
  session_.settings = settings;
  session_.secureData = false;
  session_.extendedPassive = true;
  session_.type = 'A';
  session_.names = NameEncoding::NotAsked;
  const auto open = [this](Patience& patience) -> Result<std::string> {
    if (auto opened = openControl(session_, patience); !opened) return fail(opened.error());
    return std::string();
  };
  auto completion = run(settings.silenceSeconds, open);
  if (!completion.succeeded() && session_.tls.wantsAnother()) completion = run(settings.silenceSeconds, open);
  if (!completion.succeeded()) session_.control.close();
  return completion;
}

TransferCompletion FtpTransfer::currentFolder() {
  return command([this](Patience& patience) -> Result<std::string> {
    const auto reply = session_.control.require("PWD", patience);
    if (!reply) return fail(reply.error());
    const auto folder = quotedFolder(reply->text);
    // A server without quotes says the folder and nothing else.
    return serverText(folder ? *folder : std::string(trim(reply->text)));
  });
}

TransferCompletion FtpTransfer::namedCommand(const std::string& verb, const std::string& name) {
  return command([&](Patience& patience) -> Result<std::string> {
    const auto encoded = encodedName(session_, name, patience);
    if (!encoded) return fail(encoded.error());
    const auto reply = session_.control.require(verb + *encoded, patience);
    if (!reply) return fail(reply.error());
    return serverText(reply->text);
  });
}

TransferCompletion FtpTransfer::makeFolder(const std::string& folder) {
  auto completion = namedCommand("MKD ", folder);
  if (completion.code == directoryExists) completion.code = transferFolderMissing;
  return completion;
}

TransferCompletion FtpTransfer::renameFile(const std::string& from, const std::string& to) {
  auto completion = namedCommand("RNFR ", from);
  return completion.succeeded() ? namedCommand("RNTO ", to) : completion;
}

TransferCompletion FtpTransfer::rawCommand(const std::string& text) {
  return command([&](Patience& patience) -> Result<std::string> {
    const auto encoded = encodedName(session_, text, patience);
    if (!encoded) return fail(encoded.error());
    const auto reply = session_.control.require(*encoded, patience);
    if (!reply) return fail(reply.error());
    return serverText(reply->text);
  });
}

Result<> FtpTransfer::setType(char type, Patience& patience) {
  if (session_.type == type) return {};
  const auto reply = session_.control.require(std::string("TYPE ") + type, patience);
  if (!reply) return fail(reply.error());
  session_.type = type;
  return {};
}

Result<std::uint64_t> FtpTransfer::sendFile(LocalFile& file, Wire& wire, Patience& patience) {
  std::uint64_t sent = 0;
  for (;;) {
    const auto piece = file.next();
    if (!piece) return fail(piece.error());
    if (piece->empty()) return sent;
    if (auto written = wire.write(*piece, patience); !written) {
      const Error& error = written.error();
      if (error.number != transferNoConnection) return fail(error);
      return transferFailure(transferNoData, "connessione dati: " + error.what);
    }
    sent += piece->size();
    if (events_.sent) events_.sent(sent);
    if (auto paused = patience.pause(); !paused) return fail(paused.error());
  }
}

// Many servers take a connection that was broken off for one that was closed, and half a file for a whole one.
Result<> FtpTransfer::requireSize(const std::string& name, std::uint64_t bytes, Patience& patience) {
  const auto reply = session_.control.command("SIZE " + name, patience);
  if (!reply) return fail(reply.error());
  // A server that doesn't tell has said that the file is there. Of several lines the last has the number.
  const std::string_view last = std::string_view(reply->text).substr(reply->text.rfind('\n') + 1);
  if (reply->code != 213 || trim(last) == std::to_string(bytes)) return {};
  return transferFailure(transferNoData, "connessione dati: " + socketText(ECONNRESET));
}

TransferCompletion FtpTransfer::store(const std::string& verb, const SentFile& file) {
  return command([&](Patience& patience) -> Result<std::string> {
    auto open = LocalFile::open(file.path, file.mode);
    if (!open) return fail(open.error());
    const auto encoded = encodedName(session_, file.name, patience);
    if (!encoded) return fail(encoded.error());
    const bool isText = file.mode == TransferMode::Ascii;
    if (auto set = setType(isText ? 'A' : 'I', patience); !set) return fail(set.error());
    std::uint64_t bytes = 0;
    const auto send = [&](Wire& wire, Patience& inner) -> Result<> {
      const auto sent = sendFile(*open, wire, inner);
      if (!sent) return fail(sent.error());
      bytes = *sent;
      return {};
    };
    const auto stored = withData(session_, verb + *encoded, send, patience);
    if (!stored) return fail(stored.error());
    // The size of a text is another one on each system.
    if (*stored == DataEnd::Reset && !isText) {
      if (auto whole = requireSize(*encoded, bytes, patience); !whole) return fail(whole.error());
    }
    return std::string();
  });
}

TransferCompletion FtpTransfer::list() {
  std::string text;
  const auto receive = [&](Wire& wire, Patience& patience) { return receiveListing(wire, text, patience); };
  auto completion = command([&](Patience& patience) -> Result<std::string> {
    if (auto set = setType('A', patience); !set) return fail(set.error());
    if (auto listed = withData(session_, "LIST", receive, patience); !listed) return fail(listed.error());
    return std::string();
  });
  if (!completion.succeeded()) return completion;
  for (const std::string_view line : splitLines(text)) completion.lines.push_back(serverText(line));
  return completion;
}

TransferCompletion FtpTransfer::quit() {
  if (!session_.control.isOpen()) return {};
  const int seconds = std::min(leavingSeconds, session_.settings.silenceSeconds);
  auto completion = run(seconds, [this](Patience& patience) -> Result<std::string> {
    if (auto left = session_.control.command("QUIT", patience); !left) return fail(left.error());
    return std::string();
  });
  if (runner_.isBusy()) return completion;  // this was asked from within another command
  session_.control.close();
  // All that was to be done is done: a server that leaves without a word has lost nothing.
  return completion.code == transferCancelled ? completion : TransferCompletion();
}

}  // namespace

std::unique_ptr<Transfer> makeFtpTransfer() { return std::make_unique<FtpTransfer>(); }

}  // namespace kv
