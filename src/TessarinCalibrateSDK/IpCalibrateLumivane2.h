#pragma once

/// `ClIpCalibrateLumivane2`, the one object behind a calibration handle. It holds the options, the
/// reference target, the calibration data of the scanner and the prepared warp, and strings the
/// steps of a correction together: which run, in which order, on which images, and what sizes and
/// resolutions become. The steps themselves belong to other classes.

#include "Calibrate/CalibrateGeometricData.h"
#include "Calibrate/IpCalibrateGeometricBicubic.h"
#include "FingerCoding/IpQK7DynamicCalibration30.h"
#include "FingerCoding/IpQK7FunctionalityCheck.h"
#include "ImageProcessing/IpRescale.h"
#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

class ClStream;

class ClIpCalibrateLumivane2 : public ClProcessorBase {
public:
    /// How the geometry is corrected.
    enum EGeometricMode : int {
        eGeometricOff = 0,
        eOddLines = 1,
        eThinPlateSpline = 2,
    };

    ClIpCalibrateLumivane2();
    ~ClIpCalibrateLumivane2() override;

    ClProcessorBase* Create() override;
    const char* Name() const override;

    /// Corrects `*m_pInImage` into `*m_pOutImage` by the options. Returns 0; throws -37 for a
    /// missing image, -11 unless the input is one plane of grey values, -45 for options that
    /// exclude each other, and what the steps throw or answer.
    long Process() override;

    /// Whether calibration data is there: actual points, and a source of more than no pixels. It
    /// says nothing about the prepared table.
    bool IsInitialized() const;

    /// Drops the calibration data, and nothing else.
    void Clear();

    /// Derives the calibration data from a capture of the dot target in `*m_pInImage`, on the
    /// reference target if there is one, and prepares the table. Throws -37 for a missing input,
    /// -11 unless it is one plane of grey values, -600 where the target was not found, not complete
    /// or too crooked, -39 for a reference target that is none; the calibration data is then
    /// partly filled.
    void Setup();

    /// Measures the geometric accuracy of a corrected image of the target in `*m_pInImage`:
    /// percent of the distances between dots that keep the limits. Throws as Setup().
    double Compare();

    /// Every second line of `source`, the first one included, at half its vertical resolution.
    /// Both may be one image. Throws "Image area must be positive" (-101) where nothing is left.
    void CopyOddLineImage(ClImage& source, ClImage& destination);

    /// Fits an image into 320 x 480 pixels at 500 dots per inch by cropping and by white borders,
    /// about the centre. Returns 0.
    long CutRescaleImage(ClImage& image);

    /// Throws (-39) where the points of a record cannot be those of a scanner.
    void CheckGeometricDataTarget(const ClCalibrateGeometricData& data);

    /// The calibration block. Read() prepares the table too, unless it will be loaded.
    void Read(ClStream& stream);
    void Write(ClStream& stream);
    /// A calibration block as reference target.
    void ReadTarget(ClStream& stream);
    /// The precalculated block: a header with the hash of the calibration data, and the table.
    /// Reading throws -37 where no data was ever set, -40 for a header that is not that of a
    /// block of these data or where there are none, and what the table's record throws.
    void ReadPrecalculatedData(ClStream& stream);
    void WritePrecalculatedData(ClStream& stream);

    ClImage* m_pInImage = nullptr;  ///< borrowed for one call
    ClImage* m_pOutImage = nullptr; ///< borrowed for one call

    /// Its levels stay as the last run left them.
    ClIpQK7DynamicCalibration30 m_DynamicCalibration;

    bool m_bSensitiveMode = false;
    bool m_bDynamicFingerMask = true;
    bool m_bPrecalculatedData = false;
    EGeometricMode m_eGeometricMode = eThinPlateSpline;
    bool m_bMaskIsOutput = false;

    ClCalibrateGeometricData m_TargetData;      ///< reference target, or empty
    ClCalibrateGeometricData m_CalibrationData; ///< the calibration of this scanner
    ClIpCalibrateGeometricBicubic m_GeometricBicubic;
    /// What a call works in, kept for its memory: a capture of the same size as the one before
    /// finds everything there. What is in it between two calls means nothing.
    struct StKept {
        ClImage m_Capture;
        ClImage m_Sharpened;
        ClImage m_Warped;
        ClImage m_NotAskedFor; ///< the corrected image where the mask is the output
        ClIpQK7FunctionalityCheck m_FunctionalityCheck;
        ClImage m_Result; ///< taken by the next output that comes without pixels

        /// Line ends as new images have them: what works in here leaves them as they are.
        void ClearLineEnds();
    };
    StKept m_Kept;

    ClIpRescale m_Rescale; ///< set to the target's resolution for those who derive; not applied

private:
    bool HasData() const;
    void CheckGrey(const ClImage& image) const;
    void CorrectGeometry(ClImage& corrected);
    void Sharpen(ClImage& sharpened);
    void ApplyWarp(ClImage* pIn, ClImage* pOut);
    void CorrectBrightness();
    void LocateTarget();
    void RescaleToTarget();
    void CheckHash(ClStream& stream) const;
};
