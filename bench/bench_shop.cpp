#include "bench_shop.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

#include "builder/run/make_pages.h"
#include "measure.h"
#include "platform/files/files.h"
#include "store/schema/schema.h"

namespace kv::bench {

namespace {

constexpr int topDepartments = 100;
constexpr int beneathEach = 4;
const std::vector<std::string> codes{"italiano", "inglese", "francese", "tedesco"};

template <class T>
T need(Result<T> result) {
  if (!result) {
    std::fprintf(stderr, "%s: %s\n", result.error().where.c_str(), result.error().what.c_str());
    std::abort();
  }
  if constexpr (!std::is_void_v<T>) return std::move(*result);
}

const char* const prose =
    "Lavorato a mano nella nostra bottega con argilla del territorio, cotto due volte e smaltato con colori naturali. "
    "Ogni pezzo è diverso dall'altro: piccole variazioni di forma e di tono sono il segno della lavorazione "
    "artigianale "
    "e non un difetto. Adatto al contatto con gli alimenti, si lava a mano con acqua tiepida.";

// The application folder: what ships, with modules for every language of the measurement.
void makeApplication(const std::string& folder) {
  const std::string shipped = KORVANE_APP_DATA;
  for (const char* part : {"template", "languages", "code", "backoffice"}) {
    need(createFolders(folder + "/" + part));
    need(copyTree(shipped + "/" + part, folder + "/" + part));
  }
  const std::string words = need(readBytes(folder + "/languages/italiano.lng"));
  for (const std::string& code : codes) {
    const std::string path = folder + "/languages/" + code + ".lng";
    if (!fileExists(path)) need(writeBytes(path, words));
  }
}

std::string columnsOfLanguages(const char* column) {
  std::string names;
  for (const std::string_view suffix : languageSuffixes) names.append(", ").append(column).append(suffix);
  return names;
}

std::string departmentId(int number) {
  char id[16];
  std::snprintf(id, sizeof id, "cat%03d", number);
  return id;
}

void insertDepartments(Database& catalogue, int departments) {
  Statement insert = need(catalogue.prepare(
      "INSERT INTO categorie (ID, pagina, template, genitore, livello, ordinamento, iva, sconto, nascosto" +
      columnsOfLanguages("titolo") + ") VALUES (?, ?1, 'modello1', ?2, ?3, ?4, 22, 10, 0, ?1, ?1, ?1, ?1)"));
  std::vector<int> levels{0};
  for (int i = 1; i <= departments; ++i) {
    const int parent = i <= topDepartments ? 0 : (i - topDepartments - 1) / beneathEach + 1;
    levels.push_back(levels[static_cast<std::size_t>(parent)] + 1);
    const std::string id = departmentId(i), genitore = parent == 0 ? "###" : departmentId(parent);
    insert.bind(1, id);
    insert.bind(2, genitore);
    insert.bind(3, levels.back());
    insert.bind(4, std::int64_t{100} + 5 * i);
    need(insert.execute());
  }
}

void insertArticles(Database& catalogue, int articles, int departments) {
  Statement insert = need(catalogue.prepare(
      "INSERT INTO articoli (catID, codice, ordinamento, prezzo, prezzo1, peso, fuoricatalogo, inelenco, opzione1, "
      "immagine0, imgX0, imgY0" +
      columnsOfLanguages("titolo") + columnsOfLanguages("sottotitolo") + columnsOfLanguages("descrizione") +
      ") VALUES (?,?,?,?,?,?,0,0,2,?,320,240,?,?,?,?,?,?,?,?,?,?,?,?)"));
  for (int i = 0; i < articles; ++i) {
    char text[96];
    const std::string department = departmentId(i % departments + 1);
    std::snprintf(text, sizeof text, "ART-%06d", i);
    const std::string code = text;
    std::snprintf(text, sizeof text, "Ciotola in ceramica dipinta numero %d", i);
    const std::string title = text;
    insert.bind(1, std::string_view(department));
    insert.bind(2, std::string_view(code));
    insert.bind(3, std::int64_t{100} + 5 * i);
    insert.bind(4, Money::ofTenThousandths(100000 + i * 137 % 5000000));
    insert.bind(5, Money::ofTenThousandths(90000 + i * 137 % 5000000));
    insert.bind(6, 0.25);
    insert.bind(7, "ceramica.jpg");
    for (int index = 8; index < 12; ++index) insert.bind(index, std::string_view(title));
    for (int index = 12; index < 16; ++index) insert.bind(index, "Decoro a foglie, diametro 18 cm");
    for (int index = 16; index < 20; ++index) insert.bind(index, prose);
    need(insert.execute());
  }
}

}  // namespace

BenchShop::BenchShop(std::string folder, int articles, int languages, int departments)
    : folder_(std::move(folder)), languages_(languages), departments_(departments) {
  for (const char* part : {"", "/shop", "/shop/work", "/shop/online", "/shop/scripts", "/shop/db", "/app"}) {
    need(createFolders(folder_ + part));
  }
  makeApplication(folder_ + "/app");
  makeCatalogue(articles);
}

void BenchShop::makeCatalogue(int articles) {
  const std::string shop = folder_ + "/shop";
  need(createDatabase(shop + "/catalog.mdb", catalogueTables()));
  need(createDatabase(shop + "/source.new", tagDatabaseTables()));
  need(createDatabase(shop + "/new.mdb", buildDatabaseTables()));
  Database catalogue = need(Database::open(shop + "/catalog.mdb", OpenMode::Scratch));
  need(catalogue.begin());
  need(catalogue.execute(
      "INSERT INTO generale (versione, titolo, URL, valuta1, decimali1, notazione, elenco_titolo, "
      "vis_offerta, vis_sconto, "
      "affiancati, livelliaperti) VALUES (1002, 'Bottega', 'www.bottega.example', 'EUR', 1, 0, 1, 1, 1, 2, 1);"
      "INSERT INTO pagamento (ivaspese) VALUES (22);"));
  insertDepartments(catalogue, departments_);
  insertArticles(catalogue, articles, departments_);
  need(catalogue.commit());
}

bool BenchShop::build(double* written, UserPort* user) {
  Session session;
  session.ShopFolder = folder_ + "/shop";
  session.catalogue = need(Database::open(session.ShopFolder + "/catalog.mdb", OpenMode::Exclusive));
  session.templatePath = "template/classico";
  session.onlineFolder = session.ShopFolder + "/online";
  session.scriptFolder = session.ShopFolder + "/scripts";
  session.languageCount = languages_;
  for (std::size_t i = 0; i < session.languageNames.size(); ++i) session.languageNames[i] = codes[i];
  SilentUser silent;
  MemorySettings settings;
  Environment env{user == nullptr ? silent : *user, settings, systemClock(), systemRandom(), folder_ + "/app", {}};
  BuildCounts counts;
  const bool done = MakePages(session, env, {}, &counts) == BuildOutcome::Done;
  // Every build names its own token; a script that holds it is new each time by intent.
  *written = counts.pagesWritten;
  return done;
}

void BenchShop::clearOutput() {
  for (const char* part : {"/shop/online", "/shop/scripts", "/shop/db"}) need(emptyFolder(folder_ + part));
}

std::uintmax_t BenchShop::outputBytes() const {
  std::uintmax_t bytes = 0;
  for (const char* part : {"/shop/online", "/shop/scripts"}) {
    for (const auto& entry : std::filesystem::directory_iterator(folder_ + part)) bytes += entry.file_size();
  }
  return bytes;
}

FloorWork BenchShop::loadFloor() {
  FloorWork work;
  std::filesystem::remove_all(folder_ + "/floor");
  Database build = need(Database::open(folder_ + "/shop/db/sql.mdb", OpenMode::ReadOnly));
  std::vector<std::string> tables{"articoli", "dettaglio", "ordinamento"};
  for (int i = 1; i < languages_; ++i)
    tables.push_back("articoli" + std::string(languageSuffixes[static_cast<std::size_t>(i)]));
  for (const std::string& table : tables) {
    Statement query = need(build.prepare("SELECT * FROM " + table));
    FloorTable out;
    out.insert = "INSERT INTO " + table + " VALUES (";
    for (int i = 0; i < query.columnCount(); ++i) out.insert += i == 0 ? "?" : ",?";
    out.insert += ")";
    while (need(query.step())) {
      auto& row = out.rows.emplace_back();
      row.reserve(static_cast<std::size_t>(query.columnCount()));
      for (int i = 0; i < query.columnCount(); ++i) row.push_back(query.value(i));
    }
    work.tables.push_back(std::move(out));
  }
  for (const char* part : {"/shop/online", "/shop/scripts"}) {
    for (const std::string& name : listFiles(folder_ + part, "*.*")) {
      work.files.emplace_back(folder_ + part + "/" + name, need(readBytes(folder_ + part + "/" + name)));
    }
  }
  return work;
}

bool BenchShop::runFloor(const FloorWork& work) {
  const std::string path = folder_ + "/floor/floor.mdb";
  std::filesystem::create_directories(folder_ + "/floor");
  std::filesystem::copy_file(folder_ + "/shop/new.mdb", path);
  Database database = need(Database::open(path, OpenMode::Scratch));
  need(database.begin());
  // Row by row through the tables, as the articles come.
  std::vector<Statement> inserts;
  for (const FloorTable& table : work.tables) inserts.push_back(need(database.prepare(table.insert)));
  for (std::size_t i = 0; i < work.tables[0].rows.size(); ++i) {
    for (std::size_t t = 0; t < inserts.size(); ++t) {
      int index = 0;
      for (const Value& value : work.tables[t].rows[i]) inserts[t].bind(++index, value);
      need(inserts[t].execute());
    }
  }
  need(database.commit());
  database.close();
  for (const auto& [name, bytes] : work.files) {
    std::ofstream out(folder_ + "/floor/" + std::string(baseName(name)), std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  return true;
}

void writeHugoSite(const std::string& folder, int articles) {
  namespace fs = std::filesystem;
  fs::remove_all(folder);
  fs::create_directories(folder + "/layouts/_default");
  std::ofstream(folder + "/config.toml") << "baseURL='http://bottega.example/'\ntitle='Bottega'\n"
                                            "disableKinds=['taxonomy','term','RSS','sitemap']\n";
  std::ofstream(folder + "/layouts/_default/single.html")
      << "<!DOCTYPE html><html><head><title>{{ .Title }}</title></head><body><h1>{{ .Title }}</h1><p>{{ .Params.codice "
         "}} "
         "{{ .Params.prezzo }}</p>{{ .Content }}</body></html>";
  std::ofstream(folder + "/layouts/_default/list.html")
      << "<!DOCTYPE html><html><head><title>{{ .Title }}</title></head><body><ul>{{ range .Pages }}<li><a href=\"{{ "
         ".RelPermalink }}\">{{ .Title }}</a></li>{{ end }}</ul></body></html>";
  for (int d = 1; d <= topDepartments; ++d) fs::create_directories(folder + "/content/cat" + std::to_string(d));
  for (int i = 0; i < articles; ++i) {
    std::ofstream(folder + "/content/cat" + std::to_string(i % topDepartments + 1) + "/a" + std::to_string(i) + ".md")
        << "---\ntitle: \"Ciotola in ceramica dipinta numero " << i << "\"\ncodice: ART-" << i
        << "\nprezzo: \"EUR 12,50\"\n---\n"
        << prose << "\n";
  }
}

}  // namespace kv::bench
