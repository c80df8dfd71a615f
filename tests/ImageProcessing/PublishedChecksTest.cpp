/// The comparisons of support/PublishedParameters.h see every kind of difference.

#include "Tools/Allocate.h"
#include "support/PublishedParameters.h"

#include <gtest/gtest-spi.h>

#include <cstdio>

namespace {

using namespace TestSupport;

/// A processor with a setting of each kind, and faults that can be switched on.
class ClIpSample : public ClProcessorBase {
public:
    using ClProcessorBase::QueryParameters;
    ClIpSample() { ClIpSample::SetParametersToDefault(); }

    ClProcessorBase* Create() override { return Vek::NewObject<ClIpSample>(); }
    const char* Name() const override { return "ClIpSample"; }
    long Process() override { return 0; }
    void SetParametersToDefault() override {
        m_pImage = nullptr;
        m_nWidth = 3;
        m_dSigma = 1.5;
        m_nMode = 1;
        m_bExact = true;
    }
    void PublishParameters(ClParameterContainer& Container) override {
        Container.AddPointer("pImage", &m_pImage, ePfIn, "In: Image");
        Container.AddNumeric("nWidth", &m_nWidth);
        ClParameterContainer* pPart = Container.AddContainer("Part");
        pPart->AddNumeric("dSigma", &m_dSigma);
        pPart->AddEnum("nMode", &m_nMode, {{1, "Mode X"}, {2, "Mode Y"}});
        pPart->AddBool("bExact", &m_bExact);
    }
    void QueryParameters(ClParameterInterface& List) override {
        List.AddParameter(&m_pImage, "Image", "In: Image", ceIn, 0.0, 0.0);
        List.AddParameter(&m_nWidth, "Width", "", ceIn, 3.0, 127.0);
        List.AddParameter(&m_dSigma, "Sigma", "", ceOut, 0.0, 0.0);
        const long anModes[] = {1, 2};
        List.AddEnum(&m_nMode, "Mode", "", "Mode X\0Mode Y\0", anModes, ceIn, sizeof m_nMode);
        List.AddBool(&m_bExact, "Exact", "", ceIn);
    }
    long ParameterString(char* pBuffer, unsigned long nSize) override {
        if (nSize < m_nLimit || pBuffer == nullptr)
            throw ClException("String-Length exceeded available size", -101, true, VEK_HERE);
        return std::snprintf(pBuffer, nSize, "W%ld", m_nWidth);
    }

    ClImage* m_pImage = nullptr;
    ClImage* m_pOther = nullptr;
    long m_nWidth = 0;
    long m_nOther = 0;
    double m_dSigma = 0.0;
    int m_nMode = 0;
    bool m_bExact = false;
    unsigned long m_nLimit = 3; ///< bytes of "W3"
};

const NamedValues caSampleModes = {{1, "Mode X"}, {2, "Mode Y"}};

std::vector<StTreeRow> Tree(ClIpSample& Sample) {
    return {TreePointer("pImage", Sample.m_pImage, ePfIn, "In: Image"),
            TreeNumber("nWidth", Sample.m_nWidth, 3),
            TreeContainer("Part"),
            TreeNumber("dSigma", Sample.m_dSigma, 1.5),
            TreeEnum("nMode", Sample.m_nMode, 1, caSampleModes),
            TreeBool("bExact", Sample.m_bExact, true)};
}

std::vector<StFlatRow> Flat(ClIpSample& Sample) {
    return {FlatImage("Image", Sample.m_pImage, "In: Image"),
            FlatNumber("Width", Sample.m_nWidth, 3, "", 3, 127),
            FlatNumber("Sigma", Sample.m_dSigma, 1.5, "", 0, 0, ceOut),
            FlatEnum("Mode", Sample.m_nMode, 1, caSampleModes),
            FlatBool("Exact", Sample.m_bExact, true)};
}

/// Whether the statements of `check` report a failure or end with an exception.
template <class Check>
bool Complains(Check check) {
    testing::TestPartResultArray Results;
    {
        testing::ScopedFakeTestPartResultReporter Reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &Results);
        try {
            check();
        } catch (const ClException&) {
            return true;
        }
    }
    for (int i = 0; i < Results.size(); ++i)
        if (Results.GetTestPartResult(i).failed())
            return true;
    return false;
}

