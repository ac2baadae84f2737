// kvftp.ini and firewall.net: their exact bytes, what each key means when it is read, and what is left to its default.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/files/files.h"
#include "platform/text/text.h"
#include "publish/settings/firewall_choice.h"
#include "publish/settings/firewall_settings.h"
#include "publish/settings/publish_settings.h"
#include "store/shop/session.h"
#include "support/failing_files.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

std::string keyFileBytes(const std::string& path) {
  const auto bytes = readBytes(path);
  return bytes ? *bytes : "(missing)";
}

unsigned keyFileMode(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0);
  return status.st_mode & 07777U;
}

TEST(PublishSettings, AChoiceOtherThanTheDefaultsWritesTheKeysInTheirOrder) {
  const TempFolder shop;
  PublishSettings settings;
  settings.onlyModified = false;
  settings.types = typesOf({false, true, true, false});
  ASSERT_TRUE(writePublishSettings(shop.path(), settings));
  EXPECT_EQ(keyFileBytes(shop / "kvftp.ini"),
            "MODE: 0\r\nSHOP: 1\r\nTYPE: .gif.jpg.jpeg.png.bmp.mdb.csv.sql.\r\nOPDB: -1\r\nDISA: 0\r\nOPTM: 0\r\n"
            "LOCK: -1\r\n");
  EXPECT_EQ(readPublishSettings(shop.path()), settings);
}

TEST(PublishSettings, EveryOtherChoiceIsWrittenToo) {
  PublishSettings settings;
  settings.onlyShopFiles = false;
  settings.allRecords = false;
  settings.disabled = true;
  settings.optimised = true;
  settings.lockTables = false;
  EXPECT_EQ(publishSettingsText(settings),
            "MODE: 1\r\nSHOP: 0\r\nTYPE: ALL.\r\nOPDB: 0\r\nDISA: -1\r\nOPTM: 1\r\nLOCK: 0\r\n");
}

TEST(PublishSettings, LaterKeysFollowTheToldOnesWhereTheyDifferFromTheirDefault) {
  PublishSettings settings;
  settings.safeUpload = settings.contentCheck = settings.retry = settings.cleanUp = true;
  settings.connections = 4;
  settings.silenceSeconds = 90;
  const std::string text = publishSettingsText(settings);
  EXPECT_TRUE(text.ends_with("LOCK: -1\r\nSAFE: 1\r\nHASH: 1\r\nRETR: 1\r\nCONN: 4\r\nPULI: 1\r\nWAIT: 90\r\n"))
      << text;
  EXPECT_EQ(parsePublishSettings(text), settings);
  settings.silenceSeconds = 60;
  EXPECT_EQ(publishSettingsText(settings).find("WAIT:"), std::string::npos);
}

TEST(PublishSettings, AllDefaultsDeleteTheFile) {
  const TempFolder shop;
  ASSERT_TRUE(writeBytes(shop / "kvftp.ini", "MODE: 0\r\n"));
  ASSERT_TRUE(writePublishSettings(shop.path(), {}));
  EXPECT_FALSE(fileExists(shop / "kvftp.ini"));
  EXPECT_TRUE(writePublishSettings(shop.path(), {}));
}

TEST(PublishSettings, WithoutAFileTheDefaultsHold) {
  const TempFolder shop;
  const PublishSettings settings = readPublishSettings(shop.path());
  EXPECT_TRUE(settings.onlyModified && settings.onlyShopFiles && settings.allRecords && settings.lockTables);
  EXPECT_FALSE(settings.disabled || settings.optimised);
  EXPECT_EQ(settings.types, "ALL.");
  for (const char* name : {"kvftp.ini", "firewall.net"}) ASSERT_TRUE(createFolder(shop / name));
  EXPECT_EQ(readPublishSettings(shop.path()), settings) << "one that can't be read is as good as none";
  EXPECT_EQ(readFirewallSettings(shop.path()), FirewallSettings());
}

TEST(PublishSettings, KeysAreFiveCharactersInAnyCaseAndValuesAreTrimmed) {
  const PublishSettings settings = parsePublishSettings("mode:0\r\nShop:   0   \nTYPE:.gif.\rOpdb:\t0\r\n");
  EXPECT_FALSE(settings.onlyModified);
  EXPECT_FALSE(settings.onlyShopFiles);
  EXPECT_EQ(settings.types, ".gif.");
}

