#include "support/golden_shop.h"

#include <filesystem>
#include <regex>

#include "platform/database/database.h"
#include "platform/database/table_info.h"
#include "platform/database/value.h"
#include "platform/files/files.h"
#include "platform/text/text.h"
#include "sqlexport/full_export.h"
#include "store/schema/schema.h"
#include "store/shop/load_shop.h"
#include "store/shop/session_start.h"

namespace kv::test {
namespace {

// Folders of a case's parts, and where their files go: below the application (A) or the shop (S).
struct InputFolder {
  std::string_view part;
  char owner;
  std::string_view folder;
};
constexpr InputFolder inputFolders[] = {{"template/", 'A', "template/prova/"}, {"code/", 'A', "code/"},
                                        {"shopcode/", 'S', "code/"},           {"backoffice/", 'A', "backoffice/"},
                                        {"languages/", 'A', "languages/"},     {"work/", 'S', "work/"}};

template <class T>
T expectValue(Result<T> result, const std::string& what) {
  EXPECT_TRUE(result.has_value()) << what << ": "
                                  << (result ? std::string() : result.error().where + " " + result.error().what);
  return result ? std::move(*result) : T{};
}
void expectDone(const Result<>& result, const std::string& what) {
  EXPECT_TRUE(result.has_value()) << what << ": "
                                  << (result ? std::string() : result.error().where + " " + result.error().what);
}

// The rows of a case after those of the tables that always have one, of which the case need not speak.
std::string rowsWithDefaults(const std::string& rows) {
  std::string text = "[generale]\n[pagamento]\n[lingue]\nlingua1 = italiano\n";
  for (int zone = 1; zone <= 8; ++zone) text += "[zona" + std::to_string(zone) + "]\n";
  return text + rows;
}

std::string describe(const Shown& shown) {
  return std::string("[") + nameOf(shown.icon) + "] " + replaceAll(shown.text, "\n", "\n  ") + "\n";
}

TxtarPart textPart(const std::string& name, std::string text) {
  if (!text.empty() && text.back() != '\n') text += "\n";
  return {name, {}, std::move(text)};
}

// The dumps of a database's tables that have rows; what is wrong with it is a failure of the test.
std::vector<TableDump> dumpDatabase(const std::string& path, DumpOptions options) {
  auto database = expectValue(Database::open(path, OpenMode::ReadOnly), path);
  const bool source = options.hideEmpty;
  std::vector<TableDump> dumps;
  for (const TableInfo& table : expectValue(database.tables(), path)) {
    options.hideEmpty = source && table.name == "categoria";
    TableDump dump{table.name, 0, ""};
    dump.text = expectValue(dumpTable(database, table, options, &dump.rows), table.name);
    if (dump.rows > 0) dumps.push_back(std::move(dump));
  }
  return dumps;
}

std::string textOf(const std::vector<TableDump>& dumps) {
  std::string text;
  for (const TableDump& dump : dumps) text += dump.text;
  return text;
}

ProducedPart producedText(const Txtar& archive, TxtarPart whole, std::string content) {
  const TxtarPart* wanted = archive.find(whole.name);
  TxtarPart shown = wanted != nullptr ? excerpt(whole, *wanted) : whole;
  return {std::move(whole), std::move(shown), std::move(content), {}};
}

ProducedPart producedRows(const Txtar& archive, const std::string& name, const std::string& path, bool source) {
  std::vector<TableDump> tables = dumpDatabase(path, {"", "", source, false});
  const TxtarPart whole = textPart(name, textOf(tables));
  TxtarPart shown = whole;
  if (const TxtarPart* wanted = archive.find(name); wanted != nullptr && isExcerpt(*wanted)) {
    shown.text = textOf(dumpDatabase(path, {wanted->value("only"), wanted->value("rows"), source, true}));
    shown = excerpt(shown, *wanted);
  }
  return {whole, std::move(shown), "", std::move(tables)};
}

}  // namespace

GoldenShop::GoldenShop(const Txtar& archive) : shop_(root_ / "shop"), application_(root_ / "app") {
  writeInputs(archive);
  makeDatabases(archive);
  open();
}

void GoldenShop::writeInputs(const Txtar& archive) {
  for (const char* folder : {"template/prova", "code", "backoffice", "languages"})
    expectDone(createFolders(joinPath(application_, folder)), folder);
  for (const char* folder : {"work", "online", "scripts", "db", "code"})
    expectDone(createFolders(joinPath(shop_, folder)), folder);
  for (const TxtarPart& part : archive.parts) {
    std::string path;
    for (const InputFolder& input : inputFolders) {
      if (part.name.starts_with(input.part))
        path = joinPath(input.owner == 'A' ? application_ : shop_,
                        std::string(input.folder) + part.name.substr(input.part.size()));
    }
    if (part.name == "tags/shoptag.tag") path = joinPath(shop_, "shoptag.tag");
    if (part.name == "kvftp.ini") path = joinPath(shop_, "kvftp.ini");
    if (part.name == "tags/personal.tag") path = joinPath(application_, "personal.tag");
    if (path.empty()) continue;
    expectDone(createFolders(std::string(folderOf(path))), path);
    expectDone(writeBytes(path, partBytes(part)), path);
  }
  if (const TxtarPart* steps = archive.find("builds")) {
    for (const std::string_view line : splitLines(steps->text)) steps_.emplace_back(line);
  } else {
    steps_ = {"build"};
  }
  expectDone(settings_.set(settingsSection, "smartbuild", "1"), "smartbuild");
  if (const TxtarPart* settings = archive.find("settings")) {
    for (const std::string_view line : splitLines(settings->text)) {
      const std::size_t equals = line.find('=');
      expectDone(settings_.set(settingsSection, line.substr(0, equals), line.substr(equals + 1)), std::string(line));
    }
  }
}

void GoldenShop::makeDatabases(const Txtar& archive) {
  expectDone(createDatabase(joinPath(shop_, "catalog.mdb"), catalogueTables()), "catalog.mdb");
  expectDone(createDatabase(joinPath(shop_, "kvftp.mdb"), transferTables()), "kvftp.mdb");
  expectDone(createDatabase(joinPath(shop_, "source.new"), tagDatabaseTables()), "source.new");
  expectDone(createDatabase(joinPath(shop_, "new.mdb"), buildDatabaseTables()), "new.mdb");
  auto catalogue = Database::open(joinPath(shop_, "catalog.mdb"), OpenMode::Shared);
  if (!catalogue) return expectDone(fail(catalogue.error()), "catalog.mdb");
  const TxtarPart* rows = archive.find("rows");
  expectDone(insertRows(*catalogue, rowsWithDefaults(rows != nullptr ? rows->text : "")), "rows");
  expectDone(setField(*catalogue, "generale", "*", "versione", "1002"), "versione");
}

void GoldenShop::open() {
  session_.ShopFolder = shop_;
  session_.smartBuild = wantsSmartBuild(settings_);
  Environment env{user_, settings_, clock_, openRandom_, application_, {}};
  EXPECT_EQ(CaricaNegozio(session_, env), LoadResult::Opened);
  EXPECT_TRUE(user_.shown.empty()) << describe(user_.shown.front());
}

void GoldenShop::run() {
  for (const std::string& step : steps_) {
    if (step == "build") {
      build();
    } else if (step == "export") {
      exportSql();
    } else {
      apply(step);
    }
  }
}

void GoldenShop::apply(const std::string& step) {
  static const std::regex set("set (\\S+) (\\S+) (\\S+) = (.*)"), setting("setting (\\S+) = (.*)");
  std::smatch words;
  if (std::regex_match(step, words, set)) {
    expectDone(setField(session_.catalogue, words[1], words[2], words[3], words[4].str()), step);
  } else if (std::regex_match(step, words, setting)) {
    expectDone(settings_.set(settingsSection, words[1].str(), words[2].str()), step);
  } else {
    ADD_FAILURE() << "not a step: " << step;
  }
}

void GoldenShop::build() {
  // Each build draws its own token: abcdefghijklmnopqrst.
  FixedRandom random;
  Environment env{user_, settings_, clock_, random, application_, {}};
  user_.shown.clear();
  outcome_ = MakePages(session_, env);
  messages_ += std::string("outcome: ") + (outcome_ == BuildOutcome::Done ? "Done" : "Failed") + "\n";
  for (const Shown& shown : user_.shown) {
    Shown trimmed = shown;
    while (trimmed.text.ends_with("\n")) trimmed.text.pop_back();
    messages_ += withPlaceholders(describe(trimmed));
  }
}

void GoldenShop::exportSql() {
  LockStatements lock;
  readLockOption(shop_, lock);
  user_.shown.clear();
  ExportFullSql({shop_, session_.onlineFolder, user_, settings_, lock}, "abcdefghijklmnopqrst");
  for (const Shown& shown : user_.shown) messages_ += withPlaceholders(describe(shown));
}

std::string GoldenShop::withPlaceholders(std::string text) const {
  return replaceAll(replaceAll(std::move(text), shop_, "<shop>"), application_, "<app>");
}

void GoldenShop::addFiles(const std::string& folder, const std::string& prefix,
                          std::vector<ProducedPart>& parts) const {
  static const std::regex version(R"((<meta name="generator" content="Korvane )\d+\.\d+\.\d+(">))");
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string bytes = expectValue(readBytes(entry.path().string()), entry.path().string());
    files[entry.path().filename().string()] = std::regex_replace(bytes, version, "$1<version>$2");
  }
  std::erase_if(files, [&](const auto& file) {
    static const std::regex cache("abcdefghijklmnopqrst(db(?:del)?(?:_l[234])?)\\.sc");
    std::smatch found;
    if (!std::regex_match(file.first, found, cache)) return false;
    const auto published = files.find(found[1].str() + ".sql");
    return published != files.end() && published->second == file.second;
  });
  for (const auto& [name, bytes] : files) parts.push_back({bytesPart(prefix + name, bytes), {}, bytes, {}});
}

