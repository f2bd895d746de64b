// SPDX-License-Identifier: MIT
// Single values: what becomes of each, and what is refused.
#include "import/CellConverter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

TJetColumn Old(TJetType type, bool isFixed = false)
{
    TJetColumn column;
    column.Name = u"OLD"_s;
    column.Type = type;
    column.Size = 20;
    column.IsFixed = isFixed;
    return column;
}

TImportColumn New(TDataType type, int size = 0, int precision = 0)
{
    TImportColumn column;
    column.Code = u"NEW"_s;
    column.Type = type;
    column.Size = size;
    column.Precision = precision;
    column.Origin = TImportOrigin::OldColumn;
    return column;
}

TJetCell Whole(qint64 value) { return {TJetCell::Integer, value, 0, {}}; }
TJetCell Real(double value) { return {TJetCell::Real, 0, value, {}}; }
TJetCell Text(std::string_view text) { return {TJetCell::Text, 0, 0, text}; }
TJetCell Blob(std::string_view bytes) { return {TJetCell::Blob, 0, 0, bytes}; }

/// NULL, 12, 'text', x'bytes', or the reason of a refusal.
QString Converted(TImportColumn column, const TJetColumn &old, const TJetCell &cell)
{
    column.OldColumn = old;
    TCellConverter converter(column);
    try {
        const TImportValue value = converter.Convert(cell);
        const QString text = QString::fromUtf8(value.Bytes.data(), qsizetype(value.Bytes.size()));
        switch (value.Kind) {
        case TImportValue::Null:
            return u"NULL"_s;
        case TImportValue::Number:
            return text;
        case TImportValue::Text:
            return u'\'' + text + u'\'';
        case TImportValue::Blob:
            break;
        }
        return u"x'"_s + text + u'\'';
    } catch (const EImportValue &error) {
        return error.Message();
    }
}

struct TCase
{
    TImportColumn Column;
    TJetColumn Old;
    TJetCell Cell;
    const char *Result;
};

void Check(const std::vector<TCase> &cases)
{
    for (const TCase &row : cases)
        EXPECT_EQ(Converted(row.Column, row.Old, row.Cell), QString::fromUtf8(row.Result)) << qPrintable(
            JetTypeText(row.Old) + u" "_s + CellForReport(row.Cell) + u" → "_s + FieldTypeText(row.Column));
}

} // namespace

TEST(CellConversion, texts_stay_as_they_are_and_must_fit)
{
    const TJetColumn words = Old(TJetType::Text), fixed = Old(TJetType::Text, true),
                     memo = Old(TJetType::Memo);
    using namespace std::string_view_literals;
    Check({
        {New(dtVarchar, 10), words, Text("a 'b' \"c\" "), "'a 'b' \"c\" '"},
        {New(dtVarchar, 10), words, Text(""), "''"},
        {New(dtChar, 4), fixed, Text("2201    "), "'2201'"},
        {New(dtChar, 4), fixed, Text("    "), "''"},
        {New(dtVarchar, 4), words, Text("一二三四"), "'一二三四'"},
        {New(dtVarchar, 4), words, Text("一二三四五"), "文本有 5 个字符，栏位只能容纳 4 个"},
        {New(dtVarchar, 2), words, Text("\U0001F600\U0001F600"), "'\U0001F600\U0001F600'"},
        {New(dtText), memo, Text("第一行\r\n第二行"), "'第一行\r\n第二行'"},
        {New(dtVarchar, 10), words, Text("a\0b"sv), "文本中有不能存储的空字符（NUL）"},
        {New(dtVarchar, 38), Old(TJetType::Guid), Text("{0E4F3C2A-0000-0000-0000-000000000000}"),
         "'{0E4F3C2A-0000-0000-0000-000000000000}'"},
        {New(dtVarchar, 10), Old(TJetType::LongInteger), Whole(-12), "'-12'"},
        {New(dtVarchar, 10), Old(TJetType::Money), Text("12.3400"), "'12.34'"},
        {New(dtVarchar, 10), Old(TJetType::Double), Real(0.1 + 0.2), "'0.3'"},
        {New(dtChar, 1), Old(TJetType::Boolean), Whole(1), "'Y'"},
        {New(dtChar, 8), Old(TJetType::DateTime), Text("2024-01-31"), "'20240131'"},
        {New(dtVarchar, 20), Old(TJetType::DateTime), Text("2024-01-31 08:30:00"), "'20240131083000'"},
        {New(dtVarchar, 6), Old(TJetType::DateTime), Text("2024-01-31"),
         "文本有 14 个字符，栏位只能容纳 6 个"},
        {New(dtText), Old(TJetType::Ole), Blob("x"), "OLE 对象不能转换为 text"},
    });
}

