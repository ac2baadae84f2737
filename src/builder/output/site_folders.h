#pragma once
// The folders that a build works in, and what is done with them beside the pages: they are swept and marked when a
// build starts, and each language probes whether they can be written.

#include <string>
#include <string_view>

#include "platform/ports/result.h"
#include "platform/ports/user_port.h"

namespace kv {

/// Full paths without trailing separators.
struct SiteFolders {
  std::string shop;     ///< the shop's own folder: databases, list of files, pools
  std::string online;   ///< what is sent to the host
  std::string scripts;  ///< scripts that a host keeps apart; often the same folder

  /// The path of a file of the online folder.
  std::string onlineFile(std::string_view name) const;
  /// The path of a file of the folder of scripts.
  std::string scriptFile(std::string_view name) const;
  /// The path of a file of the shop's folder.
  std::string shopFile(std::string_view name) const;
};

/// Removes the files that a killed build left unfinished.
void sweepFolders(const SiteFolders& folders);

/// Marks a new build: with the marker of the old one gone, every cached export is stale. `token`: the name of the new
/// marker, without ".sc"; its text is the number of languages. A folder that can't be written is told of by the probe.
void writeMarker(const SiteFolders& folders, const std::string& token, int languages);

/// Writes an empty file into both output folders and deletes it again. Told when one can't be written, after a message
/// that names the folder.
Result<> probeFolders(const SiteFolders& folders, std::string_view probe, UserPort& user);

/// Empties and removes the pools of templates and scripts.
void removePools(const SiteFolders& folders);

}  // namespace kv