TEST(PublishSettings, UnknownKeysAndShortLinesAreSkipped) {
  EXPECT_EQ(parsePublishSettings("MOD\r\n\r\nMODO: 0\r\nMODEX 0\r\n MODE: 0\r\nXXXX: 1\r\n"), PublishSettings());
}

TEST(PublishSettings, OneAndMinusOneBothCountAsOn) {
  for (const char* value : {"1", "-1", " -1 "}) {
    EXPECT_TRUE(parsePublishSettings(std::string("OPTM: ") + value).optimised) << value;
    EXPECT_TRUE(parsePublishSettings(std::string("DISA: ") + value).disabled) << value;
  }
  for (const char* value : {"0", "2", "", "si"}) {
    EXPECT_FALSE(parsePublishSettings(std::string("OPTM: ") + value).optimised) << value;
    EXPECT_FALSE(parsePublishSettings(std::string("DISA: ") + value).disabled) << value;
  }
}

TEST(PublishSettings, OnlyAZeroMakesTheDatabaseIncremental) {
  EXPECT_FALSE(parsePublishSettings("OPDB: 0").allRecords);
  for (const char* value : {"-1", "1", "", "x"}) {
    EXPECT_TRUE(parsePublishSettings(std::string("OPDB: ") + value).allRecords) << value;
  }
}

TEST(PublishSettings, NumbersOutOfRangeAreBroughtIntoIt) {
  EXPECT_EQ(parsePublishSettings("WAIT: -3").silenceSeconds, 5);
  EXPECT_EQ(parsePublishSettings("WAIT: 1E30").silenceSeconds, 3600);
  EXPECT_EQ(parsePublishSettings("CONN: 0").connections, 1);
  EXPECT_EQ(parsePublishSettings("CONN: 40").connections, 4);
  EXPECT_EQ(parsePublishSettings("WAIT: presto").silenceSeconds, 60);
}

TEST(PublishSettings, TheTypesAcceptOnlyTheirExtensions) {
  EXPECT_TRUE(acceptsType(".gif.jpg.jpeg.png.bmp.", "a.png"));
  EXPECT_TRUE(acceptsType(".gif.jpg.jpeg.png.bmp.", "A.PNG"));
  EXPECT_FALSE(acceptsType(".gif.jpg.jpeg.png.bmp.", "a.htm"));
  EXPECT_TRUE(acceptsType(".mdb.csv.sql.", "a.sql"));
  EXPECT_FALSE(acceptsType(".mdb.csv.sql.", "a.sq"));
  EXPECT_TRUE(acceptsType("ALL.", "leggimi"));
  EXPECT_FALSE(acceptsType(".mdb.csv.sql.", "leggimi"));
}

TEST(PublishSettings, ADotAloneAcceptsNothingWithAnExtension) {
  EXPECT_EQ(typesOf({false, false, false, false}), ".");
  for (const char* name : {"a.htm", "a.b", "leggimi"}) EXPECT_FALSE(acceptsType(".", name)) << name;
  EXPECT_TRUE(acceptsType(".", "vuota."));
}

TEST(PublishSettings, TheGroupsOfAListAreFoundAgain) {
  using Chosen = std::array<bool, 4>;
  for (unsigned bits = 0; bits < 16; ++bits) {
    const Chosen chosen{(bits & 1U) != 0, (bits & 2U) != 0, (bits & 4U) != 0, (bits & 8U) != 0};
    EXPECT_EQ(groupsOf(typesOf(chosen)), chosen) << typesOf(chosen);
  }
  EXPECT_EQ(groupsOf("ALL."), (Chosen{true, true, true, true}));
}

TEST(AvanzateTrasfOfAShop, TheSeparatorFollowsTheOptionAndIsEmptyWithoutAFile) {
  const TempFolder shop;
  MemorySettings settings;
  LockStatements lock;
  ASSERT_TRUE(writeBytes(shop / "kvftp.ini", "OPTM: -1\r\nLOCK: 0\r\n"));
  EXPECT_TRUE(AvanzateTrasf(shop.path(), settings, lock).optimised);
  EXPECT_EQ(settings.get(settingsSection, "QS2"), ";\\g");
  EXPECT_FALSE(lock.on);
  ASSERT_TRUE(deleteFile(shop / "kvftp.ini"));
  EXPECT_EQ(AvanzateTrasf(shop.path(), settings, lock), PublishSettings());
  EXPECT_EQ(settings.get(settingsSection, "QS2"), "");
  EXPECT_FALSE(lock.on) << "without a file the lock keeps its state";
}

