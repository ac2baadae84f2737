// Texts of templates and values of columns: expansion and repair of tags never crash, never run without end, and give
// what the rules taken step by step give.
#include <cstdint>
#include <cstdlib>
#include <map>

#include "../tests/tags/naive_tags.h"
#include "tags/engine/tag_engine.h"

namespace {

class FuzzRow : public kv::TagRow {
 public:
  const std::string* find(std::string_view column) const override {
    const auto at = values.find(std::string(column));
    return at == values.end() ? nullptr : &at->second;
  }
  std::map<std::string, std::string> values;
};

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

/// The input is divided at its zero bytes: the values of the columns a, b, c, then the text. Its first byte gives the
/// kind and whether the page is that of a department.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  if (input.empty()) return 0;
  const unsigned choice = data[0];
  input.remove_prefix(1);
  FuzzRow row;
  kv::CustomTags custom;
  std::string module;
  for (const char* name : {"a", "b", "c"}) {
    const std::size_t end = input.find('\0');
    if (end == std::string_view::npos) break;
    row.values[name] = input.substr(0, end);
    module.append("<<4-").append(name).append(">>\n").append(input.substr(0, end)).append("\n");
    custom.add(std::string("<<5-") + name + ">>\n" + std::string(input.substr(0, end)), true);
    input.remove_prefix(end + 1);
  }
  const kv::LanguageModule words = kv::LanguageModule::parse(module);
  kv::TagContext context;
  context.row = &row;
  context.words = &words;
  context.customTags = &custom;
  context.contatore = 7;
  context.reparto = (choice & 1U) != 0;
  const int kind = static_cast<int>(choice / 2 % 5) + 1;

  const std::string text(input);
  const std::string repaired = kv::NormalizzaTag(text);
  require(repaired == kv::test::naiveNormalizzaTag(text));
  require(repaired == text || kv::needsNormalizzaTag(text));

  const auto wanted = kv::test::naiveEspandiTag(text, context, kind, 300);
  // Endless tags take their time to be found out: some of them are enough.
  if (!wanted && choice < 248) return 0;
  const auto got = kv::EspandiTag(text, context, kind);
  if (wanted) {
    require(got && *got == *wanted);
  } else {
    require(got || got.error().kind == kv::ErrorKind::Malformed);
  }
  return 0;
}
