// The programs that make the shipped data: what they refuse, where they say it is wrong, and that they leave nothing.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>

#include "platform/database/database.h"
#include "platform/database/value.h"
#include "platform/files/files.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

/// The smallest seed that breaks no rule.
const std::string smallShop =
    "[lingue]\nlingua1: italiano\n[generale]\ntitolo: Bottega\n"
    "[opzioni nessuna]\nnome: (nessuna)\n"
    "[zona1]\npag1: true\n[zona2]\n[zona3]\n[zona4]\n[zona5]\n[zona6]\n[zona7]\n[zona8]\n"
    "[list paesi]\npaese | zona\nItalia | 1\n"
    "[pagamento]\nmetodo1: Contrassegno\nattivo1: true\nselezionato: 1\npaesesel: 1\nzonasel: 1\n"
    "[categorie sopra]\ntitolo: Sopra\ndescrizione: Testo\n"
    "[categorie sotto]\ngenitore: @sopra\ntitolo: Sotto\ndescrizione: Testo\n";

struct Outcome {
  int status = -1;
  std::string output;
};

Outcome run(const std::string& command) {
  Outcome outcome;
  std::FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return outcome;
  std::array<char, 512> part{};
  while (std::fgets(part.data(), static_cast<int>(part.size()), pipe) != nullptr) outcome.output += part.data();
  outcome.status = WEXITSTATUS(pclose(pipe));
  return outcome;
}

class SeedProgram : public ::testing::Test {
 protected:
  Outcome seed(const std::string& text) {
    EXPECT_TRUE(writeBytes(seed_, text));
    return run(KORVANE_SEED " --pictures " + folder_.path() + " --out " + out_ + " " + seed_);
  }

  std::string first(const std::string& sql) {
    Result<Database> catalogue = Database::open(joinPath(out_, "catalog.mdb"), OpenMode::ReadOnly);
    if (!catalogue) return "no catalogue";
    const Result<Value> value = catalogue->scalar(sql);
    return value ? asText(*value) : value.error().what;
  }

  test::TempFolder folder_;
  std::string seed_ = joinPath(folder_.path(), "a.seed");
  std::string out_ = joinPath(folder_.path(), "out");
};

TEST_F(SeedProgram, MakesTheFourDatabases) {
  const Outcome outcome = seed(smallShop);
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_EQ(listFiles(out_, "*.*"), (std::vector<std::string>{"catalog.mdb", "kvftp.mdb", "new.mdb", "source.new"}));
}

TEST_F(SeedProgram, MakesTheSameBytesFromTheSameSeed) {
  ASSERT_EQ(seed(smallShop).status, 0);
  const Result<std::string> once = readBytes(joinPath(out_, "catalog.mdb"));
  ASSERT_EQ(seed(smallShop).status, 0);
  const Result<std::string> twice = readBytes(joinPath(out_, "catalog.mdb"));
  ASSERT_TRUE(once && twice);
  EXPECT_TRUE(*once == *twice);
}

TEST_F(SeedProgram, CompletesADepartmentFromItsPositionInTheTree) {
  ASSERT_EQ(seed(smallShop).status, 0);
  EXPECT_EQ(first("SELECT ID || pagina || genitore || livello || hafigli || ordinamento FROM categorie WHERE "
                  "titolo = 'Sopra'"),
            "cat001cat001###11100");
  EXPECT_EQ(first("SELECT ID || pagina || genitore || livello || hafigli || ordinamento FROM categorie WHERE "
                  "titolo = 'Sotto'"),
            "cat002cat002cat00120105");
}

TEST_F(SeedProgram, JoinsTheLinesOfALongTextAndKeepsItsParagraphs) {
  ASSERT_EQ(seed(smallShop + "note:\n  una\n  due\n\n  tre\n").status, 0);
  EXPECT_EQ(first("SELECT note FROM categorie WHERE titolo = 'Sotto'"), "una due\r\n\r\ntre");
}

TEST_F(SeedProgram, KeepsTheLinesOfATextThatAsksForIt) {
  ASSERT_EQ(seed(smallShop + "note: |\n  una\n\n  due\n").status, 0);
  EXPECT_EQ(first("SELECT note FROM categorie WHERE titolo = 'Sotto'"), "una\r\n\r\ndue");
}

