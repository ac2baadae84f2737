#pragma once
// A shop in which the doctor finds nothing: each test gives it the one fault that it is about.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "builder/doctor/doctor.h"
#include "platform/files/file_time.h"
#include "platform/files/files.h"
#include "store/catalogue/side_fields.h"
#include "support/temp_shop.h"
#include "support/value_of.h"

namespace kv::test {

class DoctorShop : public ::testing::Test {
 protected:
  DoctorShop() {
    shop.update("generale", {{"URL", std::string("https://www.bottega.example")},
                             {"email_ordini", std::string("ordini@bottega.example")},
                             {"hostname", std::string("ftp.bottega.example")},
                             {"username", std::string("bottega")},
                             {"db_hostname", std::string("localhost")},
                             {"db_username", std::string("bottega")},
                             {"db_dbname", std::string("bottega")}});
    shop.update("pagamento",
                {{"attivo1", true}, {"metodo1", std::string("Contrassegno")}, {"nome1", std::string("Contrassegno")}});
    shop.insert("opzioni", {{"ID", std::int64_t{1}}, {"nome", std::string("(nessuna)")}});
    // The account of the one module in use.
    EXPECT_TRUE(createFolders(joinPath(shop.folder(), "code/Contrassegno")));
    shop.shopFile("code/Contrassegno/conf.ini", "info=Si paga al corriere\r\n");
    shop.department("cat001", {{"titolo_l2", std::string("Cups")}, {"template", std::string("modello1")}});
    vase = shop.article("cat001", {{"codice", std::string("V1")},
                                   {"titolo", std::string("Vaso")},
                                   {"titolo_l2", std::string("Vase")},
                                   {"prezzo", money("12.50")}});
    shop.update("generale", {{"titolo_l2", std::string("Shop")}});
    meetDuties();
    for (const char* made : {"kvftp.dat", "db/sql.mdb", "db/last.mdb"}) makeAt(made, nextCentury);
  }

  /// What the law asks of a shop.
  void meetDuties() {
    shop.update("generale", {{"email", std::string("info@bottega.example")}, {"ivacompresa", true}});
    for (const char* text : {"condizioni", "recesso", "datipers"}) {
      shop.update("generale", {{text, std::string("Testo")}, {std::string(text) + "_l2", std::string("Text")}});
    }
    sql("CREATE TABLE identita (legale_sede TEXT, legale_piva TEXT);"
        "INSERT INTO identita VALUES ('Via Po 1', 'IT01234567890')");
    EXPECT_TRUE(prepareSideField(shop.session.catalogue, SideField::Maker));
    sql("INSERT INTO produttori (nome, indirizzo, contatto) VALUES ('Forno', 'Via Po 1', 'a@b.example')");
    // Departments that a test adds are in none of their own.
    for (const char* department : {"cat001", "cat002", "cat003"}) {
      EXPECT_TRUE(writeSideField(shop.session.catalogue, SideField::Maker, department, Value("Forno")));
    }
    shop.templateFile("order.htm", "<button><<4-invia_ordine>></button><a href=\"kvrecesso.php\">");
    shop.shopFile("code/kvrecesso.php", "");
    for (const char* language : {"italiano", "inglese"}) {
      shop.application("languages/" + std::string(language) + ".lng",
                       "<<4-pay_ok>>\r\nok\r\n<<4-invia_ordine>>\r\nOrdina e paga\r\n");
    }
  }

  /// Writes an empty file of the shop with a time of change, in seconds.
  void makeAt(const std::string& name, std::int64_t seconds) {
    const std::string path = joinPath(shop.folder(), name);
    EXPECT_TRUE(writeBytes(path, ""));
    EXPECT_TRUE(setFileTime(path, seconds * 1'000'000'000));
  }
  void sql(const std::string& statements) { shop.sql(statements); }

  Findings findings() {
    const auto examination = examineShop(shop.session, shop.applicationFolder());
    EXPECT_TRUE(examination) << (examination ? "" : examination.error().what);
    return examination ? examination->findings : Findings{};
  }
  /// "price.zero: the sentence", for each finding.
  std::vector<std::string> told() {
    std::vector<std::string> lines;
    for (const Finding& finding : findings()) lines.push_back(std::string(finding.check) + ": " + finding.text);
    return lines;
  }
  /// The rows of the tables that a mending may write.
  std::string rowsAsText() {
    std::string all;
    for (const char* table : {"generale", "articoli", "categorie", "opzioni", "dettagliop"}) {
      auto row = checked(shop.session.catalogue.prepare("SELECT * FROM " + std::string(table) + " ORDER BY 1"));
      EXPECT_TRUE(row);
      for (auto found = row->step(); found && *found; found = row->step()) {
        for (int i = 0; i < row->columnCount(); ++i) all += (row->isNull(i) ? "NULL" : asText(row->value(i))) + "|";
        all += "\n";
      }
    }
    return all;
  }
  /// Mends all findings of a check; how many there were.
  int mendAll(std::string_view check) {
    int mended = 0;
    for (const Finding& finding : findings()) {
      if (finding.check != check || !finding.canMend()) continue;
      EXPECT_TRUE(mendFinding(shop.session.catalogue, finding));
      ++mended;
    }
    return mended;
  }
  std::string field(const std::string& query) {
    const auto value = shop.session.catalogue.scalar(query);
    return value ? asText(*value) : value.error().what;
  }

  static constexpr std::int64_t nextCentury = 4'102'444'800;  // later than any row of a test
  TempShop shop{2};
  std::int64_t vase = 0;
};

}  // namespace kv::test
