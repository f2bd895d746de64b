// SPDX-License-Identifier: MIT
// Changes of tables for which the engine has no statement, and what must survive them.
#include "support/Packets.h"
#include "support/TestDatabase.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

/// A database of either dialect with a table that has about everything: an identity, a key, an
/// index, a unique index, a view, a trigger of another tool, three rows.
class TableChanges : public testing::TestWithParam<TSqlDialect>
{
protected:
    TableChanges()
    {
        const QString identity = GetParam() == TSqlDialect::Access ? u"counter"_s : u"int identity"_s;
        RunAll(*FConnection,
               {u"create table T(ID %1, CODE varchar(10) not null, NAME varchar(20) default '无', QTY int, "
                "PHOTO image, constraint PK_T primary key(ID))"_s.arg(identity),
                u"create table LOG(N int)"_s, u"create index IX_NAME on T(NAME)"_s,
                u"create unique index UX_CODE on T(CODE)"_s, u"create view V as select CODE, QTY from T"_s,
                u"insert into T(CODE, QTY, PHOTO) values('a', 1, null)"_s,
                u"insert into T(CODE, NAME, QTY) values('b', '名', 2)"_s,
                u"insert into T(CODE, QTY) values('c', 3)"_s, u"delete from T where CODE='c'"_s});
        Tool().Run(u"create trigger TR after insert on T begin insert into LOG values(new.QTY); end"_s);
    }

    PlainDatabase &Tool()
    {
        if (!FTool)
            FTool = std::make_unique<PlainDatabase>(FDatabase.FileName());
        return *FTool;
    }
    QString Schema()
    {
        return Tool().Run(u"select type, name, tbl_name, sql from sqlite_master order by 1, 2"_s);
    }
    QString Dependents()
    {
        return Tool().Run(
            u"select type, name, sql from sqlite_master where type in('index', 'trigger', 'view') and "
            "sql is not null order by 1, 2"_s);
    }
    QString AllRows() { return Tool().Run(u"select ID, CODE, NAME, QTY, PHOTO from T order by ID"_s); }

    TestDatabase FDatabase{GetParam()};
    std::unique_ptr<TADOConnection> FConnection = FDatabase.Connect();
    std::unique_ptr<PlainDatabase> FTool;
};

INSTANTIATE_TEST_SUITE_P(Dialects, TableChanges, testing::ValuesIn(BothDialects), [](const auto &tested) {
    return tested.param == TSqlDialect::Access ? "Access" : "MSSQL";
});

const QString OriginalRows = u"1|a|无|1|~ / 2|b|名|2|~"_s;

} // namespace

TEST_P(TableChanges, keep_rows_and_all_that_hangs_on_the_table)
{
    static const QString changes[] = {
        u"alter table T alter column CODE varchar(30) not null"_s,
        u"alter table T alter column QTY decimal(12,2)"_s,
        u"alter table T alter column NAME varchar(40)"_s,
        u"alter table T add constraint CK_QTY check(QTY>0)"_s,
        u"alter table T drop constraint CK_QTY"_s,
        u"alter table T add NOTE varchar(10)"_s,
        u"alter table T drop column NOTE"_s,
        u"alter table T add STAMP varchar(10) default '0001' not null"_s,
        u"alter table T drop column STAMP"_s,
    };
    const QString dependents = Dependents();
    for (const QString &change : changes) {
        SCOPED_TRACE(change.toStdString());
        FConnection->Execute(change);
        EXPECT_EQ(AllRows(), OriginalRows);
        EXPECT_EQ(Dependents(), dependents);
        EXPECT_EQ(Rows(*FConnection, u"select * from V order by CODE"_s), u"a|1 / b|2"_s);
        EXPECT_EQ(Tool().Run(u"pragma integrity_check"_s), u"ok"_s);
        EXPECT_EQ(Tool().Run(u"select name from sqlite_master where name like '%korvane_new%'"_s), u""_s);
    }
    // The identity goes on where it was: the number of the row that was deleted does not come again.
    RunAll(*FConnection, {u"insert into T(CODE, QTY) values('d', 4)"_s});
    EXPECT_EQ(Rows(*FConnection, u"select ID, NAME from T where CODE='d'"_s), u"4|无"_s);
    EXPECT_EQ(Rows(*FConnection, u"select N from LOG"_s), u"4"_s) << "the trigger fires for new rows only";
    EXPECT_EQ(FailureOf(*FConnection, u"insert into T(CODE) values('A')"_s),
              u"主键或唯一索引的值重复，记录已存在（UNIQUE constraint failed: T.CODE）"_s);
    RunAll(*FConnection, {u"drop index T.IX_NAME"_s});
}

