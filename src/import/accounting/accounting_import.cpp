#include "import/accounting/accounting_import.h"

#include <algorithm>

#include "import/accounting/accounting_writer.h"
#include "platform/files/files.h"
#include "store/shop/numbered_backup.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

constexpr std::string_view importingDepartments = "Importazione reparti...";
constexpr std::string_view importingArticles = "Importazione articoli...";
constexpr std::size_t rowsPerStep = 64;  // between two looks at the user

AccountingTarget targetOf(const AccountingRequest& request) {
  return {readAccountingOptions(request.line, request.variant.generation), request.variant.generation};
}

std::string requestedPath(const Settings& settings, const AccountingRequest& request) {
  return request.path.empty() ? accountingPath(settings, request.variant) : request.path;
}

/// Tells of the backup; false when the import ends for want of one.
bool isBackedUp(Session& session, Environment& env, const AccountingVariant& variant) {
  const std::string backup = CreaBackup(session, session.ShopFolder);
  if (backup.empty()) {
    const Question question{std::string(variant.noBackup), Buttons::YesNo, Answer::No, Icon::Exclamation};
    return env.user.question(question) == Answer::Yes;
  }
  env.user.message(
      "E' stato creato un backup del file \"" + std::string(catalogueFile) + "\" col nome \"" + backup + "\"",
      Icon::Information);
  return true;
}

AccountingEnd refuse(Environment& env, const std::string& text) {
  env.user.message(text, Icon::Exclamation);
  return AccountingEnd::NotDone;
}

std::string notOpened(const std::string& path) { return "Il database \"" + path + "\" non può essere aperto"; }

/// The database that a choice of company leads to; nothing when the user left or was told why there is none.
std::optional<std::string> chosenDatabase(Environment& env, const AccountingRequest& request,
                                          const std::string& listPath) {
  const auto list = openAccountingSource(listPath);
  if (!list) {
    env.user.message(notOpened(listPath), Icon::Exclamation);
    return std::nullopt;
  }
  const auto companies = readCompanies(**list);
  if (!companies) {
    env.user.message(std::string(accountingFailed), Icon::Exclamation);
    return std::nullopt;
  }
  const auto chosen = request.company ? request.company(*companies) : std::nullopt;
  if (!chosen) return std::nullopt;
  const auto company = std::ranges::find(*companies, *chosen, &AccountingCompany::ID);
  if (company == companies->end()) {
    env.user.message(std::string(accountingFailed), Icon::Exclamation);
    return std::nullopt;
  }
  return companyPath(company->path, listPath);
}

/// Why a source can't be planned: a table or column that it lacks is named alone, without a number of the system.
std::string reasonOf(const Error& error) {
  return error.kind == ErrorKind::Missing && error.number == 0 ? "manca " + error.what : error.what;
}

/// How the writing of the rows ended.
enum class Written { All, UpToAnError, Cancelled };

/// Shows how far the run has come; false when the user cancels it.
bool isGoingOn(Environment& env, std::string_view caption, std::size_t at, std::size_t count) {
  if (at % rowsPerStep != 0) return true;
  env.user.progress({caption, static_cast<double>(at), static_cast<double>(count)});
  return env.user.yield();
}

Written writePlan(Environment& env, AccountingWriter& writer, const AccountingPlan& plan) {
  for (std::size_t i = 0; i < plan.departments.size(); ++i) {
    if (!isGoingOn(env, importingDepartments, i, plan.departments.size())) return Written::Cancelled;
    if (!writer.writeDepartment(plan.departments[i])) return Written::UpToAnError;
  }
  for (std::size_t i = 0; i < plan.articles.size(); ++i) {
    if (!isGoingOn(env, importingArticles, i, plan.articles.size())) return Written::Cancelled;
    if (!writer.writeArticle(plan.articles[i])) return Written::UpToAnError;
  }
  return Written::All;
}

AccountingEnd showFailure(Environment& env, AccountingEnd end) {
  env.user.message(std::string(accountingFailed), Icon::Critical);
  return end;
}

AccountingEnd writeRows(Session& session, Environment& env, const AccountingRequest& request,
                        const AccountingSource& source) {
  const AccountingTarget target = targetOf(request);
  env.user.progress({importingDepartments, 0, 0});
  auto plan = planAccountingImport(session.catalogue, source, target);
  if (!plan || !session.catalogue.begin()) return showFailure(env, AccountingEnd::NotDone);
  Written written = Written::UpToAnError;
  {
    AccountingWriter writer(session.catalogue, *plan, target.options);
    if (writer.start(request.department, request.model)) written = writePlan(env, writer, *plan);
  }
  if (written == Written::Cancelled) {
    session.catalogue.rollback();
    return AccountingEnd::NotDone;
  }
  // A commit that fails has rolled back.
  if (!session.catalogue.commit()) return showFailure(env, AccountingEnd::NotDone);
  if (written == Written::UpToAnError) return showFailure(env, AccountingEnd::Partial);
  env.user.progress({});
  env.user.message(std::string(accountingDone), Icon::Information);
  return AccountingEnd::Done;
}

}  // namespace

AccountingEnd importAccountingRows(Session& session, Environment& env, const AccountingRequest& request) {
  if (!saveAccountingLine(session.ShopFolder, request.variant, request.line)) {
    return showFailure(env, AccountingEnd::NotDone);
  }
  if (targetOf(request).options.backup && !isBackedUp(session, env, request.variant)) return AccountingEnd::NotDone;
  std::string path = requestedPath(env.settings, request);
  if (path.empty()) return refuse(env, std::string(accountingNotFound));
  if (request.variant.hasCompanies) {
    const auto chosen = chosenDatabase(env, request, path);
    if (!chosen) return AccountingEnd::NotDone;
    path = *chosen;
  }
  const auto source = openAccountingSource(path);
  if (!source) return refuse(env, notOpened(path));
  const AccountingEnd end = writeRows(session, env, request, **source);
  env.user.progress({});
  return end;
}

Result<LocatedSource> locateAccounting(const Settings& settings, const AccountingRequest& request) {
  LocatedSource located{{}, requestedPath(settings, request)};
  if (located.path.empty()) return fail(ErrorKind::Missing, "", std::string(accountingNotFound));
  if (!request.variant.hasCompanies) return located;
  const auto list = openAccountingSource(located.path);
  if (!list) return fail(list.error().kind, located.path, notOpened(located.path));
  auto companies = readCompanies(**list);
  if (!companies) return fail(companies.error().kind, located.path, std::string(accountingFailed));
  located.companies = std::move(*companies);
  const auto chosen = request.company ? request.company(located.companies) : std::nullopt;
  const auto company = std::ranges::find(located.companies, chosen.value_or(std::string()), &AccountingCompany::ID);
  if (company == located.companies.end()) {
    return fail(ErrorKind::Missing, located.path, std::string(accountingFailed));
  }
  located.path = companyPath(company->path, located.path);
  return located;
}

Result<AccountingPlan> previewAccounting(Session& session, const Settings& settings, const AccountingRequest& request) {
  const auto located = locateAccounting(settings, request);
  if (!located) return fail(located.error());
  const auto source = openAccountingSource(located->path);
  if (!source) return fail(source.error().kind, located->path, notOpened(located->path));
  auto plan = planAccountingImport(session.catalogue, **source, targetOf(request));
  if (!plan) {
    return fail(plan.error().kind, located->path, std::string(accountingFailed) + " (" + reasonOf(plan.error()) + ")");
  }
  plan->form = (*source)->description();
  return plan;
}

}  // namespace kv
