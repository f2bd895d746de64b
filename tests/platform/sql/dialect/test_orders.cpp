// SPDX-License-Identifier: MIT
// Every query, command and change of the sample design runs on the embedded engine.
#include "DialectDatabase.h"

#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace Korvane {

namespace {

struct TDesign
{
    sqlite3 *Handle = nullptr;
    TDesign() { sqlite3_open(":memory:", &Handle); }
    ~TDesign() { sqlite3_close(Handle); }

    QList<QStringList> Rows(const QString &sql) const
    {
        QList<QStringList> rows;
        sqlite3_stmt *statement = nullptr;
        EXPECT_EQ(sqlite3_prepare_v2(Handle, sql.toUtf8().constData(), -1, &statement, nullptr), SQLITE_OK)
            << sqlite3_errmsg(Handle);
        while (statement && sqlite3_step(statement) == SQLITE_ROW) {
            QStringList row;
            for (int i = 0; i < sqlite3_column_count(statement); ++i)
                row.append(
                    QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, i))));
            rows.append(row);
        }
        sqlite3_finalize(statement);
        return rows;
    }
};

/// The table as a script of the dialect creates it.
QString CreateTable(const TDesign &design, const QString &table, TSqlDialect dialect)
{
    QStringList lines{
        QStringLiteral("  CREATOR varchar(10) null"), QStringLiteral("  CREATEDATE char(14) null"),
        QStringLiteral("  MODIFIER varchar(10) null"), QStringLiteral("  MODIFYDATE char(14) null"),
        QStringLiteral("  CREATORGROUP varchar(10) null")};
    QStringList keys;
    for (const auto &f :
         design.Rows(QStringLiteral("select FieldCode, FieldType, FieldSize, FieldPrecision, IsAuto, IsKey, "
                                    "IsNotNull, FieldDefault from Fields where TableCode='%1' order by "
                                    "FieldNo")
                         .arg(table))) {
        QString type = f[1] == "datetime"  ? "char(14)"
                       : f[1] == "date"    ? "char(8)"
                       : f[1] == "boolean" ? "bit"
                                           : f[1];
        if (f[1] == "char" || f[1] == "varchar")
            type += u'(' + f[2] + u')';
        if (f[1] == "decimal")
            type += u'(' + f[2] + ", " + f[3] + u')';
        QString value = f[1] == "boolean" && !f[7].isEmpty() ? QString(f[7] == "Y" ? "1" : "0") : f[7];
        if (dialect == TSqlDialect::MSSQL && f[1] != "boolean" && !value.isEmpty())
            value = u'\'' + value + u'\'';
        lines.append(QStringLiteral("  ") + f[0] + u' ' + type + (f[4] == "Y" ? " identity" : "") +
                     (f[6] == "Y" ? " not null" : " null") +
                     (value.isEmpty() ? QString() : " default " + value));
        if (f[5] == "Y")
            keys.append(f[0]);
    }
    lines.append(QStringLiteral("  constraint PK_%1 primary key(%2)").arg(table, keys.join(u',')));
    return QStringLiteral("create table %1(\r\n%2\r\n)").arg(table, lines.join(QStringLiteral(",\r\n")));
}

QString Filled(QString text)
{
    for (const char *macro : {"%USERCODE%", "%USERGROUP%", "%ISSUPER%", "%DATETIME%", "%DATE%"})
        text.replace(QString::fromLatin1(macro), QStringLiteral("20240131"));
    return text.replace(QStringLiteral("%s"), QStringLiteral("2"))
        .replace(QStringLiteral("%%"), QStringLiteral("%"));
}

