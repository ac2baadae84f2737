// Shops on a disk that is full and on one that can't be written: real file systems, mounted in a namespace of the
// test's own, which takes no rights beyond what the kernel gives everybody. Where it gives none, the tests say so.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <functional>

#include "platform/files/files.h"
#include "store/shop/load_shop.h"
#include "support/temp_shop.h"

namespace kv::test {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* noNamespace = "(no mounts here)";

bool enterMountNamespace() {
  if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
  return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

/// Runs a routine in a child process that may mount, and returns the text it returned.
std::string inMountNamespace(const std::function<std::string()>& routine) {
  int channel[2];
  if (pipe(channel) != 0) return "(no pipe)";
  const pid_t child = fork();
  if (child == 0) {
    const std::string text = enterMountNamespace() ? routine() : noNamespace;
    const bool sent = write(channel[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
    _exit(sent ? 0 : 1);
  }
  close(channel[1]);
  std::string text;
  char piece[4096];
  for (ssize_t got = read(channel[0], piece, sizeof piece); got > 0; got = read(channel[0], piece, sizeof piece)) {
    text.append(piece, static_cast<std::size_t>(got));
  }
  close(channel[0]);
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? text : "(child ended by a signal)";
}

std::string mountMemory(const std::string& folder, const char* options, unsigned long flags = 0) {
  return mount("tmpfs", folder.c_str(), "tmpfs", flags, options) == 0 ? "" : std::strerror(errno);
}

TEST(MountedFolderTest, AShopOnAReadOnlyDiskOffersTheRepairAndSaysThatItFailed) {
  const std::string told = inMountNamespace([]() -> std::string {
    TempShop shop;
    shop.session.catalogue.close();
    const std::string disk = shop.folder() + ".disk";
    if (!createFolder(disk)) return "no folder";
    if (const auto error = mountMemory(disk, "size=8m"); !error.empty()) return error;
    if (!copyTree(shop.folder(), disk + "/negozio")) return "no copy";
    if (const auto error = mountMemory(disk, "size=8m", MS_REMOUNT | MS_RDONLY); !error.empty()) return error;
    Session session;
    session.ShopFolder = disk + "/negozio";
    shop.user.answers = {Answer::Yes};
    Environment env{shop.user, shop.settings, shop.clock, shop.random, shop.applicationFolder(), {}};
    const LoadResult result = CaricaNegozio(session, env);
    std::string text = std::to_string(static_cast<int>(result)) + " [" + session.ShopFolder + "]";
    for (const Shown& shown : shop.user.shown) text += "\n" + asText(shown);
    ignore(umount(disk.c_str()), "the namespace goes with the process");
    return text;
  });
  if (told == noNamespace) GTEST_SKIP() << "this kernel lets no test mount";
  EXPECT_THAT(
      told, HasSubstr("]\n[Exclamation, YesNo, Yes -> Yes] Il file \"catalog.mdb\" potrebbe essere in sola lettura."));
  EXPECT_THAT(told, HasSubstr("Impossibile rimuovere l'attributo"));
}

TEST(MountedFolderTest, AFullDiskEndsTheBuildWithItsReasonAndLeavesThePagesThatWereThere) {
  const std::string told = inMountNamespace([]() -> std::string {
    TempShop shop;
    shop.department("cat001");
    shop.templateFile("index.htm", "<html><<1-home1>></html>");
    const std::string disk = shop.folder() + ".disk";
    if (!createFolder(disk)) return "no folder";
    if (const auto error = mountMemory(disk, "size=256k"); !error.empty()) return error;
    shop.session.onlineFolder = disk;
    if (shop.build() != BuildOutcome::Done) return "the first build failed";
    const std::string before = shop.page("index.php");
    shop.sql("UPDATE generale SET home1 = '" + std::string(400000, 'x') + "'");
    shop.user.shown.clear();
    const BuildOutcome outcome = shop.build();
    std::string text = outcome == BuildOutcome::Failed ? "failed" : "done";
    text += shop.page("index.php") == before ? ", page kept\n" : ", page lost\n";
    for (const Shown& shown : shop.user.shown) text += asText(shown);
    ignore(umount(disk.c_str()), "the namespace goes with the process");
    return text;
  });
  if (told == noNamespace) GTEST_SKIP() << "this kernel lets no test mount";
  EXPECT_THAT(told,
              StartsWith("failed, page kept\n[Critical, Ok, Ok -> Ok] Si è verificato un errore imprevisto:\n28 "));
  EXPECT_THAT(told,
              EndsWith("Risolvere il problema, ricostruire il negozio e solo successivamente aggiornare il sito.\n"));
}

}  // namespace
}  // namespace kv::test
