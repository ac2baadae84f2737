#include "media/choice/picture_choice.h"

#include "media/bitmap/save_jpg.h"
#include "media/choice/picture_names.h"
#include "platform/files/files.h"
#include "platform/ports/failure_text.h"

namespace kv {
namespace {

constexpr int jpegQuality = 90;

}  // namespace

PictureChoice::PictureChoice(Settings& settings, UserPort& user, std::string folder, std::string current)
    : values(readLoadImage(settings)),
      settings_(settings),
      user_(user),
      folder_(std::move(folder)),
      current_(std::move(current)) {}

PicturePreview PictureChoice::preview(const std::string& path) const {
  PicturePreview shown;
  if (tab == PictureTab::Shop) shown.mode = PictureMode::OfShop;
  auto pixels = readPixelsOf(path);
  if (!pixels) return shown;
  shown.size = pixels->size();
  shown.picture.CreateFromPicture(std::move(*pixels));
  if (tab == PictureTab::Shop) return shown;
  shown.mode = PictureMode::AsItIs;
  const ImageSize fitted = reduces() ? fittedSize(shown.size, values.limits) : shown.size;
  if (fitted == shown.size) return shown;
  cDIBSection reduced;
  if (!reduced.Create(fitted.width, fitted.height) || !shown.picture.Resample(reduced)) return {};
  return {PictureMode::Reduced, fitted, std::move(reduced)};
}

bool PictureChoice::takeLimit(std::string_view text, int& limit) {
  const auto taken = limitOf(text);
  if (taken) {
    limit = *taken;
  } else {
    user_.message(std::string(limitMessage), Icon::Exclamation);
  }
  return taken.has_value();
}

Result<std::string> PictureChoice::bringIn(const std::string& path, const PicturePreview& preview) const {
  if (preview.mode == PictureMode::OfShop) return std::string(baseName(path));
  const bool isReduced = preview.mode == PictureMode::Reduced;
  if (auto made = createFolder(folder_); !made) return fail(made.error());
  std::string name = uniquePictureName(folder_, path, isReduced);
  const std::string target = joinPath(folder_, name);
  const Result<> done = isReduced ? SaveJPG(preview.picture, target, jpegQuality) : copyFile(path, target);
  if (!done) return fail(done.error());
  return name;
}

std::optional<std::string> PictureChoice::accept(const std::string& path) {
  const PicturePreview shown = preview(path);
  if (shown.mode == PictureMode::Unreadable) return std::string();
  auto name = bringIn(path, shown);
  if (!name) {
    user_.message(failureText(name.error(), baseName(path)), Icon::Critical);
    return std::nullopt;
  }
  ignore(storeLoadImage(settings_, values), "the next dialog starts with older values");
  return *name;
}

}  // namespace kv
