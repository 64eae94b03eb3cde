#include "app/doc/RangeExpression.h"

#include <algorithm>
#include <compare>
#include <limits>
#include <numeric>

namespace RangeExpression {
namespace {

constexpr int64_t kMatchLow = 0;
constexpr int64_t kMatchHigh = INT32_MAX;

enum class FieldKind { Empty, Number, Name };

struct Field {
    FieldKind kind = FieldKind::Empty;
    int64_t number = 0;
    std::string_view text;
};

struct Term {
    bool all = false; // empty term, or all three fields empty
    bool exclusion = false;
    Field from;
    Field to;
    uint64_t step = 1;
};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsEncloser(char c) {
    return c == '(' || c == '{' || c == '[' || c == '"' || c == '`' || c == '\'';
}

std::string_view Unwrap(std::string_view text) {
    // Each encloser character that has no later twin is looked up once and
    // then cannot be the answer again, so this stays linear.
    bool lonely[256] = {};
    for (size_t i = 0; i < text.size(); ++i) {
        auto c = static_cast<unsigned char>(text[i]);
        if (!IsEncloser(text[i]) || lonely[c]) continue;
        size_t close = text.find(text[i], i + 1);
        if (close != std::string_view::npos) return text.substr(i + 1, close - i - 1);
        lonely[c] = true;
    }
    return text;
}

// An optional '-' and one or more decimal digits; the value saturates.
bool ParseNumber(std::string_view text, int64_t& value) {
    size_t i = 0;
    bool negative = false;
    if (i < text.size() && text[i] == '-') {
        negative = true;
        ++i;
    }
    if (i == text.size()) return false;
    uint64_t magnitude = 0;
    constexpr uint64_t kCap = uint64_t{1} << 63;
    for (; i < text.size(); ++i) {
        if (!IsDigit(text[i])) return false;
        uint64_t digit = static_cast<uint64_t>(text[i] - '0');
        magnitude = magnitude > (kCap - digit) / 10 ? kCap : magnitude * 10 + digit;
    }
    if (negative)
        value = magnitude >= kCap ? INT64_MIN : -static_cast<int64_t>(magnitude);
    else
        value = magnitude >= kCap ? INT64_MAX : static_cast<int64_t>(magnitude);
    return true;
}

Field MakeField(std::string_view text) {
    Field field;
    field.text = text;
    if (text.empty()) return field;
    field.kind = ParseNumber(text, field.number) ? FieldKind::Number : FieldKind::Name;
    return field;
}

Term ParseTerm(std::string_view text, bool exclusion) {
    Term term;
    term.exclusion = exclusion;
    if (text.empty()) {
        term.all = true;
        return term;
    }
    std::string_view from, to, step;
    size_t dots = text.find("..");
    size_t stepAt = text.find("+=", dots == std::string_view::npos ? 0 : dots + 2);
    if (dots != std::string_view::npos) {
        from = text.substr(0, dots);
        size_t toEnd = stepAt == std::string_view::npos ? text.size() : stepAt;
        to = text.substr(dots + 2, toEnd - dots - 2);
    } else if (stepAt != std::string_view::npos) {
        from = text.substr(0, stepAt);
    } else {
        from = to = text;
    }
    if (stepAt != std::string_view::npos) step = text.substr(stepAt + 2);
    if (from.empty() && to.empty() && step.empty()) {
        term.all = true;
        return term;
    }
    term.from = MakeField(from);
    term.to = MakeField(to);
    Field stepField = MakeField(step);
    if (stepField.kind == FieldKind::Number && stepField.number != 0) {
        term.step = stepField.number == INT64_MIN
                        ? uint64_t{1} << 63
                        : static_cast<uint64_t>(stepField.number < 0 ? -stepField.number
                                                                     : stepField.number);
    }
    return term;
}

// Reads the terms of an expression one at a time. Nothing is stored, so a
// long run of terms costs no allocation. An empty expression reads as one
// empty term, which selects everything, as the empty expression must.
class Terms {
  public:
    explicit Terms(std::string_view text) : m_Text(Unwrap(text)) {}
    bool Next(Term& term);
    void Rewind() {
        m_Start = 0;
        m_Exclusion = false;
        m_Done = false;
    }

