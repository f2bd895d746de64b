// SPDX-License-Identifier: MIT
// The data of the sample application's window, without the window: entering orders, and what goes wrong.
#include "design/DBDFile.h"
#include "examples/orders/window/OrdersData.h"
#include "general/SessionValues.h"
#include "support/ScriptedPrompts.h"

#include <QDir>
#include <QTemporaryDir>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

class OrdersData : public testing::Test
{
protected:
    OrdersData()
    {
        QDir::setCurrent(FFolder.path()); // for the log of failed statements
        AUserCode = u"u101"_s;
        AUserGroup = u"SalesA"_s;
        FDesign.SetFileName(QStringLiteral(KORVANE_EXAMPLES_DIR "/orders.dbd"));
        FDesign.SetActived(true);
        Session.SetDBType(dbtAccess);
        Session.SetDBName(FFolder.filePath(u"orders.db"_s));
        FDesign.CreateDB(Session, true);
        Session.SetConnected(true);
        for (const char16_t *statement :
             {u"insert into CATEGORY(CATECODE, CATENAME, CATELEVEL) values('01', '五金', 1)",
              u"insert into UNIT(UNITCODE, UNITNAME, DIGITS, ISBASE) values('KG', '千克', 3, 'Y')",
              u"insert into WAREHOUSE(WHSCODE, WHSNAME, STOPPED) values('W1', '一号仓', 'N')",
              u"insert into SYSMQ(MQ001, MQ002, MQ003, MQ005, MQ006, MQ007) values('2201', '销售', '22', "
              u"'2', 4, 5)",
              u"insert into CUSTOMER(CUSTCODE, CUSTNAME) values('C1', '下浦材料行')"})
            Session.Execute(QString::fromUtf16(statement));
        AddItem(u"A1"_s, u"螺栓"_s, u"2.345"_s, u"N"_s);
        AddItem(u"B2"_s, u"螺母"_s, u"0.5"_s, u"N"_s);
        AddItem(u"C3"_s, u"旧扳手"_s, u"9"_s, u"Y"_s);
        AddOrder(u"20240600001"_s, u"N"_s);
        AddOrder(u"20240600002"_s, u"Y"_s);
        FBefore = Prompts::Install(FPrompts);
        Data = std::make_unique<TOrdersData>(FDesign, Session);
        Data->Open();
    }
    ~OrdersData() override
    {
        Session.OnExecute() = nullptr;
        Data.reset();
        Prompts::Install(FBefore);
        QDir::setCurrent(QDir::rootPath());
        AUserCode = AUserGroup = QString();
    }

    void AddItem(const QString &code, const QString &name, const QString &price, const QString &stopped)
    {
        Session.Execute(
            u"insert into ITEM(ITEMCODE, ITEMNAME, CATECODE, UNITCODE, WHSCODE, BARCODE, PRICE, STOPPED) "
            "values('%1', '%2', '01', 'KG', 'W1', 'bar%1', %3, '%4')"_s.arg(code, name, price, stopped));
    }
    void AddOrder(const QString &code, const QString &checked)
    {
        Session.Execute(
            u"insert into ORDERHEAD(BILLTYPE, BILLCODE, BILLDATE, CUSTCODE, TOTALQTY, AMOUNT, CHECKED) "
            "values('2201', '%1', '20240601', 'C1', 3, 4.69, '%2')"_s.arg(code, checked));
        for (const char *line : {"0001", "0002"})
            Session.Execute(
                u"insert into ORDERLINE(BILLTYPE, BILLCODE, BILLLINE, ITEMCODE, QTY, PRICE, DISCOUNT, "
                "AMOUNT, CLOSED) values('2201', '%1', '%2', 'A1', 1, 2.345, 1, 2.35, 'N')"_s.arg(
                    code, QString::fromLatin1(line)));
    }
    void AddLine(const QString &item, double qty)
    {
        Data->Lines.Append();
        Data->Lines.FieldByName(u"ItemCode")->SetText(item);
        Data->Lines.FieldByName(u"Qty")->SetAsFloat(qty);
        Data->Lines.Post();
    }

