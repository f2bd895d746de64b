// SPDX-License-Identifier: MIT
#include "general/FileVersion.h"
#include "general/SystemRoutines.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

enum class Width { Bits32, Bits64 };

/// Bytes that grow to hold what is put at an offset.
class Image
{
public:
    void Word(qsizetype offset, quint16 value) { Put(offset, value); }
    void DWord(qsizetype offset, quint32 value) { Put(offset, value); }
    void Text(qsizetype offset, const QString &text)
    {
        for (qsizetype i = 0; i < text.size(); ++i)
            Word(offset + i * 2, text[i].unicode());
    }

    QByteArray Bytes;

private:
    template <class T> void Put(qsizetype offset, T value)
    {
        if (Bytes.size() < offset + qsizetype(sizeof(T)))
            Bytes.resize(offset + qsizetype(sizeof(T)), '\0');
        qToLittleEndian(value, Bytes.data() + offset);
    }
};

constexpr qsizetype OptionalHeader = 0x58;
constexpr qsizetype Resources = 0x600;      // in the file
constexpr quint32 ResourceAddress = 0x2000; // when it is loaded
constexpr qsizetype Version = Resources + 0x100;

qsizetype DirectoriesOf(Width width) { return OptionalHeader + (width == Width::Bits32 ? 96 : 112); }

void PutHeaders(Image &image, Width width)
{
    const qsizetype directories = DirectoriesOf(width);
    const qsizetype sections = directories + 16 * 8;
    image.Word(0, 0x5A4D);
    image.DWord(0x3C, 0x40);
    image.DWord(0x40, 0x4550);
    image.Word(0x44, width == Width::Bits32 ? 0x14C : 0x8664);
    image.Word(0x46, 2);
    image.Word(0x54, quint16(sections - OptionalHeader));
    image.Word(OptionalHeader, width == Width::Bits32 ? 0x10B : 0x20B);
    image.DWord(directories - 4, 16);
    image.DWord(directories + 2 * 8, ResourceAddress);
    image.DWord(directories + 2 * 8 + 4, 0x200);

    struct Section
    {
        quint32 Address, Offset;
    };
    qsizetype at = sections;
    for (const Section &section : {Section{0x1000, 0x400}, Section{ResourceAddress, quint32(Resources)}}) {
        image.DWord(at + 8, 0x200);
        image.DWord(at + 12, section.Address);
        image.DWord(at + 16, 0x200);
        image.DWord(at + 20, section.Offset);
        at += 40;
    }
}

/// A directory of entries with ids, each leading to an offset.
void PutDirectory(Image &image, qsizetype at, const QList<QPair<quint32, quint32>> &entries)
{
    image.DWord(at + 8, 0);
    image.Word(at + 14, quint16(entries.size()));
    for (const auto &[id, target] : entries) {
        image.DWord(at + 16, id);
        image.DWord(at + 20, target);
        at += 8;
    }
}

QByteArray Executable(Width width)
{
    Image image;
    PutHeaders(image, width);
    constexpr quint32 deeper = 0x80000000u;
    PutDirectory(image, Resources, {{3, deeper | 0xC0}, {16, deeper | 0x60}});
    PutDirectory(image, Resources + 0x60, {{1, deeper | 0x80}});
    PutDirectory(image, Resources + 0x80, {{0x804, 0xA0}, {0x409, 0xB0}});
    image.DWord(Resources + 0xA0, ResourceAddress + 0x100);
    image.DWord(Resources + 0xA4, 0x5C);

    image.Word(Version, 0x5C);
    image.Word(Version + 2, 52);
    image.Text(Version + 6, u"VS_VERSION_INFO"_s);
    image.DWord(Version + 40, 0xFEEF04BD);
    image.DWord(Version + 44, 0x00010000);
    image.DWord(Version + 48, 3u << 16 | 12u);
    image.DWord(Version + 52, 65535u << 16 | 7u);
    image.DWord(Version + 56, 9u << 16 | 9u); // the product's version
    image.DWord(Version + 88, 0);
    return image.Bytes;
}

/// The same file with other bytes somewhere.
QByteArray With(QByteArray bytes, qsizetype offset, quint32 value)
{
    qToLittleEndian(value, bytes.data() + offset);
    return bytes;
}

} // namespace

TEST(FileVersion, is_read_from_programs_of_32_and_64_bits)
{
    for (const Width width : {Width::Bits32, Width::Bits64})
        EXPECT_EQ(FileVersionOf(Executable(width)), u"3.12.65535.7"_s);
}

TEST(FileVersion, is_empty_for_other_and_damaged_files)
{
    for (const Width width : {Width::Bits32, Width::Bits64}) {
        const QByteArray good = Executable(width);
        const qsizetype directories = DirectoriesOf(width);
        const QByteArray bad[] = {
            QByteArray(),
            "MZ",
            QByteArray(4096, 'x'),
            With(good, 0, 0x4D5A),
            With(good, 0x3C, 0xFFFFFFFF),
            With(good, 0x40, 0x454E),
            With(good, OptionalHeader, 0x107),
            With(good, directories - 4, 2),       // no directory for resources
            With(good, directories + 16, 0),      // no resources
            With(good, directories + 16, 0x3000), // outside of all sections
            With(good, Resources + 24, 15),       // no version among the resources
            With(good, Resources + 28, 0x60),     // data where a directory is due
            With(good, Resources + 28, 0xFFFFFFFF),
            With(good, Resources + 0x60 + 16, 2), // another name
            With(With(good, Resources + 0x60 + 16, 2), Resources + 0x60 + 12,
                 0xFFFFFFFF),                              // entries without end
            With(good, Resources + 0x80 + 20, 0x800000A0), // a directory where data are due
            With(good, Resources + 0xA0, 0xFFFFFFF0),
            With(good, Version + 40, 0xFEEF04BE),
        };
        for (qsizetype i = 0; i < qsizetype(std::size(bad)); ++i)
            EXPECT_EQ(FileVersionOf(bad[i]), QString()) << "row " << i;
        const qsizetype needed = Version + 56;
        for (qsizetype size = 0; size < needed; ++size)
            EXPECT_EQ(FileVersionOf(good.first(size)), QString()) << "cut at " << size;
        EXPECT_EQ(FileVersionOf(good.first(needed)), u"3.12.65535.7"_s);
    }
}

TEST(FileVersion, GetVersionString_reads_the_file)
{
    QTemporaryDir folder;
    const auto fileOf = [&folder](const QString &name, const QByteArray &bytes) {
        const QString path = folder.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    };
    EXPECT_EQ(GetVersionString(fileOf(u"程序.exe"_s, Executable(Width::Bits64))), u"3.12.65535.7"_s);
    EXPECT_EQ(GetVersionString(fileOf(u"a.txt"_s, "text")), QString());
    EXPECT_EQ(GetVersionString(fileOf(u"empty.dll"_s, QByteArray())), QString());
    EXPECT_EQ(GetVersionString(folder.filePath(u"missing.exe"_s)), QString());
    EXPECT_EQ(GetVersionString(folder.path()), QString());
}
