// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

namespace Korvane {

/// A growing array of plain values. It grows and shrinks by realloc, which moves the pages
/// of a large block and not its bytes, so that freezing a filled buffer at its true size
/// costs neither time nor a second copy; new places are not zeroed first. Movable only.
template <class T> class TPodBuffer
{
    static_assert(std::is_trivially_copyable_v<T>);

public:
    TPodBuffer() = default;
    TPodBuffer(TPodBuffer &&other) noexcept
        : FData(std::exchange(other.FData, nullptr)), FSize(std::exchange(other.FSize, 0)),
          FCapacity(std::exchange(other.FCapacity, 0))
    {
    }
    TPodBuffer &operator=(TPodBuffer &&other) noexcept
    {
        std::swap(FData, other.FData);
        std::swap(FSize, other.FSize);
        std::swap(FCapacity, other.FCapacity);
        return *this;
    }
    ~TPodBuffer() { std::free(FData); }

    bool IsEmpty() const { return FSize == 0; }
    size_t Size() const { return FSize; }
    /// Bytes held, used or not.
    size_t MemoryUsage() const { return FCapacity * sizeof(T); }
    T *Data() { return FData; }
    const T *Data() const { return FData; }
    T &operator[](size_t index) { return FData[index]; }
    const T &operator[](size_t index) const { return FData[index]; }
    T &Last() { return FData[FSize - 1]; }
    const T &Last() const { return FData[FSize - 1]; }
    std::span<const T> Values() const { return {FData, FSize}; }

    void Append(T value)
    {
        if (FSize == FCapacity)
            Grow(FSize + 1);
        FData[FSize++] = value;
    }
    void Append(const T *values, size_t count)
    {
        if (count > FCapacity - FSize)
            Grow(FSize + count);
        if (count != 0)
            std::memcpy(FData + FSize, values, count * sizeof(T));
        FSize += count;
    }
    /// Lengthens to a size; the new places hold the value.
    void FillTo(size_t size, T value)
    {
        const size_t old = FSize;
        if (size > FCapacity)
            Grow(size);
        FSize = size;
        for (size_t i = old; i < size; ++i)
            FData[i] = value;
    }
    /// Sets the size; new places hold anything until they are written.
    void ResizeForWriting(size_t size)
    {
        Reserve(size);
        FSize = size;
    }
    /// Takes room for a size at once.
    void Reserve(size_t size)
    {
        if (size > FCapacity)
            Reallocate(size);
    }
    /// Gives back what is not used.
    void Shrink()
    {
        if (FCapacity != FSize)
            Reallocate(FSize);
    }

private:
    void Grow(size_t needed)
    {
        const size_t grown = FCapacity + FCapacity / 2 + 16;
        Reallocate(grown < needed ? needed : grown);
    }
    void Reallocate(size_t capacity)
    {
        if (capacity == 0) {
            std::free(std::exchange(FData, nullptr));
        } else {
            if (capacity > size_t(PTRDIFF_MAX) / sizeof(T))
                throw std::bad_alloc();
            void *moved = std::realloc(static_cast<void *>(FData), capacity * sizeof(T));
            if (!moved)
                throw std::bad_alloc();
            FData = static_cast<T *>(moved);
        }
        FCapacity = capacity;
    }

    T *FData = nullptr;
    size_t FSize = 0;
    size_t FCapacity = 0;
};

} // namespace Korvane