/// Whether the comparison fails with one row exchanged.
bool TreeComplains(std::size_t nRow, StTreeRow (*make)(ClIpSample&)) {
    ClIpSample Sample;
    std::vector<StTreeRow> aRows = Tree(Sample);
    aRows.at(nRow) = make(Sample);
    return Complains([&] { ExpectTree(Sample, aRows); });
}

bool FlatComplains(std::size_t nRow, StFlatRow (*make)(ClIpSample&)) {
    ClIpSample Sample;
    std::vector<StFlatRow> aRows = Flat(Sample);
    aRows.at(nRow) = make(Sample);
    return Complains([&] { ExpectFlat(Sample, aRows); });
}

TEST(PublishedChecks, AcceptTheTruth) {
    ClIpSample Sample;
    ExpectTree(Sample, Tree(Sample));
    EXPECT_EQ(Sample.m_nWidth, 3) << "the defaults are back";
    EXPECT_EQ(Sample.m_pImage, nullptr);
    ExpectFlat(Sample, Flat(Sample));
    EXPECT_EQ(Sample.m_nWidth, 3);
    ExpectProcessor<ClIpSample>("ClIpSample");
    ExpectSettings(Sample, "W3");
}

TEST(PublishedChecks, SeeAMissingAndASurplusRow) {
    ClIpSample Sample;
    EXPECT_TRUE(Complains([&] { ExpectTree(Sample, {}); }));
    EXPECT_TRUE(Complains([&] { ExpectFlat(Sample, {}); }));
    std::vector<StTreeRow> aTree = Tree(Sample);
    aTree.push_back(aTree.front());
    EXPECT_TRUE(Complains([&] { ExpectTree(Sample, aTree); }));
}

TEST(PublishedChecks, SeeAnotherTreeParameter) {
    using S = ClIpSample;
    EXPECT_TRUE(TreeComplains(0, [](S& s) {
        return TreePointer("pOutImage", s.m_pImage, ePfIn, "In: Image"); // name
    }));
    EXPECT_TRUE(TreeComplains(0, [](S& s) {
        return TreePointer("pImage", s.m_pImage, ePfIn, "Image"); // description
    }));
    EXPECT_TRUE(TreeComplains(0, [](S& s) {
        return TreePointer("pImage", s.m_pImage, ePfOut, "In: Image"); // flags
    }));
    EXPECT_TRUE(TreeComplains(0, [](S& s) {
        return TreePointer("pImage", s.m_pOther, ePfIn, "In: Image"); // binding
    }));
    EXPECT_TRUE(TreeComplains(1, [](S& s) { return TreeNumber("nWidth", s.m_nWidth, 4); }));
    EXPECT_TRUE(TreeComplains(1, [](S& s) { return TreeNumber("nWidth", s.m_nOther, 3); }));
    EXPECT_TRUE(TreeComplains(1, [](S& s) { return TreeNumber("nWidth", s.m_dSigma, 3); }));
    EXPECT_TRUE(TreeComplains(2, [](S&) { return TreeContainer("Parts"); }));
    EXPECT_TRUE(
        TreeComplains(4, [](S& s) { return TreeEnum("nMode", s.m_nMode, 2, caSampleModes); }));
    EXPECT_TRUE(TreeComplains(4, [](S& s) {
        return TreeEnum("nMode", s.m_nMode, 1, {{1, "Mode X"}, {3, "Mode Y"}});
    }));
    EXPECT_TRUE(TreeComplains(4, [](S& s) {
        return TreeEnum("nMode", s.m_nMode, 1, {{1, "Mode X"}});
    }));
    EXPECT_TRUE(TreeComplains(5, [](S& s) { return TreeBool("bExact", s.m_bExact, false); }));
    EXPECT_TRUE(TreeComplains(5, [](S&) { return TreeOther("bExact", "False"); }));
}