std::vector<ProducedPart> GoldenShop::produced(const Txtar& archive) const {
  const TxtarPart messages = textPart("want/messages.txt", messages_);
  std::vector<ProducedPart> parts{producedText(archive, messages, messages.text)};
  if (const auto list = readBytes(joinPath(shop_, "kvftp.dat"))) {
    const TxtarPart part = textPart("want/kvftp.dat", replaceAll(withPlaceholders(*list), "\r\n", "\n"));
    parts.push_back(producedText(archive, part, part.text));
  }
  if (outcome_ == BuildOutcome::Done) {
    parts.push_back(producedRows(archive, "want/db/sql.txt", joinPath(shop_, "db/sql.mdb"), false));
    parts.push_back(producedRows(archive, "want/source.txt", joinPath(shop_, "source.mdb"), true));
  }
  std::vector<ProducedPart> files;
  addFiles(joinPath(shop_, "online"), "want/online/", files);
  addFiles(joinPath(shop_, "scripts"), "want/scripts/", files);
  for (ProducedPart& file : files)
    parts.push_back(producedText(archive, std::move(file.whole), std::move(file.content)));
  return parts;
}

std::string GoldenShop::writeProduced(const std::vector<ProducedPart>& parts) const {
  const std::string folder = root_ / "produced";
  for (const ProducedPart& part : parts) {
    const std::string path = joinPath(folder, part.whole.name);
    expectDone(createFolders(std::string(folderOf(path))), path);
    expectDone(writeBytes(path, part.whole.text), path);
  }
  return folder;
}

std::string GoldenShop::leftovers() {
  std::string found;
  if (outcome_ != BuildOutcome::Done) return found;
  if (folderExists(joinPath(shop_, "tmp"))) found += "the scratch folder tmp is still there\n";
  if (const auto names = listFiles(joinPath(shop_, "db"), "*"); names.size() != 1)
    found += "db holds more than sql.mdb\n";
  const auto token = session_.catalogue.scalar("SELECT db_security FROM generale");
  if (!token || asText(*token) != "abcdefghijklmnopqrst") found += "db_security isn't the token of the build\n";
  return found;
}

}  // namespace kv::test
