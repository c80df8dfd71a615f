#pragma once

/// A stream over memory: over a buffer of its own, which grows, or over the caller's, which does
/// not.
///
/// Its own buffer grows by a fifth and a few bytes more than needed, so that many small writes
/// cost few reallocations. Where memory is missing `ClExBadAlloc` (-102) is thrown and content and
/// position are as before.

#include "Tools/Stream.h"

class ClMemStream : public ClStream {
public:
    /// Owned, empty, writable.
    ClMemStream();
    /// Owned, `nSize` bytes of content that are not initialised: the caller writes them.
    ClMemStream(unsigned long nSize, bool bWritable);
    /// Attached: the caller keeps the block and keeps it alive. The second form is read-only. A
    /// null block has size 0.
    ClMemStream(unsigned char* pData, unsigned long nSize, bool bWritable);
    ClMemStream(const unsigned char* pData, unsigned long nSize);
    ~ClMemStream() override;

    /// Close(), then takes the block, at position 0 and without pending bits. The strict flag and
    /// the byte order stay.
    void Attach(unsigned char* pData, unsigned long nSize, bool bWritable);
    void Attach(const unsigned char* pData, unsigned long nSize);

    /// Goes to position 0; always true.
    bool Open();
    /// Releases an own buffer or lets go of the caller's, also where pending bits fail to be
    /// written and that failure is thrown.
    void Close() override;
    unsigned long Pos() const override;
    unsigned long Size() const override;
    /// SetReadPos() of the target; a negative or overflowing one is refused.
    unsigned int Seek(long nOffset, int nWhence) override;
    const char* Name() const override;
    bool IsSeekable() const override;
    /// Writes all bytes or throws: "ClMemStream::WriteRaw. Stream is not open for write" (-204) on
    /// a read-only stream, as ExpandData() on a full one. `pData` is no part of the stream's own
    /// buffer.
    unsigned long WriteRaw(const void* pData, unsigned long nSize) override;
    unsigned long ReadRaw(void* pData, unsigned long nSize) override;

    /// The content, null when it is empty.
    virtual const unsigned char* GetData() const;

    /// Moves the position. A writable stream goes behind its content, over zeros, as far as its
    /// buffer reaches after growing to 1.2 * `nPos` bytes; the content grows with the next write
    /// only. Returns 0, or 0xFFFFFFFF with the position unchanged. Throws as ExpandData().
    unsigned int SetReadPos(unsigned long nPos);

    /// Makes room for `nNewCapacity` bytes, ~0 for double the room; never shrinks. Throws
    /// "ClMemStream::ExpandData. Stream too small" (-204) on an attached block.
    void ExpandData(unsigned long nNewCapacity);

private:
    void Take(unsigned char* pData, unsigned long nSize, bool bWritable) noexcept;
    void Release() noexcept;

    unsigned char* m_pData = nullptr;
    unsigned long m_nSize = 0; ///< bytes of valid content
    unsigned long m_nCapacity = 0;
    unsigned long m_nPos = 0;
    bool m_bAttached = false;
    bool m_bWritable = true;
};
