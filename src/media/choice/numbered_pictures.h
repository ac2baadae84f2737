#pragma once
// Further pictures of an article, known by the numbers in their names: "vaso-2.jpg" and "vaso-3.jpg" are shown with
// "vaso.jpg", and with "vaso_g.jpg" too, whose last character tells only its size. kvgalleria.php of the site has the
// same rule.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// Most pictures that one page of an article shows.
inline constexpr int mostPictures = 9;

/// The stem of a picture's name without what tells its size: "Vaso" for "Vaso-grande.jpg". Case is kept.
std::string_view pictureSubject(std::string_view name);

/// The pictures that numbers from 2 join to one, in their order, up to the first that isn't there.
/// isThere: whether the folder has a file of this name. None for a name with a path.
std::vector<std::string> numberedPictures(std::string_view name,
                                          const std::function<bool(const std::string& file)>& isThere);

}  // namespace kv
