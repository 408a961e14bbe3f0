// Darwin's <xlocale.h>, which libc++ includes on Apple targets: the C
// library's functions that take a locale_t. This machine's C library
// declares them in its own headers. For the syntax check only.
#pragma once

#include <ctype.h>
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <wchar.h>
#include <wctype.h>

#ifdef __cplusplus
extern "C" {
#endif
// The C locale as Darwin names it, and the formatted input and output
// functions that take a locale (Darwin's xlocale/_stdio.h).
#define LC_C_LOCALE ((locale_t)0)
int sscanf_l(const char* str, locale_t loc, const char* format, ...);
int snprintf_l(char* str, size_t size, locale_t loc, const char* format, ...);
int asprintf_l(char** ret, locale_t loc, const char* format, ...);
#ifdef __cplusplus
}
#endif
