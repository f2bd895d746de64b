// SPDX-License-Identifier: MIT
#include "support/Packets.h"

#include "platform/core/Exceptions.h"
#include "platform/data/Crc32.h"
#include "platform/data/PacketValidator.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>

namespace Korvane {

namespace {

const QVariant Null;

TDataPacket Sample()
{
    return PacketOf({{"CODE", ftString, 10},
                     {"数量", ftInteger},
                     {"ID", ftLargeint},
                     {"PRICE", ftBCD, 12, 2},
                     {"PIC", ftBlob}},
                    {{"A1", 5, 1LL << 40, 1.25, QByteArray("\x00\xff", 2)},
                     {"中文", Null, -1, 0.1, Null},
                     {Null, -7, Null, Null, QByteArray()}});
}

/// Records and their log, or a log alone; in both N holds 5, 6, NULL.
TDataPacket WithLog(TPacketContent content)
{
    TDataPacketBuilder builder({{"N", ftInteger}});
    const bool isDelta = content == TPacketContent::Delta;
    if (isDelta)
        builder.BeginLog(content);
    builder.AppendInt(0, 5);
    if (isDelta) {
        builder.EndLogRow(usUnmodified);
    } else {
        builder.EndRow();
        builder.BeginLog(content);
    }
    builder.AppendInt(0, 6);
    builder.EndLogRow(usModified, 0);
    builder.EndLogRow(usInserted, 1);
    return std::move(builder).Build();
}

/// Puts the checksum right, so that what lies behind it gets tested.
QByteArray Signed(QByteArray bytes)
{
    TCrc32 crc;
    crc.Add(bytes.constData(), size_t(bytes.size() - 4));
    qToLittleEndian(crc.Value(), bytes.data() + bytes.size() - 4);
    return bytes;
}

QString Refusal(const QByteArray &bytes)
{
    return RaisedBy([&] { TDataPacket::FromBytes(bytes); });
}

TEST(PacketFile, ComesBackAsItWas)
{
    const TDataPacket packets[] = {TDataPacket(), PacketOf({{"X", ftMemo}}, {}), Sample(),
                                   WithLog(TPacketContent::RowsAndLog), WithLog(TPacketContent::Delta)};
    for (const TDataPacket &packet : packets) {
        const QByteArray bytes = packet.ToBytes();
        const TDataPacket back = TDataPacket::FromBytes(bytes);
        EXPECT_EQ(TextOf(back), TextOf(packet));
        EXPECT_EQ(back.Fields(), packet.Fields());
        EXPECT_EQ(back.ToBytes(), bytes);
    }
}

// The form is stored by users: these bytes must be read and written by every version.
TEST(PacketFile, HasTheBytesOfItsDescription)
{
    const QByteArray expected = QByteArray::fromHex("4b56504b"
                                                    "0100"
                                                    "0000"
                                                    "02000000"
                                                    "02000000"
                                                    "5d00000000000000"
                                                    "0300"
                                                    "00"
                                                    "01"
                                                    "00000000"
                                                    "00000000"
                                                    "01000000"
                                                    "4e"
                                                    "0100"
                                                    "03"
                                                    "00"
                                                    "0a000000"
                                                    "00000000"
                                                    "01000000"
                                                    "54"
                                                    "0200000000000000"
                                                    "05000000"
                                                    "00000000"
                                                    "00000000"
                                                    "01000000"
                                                    "03000000"
                                                    "6162"
                                                    "63"
                                                    "e7da218c");
    const TDataPacket packet = PacketOf({{"N", ftInteger}, {"T", ftString, 10}}, {{5, "a"}, {Null, "bc"}});
    EXPECT_EQ(packet.ToBytes().toHex(), expected.toHex());
    EXPECT_EQ(TextOf(TDataPacket::FromBytes(expected)), TextOf(packet));
}

TEST(PacketFile, HasTheBytesOfItsDescriptionWithALog)
{
    const struct
    {
        TPacketContent Content;
        const char *Header;
        const char *Marks;
    } cases[] = {
        {TPacketContent::RowsAndLog, "4b56504b02000100",
         "01000000"
         "0102"
         "0000000001000000"},
        {TPacketContent::Delta, "4b56504b02000200", "000102"},
    };
    for (const auto &c : cases) {
        QByteArray expected = QByteArray::fromHex(c.Header);
        expected += QByteArray::fromHex("0100000003000000"
                                        "0000000000000000"
                                        "03000001"
                                        "00000000"
                                        "00000000"
                                        "01000000"
                                        "4e"
                                        "0400000000000000"
                                        "05000000"
                                        "06000000"
                                        "00000000");
        expected += QByteArray::fromHex(c.Marks) + QByteArray(4, '\0');
        qToLittleEndian(quint64(expected.size()), expected.data() + 16);
        expected = Signed(expected);
        const TDataPacket packet = WithLog(c.Content);
        EXPECT_EQ(packet.ToBytes().toHex(), expected.toHex());
        EXPECT_EQ(TextOf(TDataPacket::FromBytes(expected)), TextOf(packet));
    }
}

TEST(PacketFile, ChecksumIsTheWellKnownOne)
{
    TCrc32 crc;
    crc.Add("1234", 4);
    crc.Add("56789", 5);
    EXPECT_EQ(crc.Value(), 0xCBF43926u);
    TCrc32 longer;
    longer.Add("123456789123456789", 18);
    EXPECT_EQ(longer.Value(), 0x4B837AE4u);
}

TEST(PacketFile, NoTruncationAndNoFlippedBytePasses)
{
    const QByteArray whole = Sample().ToBytes();
    for (qsizetype size = 0; size < whole.size(); ++size)
        ASSERT_TRUE(Refusal(whole.left(size)).startsWith(u"EDatabaseError: 数据包格式错误")) << size;
    ASSERT_NE(Refusal(whole + '\0'), "nothing");
    for (qsizetype at = 0; at < whole.size(); ++at) {
        for (const int bits : {0x01, 0x80, 0xFF}) {
            QByteArray flipped = whole;
            flipped[at] = char(flipped[at] ^ bits);
            ASSERT_TRUE(Refusal(flipped).startsWith(u"EDatabaseError: ")) << at << ' ' << bits;
        }
    }
}

// With the checksum put right, each damaged byte either is refused or makes a packet that is
// whole in itself.
TEST(PacketFile, DamageBehindARightChecksumIsHarmless)
{
    for (const TDataPacket &packet :
         {Sample(), WithLog(TPacketContent::RowsAndLog), WithLog(TPacketContent::Delta)}) {
        const QByteArray whole = packet.ToBytes();
        for (qsizetype at = 0; at < whole.size() - 4; ++at) {
            for (int bits = 1; bits < 256; bits += 7) {
                QByteArray damaged = whole;
                damaged[at] = char(damaged[at] ^ bits);
                try {
                    TDataPacket::FromBytes(Signed(damaged)).ValidateFull();
                } catch (const EDatabaseError &) {
                    continue;
                }
            }
        }
    }
}

TEST(PacketFile, RefusesHostileHeaders)
{
    const auto patched = [](QByteArray bytes, qsizetype at, const QByteArray &hex) {
        const QByteArray patch = QByteArray::fromHex(hex);
        return Signed(bytes.replace(at, patch.size(), patch));
    };
    // N: 5, NULL; T: "a", "bc". Fields at 24 and 41, nulls at 58, integers at 66, offsets at
    // 74, texts at 86.
    const QByteArray good =
        PacketOf({{"N", ftInteger}, {"T", ftString, 10}}, {{5, "a"}, {Null, "bc"}}).ToBytes();
    // The log's beginning at 61, statuses at 65, records at 67.
    const QByteArray log = WithLog(TPacketContent::RowsAndLog).ToBytes();
    const struct
    {
        const char *Name;
        QByteArray Bytes;
        const char *Expected;
    } cases[] = {
        {"nothing", {}, "数据包格式错误：数据不完整"},
        {"other magic", patched(good, 0, "4b56504c"), "数据包格式错误：不是数据包"},
        {"later version", patched(good, 4, "0300"), "数据包格式错误：不支持的版本 3"},
        {"no log in version 2", patched(good, 4, "0200"), "数据包格式错误：文件头无效"},
        {"log in version 1", patched(good, 6, "0100"), "数据包格式错误：文件头无效"},
        {"field count", patched(good, 8, "ffffffff"), "数据包格式错误：文件头无效"},
        {"row count", patched(good, 12, "ffffffff"), "数据包格式错误：文件头无效"},
        {"many rows", patched(good, 12, "00000080"), "数据包格式错误：数据不完整"},
        {"size", patched(good, 16, "ffffffffffffff7f"), "数据包格式错误：长度不符"},
        {"field type", patched(good, 24, "ff00"), "数据包格式错误：字段“N”无效"},
        {"kind", patched(good, 26, "05"), "数据包格式错误：字段“N”无效"},
        {"flags", patched(good, 27, "03"), "数据包格式错误：字段“N”无效"},
        {"name size", patched(good, 36, "ffffffff"), "数据包格式错误：数据不完整"},
        {"type of another kind", patched(good, 24, "0100"), "数据包已损坏，字段“N”：字段类型与数据不符"},
        {"unknown type", patched(good, 41, "0000"), "数据包已损坏，字段“T”：字段类型与数据不符"},
        {"nulls beyond the rows", patched(good, 58, "0600"), "数据包已损坏，字段“N”：空值表超出行数"},
        {"null with a value", patched(good, 58, "0300"), "数据包已损坏，字段“N”：空值带有数据"},
        {"first offset", patched(good, 74, "01000000"), "数据包已损坏，字段“T”：文本长度不符"},
        {"falling offsets", patched(good, 78, "04000000"), "数据包已损坏，字段“T”：文本位置不递增"},
        {"last offset", patched(good, 82, "ffffffff"), "数据包格式错误：数据不完整"},
        {"broken text", patched(good, 86, "ff"), "数据包已损坏，字段“T”：文本不是 UTF-8"},
        {"split character", patched(good, 86, "c3bf"), "数据包已损坏，字段“T”：文本在字符中间断开"},
        {"unknown content", patched(log, 6, "0300"), "数据包格式错误：文件头无效"},
        {"log behind the rows", patched(log, 61, "04000000"), "数据包格式错误：变更日志无效"},
        {"more stored rows than marks leave", patched(log, 61, "02000000"), "数据包格式错误：校验和不符"},
        {"log of more rows", patched(log, 61, "00000000"), "数据包格式错误：数据不完整"},
        {"no status", patched(log, 65, "04"), "数据包已损坏，变更日志：状态无效"},
        {"unknown record", patched(log, 67, "01"), "数据包已损坏，变更日志：记录无效"},
        {"place beyond the end", patched(log, 71, "02"), "数据包已损坏，变更日志：记录无效"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Refusal(c.Bytes).toStdString(), std::string("EDatabaseError: ") + c.Expected) << c.Name;
}

TEST(PacketFile, ManyFieldsThatClaimNullsTakeNoMemory)
{
    // Each of 20,000 fields claims a bitmap for rows that only one file's worth could hold.
    QByteArray bytes = QByteArray::fromHex("4b56504b01000000204e0000");
    bytes.append(QByteArray::fromHex("00f00000")).append(8, '\0');
    for (int i = 0; i < 20'000; ++i)
        bytes.append(QByteArray::fromHex("03000001000000000000000000000000"));
    bytes.append(20'000, '\0').append(4, '\0');
    qToLittleEndian(quint64(bytes.size()), bytes.data() + 16);
    EXPECT_EQ(Refusal(Signed(bytes)), "EDatabaseError: 数据包格式错误：数据不完整");
}

TEST(PacketFile, Utf8IsCheckedByTheStandardsTable)
{
    const struct
    {
        const char *Hex;
        bool IsGood;
    } cases[] = {
        {"", true},
        {"41", true},
        {"7f", true},
        {"c280", true},
        {"dfbf", true},
        {"e0a080", true},
        {"ed9fbf", true},
        {"ee8080", true},
        {"f0908080", true},
        {"f48fbfbf", true},
        {"80", false},
        {"c0af", false},
        {"c1bf", false},
        {"c2", false},
        {"e08080", false},
        {"eda080", false},
        {"f0808080", false},
        {"f4908080", false},
        {"f5808080", false},
        {"e4b8", false},
        {"4141414141414141c2", false},
        {"4141414141414141c3a9", true},
        {"ff", false},
    };
    for (const auto &c : cases) {
        const QByteArray bytes = QByteArray::fromHex(c.Hex);
        EXPECT_EQ(IsUtf8({bytes.constData(), size_t(bytes.size())}), c.IsGood) << c.Hex;
    }
}

TEST(PacketFile, FilesAppearWholeOrNotAtAll)
{
    const QTemporaryDir dir;
    const QString name = dir.filePath("orders.kvp");
    Sample().SaveToFile(name);
    EXPECT_EQ(TextOf(TDataPacket::LoadFromFile(name)), TextOf(Sample()));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"orders.kvp"});

    QFile file(name);
    ASSERT_TRUE(file.resize(file.size() - 1));
    EXPECT_EQ(RaisedBy([&] { TDataPacket::LoadFromFile(name); }),
              QStringLiteral("EFileError: 读文件“%1”失败：数据包格式错误：长度不符").arg(name));
    const QString missing = dir.filePath("missing/orders.kvp");
    EXPECT_TRUE(RaisedBy([&] {
                    TDataPacket::LoadFromFile(missing);
                }).startsWith(QStringLiteral("EFileError: 打开文件“%1”失败").arg(missing)));
    EXPECT_TRUE(RaisedBy([&] {
                    Sample().SaveToFile(missing);
                }).startsWith(QStringLiteral("EFileError: 写文件“%1”失败").arg(missing)));
}

} // namespace

} // namespace Korvane
