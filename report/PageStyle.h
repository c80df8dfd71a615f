#pragma once

#include <string>

namespace report {

/// The style sheet of pages, that of the drawings included: light and dark as the reader has it,
/// A4 paper, and screens from 320 pixels on without sideways scrolling.
std::string PageStyle();

} // namespace report