    QString RowsOf(const QString &statement)
    {
        QStringList rows;
        for (const QStringList &row : Data->Rows(statement))
            rows.append(row.join(u'|'));
        return rows.join(u" / "_s);
    }
    QString Stored()
    {
        return RowsOf(u"select BILLCODE, REMARK, TOTALQTY, AMOUNT from ORDERHEAD order by BILLCODE"_s) +
               u'\n' +
               RowsOf(
                   u"select BILLCODE, BILLLINE, ITEMCODE, QTY, AMOUNT from ORDERLINE order by BILLCODE, BILLLINE"_s);
    }
    /// The lines of the current order in memory.
    QString Shown()
    {
        QStringList rows;
        const auto lines = Data->Lines.CloneData();
        lines->SetIndexFieldNames(u"BillLine"_s);
        for (lines->First(); !lines->Eof(); lines->Next())
            rows.append(lines->FieldByName(u"BillLine")->AsString() + u'|' +
                        lines->FieldByName(u"ItemCode")->AsString() + u'|' +
                        lines->FieldByName(u"Qty")->AsString());
        return rows.join(u" / "_s);
    }
    static QString FailureOf(const std::function<void()> &action)
    {
        try {
            action();
        } catch (const EAbort &) {
            return u"abort"_s;
        } catch (const Exception &error) {
            return error.Message();
        }
        return {};
    }
    /// Saves the order while its first statement fails, then its second, and so on until none is left
    /// to fail. Gives how many failed.
    int SaveThroughFailures()
    {
        const QString stored = Stored(), shown = Shown();
        const TDataSetState state = Data->Heads.State();
        for (int failing = 1;; ++failing) {
            int count = 0;
            Session.OnExecute() = [&](const QString &) {
                if (++count == failing)
                    throw Exception(u"断线"_s);
            };
            const QString failure = FailureOf([&] { Data->SaveOrder(); });
            Session.OnExecute() = nullptr;
            if (!Data->IsEntering())
                return failing - 1;
            EXPECT_FALSE(failure.isEmpty()) << failing;
            EXPECT_EQ(Stored(), stored) << failing;
            EXPECT_EQ(Shown(), shown) << failing;
            EXPECT_EQ(Data->Heads.State(), state) << failing;
            EXPECT_EQ(Data->Heads.FieldByName(u"Note")->AsString(), u"加急") << failing;
            if (failing == 50)
                return -1;
        }
    }

    std::shared_ptr<ScriptedPrompts> FPrompts = std::make_shared<ScriptedPrompts>();
    TDBSession Session;
    std::unique_ptr<TOrdersData> Data;

private:
    QTemporaryDir FFolder;
    TDBDFile FDesign;
    std::shared_ptr<Prompts> FBefore;
};

TEST_F(OrdersData, ALineTakesItsItemAndReckonsItsAmount)
{
    Data->ChangeOrder();
    TOrderLines &lines = Data->Lines;
    lines.Append();
    EXPECT_EQ(lines.FieldByName(u"BillLine")->AsString(), u"0003");
    TField *code = lines.FieldByName(u"ItemCode");
    EXPECT_EQ(FailureOf([&] { code->SetText(u"Z9"_s); }), u"没有编号为“Z9”的物料，请重新输入");
    EXPECT_EQ(FailureOf([&] { code->SetText(u"C3"_s); }), u"物料“C3”已经停用，不能再订货");
    EXPECT_EQ(code->AsString().trimmed(), u"");
    code->SetText(u"A1"_s);
    lines.FieldByName(u"Qty")->SetText(u"3"_s);
    const auto text = [&](const char16_t *name) { return lines.FieldByName(name)->AsString(); };
    EXPECT_EQ(text(u"ItemName") + u'|' + text(u"UnitName") + u'|' + text(u"WhsCode") + u'|' + text(u"Price"),
              u"螺栓|千克|W1|2.345");
    EXPECT_EQ(text(u"Amount"), u"7.04"); // 7.035
    EXPECT_EQ(Data->LineItem.FieldByName(u"ItemName")->AsString(), u"螺栓");
    lines.FieldByName(u"Discount")->SetText(u"0.5"_s);
    EXPECT_EQ(text(u"Amount"), u"3.52");
    lines.Post();
    EXPECT_EQ(Data->Heads.FieldByName(u"TotalQty")->AsFloat(), 5);
    EXPECT_NEAR(Data->Heads.FieldByName(u"Amount")->AsFloat(), 8.22, 1e-9);

    // A new line in which nothing was entered goes without a word.
    lines.Append();
    lines.First();
    EXPECT_EQ(lines.RecordCount(), 3);
}

