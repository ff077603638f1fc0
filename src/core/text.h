// SPDX-License-Identifier: Apache-2.0
// Text helpers of the whole system: the string type, printf-style formatting, and numbers to and
// from text. Nothing here depends on the process's locale: the decimal sign is always a point.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/array.h"
#include "core/export.h"

namespace tidemark {

/// The string of every public operation: bytes, by convention UTF-8.
using TM_String = std::string;

namespace text {

/// printf into a string, with the decimal point of the "C" locale whatever the process has set.
SLUICE_API TM_String format(const char* pattern, ...) __attribute__((format(printf, 1, 2)));

/// The same from a started argument list.
SLUICE_API TM_String formatList(const char* pattern, va_list arguments)
    __attribute__((format(printf, 1, 0)));

/// The number that begins `text`, as C's atof reads it: leading blanks, a sign, digits, exponent,
/// hexadecimal, "inf" and "nan"; 0 when there is none. Values out of range give infinity or 0.
SLUICE_API double toDouble(std::string_view text);

/// As `toDouble`, narrowed to float (out of range gives infinity).
SLUICE_API float toFloat(std::string_view text);

/// The integer that begins `text`, as C's atoi reads it (leading blanks, sign, digits; 0 when there
/// is none). Larger numbers keep their low 32 bits; beyond 64 bits they first saturate.
SLUICE_API int32_t toInt32(std::string_view text);

/// The same with 64 bits; numbers out of range saturate.
SLUICE_API int64_t toInt64(std::string_view text);

/// Shortest text that reads back as the same number; "inf", "-inf", "nan" for the special values.
SLUICE_API TM_String shortest(float number);
SLUICE_API TM_String shortest(double number);

/// `number` with `precision` significant digits, as "%.{precision}g" gives it.
SLUICE_API TM_String general(double number, int precision);

/// The pieces of `text` between the occurrences of `separator`, empty ones kept; one piece when
/// there is no occurrence. `separator` must not be empty.
SLUICE_API Array<TM_String> split(std::string_view text, std::string_view separator);

/// `text` with each occurrence of `before`, found left to right and never inside what was put in,
/// replaced by `after`. An empty `before` changes nothing.
SLUICE_API TM_String replaceAll(std::string_view text, std::string_view before,
                                std::string_view after);

/// ASCII letters only; all other bytes stay.
SLUICE_API TM_String toLower(std::string_view text);
SLUICE_API TM_String toUpper(std::string_view text);

/// The entry of `candidates` nearest to `word` (letter case ignored) by edit distance, or the empty
/// string when none is close enough to be a likely misspelling.
SLUICE_API TM_String nearest(std::string_view word, const Array<TM_String>& candidates);

} // namespace text
} // namespace tidemark

namespace weft {
using tidemark::TM_String;
} // namespace weft
