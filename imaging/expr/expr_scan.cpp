// Reading the text: character classes, numbers, operators and the
// precedence table.

#include "imaging/expr/expr_internal.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace {

bool isDecimal(char c) {
    return c >= '0' && c <= '9';
}
char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

struct TwoCharOperator {
    char first, second;
    int token;
};

constexpr TwoCharOperator kTwoCharOperators[] = {
    {'<', '<', EXPR_TOKEN_SHL},   {'>', '>', EXPR_TOKEN_SHR},  {'<', '=', EXPR_TOKEN_LE},
    {'>', '=', EXPR_TOKEN_GE},    {'=', '=', EXPR_TOKEN_EQ},   {'!', '=', EXPR_TOKEN_NE},
    {'<', '>', EXPR_TOKEN_NE},    {'&', '&', EXPR_TOKEN_AND},  {'|', '|', EXPR_TOKEN_OR},
    {'+', '+', EXPR_TOKEN_OR},    {'-', '-', EXPR_TOKEN_XOR},  {'!', ':', EXPR_TOKEN_QUESTION},
    {'!', '?', EXPR_TOKEN_COLON}, {'*', '*', EXPR_TOKEN_POW},  {'<', '?', EXPR_TOKEN_MIN},
    {'>', '?', EXPR_TOKEN_MAX},   {'%', '%', EXPR_TOKEN_FMOD}, {'/', '/', '%'},
};

constexpr char kOneCharOperators[] = "*/%+-<>&^~|!?:=,)];(";

// Decimal mantissa and exponent were read from `text`; from_chars does the
// correctly rounded conversion. When the value is out of a double's range
// it leaves the result alone, and the magnitude decides between inf and 0.
// `rough` is the digit-by-digit value, for a form from_chars does not take.
double convertDecimal(const char* first, const char* last, long exponentValue, double rough) {
    double value = 0.0;
    auto [end, error] = std::from_chars(first, last, value, std::chars_format::general);
    if (error == std::errc() && end == last) return value;
    if (error != std::errc::result_out_of_range) return rough;
    // Out of range: find the decimal order of the leading non-zero digit.
    long order = 0;
    bool seenPoint = false, seenDigit = false;
    for (const char* p = first; p < last && *p != 'e' && *p != 'E'; ++p) {
        if (*p == '.') {
            seenPoint = true;
        } else if (!seenDigit && *p == '0') {
            if (seenPoint) --order;
        } else if (!seenDigit) {
            seenDigit = true;
        } else if (!seenPoint) {
            ++order;
        }
    }
    if (!seenDigit) return 0.0;
    return order + exponentValue > 0 ? std::numeric_limits<double>::infinity() : 0.0;
}

} // namespace

bool exprIsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
bool exprIsNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool exprIsNameChar(char c) {
    return exprIsNameStart(c) || isDecimal(c);
}

int exprDigitValue(char c) {
    if (isDecimal(c)) return c - '0';
    char l = lower(c);
    if (l >= 'a' && l <= 'z') return l - 'a' + 10;
    return 99;
}

bool exprScanNumber(const char* text, size_t length, size_t* pos, int radix, double* value) {
    size_t p = *pos;
    auto digitAt = [&](size_t k, int r) { return k < length && exprDigitValue(text[k]) < r; };
    if (p >= length) return false;
    bool starts =
        isDecimal(text[p]) || digitAt(p, radix) || (text[p] == '.' && digitAt(p + 1, radix));
    if (!starts) return false;
    int r = radix;
    if (text[p] == '0' && p + 1 < length) {
        char prefix = lower(text[p + 1]);
        int prefixed = prefix == 'x' && radix < 34   ? 16
                       : prefix == 'b' && radix < 12 ? 2
                       : prefix == 'o' && radix < 25 ? 8
                                                     : 0;
        if (prefixed) {
            r = prefixed;
            p += 2;
        }
    }
    size_t first = p;
    double whole = 0.0;
    for (; digitAt(p, r); ++p)
        whole = whole * r + exprDigitValue(text[p]);
    bool anyDigit = p > first;
    double fraction = 0.0;
    if (p < length && text[p] == '.' && (anyDigit || digitAt(p + 1, r))) {
        ++p;
        double scale = 1.0 / r;
        for (; digitAt(p, r); ++p, scale /= r) {
            fraction += exprDigitValue(text[p]) * scale;
            anyDigit = true;
        }
    }
    if (!anyDigit) return false; // "0x" with nothing after it, or '5' in radix 2
    long exponent = 0;
    if (r == 10 && p < length && (text[p] == 'e' || text[p] == 'E')) {
        size_t q = p + 1;
        bool negative = q < length && text[q] == '-';
        if (q < length && (text[q] == '+' || text[q] == '-')) ++q;
        if (q < length && isDecimal(text[q])) {
            for (; q < length && isDecimal(text[q]); ++q)
                exponent = exponent > 100000 ? exponent : exponent * 10 + (text[q] - '0');
            if (negative) exponent = -exponent;
            p = q;
        }
    }
    double rough = whole + fraction;
    if (r == 10)
        rough = convertDecimal(text + first, text + p, exponent, rough * std::pow(10.0, exponent));
    *value = rough;
    *pos = p;
    return true;
}

