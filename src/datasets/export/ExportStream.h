// SPDX-License-Identifier: MIT
#pragma once

#include <QFileDevice>

#include <cstring>
#include <memory>

namespace Korvane {

/// Bytes on their way into a file, in large pieces. What the file refuses raises EFileError.
class TExportStream
{
public:
    static constexpr size_t Capacity = 256 * 1024;

    /// The file is open for writing and outlives the stream.
    explicit TExportStream(QFileDevice &file) : FFile(file), FBuffer(new char[Capacity]) {}
    TExportStream(const TExportStream &) = delete;
    TExportStream &operator=(const TExportStream &) = delete;

    /// A place for so many bytes, at most Capacity, behind the last ones; Advance takes them.
    char *Room(size_t bytes)
    {
        if (Capacity - FSize < bytes)
            Flush();
        return FBuffer.get() + FSize;
    }
    void Advance(size_t bytes) { FSize += bytes; }
    void Write(const void *bytes, size_t count)
    {
        if (count > Capacity)
            return WriteLarge(static_cast<const char *>(bytes), count);
        if (count == 0)
            return;
        std::memcpy(Room(count), bytes, count);
        Advance(count);
    }
    /// Hands everything over. Without it the end of the bytes is lost.
    void Flush();

private:
    void WriteLarge(const char *bytes, size_t count);

    QFileDevice &FFile;
    const std::unique_ptr<char[]> FBuffer;
    size_t FSize = 0;
};

} // namespace Korvane
