#include "diagnosis/LocatedDots.h"

#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7Half.h"
#include "Math/GeometricAccuracy.h"
#include "TessarinCalibrateSDK/AccuracyCheck.h"
#include "TessarinCalibrateSDK/BitmapBlock.h"
#include "Tools/Bitmap.h"
#include "Tools/Exception.h"
#include "Tools/FpImage.h"
#include "Tools/MemStream.h"

#include <stdexcept>

namespace diagnosis {

namespace {

using Record = ClCalibrateGeometricData;

void Load(const Bytes& Calibration, Record& rRecord) {
    ClMemStream Stream(Calibration.data(), Calibration.size());
    static_cast<ClCalibrateDataBase&>(rRecord).Read(Stream);
}

/// As the engine runs the model; false where the dots are not accepted.
bool Locate(ClImage& rImage, Record& rReference, Record& rLocated) {
    ClIpCalibrateGeometricBuildRefPointsQK7Half Builder;
    Builder.m_bBrightDots = false;
    Builder.m_pInImage = &rImage;
    Builder.m_pRefData = &rReference;
    Builder.m_pOutData = &rLocated;
    try {
        Builder.Apply();
    } catch (const ClException& Error) {
        if (Error.Number() != QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE)
            throw;
        return false;
    }
    return true;
}

void Judge(Record& rLocated, StLocated& rOut) {
    for (unsigned long i = 0; i < rLocated.m_aActual[0].Entries(); ++i)
        rOut.m_aFound.push_back({rLocated.m_aActual[0][i].x, rLocated.m_aActual[0][i].y});
    AccuracyCheck::FitOntoTarget(rLocated.m_aTarget, rLocated.m_aActual[0]);
    rOut.m_dPercent = AccuracyCheck::PercentWithinLimits(rLocated.m_aTarget, rLocated.m_aActual[0]);
    const ClGeometricAccuracy Limits;
    const auto distance = [](const Record::PointList& List, unsigned long i, unsigned long j) {
        return ClGeometricAccuracy::calculateDistance(List[i], List[j]);
    };
    for (unsigned long i = 1; i < rLocated.m_aTarget.Entries(); ++i)
        for (unsigned long j = 0; j < i; ++j)
            if (!Limits.checkRequirements(distance(rLocated.m_aTarget, i, j),
                                          distance(rLocated.m_aActual[0], i, j)))
                rOut.m_aFailedPairs.emplace_back(j, i);
}

} // namespace

StLocated LocateCorrected(const Bytes& Calibration, const Bytes& Corrected) {
    StLocated Out;
    try {
        Record Reference;
        Load(Calibration, Reference);
        ClBitmap Bitmap;
        if (BitmapBlock::Copy(Corrected.data(), Corrected.size(), Bitmap) != 0)
            throw std::invalid_argument("is not the size that its header tells");
        ClImage Image;
        BitmapBlock::Attach(Bitmap, Image);
        Record Located;
        if (Locate(Image, Reference, Located))
            Judge(Located, Out);
    } catch (const ClException& Error) {
        throw std::invalid_argument(Error.What() != nullptr ? Error.What() : "cannot be read");
    }
    return Out;
}

} // namespace diagnosis
