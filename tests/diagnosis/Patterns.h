#pragma once

/// Patterns and where scanners find them, in numbers alone.

#include "diagnosis/Record.h"

#include <cstdint>

namespace TestSupport {

/// The target points of a pattern that lies straight in the middle of the corrected image.
diagnosis::Points PatternPlaces();

/// Where a scanner with a slight barrel finds them, raw pixels; with noise of 0.3 pixels for a seed
/// other than 0.
diagnosis::Points FoundBy(const diagnosis::Points& aPlaces, std::uint64_t nSeed);

/// A record of these.
diagnosis::StRecord RecordOf(const diagnosis::Points& aFound);

/// Where the calibration's spline takes a place of the corrected image from, raw pixels, by the
/// library's own spline.
diagnosis::StPoint SplineAt(const diagnosis::StRecord& Record, const diagnosis::StPoint& Place);

/// A record of a mapping of millimetres on the plate, from the middle of the image, to millimetres
/// in the capture.
template <class Map>
diagnosis::StRecord MappedRecord(Map map) {
    diagnosis::StRecord Record = RecordOf(PatternPlaces());
    for (std::size_t i = 0; i < Record.m_aTarget.size(); ++i) {
        const diagnosis::StPoint& t = Record.m_aTarget[i];
        const diagnosis::StPoint p = map(diagnosis::StPoint{
            (t.m_dX - 160.0) / Record.m_Target.m_dX, (t.m_dY - 240.0) / Record.m_Target.m_dY});
        Record.m_aFound[i] = {200.0 + p.m_dX * Record.m_Source.m_dX,
                              530.0 + p.m_dY * Record.m_Source.m_dY};
    }
    return Record;
}

} // namespace TestSupport
