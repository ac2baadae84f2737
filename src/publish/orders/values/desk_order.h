#pragma once
// An order as the merchant's own machine keeps it: read from the shop's server, shown, printed and summed up here.
// Amounts are in the order's own currency; times are the server's local time as text, "yyyy-mm-dd hh:mm:ss".

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/numbers/money.h"

namespace kv {

/// One line of an order.
struct DeskOrderLine {
  std::int64_t article = 0;  ///< ID in the catalogue; 0 when the server doesn't know it
  std::string code;
  std::string title;        ///< in the customer's language
  std::string choices;      ///< chosen values of variants, likewise; empty without any
  std::string shopTitle;    ///< both in the shop's first language
  std::string shopChoices;  ///< empty without any
  std::int64_t quantity = 0;
  Money price;  ///< of one piece
};

/// What was noted of an order: by the merchant ("nota"), at a change of state ("stato") or when a mail went out
/// ("messaggio").
struct DeskOrderNote {
  std::string when;
  std::string kind;
  std::string text;
};

/// Pieces of one line that a withdrawal gives back.
struct WithdrawnLine {
  std::int64_t line = -1;  ///< index of the order's line; -1 when the order doesn't hold it
  std::string title;       ///< in the customer's language
  std::string choices;     ///< likewise; empty without any
  std::int64_t quantity = 0;
};

/// A withdrawal of the customer from the order or from some of its lines.
struct DeskWithdrawal {
  std::string number;
  std::string created;
  std::string state;                   ///< "ricevuto", "accolto", "rimborsato", "respinto"
  std::vector<WithdrawnLine> lines{};  ///< none from a server of an earlier release
};

/// A whole order.
struct DeskOrder {
  std::int64_t id = 0;  ///< the server's number, which decides between two orders of one code
  std::string code;     ///< what the customer was told
  std::string created;
  std::string modified;       ///< of the server, compared for equality only
  std::int64_t customer = 0;  ///< 0 without an account
  std::string name;
  std::string email;
  Money total;
  std::string currency;
  std::string method;                         ///< of payment, in the shop's first language
  std::string state;                          ///< one of orderStates()
  std::string language;                       ///< code of the customer's language, "it"
  std::string payment;                        ///< the proof of a payment; empty without one
  std::string summary;                        ///< the order as text, for one that doesn't hold its lines
  std::map<std::string, std::string> fields;  ///< of the order form, by name ("CAP", "Citta")
  std::vector<DeskOrderLine> lines;
  std::map<std::string, Money> totals;  ///< "merce", "sconto", "iva", "spese", "ivaspese"; IVA below 0: none is due
  std::vector<DeskOrderNote> notes;     ///< oldest first
  std::vector<DeskWithdrawal> withdrawals;
};

/// The states of an order, in the order in which lists show them.
inline const std::vector<std::string>& orderStates() {
  static const std::vector<std::string> states{"nuovo",     "da verificare", "importo diverso", "pagato",
                                               "rifiutato", "spedito",       "annullato"};
  return states;
}

/// Those of orders to fulfil: not yet paid or looked at.
inline const std::vector<std::string>& openOrderStates() {
  static const std::vector<std::string> states{"nuovo", "da verificare", "importo diverso"};
  return states;
}

}  // namespace kv