TEST(CellConversion, exact_numbers_lose_no_digit)
{
    const TJetColumn decimal = Old(TJetType::Decimal), money = Old(TJetType::Money),
                     words = Old(TJetType::Text);
    const TJetColumn real = Old(TJetType::Double), single = Old(TJetType::Single);
    Check({
        {New(dtDecimal, 28, 4), decimal, Text("123456789012345678901234.5600"),
         "123456789012345678901234.56"},
        {New(dtDecimal, 19, 4), money, Text("-922337203685477.5808"), "-922337203685477.5808"},
        {New(dtDecimal, 12, 2), money, Text("-0.0000"), "0"},
        {New(dtDecimal, 12, 2), money, Text("1.2345"), "有 4 位小数，栏位只有 2 位"},
        {New(dtDecimal, 5, 2), money, Text("1000.0000"), "超出 decimal(5,2) 的范围"},
        {New(dtDecimal, 5, 2), money, Text("999.9900"), "999.99"},
        {New(dtDecimal, 2, 2), money, Text("0.9900"), "0.99"},
        {New(dtDecimal, 12, 2), words, Text(" +007.50 "), "7.5"},
        {New(dtDecimal, 12, 2), words, Text(".5"), "0.5"},
        {New(dtDecimal, 12, 2), words, Text("  "), "NULL"},
        {New(dtDecimal, 12, 2), words, Text("1,000"), "不是数字"},
        {New(dtDecimal, 12, 2), words, Text("1.2.3"), "不是数字"},
        {New(dtDecimal, 12, 2), words, Text("."), "不是数字"},
        {New(dtDecimal, 12, 2), words, Text("-"), "不是数字"},
        {New(dtDecimal, 12, 2), real, Real(0.1 + 0.2), "0.3"},
        {New(dtDecimal, 12, 2), real, Real(1234567.891), "有 3 位小数，栏位只有 2 位"},
        {New(dtDecimal, 20, 0), real, Real(9007199254740991.0), "9007199254740991"},
        {New(dtDecimal, 12, 2), real, Real(std::nan("")), "不是数字"},
        {New(dtDecimal, 12, 2), single, Real(double(0.1F)), "0.1"},
        {New(dtDecimal, 12, 2), Old(TJetType::Boolean), Whole(1), "1"},
        {New(dtDecimal, 12, 2), Old(TJetType::DateTime), Text("2024-01-31"), "不是数字"},
        {New(dtInt), Old(TJetType::LongInteger), Whole(-2147483648), "-2147483648"},
        {New(dtInt), decimal, Text("2147483648"), "超出 int 的范围"},
        {New(dtInt), decimal, Text("12.000"), "12"},
        {New(dtInt), decimal, Text("12.5"), "有小数，不能存入整数栏位"},
        {New(dtInt), decimal, Text("99999999999999999999"), "超出 int 的范围"},
        {New(dtInt), real, Real(3), "3"},
        {New(dtInt), words, Text("0012"), "12"},
        {New(dtSmallint), Old(TJetType::LongInteger), Whole(32768), "超出 smallint 的范围"},
        {New(dtSmallint), Old(TJetType::Byte), Whole(255), "255"},
        {New(dtInt), Old(TJetType::Binary), Blob("x"), "二进制(20)不能转换为 int"},
    });
}

TEST(CellConversion, floats_read_back_as_the_same_number)
{
    const TJetColumn real = Old(TJetType::Double), words = Old(TJetType::Memo);
    for (const double value : {0.1 + 0.2, 1e300, -5e-324, 123456789.123456789, 1.0 / 3}) {
        const QString text = Converted(New(dtFloat), real, Real(value));
        EXPECT_EQ(text.toDouble(), value) << qPrintable(text);
    }
    Check({
        {New(dtFloat), real, Real(-0.0), "0"},
        {New(dtFloat), Old(TJetType::Money), Text("12.3400"), "12.34"},
        {New(dtFloat), words, Text("0.30000000000000000001"), "0.3"},
        {New(dtFloat), words, Text("x"), "不是数字"},
        {New(dtFloat), words, Text(" "), "NULL"},
        {New(dtFloat), real, Real(std::numeric_limits<double>::infinity()), "不是有限的数"},
    });
}

