#pragma once
// A fresh folder of one test. It is removed with everything below it when the test has passed so far, and kept, its
// path printed, when the test has failed.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>

namespace kv::test {

class TempFolder {
 public:
  TempFolder() {
    std::error_code error;
    auto base = std::filesystem::temp_directory_path(error);
    std::string pattern = (error ? std::string("/tmp") : base.string()) + "/korvane-test-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) {
      ADD_FAILURE() << "no temporary folder under " << pattern;
      return;
    }
    path_ = pattern;
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    if (path_.empty()) return;
    if (::testing::Test::HasFailure()) {
      std::cerr << "kept for inspection: " << path_ << '\n';
      return;
    }
    removeAll();
  }

  /// Full path without trailing separator.
  const std::string& path() const { return path_; }
  /// Full path of an entry, "a/b" included.
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  void removeAll() const {
    namespace fs = std::filesystem;
    std::error_code error;
    // A test may have taken the write permission from a folder; without it an ordinary user could not empty it.
    fs::permissions(path_, fs::perms::owner_all, fs::perm_options::add, error);
    for (auto entry = fs::recursive_directory_iterator(path_, error); !error && entry != fs::end(entry);
         entry.increment(error)) {
      if (entry->is_directory(error) && !entry->is_symlink(error))
        fs::permissions(entry->path(), fs::perms::owner_all, fs::perm_options::add, error);
    }
    fs::remove_all(path_, error);
  }

  std::string path_;
};

}  // namespace kv::test
