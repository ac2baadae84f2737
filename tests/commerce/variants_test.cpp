// The rules of the variant editor: variants, their options, the default mark, what is refused.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "commerce/variants/variant_editor.h"
#include "commerce_shop.h"
#include "store/schema/schema.h"
#include "support/failing_store.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;

constexpr std::int64_t smalto = 2;  // "Smalto" of the model shop, with four options

class TheVariants : public CommerceShop {
 protected:
  std::string optionText(std::int64_t variant) {
    std::string text;
    for (const OptionRow& row : editor.options(variant)) {
      text += row.codice + "|" + row.testo + "|" + row.prezzo + "|" + row.peso + (row.marked ? "|*\n" : "\n");
    }
    return text;
  }
  /// Every row of both tables, and the last automatic numbers.
  std::string tables() {
    std::string text;
    for (const char* table : {"opzioni", "dettagliop", "sqlite_sequence"}) {
      auto rows = checked(session.catalogue.prepare(std::string("SELECT * FROM ") + table + " ORDER BY 1, 2"));
      EXPECT_TRUE(rows);
      for (auto more = rows->step(); more && *more; more = rows->step()) {
        for (int i = 0; i < rows->columnCount(); ++i) text += std::string(rows->text(i)) + "|";
        text += "\n";
      }
    }
    return text;
  }
  void useNowhere() {
    for (int listino = 0; listino < listini; ++listino) {
      for (int slot = 1; slot <= 4; ++slot) sql("UPDATE articoli SET " + variantColumn(slot, listino) + " = NULL");
    }
  }

  VariantEditor editor{session, user, ','};
};

TEST_F(TheVariants, StartAtTheOneInTheSlotOrAtTheFirst) {
  const auto rows = editor.variants();
  ASSERT_GT(rows.size(), 3U);
  EXPECT_EQ(rows[0].nome, "(nessuna)");
  EXPECT_EQ(VariantEditor::start(rows, "2"), 1U);
  EXPECT_EQ(VariantEditor::start(rows, " "), 0U);
  EXPECT_EQ(VariantEditor::start(rows, "4711"), 0U);
  EXPECT_EQ(VariantEditor::start({}, "1"), 0U);
}

TEST_F(TheVariants, AreNamedInTheLanguageBeingEdited) {
  session.currentLanguage = 2;
  EXPECT_EQ(editor.variants()[1].nome, "Glaze");
  EXPECT_TRUE(editor.rename(smalto, "Enamel"));
  EXPECT_EQ(field("SELECT nome || ' ' || nome_l2 FROM opzioni WHERE ID = 2"), "Smalto Enamel");
  EXPECT_EQ(editor.options(smalto)[0].testo, "Montelune blue");
}

TEST_F(TheVariants, ShowTheirOptionsByNumber) {
  sql("UPDATE dettagliop SET ID = ID + 1000 WHERE OpID = 2 AND ID = (SELECT MIN(ID) FROM dettagliop WHERE OpID = 2)");
  const auto rows = editor.options(smalto);
  ASSERT_EQ(rows.size(), 4U);
  for (std::size_t i = 1; i < rows.size(); ++i) EXPECT_LT(rows[i - 1].ID, rows[i].ID);
  EXPECT_GT(rows.back().ID, 1000);
}

TEST_F(TheVariants, ANameIsCutToFiftyCharacters) {
  std::string sixty;
  for (int i = 0; i < 60; ++i) sixty += "è";
  EXPECT_TRUE(editor.rename(smalto, sixty));
  EXPECT_EQ(editor.variants()[1].nome, sixty.substr(0, 100));
}

TEST_F(TheVariants, TheFixedOneHasNoOptionsNoCopyNoDeletionAndKeepsItsName) {
  EXPECT_FALSE(VariantEditor::canHaveOptions(noVariantID));
  EXPECT_FALSE(VariantEditor::canRemove(noVariantID));
  EXPECT_FALSE(VariantEditor::canRename(editor.variants()[0]));
  EXPECT_FALSE(VariantEditor::canRename({9, "(nessuna)"}));
  EXPECT_TRUE(VariantEditor::canRename(editor.variants()[1]));
  EXPECT_FALSE(editor.addOption(noVariantID));
  EXPECT_FALSE(editor.duplicateVariant(noVariantID));
  EXPECT_FALSE(editor.pasteOptions(noVariantID, "a\tb"));
  EXPECT_FALSE(editor.deleteVariant(noVariantID));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(asText(user.shown[0]), "[Exclamation, Ok, Ok -> Ok] Questa variante non può essere eliminata");
}

