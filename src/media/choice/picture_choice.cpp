#include "media/choice/picture_choice.h"

#include "media/bitmap/save_jpg.h"
#include "media/choice/picture_names.h"
#include "platform/files/files.h"
#include "platform/image/photo_location.h"
#include "platform/ports/failure_text.h"

namespace kv {
namespace {

constexpr int jpegQuality = 90;

Result<> copyWithoutLocation(const std::string& from, const std::string& to) {
  const auto bytes = readBytes(from);
  if (!bytes) return fail(bytes.error());
  const auto plain = withoutLocation(*bytes);
  return plain ? writeBytes(to, *plain) : Result<>(fail(plain.error()));
}

}  // namespace

PictureChoice::PictureChoice(Settings& settings, UserPort& user, std::string folder, std::string current)
    : values(readLoadImage(settings)),
      settings_(settings),
      user_(user),
      folder_(std::move(folder)),
      current_(std::move(current)) {}

const PixelBuffer& PictureChoice::turnedPicture(const std::string& path) {
  if (decoded_.path != path) {
    decoded_ = {path, 0, {}};
    if (auto pixels = readPixelsOf(path)) decoded_.pixels = std::move(*pixels);
  }
  const int more = edits.quarters - decoded_.quarters;
  if (more != 0 && !decoded_.pixels.isEmpty()) {
    if (auto turned = quarterTurned(std::move(decoded_.pixels), more)) decoded_.pixels = std::move(*turned);
    decoded_.quarters = edits.quarters;
  }
  return decoded_.pixels;
}

PicturePreview PictureChoice::preview(const std::string& path) {
  PicturePreview shown;
  const bool isTaken = tab == PictureTab::Shop && !edits.any();
  if (isTaken) shown.mode = PictureMode::OfShop;
  PixelBuffer pixels = turnedPicture(path);
  if (edits.part && !pixels.isEmpty()) pixels = croppedTo(pixels, *edits.part).value_or(PixelBuffer());
  if (pixels.isEmpty()) return shown;
  shown.size = pixels.size();
  shown.picture.CreateFromPicture(std::move(pixels));
  if (isTaken) return shown;
  shown.mode = edits.any() ? PictureMode::Reduced : PictureMode::AsItIs;
  const ImageSize fitted = copySize(shown.size);
  if (fitted == shown.size) {
    shown.tellsLocation = shown.mode == PictureMode::AsItIs && kv::tellsLocation(readBytes(path).value_or(""));
    return shown;
  }
  cDIBSection reduced;
  if (!reduced.Create(fitted.width, fitted.height) || !shown.picture.Resample(reduced)) return {};
  return {PictureMode::Reduced, fitted, std::move(reduced), false};
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
  Result<> done;
  if (isReduced) {
    done = SaveJPG(preview.picture, target, jpegQuality);
  } else {
    done = preview.tellsLocation && values.dropsLocation ? copyWithoutLocation(path, target) : copyFile(path, target);
  }
  if (!done) return fail(done.error());
  return name;
}

std::optional<std::string> PictureChoice::accept(const std::string& path) {
  decoded_ = {};  // the file may have changed since it was shown
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
