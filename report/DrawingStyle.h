#pragma once

#include <string>

namespace report {

/// The style of all drawings for a page to embed: rules below `svg.drawing` for every class of
/// `mark`, colours as custom properties on `:root` that begin with `--drawing-`, for light and
/// dark schemes and for paper. A page that sets its own background to `var(--drawing-paper)` keeps
/// the contrast: 4.5 to 1 or more for texts, 3 to 1 or more for marks. The grid and the fills that
/// only shade an area are quieter; lines bound them.
std::string DrawingStyle();

} // namespace report
