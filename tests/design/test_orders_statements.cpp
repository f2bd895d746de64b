// SPDX-License-Identifier: MIT
// Every statement that the orders design gives, run on its database in both dialects.
#include "DatabaseTesting.h"
#include "OrdersRecord.h"

#include "general/SessionValues.h"
#include "platform/core/Format.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class OrdersStatements : public DatabaseTest
{
protected:
    OrdersStatements()
    {
        if (IsSkipped())
            return;
        RegisterClass<TOrdersRecord>();
        OpenOrders();
        for (const auto &table : Design.GetTables())
            for (const auto &field : Design.GetTableFields(table->TableCode))
                if (field->FieldType.endsWith("char"))
                    Widths[field->FieldProp] = qMin(Widths.value(field->FieldProp, 99), field->FieldSize);
        Design.CreateDB(Session, true);
        Session.SetConnected(true);
        Filled(Record, 1);
        AUserCode = "u1";
        AUserGroup = "g1";
        AIsSuper = "Y";
    }
    ~OrdersStatements() override
    {
        AUserCode.clear();
        AUserGroup.clear();
        AIsSuper.clear();
    }

    /// Gives every property a value of its own that fits its columns.
    void Filled(TOrdersRecord &record, int number) const
    {
        for (const TPropInfo &property : GetPropList(record).Properties()) {
            switch (property.Kind) {
            case tkString:
                property.SetValue(record,
                                  QString("值'%1").arg(number).right(Widths.value(property.Name, 99)));
                break;
            case tkFloat:
                property.SetValue(record, number + 0.25);
                break;
            default:
                property.SetValue(record, number);
                break;
            }
        }
        record.Picture = ":PIC";
    }

    static QVariantList KeysOf(const TOrdersRecord &record, const TObjectList<TFieldsObject> &fields)
    {
        QVariantList keys;
        for (const auto &field : fields)
            keys.append(GetPropValue(record, field->FieldProp));
        return keys;
    }

    void Run(const QString &statement)
    {
        TBlobStreams streams;
        if (statement.contains(":PIC"))
            streams.Add("PIC", QByteArray("\0\1'", 3));
        Session.Execute(statement, &streams);
    }

    /// Runs a statement and says what is wrong with it; empty if nothing is.
    QString Refusal(const QString &statement)
    {
        const QString message = MessageOf([&] { Session.Open(statement); });
        return message == "nothing" ? QString() : message;
    }

    TOrdersRecord Record;
    QHash<QString, int> Widths; ///< of the narrowest column of a property
};

} // namespace

TEST_P(OrdersStatements, every_table_is_written_and_read)
{
    for (const auto &row : Design.GetTables()) {
        SCOPED_TRACE(row->TableCode.toStdString());
        TDBDTable *table = Design.GetDBDTable(row->TableCode);
        Run(table->GetInsertSQL(Record));
        const QVariantList keys = KeysOf(Record, table->KeyFields());
        EXPECT_EQ(Session.Open(table->GetSelectSQL(GetParam(), table->KeyFieldStr(), keys, ooEqualAnd, true))
                      .RowCount(),
                  1);
        EXPECT_EQ(Session.Open(table->GetSelectSQL(true)).Field(0).Name, "FSELECTED");

        TOrdersRecord changed = Record;
        Filled(changed, 2);
        changed.KeyValues = keys;
        Run(table->GetUpdateSQL(GetParam(), changed));
        EXPECT_EQ(Session.Open(table->GetSelectSQL(GetParam(), table->KeyFieldStr(), keys, ooEqualAnd, false))
                      .RowCount(),
                  0);
        // The whole row came through, each column as its own value.
        const TDataPacket packet = Session.Open(table->GetSelectSQL(false));
        ASSERT_EQ(packet.RowCount(), 1);
        for (const auto &field : table->TableFields()) {
            const int column = packet.IndexOf(field->FieldCode);
            ASSERT_GE(column, 0) << field->FieldCode.toStdString();
            const QString expected =
                field->FieldType == "boolean" ? "Y" : VarToStr(GetPropValue(changed, field->FieldProp));
            if (field->FieldType == "image") {
                EXPECT_EQ(packet.Value(column, 0).toByteArray(), QByteArray("\0\1'", 3));
                continue;
            }
            EXPECT_EQ(packet.Text(column, 0), expected) << field->FieldCode.toStdString();
        }
        changed.KeyValues = KeysOf(changed, table->KeyFields());
        Run(table->GetDeleteSQL(GetParam(), changed));
        EXPECT_EQ(Session.Open(table->GetSelectSQL(false)).RowCount(), 0);
        Run(table->GetDeleteSQL(GetParam(), "", {}));
    }
}

