#include "shell/cli/bulk_commands.h"

#include <algorithm>
#include <set>

#include "commerce/replication/list_replication.h"
#include "platform/files/files.h"
#include "platform/ports/failure_text.h"
#include "shell/cli/cli_session.h"
#include "store/upgrade/shop_upgrade.h"

namespace kv {
namespace {

CliOutcome outcomeOf(BulkEnd end) { return end == BulkEnd::Done ? CliOutcome::Done : CliOutcome::Failed; }

CliOutcome failed(Environment& env, const Error& error) {
  env.user.message(failureText(error), Icon::Critical);
  return CliOutcome::Failed;
}

bool openFor(CliSession& open, const std::string& shop, const BulkOptions& options) {
  return options.dryRun ? open.openToLook(shop) : open.open(shop);
}

/// The preview as lines whose fields are parted by tabs.
void printPrices(const PriceSurvey& survey, const PricePreview& preview, const PriceRule& rule, std::ostream& out) {
  for (const std::uint32_t index : preview.changed) {
    const SurveyedPrice& price = survey.prices[index];
    const PriceOwner& owner = survey.owners[price.owner];
    out << owner.code << '\t' << owner.title << '\t' << priceName(price) << '\t' << shownPrice(price.before) << '\t'
        << newPrice(price.before, rule) << '\n';
  }
}

Result<bool> hasDepartment(Database& catalogue, const std::string& ID) {
  if (ID.empty()) return true;
  auto query = catalogue.prepare("SELECT 1 FROM categorie WHERE ID = ?1");
  if (!query) return fail(query.error());
  query->bind(1, ID);
  return query->step();
}

std::string joined(const std::vector<std::string>& texts) {
  std::string list;
  for (const std::string& text : texts) list += (list.empty() ? "" : ", ") + text;
  return list;
}

/// The modules whose filled files are made from a template that is new: an OK in their dialog fills it again.
std::vector<std::string> modulesToConfirm(const std::vector<std::string>& files) {
  std::set<std::string> modules;
  for (const std::string& file : files) {
    const bool isTemplate = file.ends_with("form.kpg") || file.ends_with(".new");
    if (isTemplate) modules.insert(file.substr(0, file.find('/')));
  }
  return {modules.begin(), modules.end()};
}

void printUpgrade(const ShopUpgrade& upgrade, bool dryRun, std::ostream& out) {
  if (upgrade.isEmpty()) {
    out << "Il negozio è già aggiornato.\n";
    return;
  }
  out << (dryRun ? "Il negozio sarebbe aggiornato.\n" : "Il negozio è stato aggiornato.\n");
  const auto line = [&out](const char* what, const std::vector<std::string>& texts) {
    if (!texts.empty()) out << what << ": " << joined(texts) << '\n';
  };
  line("Colonne aggiunte", upgrade.columns);
  line("File rinnovati", upgrade.files);
  line("Conservati", upgrade.kept);
  line("Sistemi di pagamento da confermare con OK", modulesToConfirm(upgrade.files));
}

}  // namespace

CliOutcome changePrices(const std::string& shop, const BulkOptions& options, Environment& env, std::ostream& out) {
  const PriceChange change{
      {options.lists, options.department, options.offers, options.variants}, options.percent, options.round};
  CliSession open(env);
  if (!openFor(open, shop, options)) return CliOutcome::Failed;
  Database& catalogue = open.session.catalogue;
  const auto known = hasDepartment(catalogue, options.department);
  if (!known) return failed(env, known.error());
  if (!*known) return refused(env, "Il reparto '" + options.department + "' non esiste");
  const auto percentage = readPercentage(options.percent);
  if (options.dryRun && !percentage) return refused(env, std::string(invalidPercentage));
  const PriceRule rule = ruleOfPercentage(percentage.value_or(0), options.round);
  const auto survey = surveyPrices(catalogue, change.selection);
  if (!survey) return failed(env, survey.error());
  const PricePreview preview = previewPrices(*survey, rule);
  if (options.dryRun) {
    printPrices(*survey, preview, rule, out);
    out << previewSummary(*survey, preview, rule) << '\n';
    return CliOutcome::Done;
  }
  const BulkEnd end = ModificaPrezzi(catalogue, change, env.user);
  if (end == BulkEnd::Done) out << "Prezzi modificati: " << preview.changed.size() << '\n';
  return outcomeOf(end);
}

CliOutcome replicateList(const std::string& shop, const BulkOptions& options, Environment& env, std::ostream& out) {
  ListReplication replication;
  replication.source = options.from;
  replication.destinations = options.to;
  replication.percentage = options.percent.empty() ? "0" : options.percent;
  replication.whole = options.round;
  replication.offers = options.offers;
  replication.quantityDiscounts = options.quantityDiscounts;
  replication.variants = options.variants;
  replication.departmentDiscounts = options.departmentDiscounts;
  replication.restrictions = options.restrictions;
  const auto percentage = readPercentage(replication.percentage);
  if (!percentage) return refused(env, std::string(invalidPercentage));
  CliSession open(env);
  if (!openFor(open, shop, options)) return CliOutcome::Failed;
  Database& catalogue = open.session.catalogue;
  const auto count = countReplication(catalogue, replication, ruleOfPercentage(*percentage, options.round));
  if (!count) return failed(env, count.error());
  const BulkEnd end = options.dryRun ? BulkEnd::Done : ReplicaListino(catalogue, replication, env.user);
  if (end == BulkEnd::Done) out << count->text(!options.dryRun) << '\n';
  return outcomeOf(end);
}

CliOutcome replicateLanguage(const std::string& shop, const BulkOptions& options, Environment& env, std::ostream& out) {
  LanguageReplication replication;
  replication.source = options.from;
  replication.destination = static_cast<int>(std::ranges::find(options.to, true) - options.to.begin());
  replication.parts = options.parts;
  replication.onlyEmpty = options.onlyEmpty;
  CliSession open(env);
  if (!openFor(open, shop, options)) return CliOutcome::Failed;
  const auto isLanguage = [&](int language) { return language >= 1 && language <= open.session.languageCount; };
  const bool isOne = std::ranges::count(options.to, true) == 1;
  if (!isOne || !isLanguage(replication.source) || !isLanguage(replication.destination) ||
      replication.source == replication.destination) {
    return refused(env, "Origine e destinazione sono due lingue diverse del negozio, da 1 a " +
                            std::to_string(open.session.languageCount));
  }
  Database& catalogue = open.session.catalogue;
  const auto count = countReplication(catalogue, replication);
  if (!count) return failed(env, count.error());
  const BulkEnd end = options.dryRun ? BulkEnd::Done : ReplicaLingue(catalogue, replication, env.user);
  if (end == BulkEnd::Done) out << count->text(!options.dryRun) << '\n';
  return outcomeOf(end);
}

CliOutcome upgradeShop(const std::string& shop, const BulkOptions& options, Environment& env, std::ostream& out) {
  CliSession open(env);
  ShopUpgrade upgrade;
  if (options.dryRun) {
    if (!open.openToLook(shop)) return CliOutcome::Failed;
    upgrade = plannedUpgrade(open.session.catalogue, shop, env.applicationFolder);
  } else {
    env.hooks.AggiornaNegozio = [&](const std::string& folder) {
      upgrade = AggiornaNegozio(folder, env.applicationFolder);
    };
    if (!openFor(open, shop, options)) return CliOutcome::Failed;
  }
  printUpgrade(upgrade, options.dryRun, out);
  return CliOutcome::Done;
}

}  // namespace kv
