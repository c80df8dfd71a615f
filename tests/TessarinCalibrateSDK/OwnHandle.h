#pragma once

/// A handle put together by hand, around a processor of the test's choice.

#include "TessarinCalibrateSDK/Handle.h"

#include <cstring>

namespace TestSupport {

template <class Processor = ClIpCalibrateLumivane2>
struct StOwnHandle {
    StOwnHandle() {
        std::memcpy(m_Record.m_acHead, "CAL", 4);
        std::memcpy(m_Record.m_acTail, "LAC", 4);
        m_Record.m_pProcessor = &m_Processor;
    }
    StOwnHandle(const StOwnHandle&) = delete;
    StOwnHandle& operator=(const StOwnHandle&) = delete;

    void* Handle() { return &m_Record; }

    Processor m_Processor;
    CalibrateHandle_t m_Record{};
};

} // namespace TestSupport
