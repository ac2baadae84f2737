// Compiled as a file of tags: with KORVANE_WRONG it includes a folder above it and must fail.
#include "store/session.h"
#ifdef KORVANE_WRONG
#include "builder/make_pages.h"
#endif
