#pragma once

/// Text and numbers as HTML and SVG take them.

#include <string>
#include <string_view>

namespace report {

/// A text in UTF-8 in which what XML cannot hold, control characters and bytes that are no UTF-8,
/// has become U+FFFD.
std::string Readable(std::string_view szText);

/// The readable text for the content of an element and for an attribute in double quotes.
std::string Escaped(std::string_view szText);

/// The first characters of the readable text, the last of them an ellipsis where it has more than
/// `nMost`.
std::string Shortened(std::string_view szText, std::size_t nMost);

/// A number with so many decimals, 0 to 9, whatever the locale. What rounds to zero has no sign;
/// what is no number is told in words: "not a number", "infinite", "minus infinite".
std::string Decimal(double dValue, int nDecimals);

/// "one dot", "no dots", "12 dots": a count with its noun in the right number.
std::string Count(std::size_t n, std::string_view szOne, std::string_view szMany);

} // namespace report
