// SPDX-License-Identifier: MIT
#include "examples/orders/road/OrderForm.h"
#include "examples/orders/road/Stage.h"
#include "examples/orders/road/Steps.h"
#include "platform/core/TryFinally.h"

using namespace Korvane;
using namespace Qt::StringLiterals;

QString ChangeKey(TStage &stage, TOrderForm &form)
{
    stage.Head(u"修改主键，在事务中：单头直接保存（按旧主键查找），明细用 utAll 换上新单号"_s);
    const QString oldCode = form.Heads.FieldByName(u"BILLCODE")->AsString();
    const QString newCode = u"20240600900"_s;
    form.Lines.SetUpdateType(utAll);
    stage.Begin();
    stage.Watch([&] {
        // The lines keep what they have read, under the old number, until they are saved: only
        // then do they hear of the head's change, and read anew.
        WithControlsDisabled(form.Heads, [&] {
            form.Heads.Edit();
            form.Heads.SetFieldValue(u"BILLCODE"_s, newCode);
            form.Heads.Post();
            form.Lines.Save();
        });
    });
    stage.Commit();
    stage.ShowInDatabase(u"ORDERHEAD"_s, u"BILLTYPE;BILLCODE;CUSTCODE;AMOUNT;CREATOR;MODIFIER"_s,
                         OrderCondition(newCode));
    stage.ShowInDatabase(u"ORDERLINE"_s, u"BILLCODE;BILLLINE;ITEMCODE;QTY;AMOUNT;MODIFIER"_s,
                         OrderCondition(newCode));
    stage.Check(stage.CountInDatabase(u"ORDERHEAD"_s, OrderCondition(oldCode)) == 0 &&
                    stage.CountInDatabase(u"ORDERLINE"_s, OrderCondition(oldCode)) == 0,
                u"旧单号下没有单头和明细"_s);
    stage.Check(stage.CountInDatabase(u"ORDERHEAD"_s, OrderCondition(newCode)) == 1 &&
                    stage.CountInDatabase(u"ORDERLINE"_s, OrderCondition(newCode)) == 3,
                u"新单号下有一行单头和三行明细"_s);
    stage.Check(form.Lines.RecordCount() == 3, u"明细随单头重新读取"_s);
    return newCode;
}
