// Unicode text operations shared by every area, all built on ICU's C API: decoding
// UTF-8 with replacement, full lower-casing, grapheme clusters, White_Space,
// canonical equivalence and the library's loose name match.
//
// Every function takes and returns UTF-8. Inputs that are not well-formed
// UTF-8 are read with U+FFFD in place of each ill-formed sequence.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zeblo::text {

// Whether `bytes` is well-formed UTF-8 (no surrogates, no overlong forms).
bool isValidUtf8(std::string_view bytes) noexcept;

// `bytes` decoded as UTF-8, each ill-formed sequence replaced by U+FFFD
// (maximal subparts, as the Unicode standard recommends).
std::string decodeUtf8Lossy(std::string_view bytes);

// The Unicode scalars of `s`, in order.
std::u32string codePoints(std::string_view s);

// `s` in Normalization Form C (canonical composition).
std::string composed(std::string_view s);

// The full Unicode lower-case mapping, without locale tailoring.
std::string toLower(std::string_view s);

// The extended grapheme clusters of `s`, in order (CR LF is one cluster).
std::vector<std::string> graphemes(std::string_view s);

// `s` without the grapheme clusters whose first scalar has White_Space.
std::string removeWhitespace(std::string_view s);

// Equality under canonical equivalence (composed and decomposed forms equal).
bool canonicallyEqual(std::string_view a, std::string_view b);

// Whether `haystack` contains `needle` as a run of whole grapheme clusters,
// canonically equivalent forms counting as equal. An empty needle is found
// nowhere.
bool canonicallyContains(std::string_view haystack, std::string_view needle);

// The loose name match: both texts lower-cased and stripped of white space,
// then equal, or the candidate contains the wanted text. The candidate is the
// text found on the desktop, the wanted text what the caller asked for.
bool looseMatch(std::string_view candidate, std::string_view wanted);

}  // namespace zeblo::text
