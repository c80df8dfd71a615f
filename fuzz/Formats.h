#pragma once

/// The formats of foreign blocks, as far as a mutation has to know them: bytes that were changed
/// anywhere get back what a reader tests first, so that the change is seen behind the tests. Each
/// repair leaves a field as it is now and then.

#include "Random.h"

#include <string>

namespace Fuzz {

using RepairFunction = void (*)(std::string& rBytes, ClRandom& rRandom);

/// Tells the format of a harness; an object of the harness's file.
class ClFormat {
public:
    explicit ClFormat(RepairFunction repair) { s_Repair = repair; }
    /// Null where the bytes have no format.
    static RepairFunction Repair() { return s_Repair; }

private:
    inline static RepairFunction s_Repair = nullptr;
};

/// A calibration record of any layout: tags, plane count, counts of points, finite points, length,
/// CRC.
void RepairRecord(std::string& rBytes, ClRandom& rRandom);

/// The table of a precalculated block, what follows its first 28 bytes: tags, sizes told twice,
/// length, end magic, offsets inside a capture of 64 x 64.
void RepairTable(std::string& rBytes, ClRandom& rRandom);

/// A calibration record and the precalculated block that belongs to it by its digest; the first two
/// bytes, little endian, are the length of the record.
void RepairPair(std::string& rBytes, ClRandom& rRandom);

/// A bitmap block, or a bitmap file: info header, depth, palette, length.
void RepairBitmap(std::string& rBytes, ClRandom& rRandom);
/// The same, every second one of 64 x 64 pixels.
void RepairCapture(std::string& rBytes, ClRandom& rRandom);

/// A PNG picture: signature and checksums; or a whole one of these samples.
void RepairPng(std::string& rBytes, ClRandom& rRandom);

/// A raw image: magics, type, sizes, length.
void RepairRawImage(std::string& rBytes, ClRandom& rRandom);

} // namespace Fuzz
