#pragma once
// Tables that a shop has only once it uses them. In the catalogue they are beside `articoli`, `categorie` and
// `generale`, which keep their columns; in the build database they are there only while they hold a row, so that a shop
// that uses none of them sends the same text as ever. No foreign keys: rows of an article that was deleted stay, and
// serve again when the deletion is undone; numbers of articles are never given twice.

#include <string_view>

#include "platform/database/table_info.h"

namespace kv {

/// Most characters of a time of delivery.
inline constexpr int deliveryWidth = 100;

/// `unita`: content and measure of an article. ID (of the article), contenuto (amount), misura ("kg", "l", "m", "pz").
TableInfo unitTable();
/// `produttori`: makers with the person responsible in the European Union. ID (automatic), nome, indirizzo, contatto,
/// responsabile, resp_indirizzo, resp_contatto.
TableInfo makersTable();
/// `sicurezza`: the maker chosen for an article or a department. chiave ("12" or "cat007"), produttore (ID of a maker).
TableInfo safetyTable();
/// `chiave_ordini`: the key that signs requests for orders, one row. ID (1), chiave (64 hexadecimal digits). No part of
/// the undo history.
TableInfo orderKeyTable();
inline constexpr std::string_view orderKeyTableName = "chiave_ordini";
/// `consegna`: the time of delivery of an article or a department. chiave ("12" or "cat007"), tempo in each language.
TableInfo deliveryTable();

/// `kv_unita` of the build database: the rows of `unita` that are complete.
TableInfo sentUnitTable();
/// `kv_produttori`: the makers that some article has.
TableInfo sentMakersTable();
/// `kv_sicurezza`: ID of an article, produttore.
TableInfo sentSafetyTable();
/// `kv_consegna`: ID of an article with a time of delivery of its own ("12"), or of a department with its own or an
/// inherited one ("cat007"); tempo in each language.
TableInfo sentDeliveryTable();
/// `kv_minimi`: ID of an article; minimo (the lowest price of the time before a reduction, without VAT) and giorni (the
/// days that it was looked for in), one of each for each price list, null where nothing is reduced.
TableInfo sentLowestTable();

}  // namespace kv
