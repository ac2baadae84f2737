#include "workbench_shop.h"

#include <cstdlib>
#include <filesystem>
#include <utility>

#include "bench_shop.h"
#include "platform/database/database.h"
#include "platform/files/files.h"

namespace kv::bench {

namespace fs = std::filesystem;

WorkbenchShop::WorkbenchShop(std::string folder, const WorkbenchSize& size) : folder_(std::move(folder)) {
  BenchShop(folder_, size.articles, 4, size.departments);
  run("INSERT INTO lingue (lingua1, lingua2, lingua3, lingua4) VALUES ('italiano', 'inglese', 'francese', 'tedesco');"
      "UPDATE generale SET template = 'classico';"
      "UPDATE articoli SET catID = '" +
      std::string(largestDepartment) + "' WHERE ID <= " + std::to_string(size.inLargest) +
      ";UPDATE categorie SET hafigli = 1 WHERE ID IN (SELECT genitore FROM categorie)");
  if (!writeText(folder_ + "/app/serverpath.net", folder_ + "/shop\r\n")) std::abort();
}

void WorkbenchShop::spoil() const {
  run("UPDATE articoli SET ordinamento = ordinamento + 3; UPDATE categorie SET ordinamento = ordinamento + 3");
  fs::remove_all(folder_ + "/shop/backup");
}

void WorkbenchShop::floor() const {
  fs::remove(folder_ + "/copy.mdb");
  fs::copy_file(folder_ + "/shop/catalog.mdb", folder_ + "/copy.mdb");
  run("UPDATE articoli SET ordinamento = ordinamento + 5; UPDATE categorie SET ordinamento = ordinamento + 5");
  auto catalogue = Database::open(folder_ + "/shop/catalog.mdb", OpenMode::Shared);
  auto rows = catalogue->prepare("SELECT ID, genitore, titolo, livello FROM categorie ORDER BY livello, ordinamento");
  while (*rows->step()) {
  }
  rows = catalogue->prepare("SELECT ID FROM articoli WHERE catID = '" + std::string(largestDepartment) +
                            "' ORDER BY ordinamento");
  while (*rows->step()) {
  }
}

void WorkbenchShop::run(const std::string& statements) const {
  auto catalogue = Database::open(folder_ + "/shop/catalog.mdb", OpenMode::Shared);
  if (!catalogue || !catalogue->begin() || !catalogue->execute(statements) || !catalogue->commit()) std::abort();
}

}  // namespace kv::bench
