// SPDX-License-Identifier: Apache-2.0
// Formatting, numbers to and from text, and the small string operations, none of which look at the
// locale of the process.
#include "core/text.h"

#include <locale.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <vector>

namespace tidemark::text {

namespace {

locale_t cLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    if (!locale) throw std::bad_alloc();
    return locale;
}

// The calling thread formats as in the "C" locale while this lives.
class CLocaleScope {
public:
    CLocaleScope() : before_(uselocale(cLocale())) {}
    CLocaleScope(const CLocaleScope&) = delete;
    CLocaleScope& operator=(const CLocaleScope&) = delete;
    ~CLocaleScope() { uselocale(before_); }

private:
    locale_t before_;
};

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

std::string_view withoutLeadingBlanks(std::string_view text) {
    std::size_t start = 0;
    while (start < text.size() && isBlank(text[start])) ++start;
    return text.substr(start);
}

bool mayStandInNumber(char c) {
    const char l = lower(c);
    return isDigit(c) || (l >= 'a' && l <= 'z') || (c != '\0' && std::strchr("+-._()", c));
}

template <typename Number>
TM_String shortestOf(Number number) {
    if (std::isnan(number)) return "nan";
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof(buffer), number);
    return TM_String(buffer, result.ptr);
}

// Number of single-character insertions, removals and replacements from one to the other.
std::size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row[b.size()];
}

std::size_t lengthDifference(std::string_view a, std::string_view b) {
    return a.size() > b.size() ? a.size() - b.size() : b.size() - a.size();
}

} // namespace

TM_String formatList(const char* pattern, va_list arguments) {
    const CLocaleScope scope;
    va_list again;
    va_copy(again, arguments);
    char small[256];
    const int length = std::vsnprintf(small, sizeof(small), pattern, arguments);
    TM_String text;
    if (length >= 0 && static_cast<std::size_t>(length) < sizeof(small)) {
        text.assign(small, static_cast<std::size_t>(length));
    } else if (length >= 0) {
        text.resize(static_cast<std::size_t>(length));
        std::vsnprintf(text.data(), text.size() + 1, pattern, again);
    }
    va_end(again);
    return text;
}

TM_String format(const char* pattern, ...) {
    va_list arguments;
    va_start(arguments, pattern);
    TM_String text = formatList(pattern, arguments);
    va_end(arguments);
    return text;
}

double toDouble(std::string_view text) {
    text = withoutLeadingBlanks(text);
    std::size_t length = 0;
    while (length < text.size() && mayStandInNumber(text[length])) ++length;
    // strtod_l wants a terminating zero, which the view need not have.
    char small[64];
    if (length < sizeof(small)) {
        small[text.copy(small, length)] = '\0';
        return strtod_l(small, nullptr, cLocale());
    }
    return strtod_l(std::string(text.substr(0, length)).c_str(), nullptr, cLocale());
}

float toFloat(std::string_view text) { return static_cast<float>(toDouble(text)); }

int32_t toInt32(std::string_view text) {
    return static_cast<int32_t>(static_cast<uint32_t>(toInt64(text)));
}

int64_t toInt64(std::string_view text) {
    text = withoutLeadingBlanks(text);
    const bool negative = !text.empty() && text[0] == '-';
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
    constexpr uint64_t highest = std::numeric_limits<int64_t>::max();
    const uint64_t limit = negative ? highest + 1 : highest;
    uint64_t magnitude = 0;
    for (const char c : text) {
        if (!isDigit(c)) break;
        const auto digit = static_cast<uint64_t>(c - '0');
        magnitude = magnitude > (limit - digit) / 10 ? limit : magnitude * 10 + digit;
    }
    return static_cast<int64_t>(negative ? uint64_t(0) - magnitude : magnitude);
}

TM_String shortest(float number) { return shortestOf(number); }
TM_String shortest(double number) { return shortestOf(number); }

TM_String general(double number, int precision) { return format("%.*g", precision, number); }

Array<TM_String> split(std::string_view text, std::string_view separator) {
    Array<TM_String> pieces;
    std::size_t start = 0;
    while (!separator.empty()) {
        const std::size_t found = text.find(separator, start);
        if (found == std::string_view::npos) break;
        pieces.append(TM_String(text.substr(start, found - start)));
        start = found + separator.size();
    }
    pieces.append(TM_String(text.substr(start)));
    return pieces;
}

TM_String replaceAll(std::string_view text, std::string_view before, std::string_view after) {
    TM_String result;
    std::size_t start = 0;
    while (!before.empty()) {
        const std::size_t found = text.find(before, start);
        if (found == std::string_view::npos) break;
        result.append(text.substr(start, found - start)).append(after);
        start = found + before.size();
    }
    result.append(text.substr(start));
    return result;
}

TM_String toLower(std::string_view text) {
    TM_String result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

TM_String toUpper(std::string_view text) {
    TM_String result(text);
    std::transform(result.begin(), result.end(), result.begin(), upper);
    return result;
}

TM_String nearest(std::string_view word, const Array<TM_String>& candidates) {
    const TM_String wanted = toLower(word);
    // A third of the letters may be wrong, and one in a short word, but never all of them.
    const std::size_t limit = std::max<std::size_t>(1, wanted.size() / 3);
    std::size_t best = std::min(limit + 1, wanted.size());
    const TM_String* found = nullptr;
    for (const TM_String& candidate : candidates) {
        if (lengthDifference(wanted, candidate) >= best) continue;
        const std::size_t distance = editDistance(wanted, toLower(candidate));
        if (distance >= best) continue;
        best = distance;
        found = &candidate;
    }
    return found ? *found : TM_String();
}

} // namespace tidemark::text
