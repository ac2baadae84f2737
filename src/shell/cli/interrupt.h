#pragma once
// Ctrl-C as the button "Annulla": the first one is noted and seen at the next yield, the second one ends the program.

namespace kv {

/// From now on SIGINT and SIGTERM are noted once; the next one of the kind ends the process as it always does.
void noteInterrupts();

/// Whether one has been noted.
bool wasInterrupted();

}  // namespace kv
