#pragma once

/// What a handle must hold and answer, worked out from what was given to it: the promises of the
/// public header as a small machine of states.

#include "calls/RecordRules.h"
#include "calls/TableRules.h"

#include <memory>
#include <optional>
#include <utility>

namespace Calls {

/// What may not be known, as after a call that ran out of memory somewhere.
enum class ETruth { eNo, eYes, eMaybe };

enum class EGeometry { eOff, eOddLines, eSpline };

struct StOptions {
    bool m_bDynamicFingerMask = true;
    bool m_bSensitiveMode = false;
    EGeometry m_eGeometry = EGeometry::eSpline;
    bool m_bMaskIsOutput = false;
    bool m_bPrecalculatedData = false;
};

/// Calibration data that a handle holds.
struct StData {
    explicit StData(StRecord Record);

    /// Whether there is a capture that it could be the data of.
    bool IsReady() const;
    std::size_t TableEntries() const;

    StRecord m_Record;
    Bytes m_aBlock; ///< as it is given, in the latest layout
    Digest m_aHash;
};

enum class EWarp {
    eNone,
    eMaybePrepared, ///< none, or prepared
    ePrepared,      ///< from the record
    eLoaded         ///< from a precalculated block
};

/// The statuses that a call may answer.
using Statuses = std::vector<long>;

/// The dirt and the dry finger level.
using StLevels = std::pair<double, double>;

/// What a call of Calibrate() answers.
struct StForecast {
    Statuses m_anStatuses;
    bool m_bReachesWarp = false;
    /// Of the result, where the work is done.
    std::uint32_t m_nWidth = 0;
    std::uint32_t m_nHeight = 0;
    std::uint32_t m_nPelsX = 0;
    std::uint32_t m_nPelsY = 0;

    bool MaySucceed() const;
    /// Bytes of the result.
    unsigned long Size() const;
    /// What is answered to a caller who has room for so many bytes.
    Statuses ForRoom(unsigned long nSize) const;
};

class ClHandleModel {
public:
    StOptions m_Options;
    /// The levels that may stand there; empty where they are not known.
    std::vector<StLevels> m_aLevels = {{0.0, 0.0}};
    /// The reference of later generations; empty where it is not known.
    std::optional<StRecord> m_Reference = StRecord();

    bool IsReady() const { return m_pData != nullptr && m_pData->IsReady(); }
    const StData* Data() const { return m_pData.get(); }
    EWarp Warp() const { return m_eWarp; }
    const StTable& Table() const { return m_Table; }
    /// Size, resolution and planes of what the spline mode gives, of the table or of the record.
    StTable WarpSizes() const;

    /// Whether the spline mode has to prepare first.
    bool IsPreparing() const { return m_eWarp == EWarp::eNone || m_eWarp == EWarp::eMaybePrepared; }

    Statuses ForSetData(const StReadRecord& Read) const;
    void AfterSetData(const StReadRecord& Read, long nStatus);

    /// Data of a generation, or none where it failed.
    void AfterGenerateData(std::unique_ptr<StData> pData, bool bReachedPreparation);

    void DropData() { m_pData = nullptr; }

    Statuses ForSetPrecalculatedData(const StReadTable& Read) const;
    void AfterSetPrecalculatedData(const StReadTable& Read, long nStatus);
    /// The hash that a precalculated block must carry.
    Digest Hash() const;

    /// Behind the tests of the arguments.
    StForecast ForCalibrate(const Bytes& aCapture) const;
    void AfterCalibrate(const StForecast& Forecast, long nStatus);

private:
    long StatusOfWarp(const Bytes& aCapture) const;
    void ForecastSpline(const Bytes& aCapture, StForecast& rForecast) const;
    void ForecastOddLines(const Bytes& aCapture, StForecast& rForecast) const;
    void ForecastCopy(const Bytes& aCapture, StForecast& rForecast) const;
    void Learn(ETruth eSolvable);

    std::shared_ptr<const StData> m_pData;
    EWarp m_eWarp = EWarp::eNone;
    StTable m_Table;
    ETruth m_eSolvable = ETruth::eMaybe;
    ETruth m_eEverLoaded = ETruth::eNo;
};

} // namespace Calls
