#include "calls/HandleModel.h"

#include "calls/BitmapRules.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>

namespace Calls {

StData::StData(StRecord Record)
    : m_Record(std::move(Record)), m_aBlock(RecordBlock(m_Record)), m_aHash(HashOf(m_Record)) {}

bool StData::IsReady() const {
    return m_Record.m_nSourceWidth != 0 && m_Record.m_nSourceHeight != 0 &&
           !m_Record.m_aActual[0].empty();
}

std::size_t StData::TableEntries() const {
    return std::size_t{m_Record.m_nTargetWidth} * m_Record.m_nTargetHeight * m_Record.m_nPlanes;
}

bool StForecast::MaySucceed() const {
    return std::find(m_anStatuses.begin(), m_anStatuses.end(), QMT_SUCCESS) != m_anStatuses.end();
}

unsigned long StForecast::Size() const {
    return 40 + 1024 + std::size_t{(m_nWidth + 3) / 4 * 4} * m_nHeight;
}

Statuses StForecast::ForRoom(unsigned long nSize) const {
    Statuses anStatuses = m_anStatuses;
    if (MaySucceed() && nSize < Size())
        std::replace(anStatuses.begin(), anStatuses.end(), QMT_SUCCESS, QMT_ERROR_TEMPLATE_SIZE);
    return anStatuses;
}

// Data

Statuses ClHandleModel::ForSetData(const StReadRecord& Read) const {
    if (Read.m_nStatus != QMT_SUCCESS)
        return {Read.m_nStatus};
    if (!IsPlausible(Read.m_Record))
        return {QMT_ERROR_CURRUPT_DATA};
    if (m_Options.m_bPrecalculatedData)
        return {QMT_SUCCESS};
    if (HasTwinPoints(Read.m_Record))
        return {QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE};
    return {QMT_SUCCESS, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE};
}

void ClHandleModel::AfterSetData(const StReadRecord& Read, long nStatus) {
    m_eWarp = EWarp::eNone;
    m_pData = nullptr;
    if (nStatus == QMT_SUCCESS || nStatus == QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE)
        m_eEverLoaded = ETruth::eYes;
    else if (nStatus == QMT_ERROR_OUT_OF_MEMORY && m_eEverLoaded == ETruth::eNo)
        m_eEverLoaded = ETruth::eMaybe;
    if (nStatus != QMT_SUCCESS)
        return;
    m_pData = std::make_shared<const StData>(Read.m_Record);
    m_eSolvable = HasTwinPoints(Read.m_Record) ? ETruth::eNo : ETruth::eMaybe;
    if (!m_Options.m_bPrecalculatedData)
        Learn(ETruth::eYes);
}

void ClHandleModel::AfterGenerateData(std::unique_ptr<StData> pData, bool bReachedPreparation) {
    m_eWarp = EWarp::eNone;
    m_pData = std::move(pData);
    if (m_pData != nullptr) {
        m_eEverLoaded = ETruth::eYes;
        Learn(ETruth::eYes);
    } else if (bReachedPreparation && m_eEverLoaded == ETruth::eNo) {
        m_eEverLoaded = ETruth::eMaybe;
    }
}

// Precalculated data

Digest ClHandleModel::Hash() const {
    StRecord Empty;
    Empty.m_nPlanes = 0;
    return m_pData != nullptr ? m_pData->m_aHash : HashOf(Empty);
}

Statuses ClHandleModel::ForSetPrecalculatedData(const StReadTable& Read) const {
    if (m_eEverLoaded == ETruth::eNo)
        return {QMT_ERROR_PARAM_IS_MISSING};
    // A table belongs to data that captures can be corrected with.
    Statuses anStatuses = {IsReady() ? Read.m_nStatus : QMT_ERROR_UNEXPECTED_SIGNATURE};
    if (m_eEverLoaded == ETruth::eMaybe)
        anStatuses.push_back(QMT_ERROR_PARAM_IS_MISSING);
    return anStatuses;
}

void ClHandleModel::AfterSetPrecalculatedData(const StReadTable& Read, long nStatus) {
    if (m_eEverLoaded == ETruth::eMaybe && nStatus != QMT_ERROR_OUT_OF_MEMORY)
        m_eEverLoaded = nStatus == QMT_ERROR_PARAM_IS_MISSING ? ETruth::eNo : ETruth::eYes;
    if (nStatus == QMT_SUCCESS) {
        m_eWarp = EWarp::eLoaded;
        m_Table = Read.m_Table;
    } else {
        DropData();
    }
}

// The warp

void ClHandleModel::Learn(ETruth eSolvable) {
    m_eSolvable = eSolvable;
    m_eWarp = eSolvable == ETruth::eYes ? EWarp::ePrepared : EWarp::eNone;
}

StTable ClHandleModel::WarpSizes() const {
    if (m_eWarp == EWarp::eLoaded)
        return m_Table;
    StTable Table;
    if (m_pData == nullptr)
        return Table;
    const StRecord& Record = m_pData->m_Record;
    Table.m_nSourceWidth = Record.m_nSourceWidth;
    Table.m_nSourceHeight = Record.m_nSourceHeight;
    Table.m_nTargetWidth = Record.m_nTargetWidth;
    Table.m_nTargetHeight = Record.m_nTargetHeight;
    Table.m_nTargetPelsX = Record.m_nTargetPelsX;
    Table.m_nTargetPelsY = Record.m_nTargetPelsY;
    Table.m_nPlanes = Record.m_nPlanes;
    Table.m_nBackground = Record.m_nBackground;
    return Table;
}

/// What a warp that is prepared answers to a capture whose block is right.
long ClHandleModel::StatusOfWarp(const Bytes& aCapture) const {
    const StTable Sizes = WarpSizes();
    if (Sizes.m_nTargetWidth == 0 || Sizes.m_nTargetHeight == 0)
        return QMT_ERROR_NOT_INITIALIZED;
    if (SignedField(aCapture, 4) != Sizes.m_nSourceWidth ||
        SignedField(aCapture, 8) != Sizes.m_nSourceHeight || Sizes.m_nPlanes != 1)
        return QMT_ERROR_BITMAP_DIMENSION;
    return QMT_SUCCESS;
}

// Calibrate

void ClHandleModel::ForecastSpline(const Bytes& aCapture, StForecast& rForecast) const {
    const StTable Sizes = WarpSizes();
    rForecast.m_nWidth = Sizes.m_nTargetWidth;
    rForecast.m_nHeight = Sizes.m_nTargetHeight;
    rForecast.m_nPelsX = Sizes.m_nTargetPelsX;
    rForecast.m_nPelsY = Sizes.m_nTargetPelsY;
    rForecast.m_anStatuses = {StatusOfWarp(aCapture)};
    rForecast.m_bReachesWarp = true;
    if (!IsPreparing() || m_eSolvable == ETruth::eYes)
        return;
    if (m_eSolvable == ETruth::eNo)
        rForecast.m_anStatuses.clear();
    rForecast.m_anStatuses.push_back(QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
}

void ClHandleModel::ForecastOddLines(const Bytes& aCapture, StForecast& rForecast) const {
    rForecast.m_nWidth = static_cast<std::uint32_t>(SignedField(aCapture, 4));
    rForecast.m_nHeight = static_cast<std::uint32_t>(SignedField(aCapture, 8)) / 2;
    rForecast.m_nPelsX = m_pData->m_Record.m_nSourcePelsX;
    rForecast.m_nPelsY =
        static_cast<std::uint32_t>(static_cast<std::int32_t>(m_pData->m_Record.m_nSourcePelsY) / 2);
    rForecast.m_anStatuses = {rForecast.m_nHeight > 0 ? QMT_SUCCESS : QMT_ERROR_INTERNAL};
}

void ClHandleModel::ForecastCopy(const Bytes& aCapture, StForecast& rForecast) const {
    rForecast.m_nWidth = static_cast<std::uint32_t>(SignedField(aCapture, 4));
    rForecast.m_nHeight = static_cast<std::uint32_t>(SignedField(aCapture, 8));
    rForecast.m_nPelsX = static_cast<std::uint32_t>(SignedField(aCapture, 24));
    rForecast.m_nPelsY = static_cast<std::uint32_t>(SignedField(aCapture, 28));
    rForecast.m_anStatuses = {QMT_SUCCESS};
}

StForecast ClHandleModel::ForCalibrate(const Bytes& aCapture) const {
    StForecast Forecast;
    if (m_Options.m_bDynamicFingerMask && m_Options.m_eGeometry == EGeometry::eOff) {
        Forecast.m_anStatuses = {QMT_ERROR_INVALID_OPTIONS_SETTING};
    } else if (!IsReady()) {
        Forecast.m_anStatuses = {QMT_ERROR_NOT_INITIALIZED};
    } else if (const long nStatus = StatusOfImage(aCapture, aCapture.size())) {
        Forecast.m_anStatuses = {nStatus};
    } else if (m_Options.m_eGeometry == EGeometry::eSpline) {
        ForecastSpline(aCapture, Forecast);
    } else if (m_Options.m_eGeometry == EGeometry::eOddLines) {
        ForecastOddLines(aCapture, Forecast);
    } else {
        ForecastCopy(aCapture, Forecast);
    }
    if (m_Options.m_bDynamicFingerMask && Forecast.MaySucceed()) // a finger may not be sought
        Forecast.m_anStatuses.insert(Forecast.m_anStatuses.end(),
                                     {QMT_ERROR_BITMAP_PELS, QMT_ERROR_INTERNAL});
    return Forecast;
}

void ClHandleModel::AfterCalibrate(const StForecast& Forecast, long nStatus) {
    if (!Forecast.m_bReachesWarp || !IsPreparing())
        return;
    if (nStatus == QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE)
        Learn(ETruth::eNo);
    else if (nStatus != QMT_ERROR_OUT_OF_MEMORY)
        Learn(ETruth::eYes);
    else if (m_eSolvable != ETruth::eNo)
        m_eWarp = EWarp::eMaybePrepared;
}

} // namespace Calls
