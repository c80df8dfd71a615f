// Sequences of calls count the fingers that the dynamic step calibrates the quick way. No answer of
// a call tells which way was gone; that their finger goes it is held here.

#include "FingerCoding/Quick/DynamicCalibration.h"
#include "TessarinCalibrateSDK/BitmapBlock.h"
#include "TessarinCalibrateSDK/OwnHandle.h"
#include "calls/CallMaterial.h"
#include "support/Images.h"

#include <TessarinCalibrateSDK.h>

#include <gtest/gtest.h>

namespace {

using EMode = ClIpCalibrateLumivane2::EGeometricMode;

/// The finger as the scanner's engine corrects it, with the dynamic step or without.
void Correct(EMode eMode, bool bSensitive, bool bDynamic, ClImage& rOut) {
    TestSupport::StOwnHandle<> Own;
    Calls::Bytes aScanner = Calls::QuickScanner();
    ASSERT_EQ(CalibrateSetData(Own.Handle(), aScanner.data(), aScanner.size()), 0);
    const Calls::Bytes aFinger = Calls::QuickFinger();
    ClImage Finger;
    ASSERT_EQ(BitmapBlock::CopyToImage(aFinger.data(), aFinger.size(), Finger), 0);
    Own.m_Processor.m_eGeometricMode = eMode;
    Own.m_Processor.m_bSensitiveMode = bSensitive;
    Own.m_Processor.m_bDynamicFingerMask = bDynamic;
    Own.m_Processor.m_pInImage = &Finger;
    Own.m_Processor.m_pOutImage = &rOut;
    ASSERT_EQ(Own.m_Processor.Process(), 0);
}

} // namespace

TEST(CallMaterial, HasAFingerThatGoesTheQuickWay) {
    for (const EMode eMode :
         {ClIpCalibrateLumivane2::eOddLines, ClIpCalibrateLumivane2::eThinPlateSpline})
        for (const bool bSensitive : {false, true}) {
            ClImage Corrected;
            ClImage Expected;
            Correct(eMode, bSensitive, false, Corrected);
            Correct(eMode, bSensitive, true, Expected);
            ASSERT_TRUE(Quick::ClDynamicCalibration::Takes(Corrected)) << eMode;
            EXPECT_NE(Corrected.Width() % 4, 0) << "lines have ends";
            ClImage Out;
            ASSERT_TRUE(Quick::ClDynamicCalibration().Run(Corrected, bSensitive, &Out, nullptr))
                << eMode << ", sensitive " << bSensitive;
            EXPECT_FALSE(TestSupport::IsWhite(Out)) << eMode;
            EXPECT_EQ(TestSupport::Pixels(Out), TestSupport::Pixels(Expected)) << eMode;
        }
}