TEST_F(OrdersData, AFailedSaveWritesNothingAndLosesNothing)
{
    Data->ChangeOrder();
    Data->Heads.FieldByName(u"Note")->SetAsString(u"加急"_s);
    Data->Lines.Delete();
    AddLine(u"B2"_s, 4);
    EXPECT_GT(SaveThroughFailures(), 6);
    EXPECT_EQ(Stored(), u"20240600001|加急|5|4.35 / 20240600002||3|4.69\n"
                        "20240600001|0002|A1|1|2.35 / 20240600001|0003|B2|4|2 / "
                        "20240600002|0001|A1|1|2.35 / 20240600002|0002|A1|1|2.35");
}

TEST_F(OrdersData, AFailedSaveOfMovedLinesLosesNothing)
{
    Data->ChangeOrder();
    Data->Heads.FieldByName(u"Note")->SetAsString(u"加急"_s);
    AddLine(u"B2"_s, 4);
    Data->Lines.Move(true);
    EXPECT_EQ(Data->Lines.FieldByName(u"ItemCode")->AsString(), u"B2");
    EXPECT_EQ(Shown(), u"0001|A1|1 / 0002|B2|4 / 0003|A1|1");
    EXPECT_GT(SaveThroughFailures(), 6);
    EXPECT_EQ(Stored(), u"20240600001|加急|6|6.7 / 20240600002||3|4.69\n"
                        "20240600001|0001|A1|1|2.35 / 20240600001|0002|B2|4|2 / 20240600001|0003|A1|1|2.35 / "
                        "20240600002|0001|A1|1|2.35 / 20240600002|0002|A1|1|2.35");
}

TEST_F(OrdersData, AFailedSaveOfANewOrderLosesNothing)
{
    EXPECT_EQ(Data->NextBillCode(u"2201"_s, u"20240630"_s), u"20240600003");
    TOrderHeadValues values{u"2201"_s, u"20240600003"_s, u"20240630"_s, u"C1"_s, u"下浦材料行"_s, {},
                            {},        u"加急"_s};
    Data->NewOrder(values);
    EXPECT_EQ(FailureOf([&] { Data->SaveOrder(); }), u"订单没有明细，不能保存");
    AddLine(u"A1"_s, 2);
    AddLine(u"B2"_s, 1);
    EXPECT_GT(SaveThroughFailures(), 6);
    EXPECT_EQ(Stored().section(u" / "_s, 2, 2).section(u'\n', 0, 0), u"20240600003|加急|3|5.19");
    EXPECT_EQ(Shown(), u"0001|A1|2 / 0002|B2|1");
    EXPECT_EQ(Data->Heads.Values().CustName, u"下浦材料行");

    // The number is taken now.
    Data->NewOrder(values);
    AddLine(u"A1"_s, 2);
    EXPECT_TRUE(FailureOf([&] { Data->SaveOrder(); }).startsWith(u"数据库中已存在相同的记录"));
    EXPECT_TRUE(Data->IsEntering());
    EXPECT_EQ(Shown(), u"0001|A1|2");
}