TEST(CellConversion, dates_become_digits)
{
    const TJetColumn moment = Old(TJetType::DateTime), words = Old(TJetType::Text);
    Check({
        {New(dtDate), moment, Text("2024-01-31"), "'20240131'"},
        {New(dtDateTime), moment, Text("2024-01-31"), "'20240131000000'"},
        {New(dtDateTime), moment, Text("0100-01-01 23:59:59"), "'01000101235959'"},
        {New(dtDate), words, Text("20240131"), "'20240131'"},
        {New(dtDate), Old(TJetType::Text, true), Text("        "), "''"},
        {New(dtDateTime), words, Text("20240131"), "'20240131000000'"},
        {New(dtDateTime), words, Text("20240131083000"), "'20240131083000'"},
        {New(dtDate), words, Text("2024-1-3"), "'20240103'"},
        {New(dtDate), words, Text("2024/01/31"), "'20240131'"},
        {New(dtDateTime), words, Text("2024.1.31 8:05"), "'20240131080500'"},
        {New(dtDateTime), words, Text("2024-01-31T08:30:09"), "'20240131083009'"},
        {New(dtDate), words, Text("2024-02-30"), "不是日期"},
        {New(dtDate), words, Text("24-01-31"), "不是日期"},
        {New(dtDate), words, Text("2024-01"), "不是日期"},
        {New(dtDate), words, Text("2024-01-31 8"), "不是日期"},
        {New(dtDate), words, Text("2024-01-31 25:00"), "不是日期"},
        {New(dtDate), words, Text("2024013"), "不是日期"},
        {New(dtDate), words, Text("明天"), "不是日期"},
        {New(dtDate), Old(TJetType::LongInteger), Whole(20240131), "'20240131'"},
        {New(dtDate), Old(TJetType::Boolean), Whole(1), "是否不能转换为 date"},
    });
}

TEST(CellConversion, flags_are_Y_and_N)
{
    const TJetColumn words = Old(TJetType::Text), flag = Old(TJetType::Boolean);
    Check({
        {New(dtBoolean), flag, Whole(1), "'Y'"},
        {New(dtBoolean), flag, Whole(0), "'N'"},
        {New(dtBoolean), Old(TJetType::Integer), Whole(-1), "'Y'"},
        {New(dtBoolean), Old(TJetType::Money), Text("0.0000"), "'N'"},
        {New(dtBoolean), words, Text("y"), "'Y'"},
        {New(dtBoolean), words, Text(" TRUE "), "'Y'"},
        {New(dtBoolean), words, Text("否"), "'N'"},
        {New(dtBoolean), words, Text(""), "''"},
        {New(dtBoolean), words, Text("也许"), "不是“是”或“否”"},
        {New(dtInt), flag, Whole(1), "1"},
        {New(dtImage), Old(TJetType::Ole), Blob("bytes"), "x'bytes'"},
        {New(dtImage), words, Text("bytes"), "文本(20)不能转换为 image"},
    });
}

TEST(CellConversion, a_missing_value_gets_the_default_where_there_must_be_one)
{
    TImportColumn column = New(dtVarchar, 5);
    EXPECT_EQ(Converted(column, Old(TJetType::Text), {}), u"NULL"_s);
    column.Default = u"B"_s;
    EXPECT_EQ(Converted(column, Old(TJetType::Text), {}), u"'B'"_s);
    TImportColumn number = New(dtInt);
    number.Default = u"1"_s;
    EXPECT_EQ(Converted(number, Old(TJetType::Text), Text(" ")), u"1"_s);
    number.Default = u"getdate()"_s;
    EXPECT_EQ(Converted(number, Old(TJetType::Text), {}), u"没有值，而设计中的默认值“getdate()”不是数字"_s);
}

TEST(CellConversion, what_changes_is_counted)
{
    TImportColumn column = New(dtDate);
    column.OldColumn = Old(TJetType::Text);
    column.Default = u""_s;
    TCellConverter converter(column);
    for (const TJetCell &cell :
         {Text("20240131083000"), Text("20240131000000"), Text("20240231"), TJetCell()})
        converter.Convert(cell);
    EXPECT_EQ(converter.Notes().TimesDropped, 1);
    EXPECT_EQ(converter.Notes().OddDates, 1);
    EXPECT_EQ(converter.Notes().NullsFilled, 1);
}
