// SPDX-License-Identifier: MIT
// Whole imports: every value of the old file stands in the new database.
#include "ImportTesting.h"

#include <QCryptographicHash>

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

/// The rows of a packet in an order of their own, without the blanks that fill texts.
QStringList SortedRows(const TDataPacket &packet)
{
    QStringList rows;
    for (qsizetype row = 0; row < packet.RowCount(); ++row) {
        QStringList cells;
        for (int field = 0; field < packet.FieldCount(); ++field) {
            const QVariant value = packet.Value(field, row);
            if (value.typeId() == QMetaType::QByteArray)
                cells.append(QCryptographicHash::hash(value.toByteArray(), QCryptographicHash::Md5).toHex());
            else
                cells.append(value.isNull() ? "~" : TrimRight(packet.Text(field, row)));
        }
        rows.append(cells.join('|'));
    }
    rows.sort();
    return rows;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Dialects, ImportTest, testing::ValuesIn(EmbeddedPlaces()), PlaceName);

TEST_P(ImportTest, takes_in_the_whole_old_database)
{
    OpenOrders();
    Import.SetFileName(LegacyDatabase());
    const TImportPlan plan = Import.Plan();
    ASSERT_EQ(plan.Tables.size(), 8);
    ASSERT_TRUE(plan.Unplaced.isEmpty());
    QStringList steps;
    Import.OnProgress = [&](const TImportProgress &progress) {
        steps.append(QString("%1 %2 %3/%4")
                         .arg(progress.Step == TImportStep::Loading ? "load" : "verify", progress.Table)
                         .arg(progress.TableNo)
                         .arg(progress.TableCount));
    };
    Import.Run();
    EXPECT_FALSE(Session.Connected());
    EXPECT_EQ(steps.size(), 16);
    EXPECT_EQ(steps.first(), "load CATEGORY 1/8");
    EXPECT_EQ(steps.last(), "verify WAREHOUSE 8/8");
    EXPECT_EQ(Import.Report().RowCount(), 1534);
    EXPECT_EQ(Files(), QStringList(GetParam() == dbtAccess ? "orders.mdb" : "orders.db"));

    TADOConnection old;
    old.SetConnectionString(AccessConnectionString(LegacyDatabase(), "Admin", {}));
    old.SetConnected(true);
    Session.SetConnected(true);
    EXPECT_EQ(Session.GetVersion(), 6);
    for (const TImportTable &table : plan.Tables) {
        QStringList oldColumns, newColumns;
        for (const TImportColumn &column : table.Columns) {
            ASSERT_GE(column.Old, 0) << qPrintable(column.Code);
            oldColumns.append(column.OldColumn.Name);
            newColumns.append(column.Code);
        }
        const QString select = "select %1 from %2";
        const TDataPacket before = old.Query(select.arg(oldColumns.join(','), table.OldName));
        EXPECT_EQ(before.RowCount(), table.RowCount);
        EXPECT_EQ(LinesOf(SortedRows(Session.Open(select.arg(newColumns.join(','), table.Code)))),
                  LinesOf(SortedRows(before)))
            << qPrintable(table.Code);
    }
}

TEST_P(ImportTest, nasty_values_arrive_as_they_are)
{
    DesignStore store(Dir.filePath("design.dbd"));
    store.Table("T")
        .Field("CODE", "varchar(10)", {.Key = true, .NotNull = true})
        .Field("NOTE", "text")
        .Field("PRICE", "decimal(19,4)")
        .Field("BIG", "decimal(20,2)")
        .Field("RATE", "float")
        .Field("MADE", "datetime")
        .Field("DAY", "date")
        .Field("OK", "boolean")
        .Field("PIC", "image")
        .Field("QTY", "int");
    Open(store.FileName());
    const QString longText = QString("长文本'“%1”:a[b]--/*\r\n").repeated(10000);
    const QByteArray longBytes = QByteArray("\0\xff'\n", 4).repeated(50000);
    JetStore old;
    old.Table("T", {TextColumn("CODE", 10),
                    {"NOTE", TJetType::Memo},
                    {"PRICE", TJetType::Money, 8, true},
                    {"BIG", TJetType::Decimal, 17, true, 20, 2},
                    {"RATE", TJetType::Double, 8, true},
                    {"MADE", TJetType::DateTime, 8, true},
                    {"DAY", TJetType::DateTime, 8, true},
                    {"OK", TJetType::Boolean, 1, true},
                    {"PIC", TJetType::Ole},
                    LongColumn("QTY")});
    const auto real = [](double value) { return TJetBuilder::DoubleBytes(value); };
    old.Row({Words("a'b"), old.Chained(TJetBuilder::Utf16(longText)), Money(-123456789), Decimal(1999, true),
             real(0.1 + 0.2), real(45322.75), real(45322), QByteArray(), old.Chained(longBytes), Long(-1)});
    old.Row({Words(":P1"), Memo(""), Money(1), Decimal(123456789012345), real(1e300), real(-0.5), real(1),
             std::nullopt, TJetBuilder::InlineValue({}), Long(2147483647)});
    old.Row({Words("空"), {}, {}, {}, {}, {}, {}, {}, {}, {}});
    Import.SetFileName(old.Write(Dir));
    Import.Run();

    EXPECT_EQ(Imported("select CODE, PRICE, BIG, RATE, MADE, DAY, OK, QTY from T order by QTY"),
              QStringList({"空|~|~|~|~|~|N|~",
                           "a'b|-12345.6789|-19.99|0.30000000000000004|20240131180000|20240131|Y|-1",
                           ":P1|0.0001|1234567890123.45|1E300|18991230120000|18991231|N|2147483647"}));
    Session.SetConnected(true);
    const TDataPacket rows = Session.Open("select NOTE, PIC from T order by QTY desc");
    EXPECT_EQ(rows.Text(0, 0), "");
    EXPECT_FALSE(rows.Column(0).IsNull(0)) << "empty is not NULL";
    EXPECT_FALSE(rows.Column(1).IsNull(0));
    EXPECT_EQ(rows.Text(0, 1), longText);
    EXPECT_EQ(rows.Value(1, 1).toByteArray(), longBytes);
    EXPECT_TRUE(rows.Column(0).IsNull(2) && rows.Column(1).IsNull(2));
}

