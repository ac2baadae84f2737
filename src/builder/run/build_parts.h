#pragma once
// The steps of other subjects that a build of this program has, whoever starts it.

#include "builder/run/make_pages.h"

namespace kv {

/// The parts of a build of the open shop. Both outlive it; the shop's settings are read when a part runs.
BuildParts shopBuildParts(Session& session, const Environment& env);

}  // namespace kv
