#pragma once
// Fills an empty catalogue from seed rows, and completes what follows from them:
//   categorie   ID and pagina from contatore, genitore "###" when none is given, livello, hafigli
//   articoli    a price or variant that is not given for listino 1 to 9 is that of listino 0
//   both        ordinamento from 100 in steps of 5, which is what opening a shop would renumber them to
//   paesi       strID
//   zona1..8    amounts and weights that are not given are 0
//   pictures    imgX and imgY of every immagine column, read from the picture's file
//   everywhere  a flag that is not given is false
// Values: flags are "true" or "false"; "@name" is the key of the row of that name; an amount may be given with VAT
// as "18.00 ivato 22" and is stored without it.

#include <map>
#include <string>
#include <vector>

#include "platform/database/database.h"
#include "platform/database/table_info.h"
#include "platform/database/value.h"
#include "platform/ports/result.h"
#include "seed_file.h"

namespace kv {

class CatalogueSeeder {
 public:
  /// pictures: the folder that holds the files named in the columns immagine*.
  CatalogueSeeder(Database& catalogue, std::string pictures);

  /// Inserts the rows in order. Malformed or Missing, `where` being "file:line".
  Result<> insert(const std::vector<SeedRow>& rows);
  /// Numbers departments and articles, after the last insert().
  Result<> number();

 private:
  struct Edit;
  Result<> insertRow(const SeedRow& row);
  Result<Value> valueOf(const SeedField& field, const ColumnInfo& column) const;
  /// The table of a row, read from the catalogue once.
  Result<const TableInfo*> tableOf(const SeedRow& row);
  /// Sets what the row gives.
  Result<> setFields(Edit& edit) const;
  /// Sets what follows from it.
  Result<> complete(Edit& edit);
  static Result<> completePrices(Edit& edit);
  Result<> completeDepartment(Edit& edit);
  Result<> completeZone(Edit& edit) const;
  Result<> completeCountry(Edit& edit) const;
  Result<> measurePictures(Edit& edit) const;

  Database& catalogue_;
  std::string pictures_;
  std::map<std::string, TableInfo> tables_;
  std::map<std::string, Value> keys_;  // by the name of the row
};

}  // namespace kv