TEST_P(ImportTest, missing_values_and_audit_columns_are_filled)
{
    DesignStore store(Dir.filePath("design.dbd"));
    store.Table("T")
        .Field("ID", "int", {.Key = true, .NotNull = true, .Auto = true})
        .Field("NAME", "varchar(10)", {.NotNull = true})
        .Field("KIND", "char(1)", {.NotNull = true, .Default = "B"})
        .Field("QTY", "int", {.NotNull = true})
        .Field("STOPPED", "boolean", {.NotNull = true, .Default = "N"})
        .Field("BLANK", "varchar(5)", {.NotNull = true, .Default = "''"})
        .Field("MORE", "varchar(5)", {.Default = "x"});
    Open(store.FileName());
    JetStore old;
    old.Table("T", {{"ID", TJetType::LongInteger, 4, true, 0, 0, true, true},
                    TextColumn("NAME", 10),
                    TextColumn("KIND", 1),
                    LongColumn("QTY"),
                    {"CREATEDATE", TJetType::DateTime, 8, true},
                    TextColumn("MODIFIER", 10)});
    old.Row({Long(7), Words("a"), Words("A"), Long(1), TJetBuilder::DoubleBytes(45322.5), Words("old")});
    old.Row({Long(9), {}, {}, {}, {}, {}});
    Import.SetFileName(old.Write(Dir));
    Import.SetUserCode("u7");
    Import.SetUserGroup("Sales");
    Import.Run();
    EXPECT_EQ(Imported("select ID, NAME, KIND, QTY, STOPPED, BLANK, MORE, CREATOR, CREATEDATE, MODIFIER, "
                       "CREATORGROUP from T order by ID"),
              QStringList({"7|a|A|1|N||x|u7|20240131120000|old|Sales", "9||B|0|N||x|u7|~|~|Sales"}));
    EXPECT_EQ(Imported("select distinct len(MODIFYDATE) from T"), QStringList("14"));
    EXPECT_EQ(LinesOf(Import.Report().Lines()),
              LinesOf({"T → T：2 行，11 列校验一致", "  NAME：1 个空值填入默认值“”",
                       "  KIND：1 个空值填入默认值“B”", "  QTY：1 个空值填入默认值“0”", "共 1 个表，2 行"}));
    // The next row of the program gets a number that no old row has.
    Session.SetConnected(true);
    Session.Execute(QString("insert into T(NAME,KIND,QTY,STOPPED,BLANK) values('n','A',1,'N','')"));
    EXPECT_EQ(Rows("select max(ID) from T"), QStringList("10"));
}

TEST_P(ImportTest, many_rows_go_in_batches_and_none_is_lost)
{
    DesignStore store(Dir.filePath("design.dbd"));
    store.Table("T").Field("ID", "int", {.Key = true}).Field("NAME", "varchar(50)");
    Open(store.FileName());
    JetStore old;
    old.Table("T", {LongColumn("ID"), TextColumn("NAME", 50)});
    constexpr int count = 10007;
    for (int i = 0; i < count; ++i)
        old.Row({Long(i), Words(QString("第%1行 '%2'").arg(i).arg(i % 7))});
    Import.SetFileName(old.Write(Dir));
    int events = 0;
    Import.OnProgress = [&](const TImportProgress &progress) { events += progress.RowCount == 10000; };
    Import.Run();
    EXPECT_EQ(events, 1);
    EXPECT_EQ(Imported("select count(*), sum(ID), min(NAME) from T"),
              QStringList(QString("%1|%2|第0行 '0'").arg(count).arg(qint64(count) * (count - 1) / 2)));
}
