#include "support/temp_shop.h"

#include "platform/files/files.h"
#include "platform/text/text.h"
#include "store/schema/schema.h"

namespace kv::test {

namespace {

const std::vector<std::string> codes{"italiano", "inglese", "francese", "tedesco"};

std::string dump(const std::string& path, const std::string& query) {
  auto database = Database::open(path, OpenMode::ReadOnly);
  if (!database) return "(" + database.error().what + ")";
  auto statement = database->prepare(query);
  if (!statement) return "(" + statement.error().what + ")";
  std::string out;
  for (auto row = statement->step(); row && *row; row = statement->step()) {
    if (!out.empty()) out += "\n";
    for (int i = 0; i < statement->columnCount(); ++i) {
      if (i > 0) out += "|";
      out += statement->isNull(i) ? "NULL" : asText(statement->value(i));
    }
  }
  return out;
}

std::string textOf(const std::string& path) {
  const auto text = readText(path);
  return text ? *text : "(missing)";
}

}  // namespace

Money money(std::string_view text) {
  const auto amount = Money::parse(text);
  EXPECT_TRUE(amount.has_value()) << text;
  return amount.value_or(Money());
}

std::string onePixelGif(unsigned char red, unsigned char green, unsigned char blue) {
  std::string gif("GIF89a\x01\x00\x01\x00\x80\x00\x00", 13);
  for (const unsigned char part : {red, green, blue}) gif += static_cast<char>(part);
  gif += std::string("\x00\x00\x00", 3);
  gif += std::string("\x2C\x00\x00\x00\x00\x01\x00\x01\x00\x00\x02\x02\x44\x01\x00\x3B", 16);
  return gif;
}

TempShop::TempShop(int languages) : shop_(root_ / "negozio"), application_(root_ / "programma") {
  makeApplication();
  makeShop(languages);
}

void TempShop::makeApplication() {
  for (const char* folder : {"", "/template", "/template/prova", "/languages", "/code", "/backoffice"}) {
    EXPECT_TRUE(createFolders(application_ + folder));
  }
  templateFile("modello1.htm", "<html><TITLE>t</TITLE><<1-titolo>>|<KV_START><<2-titolo>><KV_END>|</html>");
  templateFile("index.htm", "<html><<1-vetrina>></html>");
  for (int i = 0; i < 5; ++i) {
    const auto shade = static_cast<unsigned char>(i);
    application("template/prova/kvan_col_" + std::to_string(i) + ".gif", "");
    EXPECT_TRUE(writeBytes(application_ + "/template/prova/kvan_col_" + std::to_string(i) + ".gif",
                           onePixelGif(shade, 0, 255)));
  }
  for (const std::string& code : codes) {
    application("languages/" + code + ".lng", "<<4-pay_ok>>\r\nok " + code +
                                                  "\r\n<<4-pay_ko>>\r\nko\r\n<<4-carrello_iva>>\r\nIVA\r\n"
                                                  "<<4-listino_obbligatorio>>\r\nno\r\n");
  }
  application("code/funcs.php", "<?php // ?>");
  application("backoffice/bo.php", "<?php $a=\"<<1-negozio>>\"; ?>");
}

void TempShop::makeShop(int languages) {
  for (const char* name : {"", "/work", "/online", "/scripts", "/db"}) EXPECT_TRUE(createFolders(shop_ + name));
  EXPECT_TRUE(createDatabase(shop_ + "/catalog.mdb", catalogueTables()));
  EXPECT_TRUE(createDatabase(shop_ + "/source.new", tagDatabaseTables()));
  EXPECT_TRUE(createDatabase(shop_ + "/new.mdb", buildDatabaseTables()));
  EXPECT_TRUE(createDatabase(shop_ + "/kvftp.mdb", transferTables()));
  auto catalogue = Database::open(shop_ + "/catalog.mdb", OpenMode::Exclusive);
  ASSERT_TRUE(catalogue) << catalogue.error().what;
  session.catalogue = std::move(*catalogue);
  sql("PRAGMA synchronous=OFF");  // the shop lives for one test
  session.ShopFolder = shop_;
  session.templatePath = "template/prova";
  session.onlineFolder = shop_ + "/online";
  session.scriptFolder = shop_ + "/scripts";
  session.languageCount = languages;
  for (std::size_t i = 0; i < static_cast<std::size_t>(languages); ++i) session.languageNames[i] = codes[i];
  insert("generale", {{"versione", std::int64_t{1002}},
                      {"titolo", std::string("Bottega")},
                      {"URL", std::string("www.bottega.example")},
                      {"valuta1", std::string("EUR")},
                      {"valuta2", std::string("USD")},
                      {"decimali1", true},
                      {"decimali2", true},
                      {"notazione", std::int64_t{0}}});
  insert("pagamento", {{"ivaspese", 22.0}});
  for (int zone = 1; zone <= 8; ++zone) insert("zona" + std::to_string(zone), {{"pag1", true}});
}

void TempShop::sql(const std::string& statements) {
  const auto done = session.catalogue.execute(statements);
  EXPECT_TRUE(done) << (done ? "" : done.error().what);
}

void TempShop::insert(const std::string& table, const Row& row) {
  std::string names, marks;
  for (const auto& [column, value] : row) {
    names += (names.empty() ? "" : ",") + column;
    marks += marks.empty() ? "?" : ",?";
  }
  auto statement = session.catalogue.prepare("INSERT INTO " + table + " (" + names + ") VALUES (" + marks + ")");
  ASSERT_TRUE(statement) << statement.error().what;
  int place = 0;
  for (const auto& field : row) statement->bind(++place, field.second);
  const auto done = statement->execute();
  EXPECT_TRUE(done) << (done ? "" : done.error().what);
}

void TempShop::update(const std::string& table, const Row& row) {
  std::string columns;
  for (const auto& field : row) columns += (columns.empty() ? "" : ", ") + field.first + " = ?";
  auto statement = session.catalogue.prepare("UPDATE " + table + " SET " + columns);
  ASSERT_TRUE(statement) << statement.error().what;
  int place = 0;
  for (const auto& field : row) statement->bind(++place, field.second);
  const auto done = statement->execute();
  EXPECT_TRUE(done) << (done ? "" : done.error().what);
}

void TempShop::department(const std::string& id, const Row& more) {
  Row row{{"ID", id},
          {"titolo", "Reparto " + id},
          {"pagina", id},
          {"genitore", std::string("###")},
          {"livello", std::int64_t{1}},
          {"ordinamento", 100 + 5 * nextDepartment_++}};
  for (const auto& field : more) {
    std::erase_if(row, [&field](const auto& own) { return own.first == field.first; });
    row.push_back(field);
  }
  insert("categorie", row);
}

std::int64_t TempShop::article(const std::string& department, const Row& more) {
  const std::int64_t id = ++nextArticle_;
  Row row{{"ID", id}, {"catID", department}, {"ordinamento", 100 + 5 * id}, {"fuoricatalogo", false}};
  for (const auto& field : more) {
    std::erase_if(row, [&field](const auto& own) { return own.first == field.first; });
    row.push_back(field);
  }
  insert("articoli", row);
  return id;
}

void TempShop::application(const std::string& path, std::string_view text) {
  const std::string full = application_ + "/" + path;
  EXPECT_TRUE(createFolders(std::string(folderOf(full))));
  EXPECT_TRUE(writeText(full, text));
}

void TempShop::shopFile(const std::string& path, std::string_view text) {
  const std::string full = shop_ + "/" + path;
  EXPECT_TRUE(createFolders(std::string(folderOf(full))));
  EXPECT_TRUE(writeText(full, text));
}

BuildOutcome TempShop::build(const BuildParts& parts) {
  Environment env{user, settings, clock, random, application_, {}};
  return MakePages(session, env, parts, &counts);
}

std::string TempShop::page(const std::string& name) const { return textOf(session.onlineFolder + "/" + name); }
std::string TempShop::scriptPage(const std::string& name) const { return textOf(session.scriptFolder + "/" + name); }
bool TempShop::hasPage(const std::string& name) const { return fileExists(session.onlineFolder + "/" + name); }
std::string TempShop::rows(const std::string& query) const { return dump(shop_ + "/db/sql.mdb", query); }
std::string TempShop::tagRows(const std::string& query) const { return dump(shop_ + "/source.mdb", query); }

std::vector<std::string> TempShop::fileList() const {
  const std::string text = readBytes(shop_ + "/kvftp.dat").value_or("");
  std::vector<std::string> lines;
  for (const std::string_view line : splitLines(text)) lines.emplace_back(line);
  return lines;
}

}  // namespace kv::test
