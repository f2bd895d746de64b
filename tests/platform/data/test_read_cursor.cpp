// SPDX-License-Identifier: MIT
#include "support/Packets.h"

#include "platform/core/DateTime.h"
#include "platform/data/BlobStreams.h"
#include "platform/data/ReadCursor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace Korvane {

namespace {

const QVariant Null;

TDataPacket Fields()
{
    return PacketOf({{"TableCode", ftString}, {"FieldNo", ftInteger}, {"FieldCode", ftString}},
                    {{"ORDERS", 1, "ID"},
                     {"ORDERS", 2, "Name"},
                     {"LINES", 1, "ID"},
                     {"LINES", 2, "Qty"},
                     {"orders", 3, "ID"},
                     {Null, Null, "ID"}});
}

/// Where the cursor stands: record number, and "B" and "E" for the flags.
std::string Place(const TReadCursor &cursor)
{
    return std::to_string(cursor.RecNo()) + (cursor.Bof() ? "B" : "") + (cursor.Eof() ? "E" : "");
}

/// The packet's numbers of the rows, as the cursor walks them.
std::string Walk(TReadCursor &cursor)
{
    QStringList rows;
    for (cursor.First(); !cursor.Eof(); cursor.Next())
        rows += QString::number(cursor.RowIndex());
    EXPECT_EQ(rows.size(), cursor.RecordCount());
    return rows.join(u' ').toStdString();
}

TEST(ReadCursor, WalksAsDatasetsDo)
{
    TReadCursor cursor(PacketOf({{"N", ftInteger}}, {{1}, {2}, {3}}));
    const struct
    {
        const char *Step;
        std::function<void()> Run;
        const char *Place;
    } steps[] = {
        {"open", [] {}, "1B"},
        {"prior on the first", [&] { cursor.Prior(); }, "1B"},
        {"next", [&] { cursor.Next(); }, "2"},
        {"next to the last", [&] { cursor.Next(); }, "3"},
        {"next beyond the last", [&] { cursor.Next(); }, "3E"},
        {"again", [&] { cursor.Next(); }, "3E"},
        {"back", [&] { cursor.Prior(); }, "2"},
        {"last", [&] { cursor.Last(); }, "3E"},
        {"first", [&] { cursor.First(); }, "1B"},
        {"by two", [&] { EXPECT_EQ(cursor.MoveBy(2), 2); }, "3"},
        {"too far back", [&] { EXPECT_EQ(cursor.MoveBy(-7), -2); }, "1B"},
        {"too far on", [&] { EXPECT_EQ(cursor.MoveBy(7), 2); }, "3E"},
        {"nowhere", [&] { EXPECT_EQ(cursor.MoveBy(0), 0); }, "3E"},
        {"farthest", [&] { EXPECT_EQ(cursor.MoveBy(std::numeric_limits<qsizetype>::min()), -2); }, "1B"},
    };
    for (const auto &step : steps) {
        step.Run();
        EXPECT_EQ(Place(cursor), step.Place) << step.Step;
    }
}

TEST(ReadCursor, AnEmptySetIsAtBothEnds)
{
    TReadCursor cursor(PacketOf({{"N", ftInteger}}, {}));
    for (const auto &step :
         std::initializer_list<std::function<void()>>{[] {}, [&] { cursor.First(); }, [&] { cursor.Last(); },
                                                      [&] { cursor.Next(); }, [&] { cursor.Prior(); }}) {
        step();
        EXPECT_EQ(Place(cursor), "0BE");
    }
    EXPECT_TRUE(cursor.IsEmpty());
    EXPECT_EQ(cursor.RowIndex(), -1);
    const TFieldHandle field = cursor.FieldByName(u"N");
    EXPECT_TRUE(field.IsNull());
    EXPECT_EQ(field.AsString(), QString());
    EXPECT_EQ(field.AsInteger(), 0);
    EXPECT_TRUE(field.AsVariant().isNull());
    EXPECT_FALSE(cursor.Locate("N", 1));
}

TEST(ReadCursor, ClosedItRefusesToRead)
{
    TReadCursor cursor(Fields());
    const TFieldHandle field = cursor.FieldByName(u"FieldNo");
    cursor.Close();
    EXPECT_FALSE(cursor.IsOpen());
    const std::function<void()> uses[] = {[&] { cursor.First(); },
                                          [&] { cursor.Last(); },
                                          [&] { cursor.Next(); },
                                          [&] { cursor.Prior(); },
                                          [&] { (void)cursor.Eof(); },
                                          [&] { (void)cursor.Bof(); },
                                          [&] { cursor.RecNo(); },
                                          [&] { cursor.RecordCount(); },
                                          [&] { (void)cursor.IsEmpty(); },
                                          [&] { cursor.Packet(); },
                                          [&] { cursor.FieldByName(u"X"); },
                                          [&] { cursor.Locate("FieldNo", 1); },
                                          [&] { cursor.Sort("FieldNo"); },
                                          [&] { cursor.Sort(""); },
                                          [&] { field.AsInteger(); }};
    for (const auto &use : uses)
        EXPECT_EQ(RaisedBy(use), "EDatabaseError: 数据集未打开，无法执行此操作");
    // What a filter says can be set up before.
    cursor.SetFilter("FieldNo=2");
    cursor.SetFiltered(true);
    cursor.Open(Fields());
    EXPECT_EQ(Walk(cursor), "1 3");
}

TEST(ReadCursor, FilterSelectsAnewAndGoesToTheFirst)
{
    TReadCursor cursor(Fields());
    cursor.Last();
    cursor.SetFilter("TableCode='ORDERS'");
    EXPECT_EQ(Place(cursor), "6E");
    cursor.SetFiltered(true);
    EXPECT_EQ(Place(cursor), "1B");
    EXPECT_EQ(Walk(cursor), "0 1");
    cursor.SetFilterOptions(foCaseInsensitive);
    EXPECT_EQ(Walk(cursor), "0 1 4");
    cursor.SetFilter("TableCode='NONE'");
    EXPECT_EQ(Place(cursor), "0BE");
    EXPECT_TRUE(RaisedBy([&] { cursor.SetFilter("NoField=1"); }).contains(u"字段“NoField”没有找到"));
    EXPECT_EQ(cursor.Filter(), "TableCode='NONE'");
    EXPECT_EQ(Place(cursor), "0BE");
    cursor.SetFilter("");
    EXPECT_EQ(Walk(cursor), "0 1 2 3 4 5");
    cursor.SetFilter("FieldNo=1");
    cursor.SetFiltered(false);
    EXPECT_EQ(Walk(cursor), "0 1 2 3 4 5");
    // A bad text shows when it is put to use, and leaves all as it was.
    cursor.SetFilter("FieldNo=");
    cursor.Last();
    EXPECT_TRUE(RaisedBy([&] { cursor.SetFiltered(true); }).contains(u"条件不完整"));
    EXPECT_FALSE(cursor.Filtered());
    EXPECT_EQ(Place(cursor), "6E");
}

TEST(ReadCursor, SortKeepsEqualRowsAndPutsNullsFirst)
{
    TReadCursor cursor(Fields());
    cursor.Last();
    cursor.Sort("FieldCode");
    EXPECT_EQ(Place(cursor), "1B");
    EXPECT_EQ(Walk(cursor), "0 2 4 5 1 3");
    cursor.Sort("TableCode;FieldNo");
    EXPECT_EQ(Walk(cursor), "5 2 3 0 1 4");
    cursor.Sort("tablecode;FieldCode;FieldNo", TCaseMode::Blind);
    EXPECT_EQ(Walk(cursor), "5 2 3 0 4 1");
    cursor.SetFilter("FieldNo>1");
    cursor.SetFiltered(true);
    EXPECT_EQ(Walk(cursor), "3 4 1");
    EXPECT_EQ(RaisedBy([&] { cursor.Sort("FieldNo;Nothing"); }), "EDatabaseError: 字段“Nothing”没有找到");
    EXPECT_EQ(Walk(cursor), "3 4 1");
    cursor.Sort("");
    EXPECT_EQ(Walk(cursor), "1 3 4");
}

// Each kind of key, ascending and descending, exact and blind, with and without a second
// key, against a stable sort by the plain comparison of values.
TEST(RowOrder, SortsAsAStableSortWould)
{
    std::mt19937 random(11);
    const double nan = std::nan("");
    const QVariantList samples[] = {
        {1, -1, 0, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), Null},
        {std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max(), 0, -1, Null},
        {0.0, -0.0, 1.5, -1.5, 1e300, -1e300, nan, qInf(), -qInf(), Null},
        {"", "a", "A", "abcdefgh", "abcdefghi", "ABCDEFGHJ", "abcdefg", "中文字甲", "中文字乙", "é", "É", "z",
         "a😀", Null},
        {QByteArray("\x00", 1), QByteArray(), QByteArray("\xff\xfe"), QByteArray("a"), Null}};
    const TFieldType types[] = {ftInteger, ftLargeint, ftFloat, ftString, ftBlob};
    for (int kind = 0; kind < 5; ++kind) {
        QList<QVariantList> rows;
        for (int i = 0; i < 300; ++i)
            rows.append(
                {samples[kind][qsizetype(random() % size_t(samples[kind].size()))], int(random() % 3)});
        const TDataPacket packet = PacketOf({{"K", types[kind]}, {"N", ftInteger}}, rows);
        for (const TCaseMode mode : {TCaseMode::Exact, TCaseMode::Blind}) {
            for (const TSortDirection first : {TSortDirection::Ascending, TSortDirection::Descending}) {
                for (const int keys : {1, 2}) {
                    const std::vector<TOrderPart> order = {{0, mode, first},
                                                           {1, mode, TSortDirection::Descending}};
                    const std::span<const TOrderPart> used(order.data(), size_t(keys));
                    std::vector<quint32> sorted(300), expected(300);
                    for (quint32 i = 0; i < 300; ++i)
                        sorted[i] = expected[i] = 299 - i;
                    const auto cellOrder = [&](int column, quint32 a, quint32 b) {
                        const TPacketColumn &cells = packet.Column(column);
                        if (cells.IsNull(a) || cells.IsNull(b))
                            return int(cells.IsNull(b)) - int(cells.IsNull(a));
                        if (cells.Kind() == TColumnKind::Double)
                            return CompareNumbers(cells.Doubles()[a], cells.Doubles()[b]);
                        if (cells.Kind() < TColumnKind::Double)
                            return cells.Int(a) < cells.Int(b) ? -1 : cells.Int(a) > cells.Int(b);
                        return CompareTexts(cells.Bytes(a), cells.Bytes(b), mode);
                    };
                    std::stable_sort(expected.begin(), expected.end(), [&](quint32 a, quint32 b) {
                        const int order0 =
                            cellOrder(0, a, b) * (first == TSortDirection::Descending ? -1 : 1);
                        return order0 != 0 || keys == 1 ? order0 < 0 : cellOrder(1, a, b) > 0;
                    });
                    SortRows(packet, used, sorted);
                    EXPECT_EQ(sorted, expected) << kind << int(mode) << int(first) << keys;
                }
            }
        }
    }
}