TEST(FirewallSettings, TheFileHoldsTheKeysInTheirOrder) {
  const TempFolder shop;
  FirewallSettings settings;
  settings.passive = false;
  settings.host = "  fw.example.org ";
  settings.kind = FirewallKind::ProxyOpen;
  settings.port = "01080";
  settings.ftpPort = "2121";
  settings.user = " ada ";
  settings.password = "p ss";
  settings.reconnects = true;
  ASSERT_TRUE(writeFirewallSettings(shop.path(), settings));
  EXPECT_EQ(keyFileBytes(shop / "firewall.net"),
            "MODE: 0\r\nHOST: fw.example.org\r\nTYPE: 6\r\nPORT: 1080\r\nFPRT: 2121\r\nUSER: ada\r\nPASS: p ss\r\n"
            "DISC: 1\r\n");
}

TEST(FirewallSettings, WithoutAFirewallThePortIsEmpty) {
  EXPECT_EQ(firewallSettingsText({}),
            "MODE: 1\r\nHOST: \r\nTYPE: 0\r\nPORT: \r\nFPRT: 21\r\nUSER: \r\nPASS: \r\nDISC: 0\r\n");
  FirewallSettings zero;
  zero.port = "0";
  EXPECT_NE(firewallSettingsText(zero).find("PORT: \r\n"), std::string::npos);
}

TEST(FirewallSettings, APortThatIsNoNumberIsPassedOnUnchanged) {
  FirewallSettings settings = parseFirewallSettings("PORT: socks\r\nFPRT: ftps\r\n");
  EXPECT_EQ(settings.port, "socks");
  const ConnectionSettings connection = connectionOf({"h", "u", "p"}, settings, 60);
  EXPECT_EQ(connection.firewallPort, "socks");
  EXPECT_EQ(connection.ftpPort, "ftps");
  EXPECT_NE(firewallSettingsText(settings).find("PORT: socks\r\nFPRT: ftps\r\n"), std::string::npos);
}

TEST(FirewallSettings, EncryptionAndProtocolFollowWhereTheyDifferFromTheirDefault) {
  FirewallSettings settings;
  settings.tls = TlsMode::Never;
  settings.protocol = TransferProtocol::Sftp;
  const std::string text = firewallSettingsText(settings);
  EXPECT_TRUE(text.ends_with("DISC: 0\r\nTLSM: 0\r\nPROT: 1\r\n")) << text;
  EXPECT_EQ(parseFirewallSettings(text), settings);
  EXPECT_EQ(parseFirewallSettings("TLSM: 7\r\nPROT: x\r\nTYPE: 1.5\r\n"), FirewallSettings());
}

TEST(FirewallSettings, OfSftpHaveItsUsualPortUnlessAnotherOneIsChosen) {
  FirewallSettings settings = parseFirewallSettings("PROT: 1\r\n");
  EXPECT_EQ(connectionOf({"h", "u", "p"}, settings, 60).ftpPort, "") << "that of the protocol";
  EXPECT_TRUE(connectionOf({"h", "u", "p"}, settings, 60).knownHostsFile.ends_with("/korvane/known_hosts"));
  settings.ftpPort = "2222";
  EXPECT_EQ(connectionOf({"h", "u", "p"}, settings, 60).ftpPort, "2222");
  EXPECT_EQ(portAfterChange("21", TransferProtocol::Sftp, TlsMode::IfOffered), "22");
  EXPECT_EQ(portAfterChange("22", TransferProtocol::Ftp, TlsMode::IfOffered), "21");
  EXPECT_EQ(portAfterChange("2121", TransferProtocol::Sftp, TlsMode::IfOffered), "2121");
}

TEST(FirewallSettings, OfTlsFromTheFirstByteHaveItsUsualPortUnlessAnotherOneIsChosen) {
  FirewallSettings settings = parseFirewallSettings("FPRT: 21\r\nTLSM: 3\r\n");
  EXPECT_EQ(connectionOf({"h", "u", "p"}, settings, 60).ftpPort, "") << "990, as for every empty one of that kind";
  EXPECT_EQ(shownFirewall(settings).ftpPort, "990");
  settings.ftpPort = "2121";
  EXPECT_EQ(connectionOf({"h", "u", "p"}, settings, 60).ftpPort, "2121");
  EXPECT_EQ(shownFirewall(settings).ftpPort, "2121");
  settings = parseFirewallSettings("FPRT: 21\r\nTLSM: 2\r\n");
  EXPECT_EQ(connectionOf({"h", "u", "p"}, settings, 60).ftpPort, "21");
  EXPECT_EQ(portAfterChange("21", TransferProtocol::Ftp, TlsMode::Implicit), "990");
  EXPECT_EQ(portAfterChange("990", TransferProtocol::Ftp, TlsMode::Required), "21");
  EXPECT_EQ(portAfterChange("990", TransferProtocol::Sftp, TlsMode::Implicit), "22");
}