int exprScanUnary(const char* text, size_t length, size_t pos, size_t* consumed) {
    if (pos >= length) return 0;
    char c = text[pos];
    char next = pos + 1 < length ? text[pos + 1] : '\0';
    *consumed = 1;
    switch (c) {
    case '-':
        return EXPR_TOKEN_NEGATE;
    case '~':
        return EXPR_TOKEN_COMPLEMENT;
    case '!':
        return EXPR_TOKEN_NOT;
    case '<':
        if (next == '<') *consumed = 2;
        return next == '<' ? EXPR_TOKEN_SHL1 : EXPR_TOKEN_FLOOR;
    case '>':
        if (next == '>') *consumed = 2;
        return next == '>' ? EXPR_TOKEN_SHR1 : EXPR_TOKEN_CEIL;
    default:
        *consumed = 0;
        return 0;
    }
}

int exprScanOperator(const char* text, size_t length, size_t* consumed) {
    *consumed = 0;
    if (!text || length == 0) return EXPR_TOKEN_END;
    char c = text[0];
    if (length > 1)
        for (const TwoCharOperator& op : kTwoCharOperators)
            if (op.first == c && op.second == text[1]) {
                *consumed = 2;
                return op.token;
            }
    *consumed = 1;
    if (c == '#') return EXPR_TOKEN_NE;
    if (c == '[') return EXPR_TOKEN_INDEX;
    for (const char* op = kOneCharOperators; *op; ++op)
        if (*op == c) return static_cast<unsigned char>(c);
    return EXPR_TOKEN_INVALID;
}

int exprPrecedence(int token) {
    switch (token) {
    case EXPR_TOKEN_INDEX:
        return 16;
    case EXPR_TOKEN_NEGATE:
    case EXPR_TOKEN_COMPLEMENT:
    case EXPR_TOKEN_NOT:
    case EXPR_TOKEN_FLOOR:
    case EXPR_TOKEN_CEIL:
    case EXPR_TOKEN_SHL1:
    case EXPR_TOKEN_SHR1:
        return 15;
    case '*':
    case '/':
    case '%':
    case EXPR_TOKEN_FMOD:
        return 14;
    case '+':
    case '-':
        return 13;
    case EXPR_TOKEN_SHL:
    case EXPR_TOKEN_SHR:
        return 12;
    case '<':
    case '>':
    case EXPR_TOKEN_LE:
    case EXPR_TOKEN_GE:
    case EXPR_TOKEN_POW:
        return 11;
    case EXPR_TOKEN_EQ:
    case EXPR_TOKEN_NE:
        return 10;
    case '&':
        return 9;
    case '^':
    case '~':
        return 8;
    case '|':
    case '!':
        return 7;
    case EXPR_TOKEN_AND:
    case EXPR_TOKEN_MIN:
    case EXPR_TOKEN_MAX:
        return 6;
    case EXPR_TOKEN_OR:
    case EXPR_TOKEN_XOR:
        return 5;
    case '?':
    case ':':
    case EXPR_TOKEN_QUESTION:
    case EXPR_TOKEN_COLON:
        return 4;
    case '=':
        return 3;
    case ',':
    case ')':
    case ']':
        return 2;
    case EXPR_TOKEN_END:
    case '(':
    case '[':
    case ';':
        return 1;
    default:
        return 0;
    }
}
