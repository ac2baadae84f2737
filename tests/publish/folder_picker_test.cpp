// Choosing a folder of the server: what is listed, what a click and a double click do, and what the server refuses.

#include "publish/settings/folder_picker.h"

#include <gtest/gtest.h>

#include "support/listing_server.h"
#include "support/scripted_user.h"

namespace kv::test {
namespace {

constexpr const char* outOfReach =
    "Impossibile comunicare con l'host specificato:\nricontrollare il nome dell'host, lo username, la password e "
    "riprovare\n(oppure modificare le impostazioni FTP avanzate).";

class FolderPickerTest : public ::testing::Test {
 protected:
  FolderPickerTest() {
    server.home = "/home/ada";
    server.folders = {{"/", {unixFolder("home")}},
                      {"/home", {unixFolder("ada")}},
                      {"/home/ada",
                       {"total 3\r\n", unixFolder("www"), unixFolder("la mia cartella"),
                        "lrwxrwxrwx 1 ada web 3 Jan  1 12:00 public_html -> www\r\n",
                        "-rw-r--r-- 1 ada web 12 Jan  1 12:00 a.htm\r\n"}},
                      {"/home/ada/www", {"01-01-26  12:00PM       <DIR>          negozio\r\n"}},
                      {"/home/ada/la mia cartella", {}}};
  }
  bool open() { return picker.open({}); }
  std::string listed() const {
    std::string names;
    for (const ServerEntry& entry : picker.entries()) names += "[" + entry.shown + "]";
    return names;
  }

  ListingServer server;
  ScriptedUser user;
  FolderPicker picker{server, user, [this] { return user.yield(); }};
};

TEST_F(FolderPickerTest, ShowsTheFolderAfterTheLoginAndItsFoldersAndLinks) {
  ASSERT_TRUE(open());
  EXPECT_EQ(picker.current(), "/home/ada");
  EXPECT_EQ(listed(), "[www][la mia cartella][public_html]");
}

TEST_F(FolderPickerTest, ADoubleClickEntersAndChooses) {
  ASSERT_TRUE(open() && picker.enter("www"));
  EXPECT_EQ(picker.current(), "/home/ada/www");
  EXPECT_EQ(picker.selected(), "/home/ada/www");
  EXPECT_EQ(listed(), "[negozio]");
  EXPECT_EQ(picker.result(), ">www");
}

TEST_F(FolderPickerTest, ASingleClickChoosesWithoutEntering) {
  ASSERT_TRUE(open());
  picker.select("la mia cartella");
  EXPECT_EQ(picker.current(), "/home/ada");
  EXPECT_EQ(picker.result(), ">la mia cartella");
}

TEST_F(FolderPickerTest, TheBaseItselfIsAnEmptyFolder) {
  ASSERT_TRUE(open());
  EXPECT_EQ(picker.result(), ">");
  EXPECT_EQ(chosenServerFolder(">"), "");
}

TEST_F(FolderPickerTest, AFolderOutsideTheBaseStaysAbsolute) {
  ASSERT_TRUE(open() && picker.up());
  EXPECT_EQ(picker.result(), ">/home");
  ASSERT_TRUE(picker.up());
  EXPECT_EQ(picker.current(), "/");
  picker.select("home");
  EXPECT_EQ(picker.selected(), "/home");
}

TEST_F(FolderPickerTest, AFolderMayBeTyped) {
  ASSERT_TRUE(open());
  picker.type("/home/ada/nuova");
  EXPECT_EQ(picker.result(), ">nuova");
}

TEST_F(FolderPickerTest, ATextWithoutTheMarkIsNoChoice) {
  EXPECT_EQ(chosenServerFolder(""), std::nullopt);
  EXPECT_EQ(chosenServerFolder("www"), std::nullopt);
  EXPECT_EQ(chosenServerFolder(">www"), "www");
}

TEST_F(FolderPickerTest, AFolderThatMayNotBeEnteredIsToldAndTheListStays) {
  server.locked = {"/home/ada/www"};
  ASSERT_TRUE(open());
  EXPECT_TRUE(picker.enter("www"));
  EXPECT_EQ(asText(user.shown.at(0)), "[Exclamation, Ok, Ok -> Ok] Accesso negato");
  EXPECT_EQ(picker.current(), "/home/ada");
  EXPECT_EQ(listed(), "[www][la mia cartella][public_html]");
}

TEST_F(FolderPickerTest, AnyOtherFailureShowsItsTextAndEnds) {
  ASSERT_TRUE(open());
  server.failures["list"] = {transferNoData, "La connessione dati non è riuscita", {}};
  EXPECT_FALSE(picker.enter("www"));
  EXPECT_EQ(user.texts(), std::vector<std::string>{"La connessione dati non è riuscita"});
  EXPECT_FALSE(server.isConnected());
}

TEST_F(FolderPickerTest, AServerOutOfReachIsToldAndNothingIsListed) {
  server.failures["connect"] = {transferNoConnection, "refused", {}};
  EXPECT_FALSE(open());
  EXPECT_EQ(user.texts(), std::vector<std::string>{outOfReach});
  EXPECT_EQ(user.shown[0].icon, Icon::Exclamation);
}

TEST_F(FolderPickerTest, ALoginThatIsRefusedIsToldInTheSameWords) {
  server.failures["login"] = {transferOther + 530, "530 Login incorrect", {}};
  EXPECT_FALSE(open());
  EXPECT_EQ(user.texts(), std::vector<std::string>{outOfReach});
}

TEST_F(FolderPickerTest, ACancelIsNotTold) {
  user.cancelAtYield = 1;
  EXPECT_FALSE(open());
  EXPECT_TRUE(user.shown.empty());
  EXPECT_FALSE(server.isConnected());
}

TEST_F(FolderPickerTest, AnUntrustedServerIsNamedAndTheDefaultIsNo) {
  server.untrusted = {"ftp.a.it", "CN=altro", "self-signed certificate", "AA:BB"};
  EXPECT_FALSE(open());
  EXPECT_EQ(asText(user.shown.at(0)),
            "[Exclamation, YesNo, No -> No] Il certificato del server ftp.a.it non è valido:\n"
            "self-signed certificate\n\nIntestatario: CN=altro\nImpronta: AA:BB\n\n"
            "Chi è in ascolto sulla rete potrebbe leggere la password. Si desidera proseguire?");
  user.answers = {Answer::Yes};
  EXPECT_TRUE(open());
}

TEST_F(FolderPickerTest, AnUnknownKeyIsShownToBeComparedAndTheDefaultIsNo) {
  server.untrusted = {"ftp.a.it", "", "ssh-ed25519", "SHA256:abc", true};
  EXPECT_FALSE(open());
  EXPECT_EQ(asText(user.shown.at(0)),
            "[Exclamation, YesNo, No -> No] La chiave del server ftp.a.it non è ancora conosciuta.\n\n"
            "Tipo: ssh-ed25519\nImpronta: SHA256:abc\n\n"
            "Proseguire solo se è quella indicata dal fornitore: chi è in ascolto sulla rete potrebbe essersi messo al "
            "posto del server. Si desidera ricordarla e proseguire?");
}

TEST_F(FolderPickerTest, LeavingSaysGoodbyeAndCancellingBreaksOff) {
  ASSERT_TRUE(open());
  picker.close();
  EXPECT_EQ(server.commands.back(), "quit");
  ASSERT_TRUE(open());
  picker.abort();
  EXPECT_EQ(server.commands.back(), "abort");
  EXPECT_FALSE(server.isConnected());
}

}  // namespace
}  // namespace kv::test
