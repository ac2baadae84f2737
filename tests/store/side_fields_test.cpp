// Fields in tables of their own: made when they are first used, undone like any other, taken along by copies.
#include "store/catalogue/side_fields.h"

#include "store/tree_fixture.h"

namespace kv::test {
namespace {

class SideFieldsOfArticles : public TreeFixture {
 protected:
  void SetUp() override {
    department(1, "###", 100);
    article("cat001", 100, "Olio");
    bind();
    go("cat001");
    goArticle(1);
  }
  void write(SideField field, const std::string& key, const Value& value) {
    ASSERT_TRUE(prepareSideField(session.catalogue, field));
    ASSERT_TRUE(history.record("Modifica", [&] { return writeSideField(session.catalogue, field, key, value); }));
  }
  std::string read(SideField field, const std::string& key) {
    return asText(readSideField(session.catalogue, field, key).value());
  }
  void fill() {
    write(SideField::Content, "1", Value(Money::ofTenThousandths(7500)));
    write(SideField::Measure, "1", Value(std::string("l")));
    ASSERT_TRUE(prepareSideField(session.catalogue, SideField::Maker));
    sql("INSERT INTO produttori (nome) VALUES ('Frantoio'), ('Altro')");
    write(SideField::Maker, "1", Value(std::string("Frantoio")));
  }
};

TEST_F(SideFieldsOfArticles, AShopThatUsesNoneHasNoTable) {
  EXPECT_EQ(read(SideField::Content, "1"), "");
  EXPECT_EQ(read(SideField::Maker, "cat001"), "");
  EXPECT_FALSE(hasSideTable(session.catalogue, "unita"));
  EXPECT_FALSE(hasSideTable(session.catalogue, "sicurezza"));
  EXPECT_TRUE(makerNames(session.catalogue).empty());
}

TEST_F(SideFieldsOfArticles, AFieldIsReadAsItWasWritten) {
  fill();
  EXPECT_EQ(asMoney(readSideField(session.catalogue, SideField::Content, "1").value()).tenThousandths(), 7500);
  EXPECT_EQ(read(SideField::Measure, "1"), "l");
  EXPECT_EQ(read(SideField::Maker, "1"), "Frantoio");
  EXPECT_EQ(makerNames(session.catalogue), (std::vector<std::string>{"Altro", "Frantoio"}));
}

TEST_F(SideFieldsOfArticles, ARowInWhichNothingIsLeftGoes) {
  fill();
  write(SideField::Content, "1", Null{});
  EXPECT_EQ(rows("SELECT ID, contenuto, misura FROM unita"), "1|null|l\n");
  write(SideField::Measure, "1", Value(std::string()));
  write(SideField::Maker, "1", Value(std::string()));
  EXPECT_EQ(rows("SELECT * FROM unita"), "");
  EXPECT_EQ(rows("SELECT * FROM sicurezza"), "");
}

TEST_F(SideFieldsOfArticles, ATimeOfDeliveryHasATextInEachLanguage) {
  ASSERT_TRUE(prepareSideField(session.catalogue, SideField::Delivery));
  ASSERT_TRUE(writeSideField(session.catalogue, SideField::Delivery, "cat001", Value("2 giorni")));
  ASSERT_TRUE(writeSideField(session.catalogue, SideField::Delivery, "cat001", Value("2 days"), 2));
  EXPECT_EQ(rows("SELECT chiave, tempo, tempo_l2 FROM consegna"), "cat001|2 giorni|2 days\n");
  ASSERT_TRUE(writeSideField(session.catalogue, SideField::Delivery, "cat001", Value(" ")));
  EXPECT_EQ(asText(readSideField(session.catalogue, SideField::Delivery, "cat001", 2).value()), "2 days");
  ASSERT_TRUE(writeSideField(session.catalogue, SideField::Delivery, "cat001", Null{}, 2));
  EXPECT_EQ(rows("SELECT * FROM consegna"), "");
}

TEST_F(SideFieldsOfArticles, APastedArticleHasItsTimeOfDeliveryInAllLanguages) {
  write(SideField::Delivery, "1", Value("Subito"));
  ASSERT_TRUE(writeSideField(session.catalogue, SideField::Delivery, "1", Value("Sofort"), 4));
  ASSERT_TRUE(editing.CopiaArticolo());
  ASSERT_TRUE(editing.IncollaArticoli());
  EXPECT_EQ(rows("SELECT chiave, tempo, tempo_l4 FROM consegna ORDER BY chiave"), "1|Subito|Sofort\n2|Subito|Sofort\n");
}

TEST_F(SideFieldsOfArticles, UndoAndRedoWorkAsForEveryField) {
  fill();
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(read(SideField::Maker, "1"), "");
  ASSERT_TRUE(history.redo());
  EXPECT_EQ(read(SideField::Maker, "1"), "Frantoio");
}

TEST_F(SideFieldsOfArticles, TheFirstUseCanBeUndoneToo) {
  write(SideField::Content, "1", Value(Money::ofUnits(2)));
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(rows("SELECT * FROM unita"), "");
}

TEST_F(SideFieldsOfArticles, ADeletedArticleComesBackWithItsFields) {
  fill();
  user.answers = {Answer::Yes};
  ASSERT_TRUE(history.record("Elimina", [&] { return editing.EliminaArticolo(); }));
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(rows("SELECT misura FROM unita INNER JOIN articoli USING (ID)"), "l\n");
}

TEST_F(SideFieldsOfArticles, APastedArticleHasTheFieldsOfTheCopiedOne) {
  fill();
  ASSERT_TRUE(editing.CopiaArticolo());
  ASSERT_TRUE(history.record("Incolla", [&] { return editing.IncollaArticoli(); }));
  EXPECT_EQ(rows("SELECT ID, contenuto, misura FROM unita ORDER BY ID"), "1|7500|l\n2|7500|l\n");
  EXPECT_EQ(rows("SELECT chiave, produttore FROM sicurezza ORDER BY chiave"), "1|1\n2|1\n");
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(rows("SELECT ID FROM unita"), "1\n");
}

TEST_F(SideFieldsOfArticles, TheClipboardKeepsWhatTheArticleHadWhenItWasCopied) {
  fill();
  ASSERT_TRUE(editing.CopiaArticolo());
  write(SideField::Content, "1", Value(Money::ofUnits(5)));
  ASSERT_TRUE(editing.IncollaArticoli());
  EXPECT_EQ(rows("SELECT ID, contenuto FROM unita ORDER BY ID"), "1|50000\n2|7500\n");
}

TEST_F(SideFieldsOfArticles, ADuplicateHasThemToo) {
  fill();
  ASSERT_TRUE(editing.DuplicaArticoli({1}));
  EXPECT_EQ(rows("SELECT ID, contenuto, misura FROM unita ORDER BY ID"), "1|7500|l\n2|7500|l\n");
}

}  // namespace
}  // namespace kv::test
