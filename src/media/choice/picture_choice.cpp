#include "media/choice/picture_choice.h"

#include "media/bitmap/save_jpg.h"
#include "media/choice/picture_names.h"
#include "platform/files/files.h"
#include "platform/image/photo_location.h"
#include "platform/ports/failure_text.h"

namespace kv {
namespace {

constexpr int jpegQuality = 90;

/// Why a picture of this size can't be the shop's; empty when it can.
std::string refusedSize(std::string_view path, ImageSize size) {
  if (canBeStored(size)) return {};
  return "L'immagine \"" + std::string(baseName(path)) + "\" è di " + std::to_string(size.width) + " x " +
         std::to_string(size.height) +
         " punti, e nessun lato può superare 32767 punti.\nRidurla prima di sceglierla, o farla adattare alle misure.";
}

/// Why a picture of this size, 0 by 0 when it isn't known, is too large to be decoded; empty when nothing says so.
std::string refusedToRead(const std::string& path, ImageSize size) {
  constexpr unsigned toMebibytes = 20;
  constexpr std::string_view advice = " che si possono leggere.\nRidurla con un altro programma prima di sceglierla.";
  const std::string picture = "L'immagine \"" + std::string(baseName(path)) + "\" ";
  if (const auto stamp = fileStamp(path); stamp && stamp->size > mostPictureBytes) {
    return picture + "occupa " + std::to_string((stamp->size >> toMebibytes) + 1) + " MB, più dei " +
           std::to_string(mostPictureBytes >> toMebibytes) + std::string(advice);
  }
  if (canBeDecoded(size)) return {};
  return picture + "è di " + std::to_string(size.width) + " x " + std::to_string(size.height) +
         " punti, in tutto più dei " + std::to_string(mostPixels / 1'000'000) + " milioni" + std::string(advice);
}

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

// A photo of twelve megapixels takes 36 MB: it is lent to the bitmap rather than copied.
PicturePreview PictureChoice::preview(const std::string& path) {
  const bool isTaken = tab == PictureTab::Shop && !edits.any() && canBeNamed(baseName(path));
  const PixelBuffer& turned = turnedPicture(path);
  if (turned.isEmpty()) return {isTaken ? PictureMode::OfShop : PictureMode::Unreadable, {}, {}, false};
  cDIBSection whole;
  whole.CreateFromPicture(edits.part ? croppedTo(turned, *edits.part).value_or(PixelBuffer())
                                     : std::move(decoded_.pixels));
  PicturePreview shown =
      isTaken ? PicturePreview{PictureMode::OfShop, whole.pixels().size(), whole, false} : copyOf(whole, path);
  if (!edits.part) decoded_.pixels = whole.Release();
  return shown;
}

PicturePreview PictureChoice::copyOf(const cDIBSection& picture, const std::string& path) const {
  const ImageSize size = picture.pixels().size(), fitted = copySize(size);
  if (picture.pixels().isEmpty()) return {};
  if (fitted == size && edits.any()) return {PictureMode::Reduced, size, picture, false};
  if (fitted == size) return {PictureMode::AsItIs, size, picture, tellsLocation(readBytes(path).value_or(""))};
  cDIBSection reduced;
  if (!reduced.Create(fitted.width, fitted.height) || !picture.Resample(reduced)) return {};
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

std::string PictureChoice::sizeRefusal(const std::string& path) const {
  const ImageSize size = shownSize(path).value_or(ImageSize{});
  std::string refusal = tab == PictureTab::Disk ? refusedToRead(path, size) : "";
  return refusal.empty() ? refusedSize(path, copySize(size)) : refusal;
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
  const bool isUnreadable = shown.mode == PictureMode::Unreadable;
  const ImageSize size = shown.size.width > 0 ? shown.size : shownSize(path).value_or(ImageSize{});
  if (const std::string refusal = isUnreadable ? refusedToRead(path, size) : refusedSize(path, size);
      !refusal.empty()) {
    user_.message(refusal, Icon::Exclamation);
    return std::nullopt;
  }
  if (isUnreadable) return std::string();
  auto name = bringIn(path, shown);
  if (!name) {
    user_.message(failureText(name.error(), baseName(path)), Icon::Critical);
    return std::nullopt;
  }
  ignore(storeLoadImage(settings_, values), "the next dialog starts with older values");
  return *name;
}

}  // namespace kv
