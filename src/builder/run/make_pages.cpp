#include "builder/run/make_pages.h"

#include <new>
#include <optional>
#include <stdexcept>

#include "builder/run/build_messages.h"
#include "builder/run/build_phases.h"
#include "builder/values/build_failure.h"

namespace kv {

namespace {

Result<> runPhases(Session& session, Environment& env, const BuildParts& parts, BuildOutput& output,
                   BuildProgress& progress) {
  const auto shop = prepareBuild(session, env, output);
  if (!shop) return fail(shop.error());
  const auto survey = copyShopRows(session.catalogue, *shop, output, progress);
  if (!survey) return fail(survey.error());
  std::optional<ShippingTables> shipping;
  for (int number = 1; number <= shop->languages.count; ++number) {
    const LanguageInputs inputs{session.catalogue, *shop, *survey, parts, number};
    if (auto made = makeLanguage(inputs, shipping, output, progress); !made) return made;
  }
  if (auto copied = copySideTables(session.catalogue, *shop, env.clock.now(), output); !copied) return copied;
  return finishBuild(*shop, output, progress);
}

/// The phases, with memory that runs out as a failure: the pages of a department are held as a whole.
Result<> runWithinMemory(Session& session, Environment& env, const BuildParts& parts, BuildOutput& output,
                         BuildProgress& progress) {
  try {
    return runPhases(session, env, parts, output, progress);
  } catch (const std::bad_alloc&) {
    return fail(ErrorKind::Full, "MakePages", "out of memory", outOfTextSpace);
  } catch (const std::length_error&) {
    return fail(ErrorKind::Full, "MakePages", "text too long", outOfTextSpace);
  }
}

BuildOutcome endOf(const Result<>& run, BuildOutput& output, UserPort& user) {
  if (run) return BuildOutcome::Done;
  output.abandon();
  const std::string& folder = output.folders().online;
  switch (run.error().kind) {
    case ErrorKind::Cancelled:
      return BuildOutcome::Cancelled;
    case ErrorKind::Told:
      if (output.isIncomplete()) user.message(closingLines(folder), Icon::Exclamation);
      return BuildOutcome::Failed;
    default:
      user.message(buildFailureText(run.error(), folder), Icon::Critical);
      return BuildOutcome::Failed;
  }
}

}  // namespace

BuildOutcome MakePages(Session& session, Environment& env, const BuildParts& parts, BuildCounts* counts) {
  const NoKeptStatements once(session.catalogue);
  BuildOutput output(env.user, siteFolders(session), session.smartBuild);
  BuildProgress progress(env.user);
  const BuildOutcome outcome = endOf(runWithinMemory(session, env, parts, output, progress), output, env.user);
  if (counts != nullptr) {
    const PageCounts& pages = output.pageCounts();
    *counts = {progress.departments(), progress.articles(), session.languageCount,
               pages.written,          pages.unchanged,     output.filesListed()};
  }
  if (outcome == BuildOutcome::Done) {
    env.user.message("Creazione del negozio terminata. Aggiornare il sito per rendere effettive le modifiche.",
                     Icon::Information);
  }
  return outcome;
}

}  // namespace kv
