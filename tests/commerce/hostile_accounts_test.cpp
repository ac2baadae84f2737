// Account data of any bytes: they come back equal, and what is filled with them is valid PHP in which they are data.

#include <gtest/gtest.h>

#include <cstdio>
#include <random>

#include "commerce/gateways/gateway_account.h"
#include "commerce/gateways/template_filling.h"
#include "commerce_shop.h"
#include "platform/text/text.h"
#include "support/command_output.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

class HostileAccounts : public CommerceShop {
 protected:
  void SetUp() override { copyModules(); }

  std::size_t below(std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit - 1)(engine); }
  /// A value of random Windows-1252 characters and of words that mean something to somebody.
  std::string value(bool ofLines) {
    static const std::vector<std::string> words{"KORVANE_VALORI",
                                                "KORVANE_VALORI_1",
                                                "KORVANE_ISTRUZIONI",
                                                "KORVANE_MODULO",
                                                "?>",
                                                "<?php ",
                                                "'",
                                                "\"",
                                                "=",
                                                "\\",
                                                "$x",
                                                "#cod",
                                                "#mid",
                                                "#val",
                                                "#url",
                                                "#ss2",
                                                "<<<'EOT'",
                                                "*/",
                                                "//",
                                                "{$a}",
                                                ");",
                                                "&amp;",
                                                "#info"};
    std::string text;
    for (std::size_t n = below(8); n > 0; --n) {
      if (below(2) == 0) {
        text += words[below(words.size())];
      } else if (ofLines && below(3) == 0) {
        text += "\r\n";
      } else {
        const char byte = static_cast<char>(below(256));
        if (byte != '\r' && byte != '\n' && byte != '\0' && byte != '|') text += fromWindows1252({&byte, 1});
      }
    }
    return text;
  }
  GatewayAccount hostile(const GatewayModule& module) {
    GatewayAccount account = GatewayAccount::load(session, module);
    for (const AccountKey& key : module.keys) {
      switch (key.role) {
        case KeyRole::Text:
        case KeyRole::Secret:
        case KeyRole::Default:
          account.setValue(key.key, value(false) + "x");
          break;
        case KeyRole::Lines:
          account.setValue(key.key, value(true) + "x");
          break;
        default:
          break;
      }
    }
    if (module.hasTest()) {
      account.setUsesTest(true);
      account.setTestAddress("https://prova.example/" + value(false));
    }
    if (module.hasModes()) account.setMode(static_cast<SellaMode>(below(3)));
    return account;
  }
  /// The filled files of a module and the templates they were made of, relative to the folder `code`.
  static std::vector<std::pair<std::string, std::string>> filesOf(const GatewayModule& module, SellaMode mode) {
    const std::string folder = std::string(module.folder) + "/";
    std::vector<std::pair<std::string, std::string>> files{{std::string(module.folder) + ".kpg", folder + "form.kpg"}};
    for (const std::string_view script : module.scripts) {
      files.emplace_back(folder + std::string(script) + ".php", folder + std::string(script) + ".new");
    }
    if (module.hasModes() && sellaMode(mode).isFilled) {
      const std::string stem = folder + std::string(sellaMode(mode).answer);
      files.emplace_back(stem + ".php", stem + ".new");
    }
    return files;
  }
  /// The value of a placeholder as the rules of each role store it.
  static std::string storedValue(const GatewayAccount& account, std::string_view key) {
    const AccountKey& row = *account.module().find(key);
    if (row.role == KeyRole::Constant) return std::string(row.constant);
    if (row.role == KeyRole::Service) return account.testAddress();
    if (row.role == KeyRole::Prefix) return "0";
    if (row.role == KeyRole::Language) return account.value(key) == "1" ? "idlan=1" : "";
    return account.value(key);
  }
  /// What the text blocks of a template hold, one after the other, filled.
  static std::string expectedBlocks(const std::string& text, const GatewayAccount& account, bool merchantAlone) {
    std::string blocks;
    const std::string opening = "<<<'", closing = "'\r\n";
    for (auto at = text.find(opening); at != std::string::npos; at = text.find(opening, at + 1)) {
      const auto end = text.find(closing, at);
      const std::string word = text.substr(at + opening.size(), end - at - opening.size());
      const auto from = end + closing.size();
      // The line end before the end word is no part of the block's text, but of PHP's token.
      blocks += text.substr(from, text.find(word, from) - from);
    }
    for (const std::string_view key : account.module().placeholders) {
      if (merchantAlone && key != "mid") continue;
      const std::string name = "#" + std::string(key);
      std::string filled;
      for (std::size_t at = 0; at < blocks.size();) {
        const auto found = blocks.find(name, at);
        filled += blocks.substr(at, found - at);
        if (found == std::string::npos) break;
        filled += storedValue(account, key);
        at = found + name.size();
      }
      blocks = filled;
    }
    return blocks;
  }

  std::mt19937 engine{seed()};
};

