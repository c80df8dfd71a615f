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

qk7::Bytes StretchedCalibration(float fFactor) {
    constexpr std::size_t cnFirstPoint = 53;
    constexpr std::size_t cnCoordinates = 150;
    qk7::Bytes block = TrueCalibration();
    for (std::size_t i = 0; i < cnCoordinates; ++i) {
        const std::size_t nAt = cnFirstPoint + 4 * i;
        PutBigFloat(block, nAt, fFactor * BigFloatAt(block, nAt));
    }
    block.resize(block.size() - 4);
    AppendBig32(block, qk7::Checksum(block.data(), block.size()));
    return block;
}

} // namespace TestSupport
