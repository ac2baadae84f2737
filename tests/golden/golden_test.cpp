// Whole builds, compared byte by byte with what the rules want: each case of tests/golden/build is a shop in a text,
// with what it has in common with others in tests/golden/base.
//
// UPDATE_GOLDEN=1 rewrites the wanted parts from what the program made, and is refused where CI is set. What it wrote
// is reviewed like code: tests/golden/oracle/derive.py computes the same parts without the program, and a test
// compares. What a case shows of them and what it holds by digests is told in support/golden_digest.h. Where a digest
// differs, the produced parts are kept whole, to be compared with the whole parts that the rules give.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/files/files.h"
#include "support/golden_case.h"
#include "support/golden_shop.h"
#include "support/txtar.h"

namespace kv::test {
namespace {

const std::string casesFolder = std::string(KORVANE_TEST_DATA) + "/golden/build";

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe): no thread changes it
  return value != nullptr && *value != '\0';
}

const TxtarPart* findPart(const std::vector<TxtarPart>& parts, const std::string& name) {
  const auto found = std::ranges::find(parts, name, &TxtarPart::name);
  return found == parts.end() ? nullptr : &*found;
}

// Names of the parts of one list that the other lacks.
std::string namesWithout(const std::vector<TxtarPart>& parts, const std::vector<TxtarPart>& others) {
  std::string names;
  for (const TxtarPart& part : parts) {
    if (isWanted(part) && findPart(others, part.name) == nullptr) names += "  " + part.name + "\n";
  }
  return names;
}

// The parts that aren't as they are wanted: of the first the lines around the difference, of the others the names.
std::string differences(const Txtar& archive, const std::vector<TxtarPart>& produced) {
  std::string found;
  for (const TxtarPart& part : archive.parts) {
    const TxtarPart* made = isWanted(part) ? findPart(produced, part.name) : nullptr;
    if (made == nullptr || (made->text == part.text && made->flags == part.flags)) continue;
    if (!found.empty()) {
      found += "also " + part.name + "\n";
      continue;
    }
    found = part.name;
    for (const std::string& flag : made->flags) found += " " + flag;
    found += ", " + firstDifference(part.text, made->text);
  }
  return found;
}

void rewriteWanted(const std::string& path, Txtar archive, std::vector<TxtarPart> produced) {
  std::erase_if(archive.parts, isWanted);
  std::ranges::move(produced, std::back_inserter(archive.parts));
  ASSERT_TRUE(writeBytes(path, formatTxtar(archive)));
}

class GoldenBuild : public testing::TestWithParam<std::string> {};

TEST_P(GoldenBuild, ProducesWhatTheCaseWants) {
  const std::string path = casesFolder + "/" + GetParam() + ".txt";
  const auto text = readBytes(path);
  ASSERT_TRUE(text) << path;
  const auto one = readGoldenCase(path);
  ASSERT_TRUE(one) << one.error().where << ": " << one.error().what;
  ASSERT_EQ(formatTxtar(one->own), *text) << "not the form of a case";
  const Txtar archive = withBase(*one);
  GoldenShop shop(archive);
  ASSERT_FALSE(testing::Test::HasFailure());
  shop.run();
  const std::vector<ProducedPart> whole = shop.produced(archive);
  const std::vector<TxtarPart> produced = condensed(archive, whole);
  if (isSet("UPDATE_GOLDEN")) {
    ASSERT_FALSE(isSet("CI")) << "wanted parts are written by hand or by derive.py, not here";
    return rewriteWanted(path, one->own, withoutBase(*one, produced));
  }
  EXPECT_EQ(namesWithout(archive.parts, produced), "") << "missing";
  EXPECT_EQ(namesWithout(produced, archive.parts), "") << "surplus";
  EXPECT_EQ(differences(archive, produced), "");
  EXPECT_EQ(shop.leftovers(), "");
  if (testing::Test::HasFailure()) {
    const std::string folder = shop.writeProduced(whole);
    ADD_FAILURE() << "what was produced, whole, is in " << folder << "; compare with what the rules give by\n"
                  << "  python3 -B tests/golden/oracle/derive.py --whole /tmp/wanted " << path << "\n"
                  << "  diff -r /tmp/wanted " << folder;
  }
}

std::vector<std::string> caseNames() {
  std::vector<std::string> names;
  for (const std::string& file : listFiles(casesFolder, "*.txt")) names.push_back(file.substr(0, file.size() - 4));
  return names;
}

INSTANTIATE_TEST_SUITE_P(Cases, GoldenBuild, testing::ValuesIn(caseNames()),
                         [](const testing::TestParamInfo<std::string>& one) { return one.param; });

}  // namespace
}  // namespace kv::test
