// SPDX-License-Identifier: MIT
#include "examples/orders/road/OrderForm.h"
#include "examples/orders/road/Stage.h"
#include "examples/orders/road/Steps.h"

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

QString NoteInDatabase(TStage &stage, const QString &code)
{
    return stage.ValueInDatabase(u"select REMARK from ORDERHEAD where "_s + OrderCondition(code));
}

QString QtyInDatabase(TStage &stage, const QString &code)
{
    return stage.ValueInDatabase(
        u"select QTY from ORDERLINE where %1 and BILLLINE='0001'"_s.arg(OrderCondition(code)));
}

/// A save that must fail. The message is the provider's, and the statement behind it.
void SaveAndFail(TStage &stage, TExTable &lines)
{
    QString message;
    stage.Watch([&] {
        try {
            lines.Save();
        } catch (const Exception &error) {
            message = error.Message();
        }
    });
    stage.Check(!message.isEmpty(), u"保存失败：%1"_s.arg(message.section(u'\r', 0, 0)));
}

void CheckUnsavedWork(TStage &stage, TOrderForm &form)
{
    stage.Check(form.Lines.ChangeCount() == 2, u"内存中两笔变更都还在，录入的内容没有丢失"_s);
    form.GoToLine(u"0001"_s);
    stage.Check(form.Lines.FieldByName(u"QTY")->AsFloat() == 99, u"内存中 0001 的数量仍是录入的 99"_s);
}

} // namespace

void RollBackHead(TStage &stage, TOrderForm &form)
{
    stage.Head(u"直接保存（ctCommit），在事务中，回滚：数据库复原，内存要重新读取"_s);
    const QString code = form.Heads.FieldByName(u"BILLCODE")->AsString();
    const QString before = NoteInDatabase(stage, code);
    stage.Begin();
    stage.Watch([&] {
        form.Heads.Edit();
        form.Heads.SetFieldValue(u"REMARK"_s, u"加急"_s);
        form.Heads.Post();
    });
    stage.Check(NoteInDatabase(stage, code) == u"加急"_s, u"事务中可见新的备注"_s);
    stage.RollBack();
    stage.Check(NoteInDatabase(stage, code) == before, u"回滚后数据库中是原来的备注"_s);
    stage.Check(form.Heads.FieldByName(u"REMARK")->AsString() == u"加急"_s, u"内存中仍是新的备注"_s);
    form.Open(code);
    stage.Check(form.Heads.FieldByName(u"REMARK")->AsString() == before, u"重新读取后与数据库一致"_s);
}

void FailAndRepeat(TStage &stage, TOrderForm &form)
{
    stage.Head(u"保存中途失败：别的用户抢先用了行号 0005；在事务中回滚、不用事务、原因消除后再保存"_s);
    const QString code = form.Heads.FieldByName(u"BILLCODE")->AsString();
    form.Lines.SetUpdateType(utChanged);
    form.Lines.OpenTable();

    const auto otherSession = stage.NewSession();
    TExTable others; // no master: saved directly
    SetUp(others, stage, u"ORDERLINE"_s);
    others.SetDBSession(otherSession.get());
    others.OpenTable(OrderCondition(code), u"BILLLINE"_s, 0);
    others.Append();
    for (const auto &[field, value] :
         {std::pair(u"BILLTYPE"_s, OrderKind), std::pair(u"BILLCODE"_s, code),
          std::pair(u"BILLLINE"_s, u"0005"_s), std::pair(u"ITEMCODE"_s, u"010101-005"_s)})
        others.SetFieldValue(field, value);
    others.Post();

    form.GoToLine(u"0001"_s);
    form.ChangeQty(99);
    form.AddLine(u"010101-006"_s, 5, 30);
    stage.Check(form.Lines.FieldByName(u"BILLLINE")->AsString() == u"0005"_s, u"内存中新行的行号也是 0005"_s);

    stage.Say(u"在事务中："_s);
    const QString before = QtyInDatabase(stage, code);
    stage.Begin();
    SaveAndFail(stage, form.Lines);
    stage.RollBack();
    stage.Check(QtyInDatabase(stage, code) == before, u"回滚后 0001 的数量仍是 %1"_s.arg(before));
    CheckUnsavedWork(stage, form);

    stage.Say(u"不用事务："_s);
    SaveAndFail(stage, form.Lines);
    stage.Check(QtyInDatabase(stage, code) == u"99"_s, u"失败之前的语句已生效：0001 的数量是 99"_s);
    CheckUnsavedWork(stage, form);

    stage.Say(u"别的用户删去其 0005，再在事务中保存，从第一笔重新执行："_s);
    others.Delete();
    stage.Begin();
    stage.Watch([&] { form.Lines.Save(); });
    stage.Check(form.Lines.ChangeCount() == 0, u"变更记录已清空"_s);
    stage.Say(u"单头的合计，在同一事务中："_s);
    stage.Watch([&] { form.SaveTotals(); });
    stage.Commit();
    stage.ShowInDatabase(u"ORDERLINE"_s, u"BILLCODE;BILLLINE;ITEMCODE;QTY;AMOUNT;CREATOR;MODIFIER"_s,
                         OrderCondition(code));
    stage.Check(stage.CountInDatabase(u"ORDERLINE"_s, OrderCondition(code)) == 4, u"全部写入，共四行"_s);
    CheckTotals(stage, code);
}
