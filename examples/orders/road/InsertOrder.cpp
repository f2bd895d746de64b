// SPDX-License-Identifier: MIT
#include "examples/orders/road/OrderForm.h"
#include "examples/orders/road/Stage.h"
#include "examples/orders/road/Steps.h"
#include "general/SessionValues.h"

using namespace Korvane;
using namespace Qt::StringLiterals;

QString InsertHead(TStage &stage, TOrderForm &form)
{
    stage.Head(u"直接保存（ctCommit）：新增单头，Post 立即执行语句；单号按单据性质的规则编出"_s);
    const QString date = u"20240628"_s;
    const QString code = NextBillCode(stage, OrderKind, date);
    const int before = stage.CountInDatabase(u"ORDERHEAD"_s, u"1=1"_s);
    form.Open(code); // nothing yet
    stage.Watch([&] {
        form.Heads.Append();
        form.Heads.SetFieldValue(u"BILLTYPE"_s, OrderKind);
        form.Heads.SetFieldValue(u"BILLCODE"_s, code);
        form.Heads.SetFieldValue(u"BILLDATE"_s, date);
        form.Heads.SetFieldValue(u"CUSTCODE"_s, u"C0001"_s);
        form.Heads.SetFieldValue(u"LINKMAN"_s, u"徐主任"_s);
        form.Heads.Post();
    });
    stage.ShowInDatabase(u"ORDERHEAD"_s,
                         u"BILLTYPE;BILLCODE;BILLDATE;CUSTCODE;LINKMAN;CURRCODE;CREATOR;MODIFIER"_s,
                         OrderCondition(code));
    stage.Check(stage.CountInDatabase(u"ORDERHEAD"_s, u"1=1"_s) == before + 1, u"单头多了一行"_s);
    stage.Check(stage.CountInDatabase(u"ORDERHEAD"_s, OrderCondition(code) + u" and CREATOR='%1' and "
                                                                             "CREATORGROUP='%2'"_s.arg(
                                                                                 AUserCode, AUserGroup)) == 1,
                u"创建者及其用户组已填写"_s);
    return code;
}

void InsertLines(TStage &stage, TOrderForm &form)
{
    stage.Head(u"批量保存（ctBatchCommit、utChanged）：三行明细先在内存，行号自动编，Save 时逐行写入"_s);
    const QString code = form.Heads.FieldByName(u"BILLCODE")->AsString();
    // While the head was being typed, its lines did not follow; now they do.
    form.Lines.OpenTable();
    const QStringList whileTyping = stage.Watch([&] {
        form.AddLine(u"010101-001"_s, 100, 18.3);
        form.AddLine(u"010101-002"_s, 250, 7.4);
        form.AddLine(u"010101-003"_s, 60, 19.93);
    });
    stage.Check(whileTyping.isEmpty(), u"录入时没有执行任何语句"_s);
    stage.Check(form.Lines.ChangeCount() == 3, u"变更记录有 3 笔"_s);
    stage.ShowInMemory(form.Lines, u"BILLCODE;BILLLINE;ITEMCODE;QTY;PRICE;AMOUNT"_s);

    const QStringList statements = stage.Watch([&] { form.Lines.Save(); });
    stage.Check(statements.size() == 9, u"每行三条语句：新增、读服务器时间、填写创建及修改信息"_s);
    stage.Check(form.Lines.ChangeCount() == 0, u"保存后变更记录已清空"_s);
    stage.ShowInDatabase(u"ORDERLINE"_s, u"BILLCODE;BILLLINE;ITEMCODE;QTY;PRICE;AMOUNT;CREATOR;MODIFIER"_s,
                         OrderCondition(code));
    stage.Check(stage.CountInDatabase(u"ORDERLINE"_s, OrderCondition(code) +
                                                          u" and BILLLINE between '0001' and '0003'"_s) == 3,
                u"行号为 0001 至 0003"_s);

    stage.Say(u"单头的合计（直接保存）："_s);
    stage.Watch([&] { form.SaveTotals(); });
    CheckTotals(stage, code);
}