TEST_F(HostileAccounts, ComeBackEqualFromSaveAndLoad) {
  for (int round = 0; round < operationsOf(6); ++round) {
    for (const GatewayModule& module : gatewayModules()) {
      const GatewayAccount account = hostile(module);
      ASSERT_TRUE(account.save(session)) << module.folder;
      const GatewayAccount again = GatewayAccount::load(session, module);
      for (const AccountKey& key : module.keys) {
        if (key.role == KeyRole::Constant || key.role == KeyRole::Service || key.role == KeyRole::Test) continue;
        if (key.role == KeyRole::Prefix || key.role == KeyRole::Terminal) continue;
        EXPECT_EQ(again.value(key.key), account.value(key.key)) << module.folder << " " << key.key;
      }
      EXPECT_EQ(again.testAddress(), account.testAddress()) << module.folder;
      EXPECT_EQ(again.mode(), account.mode());
    }
  }
}

TEST_F(HostileAccounts, AreDataInTheFilledScriptsOfAllModules) {
  const std::string code = session.ShopFolder + "/code/";
  std::string list;
  for (const GatewayModule& module : gatewayModules()) {
    for (int round = 0; round < operationsOf(4); ++round) {
      const GatewayAccount account = hostile(module);
      ASSERT_TRUE(account.save(session));
      for (const auto& [file, form] : filesOf(module, account.mode())) {
        const std::string stem = root / ("f" + std::to_string(list.size()));
        const auto text = readText(code + form);
        ASSERT_TRUE(text) << form;
        std::vector<Placeholder> plain;
        for (const std::string_view key : module.placeholders) {
          const AccountKey& row = *module.find(key);
          plain.emplace_back(key, row.role == KeyRole::Constant ? std::string(row.constant) : "1");
        }
        const bool merchantAlone = module.hasModes() && form.ends_with(".new");
        ASSERT_TRUE(writeText(stem + ".plain", ElaboraPG(*text, plain)));
        ASSERT_TRUE(copyFile(code + file, stem + ".filled"));
        ASSERT_TRUE(writeText(stem + ".blocks", expectedBlocks(*text, account, merchantAlone)));
        list.append(stem).append(".plain\t").append(stem).append(".filled\t").append(stem).append(".blocks\n");
      }
    }
  }
  ASSERT_TRUE(writeBytes(root / "list", list));
  EXPECT_EQ(outputOf("php " KORVANE_TEST_DATA "/commerce/filled_scripts.php " + (root / "list") + " 2>&1"), "");
}

TEST_F(HostileAccounts, LeaveScriptsThatPhpAccepts) {
  std::string commands;
  int files = 0;
  for (const GatewayModule& module : gatewayModules()) {
    GatewayAccount account = hostile(module);
    account.setMode(SellaMode::Otp);
    ASSERT_TRUE(account.save(session));
    for (const auto& [file, form] : filesOf(module, account.mode())) {
      commands += "php -l '" + session.ShopFolder + "/code/" + file + "' || exit 1; ";
      ++files;
    }
  }
  const std::string said = outputOf("(" + commands + ") 2>&1");
  int accepted = 0;
  for (const std::string_view line : splitLines(said)) accepted += line.starts_with("No syntax errors") ? 1 : 0;
  EXPECT_EQ(accepted, files) << said;
}

}  // namespace
}  // namespace kv::test
