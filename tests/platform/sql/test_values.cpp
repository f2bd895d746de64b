// SPDX-License-Identifier: MIT
// What goes into a database of the embedded engine comes out the same.
#include "platform/sql/ADOCommand.h"
#include "support/Packets.h"
#include "support/TestDatabase.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

/// A table of one row with one column, and what a query of it gives: the field and the cell.
QString RoundTrip(TADOConnection &connection, const QString &type, const QString &literal)
{
    RunAll(connection, {u"create table V(A %1)"_s.arg(type), u"insert into V(A) values(%1)"_s.arg(literal)});
    const QString text = TextOf(connection.Query(u"select A from V"_s)).trimmed();
    RunAll(connection, {u"drop table V"_s});
    return text;
}

/// The value after it was bound to a parameter, stored and read.
QVariant Bound(TADOConnection &connection, const QString &type, const QVariant &value)
{
    RunAll(connection, {u"create table V(A %1)"_s.arg(type)});
    const TSqlParameter parameter = {u"A"_s, value};
    connection.Execute(u"insert into V(A) values(:A)"_s, {&parameter, 1});
    const QVariant read = connection.Query(u"select A from V"_s).Value(0, 0);
    RunAll(connection, {u"drop table V"_s});
    return read;
}

} // namespace

TEST(Values, of_each_type_keep_value_and_type)
{
    static const struct
    {
        QString Type;
        QString Literal;
        QString Read;
    } rows[] = {
        {u"varchar(20)"_s, u"'中文 ''引号'' \"x\"'"_s, u"A:string(20)\n中文 '引号' \"x\""_s},
        {u"varchar(20)"_s, u"''"_s, u"A:string(20)"_s},
        {u"varchar(20)"_s, u"null"_s, u"A:string(20)\n~"_s},
        {u"varchar(14)"_s, u"'00012400131083'"_s, u"A:string(14)\n00012400131083"_s},
        {u"char(14)"_s, u"'20240131083000'"_s, u"A:string(14)\n20240131083000"_s},
        {u"varchar(10)"_s, u"'1e3'"_s, u"A:string(10)\n1e3"_s},
        {u"varchar(10)"_s, u"'1.50'"_s, u"A:string(10)\n1.50"_s},
        {u"text"_s, u"'line 1'"_s, u"A:memo\nline 1"_s},
        {u"int"_s, u"-2147483648"_s, u"A:integer\n-2147483648"_s},
        {u"int"_s, u"null"_s, u"A:integer\n~"_s},
        {u"smallint"_s, u"7"_s, u"A:smallint\n7"_s},
        {u"decimal(12,2)"_s, u"1234567890.12"_s, u"A:float(12,2)\n1234567890.12"_s},
        {u"decimal(12,2)"_s, u"-0.1"_s, u"A:float(12,2)\n-0.1"_s},
        {u"decimal(12,2)"_s, u"5"_s, u"A:float(12,2)\n5"_s},
        {u"float"_s, u"0.1"_s, u"A:float\n0.1"_s},
        {u"float"_s, u"1e300"_s, u"A:float\n1E300"_s},
        {u"datetime"_s, u"'2024-01-31 08:30:00'"_s, u"A:string\n2024-01-31 08:30:00"_s},
        {u"datetime"_s, u"'20240131'"_s, u"A:string\n20240131"_s},
        {u"date"_s, u"'20240131'"_s, u"A:string\n20240131"_s},
    };
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        const auto connection = database.Connect();
        for (const auto &row : rows)
            EXPECT_EQ(RoundTrip(*connection, row.Type, row.Literal), row.Read)
                << row.Type.toStdString() << ' ' << row.Literal.toStdString();
    }
}

