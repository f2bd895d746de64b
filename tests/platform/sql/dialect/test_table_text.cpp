// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/TableText.h"

#include <gtest/gtest.h>

namespace Korvane {

namespace {

constexpr auto Sql =
    u"CREATE TABLE \"订单\" (ID integer not null, -- the number\n"
    "  [A B] varchar(10) collate nocase null default 'x, y' constraint CK_A check([A B]<>')'),\n"
    "  C decimal(12, 2) default -1 references U(ID) on delete set null, D int,\n"
    "  constraint PK primary key(ID autoincrement), unique(D)) without rowid";

TEST(TableText, ReadsColumnsAndConstraints)
{
    const TTableText table(QString::fromUtf16(Sql));
    QStringList names;
    for (const auto &item : table.Columns() + table.Constraints())
        names.append(item.Name + u'=' + item.Text);
    EXPECT_EQ(table.Name(), QStringLiteral("订单"));
    EXPECT_EQ(names.join(u"\n").toStdString(),
              "ID=ID integer not null\n"
              "A B=[A B] varchar(10) collate nocase null default 'x, y' constraint CK_A check([A B]<>')')\n"
              "C=C decimal(12, 2) default -1 references U(ID) on delete set null\n"
              "D=D int\n"
              "PK=constraint PK primary key(ID autoincrement)\n"
              "=unique(D)");
    EXPECT_TRUE(table.ToSql(QStringLiteral("新 \"表\""))
                    .startsWith(QStringLiteral("CREATE TABLE \"新 \"\"表\"\"\"(\n")));
    EXPECT_TRUE(table.ToSql().endsWith(QStringLiteral("\n) without rowid")));
    // What is written is read the same.
    EXPECT_EQ(TTableText(table.ToSql()).ToSql(), table.ToSql());
}

TEST(TableText, AltersOnlyWhatIsGiven)
{
    struct TRow
    {
        const char *Column;
        const char *Text;
        const char *Result;
    };
    const TRow rows[] = {
        {"a b", "varchar(30) collate nocase not null",
         "[A B] varchar(30) collate nocase default 'x, y' constraint CK_A check([A B]<>')') not null"},
        {"A B", "int", "[A B] int null default 'x, y' constraint CK_A check([A B]<>')')"},
        {"C", "default 5", "C decimal(12, 2) references U(ID) on delete set null default 5"},
        {"C", "default null", "C decimal(12, 2) references U(ID) on delete set null"},
        {"C", "not null", "C decimal(12, 2) default -1 references U(ID) on delete set null not null"},
        {"D", "smallint null", "D smallint null"}};
    for (const TRow &row : rows) {
        TTableText table(QString::fromUtf16(Sql));
        table.AlterColumn(QString::fromUtf8(row.Column), QString::fromUtf8(row.Text));
        QStringList texts;
        for (const auto &column : table.Columns())
            texts.append(column.Text);
        EXPECT_TRUE(texts.contains(QString::fromUtf8(row.Result))) << row.Text << "\n"
                                                                   << texts.join(u'\n').toStdString();
    }
}

TEST(TableText, DropsConstraintsOfTableAndColumn)
{
    TTableText table(QString::fromUtf16(Sql));
    table.DropConstraint(QStringLiteral("pk"));
    table.DropConstraint(QStringLiteral("CK_A"));
    table.AddConstraint(QStringLiteral("constraint PK2 primary key(ID, D)"));
    EXPECT_EQ(table.Constraints().size(), 2);
    EXPECT_EQ(table.Columns()[1].Text,
              QStringLiteral("[A B] varchar(10) collate nocase null default 'x, y'"));
    table.DropColumn(QStringLiteral("a b"));
    table.AddColumn(QStringLiteral("[A B] int not null"));
    EXPECT_EQ(table.Columns().last().Text, QStringLiteral("[A B] int not null"));
}

TEST(TableText, RefusesWhatDoesNotFit)
{
    struct TRow
    {
        TTableChange Change;
        const char *Message;
    };
    const TRow rows[] = {
        {{TTableChange::AddColumn, {}, {}, "d int"}, "数据表“订单”已有列“d”"},
        {{TTableChange::AddColumn, {}, {}, "E int primary key"}, "数据表“订单”已有主键"},
        {{TTableChange::AlterColumn, {}, QStringLiteral("X"), "int"}, "数据表“订单”没有列“X”"},
        {{TTableChange::DropColumn, {}, QStringLiteral("X"), {}}, "数据表“订单”没有列“X”"},
        {{TTableChange::DropColumn, {}, QStringLiteral("id"), {}}, "约束“PK”使用了列“ID”，不能删除"},
        {{TTableChange::DropColumn, {}, QStringLiteral("D"), {}}, "约束“unique(D)”使用了列“D”，不能删除"},
        {{TTableChange::DropColumn, {}, QStringLiteral("A B"), {}}, "约束“CK_A”使用了列“A B”，不能删除"},
        {{TTableChange::AddConstraint, {}, {}, "constraint pk unique(C)"}, "数据表“订单”已有约束“pk”"},
        {{TTableChange::AddConstraint, {}, {}, "primary key(C)"}, "数据表“订单”已有主键"},
        {{TTableChange::AddConstraint, {}, {}, "C int"}, "不是约束的定义：C int"},
        {{TTableChange::DropConstraint, {}, QStringLiteral("X"), {}}, "数据表“订单”没有约束“X”"}};
    for (const TRow &row : rows) {
        TTableText table(QString::fromUtf16(Sql));
        const QString before = table.ToSql();
        try {
            table.Apply(row.Change);
            ADD_FAILURE() << row.Message;
        } catch (const ESqlError &error) {
            EXPECT_EQ(error.Message().toStdString(), row.Message);
        }
        EXPECT_EQ(table.ToSql(), before);
    }
    for (const char *sql : {"", "select 1", "create", "create x", "create table", "create table T",
                            "create table T()", "create table (A int)", "create table T(A int,)",
                            "create table T(primary key(A))", "create table T(A int"})
        EXPECT_THROW(TTableText{QString::fromUtf8(sql)}, ESqlError) << sql;
}

} // namespace

} // namespace Korvane
