// SPDX-License-Identifier: MIT
#include "support/Packets.h"

#include "platform/core/Exceptions.h"
#include "platform/data/RowReader.h"

#include <gtest/gtest.h>

#include <limits>

namespace Korvane {

namespace {

const QVariant Null;
constexpr qint64 Big = (qint64(1) << 53) + 1; // the least integer that a double cannot hold

std::string Shown(const TDataPacket &packet)
{
    packet.ValidateFull();
    return TextOf(packet).toStdString();
}

/// A packet of one column X.
std::string Column(TFieldType type, const QVariantList &values)
{
    QList<QVariantList> rows;
    for (const QVariant &value : values)
        rows.append(QVariantList{value});
    return Shown(PacketOf({{"X", type}}, rows));
}

TEST(DataPacket, KeepsRowsOfAllKinds)
{
    const TDataPacket packet = PacketOf({{"CODE", ftString, 10},
                                         {"QTY", ftInteger},
                                         {"ID", ftLargeint},
                                         {"PRICE", ftBCD, 12, 2},
                                         {"PIC", ftBlob}},
                                        {{"A1", 5, qlonglong(1) << 40, 1.25, QByteArray("\x00\xff", 2)},
                                         {"中文", Null, -1, 0.1, Null},
                                         {Null, -7, Null, Null, QByteArray()},
                                         {"", 0, 0, 1e300, QByteArray("a")}});
    EXPECT_EQ(Shown(packet), "CODE:string(10)|QTY:integer|ID:largeint|PRICE:bcd(12,2)|PIC:blob\n"
                             "A1|5|1099511627776|1.25|0x00ff\n"
                             "中文|~|-1|0.1|~\n"
                             "~|-7|~|~|0x\n"
                             "|0|0|1E300|0x61\n");
}

TEST(DataPacket, ValuesHaveTheTypeOfTheirColumnAlsoWhenNull)
{
    const TDataPacket packet =
        PacketOf({{"A", ftInteger}, {"B", ftLargeint}, {"C", ftFloat}, {"D", ftString}, {"E", ftBlob}},
                 {{7, 8, 1.5, "x", QByteArray("y")}, {Null, Null, Null, Null, Null}});
    const QVariantList values = {7, qlonglong(8), 1.5, QStringLiteral("x"), QByteArray("y")};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(packet.Value(i, 0), values[i]);
        EXPECT_EQ(packet.Value(i, 1).metaType(), values[i].metaType());
        EXPECT_TRUE(packet.Value(i, 1).isNull());
        EXPECT_EQ(packet.Text(i, 1), QString());
    }
}

TEST(DataPacket, FindsFieldsBlindToCase)
{
    const TDataPacket packet = PacketOf({{"Code", ftString}, {"数量Q", ftInteger}, {"CODE", ftString}}, {});
    EXPECT_EQ(packet.IndexOf(u"cODE"), 0);
    EXPECT_EQ(packet.IndexOf(u"数量q"), 1);
    EXPECT_EQ(packet.IndexOf(u"Cod"), -1);
    EXPECT_EQ(TDataPacket().IndexOf(u""), -1);
}

TEST(DataPacket, EmptyOnesAreWhole)
{
    EXPECT_EQ(Shown(TDataPacket()), "\n");
    EXPECT_EQ(Shown(PacketOf({{"X", ftUnknown}, {"Y", ftBlob}}, {})), "X:string|Y:blob\n");
    TDataPacketBuilder builder({});
    builder.EndRow();
    EXPECT_EQ(std::move(builder).Build().RowCount(), 0);
}

TEST(DataPacketBuilder, WidensSoThatNoValueIsLost)
{
    const qlonglong least = std::numeric_limits<qint64>::min();
    const struct
    {
        const char *Name;
        TFieldType Type;
        QVariantList Values;
        const char *Expected;
    } cases[] = {
        {"int32 stays", ftInteger, {1, -2147483648LL, 2147483647}, "X:integer\n1\n-2147483648\n2147483647\n"},
        {"to int64", ftInteger, {1, Null, 2147483648LL}, "X:largeint\n1\n~\n2147483648\n"},
        {"smallint to int64", ftSmallint, {-2147483649LL}, "X:largeint\n-2147483649\n"},
        {"whole float in an integer", ftInteger, {1, 7.0, 3e9}, "X:largeint\n1\n7\n3000000000\n"},
        {"fraction in an integer", ftInteger, {1, Null, 2.5}, "X:float\n1\n~\n2.5\n"},
        {"negative zero in an integer", ftInteger, {1, -0.0}, "X:float\n1\n-0\n"},
        {"huge float in an integer", ftInteger, {1, 1e19}, "X:float\n1\n1E19\n"},
        {"fraction beside a big integer",
         ftLargeint,
         {Big, Null, 2.5},
         "X:string\n9007199254740993\n~\n2.5\n"},
        {"fraction beside a big even integer",
         ftLargeint,
         {Big - 1, 2.5},
         "X:float\n9.007199254740992E15\n2.5\n"},
        {"fraction beside the least", ftLargeint, {least, 2.5}, "X:float\n-9.223372036854776E18\n2.5\n"},
        {"big integer beside a fraction", ftFloat, {0.5, Null, Big}, "X:string\n0.5\n~\n9007199254740993\n"},
        {"small integer beside a fraction", ftFloat, {0.5, 3}, "X:float\n0.5\n3\n"},
        {"text in an integer", ftInteger, {1, Null, "a", Null}, "X:string\n1\n~\na\n~\n"},
        {"text in a float", ftDateTime, {0.1, "a", 2, 1e-7}, "X:string\n0.1\na\n2\n1E-7\n"},
        {"text first", ftInteger, {Null, "a"}, "X:string\n~\na\n"},
        {"numbers in a text", ftString, {"a", 1, 2.5, Null}, "X:string\na\n1\n2.5\n~\n"},
        {"blob in a text", ftString, {"中", Null, QByteArray("\xff")}, "X:blob\n0xe4b8ad\n~\n0xff\n"},
        {"blob in an integer", ftInteger, {12, Null, QByteArray("\xff")}, "X:blob\n0x3132\n~\n0xff\n"},
        {"anything in a blob",
         ftBlob,
         {QByteArray("a"), "b", 3, 0.5},
         "X:blob\n0x61\n0x62\n0x33\n0x302e35\n"},
        {"unknown: nulls", ftUnknown, {Null, Null}, "X:string\n~\n~\n"},
        {"unknown: int32", ftUnknown, {Null, 1}, "X:integer\n~\n1\n"},
        {"unknown: int64", ftUnknown, {Null, 1LL << 40, 1}, "X:largeint\n~\n1099511627776\n1\n"},
        {"unknown: float", ftUnknown, {Null, 1.0, 2}, "X:float\n~\n1\n2\n"},
        {"unknown: text", ftUnknown, {Null, "", 2}, "X:string\n~\n\n2\n"},
        {"unknown: blob", ftUnknown, {Null, QByteArray()}, "X:blob\n~\n0x\n"},
        {"unknown: each kind in turn",
         ftUnknown,
         {1, 1LL << 40, 0.5, "a", QByteArray("b")},
         "X:blob\n0x31\n0x31303939353131363237373736\n0x302e35\n0x61\n0x62\n"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Column(c.Type, c.Values), c.Expected) << c.Name;
}

TEST(DataPacketBuilder, LongTextsMakeAMemoOfAnInferredString)
{
    const QString longest(255, QChar(0x4E2D));
    const QString tooLong(256, u'x');
    const auto typeOf = [&](TFieldType type, std::initializer_list<QVariant> values) {
        QList<QVariantList> rows;
        for (const QVariant &value : values)
            rows.append(QVariantList{value});
        return PacketOf({{"X", type}}, rows).Field(0).Type;
    };
    EXPECT_EQ(typeOf(ftUnknown, {longest}), ftString);
    EXPECT_EQ(typeOf(ftUnknown, {"a", tooLong}), ftMemo);
    EXPECT_EQ(typeOf(ftInteger, {1, tooLong}), ftMemo);
    EXPECT_EQ(typeOf(ftString, {tooLong}), ftString);
}

// Every order of a value and NULLs, with rows long enough to fill words of the null bitmap.
TEST(DataPacketBuilder, NullsStandWhereTheyWereGiven)
{
    const QVariantList samples = {5, 1LL << 40, 0.5, "text", QByteArray("blob")};
    for (const TFieldType type : {ftUnknown, ftInteger, ftLargeint, ftFloat, ftString, ftBlob}) {
        for (const QVariant &sample : samples) {
            for (const int period : {1, 2, 3, 64, 65, 200}) {
                TDataPacketBuilder builder({{"X", type}, {"N", ftInteger}});
                for (int row = 0; row < 200; ++row) {
                    if (row % period == period - 1) {
                        if (sample.typeId() == QMetaType::Double)
                            builder.AppendDouble(0, sample.toDouble());
                        else if (sample.typeId() == QMetaType::QString)
                            builder.AppendText(0, "text");
                        else if (sample.typeId() == QMetaType::QByteArray)
                            builder.AppendBlob(0, "blob");
                        else
                            builder.AppendInt(0, sample.toLongLong());
                    } else if (row % 2 == 0) {
                        builder.AppendNull(0);
                    }
                    builder.AppendInt(1, row);
                    builder.EndRow();
                }
                const TDataPacket packet = std::move(builder).Build();
                packet.ValidateFull();
                EXPECT_EQ(packet.Column(0).HasNulls(), period != 1);
                for (int row = 0; row < 200; ++row) {
                    ASSERT_EQ(packet.Column(0).IsNull(row), row % period != period - 1);
                    if (!packet.Column(0).IsNull(row)) {
                        ASSERT_EQ(packet.Text(0, row), sample.toString());
                    }
                    ASSERT_EQ(packet.Column(1).Int(row), row);
                }
            }
        }
    }
}

TEST(DataPacketBuilder, DropsARowThatWasNotEnded)
{
    TDataPacketBuilder builder({{"A", ftInteger}, {"B", ftString}, {"C", ftFloat}});
    builder.AppendInt(0, 1);
    builder.AppendText(1, "x");
    builder.EndRow();
    builder.AppendInt(0, 2);
    builder.AppendText(1, "yy");
    EXPECT_EQ(Shown(std::move(builder).Build()), "A:integer|B:string|C:float\n1|x|~\n");
}

TEST(DataPacketBuilder, RefusesASecondValueAndTooMuchText)
{
    for (const TFieldType type : {ftInteger, ftFloat, ftString, ftBlob}) {
        TDataPacketBuilder builder({{"X", type}});
        builder.AppendInt(0, 1);
        const std::function<void()> seconds[] = {
            [&] { builder.AppendNull(0); }, [&] { builder.AppendInt(0, 1); },
            [&] { builder.AppendDouble(0, 1); }, [&] { builder.AppendText(0, "1"); },
            [&] { builder.AppendBlob(0, "1"); }};
        for (const auto &second : seconds)
            EXPECT_EQ(RaisedBy(second), "EDatabaseError: 字段“X”在同一行中被赋值两次");
    }

    TDataPacketBuilder limited({{"T", ftString}, {"N", ftInteger}}, 8);
    limited.AppendText(0, "12345");
    limited.AppendInt(1, 12345678);
    limited.EndRow();
    EXPECT_EQ(RaisedBy([&] { limited.AppendText(0, "6789"); }),
              "EOutOfResources: 字段“T”的数据超过上限 8 字节");
    limited.AppendText(0, "678");
    EXPECT_EQ(RaisedBy([&] { limited.AppendText(1, "x"); }), "EOutOfResources: 字段“N”的数据超过上限 8 字节");
    limited.EndRow();
    EXPECT_EQ(Shown(std::move(limited).Build()), "T:string|N:string\n12345|12345678\n678|~\n");
}

// Runs of every length from every row, over the words of the null bitmap and with texts that
// move; row by row is what they are compared with.
TEST(DataPacketBuilder, TakesOverRunsOfRows)
{
    const QList<TPacketField> fields = {{"A", ftInteger}, {"B", ftLargeint}, {"C", ftFloat},
                                        {"D", ftString},  {"E", ftBlob},     {"F", ftInteger}};
    TDataPacketBuilder filling(fields);
    for (int row = 0; row < 150; ++row) {
        if (row % 7 != 3)
            filling.AppendInt(0, row);
        filling.AppendInt(1, Big + row);
        if (row < 140)
            filling.AppendDouble(2, row / 4.0);
        if (row % 3 != 0)
            filling.AppendText(3, std::string(size_t(row % 5), 'x'));
        if (row > 100)
            filling.AppendBlob(4, "\xff");
        filling.AppendInt(5, row);
        filling.EndRow();
    }
    const TDataPacket source = std::move(filling).Build();
    const int columns[] = {0, 1, 2, 3, 4, -1};
    for (const int first : {0, 1, 60, 64, 149}) {
        for (const int length : {0, 1, 3, 64, 70, 129}) {
            TDataPacketBuilder runs(fields);
            TDataPacketBuilder single(fields);
            for (int begin = first; begin < 150; begin += 67) {
                const int end = std::min(begin + length, 150);
                runs.AppendInt(0, begin);
                runs.EndRow();
                runs.AppendRows(source, begin, end, columns);
                single.AppendInt(0, begin);
                single.EndRow();
                for (int row = begin; row < end; ++row) {
                    for (int field = 0; field < 5; ++field)
                        single.AppendCell(field, TPacketRow(source, row));
                    single.EndRow();
                }
            }
            ASSERT_EQ(Shown(std::move(runs).Build()), Shown(std::move(single).Build()))
                << first << ' ' << length;
        }
    }
}

TEST(DataPacketBuilder, RefusesARunThatIsTooLong)
{
    const QList<TPacketField> fields = {{"N", ftInteger}, {"T", ftString}};
    const TDataPacket source = PacketOf(fields, {{1, "123"}, {2, "45678"}, {3, "9"}});
    const int columns[] = {0, 1};
    TDataPacketBuilder limited(fields, 8);
    limited.AppendRows(source, 0, 2, columns);
    EXPECT_EQ(RaisedBy([&] { limited.AppendRows(source, 2, 3, columns); }),
              "EOutOfResources: 字段“T”的数据超过上限 8 字节");
    EXPECT_EQ(Shown(std::move(limited).Build()), "N:integer|T:string\n1|123\n2|45678\n");
}

/// What comes of a packet of one field and so many stored rows with a log of (status, record).
std::string Logged(TPacketContent content, int stored, std::initializer_list<std::pair<int, quint32>> log)
{
    TDataPacketBuilder builder({{"X", ftInteger}});
    for (int i = 0; i < stored; ++i)
        builder.EndRow();
    builder.BeginLog(content);
    for (const auto &[status, record] : log)
        builder.EndLogRow(TUpdateStatus(status), record);
    std::string text;
    const QString fault = RaisedBy([&] { text = Shown(std::move(builder).Build()); });
    return text.empty() ? fault.toStdString() : text;
}

TEST(DataPacketBuilder, MarksTheRowsOfALog)
{
    using enum TPacketContent;
    const quint32 no = TDataPacket::NoRecord;
    EXPECT_EQ(Logged(RowsAndLog, 2, {{usDeleted, 1}, {usInserted, 2}, {usModified, 0}, {usInserted, 0}}),
              "X:integer\n~\n~\n-- log\n"
              "deleted 1: ~\ninserted 2: ~\nmodified 0: ~\ninserted 0: ~\n");
    EXPECT_EQ(Logged(RowsAndLog, 1, {}), "X:integer\n~\n-- log\n");
    EXPECT_EQ(Logged(Delta, 0, {}), "X:integer\n-- delta\n");
    EXPECT_EQ(Logged(Delta, 0, {{usUnmodified, no}, {usModified, no}, {usDeleted, no}, {usInserted, no}}),
              "X:integer\n-- delta\nunmodified: ~\nmodified: ~\ndeleted: ~\ninserted: ~\n");

    const std::string record = "EDatabaseError: 数据包已损坏，变更日志：记录无效";
    const std::string status = "EDatabaseError: 数据包已损坏，变更日志：状态无效";
    const std::string pair = "EDatabaseError: 数据包已损坏，变更日志：修改与原值不成对";
    EXPECT_EQ(Logged(RowsAndLog, 2, {{usModified, 2}}), record);
    EXPECT_EQ(Logged(RowsAndLog, 2, {{usDeleted, no}}), record);
    EXPECT_EQ(Logged(RowsAndLog, 2, {{usModified, 1}, {usDeleted, 1}}), record);
    EXPECT_EQ(Logged(RowsAndLog, 2, {{usInserted, 3}}), record);
    EXPECT_EQ(Logged(RowsAndLog, 2, {{usInserted, 3}, {usInserted, 3}}), record);
    EXPECT_EQ(Logged(RowsAndLog, 2, {{usUnmodified, 0}}), status);
    EXPECT_EQ(Logged(RowsAndLog, 2, {{4, 0}}), status);
    EXPECT_EQ(Logged(Delta, 0, {{4, no}}), status);
    EXPECT_EQ(Logged(Delta, 0, {{usModified, no}}), pair);
    EXPECT_EQ(Logged(Delta, 0, {{usUnmodified, no}}), pair);
    EXPECT_EQ(Logged(Delta, 0, {{usUnmodified, no}, {usDeleted, no}}), pair);
    EXPECT_EQ(Logged(Delta, 1, {}), "EDatabaseError: 数据包已损坏，变更日志：起始行无效");
    EXPECT_EQ(Logged(Rows, 0, {{usInserted, 0}}), "EDatabaseError: 数据包已损坏，变更日志：长度不符");

    TDataPacketBuilder builder({{"X", ftInteger}});
    builder.BeginLog(RowsAndLog);
    builder.EndRow();
    EXPECT_EQ(RaisedBy([&] { std::move(builder).Build(); }),
              "EDatabaseError: 数据包已损坏，变更日志：长度不符");
}

TEST(DataPacketBuilder, ExpectsMoreOrFewerRowsThanCome)
{
    for (const qsizetype expected : {0, 3, 1000, 200'000}) {
        TDataPacketBuilder builder({{"A", ftInteger}, {"B", ftString}, {"C", ftFloat}});
        for (int i = 0; i < 100'000; ++i) {
            builder.AppendInt(0, i);
            builder.AppendText(1, "0123456789");
            if (i >= 50'000)
                builder.AppendDouble(2, i);
            builder.EndRow();
            if (i == 2)
                builder.Expect(expected);
        }
        const TDataPacket packet = std::move(builder).Build();
        packet.ValidateFull();
        EXPECT_EQ(packet.Value(0, 99'999), 99'999);
        EXPECT_EQ(packet.Column(1).Bytes(99'999), "0123456789");
        EXPECT_TRUE(packet.Column(2).IsNull(49'999));
        EXPECT_EQ(packet.Value(2, 50'000), 50'000.0);
        // Frozen at its true size.
        const qsizetype cells = 100'000 * (4 + 4 + 10 + 8);
        EXPECT_GE(packet.MemoryUsage(), cells);
        EXPECT_LE(packet.MemoryUsage(), cells + 15'000) << "with the marks of NULLs";
    }
}

} // namespace

} // namespace Korvane