class Orders : public testing::TestWithParam<TSqlDialect>
{
protected:
    void SetUp() override
    {
        QFile file(QStringLiteral(KORVANE_EXAMPLES_DIR "/orders.sql"));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << KORVANE_EXAMPLES_DIR;
        const QByteArray script = file.readAll();
        ASSERT_EQ(sqlite3_exec(Design.Handle, script.constData(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(Design.Handle);
    }

    void CreateTables(TDialectDatabase &database)
    {
        for (const auto &table : Design.Rows(QStringLiteral("select TableCode from Tables")))
            database.Run(CreateTable(Design, table[0], GetParam()));
        for (const auto &i :
             Design.Rows(QStringLiteral("select TableCode, IndexCode, replace(IndexFields, ';', ','), "
                                        "IsCluster, IsUnique from Indexs")))
            database.Run(
                QStringLiteral("create%1%2 index %3 on %4(%5)")
                    .arg(i[4] == "Y" ? " unique" : "", i[3] == "Y" ? " clustered" : "", i[1], i[0], i[2]));
    }

    QString Column() const { return GetParam() == TSqlDialect::Access ? "Access" : "MSSQL"; }

    TDesign Design;
};

TEST_P(Orders, TablesTakeTheirDefaults)
{
    TDialectDatabase database(GetParam());
    CreateTables(database);
    database.Run(QStringLiteral(
        "insert into ORDERHEAD(BILLTYPE, BILLCODE, BILLDATE, CUSTCODE) values('220', '1', '20240131', 'C')"));
    EXPECT_EQ(database.Run(QStringLiteral("select CURRCODE, RATE, TOTALQTY, CHECKED from ORDERHEAD")),
              QStringList{"CNY|1.0|0|N"});
    database.Run(QStringLiteral("insert into CHANGELOG(LOGTIME) values('20240131080000')"));
    EXPECT_EQ(database.Run(QStringLiteral("select LOGNO, ACTKIND from CHANGELOG")), QStringList{"1|U"});
    EXPECT_EQ(database.Rows("select count(*) from sqlite_master where name like '%.%' and type='index'"),
              QStringList{"11"});
}

TEST_P(Orders, EveryQueryRuns)
{
    TDialectDatabase database(GetParam());
    CreateTables(database);
    for (const auto &query : Design.Rows(QStringLiteral("select QueryCode, %1 from Querys").arg(Column()))) {
        QStringList items, aliases;
        for (const auto &c :
             Design.Rows(QStringLiteral("select Expression, Alias from Columns where QueryCode='%1' order "
                                        "by ColumnNo")
                             .arg(query[0]))) {
            items.append(QStringLiteral("  ") + c[0] + " as " + c[1]);
            aliases.append(c[1]);
        }
        ASSERT_FALSE(items.isEmpty());
        const QString script = Filled(QStringLiteral("select 'N' as FSELECTED, * from (\r\nselect\r\n") +
                                      items.join(QStringLiteral(", \r\n")) + QStringLiteral("\r\nfrom\r") +
                                      query[1] + QStringLiteral(") ZZZ"));
        const QString wrapped = QStringLiteral("select top 10 * from (%1) ZZZ where %2 is null order by %2")
                                    .arg(script, aliases[0]);
        try {
            database.Run(wrapped);
            EXPECT_EQ(database.Columns(wrapped), QStringList{"FSELECTED"} + aliases)
                << query[0].toStdString();
        } catch (const Exception &error) {
            ADD_FAILURE() << query[0].toStdString() << ": " << error.what();
        }
    }
}

TEST_P(Orders, EveryCommandRuns)
{
    TDialectDatabase database(GetParam());
    CreateTables(database);
    database.Run(QStringLiteral("insert into ITEM(ITEMCODE, ITEMNAME, CATECODE, UNITCODE, BARCODE, PRICE) "
                                "values('I', 'n', '2A', 'u', 'b', 1.5)"));
    const auto commands = Design.Rows(QStringLiteral("select CommandCode, %1 from Commands").arg(Column()));
    ASSERT_EQ(commands.size(), 6);
    for (const auto &command : commands) {
        try {
            database.Run(Filled(command[1]));
        } catch (const Exception &error) {
            ADD_FAILURE() << command[0].toStdString() << ": " << error.what();
        }
    }
    // RAISEPRICE finds the category by the dialect's wildcard.
    EXPECT_EQ(database.Value(QStringLiteral("select PRICE from ITEM")), QStringLiteral("3"));
}

TEST_P(Orders, EveryChangeRuns)
{
    TDialectDatabase database(GetParam());
    database.Run(
        QStringLiteral("create table CUSTOMER(CUSTCODE varchar(10), PHONE varchar(30));"
                       "create index IX_CUSTOMER_PHONE on CUSTOMER(PHONE);"
                       "create table ORDERHEAD(BILLTYPE char(4)); insert into ORDERHEAD values('220');"
                       "create table ORDERLINE(ITEMCODE varchar(20), DELIVERYDATE char(8))"));
    static const QRegularExpression separator(QStringLiteral("^[ \\t]*go[ \\t]*\\r?$"),
                                              QRegularExpression::MultilineOption |
                                                  QRegularExpression::CaseInsensitiveOption);
    for (const auto &change :
         Design.Rows(QStringLiteral("select ChangeNo, %1 from Changes order by ChangeNo").arg(Column()))) {
        for (const QString &batch : change[1].split(separator)) {
            try {
                database.Run(batch.trimmed());
            } catch (const Exception &error) {
                ADD_FAILURE() << change[0].toStdString() << ": " << error.what();
            }
        }
    }
    EXPECT_EQ(database.Run(QStringLiteral("select BILLTYPE, CURRCODE, RATE, PRINTCOUNT from ORDERHEAD")),
              QStringList{"220|CNY|1.0|0"});
}

INSTANTIATE_TEST_SUITE_P(Dialects, Orders, testing::Values(TSqlDialect::Access, TSqlDialect::MSSQL),
                         [](const auto &tested) { return testing::PrintToString(tested.param); });

} // namespace

} // namespace Korvane
