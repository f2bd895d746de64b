// SPDX-License-Identifier: MIT
#include "DatabaseTesting.h"

#include "platform/core/StringList.h"
#include "support/ScriptedPrompts.h"

#include <QFile>

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class UpgradeDatabase : public DatabaseTest
{
protected:
    /// Makes an empty database of a small design, and gives back the design to add changes to.
    std::unique_ptr<DesignStore> SmallDatabase()
    {
        auto store = std::make_unique<DesignStore>(Dir.filePath("design.dbd"));
        store->Table("T").Field("X", "int");
        Design.SetFileName(store->FileName());
        Design.SetActived(true);
        Design.CreateDB(Session, false);
        return store;
    }

    /// Makes the orders database as it was before all changes of its design.
    void OldOrders()
    {
        // NOTE: the script knows what a new database has; what the changes brought is left out.
        QStringList script;
        for (const QString &entry : Design.CreateScript(GetParam(), false, true, false)) {
            QStringList lines = entry.split("\r\n");
            if (entry.contains("CHANGELOG") || entry.contains("IX_ORDERLINE_ITEM"))
                continue;
            lines.removeIf([](const QString &line) {
                return line.startsWith("  TAXNO ") || line.startsWith("  CURRCODE ") ||
                       line.startsWith("  RATE ") || line.startsWith("  PRINTCOUNT ");
            });
            script += lines;
        }
        script += QStringList(
            {"create index IX_CUSTOMER_PHONE on CUSTOMER(PHONE)", "go",
             "create table Version(VerNo Integer not null,constraint PK_Version primary key(VerNo))", "go",
             "insert into Version(VerNo) Values(0)"});
        DesignStore empty(Dir.filePath("empty.dbd"));
        TDBDFile nothing;
        nothing.SetFileName(empty.FileName());
        nothing.SetActived(true);
        nothing.CreateDB(Session, true);
        Session.SetConnected(true);
        Session.Execute(QString("drop table Version"));
        Session.Execute(script);
    }

    /// The same rows into an old and into a new database.
    static void Fill(TDBSession &session)
    {
        session.Execute(QStringList({"insert into CUSTOMER(CUSTCODE, CUSTNAME) values('C1', '张三')", "go",
                                     "insert into ORDERHEAD(BILLTYPE, BILLCODE, BILLDATE, CUSTCODE, AMOUNT) "
                                     "values('2201', '0001', '20220101', 'C1', 99.5)",
                                     "go",
                                     "insert into ORDERHEAD(BILLTYPE, BILLCODE, BILLDATE, CUSTCODE, REMARK) "
                                     "values('2201', '0002', '20220102', 'C1', '备注')"}));
    }
};

} // namespace

TEST_P(UpgradeDatabase, an_upgraded_database_equals_a_new_one)
{
    OpenOrders();
    OldOrders();
    Fill(Session);
    EXPECT_FALSE(Session.TableExists("CHANGELOG"));
    const PromptScript script;
    EXPECT_TRUE(Design.UpgradeDB(Session));
    EXPECT_EQ(script->Boxes.size(), 0);
    EXPECT_FALSE(Session.Connected());
    Session.SetConnected(true);
    EXPECT_EQ(Session.GetVersion(), 6);
    EXPECT_EQ(Rows("select VerNo from Version"), QStringList("6"));

    TDBSession fresh;
    Aim(fresh, "fresh");
    Design.CreateDB(fresh, true);
    fresh.SetConnected(true);
    Fill(fresh);
    EXPECT_EQ(LinesOf(Columns(Session)), LinesOf(Columns(fresh)));
    EXPECT_EQ(LinesOf(Indexes(Session)), LinesOf(Indexes(fresh)));
    EXPECT_FALSE(Indexes(Session).join(' ').contains("IX_CUSTOMER_PHONE"));
    for (const auto &table : Design.GetTables()) {
        QStringList columns;
        for (const auto &field : Design.GetTableFields(table->TableCode))
            columns.append(field->FieldCode);
        const QString select =
            "select " + columns.join(", ") + " from " + table->TableCode + " order by 1, 2";
        EXPECT_EQ(TextOf(Session.Open(select)), TextOf(fresh.Open(select))) << table->TableCode.toStdString();
    }
    EXPECT_EQ(Rows("select BILLCODE, CURRCODE, RATE, PRINTCOUNT, AMOUNT from ORDERHEAD order by BILLCODE"),
              QStringList({"0001|CNY|1|0|99.5", "0002|CNY|1|0|0"}));
    // What the changes made can be used.
    Session.Execute(QString("insert into CHANGELOG(LOGTIME) values('20240101000000')"));
    EXPECT_EQ(Rows("select LOGNO, LOGTIME, ACTKIND from CHANGELOG"), QStringList("1|20240101000000|U"));
}

