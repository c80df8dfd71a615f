#pragma once

/// The owning arrays of the library. They hold short lists: growth is linear by a step that the
/// type names, on purpose, and element access is not checked.

#include "Tools/Allocate.h"

#include <algorithm>

template <class T>
class TpArrayStatic {
public:
    TpArrayStatic() = default;
    TpArrayStatic(const TpArrayStatic& other) { Assign(other.m_pData, other.Entries()); }
    /// A deep copy of the other's elements, whatever the growth of the two; on failure nothing
    /// changes.
    TpArrayStatic& operator=(const TpArrayStatic& other) {
        if (this != &other)
            Assign(other.m_pData, other.Entries());
        return *this;
    }
    virtual ~TpArrayStatic() { delete[] m_pData; }

    virtual unsigned long Entries() const { return m_nSize; }

    /// Drops the content and makes room for `nEntries` default-constructed elements.
    virtual void New(unsigned long nEntries) {
        delete[] m_pData;
        m_pData = nullptr;
        m_nSize = 0;
        if (nEntries > 0)
            m_pData = Vek::NewArray<T>(nEntries);
        m_nSize = nEntries;
    }

    /// Releases the storage.
    virtual void Clear() { New(0); }

    T* Data() { return m_pData; }
    const T* Data() const { return m_pData; }
    T& operator[](unsigned long nIndex) { return m_pData[nIndex]; } // NOLINT: below Entries()
    const T& operator[](unsigned long nIndex) const { return m_pData[nIndex]; }

protected:
    /// Copies `nEntries` elements into storage of exactly `nEntries`; on failure nothing changes.
    void Assign(const T* pSource, unsigned long nEntries) {
        std::unique_ptr<T[]> pCopy;
        if (nEntries > 0) {
            pCopy = Vek::NewArrayPtr<T>(nEntries);
            std::copy(pSource, pSource + nEntries, pCopy.get());
        }
        Adopt(pCopy.release(), nEntries);
    }

    /// Takes over storage that holds exactly `nEntries` elements.
    virtual void Adopt(T* pData, unsigned long nEntries) noexcept {
        delete[] m_pData;
        m_pData = pData;
        m_nSize = nEntries;
    }

    unsigned long m_nSize = 0;
    T* m_pData = nullptr;
};

/// An array that grows by `N` elements when an append finds it full. `m_nSize` is its capacity.
template <class T, unsigned long N>
class TpArrayDynamic : public TpArrayStatic<T> {
public:
    TpArrayDynamic() = default;
    TpArrayDynamic(const TpArrayDynamic& other) : TpArrayStatic<T>() { *this = other; }
    TpArrayDynamic& operator=(const TpArrayDynamic& other) { // NOLINT(cert-oop54-cpp): as the base
        TpArrayStatic<T>::operator=(other);
        return *this;
    }

    unsigned long Entries() const override { return m_nEntries; }

    void New(unsigned long nEntries) override {
        m_nEntries = 0;
        TpArrayStatic<T>::New(nEntries);
        m_nEntries = nEntries;
    }

    /// Forgets the elements and keeps the storage.
    void Clear() override { m_nEntries = 0; }

    /// Adds an element, which may be one of this array, and returns its index. When memory is
    /// missing the array is as before.
    unsigned long Append(const T& element) {
        if (m_nEntries == this->m_nSize) {
            auto pGrown = Vek::NewArrayPtr<T>(this->m_nSize + N);
            std::copy(this->m_pData, this->m_pData + m_nEntries, pGrown.get());
            pGrown[m_nEntries] = element;
            delete[] this->m_pData;
            this->m_pData = pGrown.release();
            this->m_nSize += N;
        } else {
            this->m_pData[m_nEntries] = element;
        }
        return m_nEntries++;
    }

    /// Makes room for at least `nEntries` elements in steps of `N`, keeping the content.
    void Reserve(unsigned long nEntries) {
        if (nEntries <= this->m_nSize)
            return;
        const unsigned long nSteps = (nEntries - this->m_nSize - 1) / N + 1;
        // A capacity beyond all numbers wraps round; the count itself is refused then.
        const unsigned long nCapacity = std::max(nEntries, this->m_nSize + nSteps * N);
        auto pGrown = Vek::NewArrayPtr<T>(nCapacity);
        std::copy(this->m_pData, this->m_pData + m_nEntries, pGrown.get());
        delete[] this->m_pData;
        this->m_pData = pGrown.release();
        this->m_nSize = nCapacity;
    }

    /// Makes the array `nEntries` long without clearing anything; new elements hold whatever
    /// their storage holds.
    void SetEntries(unsigned long nEntries) {
        Reserve(nEntries);
        m_nEntries = nEntries;
    }

    /// Removes the element at `nIndex`, keeping the order of the others.
    void Remove(unsigned long nIndex) {
        std::copy(this->m_pData + nIndex + 1, this->m_pData + m_nEntries, this->m_pData + nIndex);
        --m_nEntries;
    }

    unsigned long Capacity() const { return this->m_nSize; }

private:
    void Adopt(T* pData, unsigned long nEntries) noexcept override {
        TpArrayStatic<T>::Adopt(pData, nEntries);
        m_nEntries = nEntries;
    }

    unsigned long m_nEntries = 0;
};
