// SPDX-License-Identifier: MIT
#include "tools/korvane/RowPrinter.h"

#include "platform/core/Exceptions.h"

#include <QBuffer>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

/// A row of values and a row of NULLs in a field of each kind.
TDataPacket AllKinds()
{
    TDataPacketBuilder builder({{u"CODE"_s, ftString, 10},
                                {u"N"_s, ftInteger},
                                {u"BIG"_s, ftLargeint},
                                {u"PRICE"_s, ftFloat},
                                {u"SINCE"_s, ftDate},
                                {u"PIC"_s, ftBlob}});
    builder.AppendText(0, "\"螺丝\",\n");
    builder.AppendInt(1, -5);
    builder.AppendInt(2, 9'007'199'254'740'993);
    builder.AppendDouble(3, 0.1);
    builder.AppendDouble(4, 45292);
    builder.AppendBlob(5, std::string_view("\0\xFF\x10", 3));
    builder.EndRow();
    builder.EndRow();
    builder.AppendText(0, "");
    builder.AppendInt(1, 12345);
    builder.EndRow();
    return std::move(builder).Build();
}

} // namespace

TEST(RowPrinter, aligns_numbers_right_and_all_else_left)
{
    EXPECT_EQ(RowsAsTable(AllKinds()),
              u"CODE      |     N |              BIG | PRICE | SINCE      | PIC\n"
              "----------+-------+------------------+-------+------------+---------\n"
              "\"螺丝\",\\n |    -5 | 9007199254740993 |   0.1 | 2024-01-01 | (3 字节)\n"
              "NULL      |  NULL |             NULL |  NULL | NULL       | NULL\n"
              "          | 12345 |             NULL |  NULL | NULL       | NULL\n"_s);
}

TEST(RowPrinter, writes_csv_that_tells_null_from_the_empty_text)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    WriteRowsAsCsv(AllKinds(), buffer);
    EXPECT_EQ(buffer.data(),
              QByteArray("\"CODE\",\"N\",\"BIG\",\"PRICE\",\"SINCE\",\"PIC\"\r\n"
                         "\"\"\"螺丝\"\",\n\",-5,9007199254740993,0.1,\"2024-01-01\",\"00ff10\"\r\n"
                         ",,,,,\r\n"
                         "\"\",12345,,,,\r\n"));
}

TEST(RowPrinter, a_packet_without_rows_has_its_headers)
{
    const TDataPacket packet = TDataPacketBuilder({{u"A"_s, ftString, 1}, {u"B"_s, ftInteger}}).Build();
    EXPECT_EQ(RowsAsTable(packet), u"A | B\n--+--\n"_s);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    WriteRowsAsCsv(packet, buffer);
    EXPECT_EQ(buffer.data(), QByteArray("\"A\",\"B\"\r\n"));
}