TEST_F(SeedProgram, TakesFurtherColumnsForANamedRow) {
  ASSERT_EQ(seed(smallShop + "[more sopra]\ntitolo_l2: Above\nnote:\n  una\n").status, 0);
  EXPECT_EQ(first("SELECT titolo || '/' || titolo_l2 || '/' || note FROM categorie WHERE ID = 'cat001'"),
            "Sopra/Above/una");
  EXPECT_EQ(first("SELECT COUNT(*) FROM categorie"), "2");
}

TEST_F(SeedProgram, TakesVatOutOfAnAmountThatHoldsIt) {
  ASSERT_EQ(seed(smallShop + "[articoli]\ncatID: @sotto\ntitolo: A\ndescrizione: B\nprezzo: 12.20 ivato 22\n").status,
            0);
  EXPECT_EQ(first("SELECT prezzo || '/' || prezzo7 FROM articoli"), "100000/100000");
}

struct Fault {
  std::string added;
  std::string message;  // after the path of the seed, or a complaint
};

TEST_F(SeedProgram, NamesTheLineOfEachFault) {
  const std::vector<Fault> faults{
      {"colore: blu\n", ":32: categorie has no column colore"},
      {"titolo: Ancora\n", ":32: the column titolo is given twice"},
      {"iva: molta\n", ":32: iva can't hold \"molta\", it is FLOAT"},
      {"nascosto: forse\n", ":32: nascosto can't hold \"forse\", it is BOOLEAN"},
      {"una riga\n", ":32: expected \"column: text\""},
      {"note: \xE2\x86\x92\n", ":32: a character that Windows-1252 lacks"},
      {"[articoli]\ncatID: @altrove\n", ":33: no row above is named @altrove"},
      {"[list paesi]\npaese\nCipro | 2\n", ":34: more cells than columns"},
      {"immagine0: manca.png\n", ":32: picture manca.png: "},
      {"[more]\nnote: B\n", ":32: [more] needs the name of a row"},
      {"[more altrove]\nnote: B\n", ":32: no row above is named @altrove"},
      {"[more sopra]\ntitolo: Ancora\n", ":33: the column titolo is given twice"},
  };
  for (const Fault& fault : faults) {
    const Outcome outcome = seed(smallShop + fault.added);
    EXPECT_EQ(outcome.status, 1) << fault.added;
    EXPECT_EQ(outcome.output.substr(0, seed_.size() + fault.message.size()), seed_ + fault.message);
    EXPECT_TRUE(listFiles(out_, "*.*").empty()) << fault.added;
  }
}

TEST_F(SeedProgram, RefusesACatalogueThatBreaksTheRules) {
  const std::vector<Fault> faults{
      {"[lingue]\nlingua1: inglese\n", "lingue must have one row, rows found: 2"},
      {"[articoli]\ncodice: X\ntitolo: A\ndescrizione: B\n", "article without a department: X"},
      {"[articoli]\ncatID: @sotto\ncodice: X\ntitolo: A\n", "articoli without descrizione: A"},
      {"[articoli]\ncatID: @sotto\ncodice: X\ntitolo: A\ndescrizione: B\nopzione3: 9\n",
       "opzione3 names no variant: X"},
      {"[articoli]\ncatID: @sotto\ncodice: X\ntitolo: A\ndescrizione: B\ninelenco: true\n",
       "showcase article without its small picture: X"},
      {"[opzioni]\nnome: Colore\n", "variant without options: Colore"},
      {"[list dettagliop]\nOpID | testo | selezionato\n1 | a | .\n1 | b | .\n",
       "variant with more than one default: 1"},
      {"[list paesi]\npaese | zona\nMarte | 9\n", "country with a wrong zone or strID: Marte"},
  };
  for (const Fault& fault : faults) {
    const Outcome outcome = seed(smallShop + fault.added);
    EXPECT_EQ(outcome.status, 1) << fault.added;
    EXPECT_NE(outcome.output.find("\n  " + fault.message), std::string::npos) << outcome.output;
    EXPECT_TRUE(listFiles(out_, "*.*").empty()) << fault.added;
  }
}

