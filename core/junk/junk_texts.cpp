#include "core/junk/junk_texts.h"

namespace sondrel {

namespace {

std::string ago(std::int64_t count, const char* unit) {
    return "last used " + std::to_string(count) + " " + unit + (count == 1 ? "" : "s") + " ago";
}

} // namespace

std::string junkLastUsedText(std::int64_t modifiedSeconds, std::int64_t nowSeconds) {
    if (modifiedSeconds <= 0) {
        return {};
    }
    constexpr std::int64_t kDay = 24 * 60 * 60;
    const std::int64_t days =
        nowSeconds > modifiedSeconds ? (nowSeconds - modifiedSeconds) / kDay : 0;
    if (days == 0) {
        return "last used today";
    }
    if (days == 1) {
        return "last used yesterday";
    }
    if (days < 14) {
        return ago(days, "day");
    }
    if (days < 60) {
        return ago(days / 7, "week");
    }
    if (days < 365) {
        return ago(days / 30, "month");
    }
    return ago(days / 365, "year");
}

} // namespace sondrel
