#include "platform/transfer/protocols/sftp_transfer.h"

#include <charconv>
#include <optional>
#include <utility>

#include "platform/text/text.h"
#include "platform/transfer/command_runner.h"
#include "platform/transfer/protocols/sftp_channel.h"
#include "platform/transfer/server_way.h"

namespace kv {
namespace {

constexpr std::string_view hiddenPassword = "(hidden)";
constexpr int notImplemented = transferFileCommand + 2;

/// "SITE chmod 755 a.pl" in its parts.
struct RightsCommand {
  unsigned long rights = 0;
  std::string name;
};
std::optional<RightsCommand> rightsCommand(std::string_view text) {
  constexpr std::string_view start = "SITE chmod ";
  constexpr int octal = 8;
  if (!startsWithIgnoringCase(text, start)) return std::nullopt;
  const std::string_view rest = text.substr(start.size());
  RightsCommand command;
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), command.rights, octal);
  const auto digits = static_cast<std::size_t>(end - rest.data());
  if (error != std::errc() || digits + 1 >= rest.size() || rest[digits] != ' ') return std::nullopt;
  command.name = rest.substr(digits + 1);
  return command;
}

class SftpTransfer final : public Transfer {
 public:
  void listen(TransferEvents events) override {
    events_ = std::move(events);
    line_.trust = events_.trust;
    runner_.yield = events_.yield;
  }
  TransferCompletion connect(const ConnectionSettings& settings) override;
  TransferCompletion logIn() override;
  TransferCompletion currentFolder() override {
    auto completion = command("PWD", [](Patience&) { return Result<>(); });
    if (completion.succeeded()) completion.text = current_;
    return completion;
  }
  TransferCompletion changeFolder(const std::string& folder) override {
    return enter("CD " + folder, absolute(folder));
  }
  TransferCompletion parentFolder() override;
  TransferCompletion makeFolder(const std::string& folder) override {
    return command("MKDIR " + folder,
                   [&](Patience& patience) { return server_.makeFolder(absolute(folder), patience); });
  }
  TransferCompletion deleteFile(const std::string& name) override {
    return command("RM " + name, [&](Patience& patience) { return server_.deleteFile(absolute(name), patience); });
  }
  TransferCompletion renameFile(const std::string& from, const std::string& to) override {
    return command("RENAME " + from + " " + to,
                   [&](Patience& patience) { return server_.rename(absolute(from), absolute(to), patience); });
  }
  TransferCompletion upload(const std::string& path, const std::string& name, TransferMode mode) override {
    return store("PUT " + name, path, name, {mode, false, events_.sent});
  }
  TransferCompletion append(const std::string& path, const std::string& name, TransferMode mode) override {
    return store("APPEND " + name, path, name, {mode, true, events_.sent});
  }
  TransferCompletion rawCommand(const std::string& text) override;
  TransferCompletion list() override;
  TransferCompletion quit() override;
  void abort() override {
    runner_.abort();
    if (!runner_.isBusy()) line_.close();
  }
  bool isConnected() const override { return line_.isOpen(); }

 private:
  using Work = std::function<Result<>(Patience& patience)>;

  /// Runs a command over an open channel; `shown` is its line of the dialogue.
  TransferCompletion command(const std::string& shown, const Work& work);
  TransferCompletion run(const std::string& shown, const Work& work);
  TransferCompletion enter(const std::string& shown, std::string path);
  TransferCompletion store(const std::string& shown, const std::string& path, const std::string& name,
                           const SftpChannel::StoreWay& way) {
    return command(shown, [&](Patience& patience) { return server_.store(path, absolute(name), way, patience); });
  }
  TransferCompletion inspect(const std::string& shown, const std::string& name) {
    return command(shown, [&](Patience& patience) { return server_.requireEntry(absolute(name), patience); });
  }
  std::string absolute(const std::string& name) const;
  std::string withoutPasswords(std::string text) const;
  void showLine(const std::string& text) const {
    if (events_.line) events_.line(withoutPasswords(text));
  }

  SshLine line_;
  SftpChannel server_{line_};
  ConnectionSettings settings_;
  TransferEvents events_;
  CommandRunner runner_;
  std::string current_ = "/";
};