TEST_F(OrdersData, LeavingAnEnteredOrderAsks)
{
    struct TCase
    {
        int Answer;
        const char16_t *Failure, *Order, *Shown;
        bool IsEntering;
    };
    for (const TCase &each : {TCase{IDCANCEL, u"abort", u"20240600001", u"0001|A1|7 / 0002|A1|1", true},
                              TCase{IDNO, u"", u"20240600002", u"0001|A1|1 / 0002|A1|1", false},
                              TCase{IDYES, u"", u"20240600002", u"0001|A1|1 / 0002|A1|1", false}}) {
        if (!Data->IsEntering()) {
            Data->Heads.First();
            Data->ChangeOrder();
            Data->Lines.Edit();
            Data->Lines.FieldByName(u"Qty")->SetAsFloat(7);
            Data->Lines.Post();
        }
        FPrompts->Answers = {each.Answer};
        EXPECT_EQ(FailureOf([&] { Data->Heads.Next(); }), each.Failure) << each.Answer;
        EXPECT_TRUE(FPrompts->Answers.isEmpty());
        EXPECT_EQ(Data->Heads.FieldByName(u"BillCode")->AsString(), each.Order) << each.Answer;
        EXPECT_EQ(Shown(), each.Shown) << each.Answer;
        EXPECT_EQ(Data->IsEntering(), each.IsEntering) << each.Answer;
    }
    EXPECT_EQ(RowsOf(u"select QTY from ORDERLINE where BILLCODE='20240600001'"_s), u"7 / 1");

    // Giving up asks, too.
    Data->Heads.First();
    Data->ChangeOrder();
    Data->Lines.Delete();
    FPrompts->Answers = {IDNO, IDYES};
    EXPECT_EQ(FailureOf([&] { Data->CancelOrder(); }), u"abort");
    EXPECT_EQ(Shown(), u"0002|A1|1");
    Data->CancelOrder();
    EXPECT_EQ(Shown(), u"0001|A1|7 / 0002|A1|1");
    EXPECT_FALSE(Data->IsEntering());
}

TEST_F(OrdersData, ATickIsNoEntryAndTheLinesGoOnFollowing)
{
    Data->Heads.SetSelected(true);
    EXPECT_FALSE(Data->IsEntering());
    Data->Heads.Next();
    EXPECT_EQ(Data->Lines.FieldByName(u"BillCode")->AsString(), u"20240600002");
    EXPECT_EQ(Data->Heads.ChangeCount(), 1);
    EXPECT_TRUE(FPrompts->Boxes.isEmpty());

    Data->Heads.First();
    Data->ChangeOrder();
    EXPECT_FALSE(Data->Heads.FieldByName(u"FSELECTED")->CanModify()); // it would post the head
}

TEST_F(OrdersData, WhatMustNotBeIsRefused)
{
    Data->Heads.Next();
    EXPECT_EQ(FailureOf([&] { Data->ChangeOrder(); }), u"订单 2201-20240600002 已经审核，不能修改");
    EXPECT_EQ(FailureOf([&] { Data->DeleteOrder(); }), u"订单 2201-20240600002 已经审核，不能删除");
    EXPECT_EQ(FailureOf([&] { Data->DeleteItem(); }), u"物料 A1 在 4 行订单明细中使用，不能删除");
    Data->Items.Edit();
    EXPECT_EQ(FailureOf([&] { Data->Items.FieldByName(u"CateCode")->SetText(u"09"_s); }),
              u"没有编号为“09”的物料分类，请重新输入");
    Data->Items.Cancel();

    // A failure while an order is deleted leaves it.
    Data->Heads.First();
    const QString stored = Stored();
    for (const int failing : {1, 2}) {
        int count = 0;
        FPrompts->Answers = {IDYES};
        Session.OnExecute() = [&](const QString &statement) {
            if (statement.startsWith(u"delete") && ++count == failing)
                throw Exception(u"断线"_s);
        };
        EXPECT_FALSE(FailureOf([&] { Data->DeleteOrder(); }).isEmpty()) << failing;
        Session.OnExecute() = nullptr;
        EXPECT_EQ(Stored(), stored) << failing;
        EXPECT_EQ(Data->Heads.RecordCount(), 2) << failing;
    }
    FPrompts->Answers = {IDYES};
    Data->DeleteOrder();
    EXPECT_EQ(Stored(), u"20240600002||3|4.69\n20240600002|0001|A1|1|2.35 / 20240600002|0002|A1|1|2.35");
}

} // namespace
