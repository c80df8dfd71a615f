#include "apps/qk7/TargetDiagnosis.h"

#include "apps/qk7/GridPicture.h"
#include "apps/qk7/PatternGaps.h"

#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7Half.h"
#include "TessarinCalibrateSDK/BitmapBlock.h"
#include "Tools/Bitmap.h"
#include "Tools/Exception.h"
#include "Tools/FpImage.h"
#include "Tools/MemStream.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace qk7 {

namespace {

using Builder = ClIpCalibrateGeometricBuildRefPointsBase;
using Dot = Builder::ClDot;

/// How far from its place a dot is looked for, in pitches: more than the distortion of a scanner
/// takes, and so much less than half a pitch that no dot is taken for its neighbour.
constexpr double cdReach = 0.35;

constexpr double cdMillimetresPerInch = 25.4;

/// Refused regions below this share of a dot's smallest area are grains; the picture leaves them
/// out.
constexpr double cdGrain = 0.25;

/// The builder of the engine, which lets nobody see its dots: they are gone when it fails. This
/// one calls `m_onDots` while they are there, and draws them even when they are refused.
template <class Model, class OnDots>
class TpOpenBuilder : public Model {
public:
    explicit TpOpenBuilder(OnDots onDots) : m_onDots(onDots) {}

