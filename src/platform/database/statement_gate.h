#pragma once
// A gate before the store's statements. Usually there is none, and asking costs one comparison. Whoever sets one
// decides, call by call, whether the engine is reached at all: so a failure at any statement can be brought about.

#include <string_view>

namespace kv {

/// Decides which calls of the engine fail instead of being made.
class StatementGate {
 public:
  virtual ~StatementGate() = default;
  /// Asked before a statement is prepared and before each of its steps. `sql`: its text; of a text with several
  /// statements, from the one that is prepared to the end. 0 lets the call through; any other number is the engine
  /// code that the caller gets.
  virtual int refusal(std::string_view sql) = 0;
};

/// Puts a gate before every statement of this process, or none (null), and returns the one that was there. The gate
/// must live until another one, or none, is set.
StatementGate* setStatementGate(StatementGate* gate);

}  // namespace kv
