#pragma once

/// Keeps the image pointers of a processor while a part of its work runs on other images.

#include "Tools/FpImage.h"

class ClImageSwitch {
public:
    ClImageSwitch(ClImage*& pIn, ClImage*& pOut)
        : m_rIn(pIn), m_rOut(pOut), m_pIn(pIn), m_pOut(pOut) {}
    ClImageSwitch(const ClImageSwitch&) = delete;
    ClImageSwitch& operator=(const ClImageSwitch&) = delete;
    ~ClImageSwitch() {
        m_rIn = m_pIn;
        m_rOut = m_pOut;
    }

    void Set(ClImage& In, ClImage& Out) {
        m_rIn = &In;
        m_rOut = &Out;
    }
    ClImage& In() const { return *m_pIn; }
    ClImage& Out() const { return *m_pOut; }

private:
    ClImage*& m_rIn;
    ClImage*& m_rOut;
    ClImage* m_pIn;
    ClImage* m_pOut;
};
