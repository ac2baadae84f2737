#pragma once
// The shop over which the workbench is measured: its size, the disorder that each opening has to repair, and the floor
// of an opening. What fails ends the program, since nothing could be measured then.

#include <string>

namespace kv::bench {

/// The department that holds more articles than any other.
constexpr const char* largestDepartment = "cat001";

/// Numbers of articles and departments, and of the articles in the largest department.
struct WorkbenchSize {
  int articles, departments, inLargest;
};

/// A shop of four languages with the classic template. Its order numbers are spoilt before each opening.
class WorkbenchShop {
 public:
  /// Makes the shop in `folder`/shop and the application folder in `folder`/app.
  WorkbenchShop(std::string folder, const WorkbenchSize& size);

  const std::string& folder() const { return folder_; }
  /// Makes every order number wrong and deletes the dated copies, so that an opening rewrites and copies everything.
  void spoil() const;
  /// The least that an opening needs: a copy of the file, the order numbers written by one statement for each table,
  /// and the rows that are shown read once.
  void floor() const;

 private:
  /// Executes statements in one transaction.
  void run(const std::string& statements) const;

  std::string folder_;
};

}  // namespace kv::bench