    void AssociatePoints(typename Model::DotGrid& rGrid,
                         typename Model::PointList& rActual) override {
        try {
            Model::AssociatePoints(rGrid, rActual);
        } catch (const ClException&) {
            this->GridToDebugImage(rGrid, *this->m_pOutDebugImage);
            m_onDots(*this, rGrid);
            throw;
        }
        m_onDots(*this, rGrid);
    }

private:
    OnDots m_onDots;
};

std::string Number(const char* szFormat, double dValue) {
    char szText[32];
    std::snprintf(szText, sizeof szText, szFormat, dValue);
    return szText;
}

/// One for each status but the clean one, in order.
std::array<StRefusal, 7> Reasons(const Builder& Limits) {
    const auto eccentricity = [](double d) { return Number("%.2f", d); };
    const auto area = [](double d) { return Number("%.0f", d) + " pixels"; };
    constexpr auto pEccentricity = &StRegion::m_dEccentricity;
    constexpr auto pArea = &StRegion::m_dArea;
    return {{
        {"eccentricity_too_small",
         "with an eccentricity below " + eccentricity(Limits.m_dMinEccentricity),
         pEccentricity,
         {}},
        {"eccentricity_too_big",
         "with an eccentricity above " + eccentricity(Limits.m_dMaxEccentricity),
         pEccentricity,
         {}},
        {"area_too_small", "with an area below " + area(Limits.m_dMinArea), pArea, {}},
        {"area_too_big", "with an area above " + area(Limits.m_dMaxArea), pArea, {}},
        {"too_few_neighbours",
         "with fewer than two neighbours at the pitch of the pattern",
         nullptr,
         {}},
        {"no_ideal_point", "nearest to no place of the pattern", nullptr, {}},
        {"outside_column", "outside the column expected next", nullptr, {}},
    }};
}

/// The corrected image's builder rejects a dot by its weight and leaves the status.
std::uint32_t StatusOf(const Dot& Candidate) {
    const bool bRejected = Candidate.m_bValid && Candidate.m_dWeight == 0.0;
    return bRejected ? std::uint32_t{Dot::eOutsideColumn} : Candidate.m_nStatus;
}

/// Fragments and grains are many; the largest ones are the most likely dots.
void PutLargestFirst(StRefusal& rRefusal) {
    std::stable_sort(rRefusal.m_aRegions.begin(), rRefusal.m_aRegions.end(),
                     [](const StRegion& a, const StRegion& b) { return a.m_dArea > b.m_dArea; });
}

StRegion RegionOf(const Dot& Candidate) {
    return {Candidate.m_vPos.x, Candidate.m_vPos.y, Candidate.m_dArea, Candidate.m_dEccentricity};
}

void NoteRefusals(const Builder& Limits, const Builder::DotGrid& Grid, StTargetDiagnosis& rOut) {
    auto reasons = Reasons(Limits);
    for (unsigned long i = 0; i < Grid.Entries(); ++i) {
        const Dot& dot = *Grid[i];
        const std::uint32_t nStatus = StatusOf(dot);
        if (nStatus != Dot::eClean)
            reasons.at(nStatus - 1).m_aRegions.push_back(RegionOf(dot));
    }
    PutLargestFirst(reasons[Dot::eAreaTooSmall - 1]);
    for (StRefusal& reason : reasons)
        if (!reason.m_aRegions.empty())
            rOut.m_aRefusals.push_back(std::move(reason));
}

std::size_t CountAccepted(const Builder::DotGrid& Grid) {
    std::size_t nCount = 0;
    for (unsigned long i = 0; i < Grid.Entries(); ++i)
        nCount += Grid[i]->m_bValid && StatusOf(*Grid[i]) == Dot::eClean ? 1 : 0;
    return nCount;
}

void NoteFound(const Builder::DotGrid& Grid, StTargetDiagnosis& rOut) {
    for (unsigned long i = 0; i < Grid.Entries(); ++i)
        if (Grid[i]->m_bValid)
            rOut.m_aFound.push_back(RegionOf(*Grid[i]));
}

std::vector<StPlace> PlacesOf(const Builder::DotGrid& Grid) {
    std::vector<StPlace> places;
    for (unsigned long i = 0; i < Grid.Entries(); ++i)
        if (Grid[i]->m_bValid)
            places.push_back({Grid[i]->m_vPos.x, Grid[i]->m_vPos.y});
    return places;
}

std::vector<StPlace> PlacesOf(const Builder::PointList& Points) {
    std::vector<StPlace> places;
    for (unsigned long i = 0; i < Points.Entries(); ++i)
        places.push_back({Points[i].x, Points[i].y});
    return places;
}

/// Column and row of an index into the pattern's lists.
StGap GapAt(Builder& rModel, const StUnfilled& Unfilled) {
    TpArrayStatic<int> lengths;
    rModel.GetGridColumnLengths(lengths);
    int nRow = static_cast<int>(Unfilled.m_nIndex);
    int nColumn = 0;
    for (; nRow >= lengths[static_cast<unsigned long>(nColumn)]; ++nColumn)
        nRow -= lengths[static_cast<unsigned long>(nColumn)];
    return {nColumn + 1, nRow + 1, Unfilled.m_Place.m_dX, Unfilled.m_Place.m_dY};
}

/// In samples.
StPlace PitchOf(const Builder& Model) {
    return {Model.m_dPitch / cdMillimetresPerInch * Model.m_dSourceDpiX,
            Model.m_dPitch / cdMillimetresPerInch * Model.m_dSourceDpiY};
}

void NoteGaps(Builder& rModel, const std::vector<StPlace>& aDots, StTargetDiagnosis& rOut) {
    Builder::PointList ideal;
    rModel.BuildTarget(ideal, rModel.m_dSourceDpiX, rModel.m_dSourceDpiY, 0.0, 0.0);
    rOut.m_nDots = ideal.Entries();
    const StPlace pitch = PitchOf(rModel);
    const StPlace reach = {cdReach * pitch.m_dX, cdReach * pitch.m_dY};
    for (const StUnfilled& unfilled : UnfilledPlaces(PlacesOf(ideal), aDots, reach))
        rOut.m_aGaps.push_back(GapAt(rModel, unfilled));
}

Bytes BlockOf(const ClImage& Image) {
    ClBitmap bitmap;
    bitmap.Attach(Image);
    Bytes block(ClBitmap::BlockBytes(*bitmap.Header()));
    bitmap.CopyTo(block.data());
    return block;
}

void Draw(const Builder& Model, const Builder::DotGrid& Grid, StTargetDiagnosis& rOut) {
    ClGridPicture picture(*Model.m_pInImage, PitchOf(Model));
    for (const StPlace& dot : PlacesOf(Grid))
        picture.AddDot(*Model.m_pOutDebugImage, dot);
    for (const StRefusal& refusal : rOut.m_aRefusals)
        for (const StRegion& region : refusal.m_aRegions)
            if (region.m_dArea >= cdGrain * Model.m_dMinArea)
                picture.AddRefused({region.m_dX, region.m_dY});
    for (const StGap& gap : rOut.m_aGaps)
        picture.AddMissing({gap.m_dX, gap.m_dY});
    rOut.m_Picture = BlockOf(picture.Image());
}

/// The exception's own words stand behind those of its number, in a line of their own.
std::string WordsBehindNumber(const ClException& Error) {
    const std::string words = Error.What() != nullptr ? Error.What() : "";
    return words.substr(words.find('\n') + 1);
}

/// As the engine runs the model: dark dots, and the reference where there is one.
template <class Model>
StTargetDiagnosis Diagnose(ClImage& rImage, ClCalibrateGeometricData* pReference) {
    StTargetDiagnosis out;
    const auto onDots = [&out](Builder& rModel, const Builder::DotGrid& Grid) {
        const std::vector<StPlace> dots = PlacesOf(Grid);
        out.m_nFound = dots.size();
        NoteFound(Grid, out);
        out.m_nAccepted = CountAccepted(Grid);
        NoteRefusals(rModel, Grid, out);
        NoteGaps(rModel, dots, out);
        Draw(rModel, Grid, out);
    };
    TpOpenBuilder<Model, decltype(onDots)> model(onDots);
    ClCalibrateGeometricData data;
    ClImage marks;
    model.m_bBrightDots = false;
    model.m_pInImage = &rImage;
    model.m_pRefData = pReference;
    model.m_pOutData = &data;
    model.m_pOutDebugImage = &marks;
    out.m_dColumnsPerMm = model.m_dSourceDpiX / cdMillimetresPerInch;
    out.m_dLinesPerMm = model.m_dSourceDpiY / cdMillimetresPerInch;
    try {
        model.Apply();
    } catch (const ClException& error) {
        out.m_Words = WordsBehindNumber(error);
    }
    return out;
}

} // namespace

StTargetDiagnosis DiagnoseTarget(ETargetImage eImage, const Bytes& Image, const Bytes& Reference) {
    try {
        ClBitmap bitmap;
        if (BitmapBlock::Copy(Image.data(), Image.size(), bitmap) != 0)
            throw ClFailure("is not the size that its header tells");
        ClImage image;
        BitmapBlock::Attach(bitmap, image);
        if (image.Planes() != 1)
            throw ClFailure("is no grey image");
        ClCalibrateGeometricData record;
        if (!Reference.empty()) {
            ClMemStream stream(Reference.data(), Reference.size());
            static_cast<ClCalibrateDataBase&>(record).Read(stream);
        }
        ClCalibrateGeometricData* pRecord = record.m_aTarget.Entries() > 0 ? &record : nullptr;
        return eImage == ETargetImage::eRaw
                   ? Diagnose<ClIpCalibrateGeometricBuildRefPointsQK7>(image, pRecord)
                   : Diagnose<ClIpCalibrateGeometricBuildRefPointsQK7Half>(image, pRecord);
    } catch (const ClException& error) {
        throw ClFailure(WordsBehindNumber(error));
    }
}

} // namespace qk7
