#include "bench/FingerStages.h"

#include "FingerCoding/IpQK7DynamicCalibration30.h"
#include "Tools/FpImage.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace bench {

namespace {

namespace fs = std::filesystem;

/// The library stores its stages under fixed names, which lead to the working directory here.
class ClWorkingFolder {
public:
    ClWorkingFolder() : m_Former(fs::current_path()) {
        std::string sName = (fs::temp_directory_path() / "stagesXXXXXX").string();
        if (mkdtemp(sName.data()) == nullptr)
            throw std::runtime_error("no temporary folder could be made");
        m_Folder = sName;
        fs::current_path(m_Folder);
    }
    ~ClWorkingFolder() {
        std::error_code Ignored; // a destructor does not throw
        fs::current_path(m_Former, Ignored);
        fs::remove_all(m_Folder, Ignored);
    }
    ClWorkingFolder(const ClWorkingFolder&) = delete;
    ClWorkingFolder& operator=(const ClWorkingFolder&) = delete;

    const fs::path& Path() const { return m_Folder; }

private:
    fs::path m_Former;
    fs::path m_Folder;
};

void ToImage(const sim::ClRaster& Raster, ClImage& rImage) {
    rImage.NewWithType(ClImage::eUInt8, Raster.m_nWidth, Raster.m_nHeight, 1, Raster.m_nPelsX,
                       Raster.m_nPelsY);
    for (int y = 0; y < Raster.m_nHeight; ++y)
        std::copy_n(Raster.Line(y), Raster.m_nWidth, rImage.LineData(y));
}

sim::ClRaster ToRaster(const ClImage& Image) {
    sim::ClRaster Raster(Image.Width(), Image.Height(), 0);
    for (int y = 0; y < Raster.m_nHeight; ++y)
        std::copy_n(Image.LineData(y), Raster.m_nWidth, &Raster.At(0, y));
    return Raster;
}

} // namespace

std::map<std::string, sim::ClRaster> StagesOf(const sim::ClRaster& Warped) {
    ClImage In;
    ClImage Out;
    ToImage(Warped, In);
    const ClWorkingFolder Folder;
    ClIpQK7DynamicCalibration30 Calibration;
    Calibration.m_pInImage = &In;
    Calibration.m_pOutImage = &Out;
    Calibration.m_bDumpImages = true;
    Calibration.Apply();
    std::map<std::string, sim::ClRaster> Stages;
    for (const auto& Entry : fs::directory_iterator(Folder.Path())) {
        ClImage Stage;
        Stage.Load(Entry.path().c_str());
        const std::string sName = Entry.path().stem().string();
        Stages[sName.substr(sName.find('\\') + 1)] = ToRaster(Stage);
    }
    return Stages;
}

} // namespace bench
