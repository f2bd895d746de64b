// SPDX-License-Identifier: MIT
#include "JetBuilder.h"
#include "JetTesting.h"

#include "platform/sql/sqlite/SqliteDatabase.h"

#include <QHash>

namespace Korvane {
namespace {

using namespace Testing;

/// A field of a CSV file: an empty one without quotes is NULL.
struct TCsvField
{
    QString Text;
    bool IsQuoted = false;
};

QList<QList<TCsvField>> ParseCsv(const QString &text)
{
    QList<QList<TCsvField>> rows;
    QList<TCsvField> row;
    TCsvField field;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'"') {
            field.IsQuoted = true;
            for (++i; text[i] != u'"' || text.mid(i + 1, 1) == u"\""; ++i) {
                field.Text += text[i];
                if (text[i] == u'"')
                    ++i;
            }
        } else if (text[i] == u',' || text[i] == u'\r') {
            row.append(field);
            field = {};
            if (text[i] == u'\r') {
                rows.append(row);
                row.clear();
                ++i;
            }
        } else {
            field.Text += text[i];
        }
    }
    return rows;
}

/// What a cell of the old database holds for a field of the CSV file.
QString ExpectedCell(const TCsvField &field, const TJetColumn &column)
{
    if (!field.IsQuoted && field.Text.isEmpty())
        return QStringLiteral("NULL");
    switch (column.Type) {
    case TJetType::Text:
        return u'\'' + (column.IsFixed ? field.Text.leftJustified(column.Size) : field.Text) + u'\'';
    case TJetType::Memo:
    case TJetType::Decimal:
        return u'\'' + field.Text + u'\'';
    case TJetType::Double:
        return QString::number(field.Text.toDouble(), 'g', 15);
    case TJetType::Ole:
        return QStringLiteral("x'%1'").arg(
            QString::fromLatin1(ReadBytes(Sample(QStringLiteral("seed/") + field.Text)).toHex()));
    default:
        return field.Text;
    }
}

TEST(JetFile, ReadsEveryRowOfTheOldDatabase)
{
    TJetFile file(LegacyDatabase());
    qsizetype rows = 0;
    int tables = 0;
    for (const TJetTableInfo &table : file.Tables()) {
        if (table.Kind != TJetTableKind::Table)
            continue;
        ++tables;
        SCOPED_TRACE(qPrintable(table.Name));
        const QList<TJetColumn> columns = file.Columns(table.Name);
        const QString csv =
            QString::fromUtf8(ReadBytes(Sample(QStringLiteral("seed/%1.csv").arg(table.Name))));
        QList<QList<TCsvField>> expected = ParseCsv(csv);
        ASSERT_FALSE(expected.isEmpty());
        const QList<TCsvField> names = expected.takeFirst();
        ASSERT_EQ(names.size(), columns.size());
        for (qsizetype i = 0; i < names.size(); ++i)
            EXPECT_EQ(names[i].Text, columns[i].Name);
        const QList<QStringList> actual = RowsOf(file, table.Name);
        ASSERT_EQ(actual.size(), expected.size());
        for (qsizetype row = 0; row < actual.size(); ++row) {
            QStringList cells;
            for (qsizetype i = 0; i < columns.size(); ++i)
                cells.append(ExpectedCell(expected[row][i], columns[i]));
            ASSERT_EQ(actual[row], cells) << "row " << row;
        }
        rows += actual.size();
    }
    EXPECT_EQ(tables, 9);
    EXPECT_EQ(rows, 60 + 53 + 10 + 5 + 200 + 300 + 900 + 6 + 1);
}

