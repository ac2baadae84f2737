#include "shell/cli/publish_command.h"

#include "platform/ports/failure_text.h"
#include "shell/cli/cli_session.h"
#include "shell/program/publish_setup.h"

namespace kv {
namespace {

constexpr std::string_view sending = "Invio del file ";

/// The files that are sent go to `out`, one a line; the bar goes to the user.
class CliView final : public PublishView {
 public:
  CliView(UserPort& user, std::ostream& out) : user_(user), out_(out) {}
  void title(const std::string& /*text*/) override {}
  void operation(const std::string& text) override {
    caption_ = text;
    if (text.starts_with(sending)) out_ << text.substr(sending.size()) << '\n';
  }
  void dialogue(const std::string& /*line*/) override {}
  void progress(const PublishProgress& progress) override {
    user_.progress({caption_, static_cast<double>(progress.filesDone), static_cast<double>(progress.filesTotal)});
  }

 private:
  UserPort& user_;
  std::ostream& out_;
  std::string caption_;
};

CliOutcome nameFiles(const PublishJob& job, const UploadOptions& options, Environment& env, std::ostream& out) {
  const auto files = filesToSend(job, options, [&env] { return env.user.yield(); });
  if (!files && files.error().kind == ErrorKind::Cancelled) return CliOutcome::Cancelled;
  const auto surplus = filesToRemove(job, options);
  if (!files || !surplus) return refused(env, failureText(files ? surplus.error() : files.error(), "kvftp.mdb"));
  for (const std::string& name : *files) out << name << '\n';
  out << "File da inviare: " << files->size() << '\n';
  if (options.cleanUpFolders.empty()) return CliOutcome::Done;
  for (const std::string& name : *surplus) out << name << '\n';
  out << "File da eliminare dal server: " << surplus->size() << '\n';
  return CliOutcome::Done;
}

CliOutcome cliOutcomeOf(PublishOutcome outcome) {
  if (outcome == PublishOutcome::Done) return CliOutcome::Done;
  return outcome == PublishOutcome::Cancelled ? CliOutcome::Cancelled : CliOutcome::Failed;
}

}  // namespace

CliOutcome publishFromCli(const std::string& shop, const PublishFlags& flags, Environment& env, std::ostream& out) {
  CliSession open(env);
  if (!open.open(shop) || !isBuilt(shop, env.user)) return CliOutcome::Failed;
  LockStatements lock;
  auto setup = PublishSetup::of(open.session, env, lock);
  if (!setup) return refused(env, failureText(setup.error()));
  if (flags.all) setup->settings.onlyModified = false;
  const auto transfer = makeTransfer(setup->way.protocol);
  const auto http = makeHttpClient();
  PublishSteps steps;
  steps.exportSql = [&setup](UserPort& user) { return setup->exportSql(user); };
  if (flags.dryRun) {
    if (!prepareDatabase(setup->job, steps, env.user)) return CliOutcome::Cancelled;
    return nameFiles(setup->job, setup->options(), env, out);
  }
  steps.updateDatabase = [&] { return setup->updateDatabase(env.user, *http, [&env] { return env.user.yield(); }); };
  CliView view(env.user, out);
  PublishReport report;
  const PublishOutcome outcome =
      publishShop(setup->job, setup->options(), {*transfer, env.user, view, env.clock, steps}, &report);
  out << reportText(report) << '\n';
  return cliOutcomeOf(outcome);
}

}  // namespace kv