TEST_P(OrdersStatements, every_fields_condition_runs)
{
    for (const auto &row : Design.GetTables()) {
        TDBDTable *table = Design.GetDBDTable(row->TableCode);
        for (const auto &field : table->TableFields()) {
            const bool bare =
                GetDataType(field->FieldType) >= dtInt && GetDataType(field->FieldType) <= dtFloat;
            if (field->FieldType == "image")
                continue; // a blob is no condition
            for (const TOpenOption option : {ooEqualAnd, ooEqualOr, ooLikeAnd, ooLikeOr}) {
                if (bare && option >= ooLikeAnd)
                    continue; // bare wildcards are no statement in any engine
                EXPECT_EQ(Refusal(table->GetSelectSQL(GetParam(), field->FieldProp, "1", option, false)), "");
            }
        }
    }
}

TEST_P(OrdersStatements, every_query_runs)
{
    for (const auto &row : Design.GetQuerys()) {
        TDBDQuery *query = Design.GetDBDQuery(row->QueryCode);
        SCOPED_TRACE(row->QueryCode.toStdString());
        const bool grouped = row->Access.contains("group by"); // the audit columns are not grouped
        for (const bool selection : {false, true}) {
            for (const bool audit : {false, true}) {
                if (audit && grouped)
                    continue;
                EXPECT_EQ(Refusal(query->GetSelectSQL(GetParam(), selection, audit)), "");
                EXPECT_EQ(Refusal(query->GetSelectSQL(GetParam(), query->QueryFields()[0]->FieldProp, "x",
                                                      ooLikeAnd, selection, audit)),
                          "");
                if (grouped)
                    continue; // nor are the key fields
                EXPECT_EQ(Refusal(query->GetSelectSQL(GetParam(), query->KeyFieldStr(),
                                                      KeysOf(Record, query->KeyFields()), ooEqualAnd,
                                                      selection, audit)),
                          "");
            }
        }
        // The columns come under their aliases, in order.
        const TDataPacket packet = Session.Open(query->GetSelectSQL(GetParam(), false, false));
        QStringList names, aliases;
        for (const TPacketField &field : packet.Fields())
            names.append(field.Name);
        for (const auto &column : query->Columns())
            aliases.append(column->Alias);
        EXPECT_EQ(names, aliases);
    }
}

TEST_P(OrdersStatements, every_query_writes_its_main_table)
{
    for (const auto &row : Design.GetQuerys()) {
        TDBDQuery *query = Design.GetDBDQuery(row->QueryCode);
        SCOPED_TRACE(row->QueryCode.toStdString());
        // A query may leave out columns that must not be empty; then only the table can insert.
        Run(Design.GetDBDTable(query->Table())->GetInsertSQL(Record));
        TOrdersRecord changed = Record;
        changed.KeyValues = KeysOf(Record, query->KeyFields());
        Run(query->GetUpdateSQL(GetParam(), changed));
        Run(query->GetDeleteSQL(GetParam(), changed));
        EXPECT_EQ(Session.Open("select * from " + query->Table()).RowCount(), 0);
        bool complete = true;
        for (const auto &field : Design.GetTableFields(query->Table())) {
            const auto &fields = query->QueryFields();
            complete =
                complete &&
                (!field->IsNotNull || std::any_of(fields.begin(), fields.end(), [&](const auto &column) {
                    return column->TableCode == query->Table() && column->Remark == field->FieldCode;
                }));
        }
        if (!complete)
            continue;
        Run(query->GetInsertSQL(Record));
        EXPECT_EQ(Session.Open("select * from " + query->Table()).RowCount(), 1);
        Run(query->GetDeleteSQL(GetParam(), "", {}));
    }
}

