// SPDX-License-Identifier: MIT
#include "examples/orders/road/OrderForm.h"

#include "design/DBDFile.h"
#include "examples/orders/road/Stage.h"
#include "platform/core/Variants.h"

using namespace Korvane;
using namespace Qt::StringLiterals;

void SetUp(TExTable &set, TStage &stage, const QString &table)
{
    set.SetDBDFile(&stage.Design());
    set.SetDBSession(&stage.Session());
    set.SetTable(table);
}

QString OrderCondition(const QString &billCode)
{
    return u"BILLTYPE='%1' and BILLCODE='%2'"_s.arg(OrderKind, billCode);
}

void CheckTotals(TStage &stage, const QString &billCode)
{
    const auto sum = [&](const QString &column, int decimals) {
        return stage.ValueInDatabase(u"select round(sum(%1), %2) from ORDERLINE where %3"_s.arg(
            column, QString::number(decimals), OrderCondition(billCode)));
    };
    const QString qty = sum(u"QTY"_s, 3), amount = sum(u"AMOUNT"_s, 2);
    stage.Check(stage.CountInDatabase(
                    u"ORDERHEAD"_s,
                    OrderCondition(billCode) +
                        u" and round(TOTALQTY-%1,3)=0 and round(AMOUNT-%2,2)=0"_s.arg(qty, amount)) == 1,
                u"单头的总数量 %1、总金额 %2 等于明细合计"_s.arg(qty, amount));
}

TOrderForm::TOrderForm(TStage &stage)
{
    SetUp(Heads, stage, u"ORDERHEAD"_s);
    SetUp(Lines, stage, u"ORDERLINE"_s);
    HeadSource.SetDataSet(&Heads);
    Lines.SetMasterDataSource(&HeadSource);
    Lines.SetMasterField(u"BILLTYPE;BILLCODE"_s);
    Lines.SetDetailField(u"BILLTYPE;BILLCODE"_s);
    Lines.SetAutoField(u"BILLLINE"_s);
}

void TOrderForm::Open(const QString &billCode)
{
    Heads.OpenTable(u"BILLTYPE;BILLCODE"_s, VarArrayOf({OrderKind, billCode}), ooEqualAnd);
    Follow();
}

void TOrderForm::Follow()
{
    if (!Lines.Active())
        Lines.OpenTable();
}

void TOrderForm::SaveTotals()
{
    // Taken first: the lines are read anew when the head's edit begins, and then follow it no
    // more until they are read once the edit is over.
    const QString qty = Lines.GetSumValue(u"QTY"_s), amount = Lines.GetSumValue(u"AMOUNT"_s);
    Heads.Edit();
    Heads.SetFieldValue(u"TOTALQTY"_s, qty);
    Heads.SetFieldValue(u"AMOUNT"_s, amount);
    Heads.Post();
    Lines.OpenTable();
}

void TOrderForm::AddLine(const QString &itemCode, double qty, double price)
{
    Lines.Append(); // fills in the defaults, the master's key and the next line number
    Lines.SetFieldValue(u"ITEMCODE"_s, itemCode);
    Lines.FieldByName(u"QTY")->SetAsFloat(qty);
    Lines.FieldByName(u"PRICE")->SetAsFloat(price);
    Lines.FieldByName(u"AMOUNT")->SetAsFloat(qty * price);
    Lines.Post();
}

void TOrderForm::ChangeQty(double qty)
{
    Lines.Edit();
    Lines.FieldByName(u"QTY")->SetAsFloat(qty);
    Lines.FieldByName(u"AMOUNT")->SetAsFloat(qty * Lines.FieldByName(u"PRICE")->AsFloat());
    Lines.Post();
}

void TOrderForm::GoToLine(const QString &billLine)
{
    if (!Lines.Locate(u"BILLLINE"_s, billLine))
        throw Exception(u"没有行号为%1的明细"_s.arg(billLine));
}