TEST(JetFile, ReadsTheSameDesignFromEachFormat)
{
    TSqliteDatabase script({}, TSqliteOpen::Memory);
    script.Run(ReadBytes(Sample(QStringLiteral("orders.sql"))));
    TJetFile jet4(Sample(QStringLiteral("orders.dbd")));
    TJetFile jet3(Sample(QStringLiteral("orders-jet3.dbd")));
    EXPECT_FALSE(jet4.IsJet3());
    EXPECT_TRUE(jet3.IsJet3());
    const QHash<QString, int> counts = {{QStringLiteral("Tables"), 12},   {QStringLiteral("Fields"), 108},
                                        {QStringLiteral("Indexs"), 11},   {QStringLiteral("Querys"), 15},
                                        {QStringLiteral("Columns"), 139}, {QStringLiteral("Commands"), 6},
                                        {QStringLiteral("Changes"), 6}};
    for (auto count = counts.begin(); count != counts.end(); ++count) {
        SCOPED_TRACE(qPrintable(count.key()));
        QList<QStringList> expected;
        TSqliteStatement rows(script, "select * from " + count.key().toUtf8());
        while (rows.Step()) {
            QStringList row;
            for (int i = 0; i < rows.ColumnCount(); ++i) {
                const QString text = rows.String(i);
                row.append(rows.IsNull(i) ? QStringLiteral("NULL")
                           : jet4.Columns(count.key())[i].Type == TJetType::LongInteger
                               ? text
                               : u'\'' + text + u'\'');
            }
            expected.append(row);
        }
        EXPECT_EQ(expected.size(), count.value());
        EXPECT_EQ(RowsOf(jet4, count.key()), expected);
        EXPECT_EQ(RowsOf(jet3, count.key()), expected);
    }
}

TEST(JetFile, ReadsTablesWithoutRows)
{
    TJetFile file(Sample(QStringLiteral("empty.dbd")));
    QStringList names;
    for (const TJetTableInfo &table : file.Tables()) {
        if (table.Kind != TJetTableKind::Table)
            continue;
        names.append(table.Name);
        EXPECT_TRUE(RowsOf(file, table.Name).isEmpty());
        EXPECT_EQ(table.Created, 45292.0);
    }
    names.sort();
    EXPECT_EQ(names.join(u' '), QStringLiteral("Changes Columns Commands Fields Indexs Querys Tables"));
}

// --- What the sample files do not have

class JetBuilt : public ::testing::TestWithParam<bool>
{
protected:
    bool IsJet3() const { return GetParam(); }
    QByteArray Head() const
    {
        return ReadBytes(Sample(IsJet3() ? QStringLiteral("orders-jet3.dbd") : QStringLiteral("orders.dbd")));
    }
    TJetBuilder Builder(const QList<TJetBuilder::TColumn> &columns) const
    {
        TJetBuilder builder(Head(), IsJet3());
        builder.BeginTable(QStringLiteral("T"), columns);
        return builder;
    }
    QByteArray Text(const QString &text) const
    {
        return IsJet3() ? text.toLatin1() : TJetBuilder::Utf16(text);
    }
    QList<QStringList> Rows(const TJetBuilder &builder)
    {
        TJetFile file(WriteBytes(FFolder, QStringLiteral("built.mdb"), builder.Build()));
        return RowsOf(file, QStringLiteral("t"));
    }

    QTemporaryDir FFolder;
};

INSTANTIATE_TEST_SUITE_P(Formats, JetBuilt, ::testing::Bool(),
                         [](const auto &param) { return param.param ? "Jet3" : "Jet4"; });

