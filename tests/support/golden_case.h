#pragma once
// A golden case as its file has it, and together with what it takes over from its base.
//
// The part "base NAME" of a case names the case "base/NAME.txt", beside the folder of the case. The parts of the base
// hold where the case has none of that name; its rows come before those of the case. A base may have a base of its own,
// and wanted parts like any case. The part "files" has a file a line, "name | first line | second line", with cells as
// golden_blocks.h tells; of a .gif they are hexadecimal digits.

#include <string>
#include <vector>

#include "platform/ports/result.h"
#include "support/txtar.h"

namespace kv::test {

struct GoldenCase {
  Txtar own;   ///< what the file has
  Txtar base;  ///< the parts of its base and of the bases of that; empty without one
};

/// Reads a case and its bases. Missing if there is no such file.
Result<GoldenCase> readGoldenCase(const std::string& path);
/// The case with the parts of its base, and each file of "files" as a part: what is built, and what that is compared
/// with.
Txtar withBase(const GoldenCase& one);
/// Of the parts that a build gave, those that the case's own file has to want: all but the ones that the base wants
/// alike.
std::vector<TxtarPart> withoutBase(const GoldenCase& one, std::vector<TxtarPart> produced);

}  // namespace kv::test