TEST_F(TheVariants, WithNoVariantThereIsNothingToDelete) {
  sql("DELETE FROM opzioni");
  EXPECT_FALSE(editor.deleteVariant(0));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(asText(user.shown[0]), "[Exclamation, Ok, Ok -> Ok] Non è definita alcuna variante");
  EXPECT_FALSE(VariantEditor::canRemove(0) || VariantEditor::canHaveOptions(0));
}

TEST_F(TheVariants, AnyOfTheFortySlotsOfAnArticleKeepsAVariantFromDeletion) {
  useNowhere();
  user.answers.assign(40, Answer::No);
  for (int listino = 0; listino < listini; ++listino) {
    for (int slot = 1; slot <= 4; ++slot) {
      const std::string column = variantColumn(slot, listino);
      sql("UPDATE articoli SET " + column + " = 2 WHERE ID = (SELECT MIN(ID) FROM articoli)");
      user.shown.clear();
      EXPECT_FALSE(editor.deleteVariant(smalto));
      ASSERT_EQ(user.shown.size(), 1U) << column;
      EXPECT_EQ(asText(user.shown[0]),
                "[Exclamation, Ok, Ok -> Ok] Questa variante è utilizzata in uno o più articoli, e non è possibile "
                "eliminarla")
          << column;
      EXPECT_EQ(editor.useCount(smalto), 1) << column;
      sql("UPDATE articoli SET " + column + " = NULL");
    }
  }
}

TEST_F(TheVariants, AVariantOfListinoSevenAloneIsStillRefused) {
  useNowhere();
  sql("UPDATE articoli SET opzione3_7 = 2 WHERE ID = (SELECT MAX(ID) FROM articoli)");
  EXPECT_FALSE(editor.deleteVariant(smalto));
  EXPECT_EQ(editor.variants()[1].ID, smalto);
}

TEST_F(TheVariants, TheClipboardOfArticlesKeepsNoVariant) {
  useNowhere();
  sql("INSERT INTO cliparticoli (titolo, opzione1) VALUES ('Eco', 2)");
  user.answers = {Answer::Yes};
  EXPECT_TRUE(editor.deleteVariant(smalto));
}

TEST_F(TheVariants, ADeletionIsAskedForWithNoAsItsDefaultAndTakesTheOptionsAlong) {
  useNowhere();
  EXPECT_FALSE(editor.deleteVariant(smalto));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(asText(user.shown[0]), "[Question, YesNo, No -> No] Eliminare la variante selezionata ('Smalto')?");
  user.answers = {Answer::Yes};
  EXPECT_TRUE(editor.deleteVariant(smalto));
  EXPECT_EQ(field("SELECT COUNT(*) FROM opzioni WHERE ID = 2"), "0");
  EXPECT_EQ(field("SELECT COUNT(*) FROM dettagliop WHERE OpID = 2"), "0");
}

TEST_F(TheVariants, ADeletionThatFailsLeavesVariantAndOptions) {
  useNowhere();
  const std::string before = tables();
  user.answers = {Answer::Yes};
  FailingStore store(1);
  store.onlyFor("DELETE FROM dettagliop");
  EXPECT_FALSE(editor.deleteVariant(smalto));
  EXPECT_EQ(tables(), before);
  EXPECT_EQ(user.shown.size(), 2U);
}

TEST_F(TheVariants, ANewOneHasANewIDAndNoName) {
  const auto ID = editor.addVariant();
  ASSERT_TRUE(ID);
  EXPECT_EQ(editor.variants().back().ID, *ID);
  EXPECT_EQ(editor.variants().back().nome, "");
  EXPECT_TRUE(VariantEditor::canRename(editor.variants().back()));
}

TEST_F(TheVariants, ACopyHasAllColumnsAndItsOwnOptions) {
  sql("UPDATE opzioni SET selezionato = 3, opzione15_l4 = 'x', prezzo15 = 12345, peso1 = 0.5 WHERE ID = 2");
  sql("DELETE FROM dettagliop WHERE OpID = 2 AND codice = 'O'");
  const auto copy = editor.duplicateVariant(smalto);
  ASSERT_TRUE(copy);
  EXPECT_EQ(editor.options(*copy).size(), 3U);
  EXPECT_EQ(optionText(*copy), optionText(smalto));
  for (const OptionRow& row : editor.options(*copy)) {
    for (const OptionRow& old : editor.options(smalto)) EXPECT_NE(row.ID, old.ID);
  }
  const std::string columns = "nome || nome_l4 || selezionato || opzione15_l4 || prezzo15 || peso1";
  EXPECT_EQ(field("SELECT " + columns + " FROM opzioni WHERE ID = " + std::to_string(*copy)),
            field("SELECT " + columns + " FROM opzioni WHERE ID = 2"));
  EXPECT_EQ(field("SELECT testo_l3 FROM dettagliop WHERE OpID = " + std::to_string(*copy)), "Bleu de Montelune");
}

