// SPDX-License-Identifier: MIT
#include "examples/orders/road/OrderForm.h"
#include "examples/orders/road/Stage.h"
#include "examples/orders/road/Steps.h"

using namespace Korvane;
using namespace Qt::StringLiterals;

void DeleteOrder(TStage &stage, TOrderForm &form)
{
    stage.Head(u"删除整张订单，在事务中：DeleteTable 删除明细，Delete 删除单头（直接保存）"_s);
    const QString code = form.Heads.FieldByName(u"BILLCODE")->AsString();
    stage.Begin();
    stage.Watch([&] {
        form.Lines.DeleteTable();
        form.Heads.Delete();
    });
    stage.Commit();
    stage.Check(stage.CountInDatabase(u"ORDERHEAD"_s, OrderCondition(code)) == 0 &&
                    stage.CountInDatabase(u"ORDERLINE"_s, OrderCondition(code)) == 0,
                u"数据库中已没有这张订单"_s);
    stage.Check(form.Heads.IsEmpty() && form.Lines.IsEmpty(), u"内存中也没有"_s);
}