TEST(CaseFold, ComparesByCodePoints)
{
    const struct
    {
        const char *Left;
        const char *Right;
        int Exact;
        int Blind;
    } cases[] = {
        {"", "", 0, 0},         {"a", "", 1, 1},          {"a", "A", 1, 0},
        {"a", "B", 1, -1},      {"É", "é", -1, 0},        {"straße", "STRASSE", 1, 1},
        {"Ω", "ω", -1, 0},      {"Ａ", "ａ", -1, 0},      {"中", "文", -1, -1},
        {"中a", "中B", 1, -1},  {"𐐀", "𐐨", -1, 0},        {"ff", "\xff", -1, -1},
        {"\xff", "\xff", 0, 0}, {"\xe4", "\xe5", -1, -1},
    };
    const auto sign = [](int order) { return (order > 0) - (order < 0); };
    for (const auto &c : cases) {
        EXPECT_EQ(sign(CompareTexts(c.Left, c.Right, TCaseMode::Exact)), c.Exact) << c.Left << ' ' << c.Right;
        EXPECT_EQ(sign(CompareTexts(c.Left, c.Right, TCaseMode::Blind)), c.Blind) << c.Left << ' ' << c.Right;
        EXPECT_EQ(sign(CompareTexts(c.Right, c.Left, TCaseMode::Blind)), -c.Blind)
            << c.Left << ' ' << c.Right;
        if (c.Blind == 0) {
            EXPECT_EQ(HashText(c.Left, TCaseMode::Blind), HashText(c.Right, TCaseMode::Blind)) << c.Left;
        }
    }
}

