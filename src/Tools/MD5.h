#pragma once

/// The hash of the calibration records: the MD5 digest of RFC 1321. It tells one record from
/// another and protects against nothing.

class ClMD5 {
public:
    /// A digest in the making. The words carry 32 bits.
    struct MD5_CTX {
        unsigned long state[4];
        unsigned long count[2]; ///< bits seen so far, the low word first
        unsigned char buffer[64];
    };

    static void Init(MD5_CTX* pContext);
    static void Update(MD5_CTX* pContext, const unsigned char* pData, unsigned long nSize);
    /// Stores the 16 bytes of the digest and clears the context.
    static void Final(unsigned char* pDigest, MD5_CTX* pContext);

    /// The digest of a block, 16 bytes.
    static void Make(const unsigned char* pData, unsigned long nSize, unsigned char* pDigest);
    /// The digest of a file. Throws as `ClFileStream::Open`, and "ClMD5::Make. Failed to read"
    /// (-204) where the file cannot be read to its end.
    static void Make(const char* pFileName, unsigned char* pDigest);
    /// Stores the digest of the first file as the 16 bytes of the second, which is created or
    /// replaced once the first has been read. Throws as the form above, and "Unexpected end of
    /// stream" (-201) on a short write.
    static void Make(const char* pFileName, const char* pDigestFileName);

    /// What is put behind a message: one bit, then zeros.
    static const unsigned char PADDING[64];

private:
    static void MD5Transform(unsigned long* pState, const unsigned char* pBlock);
    static void Encode(unsigned char* pBytes, const unsigned long* pWords, unsigned long nBytes);
    static void Decode(unsigned long* pWords, const unsigned char* pBytes, unsigned long nBytes);
    static void MD5_memcpy(unsigned char* pTo, const unsigned char* pFrom, unsigned long nSize);
    static void MD5_memset(unsigned char* pTo, int nValue, unsigned long nSize);
};
