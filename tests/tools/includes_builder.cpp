// Compiled as a file of tags: with KORVANE_WRONG it includes a folder above it and must fail.
#include "store/shop/session.h"
#ifdef KORVANE_WRONG
#include "builder/run/make_pages.h"
#endif