TEST(ReadCursor, LocateFindsTheFirstRowInOrderOfWalk)
{
    const TDataPacket packet =
        PacketOf({{"CODE", ftString}, {"N", ftInteger}, {"X", ftFloat}, {"DAY", ftDateTime}, {"PIC", ftBlob}},
                 {{"B", 2, 0.5, 45292.25, QByteArray("\xff")},
                  {"a", 1, 1.0, Null, Null},
                  {"A", 1, Null, 45292.0, QByteArray("b")},
                  {Null, Null, 2.0, 0.0, Null},
                  {"中文", 1, 1.0, 1.0, Null},
                  {"", 0, 0.0, 2.0, Null},
                  {"12", 12, -0.0, 3.0, Null}});
    const TLocateOptions blind = loCaseInsensitive, partial = loPartialKey;
    const struct
    {
        const char *Names;
        QVariant Values;
        int Row; // -1 if there is none
        TLocateOptions Options = {};
    } cases[] = {
        {"CODE", "A", 2},
        {"code", "A", 1, blind},
        {"CODE", "b", -1},
        {"CODE", "b", 0, blind},
        {"CODE", "中", -1},
        {"CODE", "中", 4, partial},
        {"CODE", "", 5},
        {"CODE", "", 0, partial},
        {"CODE", "1", 6, partial | blind},
        {"CODE", Null, 3},
        {"CODE", QVariant::fromValue(nullptr), 3},
        {"CODE", 12, 6},
        {"CODE", QByteArray("B"), 0},
        {"N", 1, 1},
        {"N", 1LL, 1},
        {"N", 1.0, 1},
        {"N", 1.5, -1},
        {"N", true, 1},
        {"N", "12", 6},
        {"N", " 1.0 ", 1},
        {"N", "1x", -1},
        {"N", "", -1},
        {"N", Null, 3},
        {"N", 1LL << 40, -1},
        {"N", QVariant::fromValue(~quint64(0)), -1},
        {"X", 1, 1},
        {"X", 0, 5},
        {"X", "0.5", 0},
        {"X", (1LL << 53) + 1, -1},
        {"X", Null, 2},
        {"DAY", "2024-01-01", 2},
        {"DAY", QDate(2024, 1, 1), 2},
        {"DAY", QDateTime(QDate(2024, 1, 1), QTime(6, 0)), 0},
        {"DAY", QVariant::fromValue(TDateTime(45292.0)), 2},
        {"DAY", "soon", -1},
        {"PIC", QByteArray("\xff"), 0},
        {"PIC", Null, 1},
        {"N;CODE", QVariantList{1, "A"}, 2},
        {"N;CODE", QVariantList{1, "A"}, 1, blind},
        {"N; CODE", QVariantList{"1", "中文"}, 4},
        {"CODE;N", QVariantList{Null, Null}, 3},
        {"CODE;N", QVariantList{"A", 2}, -1},
        {"CODE", QVariantList{"B"}, 0},
        {"N;CODE;X", QVariantList{1, "a", 1}, 1},
    };
    // Thrice on one cursor: by a walk, by a lookup that is built, by one that stands.
    TReadCursor cursor(packet);
    for (int round = 0; round < 3; ++round) {
        for (const auto &c : cases) {
            for (int again = 0; again < 3; ++again) {
                cursor.Last();
                const bool found = cursor.Locate(c.Names, c.Values, c.Options);
                EXPECT_EQ(found, c.Row >= 0) << c.Names << ' ' << c.Values.toString().toStdString();
                EXPECT_EQ(cursor.RowIndex(), found ? c.Row : 6)
                    << c.Names << ' ' << c.Values.toString().toStdString();
                EXPECT_EQ(cursor.Eof(), !found);
            }
        }
    }
    EXPECT_EQ(RaisedBy([&] {
                  cursor.Locate("CODE;NO", QVariantList{1, 2});
              }),
              "EDatabaseError: 字段“NO”没有找到");
    EXPECT_EQ(RaisedBy([&] { cursor.Locate("CODE;N", QVariantList{1}); }),
              "EDatabaseError: 字段“CODE;N”与给出的 1 个值不符");
    EXPECT_EQ(RaisedBy([&] { cursor.Locate("CODE;N", "A"); }),
              "EDatabaseError: 字段“CODE;N”与给出的 1 个值不符");
    EXPECT_EQ(RaisedBy([&] { cursor.Locate("", "A"); }), "EDatabaseError: 没有给出要查找的字段");
}

