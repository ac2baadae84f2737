// Accounting data of chance: an import undone leaves the rows of before, and the same import once more changes nothing.
#include <random>

#include "accounting_shop.h"
#include "platform/text/text.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

class AccountingOfChance : public RecordedAccounting {
 protected:
  int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(chance); }
  template <std::size_t count>
  std::string oneOf(const char* const (&texts)[count]) {
    return texts[static_cast<std::size_t>(upTo(static_cast<int>(count) - 1))];
  }
  /// A text as SQL, at times none, and at times as long as a title may be, or longer.
  std::string text() {
    if (upTo(9) == 0) return "NULL";
    std::string made = oneOf({"Vaso", "d'Epoca", "Città €", "\"Blu\"", "*", "", " tazza "});
    if (upTo(4) == 0) made += std::string(static_cast<std::size_t>(95 + upTo(110)), 'x');
    return "'" + replaceAll(made, "'", "''") + "'";
  }
  std::string code() { return oneOf({"NULL", "''", "'A'", "'a'", "'B'", "'L''uno'", "'OG00003'", "'È'", "'è'"}); }
  std::string amount() { return oneOf({"NULL", "0", "1.005", "12.5", "-3", "'7,5'", "99999.99", "'gratis'"}); }

  void fillByChance() {
    std::string made = "BEGIN; DELETE FROM Categoria; DELETE FROM Articoli;";
    for (int i = upTo(3); i >= 0; --i) {
      made += "INSERT INTO Categoria VALUES (" + std::to_string(i) + ", " + text() + ");";
    }
    for (int i = upTo(11); i > 0; --i) {
      made += "INSERT INTO Articoli VALUES (" + std::to_string(i) + ", " + std::to_string(upTo(4)) + ", " + code() +
              ", " + text() + ", " + oneOf({"NULL", "0", "4", "22", "22.5"}) + ", " + amount() + ", " + amount() +
              ", " + std::to_string(upTo(3)) + ");";
    }
    fill(made + "COMMIT");
    std::string own = "DELETE FROM articoli; DELETE FROM categorie;";
    for (int i = upTo(2); i > 0; --i) {
      own += "INSERT INTO categorie (ID, contatore, titolo) VALUES ('dgf" + std::to_string(i) + "', " +
             std::to_string(i) + ", 'Mio');" + "INSERT INTO articoli (catID, codice, titolo, prezzo) VALUES ('dgf" +
             std::to_string(i) + "', " + code() + ", 'Mio', 10000);";
    }
    sql(own);
    history.clear();
  }
  /// Mark, price, offer, VAT, whether existing articles are updated, no backup, price list.
  std::string options() {
    std::string line;
    for (const int most : {1, 1, 2, 1, 1, 0, 9}) line += std::to_string(upTo(most));
    line[1] = static_cast<char>('1' + upTo(1));
    return line;
  }

  std::mt19937 chance;
};

TEST_F(AccountingOfChance, IsUndoneToEqualRowsAndChangesNothingASecondTime) {
  for (unsigned i = 0; i < seeds(100); ++i) {
    SCOPED_TRACE("shop " + std::to_string(seed() + i));
    chance.seed(seed() + i);
    fillByChance();
    const std::string before = allRows();
    request.line = options();
    ASSERT_EQ(recorded(), AccountingEnd::Done) << ::testing::PrintToString(user.texts());
    const std::string after = allRows();
    if (history.canUndo()) {
      ASSERT_TRUE(history.undo());
      ASSERT_EQ(allRows(), before);
      ASSERT_TRUE(history.redo());
      ASSERT_EQ(allRows(), after);
    } else {
      ASSERT_EQ(after, before) << "no step, no change";
    }
    ASSERT_EQ(import(), AccountingEnd::Done);
    ASSERT_EQ(allRows(), after) << "with " << request.line;
    user.shown.clear();
  }
}

}  // namespace
}  // namespace kv::test
