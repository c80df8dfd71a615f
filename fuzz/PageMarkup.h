#pragma once

/// What a page of HTML owes its readers, whatever it is made of.

#include <string>

namespace Fuzz {

/// Ends the process where an element is not closed or closed out of order, where a text opens one
/// of its own, or where an attribute has a number that is none.
void RequireSoundMarkup(const std::string& Page);

} // namespace Fuzz