TEST(ReadCursor, LocateFollowsFilterAndOrder)
{
    TReadCursor cursor(Fields());
    const auto located = [&](const char *code) {
        std::string rows;
        for (int again = 0; again < 3; ++again)
            rows += cursor.Locate("FieldCode", code) ? std::to_string(cursor.RowIndex()) : "-";
        return rows;
    };
    EXPECT_EQ(located("ID"), "000");
    cursor.Sort("TableCode");
    EXPECT_EQ(located("ID"), "555");
    cursor.SetFilter("TableCode='LINES'");
    cursor.SetFiltered(true);
    EXPECT_EQ(located("ID"), "222");
    EXPECT_EQ(located("Name"), "---");
    cursor.SetFiltered(false);
    cursor.Sort("");
    EXPECT_EQ(located("Name"), "111");
    cursor.Open(PacketOf({{"X", ftInteger}, {"FieldCode", ftInteger}}, {{0, 7}, {0, 8}}));
    EXPECT_EQ(located("8"), "111");
}

TEST(ReadCursor, LocateByTextsNeedsNoVariants)
{
    TReadCursor cursor(Fields());
    const int fields[] = {cursor.FieldIndex(u"TableCode"), cursor.FieldIndex(u"FieldNo")};
    for (int again = 0; again < 3; ++again) {
        EXPECT_TRUE(cursor.Locate(fields, std::array<QStringView, 2>{u"LINES", u"2"}));
        EXPECT_EQ(cursor.RowIndex(), 3);
        EXPECT_FALSE(cursor.Locate(fields, std::array<QStringView, 2>{u"LINES", u"3"}));
        EXPECT_TRUE(cursor.Locate(fields, std::array<QStringView, 2>{u"lines", u"1"}, loCaseInsensitive));
        EXPECT_EQ(cursor.RowIndex(), 2);
    }
}

