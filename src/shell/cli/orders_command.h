#pragma once
// The orders of a shop on the command line.

#include <functional>
#include <ostream>
#include <span>

#include "platform/transfer/http_client.h"
#include "publish/orders/values/desk_order.h"
#include "shell/cli/command_line.h"
#include "shell/cli/shop_commands.h"

namespace kv {

/// What the command works with beside the shop.
struct OrdersParts {
  HttpClient& http;
  /// The CSV file of orders, as bytes; unset: --csv is refused.
  std::function<std::string(std::span<const DeskOrder>)> csv{};
};

/// Fetches what is new and prints the orders that are kept, newest first, one a line: code, time, name, total with
/// currency, and state, with tabs between them. --since leaves out those before a day, --csv writes them to a file too.
/// Failed, with a message, when the server could not be asked; what is kept is printed all the same.
CliOutcome listOrders(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out,
                      const OrdersParts& parts);

/// The same with the parts of the program.
CliOutcome listOrdersFromCli(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out);

}  // namespace kv
