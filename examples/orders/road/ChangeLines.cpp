// SPDX-License-Identifier: MIT
#include "examples/orders/road/OrderForm.h"
#include "examples/orders/road/Stage.h"
#include "examples/orders/road/Steps.h"
#include "general/SessionValues.h"
#include "tools/korvane/TextTable.h"

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

QString NameOf(TUpdateStatus status)
{
    switch (status) {
    case usUnmodified:
        return u"原值"_s;
    case usModified:
        return u"修改"_s;
    case usInserted:
        return u"新增"_s;
    case usDeleted:
        return u"删除"_s;
    }
    return {};
}

/// The log of what has changed is a dataset, too.
void ShowLog(TStage &stage, TExTable &lines)
{
    TClientDataSet log;
    log.SetData(lines.Delta());
    const QList<TField *> fields = log.GetFieldList(u"BILLLINE;ITEMCODE;QTY;PRICE;AMOUNT"_s);
    TTextTable table;
    table.AddColumn(u"变更"_s);
    for (const TField *field : fields)
        table.AddColumn(lines.FieldByName(field->FieldName())->DisplayLabel());
    for (log.First(); !log.Eof(); log.Next()) {
        QStringList cells = {NameOf(log.UpdateStatus())};
        for (const TField *field : fields)
            cells.append(field->IsNull() ? u"-"_s : field->AsString());
        table.AddRow(cells);
    }
    stage.Say(u"变更记录（“修改”一行只有改过的栏位）：\n"_s + table.ToText());
}

} // namespace

void ChangeLines(TStage &stage, TOrderForm &form)
{
    stage.Head(u"批量保存（utChanged），在事务中：修改一行、删除一行、新增一行，按变更先后执行"_s);
    const QString code = form.Heads.FieldByName(u"BILLCODE")->AsString();
    AUserCode = u"u102"_s; // another user goes on
    form.GoToLine(u"0001"_s);
    form.ChangeQty(120);
    form.GoToLine(u"0002"_s);
    form.Lines.Delete();
    form.AddLine(u"010101-004"_s, 15, 22.5);
    ShowLog(stage, form.Lines);

    stage.Begin();
    const QStringList statements = stage.Watch([&] { form.Lines.Save(); });
    stage.Check(statements.size() == 9, u"三笔变更，九条语句"_s);
    stage.Say(u"单头的合计，在同一事务中："_s);
    stage.Watch([&] { form.SaveTotals(); });
    stage.Commit();
    stage.ShowInDatabase(u"ORDERLINE"_s, u"BILLCODE;BILLLINE;ITEMCODE;QTY;AMOUNT;CREATOR;MODIFIER"_s,
                         OrderCondition(code));
    stage.Check(stage.CountInDatabase(u"ORDERLINE"_s, OrderCondition(code)) == 3,
                u"共三行：0001、0003、0004"_s);
    stage.Check(stage.CountInDatabase(u"ORDERLINE"_s, OrderCondition(code) +
                                                          u" and BILLLINE='0001' and QTY=120 and "
                                                          "CREATOR='u101' and MODIFIER='u102'"_s) == 1,
                u"0001 的数量为 120，修改者为 u102，创建者不变"_s);
    stage.Check(stage.CountInDatabase(u"ORDERLINE"_s, OrderCondition(code) + u" and BILLLINE='0002'"_s) == 0,
                u"0002 已删除"_s);
    CheckTotals(stage, code);
}

void ReplaceLines(TStage &stage, TOrderForm &form)
{
    stage.Head(u"批量保存（utAll），不用事务：先删除所读范围的各行，再新增内存中的每一行"_s);
    const QString code = form.Heads.FieldByName(u"BILLCODE")->AsString();
    form.Lines.SetUpdateType(utAll);
    form.GoToLine(u"0003"_s);
    form.ChangeQty(80);
    const QStringList statements = stage.Watch([&] { form.Lines.Save(); });
    stage.Check(statements.size() == 6, u"删除一条、新增三条、读服务器时间和填写创建及修改信息各一条"_s);
    stage.ShowInDatabase(u"ORDERLINE"_s, u"BILLCODE;BILLLINE;ITEMCODE;QTY;AMOUNT;CREATOR;MODIFIER"_s,
                         OrderCondition(code));
    stage.Check(stage.CountInDatabase(u"ORDERLINE"_s, OrderCondition(code)) == 3, u"仍为三行"_s);
    stage.Check(stage.CountInDatabase(u"ORDERLINE"_s,
                                      OrderCondition(code) + u" and BILLLINE='0003' and QTY=80"_s) == 1,
                u"0003 的数量为 80"_s);
    stage.Check(form.Lines.ChangeCount() > 0, u"变更记录保留到下次读取"_s);
    stage.Say(u"单头的合计（直接保存），明细随之重新读取："_s);
    stage.Watch([&] { form.SaveTotals(); });
    stage.Check(form.Lines.ChangeCount() == 0, u"重新读取后变更记录为空"_s);
    CheckTotals(stage, code);
}
