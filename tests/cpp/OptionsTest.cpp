// Options, typed and as texts.

#include "cpp/Scanner.h"

using tessarin::Calibrator;
using tessarin::Geometry;
using tessarin::Switch;

TEST(Options, AreThoseOfTheLibraryAtFirst) {
    Calibrator Scanner;
    EXPECT_TRUE(Scanner.isEnabled(Switch::dynamicFingerMask));
    EXPECT_FALSE(Scanner.isEnabled(Switch::sensitiveMode));
    EXPECT_FALSE(Scanner.isEnabled(Switch::maskIsOutput));
    EXPECT_FALSE(Scanner.isEnabled(Switch::precalculatedData));
    EXPECT_EQ(Scanner.geometry(), Geometry::thinPlateSpline);
}

TEST(Options, ThatAreSwitchedAreTheOnesNamed) {
    const struct {
        Switch m_eSwitch;
        const char* m_szKey;
    } aSwitches[] = {{Switch::dynamicFingerMask, "DynamicFingerMask"},
                     {Switch::sensitiveMode, "SensitiveMode"},
                     {Switch::maskIsOutput, "MaskIsOutput"},
                     {Switch::precalculatedData, "PrecalculatedData"}};
    for (const auto& Named : aSwitches) {
        Calibrator Scanner;
        for (const bool bEnable : {false, true, false}) {
            Scanner.setOption(Named.m_eSwitch, bEnable);
            EXPECT_EQ(Scanner.getOption(Named.m_szKey), bEnable ? "Enabled" : "Disabled");
            EXPECT_EQ(Scanner.isEnabled(Named.m_eSwitch), bEnable) << Named.m_szKey;
        }
    }
}

namespace {

template <class... Value>
using SetSwitch = decltype(std::declval<Calibrator&>().setOption(Switch::sensitiveMode,
                                                                 std::declval<Value>()...));

template <class, class... Value>
constexpr bool cbSetsSwitch = false;
template <class... Value>
constexpr bool cbSetsSwitch<std::void_t<SetSwitch<Value...>>, Value...> = true;

} // namespace

TEST(Options, ThatAreSwitchedTakeNoText) {
    EXPECT_TRUE((cbSetsSwitch<void, bool>));
    EXPECT_FALSE((cbSetsSwitch<void, const char*>));
    EXPECT_FALSE((cbSetsSwitch<void, const char(&)[6]>));
    EXPECT_TRUE((cbSetsSwitch<void, bool, std::error_code&>));
    EXPECT_FALSE((cbSetsSwitch<void, const char*, std::error_code&>));
}

TEST(Options, ForTheGeometryAreTheOnesNamed) {
    const struct {
        Geometry m_eGeometry;
        const char* m_szText;
    } aGeometries[] = {{Geometry::off, "off"},
                       {Geometry::oddLines, "oddLines"},
                       {Geometry::thinPlateSpline, "ThinPlateSpline"}};
    Calibrator Scanner;
    for (const auto& Named : aGeometries) {
        Scanner.setOption(Named.m_eGeometry);
        EXPECT_EQ(Scanner.getOption("GeometricCalibrate"), Named.m_szText);
        EXPECT_EQ(Scanner.geometry(), Named.m_eGeometry);
    }
}

TEST(Options, AreTakenAsTextsToo) {
    Calibrator Scanner;
    Scanner.setOption("geometriccalibrate=disable");
    EXPECT_EQ(Scanner.geometry(), Geometry::oddLines);
    std::error_code Error;
    Scanner.setOption("Colour=true", Error);
    EXPECT_EQ(Error.value(), QMT_ERROR_PARAM_IS_MISSING);
    Scanner.setOption(nullptr, Error);
    EXPECT_EQ(Error.value(), QMT_ERROR_PARAM_IS_MISSING);
}

TEST(Options, AreReadIntoASpanWithItsSizeTold) {
    Calibrator Scanner;
    std::error_code Error;
    EXPECT_EQ(Scanner.getOption("MaskIsOutput", {}, Error), 9u); // "Disabled" and a zero
    EXPECT_EQ(Error.value(), QMT_ERROR_TEMPLATE_SIZE);
    char szValue[9] = {};
    EXPECT_EQ(Scanner.getOption("MaskIsOutput", szValue, Error), 9u);
    EXPECT_FALSE(Error);
    EXPECT_STREQ(szValue, "Disabled");
    EXPECT_EQ(Scanner.getOption("Colour", szValue, Error), 0u);
    EXPECT_EQ(Error.value(), QMT_ERROR_PARAM_IS_MISSING);
}
