// Compiled as a file of platform: with KORVANE_WRONG it includes a folder above it and must fail.
#include "platform/ports/user_port.h"
#ifdef KORVANE_WRONG
#include "store/shop/session.h"
#endif
