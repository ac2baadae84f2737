#pragma once
// A shop of any size for measurements, its builds, and the floor they are held against.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/database/value.h"
#include "platform/ports/user_port.h"

namespace kv::bench {

/// Rows of one table, ready to be inserted, and files to be written: what a build leaves, and no more.
struct FloorTable {
  std::string insert;  // the statement
  std::vector<std::vector<Value>> rows;
};
struct FloorWork {
  std::vector<FloorTable> tables;
  std::vector<std::pair<std::string, std::string>> files;  // path and bytes
};

class BenchShop {
 public:
  /// Makes the shop below `folder`: `articles` in so many departments, texts in all languages. The first hundred
  /// departments are at the top, each of the others beneath an earlier one, four beneath each. The application folder
  /// is the data that ships.
  BenchShop(std::string folder, int articles, int languages, int departments = 100);

  /// One build; false when it failed. `written`: pages that were written. `user`: who watches it; nobody when null.
  bool build(double* written, UserPort* user = nullptr);
  /// Deletes what builds have produced.
  void clearOutput();
  /// The number of bytes of all pages and scripts there.
  std::uintmax_t outputBytes() const;
  /// Reads what the last build left.
  FloorWork loadFloor();
  /// Inserts the rows in one transaction into a fresh build database and writes the files.
  bool runFloor(const FloorWork& work);

 private:
  void makeCatalogue(int articles);

  std::string folder_;
  int languages_, departments_;
};

/// A site of as many product pages in 100 sections for hugo, with a plain theme.
void writeHugoSite(const std::string& folder, int articles);

}  // namespace kv::bench
