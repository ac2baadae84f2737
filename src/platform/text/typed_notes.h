#pragma once
// What is said beside a field of the characters that were typed or pasted into it.

#include <functional>
#include <string>
#include <string_view>

namespace kv {

/// What to say beside a field that holds characters outside Windows-1252, in Italian: each of them once, at most five,
/// and the reference that the first becomes. Empty when there is none.
std::string referenceNote(std::string_view utf8);

/// What to say beside a field that has taken a text without some of its characters, in Italian: each of them once.
/// `takes`: whether the field takes a character (UTF-8). Empty when it took them all.
std::string droppedNote(std::string_view utf8, const std::function<bool(std::string_view character)>& takes);

}  // namespace kv
