// Feeds of products: each item is a row, its own fields are cells, and what is no feed is refused.
#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "platform/sheet/spreadsheet.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

class Feeds : public ::testing::Test {
 protected:
  std::string read(const std::string& bytes, const SheetRequest& request = {}) {
    EXPECT_TRUE(writeBytes(root / "feed.xml", bytes));
    const auto form = sheetFormOf(root / "feed.xml");
    if (!form || *form != SheetForm::Feed) return "no feed";
    const auto content = readSpreadsheet(root / "feed.xml", *form, request);
    if (!content) {
      failure = content.error();
      return "refused";
    }
    std::string text;
    for (std::size_t row = 0; row < content->cells.rows(); ++row) {
      text += std::to_string(content->cells.line(row)) + ":";
      for (std::size_t i = 0; i < content->cells.width(row); ++i) {
        text += (i > 0 ? "|" : "") + std::string(content->cells.cell(row, i).text);
      }
      text += "\n";
    }
    return text;
  }
  TempFolder root;
  Error failure{};
};

TEST_F(Feeds, GiveARowForEachItemWithItsOwnFieldsAlone) {
  EXPECT_EQ(read("<?xml version='1.0'?>\n<rss version='2.0' xmlns:g='x'><channel><title>Bottega</title>\n"
                 "<item><title>\n Tazza &amp; piattino </title><g:id>T-1</g:id><g:price>12.50 EUR</g:price>"
                 "<g:shipping><g:country>IT</g:country><g:price>5 EUR</g:price></g:shipping></item>"
                 "<item><g:id>T-2</g:id><title><![CDATA[<b>Calice</b>]]></title>"
                 "<g:product_type>Vetri &gt; Calici</g:product_type><g:product_type>Vini</g:product_type></item>"
                 "</channel></rss>"),
            "1:g:id|g:price|g:shipping|g:product_type|title\n"
            "2:T-1|12.50 EUR|||Tazza & piattino\n"
            "3:T-2|||Vetri > Calici|<b>Calice</b>\n");
}

TEST_F(Feeds, OfAtomHaveTheirLinksInAttributes) {
  EXPECT_EQ(read("<feed xmlns='a' xmlns:g='x'><title>B</title><entry><id>tag:1</id><link href='http://x/1'/>"
                 "<g:id>T-1</g:id></entry></feed>"),
            "1:g:id|id|link\n2:T-1|tag:1|http://x/1\n");
}

TEST_F(Feeds, AreReadInTheEncodingsThatShopsWrite) {
  const std::string item = "<rss><item><id>\xE8 \x80</id></item></rss>";
  EXPECT_EQ(read("<?xml version='1.0' encoding='Windows-1252'?>" + item), "1:id\n2:è €\n");
  EXPECT_EQ(read("\xEF\xBB\xBF<?xml version='1.0'?><rss><item><id>è</id></item></rss>"), "1:id\n2:è\n");
}

TEST_F(Feeds, ThatAreDamagedOrNoneAreRefusedWithTheReason) {
  EXPECT_EQ(read("<?xml version='1.0'?><rss><item><id>1</id>"), "refused");
  EXPECT_EQ(failure.kind, ErrorKind::Corrupt);
  EXPECT_EQ(read("<?xml version='1.0'?><html><p>x</p></html>"), "refused");
  EXPECT_EQ(failure.kind, ErrorKind::Malformed);
  EXPECT_EQ(read("<?xml version='1.0'?><!DOCTYPE rss [<!ENTITY a 'aa'>]><rss><item><id>&a;</id></item></rss>"),
            "refused");
  EXPECT_EQ(failure.kind, ErrorKind::Malformed);
  EXPECT_EQ(read("<h1>codice</h1>"), "no feed");
}

TEST_F(Feeds, BeyondTheLimitsAreRefused) {
  const std::string feed = "<rss><item><id>1</id><a>x</a></item><item><id>2</id></item></rss>";
  SheetRequest columns, rows, texts;
  columns.limits.columns = 1;
  EXPECT_EQ(read(feed, columns), "refused");
  EXPECT_EQ(failure.number, TooLargeSheet);
  rows.limits.rows = 2;
  EXPECT_EQ(read(feed, rows), "refused");
  EXPECT_EQ(failure.number, TooLargeSheet);
  EXPECT_EQ(read("<rss><item><id>" + std::string((std::size_t{1} << 20) + 1, 'x') + "</id></item></rss>"), "refused");
  EXPECT_EQ(failure.number, TooLargeSheet);
  texts.limits.textBytes = 5;
  EXPECT_EQ(read(feed, texts), "refused");
  EXPECT_EQ(failure.number, TooLargeSheet);
  SheetRequest bytes;
  bytes.limits.unpacked = feed.size() - 1;
  EXPECT_EQ(read(feed, bytes), "refused");
  EXPECT_EQ(failure.number, TooLargeSheet);
}

TEST_F(Feeds, WhoseItemsWouldTakeMemoryAreRefused) {
  const std::string longName(100'000, 'x'), longest(std::size_t{1} << 20, 'x');
  const auto isTooLarge = [&](const std::string& item, const SheetRequest& request = {}) {
    failure = {};
    return read("<feed><entry>" + item + "</entry></feed>", request) == "refused" && failure.number == TooLargeSheet;
  };
  EXPECT_TRUE(isTooLarge("<" + longName + "/>")) << "a name";
  EXPECT_TRUE(isTooLarge("<link href='" + longName + "'>" + longest + "</link>"))
      << "an address with the text after it";
  SheetRequest small;
  small.limits.textBytes = 8;
  EXPECT_TRUE(isTooLarge("<a>12345</a><b>6789</b>", small)) << "the fields of one item";
  EXPECT_EQ(read("<feed><entry><a>1234</a></entry></feed>", small), "1:a\n2:1234\n");
}

TEST_F(Feeds, AreReadInPiecesAndLeftBetweenTwoOfThem) {
  std::string feed = "<feed>";
  while (feed.size() < (std::size_t{1} << 20))
    feed += "<entry><id>1</id><shipping>" + std::string(1000, ' ') + "</shipping></entry>";
  feed += "</feed>";
  int asked = 0;
  SheetRequest request;
  request.goOn = [&asked] { return ++asked < 5; };
  EXPECT_EQ(read(feed, request), "refused");
  EXPECT_EQ(failure.kind, ErrorKind::Cancelled);
  EXPECT_EQ(asked, 5);
}

TEST_F(Feeds, ThatAreWrittenOnWhileTheyAreReadAreRefused) {
  SheetRequest request;
  int asked = 0;
  request.goOn = [&] {
    // The first question is that of the first reading, the next one that of the second: the bytes are there by then.
    return ++asked > 1 || writeBytes(root / "feed.xml", "<feed><entry><b>1</b></entry></feed>").has_value();
  };
  EXPECT_EQ(read("<feed><entry><a>1</a></entry></feed>", request), "refused");
  EXPECT_EQ(failure.kind, ErrorKind::InUse);
}

}  // namespace
}  // namespace kv::test
