#pragma once

/// What the drawings of dots have in common.

#include "report/Labels.h"
#include "report/Legend.h"
#include "report/Panel.h"

namespace report {

/// Half of the width of the square around a doubtful dot.
constexpr double cdDoubtfulReach = 11.0;

/// Dots in a frame, those outside or without a number being left out.
Dots DotsWithin(const ClPanel& Panel, const Dots& aDots);

/// Lines between dots that are neighbours in a row or a column of the pattern, `dGap` short of
/// the middle of each.
void DrawNet(ClSvg& rSvg, const ClPanel& Panel, const Dots& aDots, double dGap);

/// Squares around doubtful dots, with their names where there is room.
void DrawDoubtful(ClSvg& rSvg, const ClPanel& Panel, const Dots& aDots, ClLabels& rLabels);

/// Legend samples.
void DoubtfulSample(ClSvg& rSvg, const StPoint& Middle);

std::size_t CountDoubtful(const Dots& aDots);

/// "75 dots, one of them doubtful: column 3, row 7"; of many doubtful ones the first ten names.
/// Nothing is said of doubt where no dot has a place in the pattern: nobody judged them.
std::string DotWords(const Dots& aDots);

/// "2 dots lie outside and are not drawn", or nothing.
std::string OutsideWords(std::size_t nOutside, const char* szOne, const char* szMany);

/// A drawing that consists of a sentence, where there is nothing to draw.
std::string SentenceAlone(const std::string& sPrefix, const std::string& sTitle,
                          const std::string& sSentence);

/// A sentence amid a box.
void DrawSentence(ClSvg& rSvg, const StBox& Box, const std::string& sSentence);

} // namespace report
