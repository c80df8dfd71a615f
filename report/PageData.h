#pragma once

/// What is known about a scanner, as its page tells it: plain values.

#include "diagnosis/SecondCapture.h"
#include "report/DistortionField.h"
#include "report/DotsOverCapture.h"
#include "report/EftsPairs.h"
#include "report/PageFigures.h"

#include <optional>
#include <string>
#include <vector>

namespace report {

enum class EVerdict { eGood, eDoubtful, eRefused };

/// "good", "doubtful" or "refused".
const char* VerdictName(EVerdict eVerdict);

/// A picture to show: a data URI, and the size to show it at.
struct StPicture {
    std::string m_sSource;
    int m_nWidth = 0;
    int m_nHeight = 0;
};

/// A file that was read, by the name that it was given as.
struct StInputFile {
    const char* m_szRole;
    std::string m_sName;
};

/// What only a calibration that loads has.
struct StCalibrated {
    bool m_bStored = false; ///< not derived from this target, and its dots found in another capture
    diagnosis::StDiagnosis m_Diagnosis;
    std::optional<diagnosis::StSecond> m_Second;
    Points m_aTarget; ///< where the dots belong, pixels of the corrected image
    StFrame m_Corrected;
    Points m_aOutline; ///< of the capture, in pixels of the corrected image
    StWarpGrid m_Grid;
    std::optional<StEftsPairs> m_Efts; ///< nothing where the check does not find the target
};

/// What was found in a target: in one that was refused all that there is to say.
struct StTargetFinds {
    std::size_t m_nDots = 0; ///< of the pattern
    std::size_t m_nFound = 0;
    std::size_t m_nAccepted = 0;
    std::vector<StRegion> m_aRegions; ///< refused ones and places without a dot
    Dots m_aDots;                     ///< without places in the pattern
    struct StRefusals {
        std::string m_sWords; ///< "with an area below 200 pixels"
        std::size_t m_nCount = 0;
    };
    std::vector<StRefusals> m_aRefusals;
    struct StMissing {
        StPatternPlace m_Place;
        StPoint m_Near;
    };
    std::vector<StMissing> m_aMissing;
};

struct StFinger {
    std::string m_sName; ///< of the file, for readers
    std::string m_sFile; ///< as it was given
    StPicture m_Raw;
    std::optional<StPicture> m_Corrected; ///< without a calibration none, as the next
    std::optional<StPicture> m_Mask;
    std::string m_sFault; ///< why it was not corrected; empty where it was
    Values m_Values;
};

struct StPlaten {
    std::string m_sName; ///< as for a finger, and the next
    std::string m_sFile;
    StPicture m_Picture;
    Values m_Values;
};

struct StScanner {
    std::string m_sTitle;
    std::string m_sVersion; ///< of the tool
    std::string m_sIndex;   ///< a page over many scanners beside this one; empty for none
    std::vector<StInputFile> m_aFiles;
    EVerdict m_eVerdict = EVerdict::eRefused;
    std::vector<std::string> m_aReasons; ///< sentences
    std::string m_sAdvice;               ///< sentences; empty for a good one
    StPicture m_Capture;                 ///< of the target
    StFrame m_CaptureFrame;
    StTargetFinds m_Finds;
    std::optional<StCalibrated> m_Calibrated; ///< not of a refused one
    Values m_Values;                          ///< of target and calibration
    std::optional<StPlaten> m_Platen;
    std::vector<StFinger> m_aFingers;
};

} // namespace report
