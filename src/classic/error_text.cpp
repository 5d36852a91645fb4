#include "classic/error_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <system_error>

#include "classic/automation.h"
#include "classic/core_api.h"
#include "numerics/constants.h"

namespace pral {

namespace {

constexpr std::size_t kErrorTextSize = 1024;
char text[kErrorTextSize];

/// `value` rounded to 16 decimals. Beyond 1e292 the product would overflow, and there are no decimals to
/// round.
double rounded(double value) {
    constexpr double kScale = 1e16;
    const double scaled = value * kScale;
    return std::isfinite(scaled) ? std::floor(scaled + 0.5) / kScale : value;
}

}  // namespace

const char* error_text() { return text; }

bool fail(const char* message) {
    const std::size_t length = std::min(std::strlen(message), kErrorTextSize - 1);
    std::memmove(text, message, length);  // the message may be the error text itself
    text[length] = '\0';
    return false;
}

bool fail_bounds(double lower, double upper, bool as_values) {
    if (as_values) {
        const std::string min = lower == -numerics::kInfinity ? "-Infinity" : number_text(lower);
        const std::string max = upper == numerics::kInfinity ? "+Infinity" : number_text(upper);
        return fail("PralXBounds error: MinX(" + min + ") must be <= MaxX(" + max + ")");
    }
    return fail("PralPBounds error: MinP(" + number_text(lower) + ") must be <= MaxP(" + number_text(upper) +
                ")");
}

std::string number_text(double value) {
    char buffer[400];  // 309 digits, 16 decimals, sign and point
    constexpr int kDigits = 16;
    const double r = rounded(value);
    // Not printf's family, which writes the decimal comma of the host's locale.
    const auto [end, problem] =
        r == 0 ? std::to_chars(buffer, std::end(buffer), value, std::chars_format::general, kDigits)
               : std::to_chars(buffer, std::end(buffer), r, std::chars_format::fixed, kDigits);
    std::string digits(buffer, problem == std::errc() ? end : buffer);
    while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
    if (digits.size() > 1 && digits.back() == '.') digits.pop_back();
    return digits.empty() ? "0" : digits;
}

}  // namespace pral

const char* PralCoreError() { return pral::error_text(); }

void PralSetCoreError(const char* text) { pral::fail(text != nullptr ? text : ""); }

BSTR PralCoreErrorVB() {
#ifdef _WIN32
    OLECHAR wide[pral::kErrorTextSize + 2];
    const int length = MultiByteToWideChar(CP_ACP, 0, pral::error_text(), -1, wide, pral::kErrorTextSize + 1);
    wide[std::max(length, 0)] = L'\0';
    return SysAllocString(wide);
#else
    const char* const narrow = pral::error_text();
    OLECHAR wide[pral::kErrorTextSize];
    const std::size_t length = std::strlen(narrow);
    std::transform(narrow, narrow + length, wide, [](char c) { return static_cast<unsigned char>(c); });
    return SysAllocStringLen(wide, static_cast<unsigned>(length));
#endif
}