TEST_P(JetBuilt, DecodesEveryKindOfColumn)
{
    struct TKind
    {
        TJetBuilder::TColumn Column;
        QByteArray Bytes;
        QString Expected;
    };
    const auto number = [](qint64 value, int bytes) { return TJetBuilder::Int(quint64(value), bytes); };
    const QByteArray decimal = number(0x80, 1) + number(0, 4) + number(1, 4) + number(0, 4) + number(5, 4);
    const QByteArray guid = QByteArray::fromHex("0a0b0c0d1a1b2a2b3a3b4a4b5a5b6a6b");
    const QList<TKind> kinds = {
        {{QStringLiteral("Bool"), TJetType::Boolean, 1, true}, "", QStringLiteral("1")},
        {{QStringLiteral("Byte"), TJetType::Byte, 1, true}, number(200, 1), QStringLiteral("200")},
        {{QStringLiteral("Int"), TJetType::Integer, 2, true}, number(-2, 2), QStringLiteral("-2")},
        {{QStringLiteral("Long"), TJetType::LongInteger, 4, true},
         number(-70000, 4),
         QStringLiteral("-70000")},
        {{QStringLiteral("Money"), TJetType::Money, 8, true},
         number(-123400, 8),
         QStringLiteral("'-12.3400'")},
        {{QStringLiteral("Single"), TJetType::Single, 4, true},
         QByteArray("\0\0\xc0\xbf", 4),
         QStringLiteral("-1.5")},
        {{QStringLiteral("Double"), TJetType::Double, 8, true},
         TJetBuilder::DoubleBytes(0.1),
         QStringLiteral("0.1")},
        {{QStringLiteral("Date"), TJetType::DateTime, 8, true},
         TJetBuilder::DoubleBytes(45292.5),
         QStringLiteral("'2024-01-01 12:00:00'")},
        {{QStringLiteral("Guid"), TJetType::Guid, 16, true},
         guid,
         QStringLiteral("'{0D0C0B0A-1B1A-2B2A-3A3B-4A4B5A5B6A6B}'")},
        {{QStringLiteral("Dec"), TJetType::Decimal, 17, true, 28, 3},
         decimal,
         QStringLiteral("'-18446744073709551.621'")},
        {{QStringLiteral("Bin"), TJetType::Binary, 9, false}, "\x01\x02\x03", QStringLiteral("x'010203'")},
        {{QStringLiteral("Text"), TJetType::Text, 40, false}, Text(QStringLiteral("caf\u00e9")), {}},
        {{QStringLiteral("Memo"), TJetType::Memo, 0, false},
         TJetBuilder::InlineValue(Text(QStringLiteral("memo"))),
         QStringLiteral("'memo'")},
        {{QStringLiteral("Ole"), TJetType::Ole, 0, false},
         TJetBuilder::InlineValue("\xff\xd8"),
         QStringLiteral("x'ffd8'")},
    };
    QList<TJetBuilder::TColumn> columns;
    TJetBuilder::TCells values;
    TJetBuilder::TCells nulls;
    TJetBuilder::TCells empties;
    QStringList expected;
    QStringList expectedNulls;
    QStringList expectedEmpties;
    for (const TKind &kind : kinds) {
        columns.append(kind.Column);
        values.append(kind.Bytes);
        nulls.append(std::nullopt);
        empties.append(kind.Column.IsFixed ? std::optional<QByteArray>() : QByteArray());
        expected.append(kind.Expected);
        const bool isBool = kind.Column.Type == TJetType::Boolean;
        const bool isText = kind.Column.Type == TJetType::Text || kind.Column.Type == TJetType::Memo;
        expectedNulls.append(isBool ? QStringLiteral("0") : QStringLiteral("NULL"));
        expectedEmpties.append(kind.Column.IsFixed ? expectedNulls.last()
                               : isText            ? QStringLiteral("''")
                                                   : QStringLiteral("x''"));
    }
    // In code page 936 the byte E9 is the first half of a character.
    expected[11] = IsJet3() ? QStringLiteral("'caf'") : QStringLiteral("'caf\u00e9'");
    TJetBuilder builder = Builder(columns);
    builder.AddRow(values);
    builder.AddRow(nulls);
    builder.AddRow(empties);
    EXPECT_EQ(Rows(builder), (QList<QStringList>{expected, expectedNulls, expectedEmpties}));
}

TEST_P(JetBuilt, ReadsLongValuesOfAnyLength)
{
    TJetBuilder builder = Builder({{QStringLiteral("Memo"), TJetType::Memo, 0, false},
                                   {QStringLiteral("Ole"), TJetType::Ole, 0, false}});
    QList<QStringList> expected;
    for (const int size : {1, 1000, 4076, 16384, 65535, 65536, 300000}) {
        const QString text = QString(size, u'x') + u'.';
        const QByteArray blob(size, '\x5a');
        const QByteArray bytes = Text(text);
        const bool fits = size <= 1000;
        const QByteArray memo = fits ? builder.PagedValue(bytes) : builder.ChainedValue(bytes);
        const QByteArray ole = fits ? builder.PagedValue(blob) : builder.ChainedValue(blob);
        builder.AddRow({memo, ole});
        expected.append(
            {u'\'' + text + u'\'', QStringLiteral("x'%1'").arg(QString::fromLatin1(blob.toHex()))});
    }
    builder.UseMapPages();
    // Compared by hand: a difference need not print half a megabyte.
    EXPECT_TRUE(Rows(builder) == expected);
}

