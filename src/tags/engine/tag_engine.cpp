#include "tags/engine/tag_engine.h"

#include <optional>

#include "platform/numbers/number_format.h"
#include "tags/custom/custom_tags.h"
#include "tags/language/language_module.h"
#include "tags/syntax/pending_text.h"

namespace kv {

namespace {

constexpr std::string_view closing = ">>";
constexpr std::size_t prefixSize = 4;  // "<<1-"
// No column has a longer name. The limit keeps a run of opened tags from being looked up as a whole each time.
constexpr std::size_t longestColumn = 255;
// Tags inside values of tags: no template comes near either limit.
constexpr int mostNested = 100'000;
constexpr std::size_t mostNestedBytes = std::size_t{64} << 20U;
constexpr int missingEnd = 5;
constexpr int endless = 28;

/// One call of EspandiTag: `out_` is final, the pending text is still searched.
class Expansion {
 public:
  Expansion(std::string_view text, const TagContext& context, int kind)
      : context_(context), kind_(kind), prefix_{'<', '<', static_cast<char>('0' + kind), '-'}, pending_(text) {
    out_.reserve(text.size() + text.size() / 8);
  }

  Result<std::string> run() {
    for (std::size_t tag = findTag(); tag != std::string_view::npos; tag = findTag()) {
      emit(tag);
      const std::size_t end = findEnd();
      if (end == std::string_view::npos) return fail(ErrorKind::Malformed, "EspandiTag", quoted(), missingEnd);
      const std::string_view name = pending_.rest().substr(prefixSize, end - prefixSize);
      const std::optional<std::string_view> value = valueOf(name);
      if (!value) {
        emit(1);
        continue;
      }
      if (pending_.inInserted() && !mayNest(value->size())) {
        return fail(ErrorKind::Malformed, "EspandiTag", quoted(), endless);
      }
      drop(end + closing.size());
      put(*value);
    }
    emit(pending_.rest().size());
    return std::move(out_);
  }

 private:
  std::string_view prefix() const { return {prefix_, prefixSize}; }
  std::size_t findTag() const { return pending_.rest().find(prefix()); }

  /// Index of the closing brackets of the tag at the front. It is kept, for tags before it that stay unchanged.
  std::size_t findEnd() {
    if (knownEnd_ == std::string_view::npos) knownEnd_ = pending_.rest().find(closing, prefixSize);
    return knownEnd_;
  }

  void drop(std::size_t count) {
    pending_.drop(count);
    knownEnd_ = knownEnd_ == std::string_view::npos || knownEnd_ < count ? std::string_view::npos : knownEnd_ - count;
  }
  void emit(std::size_t count) {
    out_.append(pending_.rest().substr(0, count));
    drop(count);
  }

  /// Inserts a value: the part in which no tag can start is final at once, the rest is searched with what follows.
  void put(std::string_view value) {
    const std::size_t searched = value.empty() ? 0 : firstTagStart(value);
    out_.append(value.substr(0, searched));
    if (searched == value.size()) return;
    pending_.prepend(value.substr(searched));
    knownEnd_ = std::string_view::npos;
  }
  /// The first index, after the first character, at which a tag may start: a prefix, or the start of one at the end.
  std::size_t firstTagStart(std::string_view value) const {
    if (const std::size_t tag = value.find(prefix(), 1); tag != std::string_view::npos) return tag;
    for (std::size_t length = std::min(prefixSize - 1, value.size() - 1); length > 0; --length) {
      if (value.ends_with(prefix().substr(0, length))) return value.size() - length;
    }
    return value.size();
  }

  /// The value of a tag; none when the tag stays as it is.
  std::optional<std::string_view> valueOf(std::string_view name) {
    if (name == "/COUNTER/") {
      made_ = context_.reparto ? "<?php echo $Contatore; ?>"
                               : formatNumber(static_cast<std::int64_t>(context_.contatore), "######0");
      return made_;
    }
    if (kind_ == 4) return context_.words == nullptr ? std::nullopt : view(context_.words->find(name));
    if (kind_ == 5) return customText(name);
    if (kind_ != 2) return columnOf(name);
    if (const auto value = context_.reparto ? std::nullopt : columnOf(name)) return value;
    made_.assign("<?php echo ViewArt(\"").append(name).append("\"); ?>");
    return made_;
  }
  /// The text of a custom tag; empty where there is none of this name.
  std::string_view customText(std::string_view name) const {
    const std::string* text = context_.customTags == nullptr ? nullptr : context_.customTags->find(name);
    return text == nullptr ? std::string_view{} : std::string_view(*text);
  }
  std::optional<std::string_view> columnOf(std::string_view name) const {
    if (context_.row == nullptr || name.size() > longestColumn) return std::nullopt;
    return view(context_.row->find(name));
  }
  static std::optional<std::string_view> view(const std::string* text) {
    if (text == nullptr) return std::nullopt;
    return *text;
  }

  bool mayNest(std::size_t bytes) {
    nestedBytes_ += bytes;
    return ++nested_ <= mostNested && nestedBytes_ <= mostNestedBytes;
  }
  std::string quoted() const { return std::string(pending_.rest().substr(0, 80)); }

  const TagContext& context_;
  int kind_;
  char prefix_[prefixSize];
  PendingText pending_;
  std::string out_;
  std::string made_;  // a value that is computed here
  std::size_t knownEnd_ = std::string_view::npos;
  std::size_t nestedBytes_ = 0;
  int nested_ = 0;
};

}  // namespace

Result<std::string> EspandiTag(std::string_view testo, const TagContext& context, int kind) {
  if (!needsNormalizzaTag(testo)) return Expansion(testo, context, kind).run();
  const std::string text = NormalizzaTag(testo);
  return Expansion(text, context, kind).run();
}

}  // namespace kv