std::string SftpTransfer::withoutPasswords(std::string text) const {
  for (const std::string& secret : {settings_.password, settings_.firewallPassword}) {
    if (!secret.empty()) text = replaceAll(text, secret, hiddenPassword);
  }
  return text;
}

std::string SftpTransfer::absolute(const std::string& name) const {
  if (name.empty() || name == ".") return current_;
  if (name.starts_with('/')) return name;
  return current_ + (current_.ends_with('/') ? "" : "/") + name;
}

TransferCompletion SftpTransfer::run(const std::string& shown, const Work& work) {
  if (!runner_.isBusy()) showLine(shown);
  auto completion = runner_.run(settings_.silenceSeconds, [&](Patience& patience) -> Result<std::string> {
    if (auto done = work(patience); !done) return fail(done.error());
    return std::string();
  });
  if (completion.succeeded()) return completion;
  if (endsConnection(completion.code)) line_.close();
  completion.text = withoutPasswords(completion.text);
  showLine(completion.text);
  return completion;
}

TransferCompletion SftpTransfer::command(const std::string& shown, const Work& work) {
  if (line_.sftp() == nullptr) return {transferNoConnection, "la connessione è chiusa", {}};
  return run(shown, work);
}

TransferCompletion SftpTransfer::connect(const ConnectionSettings& settings) {
  line_.close();
  if (settings.protocol != TransferProtocol::Sftp) return {transferOther, "questa connessione è di SFTP", {}};
  settings_ = settings;
  const auto open = [this](Patience& patience) { return line_.open(settings_, patience); };
  auto completion = run("SSH " + settings.host + ":" + serverPort(settings), open);
  if (!completion.succeeded()) line_.close();
  return completion;
}

TransferCompletion SftpTransfer::logIn() {
  if (!line_.isOpen()) return {transferNoConnection, "la connessione è chiusa", {}};
  return run("USER " + settings_.user, [this](Patience& patience) -> Result<> {
    if (auto known = line_.logIn(settings_, patience); !known) return known;
    auto home = server_.home(patience);
    if (!home) return fail(home.error());
    current_ = std::move(*home);
    return {};
  });
}

TransferCompletion SftpTransfer::enter(const std::string& shown, std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  auto completion = command(shown, [&](Patience& patience) { return server_.requireFolder(path, patience); });
  if (completion.succeeded()) current_ = path;
  return completion;
}

TransferCompletion SftpTransfer::parentFolder() {
  const std::size_t slash = current_.rfind('/');
  return enter("CD ..", slash == 0 || slash == std::string::npos ? "/" : current_.substr(0, slash));
}

TransferCompletion SftpTransfer::rawCommand(const std::string& text) {
  constexpr std::string_view timeCommand = "MDTM ";
  if (const auto rights = rightsCommand(text)) {
    return command(
        text, [&](Patience& patience) { return server_.setRights(absolute(rights->name), rights->rights, patience); });
  }
  if (equalsIgnoringCase(text, "NOOP")) return inspect(text, ".");
  if (startsWithIgnoringCase(text, timeCommand)) return inspect(text, text.substr(timeCommand.size()));
  return {notImplemented, "comando non previsto da SFTP: " + withoutPasswords(text), {}};
}

TransferCompletion SftpTransfer::list() {
  std::vector<std::string> lines;
  auto completion = command("LS", [&](Patience& patience) -> Result<> {
    auto found = server_.list(current_, patience);
    if (!found) return fail(found.error());
    lines = std::move(*found);
    return {};
  });
  if (completion.succeeded()) completion.lines = std::move(lines);
  return completion;
}

TransferCompletion SftpTransfer::quit() {
  if (!line_.isOpen()) return {};
  auto completion = run("QUIT", [this](Patience& patience) {
    line_.leave();
    return patience.pause();
  });
  if (!runner_.isBusy()) line_.close();  // else this was asked from within another command
  return completion;
}

}  // namespace

std::unique_ptr<Transfer> makeSftpTransfer() { return std::make_unique<SftpTransfer>(); }

}  // namespace kv