TEST_P(JetBuilt, FollowsMovedRowsAndPassesOverDeletedOnes)
{
    TJetBuilder builder = Builder({{QStringLiteral("A"), TJetType::Text, 100, false}});
    const auto row = [&](const QString &text) { return builder.PackRow({Text(text)}); };
    builder.AddRow({Text(QStringLiteral("first"))});
    builder.AddRawRow(TJetBuilder::Int((builder.RowPage() + 1) << 8 | 1, 4), 0x4000);
    builder.AddRawRow(row(QStringLiteral("deleted")), 0xc000);
    builder.AddRow({Text(QStringLiteral("last"))});
    builder.NextPage();
    builder.AddRawRow(row(QStringLiteral("deleted, too")), 0x8000);
    builder.AddRawRow(row(QStringLiteral("moved")), 0x8000);
    EXPECT_EQ(Rows(builder),
              (QList<QStringList>{
                  {QStringLiteral("'first'")}, {QStringLiteral("'moved'")}, {QStringLiteral("'last'")}}));
}

TEST_P(JetBuilt, ReadsRowsOfMoreThan256Bytes)
{
    QList<TJetBuilder::TColumn> columns;
    for (int i = 0; i < 12; ++i)
        columns.append({QStringLiteral("C%1").arg(i), TJetType::Binary, 255, false});
    QList<QStringList> expected;
    TJetBuilder builder = Builder(columns);
    // Every length up to 255 in some column, so that jumps fall on each column, and twice on
    // none, once or several of them.
    for (int length = 0; length <= 255; length += 5) {
        TJetBuilder::TCells cells;
        QStringList row;
        for (int i = 0; i < 12; ++i) {
            const QByteArray value((length * (i + 1)) % (IsJet3() ? 140 : 256), char('a' + i));
            cells.append(value);
            row.append(QStringLiteral("x'%1'").arg(QString::fromLatin1(value.toHex())));
        }
        builder.AddRow(cells);
        expected.append(row);
    }
    EXPECT_EQ(Rows(builder), expected);
}

TEST_P(JetBuilt, GivesNullForColumnsThatAreYoungerThanTheRow)
{
    const QList<TJetBuilder::TColumn> columns = {{QStringLiteral("A"), TJetType::LongInteger, 4, true},
                                                 {QStringLiteral("B"), TJetType::Text, 40, false},
                                                 {QStringLiteral("C"), TJetType::Text, 40, false},
                                                 {QStringLiteral("D"), TJetType::Boolean, 1, true},
                                                 {QStringLiteral("E"), TJetType::LongInteger, 4, true}};
    const TJetBuilder old = Builder(columns.first(2));
    TJetBuilder builder = Builder(columns);
    builder.AddRawRow(old.PackRow({TJetBuilder::Int(7, 4), Text(QStringLiteral("b"))}), 0);
    EXPECT_EQ(Rows(builder),
              (QList<QStringList>{{QStringLiteral("7"), QStringLiteral("'b'"), QStringLiteral("NULL"),
                                   QStringLiteral("0"), QStringLiteral("NULL")}}));
}

// A usage map's own bitmap covers 512 pages, a map page of a Jet 3 file 16352. The first table
// goes beyond that; the second one's map begins with the first table's pages left out.
TEST_P(JetBuilt, ReadsTablesThatSpanSeveralMaps)
{
    TJetBuilder builder(Head(), IsJet3());
    const auto addTable = [&](const QString &name, int pages) {
        builder.BeginTable(name, {{QStringLiteral("Id"), TJetType::LongInteger, 4, true},
                                  {QStringLiteral("Name"), TJetType::Text, 100, false}});
        QList<QStringList> rows;
        for (int i = 0; i < pages; ++i) {
            builder.NextPage();
            for (const int id : {2 * i, 2 * i + 1}) {
                const QString text = name + QString::number(id);
                builder.AddRow({TJetBuilder::Int(quint64(id), 4), Text(text)});
                rows.append({QString::number(id), u'\'' + text + u'\''});
            }
        }
        return rows;
    };
    const QList<QStringList> first = addTable(QStringLiteral("First"), IsJet3() ? 16500 : 700);
    const QList<QStringList> second = addTable(QStringLiteral("Second"), IsJet3() ? 600 : 500);
    TJetFile file(WriteBytes(FFolder, QStringLiteral("large.mdb"), builder.Build()));
    // Compared by hand: a difference need not print all rows.
    EXPECT_TRUE(RowsOf(file, QStringLiteral("First")) == first);
    EXPECT_TRUE(RowsOf(file, QStringLiteral("Second")) == second);
}

