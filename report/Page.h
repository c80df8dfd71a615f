#pragma once

#include "report/PageData.h"

#include <string>

namespace report {

/// The page of a scanner: one file of HTML with its style, pictures and drawings within.
std::string PageOf(const StScanner& Scanner);

} // namespace report
