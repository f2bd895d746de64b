// SPDX-License-Identifier: MIT
// What rewritten statements do to data.
#include "DialectDatabase.h"

#include <gtest/gtest.h>

namespace Korvane {

namespace {

constexpr auto Access = TSqlDialect::Access;
constexpr auto MSSQL = TSqlDialect::MSSQL;

void MakeOrders(TDialectDatabase &database)
{
    database.Run(QStringLiteral(
        "create table HEAD(ID int not null, CUST varchar(10), AMOUNT decimal(12, 2), primary key(ID));"
        "create table LINE(ID int not null, NO int not null, QTY int, primary key(ID, NO));"
        "create table CUST(CUST varchar(10), NAME varchar(20));"
        "insert into HEAD(ID, CUST, AMOUNT) values(1, 'a', 10);"
        "insert into HEAD(ID, CUST, AMOUNT) values(2, 'B', 20);"
        "insert into HEAD(ID, CUST, AMOUNT) values(3, 'c', 30);"
        "insert into LINE(ID, NO, QTY) values(1, 1, 5);"
        "insert into LINE(ID, NO, QTY) values(1, 2, 5);"
        "insert into LINE(ID, NO, QTY) values(2, 1, 7);"
        "insert into CUST(CUST, NAME) values('A', '甲');"
        "insert into CUST(CUST, NAME) values('b', '乙')"));
}

TEST(Statements, UpdateAndDeleteThroughJoins)
{
    struct TRow
    {
        TSqlDialect Dialect;
        const char *Statement;
        int Changed;
        const char *Heads;
    };
    const TRow rows[] = {
        {Access,
         "update HEAD inner join CUST on HEAD.CUST=CUST.CUST set HEAD.AMOUNT=HEAD.AMOUNT+1, HEAD.CUST=NAME",
         2, "1|甲|11 2|乙|21 3|c|30"},
        {Access, "update HEAD as h left join CUST as c on h.CUST=c.CUST set h.CUST='x' where c.CUST is null",
         1, "1|a|10 2|B|20 3|x|30"},
        {Access,
         "update (HEAD inner join CUST on HEAD.CUST=CUST.CUST) inner join LINE on LINE.ID=HEAD.ID set "
         "HEAD.AMOUNT=QTY where NAME='乙'",
         1, "1|a|10 2|B|7 3|c|30"},
        {MSSQL, "update h set h.AMOUNT=l.QTY from HEAD h join LINE l on h.ID=l.ID", 2, "1|a|5 2|B|7 3|c|30"},
        {MSSQL, "update HEAD set AMOUNT=QTY from LINE where LINE.ID=HEAD.ID and NO=1", 2,
         "1|a|5 2|B|7 3|c|30"},
        {MSSQL, "update HEAD set AMOUNT=(select sum(QTY) from LINE L where L.ID=HEAD.ID) where ID=1", 1,
         "1|a|10 2|B|20 3|c|30"},
        {Access, "delete HEAD.* from HEAD inner join LINE on HEAD.ID=LINE.ID", 2, "3|c|30"},
        {MSSQL, "delete h from HEAD h left join LINE l on h.ID=l.ID where l.ID is null", 1, "1|a|10 2|B|20"},
        {MSSQL, "delete HEAD from CUST where CUST.CUST=HEAD.CUST", 2, "3|c|30"},
        {MSSQL, "delete HEAD where CUST='b'", 1, "1|a|10 3|c|30"}};
    for (const TRow &row : rows) {
        TDialectDatabase database(row.Dialect);
        MakeOrders(database);
        database.Run(QString::fromUtf8(row.Statement));
        EXPECT_EQ(database.Changes(), row.Changed) << row.Statement;
        EXPECT_EQ(database.Rows("select * from HEAD order by ID").join(u' ').toStdString(), row.Heads)
            << row.Statement;
    }
}

TEST(Statements, BracketedJoinsKeepTheirColumnNames)
{
    TDialectDatabase database(Access);
    MakeOrders(database);
    const QString from =
        QStringLiteral("((HEAD left join LINE on HEAD.ID=LINE.ID) left join CUST on HEAD.CUST=CUST.CUST)");
    EXPECT_EQ(database.Columns(QStringLiteral("select * from ") + from).join(u' '),
              QStringLiteral("ID CUST AMOUNT ID NO QTY CUST NAME"));
    EXPECT_EQ(
        database
            .Columns(QStringLiteral("select top 1 * from (select 'N' as FSELECTED, * from (select HEAD.ID as "
                                    "Id, CUST.NAME as [Cust Name] from ") +
                     from + QStringLiteral(") ZZZ) ZZZ where Id=1 order by Id"))
            .join(u'|'),
        QStringLiteral("FSELECTED|Id|Cust Name"));
    EXPECT_EQ(database.Run(QStringLiteral(
                  "select h.ID, NAME from (HEAD as h left join (CUST as c inner join HEAD as g on "
                  "c.CUST=g.CUST) on h.CUST=c.CUST) order by h.ID")),
              (QStringList{"1|甲", "2|乙", "3|~"}));
}

TEST(Statements, TopTakesTheFirstRowsOfItsSelect)
{
    for (const TSqlDialect dialect : {Access, MSSQL}) {
        TDialectDatabase database(dialect);
        MakeOrders(database);
        EXPECT_EQ(database.Run(QStringLiteral("select top 2 ID from HEAD order by ID desc")),
                  (QStringList{"3", "2"}));
        EXPECT_EQ(database.Run(QStringLiteral("select distinct top 1 ID from LINE order by ID desc")),
                  QStringList{"2"});
        EXPECT_EQ(
            database
                .Run(QStringLiteral("select top 1 ID from HEAD union all select ID from HEAD where ID in "
                                    "(select top 1 ID from LINE order by ID desc) order by ID desc"))
                .size(),
            2);
        EXPECT_EQ(database.Value(
                      QStringLiteral("select (select top 1 QTY from LINE where LINE.ID=HEAD.ID order by NO "
                                     "desc) from HEAD where ID=2")),
                  QStringLiteral("7"));
    }
}

TEST(Statements, NumberingColumnsTakeTheNextNumber)
{
    struct TRow
    {
        TSqlDialect Dialect;
        const char *Table;
        const char *Numbers; ///< of rows: two without a number, one with 50, one without
    };
    const TRow rows[] = {
        {MSSQL, "create table LOG(NO int identity not null, A varchar(5), constraint PK primary key(NO))",
         "1 2 50 51"},
        {Access, "create table LOG(NO counter primary key, A text(5))", "1 2 50 51"},
        {MSSQL, "create table LOG(NO int identity(10,1), A varchar(5), primary key(NO))", "10 11 50 51"},
        {MSSQL, "create table LOG(NO int identity(10,1), A varchar(5), primary key(NO, A))", "10 11 50 51"},
        {MSSQL, "create table LOG(A varchar(5)) alter table LOG add NO int identity", "1 2 50 51"}};
    for (const TRow &row : rows) {
        TDialectDatabase database(row.Dialect);
        database.Run(QString::fromUtf8(row.Table));
        for (const char *insert :
             {"(A) values('a')", "(A) values('b')", "(A, NO) values('c', 50)", "(A) values('d')"})
            database.Run(QStringLiteral("insert into LOG") + QString::fromUtf8(insert));
        EXPECT_EQ(database.Rows("select NO from LOG order by A").join(u' ').toStdString(), row.Numbers)
            << row.Table;
    }
    // Numbers of deleted rows do not come again.
    TDialectDatabase database(MSSQL);
    database.Run(
        QStringLiteral("create table LOG(NO int identity primary key, A int) insert into LOG(A) values(1) "
                       "delete LOG insert into LOG(A) values(2)"));
    EXPECT_EQ(database.Value(QStringLiteral("select NO from LOG")), QStringLiteral("2"));
}

TEST(Statements, DefaultsHaveTheirColumnsType)
{
    TDialectDatabase database(Access);
    database.Run(QStringLiteral(
        "create table T(ID int, A char(4) default 0001, B int default '7', C varchar(9) default Users,"
        " E bit default 1, F datetime default now(), G decimal(12, 2) default 1.50, H varchar(5) "
        "default '')"));
    database.Run(QStringLiteral("insert into T(ID) values(1)"));
    EXPECT_EQ(database.Value(QStringLiteral("select A & '|' & B & C & E & G & H from T")) + u'|' +
                  database.Rows("select typeof(A)||typeof(B)||typeof(G)||(F like '20*:*') from T").value(0),
              QStringLiteral("0001|textintegerreal1"));
    EXPECT_EQ(database.Run(QStringLiteral("select B, C, E, G from T")), QStringList{"7|Users|Y|1.5"});
}

TEST(Statements, IndexNamesBelongToTheirTable)
{
    for (const TSqlDialect dialect : {Access, MSSQL}) {
        TDialectDatabase database(dialect);
        database.Run(QStringLiteral("create table A(X int); create table B(X int);"
                                    "create index IX on A(X); create unique clustered index IX on B(X)"));
        database.Run(dialect == Access ? QStringLiteral("drop index ix on a")
                                       : QStringLiteral("drop index a.ix"));
        EXPECT_EQ(database.Rows("select name from sqlite_master where type='index'"), QStringList{"B.IX"});
        EXPECT_THROW(database.Run(QStringLiteral("insert into B values(1) ; insert into B values(1)")),
                     ESqlError);
    }
}

TEST(Statements, ChangesOfTablesKeepTheRows)
{
    TDialectDatabase database(MSSQL);
    database.Run(QStringLiteral(
        "create table T(ID int not null, A varchar(5) null default 'x', B int, constraint PK_T primary "
        "key(ID)) insert into T(ID, B) values(1, 2)"));
    database.Run(QStringLiteral("alter table T add C bit not null default 1, E datetime null "
                                "alter table T alter column A varchar(20) not null "
                                "alter table T add constraint CK_B check (B>0) alter table T drop column E"));
    EXPECT_EQ(database.Run(QStringLiteral("select * from T")), QStringList{"1|x|2|Y"});
    EXPECT_EQ(
        database.Rows("select sql from sqlite_master where name='T'").value(0).toStdString(),
        std::string(
            "CREATE TABLE \"T\"(\n  ID int not null,\n  A varchar(20) collate nocase default 'x' not null,\n"
            "  B int,\n  C char(1) collate nocase not null default 'Y',\n"
            "  constraint PK_T primary key(ID),\n  constraint CK_B check (B>0)\n)"));
    EXPECT_THROW(database.Run(QStringLiteral("insert into T(ID, B) values(2, 0)")), ESqlError);
    EXPECT_THROW(database.Run(QStringLiteral("alter table T drop column B")), ESqlError);
    database.Run(QStringLiteral("alter table T drop constraint CK_B insert into T(ID, B) values(2, 0)"));
    EXPECT_EQ(database.Value(QStringLiteral("select count(*) from T")), QStringLiteral("2"));
}

} // namespace

} // namespace Korvane
