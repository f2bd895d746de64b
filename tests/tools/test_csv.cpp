// SPDX-License-Identifier: MIT
#include "tools/korvane/CsvReader.h"
#include "tools/korvane/CsvWriter.h"

#include "platform/core/Exceptions.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

using Rows = QList<QStringList>;

/// A text like "a|NULL|" of rows, in which NULL and the empty text differ.
QString Shown(const Rows &rows)
{
    QString shown;
    for (const QStringList &row : rows) {
        for (const QString &field : row)
            shown += (field.isNull() ? u"NULL"_s : u'[' + field + u']') + u'|';
        shown += u'\n';
    }
    return shown;
}

Rows ReadAll(QIODevice &device)
{
    Rows rows;
    for (TCsvReader csv(device); csv.Next();) {
        QStringList row;
        for (qsizetype i = 0; i < csv.FieldCount(); ++i)
            row.append(csv.Text(i));
        rows.append(row);
    }
    return rows;
}

Rows ReadAll(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return ReadAll(buffer);
}

QByteArray Written(const Rows &rows)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    TCsvWriter csv(buffer);
    for (const QStringList &row : rows)
        csv.WriteRow(row);
    csv.Finish();
    return buffer.data();
}

/// Hands out one byte at a time, as a slow pipe may.
class DripDevice : public QBuffer
{
protected:
    qint64 readData(char *data, qint64 size) override
    {
        return QBuffer::readData(data, std::min<qint64>(size, 1));
    }
};

struct ReadRow
{
    QByteArray Bytes;
    Rows Expected;
};

const QString Null;
const QString Empty = QStringLiteral("");

const QList<ReadRow> &Readings()
{
    static const QList<ReadRow> rows = {
        {"", {}},
        {"a,b\r\nc,d\r\n", {{"a", "b"}, {"c", "d"}}},
        {"a,b\nc,d", {{"a", "b"}, {"c", "d"}}},
        {"\"a\",\"\",\r\n", {{"a", Empty, Null}}},
        {",", {{Null, Null}}},
        {"\r\n\r\n", {{Null}, {Null}}},
        {"\"\"", {{Empty}}},
        {"\"say \"\"hi\"\"\",\"\"\"\"", {{"say \"hi\"", "\""}}},
        {"\"x,y\r\nz\n\",1\r\n", {{"x,y\r\nz\n", "1"}}},
        {" a ,  b\n", {{" a ", "  b"}}},
        {"\xEF\xBB\xBF\"名\",1\n", {{u"名"_s, "1"}}},
        {"\"螺丝\",𠀀\n", {{u"螺丝"_s, u"𠀀"_s}}},
    };
    return rows;
}

} // namespace

TEST(Csv, reads_rows_from_any_size_of_pieces)
{
    for (const ReadRow &row : Readings()) {
        EXPECT_EQ(Shown(ReadAll(row.Bytes)), Shown(row.Expected)) << row.Bytes.constData();
        DripDevice drip;
        drip.setData(row.Bytes);
        drip.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
        EXPECT_EQ(Shown(ReadAll(drip)), Shown(row.Expected)) << row.Bytes.constData();
    }
}

TEST(Csv, broken_data_are_refused_with_their_line)
{
    const struct
    {
        QByteArray Bytes;
        QString Message;
    } rows[] = {
        {"a\n\"b\n\n", u"CSV 第 2 行：引号没有结束"_s},
        {"\"a\n\n\",\"b", u"CSV 第 3 行：引号没有结束"_s},
        {"a\nb\"c\n", u"CSV 第 2 行：没有引号的字段中出现了引号"_s},
        {"a\n\"b\"c\n", u"CSV 第 2 行：结束引号后面只能是逗号或换行"_s},
        {"\"a\" ,b\n", u"CSV 第 1 行：结束引号后面只能是逗号或换行"_s},
        {"a\rb\n", u"CSV 第 1 行：回车符后面没有换行符"_s},
        {"a\r", u"CSV 第 1 行：回车符后面没有换行符"_s},
        {"a,b\r\n\"1\r\n\",2\r\n3\r\n", u"CSV 第 4 行：有 1 个字段，应为 2 个"_s},
        {"a,b\n1,2,3\n", u"CSV 第 2 行：有 3 个字段，应为 2 个"_s},
        {"a,b\n1,2\n\n", u"CSV 第 3 行：有 1 个字段，应为 2 个"_s},
        {"a,b\n1,\xC3(\n", u"CSV 第 2 行：第 2 个字段不是有效的 UTF-8"_s},
        {"\xC3,\xA9\n", u"CSV 第 1 行：第 1 个字段不是有效的 UTF-8"_s},
    };
    for (const auto &row : rows) {
        try {
            ReadAll(row.Bytes);
            ADD_FAILURE() << "accepted: " << row.Bytes.constData();
        } catch (const EConvertError &error) {
            EXPECT_EQ(error.Message(), row.Message);
        }
    }
}

TEST(Csv, a_row_knows_the_line_it_begins_on)
{
    QBuffer buffer;
    buffer.setData("a\r\n\"b\r\n\r\n\"\r\nc\r\n");
    buffer.open(QIODevice::ReadOnly);
    QList<qint64> lines;
    for (TCsvReader csv(buffer); csv.Next();)
        lines.append(csv.LineNumber());
    EXPECT_EQ(lines, (QList<qint64>{1, 2, 5}));
}

TEST(Csv, writes_text_in_quotes_numbers_bare_and_null_as_nothing)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    TCsvWriter csv(buffer);
    csv.Text(std::string_view("a\"b\"\"c"));
    csv.Text(u"螺丝,\r\n"_s);
    csv.Text(QString());
    csv.Bare("-1.5");
    csv.Null();
    csv.EndRow();
    csv.Null();
    csv.EndRow();
    csv.Finish();
    EXPECT_EQ(buffer.data(), QByteArray("\"a\"\"b\"\"\"\"c\",\"螺丝,\r\n\",\"\",-1.5,\r\n\r\n"));
}

TEST(Csv, what_is_written_reads_back_beyond_the_size_of_the_buffers)
{
    Rows rows = {{u"\""_s, u"a\rb"_s, Null}, {Empty, u" 螺丝 "_s, u"\"\"\r\n,"_s}};
    for (int i = 0; i < 3000; ++i)
        rows.append({QString(i % 90, u'"'), i % 3 == 0 ? Null : QString::number(i), u"名称\n"_s});
    const QByteArray bytes = Written(rows);
    ASSERT_GT(bytes.size(), 150'000);
    EXPECT_EQ(Shown(ReadAll(bytes)), Shown(rows));
}

TEST(Csv, a_device_that_fails_is_an_error)
{
    QTemporaryDir folder;
    QFile file(folder.filePath(u"rows.csv"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("a\n");
    file.close();
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(Shown(ReadAll(file)), Shown({{u"a"_s}}));

    QFile full(u"/dev/full"_s);
    if (!full.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        GTEST_SKIP() << "no device that is always full";
    TCsvWriter csv(full);
    csv.Text(u"a"_s);
    csv.EndRow();
    EXPECT_THROW(csv.Finish(), EFileError);
}