TEST(PublishedChecks, SeeAnotherFlatParameter) {
    using S = ClIpSample;
    EXPECT_TRUE(FlatComplains(0, [](S& s) {
        return FlatImage("InImage", s.m_pImage, "In: Image"); // name
    }));
    EXPECT_TRUE(FlatComplains(0, [](S& s) {
        return FlatImage("Image", s.m_pImage); // description
    }));
    EXPECT_TRUE(FlatComplains(0, [](S& s) {
        return FlatImage("Image", s.m_pImage, "In: Image", ceOut); // direction
    }));
    EXPECT_TRUE(FlatComplains(0, [](S& s) {
        return FlatImage("Image", s.m_pOther, "In: Image"); // binding
    }));
    EXPECT_TRUE(FlatComplains(1, [](S& s) {
        return FlatNumber("Width", s.m_nWidth, 4, "", 3, 127); // default
    }));
    EXPECT_TRUE(FlatComplains(1, [](S& s) {
        return FlatNumber("Width", s.m_nWidth, 3, "", 1, 127); // lower limit
    }));
    EXPECT_TRUE(FlatComplains(1, [](S& s) {
        return FlatNumber("Width", s.m_nWidth, 3, "", 3, 128); // upper limit
    }));
    EXPECT_TRUE(FlatComplains(1, [](S& s) {
        return FlatNumber("Width", s.m_dSigma, 3, "", 3, 127); // type
    }));
    EXPECT_TRUE(FlatComplains(3, [](S& s) {
        return FlatEnum("Mode", s.m_nMode, 1, {{1, "Mode X"}}); // too few names
    }));
    EXPECT_TRUE(FlatComplains(3, [](S& s) {
        return FlatEnum("Mode", s.m_nMode, 1, {{1, "Mode X"}, {3, "Mode Y"}}); // a value
    }));
    EXPECT_TRUE(FlatComplains(4, [](S& s) { return FlatBool("Exact", s.m_bExact, false); }));
    EXPECT_TRUE(FlatComplains(4, [](S& s) {
        return FlatEnum("Exact", s.m_bExact, 1, caBoolNames); // type
    }));
}

/// Faults of a processor.
class ClIpOtherClass : public ClIpSample {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpSample>(); }
};

class ClIpCopied : public ClIpSample {
public:
    ClProcessorBase* Create() override {
        auto* pCreated = Vek::NewObject<ClIpCopied>();
        pCreated->m_nWidth = m_nWidth;
        return pCreated;
    }
};

class ClIpEager : public ClIpSample {
public:
    bool CanApply() override { return true; }
};

TEST(PublishedChecks, SeeFaultsOfAProcessor) {
    EXPECT_TRUE(Complains([] { ExpectProcessor<ClIpSample>("ClIpOther"); }));
    EXPECT_TRUE(Complains([] { ExpectProcessor<ClIpOtherClass>("ClIpSample"); }));
    EXPECT_TRUE(Complains([] { ExpectProcessor<ClIpCopied>("ClIpSample"); }));
    EXPECT_TRUE(Complains([] { ExpectProcessor<ClIpEager>("ClIpSample"); }));
}

TEST(PublishedChecks, SeeFaultsOfTheSettingsText) {
    ClIpSample Sample;
    EXPECT_TRUE(Complains([&] { ExpectSettings(Sample, "W4"); }));
    EXPECT_TRUE(Complains([&] { ExpectNoSettings(Sample); }));
    Sample.m_nLimit = 2; // cuts where it should refuse
    EXPECT_TRUE(Complains([&] { ExpectSettings(Sample, "W3"); }));
}

} // namespace
