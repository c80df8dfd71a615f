#pragma once

/// `ClIpEuclidLength`, the length of a gradient whose two derivatives are the input images:
///
///     unsigned   out = trunc(sqrt(dx^2 + dy^2) * 0.707), dx and dy from 0 to 255
///     signed     out = trunc(sqrt(dx^2 + dy^2) * 1.414), dx and dy from -128 to 127
///
/// so that the longest vectors, 254 and 255, use the full byte. The type of input 1 decides. Planes
/// are measured by Kernels/Length.h. Two tables hold every answer for programs without vectors, 64
/// KiB each: they are built when the first object of the process is, once, whichever threads are
/// first. A source file that MakeCppFilesFromTabs() writes can take the place of building them.

#include "ImageProcessing/IpArithmetic2to1Base.h"
#include "Tools/DumpTabsToFile.h"

class ClIpEuclidLength : public ClIpArithmetic2to1Base, public ClDumpTabsToFile {
public:
    ClIpEuclidLength();

    ClProcessorBase* Create() override;
    const char* Name() const override;

    /// A length per pair of samples, which are bytes whatever their sign.
    void ProcessArea(long nWidth, long nHeight, long nPlanes, const unsigned char* pIn1,
                     long nIn1Stride, const unsigned char* pIn2, long nIn2Stride,
                     unsigned char* pOut, long nOutStride) override;
    /// Lengths have no sign: makes a signed integer output unsigned, range included, and leaves
    /// any other. The output of a run is `eUInt8` with the range 0 to 255.
    void SetOutImageSign() override;

    /// Writes "IpEuclidLengthTabs.cpp" into the directory `pPath`: both tables, and the flag that
    /// says so, as definitions of the class data. Throws as DumpHeader() and DumpClose().
    static void MakeCppFilesFromTabs(const char* pPath);

protected:
    bool WritesAllOfArea() const override;

private:
    static void InitializeTabsOnce();
    static void InitializeTabs();

    static bool m_bIsInitialized;
    static unsigned char m_tabSigned[256][256]; ///< by the bytes of dx and dy
    static unsigned char m_tabUnsigned[256][256];
};