TEST(FirewallSettings, OfSftpLeaveOutTheProxiesOfFtp) {
  for (int kind = 0; kind < static_cast<int>(firewallKinds.size()); ++kind) {
    EXPECT_TRUE(carries(static_cast<FirewallKind>(kind), TransferProtocol::Ftp));
    EXPECT_EQ(carries(static_cast<FirewallKind>(kind), TransferProtocol::Sftp), kind < 3 || kind == 7) << kind;
  }
}

TEST(FirewallSettings, EachOfTheEightKindsIsReadByItsNumber) {
  for (int kind = 0; kind <= 7; ++kind) {
    EXPECT_EQ(static_cast<int>(parseFirewallSettings("TYPE: " + std::to_string(kind)).kind), kind);
  }
  EXPECT_EQ(parseFirewallSettings("TYPE: 8").kind, FirewallKind::None);
  EXPECT_EQ(parseFirewallSettings("TYPE: -1").kind, FirewallKind::None);
}

TEST(FirewallSettings, ThePasswordIsInTheClearAndForItsOwnerAlone) {
  const TempFolder shop;
  FirewallSettings settings;
  settings.password = "segreta";
  ASSERT_TRUE(writeFirewallSettings(shop.path(), settings));
  EXPECT_NE(keyFileBytes(shop / "firewall.net").find("PASS: segreta\r\n"), std::string::npos);
  EXPECT_EQ(keyFileMode(shop / "firewall.net"), 0600U);
}

TEST(FirewallSettings, AnOldFileThatOthersCouldReadIsClosedToThem) {
  const TempFolder shop;
  ASSERT_TRUE(writeBytes(shop / "firewall.net", "MODE: 1\r\n"));
  ASSERT_EQ(::chmod((shop / "firewall.net").c_str(), 0644), 0);
  ASSERT_TRUE(writeFirewallSettings(shop.path(), {}));
  EXPECT_EQ(keyFileMode(shop / "firewall.net"), 0600U);
}

TEST(FirewallSettings, AFailedWriteLeavesTheOldFile) {
  const TempFolder shop;
  FirewallSettings settings;
  settings.user = "prima";
  ASSERT_TRUE(writeFirewallSettings(shop.path(), settings));
  const std::string before = keyFileBytes(shop / "firewall.net");
  settings.user = "dopo";
  for (int call = 1;; ++call) {
    FailingFiles files(call, AfterFailure::Works, ENOSPC);
    const auto written = writeFirewallSettings(shop.path(), settings);
    if (!files.hasFailed()) break;
    EXPECT_FALSE(written);
    EXPECT_EQ(keyFileBytes(shop / "firewall.net"), before) << call;
  }
}

TEST(FirewallSettings, TheDefaultConditionIsNoFile) {
  const TempFolder shop;
  ASSERT_TRUE(writeFirewallSettings(shop.path(), {}));
  ASSERT_TRUE(deleteFirewallSettings(shop.path()));
  EXPECT_TRUE(deleteFirewallSettings(shop.path()));
  EXPECT_EQ(readFirewallSettings(shop.path()), FirewallSettings());
}

TEST(FirewallSettings, ALineEndInAValueDoesNotMakeAnotherKey) {
  FirewallSettings settings;
  settings.user = "ada\r\nDISC: 1";
  EXPECT_FALSE(parseFirewallSettings(firewallSettingsText(settings)).reconnects);
}

TEST(FirewallSettings, AConnectionTakesTheNormalisedHost) {
  const ConnectionSettings connection = connectionOf({" ftp://Ftp.Example.org/ ", " ada ", " s "}, {}, 75);
  EXPECT_EQ(connection.host, "Ftp.Example.org");
  EXPECT_EQ(connection.user, "ada");
  EXPECT_EQ(connection.password, "s");
  EXPECT_EQ(connection.silenceSeconds, 75);
  EXPECT_TRUE(connection.passive);
}

}  // namespace
}  // namespace kv::test
