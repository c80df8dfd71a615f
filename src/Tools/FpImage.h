#pragma once

/// `ClImage`, the one image container: a raster of interleaved samples of one of eight pixel
/// types. Lines are padded to a multiple of 4 bytes, as those of bitmaps, so that a bitmap's
/// pixels are attached without a copy. The buffer is shared by reference count: an image owns it,
/// shares it with other images or bitmaps, or points at memory that somebody else owns.
///
/// Sample p of pixel x of line y lies at sample index y * LineStrideSamples() + x * Planes() + p.
/// Line 0 is the line stored first: an attached bottom-up bitmap is not flipped.

#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>

class ClBitmap;
class ClStream;

class ClImage : private boost::noncopyable {
public:
    /// Pixel types: bits 0 to 4 count the bytes of a sample, bit 6 says floating point, bit 7
    /// says signed.
    enum EDataType : unsigned char {
        eTypeUnknown = 0,
        eUInt8 = 1,
        eUInt16 = 2,
        eUInt32 = 4,
        eInt8 = 129,
        eInt16 = 130,
        eInt32 = 132,
        eFloat32 = 196,
        eDouble64 = 200,
        eTypeDefault = 255, ///< a request for the input's type, in parameters only
    };

    /// What the planes mean.
    enum EContent : std::uint32_t {
        eUnknown = 0,
        eGrayscale = 1,
        eRGB = 2,
        eRGBA = 3,
        eHSV = 4,
        eXYZ = 5,
        eCIELab = 6,
        eCIELUV = 7,
    };

    /// Deleter of foreign buffers: leaves them alone.
    struct void_deleter {
        void operator()(const void*) const noexcept {}
    };

    /// The empty image.
    ClImage() noexcept;
    /// An 8-bit image; see NewWithType().
    ClImage(int nWidth, int nHeight, int nPlanes, int nPelsX, int nPelsY);
    virtual ~ClImage();

    /// Back to the empty state; a buffer that others share stays alive for them. All three are
    /// the same operation.
    void Initialize() noexcept;
    void Delete() noexcept { Initialize(); }
    void Detach() noexcept { Delete(); }

    /// Gives the image a type and a geometry; resolutions are in picture elements per metre. The
    /// buffer is kept when this image is its only holder and its size fits, and zero-filled when
    /// it is new; range and content become the defaults in either case.
    ///
    /// Throws "Image area must be positive" (-101) for an area without bytes, and for negative
    /// arguments; `ClExBadAlloc` (-102) where memory is missing or the size exceeds 2^31 - 1,
    /// after which the image is empty.
    void NewWithType(unsigned char nType, int nWidth, int nHeight, int nPlanes, int nPelsX,
                     int nPelsY);
    /// `Src`'s geometry, content and attribute with another type. Throws -44 for `Src` itself.
    void NewWithType(const ClImage& Src, unsigned char nType);
    /// `Src`'s type, geometry, range, content and attribute, but not its pixels.
    void New(const ClImage& Src);

    /// Deep copies, padding included. Of an image without the pixels that its geometry claims the
    /// copy is 0.
    ClImage& operator=(const ClImage& Src);
    ClImage& operator=(const ClBitmap& Bitmap);
    /// Fills the buffer, padding included: with 0 for any type, with other values for types of
    /// one byte; else throws "Image Type is not the assigned type" (-101).
    ClImage& operator=(unsigned char nValue);

    /// Points at the caller's pixels, which follow the line rule and outlive the image. With null
    /// the image has the geometry and no pixels, until NewWithType() or an assignment gives it
    /// some.
    void Attach(void* pData, unsigned char nType, int nWidth, int nHeight, int nPlanes, int nPelsX,
                int nPelsY);
    /// The same with the type, geometry, range, content and attribute of `Layout`. With itself as
    /// layout the image is left empty.
    void Attach(void* pData, const ClImage& Layout);
    /// Shares `Src`'s buffer. Attaching itself leaves the image empty.
    void Attach(const ClImage& Src);
    /// Shares the bitmap's pixels; a palette is ignored. Returns false for a compressed bitmap;
    /// throws -12 for a depth other than 8, 24 or 32 and -10 for an empty bitmap. The image is
    /// empty after both.
    bool Attach(const ClBitmap& Bitmap);