TEST_F(TheVariants, ACopyThatFailsLeavesNothingOfItself) {
  const std::string before = tables();
  FailingStore store(1);
  store.onlyFor("INSERT INTO dettagliop");
  EXPECT_FALSE(editor.duplicateVariant(smalto));
  EXPECT_EQ(tables(), before);
}

TEST_F(TheVariants, TheMarkMovesAndIsNeverOnTwoOptions) {
  const auto rows = editor.options(smalto);
  EXPECT_TRUE(editor.markOption(smalto, rows[2].ID));
  EXPECT_EQ(field("SELECT group_concat(codice) FROM dettagliop WHERE OpID = 2 AND selezionato = '.'"), "T");
  EXPECT_TRUE(editor.markOption(smalto, rows[0].ID));
  EXPECT_TRUE(editor.options(smalto)[0].marked);
  EXPECT_FALSE(editor.options(smalto)[2].marked);
}

TEST_F(TheVariants, AMarkIsSetWhereNoOptionHadOne) {
  sql("UPDATE dettagliop SET selezionato = NULL WHERE OpID = 2");
  EXPECT_TRUE(editor.markOption(smalto, editor.options(smalto)[1].ID));
  EXPECT_EQ(field("SELECT COUNT(*) FROM dettagliop WHERE OpID = 2 AND selezionato = '.'"), "1");
}

TEST_F(TheVariants, ASpaceIsNoMarkAndIsEmptiedWhenTheMarkMoves) {
  sql("UPDATE dettagliop SET selezionato = ' ' WHERE OpID = 2");
  for (const OptionRow& row : editor.options(smalto)) EXPECT_FALSE(row.marked);
  EXPECT_TRUE(editor.markOption(smalto, editor.options(smalto)[3].ID));
  EXPECT_EQ(field("SELECT COUNT(*) FROM dettagliop WHERE OpID = 2 AND selezionato = ''"), "3");
}

TEST_F(TheVariants, TheMarkOfOneVariantLeavesThatOfAnother) {
  EXPECT_TRUE(editor.markOption(smalto, editor.options(smalto)[1].ID));
  EXPECT_TRUE(editor.options(3)[0].marked);
}

TEST_F(TheVariants, OfManyOptionsOnlyOneEverHasTheMark) {
  std::string pasted;
  for (int i = 0; i < 40; ++i) pasted += "c\tt\n";
  ASSERT_TRUE(editor.pasteOptions(smalto, pasted));
  sql("UPDATE dettagliop SET selezionato = '.' WHERE OpID = 2");
  EXPECT_TRUE(editor.markOption(smalto, editor.options(smalto)[30].ID));
  EXPECT_EQ(field("SELECT COUNT(*) FROM dettagliop WHERE OpID = 2 AND selezionato = '.'"), "1");
}

TEST_F(TheVariants, ANumberOfAnOptionIsTypedWithTheUsersDecimalSeparator) {
  const std::int64_t ID = editor.options(smalto)[0].ID;
  EXPECT_TRUE(editor.setOption(ID, OptionCell::Prezzo, "-1,5"));
  EXPECT_TRUE(editor.setOption(ID, OptionCell::Peso, ",25"));
  EXPECT_EQ(editor.options(smalto)[0].prezzo, "-1,5");
  EXPECT_EQ(editor.options(smalto)[0].peso, "0,25");
  EXPECT_TRUE(editor.setOption(ID, OptionCell::Prezzo, ""));
  EXPECT_EQ(field("SELECT prezzo FROM dettagliop WHERE ID = " + std::to_string(ID)), "(null)");
}

TEST_F(TheVariants, WhatIsNoNumberLeavesTheCell) {
  const std::int64_t ID = editor.options(smalto)[0].ID;
  for (const char* typed : {"-", "1,2,3", "999999999999999999999"}) {
    EXPECT_FALSE(editor.setOption(ID, OptionCell::Prezzo, typed)) << typed;
  }
  EXPECT_FALSE(editor.setOption(ID, OptionCell::Peso, "1E+60"));
  EXPECT_EQ(editor.options(smalto)[0].prezzo, "0");
  EXPECT_EQ(editor.options(smalto)[0].peso, "0");
}

