// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/StatementForm.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>
#include <sqlite3.h>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

constexpr TSqlDialect Access = TSqlDialect::Access;
constexpr TSqlDialect Mssql = TSqlDialect::MSSQL;

/// The statement with "@" at each place of its form; "none" where it has no form.
QString FormText(const QString &statement, TSqlDialect dialect)
{
    const auto form = TStatementForm::Of(statement, dialect);
    return form ? form->With([](qsizetype) { return u"@"_s; }) : u"none"_s;
}

/// The values that a form reads off a statement; "no" if it does not.
QString ReadText(const QString &formOf, const QString &statement, TSqlDialect dialect)
{
    TLiteralReader reader(dialect);
    if (!TStatementForm::Of(formOf, dialect)->Reads(statement, reader))
        return u"no"_s;
    QStringList values;
    for (const TLiteral &literal : reader.Literals()) {
        switch (literal.Kind) {
        case TLiteral::TKind::Null:
            values += u"null"_s;
            break;
        case TLiteral::TKind::Whole:
            values += QString::number(literal.Whole);
            break;
        case TLiteral::TKind::Number:
            values += u"real "_s + QString::number(literal.Number, 'g', 17);
            break;
        case TLiteral::TKind::Text:
            values += u'<' + QString::fromUtf8(literal.Text.data(), qsizetype(literal.Text.size())) + u'>';
            break;
        }
    }
    return values.join(u' ');
}

} // namespace

TEST(StatementForm, has_places_where_whole_values_stand)
{
    static const struct
    {
        QString Statement;
        QString Form;
    } rows[] = {
        {u"insert into T(A,B) values('x', -5 , null, 0.5,'')"_s,
         u"insert into T(A,B) values(@, @ , @, @,@)"_s},
        {u"insert T values(1),\n(2);"_s, u"insert T values(@),\n(@);"_s},
        {u"insert into T values(:A, 1+2, f(3), (4), - 5, 'a' + 'b', 6)"_s,
         u"insert into T values(:A, 1+2, f(3), (4), - 5, 'a' + 'b', @)"_s},
        {u"insert into T('x') values(1) -- '2', 3"_s, u"insert into T('x') values(@) -- '2', 3"_s},
        {u"update T set A='x',T.B = 5 where K='k' and (L<>1 or not M>=-2)"_s,
         u"update T set A=@,T.B = @ where K=@ and (L<>@ or not M>=@)"_s},
        {u"update T set A=A+1, B='x'+C, C=5 D, E=(5), F=/*1*/2"_s,
         u"update T set A=A+1, B='x'+C, C=5 D, E=(5), F=/*1*/2"_s},
        {u"update T set [A b]=1 where T.[K]='k'"_s, u"update T set [A b]=@ where T.[K]=@"_s},
        {u"delete from T where A=1 and B in (2,3) and C like '4' and 5=D and E+F=6 and G<7"_s,
         u"delete from T where A=@ and B in (2,3) and C like '4' and 5=D and E+F=6 and G<@"_s},
        {u"select A,'x',1 from T where A=1 group by A having A=2 order by 1"_s,
         u"select A,'x',1 from T where A=@ group by A having A=2 order by 1"_s},
        {u"select top 5 A from T where case when A=1 then 2 end=3 and B=4"_s,
         u"select top 5 A from T where case when A=1 then 2 end=3 and B=@"_s},
        {u"select now()"_s, u"select now()"_s},
        {u"select A from T where B=1 union select A from T where B=2"_s, u"none"_s},
        {u"update T set A=1 where B=(select max(B) from U where C=2)"_s, u"none"_s},
        {u"insert into T select 1 from U"_s, u"none"_s},
        {u"update T set A=1 delete from T"_s, u"none"_s},
        {u"create table T(A int default 5)"_s, u"none"_s},
        {u"begin transaction"_s, u"none"_s},
        {u""_s, u"none"_s},
    };
    for (const auto &row : rows)
        for (const TSqlDialect dialect : {Access, Mssql})
            EXPECT_EQ(FormText(row.Statement, dialect), row.Form);
    EXPECT_EQ(FormText(u"update T set A=\"x\", B=N'y'"_s, Access), u"update T set A=@, B=N'y'"_s);
    EXPECT_EQ(FormText(u"update T set A=\"x\", B=N'y'"_s, Mssql), u"update T set A=\"x\", B=@"_s);
    EXPECT_EQ(FormText(u"update T set A=1 -- "_s + QChar(u'\0'), Access), u"none"_s);
}

