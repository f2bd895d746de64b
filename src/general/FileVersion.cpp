// SPDX-License-Identifier: MIT
#include "general/FileVersion.h"

#include <QtEndian>

#include <optional>

namespace Korvane {

namespace {

constexpr quint32 VersionResourceType = 16;
constexpr quint32 VersionResourceId = 1;
constexpr quint32 ResourceDirectoryIndex = 2;
constexpr quint32 SubdirectoryFlag = 0x80000000u;

/// Signals that an offset or a signature leads nowhere. It never leaves this file.
struct Damaged
{
};

/// Little-endian numbers at offsets of a file's bytes, checked against its end.
class Bytes
{
public:
    explicit Bytes(QByteArrayView data) : FData(data) {}

    quint16 Word(quint64 offset) const { return Number<quint16>(offset); }
    quint32 DWord(quint64 offset) const { return Number<quint32>(offset); }

private:
    template <class T> T Number(quint64 offset) const
    {
        const auto size = quint64(FData.size());
        if (offset > size || size - offset < sizeof(T))
            throw Damaged();
        return qFromLittleEndian<T>(FData.data() + offset);
    }

    QByteArrayView FData;
};

/// The headers of an executable: where its sections and its resources are.
class Executable
{
public:
    explicit Executable(QByteArrayView image) : FBytes(image)
    {
        Expect(FBytes.Word(0) == 0x5A4D); // "MZ"
        const quint64 header = FBytes.DWord(0x3C);
        Expect(FBytes.DWord(header) == 0x00004550); // "PE\0\0"
        FSectionCount = FBytes.Word(header + 6);
        const quint64 optional = header + 24;
        FSections = optional + FBytes.Word(header + 20);

        const quint16 magic = FBytes.Word(optional);
        Expect(magic == 0x10B || magic == 0x20B); // 32 or 64 bits
        const quint64 directories = optional + (magic == 0x10B ? 96 : 112);
        if (FBytes.DWord(directories - 4) > ResourceDirectoryIndex)
            if (const quint32 address = FBytes.DWord(directories + ResourceDirectoryIndex * 8))
                FResources = FileOffset(address);
    }

    /// Offset of the version resource in the file.
    quint64 VersionResource() const
    {
        Expect(FResources != 0);
        // NOTE: the three levels of a resource tree are type, name and language.
        const quint64 names = Subdirectory(Entry(FResources, VersionResourceType));
        const quint64 languages = Subdirectory(Entry(names, VersionResourceId));
        const quint32 data = Entry(languages, std::nullopt);
        Expect(!(data & SubdirectoryFlag));
        return FileOffset(FBytes.DWord(FResources + data));
    }

    /// The version in the fixed part of the version resource.
    QString FileVersion() const
    {
        // Two lengths, a type and the key "VS_VERSION_INFO" come before the fixed part,
        // which begins at a multiple of four.
        const quint64 fixed = VersionResource() + 40;
        Expect(FBytes.DWord(fixed) == 0xFEEF04BD);
        const quint32 high = FBytes.DWord(fixed + 8);
        const quint32 low = FBytes.DWord(fixed + 12);
        return QStringLiteral("%1.%2.%3.%4")
            .arg(high >> 16)
            .arg(high & 0xFFFF)
            .arg(low >> 16)
            .arg(low & 0xFFFF);
    }

private:
    static void Expect(bool holds)
    {
        if (!holds)
            throw Damaged();
    }

    quint64 FileOffset(quint32 address) const
    {
        for (quint32 i = 0; i < FSectionCount; ++i) {
            const quint64 section = FSections + quint64(i) * 40;
            const quint32 start = FBytes.DWord(section + 12);
            const quint32 sizeInFile = FBytes.DWord(section + 16);
            if (address >= start && address - start < sizeInFile)
                return quint64(FBytes.DWord(section + 20)) + (address - start);
        }
        throw Damaged();
    }

    /// What the entry of an id leads to, relative to the resources; without an id, what
    /// the first entry does.
    quint32 Entry(quint64 directory, std::optional<quint32> id) const
    {
        const quint32 count = quint32(FBytes.Word(directory + 12)) + FBytes.Word(directory + 14);
        for (quint32 i = 0; i < count; ++i) {
            const quint64 entry = directory + 16 + quint64(i) * 8;
            if (!id || FBytes.DWord(entry) == *id)
                return FBytes.DWord(entry + 4);
        }
        throw Damaged();
    }

    quint64 Subdirectory(quint32 target) const
    {
        Expect(target & SubdirectoryFlag);
        return FResources + (target & ~SubdirectoryFlag);
    }

    Bytes FBytes;
    quint64 FSections = 0;
    quint32 FSectionCount = 0;
    quint64 FResources = 0;
};

} // namespace

QString FileVersionOf(QByteArrayView image)
{
    try {
        return Executable(image).FileVersion();
    } catch (const Damaged &) {
        return QString();
    }
}

} // namespace Korvane