TEST_P(UpgradeDatabase, only_the_changes_above_the_version_run)
{
    OpenOrders();
    OldOrders();
    Session.Execute(Design.GetUpgradeSQL(GetParam(), 0, 4));
    Session.SetVersion(4);
    EXPECT_TRUE(Design.UpgradeDB(Session));
    Session.SetConnected(true);
    EXPECT_EQ(Session.GetVersion(), 6);
}

TEST_P(UpgradeDatabase, an_up_to_date_database_is_left_alone)
{
    const auto store = SmallDatabase();
    for (const int version : {0, 3, 99}) {
        Session.SetConnected(true);
        Session.SetVersion(version);
        if (version == 3) {
            store->Change(3, "this would fail");
            Design.Refresh(rtChanges);
        }
        const PromptScript script;
        EXPECT_FALSE(GetParam() == dbtAccess ? Design.UpgradeAccessDB(Session)
                                             : Design.UpgradeMSSQLDB(Session));
        ASSERT_EQ(script->Boxes.size(), 1);
        EXPECT_EQ(script->Boxes[0].Text, "数据库已是最新版本，不需升级");
        EXPECT_EQ(script->Boxes[0].Flags, 0x40040);
        EXPECT_FALSE(Session.Connected());
        Session.SetConnected(true);
        EXPECT_EQ(Session.GetVersion(), version);
    }
}

TEST_P(UpgradeDatabase, a_failing_batch_leaves_the_version_and_what_ran)
{
    const auto store = SmallDatabase();
    store->Change(1, "create table A1(X int)\r\ngo")
        .Change(2, "create table A2(X int)\r\n  go\r\n\r\n update NOPE\r\n set X=1  \r\nGO\r\ncreate table "
                   "A3(X int)")
        .Change(3, "create table A4(X int)");
    Design.Refresh(rtChanges);
    const QString message = MessageOf([&] { Design.UpgradeDB(Session); });
    EXPECT_TRUE(message.endsWith("\rupdate NOPE\r\nset X=1\r\n")) << message.toStdString();
    EXPECT_TRUE(message.contains("NOPE")) << "the description comes first";
    EXPECT_GT(message.indexOf("\r"), 0);
    EXPECT_TRUE(Session.Connected());
    EXPECT_EQ(Session.GetVersion(), 0);
    EXPECT_TRUE(Session.TableExists("A1"));
    EXPECT_TRUE(Session.TableExists("A2"));
    EXPECT_FALSE(Session.TableExists("A3"));
    EXPECT_FALSE(Session.TableExists("A4"));
    EXPECT_FALSE(QFile::exists(Dir.filePath("Error.sql"))) << "a script is not logged";
}

TEST_P(UpgradeDatabase, changes_without_a_separator_run_in_one_batch)
{
    const auto store = SmallDatabase();
    store->Change(1, "insert into T(X)").Change(2, "values(5)");
    Design.Refresh(rtChanges);
    EXPECT_TRUE(Design.UpgradeDB(Session));
    Session.SetConnected(true);
    EXPECT_EQ(Rows("select X from T"), QStringList("5"));
    EXPECT_EQ(Session.GetVersion(), 2);
}

TEST_P(UpgradeDatabase, a_database_without_a_version_table)
{
    const auto store = SmallDatabase();
    store->Change(1, "create table A1(X int)");
    Design.Refresh(rtChanges);
    Session.SetConnected(true);
    Session.Execute(QString("drop table Version"));
    const QString message = MessageOf([&] { Design.UpgradeDB(Session); });
    EXPECT_TRUE(message.endsWith("\rselect max(VerNo) from Version\r\n")) << message.toStdString();
    EXPECT_FALSE(Session.TableExists("A1"));
}

INSTANTIATE_TEST_SUITE_P(Places, UpgradeDatabase, testing::ValuesIn(AllPlaces()), PlaceName);