TEST(StatementForm, reads_literals_of_every_kind_at_its_places)
{
    static const struct
    {
        QString Literal;
        QString Access;
        QString Mssql;
    } rows[] = {
        {u"'x'"_s, u"<x>"_s, u"<x>"_s},
        {u"''"_s, u"<>"_s, u"<>"_s},
        {u"'it''s'''"_s, u"<it's'>"_s, u"<it's'>"_s},
        {u"'中é😀'"_s, u"<中é😀>"_s, u"<中é😀>"_s},
        {u"'--'"_s, u"<-->"_s, u"<-->"_s},
        {u"N'中'"_s, u"no"_s, u"<中>"_s},
        {u"n''"_s, u"no"_s, u"<>"_s},
        {u"\"it's \"\"x\"\"\""_s, u"<it's \"x\">"_s, u"no"_s},
        {u"NULL"_s, u"null"_s, u"null"_s},
        {u"Null"_s, u"null"_s, u"null"_s},
        {u"nullx"_s, u"no"_s, u"no"_s},
        {u"0"_s, u"0"_s, u"0"_s},
        {u"007"_s, u"7"_s, u"7"_s},
        {u"-12"_s, u"-12"_s, u"-12"_s},
        {u"999999999999999999"_s, u"999999999999999999"_s, u"999999999999999999"_s},
        {u"9223372036854775807"_s, u"no"_s, u"no"_s},
        {u"0.5"_s, u"real 0.5"_s, u"real 0.5"_s},
        {u"5.0"_s, u"real 5"_s, u"real 5"_s},
        {u"1234567890.25"_s, u"real 1234567890.25"_s, u"real 1234567890.25"_s},
        {u"123456789012345.678"_s, u"no"_s, u"no"_s},
    };
    const auto with = [](const QString &literal) {
        return u"update T set A=%1,B=1 where K='k'"_s.arg(literal);
    };
    for (const auto &row : rows) {
        const auto read = [&](TSqlDialect dialect) {
            return ReadText(with(u"0"_s), with(row.Literal), dialect).remove(u" 1 <k>"_s);
        };
        EXPECT_EQ(read(Access), row.Access) << row.Literal.toStdString();
        EXPECT_EQ(read(Mssql), row.Mssql) << row.Literal.toStdString();
    }
    // What the reader leaves alone, the form does not read.
    for (const QString &other : {u""_s,
                                 u"5."_s,
                                 u".5"_s,
                                 u"1e3"_s,
                                 u"1.5e3"_s,
                                 u"0x10"_s,
                                 u"+5"_s,
                                 u"- 5"_s,
                                 u"--5"_s,
                                 u"5 "_s,
                                 u"5 5"_s,
                                 u"(5)"_s,
                                 u"'x"_s,
                                 u"'a' 'b'"_s,
                                 u"A"_s,
                                 u":A"_s,
                                 u"#2024-01-31#"_s,
                                 u"True"_s,
                                 u"5x"_s,
                                 u"'"_s + QChar(u'\0') + u"'"_s,
                                 u"'"_s + QChar(0xD800) + u"'"_s,
                                 u"'"_s + QChar(0xDC00) + u"'"_s})
        for (const TSqlDialect dialect : {Access, Mssql})
            EXPECT_EQ(ReadText(with(u"0"_s), with(other), dialect), u"no"_s) << other.toStdString();
}

TEST(StatementForm, reads_only_statements_that_are_the_same_in_all_else)
{
    const QString form = u"update T set A='x',B=1 where K='k'"_s;
    EXPECT_EQ(ReadText(form, u"update T set A=2,B=null where K=3"_s, Access), u"2 null 3"_s);
    for (const QString &other :
         {u"update T set A='x',B=1 where K='k' "_s, u"update T set A='x',B=1 where K='k';"_s,
          u"update T set A='x',B=1"_s, u"update T set a='x',B=1 where K='k'"_s,
          u"update T set A='x',B=1 where K='k' or 1=1"_s, u"update T set A='x',B=1 where K='k'--"_s,
          u"update T set A='x'',B=1 where K='k'"_s, u""_s})
        EXPECT_EQ(ReadText(form, other, Access), u"no"_s) << other.toStdString();
}

TEST(LiteralReader, reads_decimals_as_the_engine_does)
{
    QRandomGenerator random(20240131);
    sqlite3 *db = nullptr;
    ASSERT_EQ(sqlite3_open(":memory:", &db), SQLITE_OK);
    TLiteralReader reader(Access);
    int readCount = 0;
    constexpr int rounds = 300, columns = 100;
    for (int round = 0; round < rounds; ++round) {
        QStringList literals = {u"-0.00"_s};
        for (int i = 1; i < columns; ++i) {
            const QString digits =
                QString::number(random.generate64() >> random.bounded(10, 63)).left(16).prepend(u"0"_s);
            const int places = random.bounded(1, int(digits.size()));
            literals += (i % 2 ? u"-"_s : u""_s) + digits.chopped(places) + u'.' + digits.right(places);
        }
        sqlite3_stmt *statement = nullptr;
        const QByteArray sql = "select " + literals.join(u',').toUtf8();
        ASSERT_EQ(sqlite3_prepare_v2(db, sql.constData(), -1, &statement, nullptr), SQLITE_OK);
        sqlite3_step(statement);
        for (int i = 0; i < columns; ++i) {
            reader.Start(literals[i].size());
            const char16_t *begin = QStringView(literals[i]).utf16();
            if (!reader.Read(begin, begin + literals[i].size()))
                continue;
            ++readCount;
            const double expected = sqlite3_column_double(statement, i);
            EXPECT_EQ(reader.Literals()[0].Number, expected) << literals[i].toStdString();
            EXPECT_EQ(std::signbit(reader.Literals()[0].Number), std::signbit(expected));
        }
        sqlite3_finalize(statement);
    }
    sqlite3_close(db);
    EXPECT_GT(readCount, rounds * columns / 2) << "it does not shirk";
}
