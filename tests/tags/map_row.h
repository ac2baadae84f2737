#pragma once
// A tag row of a test: columns and their values, names without regard to case.

#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "platform/text/text.h"
#include "tags/engine/tag_engine.h"

namespace kv::test {

class MapRow : public TagRow {
 public:
  MapRow() = default;
  MapRow(std::initializer_list<std::pair<const std::string, std::string>> columns) {
    for (const auto& [name, value] : columns) values_[foldCase(name)] = value;
  }
  const std::string* find(std::string_view column) const override {
    const auto at = values_.find(foldCase(column));
    return at == values_.end() ? nullptr : &at->second;
  }
  std::string& operator[](const std::string& column) { return values_[foldCase(column)]; }

 private:
  std::map<std::string, std::string> values_;
};

}  // namespace kv::test
