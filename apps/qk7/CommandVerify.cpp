/// `qk7 verify`: makes blocks anew and compares.

#include "apps/qk7/Advice.h"
#include "apps/qk7/BlockComparison.h"
#include "apps/qk7/BlockInfo.h"
#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/Derivation.h"
#include "apps/qk7/FileRun.h"
#include "apps/qk7/Handle.h"
#include "apps/qk7/Picture.h"

#include "TessarinCalibrateSDK.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>

namespace qk7 {

namespace {

struct StVerifyCall {
    StFileOptions m_Files;
    std::string m_Data; ///< this and the next two: empty when none is given
    std::string m_Target;
    std::string m_Reference;
};

/// What the blocks are compared with, made when the first one needs it.
class ClVerifier {
public:
    /// Reads what is named, whether a block comes to need it or not.
    explicit ClVerifier(const StVerifyCall& Call)
        : m_Data(FileSource(Call.m_Data)), m_Target(PictureSource(Call.m_Target)),
          m_Reference(FileSource(Call.m_Reference)) {}

    StTold Told(const std::string& Path) {
        const Bytes block = ReadFile(Path);
        const std::string name = ShownName(Path, EStream::eIn);
        switch (KindOf(block)) {
        case EFileKind::eCalibration:
            return Judged(Path, "calibration block", Calibration(name, block));
        case EFileKind::ePrecalculated:
            return Judged(Path, "precalculated block", Precalculated(name, block));
        default:
            throw ClFailure(name, "is no calibration block or precalculated block; \"qk7 info\" "
                                  "tells what it is.");
        }
    }

private:
    /// What this version makes of a block's content. That it loads is part of it.
    static Bytes Rewritten(const std::string& Name, const Bytes& Block) {
        ClHandle handle;
        return Handing(EHanded::eCalibration, Name, [&] {
            handle.SetData(Block);
            return handle.Data();
        });
    }

    StComparison Calibration(const std::string& Name, const Bytes& Block) {
        const Bytes rewritten = Rewritten(Name, Block);
        StComparison comparison = CompareCalibration(Block, rewritten);
        if (m_Target.IsThere())
            comparison.Add(CompareRecords(rewritten, Generated()));
        return comparison;
    }

    StComparison Precalculated(const std::string& Name, const Bytes& Block) {
        if (!m_Data.IsThere())
            throw ClFailure(Name, "is a precalculated block; name by -d the calibration block that "
                                  "it was made from.");
        return ComparePrecalculated(Naming(Name, Block), Table());
    }

    /// The block, once it is known that it can be read.
    static const Bytes& Naming(const std::string& Name, const Bytes& Block) {
        try {
            ReadPrecalculatedInfo(Block);
        } catch (const ClFailure& failure) {
            throw ClFailure(Name, std::string(failure.what()) +
                                      ". It is damaged; make it anew with \"qk7 precalculate\".");
        }
        return Block;
    }

    const Bytes& Generated() {
        if (!m_Generated)
            m_Generated = Generate();
        return *m_Generated;
    }

    Bytes Generate() const {
        ClHandle handle;
        if (m_Reference.IsThere())
            Handing(EHanded::eCalibration, m_Reference.Name(),
                    [&] { handle.SetReferenceData(m_Reference.m_Bytes); });
        return HandingBitmap(m_Target.Name(), m_Target.m_Bytes, [&] {
            handle.GenerateData(m_Target.m_Bytes);
            return handle.Data();
        });
    }

    const Bytes& Table() {
        if (!m_Table) {
            ClHandle handle;
            m_Table = Handing(EHanded::eCalibration, m_Data.Name(), [&] {
                handle.SetData(m_Data.m_Bytes);
                return handle.PrecalculatedData(ExpectedPrecalculatedBytes(m_Data.m_Bytes));
            });
        }
        return *m_Table;
    }

    static StTold Judged(const std::string& Path, const std::string& Kind,
                         const StComparison& Comparison) {
        StTold told;
        told.m_bBad = !Comparison.m_aDifferences.empty();
        told.m_Json = {{"file", Path},
                       {"kind", Kind},
                       {"same", !told.m_bBad},
                       {"differences", Comparison.m_aDifferences},
                       {"notes", Comparison.m_aNotes}};
        told.m_Text = ShownName(Path, EStream::eIn) + ": " + Kind + ", " +
                      (told.m_bBad ? OutColoured(EColour::eBad, "NOT what this version makes")
                                   : OutColoured(EColour::eGood, "what this version makes")) +
                      "\n";
        for (const auto* pLines : {&Comparison.m_aDifferences, &Comparison.m_aNotes})
            for (const std::string& line : *pLines)
                told.m_Text += "  " + line + "\n";
        return told;
    }

    StSource m_Data;
    StSource m_Target;
    StSource m_Reference;
    std::optional<Bytes> m_Generated;
    std::optional<Bytes> m_Table;
};

void RunVerify(const StVerifyCall& Call) {
    const StInputs inputs =
        ExpandInputs(Call.m_Files.m_aArguments, {Call.m_Files.m_bRecursive, false, true, ""});
    std::vector<std::string> read = PathsOf(inputs);
    read.insert(read.end(), {Call.m_Data, Call.m_Target, Call.m_Reference});
    ClaimStreams(read, {}, Call.m_Files.m_bJson);
    ClVerifier verifier(Call);
    StFileRun run;
    run.m_Command = "verify";
    run.m_eForm = Call.m_Files.m_bJson ? EForm::eJson : EForm::eText;
    run.m_Done = "good";
    DoFiles(run, Call.m_Files, inputs.m_aFiles,
            [&](std::size_t nFile) { return verifier.Told(inputs.m_aFiles[nFile].m_Path); });
}

} // namespace

void AddVerify(CLI::App& rApp) {
    CLI::App* pCommand = rApp.add_subcommand(
        "verify", "Makes calibration and precalculated blocks anew, and compares");
    const auto pCall = std::make_shared<StVerifyCall>();
    pCommand
        ->add_option("-d,--data", pCall->m_Data,
                     "Calibration block that precalculated blocks were made from")
        ->type_name("scanner.cal");
    pCommand
        ->add_option("--target", pCall->m_Target,
                     "Raw capture of the target that calibration blocks were generated from")
        ->type_name("TARGET");
    CLI::Option* pTarget = pCommand->get_option("--target");
    pCommand
        ->add_option("--reference", pCall->m_Reference,
                     "Calibration block of the plate that was given to \"qk7 generate\"")
        ->needs(pTarget)
        ->type_name("plate.cal");
    AddFileOptions(*pCommand, pCall->m_Files, "BLOCK", "Calibration and precalculated blocks");
    pCommand->callback([pCall] { RunVerify(*pCall); });
}

} // namespace qk7