TEST_P(TableChanges, take_effect)
{
    static const struct
    {
        QString Change;
        QString Statement;
        QString Failure;
    } rows[] = {
        {u"alter table T alter column QTY int not null"_s, u"insert into T(CODE) values('x')"_s,
         u"不可为空的字段没有值（NOT NULL constraint failed: T.QTY）"_s},
        {u"alter table T alter column QTY int null"_s, u"insert into T(CODE) values('x')"_s, u"nothing"_s},
        {u"alter table T add constraint CK_QTY check(QTY>0)"_s, u"insert into T(CODE, QTY) values('y', 0)"_s,
         u"字段的值不符合约束（CHECK constraint failed: CK_QTY）"_s},
        {u"alter table T drop constraint CK_QTY"_s, u"insert into T(CODE, QTY) values('y', 0)"_s,
         u"nothing"_s},
        {u"alter table T add constraint UQ_QTY unique(QTY)"_s, u"insert into T(CODE, QTY) values('z', 2)"_s,
         u"主键或唯一索引的值重复，记录已存在（UNIQUE constraint failed: T.QTY）"_s},
        {u"alter table T drop constraint UQ_QTY"_s, u"insert into T(CODE, QTY) values('z', 2)"_s,
         u"nothing"_s},
        {u"alter table T drop column PHOTO"_s, u"select PHOTO from T"_s, u"no such column: PHOTO"_s},
        {u"alter table T add PHOTO image"_s, u"select PHOTO from T"_s, u"nothing"_s},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(FailureOf(*FConnection, row.Change), u"nothing"_s) << row.Change.toStdString();
        EXPECT_EQ(FailureOf(*FConnection, row.Statement), row.Failure) << row.Change.toStdString();
    }
    EXPECT_EQ(FConnection->Query(u"select CODE from T"_s).Field(0).Size, 10);
    FConnection->Execute(u"alter table T alter column CODE varchar(30) not null"_s);
    EXPECT_EQ(FConnection->Query(u"select CODE from T"_s).Field(0).Size, 30);
    EXPECT_EQ(Rows(*FConnection, u"select CODE from T where CODE='A'"_s), u"a"_s) << "still blind to case";
}

TEST_P(TableChanges, a_column_that_needs_a_value_goes_into_an_empty_table_only)
{
    RunAll(*FConnection, {u"create table E(A int)"_s});
    RunAll(*FConnection, {u"alter table E add B varchar(10) not null"_s, u"insert into E values(1, 'x')"_s});
    EXPECT_EQ(FailureOf(*FConnection, u"insert into E(A) values(2)"_s),
              u"不可为空的字段没有值（NOT NULL constraint failed: E.B）"_s);

    const QString before = Schema();
    EXPECT_NE(FailureOf(*FConnection, u"alter table T add B varchar(10) not null"_s), u"nothing"_s);
    EXPECT_EQ(Schema(), before);
    EXPECT_EQ(AllRows(), OriginalRows);
}

TEST_P(TableChanges, those_that_fail_leave_everything_as_it_was)
{
    static const struct
    {
        QString Change;
        QString Failure; ///< the beginning of it
    } rows[] = {
        {u"alter table T alter column PHOTO image not null"_s, u"不可为空的字段没有值"_s},
        {u"alter table T add constraint CK check(QTY>1)"_s, u"字段的值不符合约束"_s},
        {u"alter table T add constraint UQ unique(PHOTO, NONE)"_s, u""_s},
        {u"alter table T add constraint PK_T2 primary key(CODE)"_s, u""_s},
        {u"alter table T drop constraint NONE"_s, u""_s},
        {u"alter table T drop column NONE"_s, u""_s},
        {u"alter table T alter column NONE int"_s, u""_s},
        {u"alter table NONE alter column A int"_s, u"找不到数据表：NONE"_s},
        {u"alter table V alter column CODE int"_s, u"找不到数据表：V"_s},
        {u"alter table T add CODE int"_s, u"duplicate column name: CODE"_s},
    };
    RunAll(*FConnection, {u"update T set QTY=5 where CODE='b'"_s});
    const QString schema = Schema(), content = AllRows();
    for (const bool inTransaction : {false, true}) {
        for (const auto &row : rows) {
            SCOPED_TRACE(row.Change.toStdString());
            if (inTransaction)
                FConnection->BeginTrans();
            const QString failure = FailureOf(*FConnection, row.Change);
            EXPECT_NE(failure, u"nothing"_s);
            EXPECT_TRUE(failure.startsWith(row.Failure)) << failure.toStdString();
            EXPECT_EQ(FConnection->InTransaction(), inTransaction);
            if (inTransaction)
                FConnection->CommitTrans();
            EXPECT_EQ(Schema(), schema);
            EXPECT_EQ(AllRows(), content);
        }
    }
    // The connection goes on as it was.
    RunAll(*FConnection, {u"insert into T(CODE, QTY) values('d', 4)"_s});
    EXPECT_EQ(Rows(*FConnection, u"select N from LOG"_s), u"4"_s);
}