class PackProgram : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* folder : {"classico/parts", "classico/inglese", "chiaro"})
      ASSERT_TRUE(createFolders(joinPath(from_, folder)));
  }

  void put(const std::string& name, std::string_view bytes) { ASSERT_TRUE(writeBytes(joinPath(from_, name), bytes)); }

  Outcome pack(const std::string& names) {
    EXPECT_TRUE(writeBytes(list_, names));
    return run(KORVANE_PACK " " + from_ + " " + to_ + " " + list_);
  }

  std::string packed(const std::string& name) { return readBytes(joinPath(to_, name)).value_or("missing"); }

  test::TempFolder folder_;
  std::string from_ = joinPath(folder_.path(), "from");
  std::string to_ = joinPath(folder_.path(), "to");
  std::string list_ = joinPath(folder_.path(), "names");
};

TEST_F(PackProgram, WritesTextAsWindows1252WithCrLf) {
  put("a.lng", "citt\xC3\xA0 \xE2\x82\xAC\nfine");
  ASSERT_EQ(pack("a.lng\n").status, 0);
  EXPECT_EQ(packed("a.lng"), "citt\xE0 \x80\r\nfine");
}

TEST_F(PackProgram, PutsPartsIntoThePagesOfTheirPackage) {
  put("classico/parts/testa.part", "<b>{{nome}}</b>\n");
  put("classico/parts/nome.part", "Bottega\n");
  put("classico/index.htm", "{{testa}}\n<p>\n");
  ASSERT_EQ(pack("classico/index.htm\nclassico/parts/testa.part\nclassico/parts/nome.part\n").status, 0);
  EXPECT_EQ(packed("classico/index.htm"), "<b>Bottega</b>\r\n<p>\r\n");
  EXPECT_FALSE(folderExists(joinPath(to_, "classico/parts")));
}

TEST_F(PackProgram, TakesAPartOfThePackageBeforeOneOfAllPackages) {
  ASSERT_TRUE(createFolders(joinPath(from_, "parts")));
  put("parts/testa.part", "<b>{{nome}}</b>\n");
  put("parts/nome.part", "Tutti\n");
  put("classico/parts/nome.part", "Bottega\n");
  put("classico/inglese/index.htm", "{{testa}}\n");
  put("chiaro/index.htm", "{{testa}}\n");
  ASSERT_EQ(pack("classico/inglese/index.htm\nchiaro/index.htm\n").status, 0);
  EXPECT_EQ(packed("classico/inglese/index.htm"), "<b>Bottega</b>\r\n");
  EXPECT_EQ(packed("chiaro/index.htm"), "<b>Tutti</b>\r\n");
}

TEST_F(PackProgram, NamesTheFileOfAnUnknownPart) {
  put("classico/index.htm", "{{testa}}\n");
  const Outcome outcome = pack("classico/index.htm\n");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, joinPath(from_, "classico/index.htm") + ": no part is named testa\n");
}

TEST_F(PackProgram, LeavesDoubleBracesAloneWhereThereAreNoParts) {
  put("a.js", "x={{}};\n");
  ASSERT_EQ(pack("a.js\n").status, 0);
  EXPECT_EQ(packed("a.js"), "x={{}};\r\n");
}

TEST_F(PackProgram, MakesAPictureOfEachTemplateColour) {
  put("classico/colours.txt", "# comment\n0 22303C text\n4 1B5E5A titles\n");
  ASSERT_EQ(pack("classico/colours.txt\n").status, 0);
  EXPECT_EQ(packed("classico/kvan_col_4.gif").substr(0, 16), std::string("GIF89a\1\0\1\0\x80\0\0\x1B\x5E\x5A", 16));
  EXPECT_EQ(packed("classico/kvan_col_0.gif").size(), 35U);
  EXPECT_EQ(packed("classico/colours.txt"), "missing");
}

TEST_F(PackProgram, DeletesWhatTheListNoLongerNamesAndNothingElse) {
  put("a.js", "a\n");
  put("b.js", "b\n");
  ASSERT_EQ(pack("a.js\nb.js\n").status, 0);
  ASSERT_TRUE(writeBytes(joinPath(to_, "catalog.mdb"), "x"));
  ASSERT_EQ(pack("a.js\n").status, 0);
  EXPECT_EQ(listFiles(to_, "*.*"), (std::vector<std::string>{"a.js", "catalog.mdb"}));
}

TEST_F(PackProgram, NamesTheLineOfACharacterThatCannotBeWritten) {
  put("a.js", "a\n\xE2\x86\x92\n");
  EXPECT_EQ(pack("a.js\n").output, joinPath(from_, "a.js") + ":2: a character that Windows-1252 lacks\n");
}

}  // namespace
}  // namespace kv