    /// Exchanges everything, buffers included.
    void Swap(ClImage& Other);

    /// One plane as an image of its own, with the default range of the type. `Out` may be this
    /// image, and is 0 where this one has no pixels. Throws -35 for a plane outside the image.
    void GetPlane(int nPlane, ClImage& Out) const;

    /// Sets the line ends, from the byte of index Width() on, to `nValue`. Exact for 8-bit images
    /// of one plane; on wider pixels it overwrites samples, by design.
    void FillAligment(int nValue);

    /// Whether sizes, range and type agree; CheckValid() throws (-101) what is wrong.
    bool IsValid() const;
    bool CheckValid() const;

    /// The default rules for range and content.
    void BlackWhiteFromType(unsigned char nType);
    void ContentFromPlanes(int nPlanes);

    /// The raw image format: type, geometry, range and samples without loss. Load() throws
    /// "KPF Magic is missing", "Wrong KPF version" or "KPF end Magic is missing" (-101).
    void Store(ClStream& Stream) const;
    void Store(const char* pFileName) const;
    void Load(ClStream& Stream);
    void Load(const char* pFileName);

    int Width() const { return m_nWidth; }
    int Height() const { return m_nHeight; }
    int Planes() const { return m_nPlanes; }
    int PelsX() const { return m_nPelsX; }
    int PelsY() const { return m_nPelsY; }
    double Black() const { return m_dBlack; }
    double White() const { return m_dWhite; }
    unsigned char DataType() const { return m_nDataType; }
    EContent Content() const { return m_eContent; }
    int Attribute() const { return m_nAttribute; }
    unsigned char* Data() const { return m_pData.get(); }

    int BytesPerSample() const { return BytesPerSample(m_nDataType); }
    /// Bytes and samples from one line to the next.
    int LineStrideBytes() const;
    int LineStrideSamples() const;
    /// Bytes of all lines, padding included; 0 unless width, height and planes are positive.
    std::size_t SizeBytes() const;

    unsigned char* LineData(long y) const {
        return Data() + static_cast<std::ptrdiff_t>(y) * LineStrideBytes();
    }
    /// First sample of line `y`; the caller has compared the type.
    template <class T>
    T* Line(int y) const {
        return reinterpret_cast<T*>(LineData(y));
    }

    void SetBlack(double dBlack) { m_dBlack = dBlack; }
    void SetWhite(double dWhite) { m_dWhite = dWhite; }
    void SetContent(EContent eContent) { m_eContent = eContent; }
    void SetAttribute(int nAttribute) { m_nAttribute = nAttribute; }
    void SetPelsX(int nPelsX) { m_nPelsX = nPelsX; }
    void SetPelsY(int nPelsY) { m_nPelsY = nPelsY; }
    /// Changes the type alone, to one of the same sample size.
    void SetDataType(unsigned char nType) { m_nDataType = nType; }

    static int BytesPerSample(unsigned char nType) { return nType & 0x1F; }
    static bool IsSigned(unsigned char nType) { return (nType & 0x80) != 0; }
    static bool IsFloat(unsigned char nType) { return (nType & 0x40) != 0; }
    /// "uint8" and so on; "not valid" for a value that is no type.
    static const char* TypeText(unsigned char nType);

private:
    friend class ClBitmap;

    /// Bytes of a line in 64 bits; may exceed what an image can have.
    static std::int64_t StrideBytes(unsigned char nType, int nWidth, int nPlanes);
    bool HasBytes() const { return Data() != nullptr && SizeBytes() > 0; }
    const char* FirstDefect() const;
    void CopyDescription(const ClImage& Src);
    void Allocate(std::size_t nSize);
    void HoldForeign(void* pData);

    unsigned char m_nDataType = eTypeUnknown;
    EContent m_eContent = eUnknown;
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nPelsX = 0;
    int m_nPelsY = 0;
    boost::shared_ptr<unsigned char> m_pData; ///< without pixels null: being empty needs no memory
    int m_nPlanes = 0;
    double m_dBlack;
    double m_dWhite;
    int m_nAttribute = 0;
    /// Bytes behind m_pData. The geometry cannot stand for it: a refused NewWithType() leaves the
    /// new geometry with the old buffer.
    std::size_t m_nBufferSize = 0;
};
