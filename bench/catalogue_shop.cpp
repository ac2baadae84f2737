#include "catalogue_shop.h"

#include <cstdlib>
#include <filesystem>

#include "bench_shop.h"
#include "measure.h"

namespace kv::bench {

CatalogueShop::CatalogueShop(std::string folder, int articles, const std::string& statements)
    : folder_(std::move(folder)) {
  const BenchShop made(folder_, articles, 4);
  auto catalogue = Database::open(shop() + "/catalog.mdb", OpenMode::Shared);
  if (!catalogue || !catalogue->execute(statements)) std::abort();
}

Database CatalogueShop::fresh() const {
  namespace fs = std::filesystem;
  fs::copy_file(shop() + "/catalog.mdb", folder_ + "/work.mdb", fs::copy_options::overwrite_existing);
  auto catalogue = Database::open(folder_ + "/work.mdb", OpenMode::Exclusive);
  if (!catalogue) std::abort();
  return std::move(*catalogue);
}

double CatalogueShop::bareSeconds(std::string_view statements) const {
  Database catalogue = fresh();
  return secondsOf([&] { return catalogue.begin() && catalogue.execute(statements) && catalogue.commit(); });
}

}  // namespace kv::bench