TEST_P(TableChanges, rows_that_are_doubles_stop_a_unique_constraint)
{
    RunAll(*FConnection, {u"update T set QTY=1"_s});
    const QString schema = Schema();
    EXPECT_EQ(FailureOf(*FConnection, u"alter table T add constraint UQ unique(QTY)"_s).section(u'（', 0, 0),
              u"主键或唯一索引的值重复，记录已存在"_s);
    EXPECT_EQ(Schema(), schema);
}

TEST_P(TableChanges, the_column_of_an_index_or_a_view_is_not_dropped_silently)
{
    const QString schema = Schema();
    for (const QString &column : {u"NAME"_s, u"CODE"_s}) {
        EXPECT_NE(FailureOf(*FConnection, u"alter table T drop column "_s + column), u"nothing"_s);
        EXPECT_EQ(Schema(), schema) << column.toStdString();
    }
    EXPECT_EQ(AllRows(), OriginalRows);
}

TEST_P(TableChanges, foreign_keys_are_kept_and_checked)
{
    RunAll(
        *FConnection,
        {u"create table M(CODE varchar(10) not null, NAME varchar(10), constraint PK_M primary key(CODE))"_s,
         u"create table D(CODE varchar(10), QTY int, constraint FK_D foreign key(CODE) references M(CODE) "
         "on delete cascade)"_s,
         u"insert into M values('m', 'x')"_s, u"insert into D values('m', 1)"_s});
    // The table that others refer to is made anew, and no row of theirs goes with the old one.
    RunAll(*FConnection,
           {u"alter table M alter column NAME varchar(50)"_s, u"alter table D alter column QTY float"_s});
    EXPECT_EQ(Rows(*FConnection, u"select * from D"_s), u"m|1"_s);
    EXPECT_EQ(FailureOf(*FConnection, u"insert into D values('none', 1)"_s),
              u"相关联的记录不存在，或仍被引用（FOREIGN KEY constraint failed）"_s);
    EXPECT_EQ(Tool().Run(u"pragma foreign_key_check"_s), u""_s);

    // Inside a transaction the engine cannot pause the keys.
    FConnection->BeginTrans();
    EXPECT_EQ(FailureOf(*FConnection, u"alter table M alter column NAME varchar(60)"_s),
              u"数据库有外键约束，不能在事务中更改表结构"_s);
    FConnection->RollbackTrans();

    // A new key is checked against the rows that are there.
    RunAll(*FConnection, {u"create table O(CODE varchar(10))"_s, u"insert into O values('orphan')"_s});
    const QString schema = Schema();
    EXPECT_NE(
        FailureOf(*FConnection, u"alter table O add constraint FK_O foreign key(CODE) references M(CODE)"_s),
        u"nothing"_s);
    EXPECT_EQ(Schema(), schema);
    EXPECT_EQ(Rows(*FConnection, u"select * from O"_s), u"orphan"_s);
    RunAll(*FConnection, {u"update O set CODE='M'"_s,
                          u"alter table O add constraint FK_O foreign key(CODE) references M(CODE)"_s,
                          u"delete from M where CODE='none'"_s});
    EXPECT_EQ(FailureOf(*FConnection, u"update O set CODE='none'"_s),
              u"相关联的记录不存在，或仍被引用（FOREIGN KEY constraint failed）"_s);
}

TEST_P(TableChanges, quoted_and_chinese_names_are_names)
{
    RunAll(*FConnection,
           {u"create table [订单 明细]([编号] int, [a \"b\"] varchar(5))"_s,
            u"insert into [订单 明细] values(1, 'x')"_s, u"create index [索引 1] on [订单 明细]([编号])"_s,
            u"alter table [订单 明细] alter column [a \"b\"] varchar(50) not null"_s,
            u"alter table [订单 明细] add [数量] int not null default 1"_s,
            u"alter table [订单 明细] alter column [编号] varchar(10)"_s});
    EXPECT_EQ(TextOf(FConnection->Query(u"select * from [订单 明细]"_s)),
              u"编号:string(10)|a \"b\":string(50)|数量:integer\n1|x|1\n"_s);
    EXPECT_EQ(Tool().Run(u"select count(*) from sqlite_master where type='index' and tbl_name='订单 明细'"_s),
              u"1"_s);
}

TEST_P(TableChanges, an_identity_that_is_no_key_survives_too)
{
    const QString identity = GetParam() == TSqlDialect::Access ? u"counter"_s : u"int identity"_s;
    RunAll(*FConnection,
           {u"create table I(NO %1, A varchar(5))"_s.arg(identity), u"insert into I(A) values('x')"_s,
            u"alter table I alter column A varchar(50)"_s, u"insert into I(A) values('y')"_s,
            u"alter table I add B varchar(5)"_s, u"insert into I(A) values('z')"_s});
    EXPECT_EQ(Rows(*FConnection, u"select NO, A from I order by NO"_s), u"1|x / 2|y / 3|z"_s);
}
