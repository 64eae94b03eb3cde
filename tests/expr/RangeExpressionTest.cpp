#include "app/doc/RangeExpression.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace RE = RangeExpression;

namespace {

// A small document: index -> name.
const std::vector<std::string> kNames = {
    "back",     // 0
    "img1",     // 1
    "img2",     // 2
    "IMG9",     // 3
    "img10",    // 4
    "img11",    // 5
    "sprite_a", // 6
    "Sprite_b", // 7
    " 3",       // 8
    "!",        // 9
    "font",     // 10
    "img3x",    // 11
};

std::vector<int32_t> AllBut(std::vector<int32_t> gone) {
    std::vector<int32_t> all;
    for (int32_t i = 0; i < static_cast<int32_t>(kNames.size()); ++i)
        if (std::find(gone.begin(), gone.end(), i) == gone.end()) all.push_back(i);
    return all;
}

struct SelectCase {
    const char* expression;
    std::vector<int32_t> selected;
};

} // namespace

TEST(RangeExpression, SelectsTheDocumentedExamples) {
    const std::vector<int32_t> all = AllBut({});
    const SelectCase cases[] = {
        {"3", {3}},
        {"2..5", {2, 3, 4, 5}},
        {"5..2", {2, 3, 4, 5}},
        {"0..10+=2", {0, 2, 4, 6, 8, 10}},
        {"4+=3", {4, 7, 10}},
        {"..3", {0, 1, 2, 3}},
        {"3..", {3, 4, 5, 6, 7, 8, 9, 10, 11}},
        {"!2", AllBut({2})},
        {"!2,5", AllBut({2, 5})},
        {"1,,3", all},
        {"0..5,!2", all},
        {" 3", {8}}, // a name pattern, which the image named " 3" matches
        {"img#", {1, 2, 3}},
        {"img*", {1, 2, 3, 4, 5, 11}},
        {"img2..img10", {2, 3, 4}},
        {"", all},
        {"!", {9}},
    };
    for (const SelectCase& c : cases) {
        auto selected = RE::SelectIndices(c.expression, kNames);
        ASSERT_TRUE(selected.has_value()) << '"' << c.expression << '"';
        EXPECT_EQ(*selected, c.selected) << '"' << c.expression << '"';
    }
}

