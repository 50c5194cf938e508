#include "core/model/byte_format.h"

#include <array>
#include <cstdio>

namespace sondrel {

namespace {

// 128-bit arithmetic keeps `bytes * 100` exact for every 64-bit count.
__extension__ using Wide = unsigned __int128;

constexpr std::array<const char*, 7> kUnits = {"bytes", "KB", "MB", "GB", "TB", "PB", "EB"};

// Decimal places shown per unit index: KB none, MB one, GB and larger two.
constexpr int decimalsFor(std::size_t unit) {
    return unit <= 1 ? 0 : (unit == 2 ? 1 : 2);
}

Wide pow10(int exponent) {
    Wide value = 1;
    for (int i = 0; i < exponent; ++i) {
        value *= 10;
    }
    return value;
}

// Text of `scaled / 10^decimals` with trailing zeros (and a bare point) removed.
std::string fixedPointText(Wide scaled, int decimals) {
    const Wide divisor = pow10(decimals);
    const auto whole = static_cast<unsigned long long>(scaled / divisor);
    auto fraction = static_cast<unsigned long long>(scaled % divisor);
    std::string text = std::to_string(whole);
    if (decimals > 0 && fraction != 0) {
        char digits[32];
        std::snprintf(digits, sizeof digits, "%0*llu", decimals % 10, fraction);
        std::string tail(digits);
        while (!tail.empty() && tail.back() == '0') {
            tail.pop_back();
        }
        text += '.';
        text += tail;
    }
    return text;
}

} // namespace

std::string formatBytes(std::int64_t bytes) {
    if (bytes == 0) {
        return "Zero KB";
    }
    const bool negative = bytes < 0;
    // Magnitude as unsigned so that INT64_MIN does not overflow.
    const Wide magnitude =
        negative ? static_cast<Wide>(-(bytes + 1)) + 1 : static_cast<Wide>(bytes);
    const std::string sign = negative ? "-" : "";

    if (magnitude < 1000) {
        const auto count = static_cast<unsigned long long>(magnitude);
        return sign + std::to_string(count) + (count == 1 ? " byte" : " bytes");
    }

    std::size_t unit = 1;
    Wide unitSize = 1000;
    while (unit + 1 < kUnits.size() && magnitude >= unitSize * 1000) {
        unitSize *= 1000;
        ++unit;
    }
    for (;;) {
        const int decimals = decimalsFor(unit);
        const Wide factor = pow10(decimals);
        // Round half up in exact integer arithmetic.
        const Wide scaled = (magnitude * factor + unitSize / 2) / unitSize;
        if (scaled >= 1000 * factor && unit + 1 < kUnits.size()) {
            unitSize *= 1000;
            ++unit;
            continue;
        }
        return sign + fixedPointText(scaled, decimals) + " " + kUnits[unit];
    }
}

std::string formatPercent(double fraction) {
    char text[64];
    std::snprintf(text, sizeof text, "%.1f%%", fraction * 100.0);
    return text;
}

} // namespace sondrel
