// libFuzzer entry for range expressions. Input: one byte for the bounds,
// then the expression, then image names, separated by newlines. Checks that
// the operations agree with each other and aborts when they do not.
// Built as a fuzzer with ZY_FUZZ, and into a replay test with ZY_FUZZ_REPLAY.

#include "app/doc/RangeExpression.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace RE = RangeExpression;

namespace {

void check(bool condition, const char* what) {
    if (condition) return;
#ifdef ZY_FUZZ_REPLAY
    fprintf(stderr, "invariant broken: %s\n", what); // the fuzzer shows the input instead
#endif
    abort();
}

std::vector<std::string> splitLines(std::string_view text) {
    std::vector<std::string> lines;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        lines.emplace_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

void checkNumericView(std::string_view expression, int32_t low, int32_t high) {
    int64_t walked = 0;
    int64_t previous = int64_t{low} - 1;
    for (auto v = RE::Next(expression, low, high, previous, RE::Direction::Up); v;
         v = RE::Next(expression, low, high, *v, RE::Direction::Up)) {
        check(*v > previous && *v >= low && *v <= high, "Next went backwards or out of bounds");
        previous = *v;
        ++walked;
    }
    check(walked == RE::CountValues(expression, low, high), "Next walk and CountValues disagree");
    auto lowest = RE::Lowest(expression, low, high);
    auto highest = RE::Highest(expression, low, high);
    check(lowest.has_value() == (walked > 0) && highest.has_value() == (walked > 0),
          "Lowest/Highest and the walk disagree");
    if (walked) check(*lowest <= *highest, "Lowest above Highest");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    int32_t low = -static_cast<int32_t>(data[0] & 7);
    int32_t high = low + (data[0] >> 3);
    std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
    std::vector<std::string> lines = splitLines(text);
    std::string_view expression = lines[0];
    // A few dozen names reach every path; hundreds only slow the fuzzer down.
    size_t nameCount = std::min<size_t>(lines.size() - 1, 64);
    std::vector<std::string> names(lines.begin() + 1, lines.begin() + 1 + nameCount);

    auto selected = RE::SelectIndices(expression, names);
    bool valid = RE::Validate(expression, 0, static_cast<int32_t>(names.size()) - 1);
    check(selected.has_value() == valid, "SelectIndices and Validate disagree");
    if (selected) {
        size_t k = 0;
        for (size_t i = 0; i < names.size(); ++i) {
            bool hit = RE::Match(expression, names[i], static_cast<int32_t>(i));
            bool listed = k < selected->size() && (*selected)[k] == static_cast<int32_t>(i);
            check(hit == listed, "SelectIndices and Match disagree");
            if (listed) ++k;
        }
        check(k == selected->size(), "SelectIndices listed extra indices");
    }
    for (const std::string& name : names) {
        int order = RE::CompareNames(expression, name);
        check((order == 0) == RE::NameMatches(expression, name),
              "CompareNames and NameMatches disagree");
    }
    checkNumericView(expression, low, high);
    return 0;
}