TEST(RangeExpression, SelectsByTheTermRules) {
    const std::vector<int32_t> all = AllBut({});
    const SelectCase cases[] = {
        // Enclosure: the first bracket or quote that occurs again.
        {"\"2..4\"", {2, 3, 4}},
        {"x'!1'y", AllBut({1})},
        {"[2..4[", {2, 3, 4}},
        {"(1..3)", {}}, // not unwrapped: "(1" and "3)" are name bounds
        {"(2\"4\"", {4}},
        {"''", all},
        // Fields and defaults.
        {"..", all},
        {"+=", all},
        {"+=3", {0, 3, 6, 9}},
        {"5+=", {5, 6, 7, 8, 9, 10, 11}},
        {"10..0+=3", {0, 3, 6, 9}}, // swapped first, so the step counts from 0
        {"1..9+=-4", {1, 5, 9}},
        {"1..9+=0", {1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {"1..9+=x", {1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {"-0", {0}},
        {"007", {7}},
        {"3 ", {}},
        {",", all},
        // Exclusion is sticky; plain terms before it still add.
        {"2..4,!3", all},
        {"!3,4..5", AllBut({3, 4, 5})},
        {"!1..10+=3", AllBut({1, 4, 7, 10})},
        {"!img*", {0, 6, 7, 8, 9, 10}},
        {"!..", all},
        {"3,!", {3, 9}},
        // Names: natural, case-insensitive, wildcards.
        {"img10..img2", {2, 3, 4}},
        {"sprite*", {6, 7}},
        {"*_?", {6, 7}},
        {"?ont", {10}},
        {"IMG1", {1}},
        {"img01", {1}},
        {"font,img1", {1, 10}},
        {"img3..", {3, 4, 5, 6, 7, 11}}, // name FROM, numeric TO (the default)
        {"..img1", {0, 1, 8, 9, 10}},
    };
    for (const SelectCase& c : cases) {
        auto selected = RE::SelectIndices(c.expression, kNames);
        ASSERT_TRUE(selected.has_value()) << '"' << c.expression << '"';
        EXPECT_EQ(*selected, c.selected) << '"' << c.expression << '"';
    }
    // "!!" is an exclusion term whose pattern is "!": everything but image 9.
    EXPECT_EQ(*RE::SelectIndices("!!", kNames), AllBut({9}));
}

TEST(RangeExpression, ValidatesNumericBounds) {
    EXPECT_FALSE(RE::Validate("0..7", 0, 3));
    EXPECT_TRUE(RE::Validate("1..3", 0, 3));
    EXPECT_TRUE(RE::Validate("", 0, -1));
    EXPECT_FALSE(RE::Validate("-1", 0, 3));
    EXPECT_FALSE(RE::Validate("!2,9", 0, 3));
    EXPECT_FALSE(RE::Validate("img1..9", 0, 3));
    EXPECT_TRUE(RE::Validate("img1..img9", 0, 3));
    EXPECT_TRUE(RE::Validate("0..3+=100", 0, 3)); // the step is no bound
    EXPECT_TRUE(RE::Validate("..", 0, 3));
    EXPECT_FALSE(RE::Validate("99999999999999999999999", 0, INT32_MAX));
    EXPECT_FALSE(RE::Validate("-99999999999999999999999", INT32_MIN, INT32_MAX));

    EXPECT_FALSE(RE::SelectIndices("0..100", kNames).has_value());
    EXPECT_FALSE(RE::SelectIndices("0", {}).has_value());
    EXPECT_EQ(RE::SelectIndices("", {})->size(), 0u);
}

TEST(RangeExpression, OutOfRangeBoundSelectsNothingWhenMatching) {
    EXPECT_FALSE(RE::Match("-1", "x", 0));
    EXPECT_FALSE(RE::Match("0,-1", "x", 0));
    EXPECT_FALSE(RE::Match("!-1", "x", 5));
    EXPECT_FALSE(RE::Match("3000000000", "x", 5));
    EXPECT_TRUE(RE::Match("3..", "x", INT32_MAX));
}

TEST(RangeExpression, ComparesNamesNaturally) {
    struct NameCase {
        const char* pattern;
        const char* name;
        int sign;
    } cases[] = {
        {"img2", "img10", -1},  {"img10", "img2", 1}, {"IMG5", "img5", 0},    {"img*", "img", 0},
        {"*", "", 0},           {"", "", 0},          {"", "a", -1},          {"a", "", 1},
        {"#", "7", 0},          {"#", "a", -1},       {"img#", "img10", -1},  {"a?c", "abc", 0},
        {"a*c*e", "abXcYe", 0}, {"a*z", "ab", 1},     {"img02", "img2", 0},   {"a-5", "a-10", 1},
        {"-3", "-03", 0},       {"12", "9", 1},       {"img2a", "img10a", 1}, {"*5", "12345", 0},
        {"*.png", "A.PNG", 0},  {"b", "a*", 1},       {"\xff", "a", 1},
    };
    for (const NameCase& c : cases) {
        int result = RE::CompareNames(c.pattern, c.name);
        int sign = (result > 0) - (result < 0);
        EXPECT_EQ(sign, c.sign) << '"' << c.pattern << "\" vs \"" << c.name << '"';
    }
}

TEST(RangeExpression, WildcardsStayFastOnHostileInput) {
    // Backtracking over every '*' would take longer than the universe here.
    std::string pattern;
    for (int i = 0; i < 200; ++i)
        pattern += "*a";
    pattern += "*b";
    std::string name(20000, 'a');
    EXPECT_NE(RE::CompareNames(pattern, name), 0);
    EXPECT_EQ(RE::CompareNames(pattern, name + "b"), 0);
}

TEST(RangeExpression, NumericViewOfTheDocumentedTerms) {
    struct NumericCase {
        const char* expression;
        int32_t low, high;
        std::optional<int32_t> lowest, highest;
        int64_t count;
    } cases[] = {
        {"", 0, 9, 0, 9, 10},
        {"3..5", 0, 9, 3, 5, 3},
        {"!2,5", 0, 9, 0, 9, 8},
        {"4+=3", 0, 20, 4, 19, 6},
        {"+=3,!+=2", 0, 11, 0, 11, 8}, // multiples of 3, or odd
        {"img*", 0, 9, std::nullopt, std::nullopt, 0},
        {"!img*", 0, 9, 0, 9, 10},
        {"0..20", 0, 9, std::nullopt, std::nullopt, 0},
        {"5", 6, 2, std::nullopt, std::nullopt, 0},
        {"+=2", 0, INT32_MAX, 0, INT32_MAX - 1, 1073741824},
        {"!+=2", 0, INT32_MAX, 1, INT32_MAX, 1073741824},
        {"..", INT32_MIN, INT32_MAX, INT32_MIN, INT32_MAX, 4294967296},
        {"-5..5+=5", -10, 10, -5, 5, 3},
        {"0..999999+=1000,!+=7", 0, 999999, 0, 999998, 857142 + 143},
    };
    for (const NumericCase& c : cases) {
        SCOPED_TRACE(c.expression);
        EXPECT_EQ(RE::Lowest(c.expression, c.low, c.high), c.lowest);
        EXPECT_EQ(RE::Highest(c.expression, c.low, c.high), c.highest);
        EXPECT_EQ(RE::CountValues(c.expression, c.low, c.high), c.count);
    }
    EXPECT_EQ(RE::Next("0..10+=5", 0, 20, 0, RE::Direction::Up), 5);
    EXPECT_EQ(RE::Next("0..10+=5", 0, 20, 10, RE::Direction::Up), std::nullopt);
    EXPECT_EQ(RE::Next("0..10+=5", 0, 20, 10, RE::Direction::Down), 5);
    EXPECT_EQ(RE::Next("0..10+=5", 0, 20, -100, RE::Direction::Up), 0);
    EXPECT_EQ(RE::Next("0..10+=5", 0, 20, 100, RE::Direction::Down), 10);
    EXPECT_EQ(RE::Next("0..10+=5", 0, 20, 0, RE::Direction::Down), std::nullopt);
}

// For valid expressions of numbers only, the numeric view over 0..high must
// agree with matching each index, and Next must walk exactly the counted values.
TEST(RangeExpression, NumericViewAgreesWithMatching) {
    std::mt19937 random(1234);
    auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const int32_t high = 60;
    for (int round = 0; round < 400; ++round) {
        std::string expression;
        int terms = 1 + pick(4);
        for (int t = 0; t < terms; ++t) {
            if (t) expression += ',';
            if (pick(5) == 0) expression += '!';
            if (pick(4)) expression += std::to_string(pick(high + 1));
            if (pick(3)) expression += "..";
            if (pick(2)) expression += std::to_string(pick(high + 1));
            if (pick(3) == 0) expression += "+=" + std::to_string(pick(7));
        }
        SCOPED_TRACE(expression);
        if (!RE::Validate(expression, 0, high)) { // fields ran together into a big number
            EXPECT_EQ(RE::CountValues(expression, 0, high), 0);
            continue;
        }
        std::vector<int32_t> matched;
        for (int32_t i = 0; i <= high; ++i)
            if (RE::Match(expression, "", i)) matched.push_back(i);
        std::vector<int32_t> walkedUp, walkedDown;
        for (auto v = RE::Next(expression, 0, high, -1, RE::Direction::Up); v;
             v = RE::Next(expression, 0, high, *v, RE::Direction::Up))
            walkedUp.push_back(*v);
        for (auto v = RE::Next(expression, 0, high, high + 1, RE::Direction::Down); v;
             v = RE::Next(expression, 0, high, *v, RE::Direction::Down))
            walkedDown.insert(walkedDown.begin(), *v);
        EXPECT_EQ(walkedUp, matched);
        EXPECT_EQ(walkedDown, matched);
        EXPECT_EQ(RE::CountValues(expression, 0, high), static_cast<int64_t>(matched.size()));
    }
}
