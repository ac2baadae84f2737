// Orders as files for the accountant: the columns of the back office's file, and the same cells in a sheet.
#include "publish/orders/papers/order_files.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "platform/sheet/spreadsheet.h"
#include "support/sample_orders.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

constexpr const char* orderHeadings =
    "\xEF\xBB\xBF"
    "Codice;Data;Cliente;E-mail;Totale;Valuta;Pagamento;Stato;Ragione sociale;Partita "
    "IVA;Indirizzo;CAP;Città;Provincia;"
    "Paese;Telefono;Note";
constexpr const char* sampleOrderRow =
    "\"A1041\";31/05/2026 09:05;\"Anna Neri\";\"anna@casa.example\";1234,50;\"€\";\"Bonifico\";\"pagato\";"
    "\"Neri & Figli\";\"0123\";\"Via <1>\";\"50100\";\"Firenze\";\"FI\";\"Italia\";\"055 1\";"
    "\"Suonare \"\"due\"\" volte\"";

TEST(OrderFiles, HaveARowForEachOrder) {
  EXPECT_EQ(ordersCsv(std::vector{sampleOrder()}), orderHeadings + std::string("\r\n") + sampleOrderRow + "\r\n");
  EXPECT_EQ(ordersCsv({}), orderHeadings + std::string("\r\n"));
}

TEST(OrderFiles, HaveARowForEachLineThatRepeatsTheOrder) {
  DeskOrder bare;
  bare.code = "B1";
  EXPECT_EQ(
      ordersCsv(std::vector{sampleOrder(), bare}, true),
      orderHeadings +
          std::string(";Riga;Codice articolo;Articolo;Opzioni;Articolo (cliente);Opzioni (cliente);Quantità;Prezzo;"
                      "Totale riga\r\n") +
          sampleOrderRow + ";1;\"V7\";\"Vaso blu\";\"Misura: M\";\"Blue vase\";\"Size: M\";2;600,00;1200,00\r\n" +
          sampleOrderRow + ";2;\"T9\";\"Tazza\";\"\";\"Tazza\";\"\";1;12,50;12,50\r\n" +
          "\"B1\";\"\";\"\";\"\";0,00;\"\";\"\";\"\";\"\";\"\";\"\";\"\";\"\";\"\";\"\";\"\";\"\";;;;;;;;;\r\n");
}

TEST(OrderFiles, KeepAFormulaFromBeingOne) {
  for (const auto& [name, field] : {std::pair("=1+1", "\"'=1+1\""),
                                    {"+39 055", "\"'+39 055\""},
                                    {"-x", "\"'-x\""},
                                    {"@SUM(A1)", "\"'@SUM(A1)\""},
                                    {" \t=1", "\"'=1\""},
                                    {"a=b", "\"a=b\""},
                                    {"\x01\x7F\tx\r\ny ", "\"x y\""},
                                    {"'=1", "\"'=1\""}}) {
    DeskOrder order;
    order.code = name;
    const std::string csv = ordersCsv(std::vector{order});
    EXPECT_EQ(csv.substr(csv.find("\r\n") + 2, csv.find(';', csv.find("\r\n")) - csv.find("\r\n") - 2), field);
  }
}

TEST(OrderFiles, ADateThatIsNoneIsAText) {
  DeskOrder order;
  order.created = "ieri; =1";
  EXPECT_NE(ordersCsv(std::vector{order}).find("\"\";\"ieri; =1\";\"\""), std::string::npos);
}

TEST(OrderFiles, AreOfAPeriodAndOfStates) {
  std::vector<DeskOrder> orders(4);
  for (std::size_t i = 0; i < orders.size(); ++i) {
    orders[i].id = static_cast<std::int64_t>(i);
    orders[i].created = "2026-05-0" + std::to_string(i + 1) + " 23:59:59";
    orders[i].state = i % 2 == 0 ? "nuovo" : "pagato";
  }
  const auto found = [&](const OrderFilter& filter) {
    std::string ids;
    for (const DeskOrder& order : ordersMatching(orders, filter)) ids += std::to_string(order.id);
    return ids;
  };
  EXPECT_EQ(found({}), "3210");
  EXPECT_EQ(found({"2026-05-02", "2026-05-03", {}}), "21");
  EXPECT_EQ(found({"2026-05-02", "", {"nuovo", "annullato"}}), "2");
  EXPECT_EQ(found({"", "2026-04-30", {}}), "");
}

TEST(OrderFiles, ASheetHoldsAmountsAsNumbersAndMomentsAsDates) {
  const TempFolder folder;
  DeskOrder order = sampleOrder();
  order.name = "=1+1";
  const std::string path = folder / "ordini.XLSX";
  ASSERT_TRUE(writeOrderFile(path, std::vector{order}, true));
  const auto sheet = readSpreadsheet(path, SheetForm::Xlsx, {});
  ASSERT_TRUE(sheet) << sheet.error().what;
  EXPECT_EQ(sheet->names, std::vector<std::string>{"Righe"});
  ASSERT_EQ(sheet->cells.rows(), 3U);
  const auto cell = [&](std::size_t row, std::size_t column) {
    const SheetCell found = sheet->cells.cell(row, column);
    return (found.isNumber ? "#" : "") + std::string(found.text);
  };
  EXPECT_EQ(cell(0, 12), "Città");
  EXPECT_EQ(cell(1, 0), "A1041");
  EXPECT_EQ(cell(1, 1), "2026-05-31 09:05:07");
  EXPECT_EQ(cell(1, 2), "=1+1");
  EXPECT_EQ(cell(1, 4), "#1234.5");
  EXPECT_EQ(cell(1, 9), "0123");
  EXPECT_EQ(cell(2, 17), "#2");
  EXPECT_EQ(cell(1, 23), "#2");
  EXPECT_EQ(cell(1, 25), "#1200");
}

TEST(OrderFiles, ALongTextDoesNotKeepTheOthersFromTheSheet) {
  const TempFolder folder;
  DeskOrder order = sampleOrder();
  order.name = std::string(40000, 'x');
  ASSERT_TRUE(writeOrderFile(folder / "a.xlsx", std::vector{order, sampleOrder()}, false));
  const auto sheet = readSpreadsheet(folder / "a.xlsx", SheetForm::Xlsx, {});
  ASSERT_TRUE(sheet) << sheet.error().what;
  EXPECT_EQ(sheet->cells.cell(1, 2).text.size(), 16000U);
  EXPECT_EQ(sheet->cells.cell(2, 2).text, "Anna Neri");
}

TEST(OrderFiles, TakeTheFormThatTheirNameSays) {
  const TempFolder folder;
  ASSERT_TRUE(writeOrderFile(folder / "a.csv", std::vector{sampleOrder()}, false));
  EXPECT_EQ(readBytes(folder / "a.csv"), ordersCsv(std::vector{sampleOrder()}));
  EXPECT_EQ(writeOrderFile(folder / "manca/a.xlsx", {}, false).error().kind, ErrorKind::Missing);
}

}  // namespace
}  // namespace kv::test
