#pragma once
// The picture that a cell of a sheet names: one of the shop, or a file that is taken over.

#include <optional>
#include <string>
#include <string_view>

namespace kv {

/// Where a picture is.
struct PictureSource {
  std::string name;  ///< in the shop's image folder; empty for a file from elsewhere
  std::string path;
};

/// Finds a picture: by its name in the shop's folder "work", by a path relative to the folder of the sheet, by a full
/// path or a "file://" address. Nothing when there is no such file, or it is none that can be chosen.
std::optional<PictureSource> findPicture(std::string_view cell, const std::string& shopFolder,
                                         const std::string& sheetFolder);

}  // namespace kv
