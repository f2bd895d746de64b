// SPDX-License-Identifier: MIT
#include "OrdersRecords.h" // generated from the design by the build
#include "examples/orders/road/OrderForm.h"
#include "examples/orders/road/Stage.h"
#include "examples/orders/road/Steps.h"

#include <cmath>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

/// The sum of the lines, from records of the class that the build made from the design.
double AmountOf(TExTable &lines)
{
    double amount = 0;
    for (const auto &record : lines.GetDBObjects())
        amount += static_cast<const TOrderLine &>(*record).Amount;
    return amount;
}

} // namespace

void WalkOrders(TStage &stage)
{
    stage.Head(u"主从浏览：单头每移动一行，明细自动读取该单的各行（前三张订单）"_s);
    TOrderForm form(stage);
    form.Heads.OpenTable(u"BILLTYPE='%1'"_s.arg(OrderKind), u"BILLCODE"_s, 3);
    form.Follow();
    stage.Check(form.Heads.RecordCount() == 3, u"条件、排序和行数限制取得三张单头"_s);
    for (form.Heads.First(); !form.Heads.Eof(); form.Heads.Next()) {
        const QString code = form.Heads.FieldByName(u"BILLCODE")->AsString();
        stage.Say(u"单头 %1，客户 %2，金额 %3"_s.arg(code, form.Heads.FieldByName(u"CUSTCODE")->AsString(),
                                                     form.Heads.FieldByName(u"AMOUNT")->DisplayText()));
        stage.ShowInMemory(form.Lines, u"BILLCODE;BILLLINE;ITEMCODE;QTY;PRICE;DISCOUNT;AMOUNT"_s);
        stage.Check(form.Lines.RecordCount() == stage.CountInDatabase(u"ORDERLINE"_s, OrderCondition(code)),
                    u"明细 %1 行，与数据库一致"_s.arg(form.Lines.RecordCount()));
        stage.Check(std::abs(AmountOf(form.Lines) - form.Heads.FieldByName(u"AMOUNT")->AsFloat()) < 0.005,
                    u"由记录对象合计的金额等于单头金额"_s);
    }
}
