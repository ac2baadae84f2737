#pragma once
// The readers of the forms. For the sources of this folder.

#include "platform/sheet/spreadsheet.h"

namespace kv {

/// The most sheets of a file.
inline constexpr std::size_t mostSheets = 10000;
/// A sheet's name, as much of it as a list shows.
std::string sheetName(std::string_view name);

/// The main part of an XLSX file; an empty text where the file is none.
std::string xlsxMainPart(PackedFile& file);
/// As readSpreadsheet.
Result<SheetContent> readXlsx(PackedFile& file, const SheetRequest& request);
Result<SheetContent> readOds(PackedFile& file, const SheetRequest& request);
/// As readSpreadsheet, of a file of XML; Malformed with NoFault where it has no item with fields.
Result<SheetContent> readFeed(const std::string& path, const SheetRequest& request);
/// The same of the bytes of a file.
Result<SheetContent> readFeedBytes(const std::string& path, std::string_view bytes, const SheetRequest& request);
/// Whether a file that begins so may be a feed.
bool startsLikeFeed(std::string_view bytes);

/// The failure that a listener ended the reading with, where it did; else `read`.
Result<> withListenersFault(Result<> read, bool isFull);

}  // namespace kv
