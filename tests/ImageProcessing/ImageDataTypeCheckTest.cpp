#include "ImageProcessing/ImageDataTypeCheck.h"

#include "Tools/Allocate.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <string>

namespace {

/// A processor that looks at one image.
class ClIpChecked : public NewIpBase::ClIpProcessorBase {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpChecked>(); }
    const char* Name() const override { return "ClIpChecked"; }
    void CheckInOutImageTypes() override {
        if (m_bForeign)
            throw 12;
        CheckTypeAllowed(m_pInImage);
    }
    long Process() override {
        m_bProcessed = true;
        return 0;
    }

    ClImage* m_pInImage = nullptr;
    bool m_bProcessed = false;
    bool m_bForeign = false;
};

/// One pixel of a type, in memory of its own.
struct StPixel {
    explicit StPixel(unsigned char nType) { m_Image.Attach(m_aBytes, nType, 1, 1, 1, 0, 0); }

    alignas(8) unsigned char m_aBytes[8] = {};
    ClImage m_Image;
};

std::string Refusal(const char* pTypeText) {
    return std::string("Input pixel type \"") + pTypeText + "\" not supported by processor.";
}

TEST(ImageDataTypeCheck, AllowsNothingWithAnEmptyList) {
    const struct {
        unsigned char m_nType;
        const char* m_szText;
    } aCases[] = {{1, "uint8"},  {129, "int8"},  {2, "uint16"},    {130, "int16"},
                  {4, "uint32"}, {132, "int32"}, {196, "float32"}, {200, "double64"}};
    ClIpChecked processor;
    for (const auto& c : aCases) {
        StPixel pixel(c.m_nType);
        processor.m_pInImage = &pixel.m_Image;
        EXPECT_THROWS(processor.Apply(), ClException, -33, Refusal(c.m_szText));
        EXPECT_FALSE(processor.CanApply());
    }
    EXPECT_FALSE(processor.m_bProcessed);
}

TEST(ImageDataTypeCheck, NamesTypesThatAreNone) {
    ClIpChecked processor;
    ClImage image;
    processor.m_pInImage = &image;
    EXPECT_THROWS(processor.Apply(), ClException, -33, Refusal("unknown"));
    image.SetDataType(255);
    EXPECT_THROWS(processor.Apply(), ClException, -33, Refusal("default"));
    image.SetDataType(3);
    EXPECT_THROWS(processor.Apply(), ClException, -33, Refusal("not valid"));
}

TEST(ImageDataTypeCheck, TellsTheSourceOfARefusal) {
    ClIpChecked processor;
    ClImage image;
    try {
        processor.CheckTypeAllowed(&image);
        FAIL();
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "ImageProcessing/ImageDataTypeCheck");
        EXPECT_GT(e.Line(), 0);
    }
}

TEST(ImageDataTypeCheck, AllowsWhatIsEnabled) {
    StPixel pixel(ClImage::eInt16);
    ClIpChecked processor;
    processor.EnableDataType(ClImage::eInt16);
    processor.m_pInImage = &pixel.m_Image;
    EXPECT_TRUE(processor.CheckTypeAllowed(&pixel.m_Image));
    EXPECT_TRUE(processor.CanApply());
    EXPECT_FALSE(processor.m_bProcessed);
    EXPECT_EQ(processor.Apply(), 0);
    EXPECT_TRUE(processor.m_bProcessed);
    EXPECT_FALSE(processor.CheckIfTypeAllowed(ClImage::eUInt16));
}

TEST(ImageDataTypeCheck, EnablesAList) {
    const ClImage::EDataType aTypes[] = {ClImage::eUInt8, ClImage::eFloat32, ClImage::eUInt8};
    ClIpChecked processor;
    processor.EnableDataType(aTypes, 2);
    EXPECT_TRUE(processor.CheckIfTypeAllowed(ClImage::eUInt8));
    EXPECT_TRUE(processor.CheckIfTypeAllowed(ClImage::eFloat32));
    EXPECT_FALSE(processor.CheckIfTypeAllowed(ClImage::eDouble64));
    processor.EnableDataType(nullptr, 4);
}

TEST(ImageDataTypeCheck, EnablesATypeOnce) {
    ClIpChecked processor;
    processor.EnableDataType(ClImage::eUInt8);
    TestSupport::ClFailAllocation fail(0);
    for (int i = 0; i < 20; ++i)
        processor.EnableDataType(ClImage::eUInt8);
    EXPECT_FALSE(TestSupport::ClFailAllocation::Happened());
}

TEST(ImageDataTypeCheck, EnablesMoreThanEightTypes) {
    ClIpChecked processor;
    for (unsigned char nType = 0; nType < 20; ++nType)
        processor.EnableDataType(static_cast<ClImage::EDataType>(nType));
    for (unsigned char nType = 0; nType < 20; ++nType)
        EXPECT_TRUE(processor.CheckIfTypeAllowed(static_cast<ClImage::EDataType>(nType)));
}

TEST(ImageDataTypeCheck, RefusesAMissingImage) {
    ClIpChecked processor;
    EXPECT_THROWS(processor.Apply(), ClException, -701, "Input image not assigned");
    EXPECT_FALSE(processor.CanApply());
}

TEST(ImageDataTypeCheck, SwallowsOnlyExceptionsOfTheLibrary) {
    ClIpChecked processor;
    processor.m_bForeign = true;
    EXPECT_THROW(processor.CanApply(), int);
}

TEST(ImageDataTypeCheck, AnswersAMissingAllocation) {
    ClIpChecked processor;
    {
        TestSupport::ClFailAllocation fail(0);
        EXPECT_THROWS(processor.EnableDataType(ClImage::eUInt8), ClExBadAlloc, -102,
                      "Memory allocation failed");
    }
    EXPECT_FALSE(processor.CheckIfTypeAllowed(ClImage::eUInt8));
    processor.EnableDataType(ClImage::eUInt8);
    EXPECT_TRUE(processor.CheckIfTypeAllowed(ClImage::eUInt8));
}

} // namespace
