// SPDX-License-Identifier: MIT
#include "platform/core/DateTime.h"
#include "platform/sql/ADODataSet.h"
#include "support/Packets.h"
#include "support/TestDatabase.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

/// A rowset's rows without the dates, which differ from run to run.
QString Rowset(TADOConnection &connection, TSchemaInfo schema, const QVariantList &restrictions = {})
{
    TADODataSet rowset;
    connection.OpenSchema(schema, restrictions, {}, rowset);
    QStringList lines = TextOf(rowset.Packet()).split(u'\n').mid(1);
    lines.removeLast();
    if (schema == siTables)
        for (QString &line : lines)
            line = line.section(u'|', 0, 1);
    return lines.join(u" / "_s);
}

class SchemaRowsets : public testing::TestWithParam<TSqlDialect>
{
protected:
    TestDatabase FDatabase{GetParam()};
    std::unique_ptr<TADOConnection> FConnection = FDatabase.Connect();
};

INSTANTIATE_TEST_SUITE_P(Dialects, SchemaRowsets, testing::ValuesIn(BothDialects), [](const auto &tested) {
    return tested.param == TSqlDialect::Access ? "Access" : "MSSQL";
});

} // namespace

TEST_P(SchemaRowsets, tables_tell_kind_and_name)
{
    RunAll(*FConnection, {u"create table Beta(A int)"_s, u"create table alpha(A int)"_s,
                          u"create view V as select A from Beta"_s, u"create table [订单 明细](A int)"_s});
    EXPECT_EQ(Rowset(*FConnection, siTables),
              u"sqlite_master|SYSTEM TABLE / _korvane|SYSTEM TABLE / Beta|TABLE / "
              "V|VIEW / alpha|TABLE / 订单 明细|TABLE"_s);
    EXPECT_EQ(Rowset(*FConnection, siTables, {u"BETA"_s}), u"Beta|TABLE"_s);
    EXPECT_EQ(Rowset(*FConnection, siTables, {{}, u"view"_s}), u"V|VIEW"_s);
    EXPECT_EQ(Rowset(*FConnection, siTables, {u"beta"_s, u"VIEW"_s}), u""_s);
}

TEST_P(SchemaRowsets, columns_tell_type_length_and_default)
{
    RunAll(*FConnection,
           {u"create table T(CODE varchar(10) not null, QTY decimal(12, 2) default 0, NOTE text, PIC image, "
            "constraint PK_T primary key(CODE))"_s,
            u"create table U(A int)"_s});
    EXPECT_EQ(Rowset(*FConnection, siColumns, {u"t"_s}),
              u"T|CODE|1|varchar(10)|10|N|~ / T|QTY|2|decimal(12, 2)|12|Y|0 / T|NOTE|3|text|~|Y|~ / "
              "T|PIC|4|blob|~|Y|~"_s);
    EXPECT_EQ(Rowset(*FConnection, siColumns, {{}, u"a"_s}), u"U|A|1|int|~|Y|~"_s);
}

TEST_P(SchemaRowsets, indexes_are_named_as_they_were_made)
{
    RunAll(*FConnection,
           {u"create table T(CODE varchar(10) not null, A int, B int, constraint PK_T primary key(CODE))"_s,
            u"create table U(A int)"_s, u"create unique index IX on T(B, A)"_s,
            u"create index IX on U(A)"_s});
    EXPECT_EQ(Rowset(*FConnection, siIndexes),
              u"T|IX|B|1|Y|N / T|IX|A|2|Y|N / T|sqlite_autoindex_T_1|CODE|1|Y|Y / U|IX|A|1|N|N"_s);
    EXPECT_EQ(Rowset(*FConnection, siIndexes, {u"U"_s, u"ix"_s}), u"U|IX|A|1|N|N"_s);
}

TEST_P(SchemaRowsets, a_tables_date_is_that_of_its_making_and_the_first_rows_that_of_the_database)
{
    PlainDatabase tool(FDatabase.FileName());
    tool.Run(u"update _korvane set Value='2001-02-03T04:05:06.007' where Kind='database'"_s);
    const auto date = [&](const QString &table) {
        TADODataSet rowset;
        FConnection->OpenSchema(siTables, table.isEmpty() ? QVariantList() : QVariantList{table}, {}, rowset);
        return TDateTime(rowset.FieldByName(u"DATE_CREATED"_s).AsFloat()).ToQDateTime();
    };
    const QDateTime database(QDate(2001, 2, 3), QTime(4, 5, 6, 7));
    EXPECT_EQ(date({}), database);

    const QDateTime before = QDateTime::currentDateTime().addMSecs(-1);
    RunAll(*FConnection, {u"create table A(X int)"_s, u"CREATE  \r\n TABLE B(X int)"_s,
                          u"-- new\r\ncreate table C(X int)"_s, u"select X into D from A"_s,
                          u"create table E(X int)\r\ncreate table F(X int)"_s});
    for (const QString &table : {u"A"_s, u"B"_s, u"C"_s, u"D"_s, u"E"_s, u"F"_s})
        EXPECT_GE(date(table), before) << table.toStdString();

    // A table that is changed keeps its date, one that is made again gets a new one.
    tool.Run(u"update _korvane set Value='2002-01-01T00:00:00.000' where Kind='table'"_s);
    const QDateTime older(QDate(2002, 1, 1), QTime(0, 0));
    RunAll(*FConnection,
           {u"alter table A alter column X varchar(10)"_s, u"drop table B"_s, u"create table B(X int)"_s});
    EXPECT_EQ(date(u"A"_s), older);
    EXPECT_GE(date(u"B"_s), before);
    tool.Run(u"update _korvane set Value='2002-01-01T00:00:00.000' where Kind='table'"_s);
    RunAll(*FConnection, {u"drop table B\r\ncreate table B(X int)"_s});
    EXPECT_GE(date(u"B"_s), before);
    EXPECT_EQ(date(u"E"_s), older);
    EXPECT_EQ(date({}), database);
}

TEST_P(SchemaRowsets, what_the_engine_has_not_is_refused)
{
    TADODataSet rowset;
    EXPECT_EQ(RaisedBy([&] { FConnection->OpenSchema(siProviderSpecific, {}, u"{none}"_s, rowset); }),
              u"EDatabaseError: 内嵌数据库引擎没有此结构信息：{none}"_s);
    EXPECT_FALSE(rowset.Active());
    EXPECT_EQ(FConnection->Errors().size(), 1);
}
