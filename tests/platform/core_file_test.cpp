// The file that a system writes of a program that crashes: it would hold the passwords of the merchant's server.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "platform/files/private_file.h"
#include "platform/files/trees.h"
#include "support/temp_folder.h"
#include "support/value_of.h"

namespace kv {
namespace {

TEST(ACrash, LeavesNoCoreFileWithThePasswords) {
  const test::TempFolder folder;
  const pid_t child = ::fork();
  if (child == 0) {
    rlimit limit{};
    const bool isAllowed = ::getrlimit(RLIMIT_CORE, &limit) == 0;
    limit.rlim_cur = limit.rlim_max;
    if (!isAllowed || ::setrlimit(RLIMIT_CORE, &limit) != 0 || ::chdir(folder.path().c_str()) != 0) ::_exit(1);
    forbidCoreFiles();
    ::signal(SIGQUIT, SIG_DFL);
    ::raise(SIGQUIT);
    ::_exit(2);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status)) << status;
  EXPECT_FALSE(WCOREDUMP(status));
  EXPECT_TRUE(test::valueOf(isEmptyFolder(folder.path())));
}

}  // namespace
}  // namespace kv
