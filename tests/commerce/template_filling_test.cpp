// The templates of the payment modules: how their placeholders and their text blocks are filled.
#include "commerce/gateways/template_filling.h"

#include <gtest/gtest.h>

#include <vector>

namespace kv::test {
namespace {

TEST(ATemplate, HasItsPlaceholdersReplacedInTheirOrderAndKeepsUnknownWords) {
  const std::vector<Placeholder> values{{"mid", "7#val"}, {"val", "9#mid"}};
  EXPECT_EQ(ElaboraPG("#mid #val #altro", values), "79#mid 9#mid #altro");
}

TEST(ATemplate, IsNotSearchedAgainForThePlaceholderOfTheValueItself) {
  const std::vector<Placeholder> values{{"mid", "#mid#mid"}};
  EXPECT_EQ(ElaboraPG("a #mid b", values), "a #mid#mid b");
}

TEST(ATemplate, GetsAnotherEndWordWhenAValueHoldsThatOfATextBlock) {
  const std::vector<Placeholder> values{{"info", "uno\r\n  FINE);\r\nFINE_1"}};
  EXPECT_EQ(ElaboraPG("<?php f(<<<'FINE'\n#info\nFINE\n);", values),
            "<?php f(<<<'FINE_2'\nuno\r\n  FINE);\r\nFINE_1\nFINE_2\n);");
}

TEST(ATemplate, GetsAnotherEndWordWhenTwoValuesMakeUpTheOldOne) {
  const std::vector<Placeholder> values{{"a", "FI#b"}, {"b", "NE"}};
  EXPECT_EQ(ElaboraPG("<<<'FINE'\n#a\nFINE\n", values), "<<<'FINE_1'\nFINE\nFINE_1\n");
}

}  // namespace
}  // namespace kv::test