TEST_P(OrdersStatements, every_command_runs)
{
    const QHash<QString, QVariantList> arguments = {{"ADDLOG", {"UNIT", "PCS", "I", "内容", "主机"}},
                                                    {"CALCORDER", {"2201", "0001"}},
                                                    {"CHECKORDER", {"2201", "0001"}},
                                                    {"UNCHECKORDER", {"2201", "0001"}},
                                                    {"CLEARLOG", {}},
                                                    {"RAISEPRICE", {"1.1", "01"}}};
    Session.Execute(QStringList({"insert into ORDERHEAD(BILLTYPE, BILLCODE, BILLDATE, CUSTCODE) "
                                 "values('2201', '0001', '20240101', 'C1')",
                                 "go",
                                 "insert into ORDERLINE(BILLTYPE, BILLCODE, BILLLINE, ITEMCODE, QTY, AMOUNT) "
                                 "values('2201', '0001', '0001', 'I1', 2, 10.5)",
                                 "go",
                                 "insert into ORDERLINE(BILLTYPE, BILLCODE, BILLLINE, ITEMCODE, QTY, AMOUNT) "
                                 "values('2201', '0001', '0002', 'I2', 3, 4.5)",
                                 "go",
                                 "insert into ITEM(ITEMCODE, ITEMNAME, CATECODE, UNITCODE, BARCODE, PRICE) "
                                 "values('I1', 'a', '0101', 'PCS', 'B1', 100)",
                                 "go",
                                 "insert into ITEM(ITEMCODE, ITEMNAME, CATECODE, UNITCODE, BARCODE, PRICE) "
                                 "values('I2', 'b', '0201', 'PCS', 'B2', 100)"}));
    const auto run = [&](const QString &code) {
        const auto command = Design.GetDBDCommand(code)->CommandObject();
        QString text = GetParam() == dbtAccess ? command->Access : command->MSSQL;
        for (const auto &[macro, value] : {std::pair{"%USERCODE%", "u1"},
                                           {"%USERGROUP%", "g1"},
                                           {"%ISSUPER%", "Y"},
                                           {"%DATETIME%", "20240102030405"},
                                           {"%DATE%", "20240102"},
                                           {"%TIME%", "030405"}})
            text.replace(macro, value);
        Run(Format(text, arguments[code]));
    };
    EXPECT_EQ(qsizetype(arguments.size()), Design.GetCommands().size());
    run("CALCORDER");
    EXPECT_EQ(Rows("select AMOUNT, TOTALQTY, MODIFIER, MODIFYDATE from ORDERHEAD"),
              QStringList("15|5|u1|20240102030405"));
    run("CHECKORDER");
    EXPECT_EQ(Rows("select CHECKED, CHECKER, CHECKDATE from ORDERHEAD"), QStringList("Y|u1|20240102030405"));
    run("UNCHECKORDER");
    EXPECT_EQ(Rows("select CHECKED, CHECKER, CHECKDATE from ORDERHEAD"), QStringList("N||"));
    run("ADDLOG");
    EXPECT_EQ(Rows("select LOGNO, LOGTIME, TABLECODE, KEYVALUE, ACTKIND, CONTENT, HOSTNAME from CHANGELOG"),
              QStringList("1|20240102030405|UNIT|PCS|I|内容|主机"));
    run("CLEARLOG");
    EXPECT_EQ(Rows("select count(*) from CHANGELOG"), QStringList("1")) << "of the day itself";
    Session.Execute(QString("update CHANGELOG set LOGTIME='20240101235959'"));
    run("CLEARLOG");
    EXPECT_EQ(Rows("select count(*) from CHANGELOG"), QStringList("0"));
    run("RAISEPRICE");
    EXPECT_EQ(Rows("select ITEMCODE, round(PRICE, 4) from ITEM order by ITEMCODE"),
              QStringList({"I1|110", "I2|100"}));
}

TEST_P(OrdersStatements, the_macros_of_a_query_reach_the_rows)
{
    Session.Execute(
        QStringList({"insert into ORDERHEAD(BILLTYPE, BILLCODE, BILLDATE, CUSTCODE, CREATORGROUP) "
                     "values('2201', '0001', '20240101', 'C1', 'g1')",
                     "go",
                     "insert into ORDERHEAD(BILLTYPE, BILLCODE, BILLDATE, CUSTCODE, CREATORGROUP) "
                     "values('2201', '0002', '20240101', 'C1', 'g2')"}));
    TDBDQuery *query = Design.GetDBDQuery("QMYORDER");
    const auto bills = [&] {
        QStringList rows;
        for (const QString &row :
             Rows(query->GetSelectSQL(GetParam(), "BillType", "2201", ooEqualAnd, false, false)))
            rows.append(row.section('|', 1, 1) + " " + row.section('|', -1));
        rows.sort();
        return rows;
    };
    EXPECT_EQ(bills(), QStringList({"0001 u1", "0002 u1"})) << "a super user sees all";
    AIsSuper = "N";
    EXPECT_EQ(bills(), QStringList("0001 u1"));
}

INSTANTIATE_TEST_SUITE_P(Places, OrdersStatements, testing::ValuesIn(AllPlaces()), PlaceName);
