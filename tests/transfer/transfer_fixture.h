#pragma once
// A connection to a scripted server, and what it said.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/files/files.h"
#include "platform/transfer/transfer.h"
#include "support/scripted_ftp_server.h"
#include "support/temp_folder.h"

namespace kv::test {

class TransferFixture : public ::testing::Test {
 protected:
  TransferFixture() : transfer(makeTransfer()) { listen(); }

  void listen() {
    TransferEvents events;
    events.line = [this](const std::string& line) { lines.push_back(line); };
    events.yield = [this] { return ++yields < cancelAt || cancelAt == 0; };
    events.sent = [this](std::uint64_t bytes) { sent = bytes; };
    transfer->listen(std::move(events));
  }
  /// A server of any kind that knows its port.
  template <class Server>
  ConnectionSettings settingsOf(const Server& server) const {
    ConnectionSettings settings;
    settings.host = "127.0.0.1";
    settings.ftpPort = server.port();
    settings.user = "mario";
    settings.password = "segreto";
    settings.tls = TlsMode::Never;
    settings.silenceSeconds = 1;
    return settings;
  }
  /// "ok", or the code and the text of the first of connection and login that failed.
  std::string enter(const ConnectionSettings& settings) {
    if (const auto connected = transfer->connect(settings); !connected.succeeded()) return textOf(connected);
    return textOf(transfer->logIn());
  }
  static std::string textOf(const TransferCompletion& completion) {
    if (completion.succeeded()) return "ok";
    return std::to_string(completion.code) + " " + completion.text;
  }
  std::string localFile(const std::string& name, const std::string& bytes) {
    const std::string path = root / name;
    EXPECT_TRUE(writeBytes(path, bytes));
    return path;
  }
  std::string dialogue() const {
    std::string all;
    for (const std::string& line : lines) all += line + "\n";
    return all;
  }

  TempFolder root;
  std::unique_ptr<Transfer> transfer;
  std::vector<std::string> lines;
  int yields = 0;
  int cancelAt = 0;  // the yield at which the command is cancelled; 0 never
  std::uint64_t sent = 0;
};

}  // namespace kv::test
