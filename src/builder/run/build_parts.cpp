#include "builder/run/build_parts.h"

#include "store/upgrade/script_patches.h"

namespace kv {

BuildParts shopBuildParts(Session& session, const Environment& env) {
  BuildParts parts;
  parts.PatchScript = [&session, &env](const std::string& codePool) {
    kv::PatchScript(codePool, readPatchFacts(session.catalogue, env.settings));
  };
  return parts;
}

}  // namespace kv
