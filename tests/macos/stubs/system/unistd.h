#pragma once

// What macOS says of itself, and what it has beyond the header that stands in for its own.

#include_next <unistd.h>

#undef _POSIX_VERSION
#define _POSIX_VERSION 200112L
#define _CS_DARWIN_USER_TEMP_DIR 65537
