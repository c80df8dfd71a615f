#include "qk7/Targets.h"

#include "apps/qk7/BlockInfo.h"
#include "qk7/TestFiles.h"
#include "sim/BitmapBlock.h"
#include "sim/Record.h"

#include <cstring>

namespace TestSupport {

namespace {

constexpr std::uint64_t cnSeed = 1;

const sim::ClScanner& Scanner() {
    static const sim::ClScanner scanner(cnSeed, sim::ClScannerSettings());
    return scanner;
}

float BigFloatAt(const qk7::Bytes& Block, std::size_t nAt) {
    std::uint32_t nBits = 0;
    for (std::size_t i = 0; i < 4; ++i)
        nBits = nBits << 8 | Block.at(nAt + i);
    float fValue = 0.0F;
    std::memcpy(&fValue, &nBits, sizeof fValue);
    return fValue;
}

void PutBigFloat(qk7::Bytes& rBlock, std::size_t nAt, float fValue) {
    std::uint32_t nBits = 0;
    std::memcpy(&nBits, &fValue, sizeof nBits);
    for (std::size_t i = 0; i < 4; ++i)
        rBlock.at(nAt + i) = static_cast<unsigned char>(nBits >> (24 - 8 * i));
}

constexpr std::size_t cnPoints = 75;
constexpr std::size_t cnTargetPointsAt = 53;
constexpr std::size_t cnActualPointsAt = cnTargetPointsAt + 8 * cnPoints + 4;

/// `change` gets the point's two coordinates by reference.
template <class Change>
void ReplacePoint(qk7::Bytes& rBlock, std::size_t nAt, Change change) {
    float fX = BigFloatAt(rBlock, nAt);
    float fY = BigFloatAt(rBlock, nAt + 4);
    change(fX, fY);
    PutBigFloat(rBlock, nAt, fX);
    PutBigFloat(rBlock, nAt + 4, fY);
}

qk7::Bytes WithChecksum(qk7::Bytes block) {
    block.resize(block.size() - 4);
    AppendBig32(block, qk7::Checksum(block.data(), block.size()));
    return block;
}

} // namespace

sim::ClCapture TargetCapture(const sim::ClTargetSettings& Target, const sim::ClDirtSettings& Dirt) {
    return sim::CaptureTarget(Scanner(), Target, Dirt, cnSeed);
}

sim::ClTargetSettings Without(const std::vector<int>& aMissing) {
    sim::ClTargetSettings target;
    target.m_aMissing = aMissing;
    return target;
}

qk7::Bytes RawTarget() {
    static const qk7::Bytes block = sim::BitmapBlock(TargetCapture({}).m_Raw);
    return block;
}

qk7::Bytes RawTarget(const sim::ClTargetSettings& Target, const sim::ClDirtSettings& Dirt) {
    return sim::BitmapBlock(TargetCapture(Target, Dirt).m_Raw);
}

qk7::Bytes CorrectedTarget(const sim::ClTargetSettings& Target) {
    return sim::BitmapBlock(TargetCapture(Target).m_Ideal);
}

qk7::Bytes EmptyPlaten() {
    return sim::BitmapBlock(sim::CaptureFingers(Scanner(), {}, {}, cnSeed).m_Raw);
}

qk7::Bytes TrueCalibration() {
    return sim::RecordBlock(Scanner());
}

qk7::Bytes StretchedCalibration(float fFactorX, float fFactorY) {
    qk7::Bytes block = TrueCalibration();
    for (std::size_t i = 0; i < cnPoints; ++i)
        ReplacePoint(block, cnTargetPointsAt + 8 * i,
                     [&](float& rX, float& rY) { rX *= fFactorX, rY *= fFactorY; });
    return WithChecksum(block);
}

qk7::Bytes CalibrationWithDotMoved(int nDot, float fColumns, float fLines) {
    qk7::Bytes block = TrueCalibration();
    ReplacePoint(block, cnActualPointsAt + 8 * static_cast<std::size_t>(nDot),
                 [&](float& rX, float& rY) { rX += fColumns, rY += fLines; });
    return WithChecksum(block);
}

} // namespace TestSupport