// Many keys, few values and NULLs: the lookup must agree with a plain walk for each.
TEST(KeyLookup, AgreesWithAWalk)
{
    std::mt19937 random(5);
    for (const int variety : {3, 50, 5000}) {
        QList<QVariantList> rows;
        const auto text = [&] {
            QString value = QStringLiteral("k%1").arg(random() % unsigned(variety));
            return random() % 2 == 0 ? value : value.toUpper();
        };
        for (int i = 0; i < 3000; ++i)
            rows.append({random() % 10 == 0 ? Null : QVariant(text()), double(random() % 4)});
        const TDataPacket packet = PacketOf({{"T", ftString}, {"N", ftFloat}}, rows);
        for (const TLocateOptions options : {TLocateOptions(), TLocateOptions(loCaseInsensitive)}) {
            TReadCursor indexed(packet);
            for (int i = 0; i < 200; ++i) {
                const QVariantList key = {random() % 10 == 0 ? Null : QVariant(text()), int(random() % 5)};
                TReadCursor walking(packet);
                const bool found = walking.Locate("T;N", key, options);
                ASSERT_EQ(indexed.Locate("T;N", key, options), found);
                if (found) {
                    ASSERT_EQ(indexed.RowIndex(), walking.RowIndex());
                }
            }
        }
    }
}

