#include "shell/cli/accounting_command.h"

#include <algorithm>

#include "import/accounting/accounting_import.h"
#include "platform/files/files.h"
#include "shell/cli/cli_session.h"
#include "store/shop/session_facts.h"

namespace kv {
namespace {

constexpr std::size_t mostDigits = 11;

bool areDigits(const std::string& text) {
  return std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

/// The variant that a source speaks for when none is named: a list of companies, or rows with a visibility.
int guessedVariant(const std::string& path, const std::string& digits) {
  const auto source = openAccountingSource(path);
  if (!source) return 0;
  if (readCompanies(**source)) return digits.size() == mostDigits ? 5 : 2;
  return (*source)->rows("Articoli", {"Vista"}) ? 3 : 0;
}

/// The request that the arguments make; nothing when one of them is wrong, which the user is told.
std::optional<AccountingRequest> requestOf(const CommandLine& line, Environment& env) {
  const std::string digits = line.option("--options"), number = line.option("--variant");
  if (digits.size() > mostDigits || !areDigits(digits)) {
    env.user.message("valore non ammesso per --options: " + digits, Icon::Exclamation);
    return std::nullopt;
  }
  if (!number.empty() && (number.size() != 1 || number[0] < '0' || number[0] > '5')) {
    env.user.message("valore non ammesso per --variant: " + number, Icon::Exclamation);
    return std::nullopt;
  }
  AccountingRequest request;
  request.path = absolutePath(line.object);
  const int variant = number.empty() ? guessedVariant(request.path, digits) : number[0] - '0';
  request.variant = accountingVariants().at(static_cast<std::size_t>(variant));
  request.line = digits;
  // Without --company the first of the list, as in the window.
  request.company = [ID = line.option("--company")](const auto& companies) -> std::optional<std::string> {
    if (!ID.empty() || companies.empty()) return ID;
    return companies.front().ID;
  };
  return request;
}

/// The line that the shop keeps, where the arguments give none.
void completeLine(AccountingRequest& request, const std::string& shop) {
  if (!request.line.empty()) return;
  AccountingOptions options = savedAccountingOptions(shop, request.variant);
  options.listino = std::max(options.listino, 0);
  request.line = accountingLine(options, request.variant.generation);
}

}  // namespace

CliOutcome importAccounting(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out) {
  auto request = requestOf(line, env);
  if (!request) return CliOutcome::WrongUsage;
  const bool dryRun = line.has("--dry-run");
  CliSession open(env);
  if (!(dryRun ? open.openToLook(shop) : open.open(shop))) return CliOutcome::Failed;
  completeLine(*request, shop);
  if (dryRun) {
    const auto plan = previewAccounting(open.session, env.settings, *request);
    if (!plan) return refused(env, plan.error().what);
    out << planText(*plan, readAccountingOptions(request->line, request->variant.generation));
    return CliOutcome::Done;
  }
  request->model = open.session.models.empty() ? std::string(fallbackModel) : open.session.models.front();
  const AccountingEnd end = importAccountingRows(open.session, env, *request);
  if (end == AccountingEnd::NotDone) return failedOrCancelled(env);
  return end == AccountingEnd::Done ? CliOutcome::Done : CliOutcome::Failed;
}

}  // namespace kv