TEST(JetValue, WritesNumbersAndDates)
{
    const auto number = [](quint64 value, int bytes) { return TJetBuilder::Int(value, bytes); };
    const auto view = [](const QByteArray &bytes) {
        return TJetBytes(reinterpret_cast<const quint8 *>(bytes.constData()), size_t(bytes.size()));
    };
    std::string text;
    const std::pair<quint64, const char *> amounts[] = {
        {0, "0.0000"},
        {5, "0.0005"},
        {quint64(-5), "-0.0005"},
        {0x7fffffffffffffff, "922337203685477.5807"},
        {0x8000000000000000, "-922337203685477.5808"},
    };
    for (const auto &[bits, expected] : amounts) {
        JetMoneyToText(view(number(bits, 8)), text);
        EXPECT_EQ(text, expected);
    }

    struct TDecimal
    {
        quint64 High;
        quint64 Low;
        int Scale;
        bool IsNegative;
        const char *Expected;
    };
    const TDecimal decimals[] = {
        {0, 0, 0, true, "0"},
        {0, 0, 2, true, "0.00"},
        {0, 7, 3, true, "-0.007"},
        {0, 1234567, 4, false, "123.4567"},
        {1, 0, 0, false, "18446744073709551616"},
        {542101086, 4477988020393345023, 0, false, "9999999999999999999999999999"},
    };
    for (const TDecimal &decimal : decimals) {
        const QByteArray bytes = number(decimal.IsNegative ? 0x80 : 0, 1) + number(decimal.High >> 32, 4) +
                                 number(decimal.High, 4) + number(decimal.Low >> 32, 4) +
                                 number(decimal.Low, 4);
        JetDecimalToText(view(bytes), decimal.Scale, text);
        EXPECT_EQ(text, decimal.Expected);
    }

    const std::pair<double, const char *> dates[] = {
        {0, "1899-12-30"},
        {0.25, "1899-12-30 06:00:00"},
        {-1.25, "1899-12-29 06:00:00"},
        {60, "1900-02-28"},
        {61, "1900-03-01"},
        {45351, "2024-02-29"},
        {45291.9999999, "2024-01-01"},
        {2958465, "9999-12-31"},
        {-657434, "0100-01-01"},
        {45292 + 1 / 86400.0, "2024-01-01 00:00:01"},
    };
    for (const auto &[date, expected] : dates) {
        JetDateToText(date, text);
        EXPECT_EQ(text, expected) << date;
    }
    for (const double date : {2958466.0, -657435.0, 1e300, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_THROW(JetDateToText(date, text), EJetDamage) << date;
}

TEST(JetValue, DecodesTexts)
{
    struct TCase
    {
        int CodePage;
        const char *Hex;
        QString Expected;
    };
    const TCase cases[] = {
        {0, "", {}},
        {0, "2d4e8765", QStringLiteral("中文")},
        {0, "2d4e87", QStringLiteral("中")}, // half a character
        {0, "42d8b7df", QStringLiteral("\U00020bb7")},
        {0, "42d84100", QStringLiteral("\ufffdA")},
        {0, "b7df", QStringLiteral("\ufffd")},
        {0, "fffe4142e9", QStringLiteral("AB\u00e9")},
        {0, "fffe41002d4e87650042", QStringLiteral("A中文B")},
        {0, "fffe002d4e", QStringLiteral("中")},
        {0, "fffe", {}},
        {936, "d6d0cec441", QStringLiteral("中文A")},
        {936, "80", QStringLiteral("€")},
        {936, "d6d0ce", QStringLiteral("中")}, // half a character
        {1252, "e9", QStringLiteral("é")},
        {950, "a4a4a4e5", QStringLiteral("中文")},
    };
    for (const TCase &test : cases) {
        const QByteArray bytes = QByteArray::fromHex(test.Hex);
        TJetText text(test.CodePage);
        const TJetBytes view(reinterpret_cast<const quint8 *>(bytes.constData()), size_t(bytes.size()));
        EXPECT_EQ(text.Decode(view), test.Expected) << test.CodePage << ' ' << test.Hex;
        std::string utf8 = "left over";
        text.Decode(view, utf8);
        EXPECT_EQ(QString::fromStdString(utf8), test.Expected) << test.CodePage << ' ' << test.Hex;
    }
    EXPECT_THROW(TJetText(4711), EJetDamage);
}

} // namespace
} // namespace Korvane
