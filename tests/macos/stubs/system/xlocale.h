#pragma once

// What the C++ library wants of the C library's functions with a locale: on macOS they have a header of their own.

#include <__support/musl/xlocale.h>

extern "C" {
int asprintf_l(char** text, locale_t locale, const char* format, ...);
int snprintf_l(char* text, size_t size, locale_t locale, const char* format, ...);
int sscanf_l(const char* text, locale_t locale, const char* format, ...);
}
