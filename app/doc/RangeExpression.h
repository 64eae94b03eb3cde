#pragma once
// Range expressions: the small language with which the user selects images
// by index and by name ("3", "0..10+=2", "!2,5", "img2..img10", "sprite*").
//
// Text rules, applied by every function below (each scans the whole text):
// - Enclosure: scanning from the left, the first of ( { [ " ` ' that occurs
//   again later in the text cuts the expression down to what lies between it
//   and its next occurrence. The closing character is the opening one, so a
//   pair of quotes encloses while "(1..3)" is not unwrapped.
// - The expression is a list of terms separated by ','. Nothing is trimmed:
//   " 3" is a name pattern, not the index 3.
// - A term that starts with '!' and has more after it is an exclusion term;
//   the mark is sticky, so every later term is an exclusion term as well (a
//   later '!' is stripped too). A lone "!" is a name pattern.
// - Fields: FROM..TO+=STEP. The first ".." splits FROM from the rest; "+=" is
//   looked for after the ".." (or in the whole term when there is none).
//   Without ".." and "+=", FROM and TO are both the whole term.
// - A field that is an optional '-' and one or more decimal digits is a
//   number (values past 64 bits saturate); any other non-empty field is a
//   name pattern. Empty FROM is the operation's low bound (0 for Match),
//   empty TO its high bound (INT32_MAX for Match). STEP applies to a numeric
//   FROM only; an empty, zero or non-numeric STEP counts as 1 and a negative
//   one as its magnitude.
// - FROM and TO are swapped when FROM is greater: two numbers by value, two
//   name patterns by CompareNames; a number and a name are never swapped.
// - An empty expression, an empty term and a term whose three fields are all
//   empty ("..") select everything. Plain terms before the first exclusion
//   term add what they hit; the exclusion terms together keep every image
//   none of them hits. So "0..5,!2" selects every image.
// - A numeric FROM or TO outside the operation's bounds makes Validate false
//   and makes every other operation select nothing.
//
// Numeric operations (Lowest, Highest, CountValues, Next) look at the values
// low..high alone, with no image names: a term with a name-pattern bound hits
// no value (so an exclusion term "!img*" keeps them all). Their cost grows
// with the number of terms times, for each stretch where the same terms
// apply, the smaller of its length and the least common multiple of the
// steps involved; with the bounds of a document's image list it is small.
//
// The functions accept any text of any length and any bytes; the dialog's
// 200-character limit is the dialog's business.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace RangeExpression {

enum class Direction { Down = -1, Up = 1 };

// Whether the image at document position `index` named `name` is selected.
bool Match(std::string_view expression, std::string_view name, int32_t index);

// True when every numeric FROM and TO of every term lies within low..high.
// The list view calls it with 0 and image count - 1 before selecting.
bool Validate(std::string_view expression, int32_t low, int32_t high);

// Smallest and largest selected value within low..high; none when the
// selection is empty (or low > high, or a bound is out of range).
std::optional<int32_t> Lowest(std::string_view expression, int32_t low, int32_t high);
std::optional<int32_t> Highest(std::string_view expression, int32_t low, int32_t high);

// Number of selected values within low..high.
int64_t CountValues(std::string_view expression, int32_t low, int32_t high);

// The first selected value strictly beyond `from` in the given direction,
// within low..high. `from` may lie outside the bounds: Next(e, l, h, l - 1,
// Up) is Lowest(e, l, h).
std::optional<int32_t> Next(std::string_view expression, int32_t low, int32_t high, int64_t from,
                            Direction direction);

// Natural, case-insensitive comparison of a name pattern with a name:
// '*' matches any run of characters, '?' any one character, '#' one decimal
// digit; where the rest of both sides is wholly numeric (optional '-' and
// digits) the two rests compare as integers ("img2" < "img10", "img02" ==
// "img2"); other characters compare after folding ASCII to lower case.
// Returns 0 when the pattern matches the name, otherwise the sign says
// whether the pattern sorts before (<0) or after (>0) the name; for that
// ordering a '*' that cannot make the pattern match counts as empty.
int CompareNames(std::string_view pattern, std::string_view name);
inline bool NameMatches(std::string_view pattern, std::string_view name) {
    return CompareNames(pattern, name) == 0;
}

// The indices (ascending) of the names the expression selects, names[i]
// being the image at position i. Validates with 0..names.size()-1 first and
// returns nothing when that fails; the caller then says "Invalid range.".
std::optional<std::vector<int32_t>> SelectIndices(std::string_view expression,
                                                  const std::vector<std::string>& names);

} // namespace RangeExpression