  private:
    std::string_view m_Text;
    size_t m_Start = 0;
    bool m_Exclusion = false; // sticky once a term starts with '!'
    bool m_Done = false;
};

bool Terms::Next(Term& term) {
    if (m_Done) return false;
    size_t comma = m_Text.find(',', m_Start);
    size_t end = comma == std::string_view::npos ? m_Text.size() : comma;
    std::string_view text = m_Text.substr(m_Start, end - m_Start);
    if (text.size() > 1 && text[0] == '!') {
        m_Exclusion = true;
        text.remove_prefix(1);
    }
    term = ParseTerm(text, m_Exclusion);
    m_Done = comma == std::string_view::npos;
    m_Start = comma + 1;
    return true;
}

bool OutOfRange(const Field& field, int64_t low, int64_t high) {
    return field.kind == FieldKind::Number && (field.number < low || field.number > high);
}

bool AnyOutOfRange(Terms& terms, int64_t low, int64_t high) {
    terms.Rewind();
    Term term;
    while (terms.Next(term))
        if (!term.all && (OutOfRange(term.from, low, high) || OutOfRange(term.to, low, high)))
            return true;
    return false;
}

// ---- Name comparison -------------------------------------------------------

char Fold(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Tells in O(1) whether the text from a position to its end is wholly numeric.
class NumericTail {
  public:
    explicit NumericTail(std::string_view text) : m_Text(text) {
        m_LastNonDigit = -1;
        for (size_t i = text.size(); i-- > 0;)
            if (!IsDigit(text[i])) {
                m_LastNonDigit = static_cast<int64_t>(i);
                break;
            }
    }
    bool At(size_t pos) const {
        auto p = static_cast<int64_t>(pos);
        if (pos >= m_Text.size()) return false;
        if (p > m_LastNonDigit) return true;
        return p == m_LastNonDigit && m_Text[pos] == '-' && pos + 1 < m_Text.size();
    }

  private:
    std::string_view m_Text;
    int64_t m_LastNonDigit;
};

// Compares two wholly numeric texts as integers of any length.
int CompareIntegers(std::string_view a, std::string_view b) {
    auto split = [](std::string_view s, bool& negative) {
        negative = !s.empty() && s[0] == '-';
        if (negative) s.remove_prefix(1);
        size_t zeros = s.find_first_not_of('0');
        s = zeros == std::string_view::npos ? std::string_view() : s.substr(zeros);
        if (s.empty()) negative = false; // -0 is 0
        return s;
    };
    bool negA = false, negB = false;
    std::string_view magA = split(a, negA), magB = split(b, negB);
    if (negA != negB) return negA ? -1 : 1;
    int magnitude = magA.size() != magB.size() ? (magA.size() < magB.size() ? -1 : 1)
                    : magA.compare(magB) < 0   ? -1
                    : magA.compare(magB) > 0   ? 1
                                               : 0;
    return negA ? -magnitude : magnitude;
}

bool CharMatches(char pattern, char name) {
    if (pattern == '?') return true;
    if (pattern == '#') return IsDigit(name);
    return Fold(pattern) == Fold(name);
}

// Wildcard match with a single backtrack point (the last '*'), which keeps
// it at O(pattern x name) where naive recursion goes exponential.
bool Matches(std::string_view p, std::string_view n, const NumericTail& pNum,
             const NumericTail& nNum) {
    size_t i = 0, j = 0;
    size_t star = std::string_view::npos, mark = 0;
    while (true) {
        bool advanced = false;
        if (pNum.At(i) && nNum.At(j)) {
            if (CompareIntegers(p.substr(i), n.substr(j)) == 0) return true;
        } else if (i < p.size() && p[i] == '*') {
            star = i++;
            mark = j;
            continue;
        } else if (j == n.size()) {
            while (i < p.size() && p[i] == '*')
                ++i;
            return i == p.size();
        } else if (i < p.size() && CharMatches(p[i], n[j])) {
            ++i;
            ++j;
            advanced = true;
        }
        if (advanced) continue;
        if (star == std::string_view::npos || mark >= n.size()) return false;
        i = star + 1;
        j = ++mark;
    }
}

// The order of a pattern that does not match, taking each '*' as empty.
int Order(std::string_view p, std::string_view n, const NumericTail& pNum,
          const NumericTail& nNum) {
    size_t i = 0, j = 0;
    while (true) {
        while (i < p.size() && p[i] == '*')
            ++i;
        if (pNum.At(i) && nNum.At(j)) return CompareIntegers(p.substr(i), n.substr(j));
        if (i == p.size()) return j == n.size() ? 0 : -1;
        if (j == n.size()) return 1;
        if (!CharMatches(p[i], n[j])) {
            auto a = static_cast<unsigned char>(Fold(p[i]));
            auto b = static_cast<unsigned char>(Fold(n[j]));
            return a < b ? -1 : 1;
        }
        ++i;
        ++j;
    }
}

// ---- Matching one image ----------------------------------------------------

bool LowerBoundHolds(const Field& from, std::string_view name, int64_t index) {
    if (from.kind == FieldKind::Name) return CompareNames(from.text, name) <= 0;
    return from.number <= index;
}

bool UpperBoundHolds(const Field& to, std::string_view name, int64_t index) {
    if (to.kind == FieldKind::Name) return CompareNames(to.text, name) >= 0;
    return index <= to.number;
}

// Fills in the defaults and puts FROM and TO in order.
void Resolve(Field& from, Field& to, int64_t low, int64_t high) {
    if (from.kind == FieldKind::Empty) from = Field{FieldKind::Number, low, {}};
    if (to.kind == FieldKind::Empty) to = Field{FieldKind::Number, high, {}};
    bool swap = false;
    if (from.kind == FieldKind::Number && to.kind == FieldKind::Number)
        swap = from.number > to.number;
    else if (from.kind == FieldKind::Name && to.kind == FieldKind::Name)
        swap = CompareNames(from.text, to.text) > 0;
    if (swap) std::swap(from, to);
}

bool Hits(const Term& term, std::string_view name, int64_t index) {
    Field from = term.from, to = term.to;
    Resolve(from, to, kMatchLow, kMatchHigh);
    if (!LowerBoundHolds(from, name, index) || !UpperBoundHolds(to, name, index)) return false;
    if (from.kind != FieldKind::Number) return true;
    // index >= from.number here, so the difference fits in 64 unsigned bits.
    uint64_t distance = static_cast<uint64_t>(index) - static_cast<uint64_t>(from.number);
    return distance % term.step == 0;
}

// The expression's verdict for one image, bounds already checked.
bool MatchTerms(Terms& terms, std::string_view name, int64_t index) {
    terms.Rewind();
    bool result = false, excluding = false, excluded = false;
    Term term;
    while (terms.Next(term)) {
        if (term.all) {
            result = true;
            continue;
        }
        if (term.exclusion) {
            excluding = true;
            if (!result && !excluded && Hits(term, name, index)) excluded = true;
        } else if (!result && Hits(term, name, index)) {
            result = true;
        }
    }
    return result || (excluding && !excluded);
}

// ---- The numeric view --------------------------------------------------------

struct Progression {
    int64_t first;
    int64_t last;
    uint64_t step;
    auto operator<=>(const Progression&) const = default;
    bool Contains(int64_t v) const {
        return v >= first && v <= last &&
               (static_cast<uint64_t>(v) - static_cast<uint64_t>(first)) % step == 0;
    }
};

enum class Fill { None, All, Mixed };

// The selected values of low..high as stretches where the same terms apply.
class ValueSet {
  public:
    ValueSet(std::string_view text, int64_t low, int64_t high);

    int64_t Count() const;
    std::optional<int64_t> Next(int64_t from, Direction direction) const;

  private:
    struct Stretch {
        int64_t first, last; // inclusive
        Fill fill;
        std::vector<Progression> plain, excluded;
        uint64_t period; // the pattern repeats with this period (capped at the length)
    };
    bool Selected(const Stretch& s, int64_t v) const;
    void BuildStretches();
    std::optional<int64_t> Scan(const Stretch& s, int64_t start, Direction direction) const;

    int64_t m_Low, m_High;
    Fill m_Fill = Fill::Mixed;
    bool m_Excluding = false;
    std::vector<Progression> m_Plain, m_Excluded;
    std::vector<Stretch> m_Stretches;
};

ValueSet::ValueSet(std::string_view text, int64_t low, int64_t high) : m_Low(low), m_High(high) {
    Terms terms(text);
    if (low > high || AnyOutOfRange(terms, low, high)) {
        m_Fill = Fill::None;
        return;
    }
    terms.Rewind();
    Term term;
    while (terms.Next(term)) {
        if (term.all) {
            m_Fill = Fill::All;
            return;
        }
        if (term.exclusion) m_Excluding = true;
        if (term.from.kind == FieldKind::Name || term.to.kind == FieldKind::Name) continue;
        Field from = term.from, to = term.to;
        Resolve(from, to, low, high);
        Progression p{from.number, to.number, term.step};
        (term.exclusion ? m_Excluded : m_Plain).push_back(p);
    }
    // Repeated terms change nothing but the cost of every later step.
    for (auto* list : {&m_Plain, &m_Excluded}) {
        std::sort(list->begin(), list->end());
        list->erase(std::unique(list->begin(), list->end()), list->end());
    }
    BuildStretches();
}

uint64_t CappedLcm(uint64_t a, uint64_t b, uint64_t cap) {
    uint64_t g = std::gcd(a, b);
    uint64_t reduced = a / g;
    if (reduced > cap / b) return cap;
    return std::min(reduced * b, cap);
}

void ValueSet::BuildStretches() {
    std::vector<int64_t> cuts{m_Low, m_High + 1};
    for (const auto* list : {&m_Plain, &m_Excluded})
        for (const Progression& p : *list) {
            cuts.push_back(p.first);
            cuts.push_back(p.last + 1);
        }
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
    for (size_t k = 0; k + 1 < cuts.size(); ++k) {
        Stretch s{cuts[k], cuts[k + 1] - 1, Fill::Mixed, {}, {}, 1};
        uint64_t length = static_cast<uint64_t>(s.last - s.first) + 1;
        bool densePlain = false, denseExcluded = false;
        for (const Progression& p : m_Plain)
            if (p.first <= s.first && s.first <= p.last) {
                densePlain = densePlain || p.step == 1;
                s.plain.push_back(p);
            }
        for (const Progression& p : m_Excluded)
            if (p.first <= s.first && s.first <= p.last) {
                denseExcluded = denseExcluded || p.step == 1;
                s.excluded.push_back(p);
            }
        bool keepsAll = m_Excluding && s.excluded.empty();
        bool keepsNone = !m_Excluding || denseExcluded;
        if (densePlain || keepsAll)
            s.fill = Fill::All;
        else if (s.plain.empty() && keepsNone)
            s.fill = Fill::None;
        if (keepsNone) s.excluded.clear(); // only the plain terms decide here
        for (const auto* list : {&s.plain, &s.excluded})
            for (const Progression& p : *list)
                s.period = CappedLcm(s.period, p.step, length);
        m_Stretches.push_back(std::move(s));
    }
}

bool ValueSet::Selected(const Stretch& s, int64_t v) const {
    for (const Progression& p : s.plain)
        if (p.Contains(v)) return true;
    if (s.excluded.empty()) return false; // cleared: exclusion keeps nothing here
    for (const Progression& p : s.excluded)
        if (p.Contains(v)) return false;
    return true;
}

int64_t ValueSet::Count() const {
    if (m_Fill == Fill::None) return 0;
    if (m_Fill == Fill::All) return m_High - m_Low + 1;
    int64_t total = 0;
    for (const Stretch& s : m_Stretches) {
        uint64_t length = static_cast<uint64_t>(s.last - s.first) + 1;
        if (s.fill != Fill::Mixed) {
            total += s.fill == Fill::All ? static_cast<int64_t>(length) : 0;
            continue;
        }
        // One period decides the whole stretch: count it, and the part of it
        // that the last, incomplete period covers.
        uint64_t remainder = length % s.period;
        int64_t inPeriod = 0, inRemainder = 0;
        for (uint64_t k = 0; k < s.period; ++k) {
            if (k == remainder) inRemainder = inPeriod;
            if (Selected(s, s.first + static_cast<int64_t>(k))) ++inPeriod;
        }
        total += inPeriod * static_cast<int64_t>(length / s.period) + inRemainder;
    }
    return total;
}

std::optional<int64_t> ValueSet::Scan(const Stretch& s, int64_t start, Direction direction) const {
    if (s.fill == Fill::All) return start;
    if (s.fill == Fill::None) return std::nullopt;
    int64_t step = direction == Direction::Up ? 1 : -1;
    int64_t v = start;
    for (uint64_t k = 0; k < s.period && v >= s.first && v <= s.last; ++k, v += step)
        if (Selected(s, v)) return v;
    return std::nullopt;
}

std::optional<int64_t> ValueSet::Next(int64_t from, Direction direction) const {
    if (m_Fill == Fill::None) return std::nullopt;
    bool up = direction == Direction::Up;
    if (up ? from >= m_High : from <= m_Low) return std::nullopt;
    int64_t start = up ? std::max(from + 1, m_Low) : std::min(from - 1, m_High);
    if (m_Fill == Fill::All) return start;
    auto at = std::upper_bound(m_Stretches.begin(), m_Stretches.end(), start,
                               [](int64_t v, const Stretch& s) { return v < s.first; });
    // `at` is the first stretch after the one holding start.
    for (ptrdiff_t k = (at - m_Stretches.begin()) - 1;
         k >= 0 && k < static_cast<ptrdiff_t>(m_Stretches.size()); k += up ? 1 : -1) {
        const Stretch& s = m_Stretches[k];
        int64_t begin = std::clamp(start, s.first, s.last);
        if (auto hit = Scan(s, begin, direction)) return hit;
    }
    return std::nullopt;
}

std::optional<int32_t> Narrow(std::optional<int64_t> value) {
    if (!value) return std::nullopt;
    return static_cast<int32_t>(*value);
}

} // namespace

// ---- Public operations -------------------------------------------------------

int CompareNames(std::string_view pattern, std::string_view name) {
    NumericTail pNum(pattern), nNum(name);
    if (Matches(pattern, name, pNum, nNum)) return 0;
    int order = Order(pattern, name, pNum, nNum);
    return order == 0 ? -1 : order; // cannot happen: a zero order is a match
}

bool Match(std::string_view expression, std::string_view name, int32_t index) {
    Terms terms(expression);
    return !AnyOutOfRange(terms, kMatchLow, kMatchHigh) && MatchTerms(terms, name, index);
}

bool Validate(std::string_view expression, int32_t low, int32_t high) {
    Terms terms(expression);
    return !AnyOutOfRange(terms, low, high);
}

std::optional<int32_t> Lowest(std::string_view expression, int32_t low, int32_t high) {
    return Narrow(ValueSet(expression, low, high).Next(int64_t{low} - 1, Direction::Up));
}

std::optional<int32_t> Highest(std::string_view expression, int32_t low, int32_t high) {
    return Narrow(ValueSet(expression, low, high).Next(int64_t{high} + 1, Direction::Down));
}

int64_t CountValues(std::string_view expression, int32_t low, int32_t high) {
    return ValueSet(expression, low, high).Count();
}

std::optional<int32_t> Next(std::string_view expression, int32_t low, int32_t high, int64_t from,
                            Direction direction) {
    return Narrow(ValueSet(expression, low, high).Next(from, direction));
}

std::optional<std::vector<int32_t>> SelectIndices(std::string_view expression,
                                                  const std::vector<std::string>& names) {
    int64_t count = std::min<int64_t>(static_cast<int64_t>(names.size()), INT32_MAX);
    Terms terms(expression);
    // Bounds within 0..count-1 are within the bounds matching checks too.
    if (AnyOutOfRange(terms, 0, count - 1)) return std::nullopt;
    std::vector<int32_t> selected;
    for (int64_t i = 0; i < count; ++i)
        if (MatchTerms(terms, names[static_cast<size_t>(i)], i))
            selected.push_back(static_cast<int32_t>(i));
    return selected;
}

} // namespace RangeExpression
