#pragma once
// What the merchant chooses for an import, and the line of digits that keeps it in the shop folder.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "import/accounting/accounting_variants.h"

namespace kv {

/// The number of visibilities of a row of the third generation.
constexpr std::size_t visibilities = 4;
/// What the values 0 to 3 of `Vista` mean, as the boxes say it.
inline constexpr std::array<std::string_view, visibilities> visibilityCaptions{
    "Sempre visibili", "Visibili solo in scarico e fatturazione", "Visibili solo in operazioni di carico",
    "Invisibili"};

struct AccountingOptions {
  bool mark = false;    ///< chkContrassegna: titles get "*" in front
  int price = 1;        ///< cboPrezzo: n of the source column `Vendita`n, 1 to 9
  int offer = 0;        ///< cboOfferta: the same for the offer price; 0: none
  bool addVat = false;  ///< chkIva: prices get the VAT of their row added
  bool update = true;   ///< optAggiornamento: an article that exists is updated
  bool backup = true;   ///< chkBackup: the catalogue is copied first
  int listino = 0;      ///< cboListino: the target price list, 0 to 9; -1: none was chosen
  std::array<bool, visibilities> visible{true, false, false, false};  ///< chkVista: the rows to take

  friend bool operator==(const AccountingOptions&, const AccountingOptions&) = default;
};

/// What OK says without a target price list.
inline constexpr std::string_view listinoMissing = "Impostare il listino di destinazione";

/// Reads a line of options: 7 digits, 11 in the third generation. What is missing, or is no digit that makes sense
/// where it is, keeps its default.
AccountingOptions readAccountingOptions(std::string_view line, int generation);
/// The line of options, without a line end.
std::string accountingLine(const AccountingOptions& options, int generation);
/// The message that keeps OK from closing the dialog; empty when there is none.
std::string refusalOf(const AccountingOptions& options);

/// The options that the shop folder keeps for a variant; with no target price list where there is no such file.
AccountingOptions savedAccountingOptions(const std::string& shopFolder, const AccountingVariant& variant);
/// Keeps a line of options in the shop folder. Failures as writeText.
Result<> saveAccountingLine(const std::string& shopFolder, const AccountingVariant& variant, std::string_view line);

}  // namespace kv
