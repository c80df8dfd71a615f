#include "bench/FingerTables.h"
#include "bench/FingerTally.h"

#include <cstdio>
#include <map>
#include <vector>

namespace bench {

namespace {

using sim::EKind;

/// All but the ruled plate, which nobody lays on a scanner in use.
const std::vector<EKind>& Kinds() {
    static const std::vector<EKind> aKinds{EKind::eLoop,    EKind::eWhorl,      EKind::eArch,
                                           EKind::eDry,     EKind::eWet,        EKind::eLight,
                                           EKind::ePartial, EKind::eTwoFingers, EKind::eEmpty,
                                           EKind::eDirty,   EKind::eTarget};
    return aKinds;
}

bool IsMisjudged(EKind eKind, bool bTaken) {
    switch (eKind) {
    case EKind::eLoop:
    case EKind::eWhorl:
    case EKind::eArch:
        return !bTaken;
    case EKind::eEmpty:
        return bTaken;
    default: // no claim is made for the others
        return false;
    }
}

} // namespace

int PrintKinds(unsigned long nScanners, unsigned long nFirst) {
    int nMisjudged = 0;
    std::map<EKind, ClFingerTally> aTallies;
    for (unsigned long nSeed = nFirst; nSeed < nFirst + nScanners; ++nSeed) {
        const ClFingerScanner Finger{sim::ClScanner(nSeed)};
        for (const EKind eKind : Kinds()) {
            const sim::ClCapture Capture = sim::CaptureKind(Finger.Scanner(), eKind, nSeed);
            if (!IsMisjudged(eKind, aTallies[eKind].Measure(Finger, Capture)))
                continue;
            ++nMisjudged;
            std::fprintf(stderr, "scanner %lu: misjudged %s\n", nSeed, sim::KindName(eKind));
        }
    }
    ClFingerTally::PrintHead("kind");
    for (const EKind eKind : Kinds())
        aTallies[eKind].Print(sim::KindName(eKind));
    return nMisjudged;
}

} // namespace bench