TEST_F(TheVariants, CodeAndTextAreStoredInTheirColumns) {
  session.currentLanguage = 2;
  const std::int64_t ID = editor.options(smalto)[0].ID;
  EXPECT_TRUE(editor.setOption(ID, OptionCell::Codice, "BB"));
  EXPECT_TRUE(editor.setOption(ID, OptionCell::Testo, "Blue"));
  EXPECT_EQ(field("SELECT codice || testo || testo_l2 FROM dettagliop WHERE ID = " + std::to_string(ID)),
            "BBBlu di MonteluneBlue");
}

TEST_F(TheVariants, AfterADeletionTheNextOptionShowsOrTheLast) {
  EXPECT_EQ(VariantEditor::afterDeletion(1, 3), 1);
  EXPECT_EQ(VariantEditor::afterDeletion(3, 3), 2);
  EXPECT_EQ(VariantEditor::afterDeletion(0, 0), -1);
  EXPECT_TRUE(editor.deleteOption(editor.options(smalto)[1].ID));
  EXPECT_EQ(editor.options(smalto).size(), 3U);
}

TEST_F(TheVariants, RowsOfASpreadsheetBecomeOptions) {
  const auto variant = editor.addVariant();
  ASSERT_TRUE(variant);
  EXPECT_TRUE(editor.pasteOptions(*variant, "S\tPiccola\t-1,50\t\r\nL\tGrande\t1.234,5\t0,75\r\nXL\r\n"));
  EXPECT_EQ(optionText(*variant), "S|Piccola|-1,5|\nL|Grande|1234,5|0,75\nXL|||\n");
}

TEST_F(TheVariants, PastedNumbersAreReadInEitherNotation) {
  const auto variant = editor.addVariant();
  ASSERT_TRUE(variant);
  EXPECT_TRUE(editor.pasteOptions(*variant, "a\t\t1,234.50\t12.5\nb\t\t1.250\t0.125\nc\t\t-1,234.50\t€ 2\n"));
  EXPECT_EQ(optionText(*variant), "a||1234,5|12,5\nb||1250|0,125\nc||-1234,5|2\n");
}

TEST_F(TheVariants, APastedRowWithoutANumberAddsNothing) {
  const std::string before = tables();
  EXPECT_FALSE(editor.pasteOptions(smalto, "S\tPiccola\t1\nM\tMedia\tmolto\n"));
  EXPECT_EQ(tables(), before);
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(asText(user.shown[0]),
            "[Exclamation, Ok, Ok -> Ok] La riga 2 non può essere incollata: 'molto' non è un numero");
}

TEST_F(TheVariants, ThePanelHasALineForEachLanguageOfTheShop) {
  EXPECT_EQ(editor.TraduciVariante(smalto), "italiano: Smalto\ninglese: Glaze");
  EXPECT_EQ(editor.TraduciOpzione(editor.options(smalto)[0].ID), "italiano: Blu di Montelune\ninglese: Montelune blue");
  session.languageCount = 0;
  EXPECT_EQ(editor.TraduciVariante(smalto), "italiano: Smalto");
  EXPECT_FALSE(editor.hasLanguages());
}

TEST_F(TheVariants, BothSettingsAreStoredByOkAlone) {
  sql("UPDATE generale SET nodiff = 0, showsigns = 0");
  VariantEditor fresh(session, user, ',');
  EXPECT_FALSE(fresh.settings.canShowSigns());
  fresh.settings = {true, true};
  EXPECT_TRUE(fresh.settings.canShowSigns());
  EXPECT_EQ(field("SELECT nodiff || showsigns FROM generale"), "00");
  EXPECT_TRUE(fresh.accept());
  EXPECT_EQ(field("SELECT nodiff || showsigns FROM generale"), "11");
}

TEST_F(TheVariants, TheArticlesThatUseOneAreNamed) {
  useNowhere();
  EXPECT_TRUE(editor.uses(smalto).empty());
  sql("UPDATE articoli SET opzione2_3 = 2 WHERE ID IN (SELECT ID FROM articoli ORDER BY ID LIMIT 2)");
  const auto uses = editor.uses(smalto);
  ASSERT_EQ(uses.size(), 2U);
  EXPECT_EQ(uses[0].titolo, field("SELECT titolo FROM articoli ORDER BY ID LIMIT 1"));
  EXPECT_TRUE(editor.uses(noVariantID).empty());
}

}  // namespace
}  // namespace kv::test
