// The small dialogs of the shop's looks: what they read, store and reset.
#include <gmock/gmock.h>

#include "commerce/bulk_fixture.h"
#include "commerce/settings/mail_text.h"
#include "commerce/settings/privacy_policy.h"
#include "commerce/settings/required_fields.h"
#include "commerce/settings/showcase_settings.h"

namespace kv::test {
namespace {

class TheShopsLooks : public BulkFixture {
 protected:
  ShowcaseForm showcase() {
    const auto form = loadShowcase(catalogue);
    EXPECT_TRUE(form);
    return form.value_or(ShowcaseForm());
  }
  std::string stored(const char* columns) { return read(std::string("SELECT ") + columns + " FROM generale"); }
};

TEST_F(TheShopsLooks, StoreAnAlignmentAsItsPairOfColumns) {
  constexpr const char* pairs[] = {"left|\n", "center|\n", "right|\n", "left|style=\"float: left\"\n",
                                   "right|style=\"float: right\"\n"};
  for (std::size_t i = 0; i < 5; ++i) {
    ShowcaseForm form;
    form.alignment = i;
    ASSERT_TRUE(storeShowcase(catalogue, form));
    EXPECT_EQ(stored("vetalign, vetalignstyle"), pairs[i]);
  }
}

TEST_F(TheShopsLooks, ReopenAnAlignmentFromItsPairButThePictureOnTheRightAsTheRight) {
  constexpr std::size_t reopened[] = {0, 1, 2, 3, 2};
  for (std::size_t i = 0; i < 5; ++i) {
    ShowcaseForm form;
    form.alignment = i;
    ASSERT_TRUE(storeShowcase(catalogue, form));
    EXPECT_EQ(showcase().alignment, reopened[i]) << i;
  }
  sql("UPDATE generale SET vetalign = 'right', vetalignstyle = 'style=\"float: left\"'");
  EXPECT_EQ(showcase().alignment, 4U);
  sql("UPDATE generale SET vetalign = NULL, vetalignstyle = NULL");
  EXPECT_EQ(showcase().alignment, 1U);
}

TEST_F(TheShopsLooks, OkOnAReopenedPictureOnTheRightEmptiesItsStyle) {
  ShowcaseForm form;
  form.alignment = 4;
  ASSERT_TRUE(storeShowcase(catalogue, form));
  ASSERT_TRUE(storeShowcase(catalogue, showcase()));
  EXPECT_EQ(stored("vetalign, vetalignstyle"), "right|\n");
}

TEST_F(TheShopsLooks, StoreTheFieldsOfTheShowcaseAsASumOfBits) {
  for (int bits = 0; bits < 32; ++bits) {
    sql("UPDATE generale SET vetopzioni = " + std::to_string(bits));
    const ShowcaseForm form = showcase();
    sql("UPDATE generale SET vetopzioni = 99");
    ASSERT_TRUE(storeShowcase(catalogue, form));
    EXPECT_EQ(stored("vetopzioni"), std::to_string(bits) + "\n");
  }
  sql("UPDATE generale SET vetopzioni = 9");
  EXPECT_EQ(showcase().fields, (std::array<bool, 5>{true, false, false, true, false}));
}

TEST_F(TheShopsLooks, KeepColumnsOutOfRangeForTheBuildToCorrect) {
  sql("UPDATE generale SET colonnevetrina = 40, vetsize = NULL, singleitem_vet = 1");
  ASSERT_TRUE(storeShowcase(catalogue, showcase()));
  EXPECT_EQ(stored("colonnevetrina, vetsize, singleitem_vet"), "40|null|1\n");
}

TEST_F(TheShopsLooks, StoreRequiredFieldsAsTheTextOfTheirSum) {
  EXPECT_EQ(loadRequiredFields(catalogue).value(), RequiredFields{});
  for (int sum = 0; sum < 16; ++sum) {
    sql("UPDATE generale SET campi_obbligatori = '" + std::to_string(sum) + "'");
    const auto fields = loadRequiredFields(catalogue).value();
    sql("UPDATE generale SET campi_obbligatori = 'x'");
    ASSERT_TRUE(storeRequiredFields(catalogue, fields));
    EXPECT_EQ(stored("campi_obbligatori, typeof(campi_obbligatori)"), std::to_string(sum) + "|text\n");
  }
  ASSERT_TRUE(storeRequiredFields(catalogue, requiredByDefault));
  EXPECT_EQ(stored("campi_obbligatori"), "8\n");
}

TEST_F(TheShopsLooks, StoreThePrivacyPolicy) {
  EXPECT_EQ(loadPrivacyPolicy(catalogue).value(), "");
  ASSERT_TRUE(storePrivacyPolicy(catalogue, std::string(defaultPrivacyPolicy)));
  EXPECT_EQ(loadPrivacyPolicy(catalogue).value(), "ALL CUR ADM CONi PHY ONL UNI PUR COM NAV INT OUR STP");
}

TEST(TheTextOfTheMail, TakesNoQuotesAndWhatTheMainWindowRefuses) {
  EXPECT_EQ(acceptedMailText("a\"b'|[c]<<importo>>\n"), "ab'c<<importo>>\n");
}

}  // namespace
}  // namespace kv::test
