// The file of servers that are known by their keys.
#include "platform/transfer/protocols/known_hosts.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using Standing = KnownHosts::Standing;

/// A key of a type, as SSH sends it.
HostKey keyOf(const std::string& type, const std::string& rest) {
  return HostKey(std::string("\0\0\0", 3) + static_cast<char>(type.size()) + type + rest);
}

class TheKnownHosts : public ::testing::Test {
 protected:
  KnownHosts hosts(const std::string& text) {
    EXPECT_TRUE(writeBytes(root / "known_hosts", text));
    return KnownHosts::read(root / "known_hosts").value();
  }
  test::TempFolder root;
  HostKey key = keyOf("ssh-ed25519", "abc"), other = keyOf("ssh-ed25519", "xyz");
};

TEST_F(TheKnownHosts, AreReadAsOpenSshWritesThem) {
  const KnownHosts known = hosts("# comment\n\nfirst.it,Second.it ssh-ed25519 " + key.base64() +
                                 " note\r\n[third.it]:2222 ssh-ed25519 " + other.base64() + "\nbroken line\n");
  EXPECT_EQ(known.standingOf("second.it", key), Standing::Known);
  EXPECT_EQ(known.standingOf("second.it", other), Standing::Changed);
  EXPECT_EQ(known.standingOf(knownHostName("Third.it", "2222"), other), Standing::Known);
  EXPECT_EQ(known.standingOf("third.it", other), Standing::Unknown) << "another port is another server";
  EXPECT_EQ(known.standingOf("broken", key), Standing::Unknown);
}

TEST_F(TheKnownHosts, KnowAServerByEachOfItsKeysAndTakeAnotherTypeForAChange) {
  const HostKey rsa = keyOf("ssh-rsa", "n"), ecdsa = keyOf("ecdsa-sha2-nistp256", "q");
  const KnownHosts known = hosts("a.it ssh-ed25519 " + key.base64() + "\na.it ssh-rsa " + rsa.base64() + "\n");
  EXPECT_EQ(known.standingOf("a.it", key), Standing::Known);
  EXPECT_EQ(known.standingOf("a.it", rsa), Standing::Known);
  EXPECT_EQ(known.standingOf("a.it", ecdsa), Standing::Changed);
  EXPECT_EQ(known.typesOf("a.it"), (std::vector<std::string>{"ssh-ed25519", "ssh-rsa"}));
}

TEST_F(TheKnownHosts, GetALineAndKeepTheOthers) {
  KnownHosts known = hosts("a.it ssh-ed25519 " + other.base64());
  ASSERT_TRUE(known.remember("b.it", key));
  EXPECT_EQ(known.standingOf("b.it", key), Standing::Known);
  EXPECT_EQ(readBytes(root / "known_hosts").value_or(""),
            "a.it ssh-ed25519 " + other.base64() + "\nb.it ssh-ed25519 " + key.base64() + "\n");
}

TEST_F(TheKnownHosts, ShowAKeyAsOthersShowIt) {
  // Source: RFC 4648, section 10, and SHA-256 of "abc" (FIPS 180-2, appendix B.1) in base 64.
  EXPECT_EQ(HostKey("foobar").base64(), "Zm9vYmFy");
  EXPECT_EQ(HostKey("foob").base64(), "Zm9vYg==");
  EXPECT_EQ(HostKey("abc").fingerprint(), "SHA256:ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0");
  EXPECT_EQ(HostKey("abc").type(), "") << "too short for a key";
  EXPECT_EQ(HostKey(std::string("\0\0\0\x7f", 4) + "abc").type(), "") << "a length that goes beyond its bytes";
}

TEST_F(TheKnownHosts, ThatCannotBeReadAreNoEmptyList) {
  ASSERT_TRUE(createFolders(root / "known_hosts"));
  EXPECT_FALSE(KnownHosts::read(root / "known_hosts"));
  EXPECT_TRUE(KnownHosts::read(root / "missing"));
}

}  // namespace
}  // namespace kv