TEST(FieldHandle, ConvertsTheCurrentRow)
{
    TReadCursor cursor(
        PacketOf({{"I", ftInteger}, {"F", ftFloat}, {"S", ftString}, {"D", ftDate}, {"B", ftBlob}},
                 {{7, 2.5, "12", 45292.0, QByteArray("\xe4\xb8\xad")}, {Null, 1e300, "x", Null, Null}}));
    const auto field = [&](const char *name) { return cursor.FieldByName(QString::fromLatin1(name)); };
    EXPECT_EQ(field("i").AsString(), "7");
    EXPECT_EQ(field("F").AsString(), "2.5");
    EXPECT_EQ(field("F").AsInteger(), 2);
    EXPECT_EQ(field("S").AsInteger(), 12);
    EXPECT_EQ(field("S").AsFloat(), 12);
    EXPECT_EQ(field("I").AsFloat(), 7);
    EXPECT_EQ(field("I").AsBytes(), "7");
    EXPECT_EQ(field("D").AsString(), "2024-01-01");
    EXPECT_EQ(field("D").AsFloat(), 45292);
    EXPECT_EQ(field("B").AsString(), "中");
    EXPECT_EQ(field("B").AsBytes(), "\xe4\xb8\xad");
    EXPECT_EQ(field("B").AsVariant(), QVariant(QByteArray("\xe4\xb8\xad")));
    const TFieldHandle followed = field("I");
    cursor.Next();
    EXPECT_TRUE(followed.IsNull());
    EXPECT_EQ(followed.AsInteger(), 0);
    EXPECT_EQ(followed.AsString(), QString());
    EXPECT_EQ(followed.AsVariant().metaType(), QMetaType::fromType<int>());
    EXPECT_EQ(RaisedBy([&] { field("S").AsInteger(); }), "EConvertError: 字段“S”的值“x”不是有效的整数");
    EXPECT_EQ(RaisedBy([&] { field("S").AsFloat(); }), "EConvertError: 字段“S”的值“x”不是有效的数值");
    EXPECT_EQ(RaisedBy([&] { field("F").AsInteger(); }), "EConvertError: 字段“F”的值“1E300”不是有效的整数");
    EXPECT_EQ(RaisedBy([&] { field("Q"); }), "EDatabaseError: 字段“Q”没有找到");
}

TEST(BlobStreams, KeepTheirOrderAndGrowByName)
{
    TBlobStreams streams;
    streams.Add("PIC", "1");
    streams.Add("NOTE", "2");
    streams.Append("pic", "3");
    streams.Append("NEW", "4");
    streams.Add("PIC", "5");
    QStringList shown;
    for (qsizetype i = 0; i < streams.Count(); ++i)
        shown += streams.Name(i) + u'=' + QString::fromLatin1(streams.Bytes(i));
    EXPECT_EQ(shown.join(u' '), "PIC=13 NOTE=2 NEW=4 PIC=5");
    EXPECT_EQ(streams.IndexOf(u"Pic"), 0);
    EXPECT_EQ(streams.IndexOf(u"none"), -1);
    streams.Clear();
    EXPECT_TRUE(streams.IsEmpty());
}

} // namespace

} // namespace Korvane