TEST(Values, that_are_bound_come_back_the_same)
{
    QString megabyte(1'000'000, u'长');
    megabyte[999'999] = u'x';
    QByteArray allBytes;
    for (int i = 0; i < 256; ++i)
        allBytes += char(i);
    const struct
    {
        QString Type;
        QVariant Value;
    } rows[] = {
        {u"varchar(20)"_s, u"it's \"中文\" :A ?"_s},
        {u"varchar(20)"_s, u"trailing  "_s},
        {u"varchar(20)"_s, u"  leading"_s},
        {u"varchar(20)"_s, u""_s},
        {u"varchar(20)"_s, QVariant(QMetaType(QMetaType::QString))},
        {u"varchar(20)"_s, u"00012400131083"_s},
        {u"text"_s, u"a\r\nb\tc\n"_s},
        {u"text"_s, megabyte},
        {u"text"_s, u"\U0001F600"_s},
        {u"int"_s, 2147483647},
        {u"bigint"_s, qint64(9007199254740993)},
        {u"bigint"_s, std::numeric_limits<qint64>::min()},
        {u"float"_s, 0.1 + 0.2},
        {u"image"_s, allBytes.repeated(5000)},
        {u"image"_s, QByteArray("\0", 1)},
        {u"image"_s, QByteArray("")},
        {u"image"_s, QVariant(QMetaType(QMetaType::QByteArray))},
    };
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        const auto connection = database.Connect();
        for (const auto &row : rows) {
            if (dialect == TSqlDialect::Access && row.Type == u"bigint"_s)
                continue;
            const QVariant expected = row.Value.isNull() ? QVariant(row.Value.metaType()) : row.Value;
            const QVariant read = Bound(*connection, row.Type, row.Value);
            EXPECT_EQ(read.isNull(), expected.isNull()) << row.Type.toStdString();
            EXPECT_TRUE(read == expected)
                << row.Type.toStdString() << " of " << row.Value.toString().left(40).toStdString();
        }
    }
}

// An empty blob is a value and no NULL, also through the command that datasets save with.
TEST(Values, an_empty_blob_is_not_null)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        const auto connection = database.Connect();
        RunAll(*connection, {u"create table T(NO int, A image, B text)"_s});
        TADOCommand command;
        command.SetConnection(connection.get());
        command.SetCommandText(u"insert into T values(1, :A, :B)"_s);
        command.LoadParameter(0, QByteArray(), ftBlob);
        command.LoadParameter(1, QByteArray(), ftMemo);
        command.Execute();
        RunAll(*connection, {u"insert into T values(2, null, null)"_s});
        EXPECT_EQ(Rows(*connection, u"select NO from T where A is null"_s), u"2"_s);
        EXPECT_EQ(Rows(*connection, u"select A, B from T order by NO"_s), u"0x| / ~|~"_s);
    }
}

TEST(Values, a_text_in_a_column_of_numbers_widens_it_and_is_not_lost)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        const auto connection = database.Connect();
        RunAll(*connection, {u"create table T(A int)"_s, u"insert into T values(1)"_s,
                             u"insert into T values('12a')"_s, u"insert into T values(2.5)"_s});
        EXPECT_EQ(Rows(*connection, u"select A from T"_s), u"1 / 12a / 2.5"_s);
    }
}

TEST(Values, two_columns_of_a_name_are_told_apart)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        const auto connection = database.Connect();
        RunAll(*connection, {u"create table T(A int, b varchar(5))"_s, u"insert into T values(1, 'x')"_s});
        EXPECT_EQ(TextOf(connection->Query(u"select x.A, y.A, x.b, y.b as B, y.A as A_1 from T x, T y"_s)),
                  u"A:integer|A_1:integer|b:string(5)|B_1:string(5)|A_1_1:integer\n1|1|x|x|1\n"_s);
    }
}

TEST(Values, a_column_that_is_not_there_is_told_whatever_it_is_called)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        const auto connection = database.Connect();
        RunAll(*connection, {u"create table T(A int)"_s, u"insert into T values(1)"_s});
        // The second and the third are words of the engine, which are quoted for it.
        for (const QString &name : {u"MISSING"_s, u"NOTHING"_s, u"GLOB"_s})
            for (const QString &statement :
                 {u"select * from T where %1=1"_s, u"select %1 from T"_s, u"update T set A=%1"_s})
                EXPECT_EQ(FailureOf(*connection, statement.arg(name)), u"no such column: "_s + name);
        EXPECT_EQ(FailureOf(*connection, u"create index IX on T(NOTHING)"_s), u"no such column: NOTHING"_s);
    }
}

TEST(Values, a_statement_without_rows_gives_the_fields_and_one_without_a_result_none)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        const auto connection = database.Connect();
        RunAll(*connection, {u"create table T(A int, B varchar(5))"_s});
        EXPECT_EQ(TextOf(connection->Query(u"select A, B, A+1 as C from T"_s)),
                  u"A:integer|B:string(5)|C:string\n"_s);
        EXPECT_EQ(connection->Query(u"insert into T values(1, 'x')"_s).FieldCount(), 0);
        EXPECT_EQ(connection->Query(u"-- nothing"_s).FieldCount(), 0);
        EXPECT_EQ(connection->Query(u"delete from T"_s).FieldCount(), 0);
        EXPECT_EQ(Rows(*connection, u"select count(*) from T"_s), u"0"_s);
    }
}
