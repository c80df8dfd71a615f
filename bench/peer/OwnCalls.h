#pragma once

/// Our exported calls on a handle of their own.

#include "Scene.h"

#include <TessarinCalibrateSDK.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>

namespace peer {

inline void Require(long nStatus) {
    if (nStatus == QMT_SUCCESS)
        return;
    std::fprintf(stderr, "bench_peer: %s\n", CalibrateGetErrorDescription(nStatus));
    std::exit(2);
}

class ClOwnCalls {
public:
    ClOwnCalls(const Block& Record, std::initializer_list<const char*> aOptions)
        : m_pHandle(CalibrateCreate()), m_Record(Record) {
        for (const char* szOption : aOptions)
            Require(CalibrateSetOption(m_pHandle, szOption));
        SetData();
    }
    ClOwnCalls(const ClOwnCalls&) = delete;
    ClOwnCalls& operator=(const ClOwnCalls&) = delete;
    ~ClOwnCalls() { CalibrateDelete(&m_pHandle); }

    void SetData() { Require(CalibrateSetData(m_pHandle, m_Record.data(), m_Record.size())); }

    void Correct(Block& rCapture) {
        m_Out.resize(rCapture.size());
        unsigned long nSize = m_Out.size();
        Require(Calibrate(m_pHandle, rCapture.data(), rCapture.size(), m_Out.data(), &nSize));
    }

    void Generate(Block& rTarget) {
        Require(CalibrateGenerateData(m_pHandle, rTarget.data(), rTarget.size()));
    }

    double Contamination(Block& rCapture) {
        double dLevel = 0.0;
        Require(ContaminationDetection(m_pHandle, rCapture.data(), rCapture.size(), &dLevel));
        return dLevel;
    }

private:
    void* m_pHandle;
    Block m_Record;
    Block m_Out;
};

} // namespace peer
