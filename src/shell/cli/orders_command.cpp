#include "shell/cli/orders_command.h"

#include "platform/files/files.h"
#include "platform/files/private_file.h"
#include "platform/numbers/number_format.h"
#include "platform/ports/failure_text.h"
#include "publish/orders/desk/order_desk.h"
#include "publish/orders/desk/order_list.h"
#include "publish/orders/papers/order_files.h"
#include "publish/orders/values/order_texts.h"
#include "shell/cli/cli_session.h"

namespace kv {
namespace {

void printOrder(const DeskOrder& order, std::ostream& out) {
  out << shownLineOf(order.code) << '\t' << order.created << '\t' << shownLineOf(order.name) << '\t'
      << formatNumber(order.total, "0.00") << ' ' << shownLineOf(order.currency) << '\t' << shownLineOf(order.state)
      << '\n';
}

/// Whether the file was written, or none is wanted; the user knows why it wasn't.
bool wroteCsv(const CommandLine& line, Environment& env, const OrdersParts& parts,
              const std::vector<DeskOrder>& orders) {
  if (!line.has("--csv")) return true;
  const std::string path = absolutePath(line.option("--csv"));
  // It holds customers' data.
  const auto written = writePrivateBytes(path, parts.csv(orders));
  if (!written) env.user.message(failureText(written.error(), path), Icon::Critical);
  return written.has_value();
}

CliOutcome outcomeOf(bool isFetched, Environment& env) {
  if (isFetched) return CliOutcome::Done;
  return failedOrCancelled(env);
}

}  // namespace

CliOutcome listOrders(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out,
                      const OrdersParts& parts) {
  const auto since = typedDay(line.option("--since"));
  if (!since) {
    env.user.message("valore non ammesso per --since: " + line.option("--since"), Icon::Exclamation);
    return CliOutcome::WrongUsage;
  }
  if (line.has("--csv") && !parts.csv) return refused(env, "--csv non è disponibile");
  CliSession open(env);
  if (!open.open(shop)) return CliOutcome::Failed;
  OrderStore store(open.session.ShopFolder);
  OrderDesk desk(store, {[&] { return orderAccess(open.session, env.random); },
                         {parts.http, env.clock, env.random, [&env] { return env.user.yield(); }},
                         env.user});
  if (!desk.open()) return CliOutcome::Failed;
  const CliOutcome fetched = outcomeOf(desk.fetch().has_value(), env);
  const auto orders = store.orders({{}, {}, *since, {}});
  if (!orders) return refused(env, orderStoreFailureText(orders.error()));
  for (const DeskOrder& order : *orders) printOrder(order, out);
  const bool isWritten = wroteCsv(line, env, parts, *orders);
  return fetched == CliOutcome::Done && !isWritten ? CliOutcome::Failed : fetched;
}

CliOutcome listOrdersFromCli(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out) {
  const auto http = makeHttpClient();
  return listOrders(shop, line, env, out, {*http, [](std::span<const DeskOrder> orders) { return ordersCsv(orders); }});
}

}  // namespace kv
