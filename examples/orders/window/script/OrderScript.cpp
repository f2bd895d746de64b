// SPDX-License-Identifier: MIT
#include "examples/orders/window/script/OrderScript.h"

#include "examples/orders/window/OrderPage.h"
#include "examples/orders/window/OrdersForm.h"

#include <QComboBox>
#include <QGuiApplication>
#include <QTabBar>
#include <QTabWidget>
#include <QTextStream>

#include <cmath>
#include <cstdlib>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

// The limit for a program that is optimised, at 100 %.
constexpr double LongestMs = 100;
#ifdef NDEBUG
constexpr bool IsOptimised = true;
#else
constexpr bool IsOptimised = false;
#endif

const QString PicturedItem = QStringLiteral("010201-005");

bool IsSame(double a, double b) { return std::fabs(a - b) < 0.005; }

} // namespace

TOrderScript::TOrderScript(TOrdersForm &form, const QString &pictureFolder)
    : FForm(form), FPlayer(form, pictureFolder)
{
    AddLooking();
    AddChanging();
    AddMistakes();
    AddSaving();
    AddNewOrder();
    AddItems();
    AddEnd();
}

// ---- looking at the data --------------------------------------------------------------

QString TOrderScript::HeadText(const char16_t *field) const
{
    return FForm.Data().Heads.FieldByName(field)->AsString().trimmed();
}

double TOrderScript::LineNumber(const char16_t *field) const
{
    return FForm.Data().Lines.FieldByName(field)->AsFloat();
}

QString TOrderScript::InDatabase(const QString &statement) const
{
    const auto rows = FForm.Data().Rows(statement);
    return rows.isEmpty() ? QString() : rows[0][0];
}

QString TOrderScript::OrderCondition() const
{
    return u"BILLTYPE='%1' and BILLCODE='%2'"_s.arg(HeadText(u"BillType"), HeadText(u"BillCode"));
}

void TOrderScript::CheckStored(const QString &claim)
{
    const auto number = [&](const QString &what) {
        return InDatabase(u"select "_s + what + u" where "_s + FOrder).toDouble();
    };
    FPlayer.Check(number(u"count(*) from ORDERHEAD"_s) == 1 &&
                      IsSame(number(u"AMOUNT from ORDERHEAD"_s), number(u"sum(AMOUNT) from ORDERLINE"_s)) &&
                      IsSame(number(u"TOTALQTY from ORDERHEAD"_s), number(u"sum(QTY) from ORDERLINE"_s)),
                  claim);
}

// ---- the steps ------------------------------------------------------------------------

void TOrderScript::AddLooking()
{
    TOrdersData &data = FForm.Data();
    TExDBGrid &heads = FForm.OrderPage().HeadGrid();
    FPlayer.Add(u"看打开的窗口"_s, [&] {
        FOrderCount = int(data.Heads.RecordCount());
        FPlayer.Check(FForm.Caption() == u"订单管理" && FForm.isActiveWindow(), u"窗口“订单管理”在最前"_s);
        FPlayer.Check(FOrderCount > 0 &&
                          FOrderCount == InDatabase(u"select count(*) from ORDERHEAD"_s).toInt(),
                      u"单头 %1 笔"_s.arg(FOrderCount));
        FPlayer.Check(!FForm.Actions().Save.Enabled() && !FForm.Actions().AddLine.Enabled() &&
                          !FForm.Actions().Prior.Enabled() && FForm.Actions().Next.Enabled(),
                      u"浏览时不能保存、加行；第一笔不能再往前"_s);
        FPlayer.Picture(u"open"_s);
    });
    FPlayer.Add(u"点标题排序"_s, [&] {
        FPlayer.ClickTitle(heads, u"BillDate"_s);
        FPlayer.ClickTitle(heads, u"BillDate"_s); // the other way round
        FPlayer.ClickAction(FForm.Actions().First);
        FPlayer.Check(HeadText(u"BillDate") == InDatabase(u"select max(BILLDATE) from ORDERHEAD"_s),
                      u"按日期由近到远，第一笔是 %1"_s.arg(HeadText(u"BillDate")));
    });
    FPlayer.Add(u"往下走"_s, [&] {
        FPlayer.ClickCell(heads, 0, u"BillCode"_s);
        for (int row = 0; row < 3; ++row)
            FPlayer.Key(Qt::Key_Down);
        FPlayer.ClickAction(FForm.Actions().Next);
        FPlayer.Check(
            data.Heads.RecNo() == 5 && data.Lines.RecordCount() > 0 &&
                data.Lines.FieldByName(u"BillCode")->AsString() == HeadText(u"BillCode"),
            u"第 5 笔 %1，明细 %2 行随之"_s.arg(data.Heads.OrderName()).arg(data.Lines.RecordCount()));
        FPlayer.Picture(u"walked"_s);
    });
    FPlayer.Add(u"勾选两笔"_s, [&] {
        FPlayer.ClickCell(heads, 1, u"FSELECTED"_s);
        FPlayer.ClickCell(heads, 3, u"FSELECTED"_s);
        const auto values = data.Heads.CloneData();
        int ticked = 0;
        for (values->First(); !values->Eof(); values->Next())
            ticked += values->FieldByName(u"FSELECTED")->AsString() == u"Y";
        FPlayer.Check(ticked == 2, u"两笔已勾选"_s);
        FPlayer.Key(Qt::Key_Down);
        FPlayer.Check(data.Lines.FieldByName(u"BillCode")->AsString() == HeadText(u"BillCode"),
                      u"明细仍随单头"_s);
        FPlayer.Picture(u"ticked"_s);
    });
}

void TOrderScript::AddChanging()
{
    TOrdersData &data = FForm.Data();
    TExDBGrid &lines = FForm.OrderPage().LineGrid();
    FPlayer.Add(u"修改未审核的订单"_s, [&] {
        FPlayer.ClickAction(FForm.Actions().First);
        for (int row = 0; row < 40 && HeadText(u"IsChecked") == u"Y"; ++row)
            FPlayer.Key(Qt::Key_Down);
        FOrder = OrderCondition();
        FLineCount = data.Lines.RecordCount();
        FPlayer.Key(Qt::Key_E, Qt::ControlModifier);
        FPlayer.Check(data.IsEntering() && data.Lines.RecordCount() == FLineCount,
                      u"订单 %1 在修改状态"_s.arg(data.Heads.OrderName()));
        FPlayer.Check(FForm.Actions().Save.Enabled() && FForm.Actions().AddLine.Enabled() &&
                          !FForm.Actions().Next.Enabled() && !FForm.Actions().Insert.Enabled(),
                      u"可以保存、加行，不能移动、新增"_s);
    });
    FPlayer.Add(u"改数量"_s, [&] {
        FPlayer.ClickCell(lines, 0, u"Qty"_s);
        FPlayer.Type(u"25"_s);
        FPlayer.Key(Qt::Key_Return);
        const double amount = LineNumber(u"Qty") * LineNumber(u"Price") * LineNumber(u"Discount");
        FPlayer.Check(LineNumber(u"Qty") == 25 &&
                          IsSame(LineNumber(u"Amount"), std::round(amount * 100) / 100),
                      u"数量 25，金额随之为 %1"_s.arg(LineNumber(u"Amount"), 0, 'f', 2));
        FPlayer.Picture(u"quantity"_s);
    });
    FPlayer.Add(u"在末行末格回车，加一行"_s, [&] {
        FPlayer.ClickCell(lines, data.Lines.RecordCount() - 1, u"ItemCode"_s);
        FPlayer.Key(Qt::Key_End);
        FPlayer.Key(Qt::Key_Return);
        FPlayer.Check(data.Lines.State() == dsInsert, u"新的一行"_s);
        FPlayer.Type(PicturedItem);
        FPlayer.Key(Qt::Key_Return);
        FPlayer.Check(LineNumber(u"Price") > 0 &&
                          IsSame(LineNumber(u"Price"), data.LineItem.FieldByName(u"Price")->AsFloat()) &&
                          !data.Lines.FieldByName(u"UnitName")->AsString().isEmpty(),
                      u"单价、单位取自物料"_s);
        FPlayer.Type(u"12"_s);
        FPlayer.Key(Qt::Key_Return);
        FPlayer.Check(LineNumber(u"Qty") == 12 && LineNumber(u"Amount") > 0, u"数量 12，已算出金额"_s);
        FPlayer.Picture(u"line"_s);
    });
}

void TOrderScript::AddMistakes()
{
    TOrdersData &data = FForm.Data();
    TExDBGrid &lines = FForm.OrderPage().LineGrid();
    TExDBGrid &heads = FForm.OrderPage().HeadGrid();
    FPlayer.Add(u"输入不存在的物料编号"_s, [&] {
        FPlayer.ClickCell(
            lines, data.Lines.State() == dsInsert ? data.Lines.InsertPosition() : data.Lines.RecNo() - 1,
            u"ItemCode"_s);
        FPlayer.Type(u"X99"_s);
        FPlayer.Key(Qt::Key_Return); // goes on when the box is closed
    });
    FPlayer.Add(u"看消息框并关闭"_s, [&] {
        FPlayer.Check(FPlayer.Message().contains(u"没有编号为“X99”的物料"),
                      u"消息框：%1"_s.arg(FPlayer.Message()));
        FPlayer.Picture(u"message"_s);
        FPlayer.Key(Qt::Key_Return);
    });
    FPlayer.Add(u"放弃这一格"_s, [&] {
        FPlayer.Check(FPlayer.Message().isEmpty() && lines.IsEditing(), u"仍在这一格，所输入的还在"_s);
        FPlayer.Key(Qt::Key_Escape);
        FPlayer.Check(data.Lines.FieldByName(u"ItemCode")->AsString() == PicturedItem,
                      u"编号还是 %1"_s.arg(PicturedItem));
    });
    FPlayer.Add(u"不保存就去别的订单"_s, [&] {
        const qsizetype row = data.Heads.RecNo() - 1;
        FPlayer.ClickCell(heads, row + 1, u"BillCode"_s);
    });
    FPlayer.Add(u"回答“取消”"_s, [&] {
        FPlayer.Check(FPlayer.Message().contains(u"尚未保存"), u"消息框：%1"_s.arg(FPlayer.Message()));
        FPlayer.Picture(u"question"_s);
        FPlayer.Key(Qt::Key_Escape);
    });
    FPlayer.Add(u"还在原来的订单"_s, [&] {
        FPlayer.Check(FPlayer.Message().isEmpty() && data.IsEntering() && OrderCondition() == FOrder,
                      u"订单还在修改状态"_s);
        FPlayer.Check(data.Lines.RecordCount() == FLineCount + 1, u"明细 %1 行都在"_s.arg(FLineCount + 1));
    });
}

void TOrderScript::AddSaving()
{
    TOrdersData &data = FForm.Data();
    FPlayer.Add(u"保存"_s, [&] {
        FPlayer.Key(Qt::Key_S, Qt::ControlModifier);
        FPlayer.Check(!data.IsEntering() && data.Lines.ChangeCount() == 0, u"已保存，回到浏览状态"_s);
        CheckStored(u"数据库中，单头的合计等于明细的合计"_s);
        FPlayer.Check(InDatabase(u"select count(*) from ORDERLINE where "_s + FOrder).toInt() ==
                              FLineCount + 1 &&
                          InDatabase(u"select QTY from ORDERLINE where %1 order by BILLLINE"_s.arg(FOrder))
                                  .toDouble() == 25,
                      u"数据库中，明细多了一行，第一行的数量为 25"_s);
        FPlayer.ClickCell(FForm.OrderPage().LineGrid(), FLineCount, u"ItemName"_s);
        FPlayer.Picture(u"saved"_s);
    });
    FPlayer.Add(u"明细上移后保存"_s, [&] {
        FPlayer.Key(Qt::Key_E, Qt::ControlModifier);
        FPlayer.ClickCell(FForm.OrderPage().LineGrid(), FLineCount, u"ItemName"_s);
        const QString item = data.Lines.FieldByName(u"ItemCode")->AsString();
        FPlayer.ClickAction(FForm.Actions().Up);
        FPlayer.Check(data.Lines.RecNo() == FLineCount &&
                          data.Lines.FieldByName(u"ItemCode")->AsString() == item,
                      u"%1 上移了一行"_s.arg(item));
        FPlayer.ClickAction(FForm.Actions().Save);
        FPlayer.Check(
            InDatabase(u"select ITEMCODE from ORDERLINE where %1 and BILLLINE='%2'"_s.arg(FOrder).arg(
                FLineCount, 4, 10, QLatin1Char('0'))) == item,
            u"数据库中也是第 %1 行"_s.arg(FLineCount));
        CheckStored(u"合计不变"_s);
    });
}

void TOrderScript::AddNewOrder()
{
    TOrdersData &data = FForm.Data();
    FPlayer.Add(u"新增订单"_s, [&] { FPlayer.Key(Qt::Key_N, Qt::ControlModifier); });
    FPlayer.Add(u"填写单头"_s, [&] {
        auto *customer = FPlayer.Front().findChild<QComboBox *>(u"HeadCustomer"_s);
        FPlayer.Check(customer != nullptr, u"对话框“%1”"_s.arg(FPlayer.Front().windowTitle()));
        for (int field = 0; field < 8 && !customer->hasFocus(); ++field)
            FPlayer.Key(Qt::Key_Tab); // a date has several parts
        FPlayer.Check(customer->hasFocus(), u"光标在客户"_s);
        FPlayer.Type(u"C0007"_s);
        FPlayer.Check(customer->currentData().toString() == u"C0007",
                      u"客户 %1"_s.arg(customer->currentText()));
        FPlayer.Picture(u"head"_s);
        FPlayer.Key(Qt::Key_Return);
    });
    FPlayer.Add(u"填写明细并保存"_s, [&] {
        FPlayer.Check(data.IsEntering() && data.Lines.State() == dsInsert,
                      u"订单 %1 在新增状态"_s.arg(data.Heads.OrderName()));
        FOrder = OrderCondition();
        FPlayer.Type(u"010101-001"_s);
        FPlayer.Key(Qt::Key_Return);
        FPlayer.Type(u"3"_s);
        FPlayer.Key(Qt::Key_Return);
        FPlayer.Picture(u"new"_s);
        FPlayer.ClickAction(FForm.Actions().Save);
        FPlayer.Check(!data.IsEntering() && data.Heads.RecordCount() == FOrderCount + 1, u"已保存"_s);
        CheckStored(u"数据库中有这笔订单"_s);
    });
    FPlayer.Add(u"删除订单"_s, [&] { FPlayer.Key(Qt::Key_D, Qt::ControlModifier); });
    FPlayer.Add(u"回答“是”"_s, [&] {
        FPlayer.Check(FPlayer.Message().startsWith(u"删除订单"), u"消息框：%1"_s.arg(FPlayer.Message()));
        FPlayer.Key(Qt::Key_Y, Qt::AltModifier);
    });
    FPlayer.Add(u"订单已删除"_s, [&] {
        FPlayer.Check(data.Heads.RecordCount() == FOrderCount &&
                          InDatabase(u"select count(*) from ORDERHEAD where "_s + FOrder).toInt() == 0 &&
                          InDatabase(u"select count(*) from ORDERLINE where "_s + FOrder).toInt() == 0,
                      u"单头和明细都没有了"_s);
    });
}

void TOrderScript::AddItems()
{
    TOrdersData &data = FForm.Data();
    TExDBGrid &grid = FForm.ItemGrid();
    FPlayer.Add(u"物料"_s, [&] {
        QTabBar &tabs = *FForm.Pages().tabBar();
        FPlayer.Click(tabs, tabs.tabRect(1).center());
        FPlayer.Check(grid.isVisible() && data.Items.RecordCount() > 0,
                      u"物料 %1 笔"_s.arg(data.Items.RecordCount()));
        FPlayer.Check(!FForm.Actions().AddLine.Enabled() && FForm.Actions().Insert.Enabled(),
                      u"工具栏随页而变"_s);
    });
    FPlayer.Add(u"看图片"_s, [&] {
        FPlayer.ClickCell(grid, 0, u"ItemCode"_s);
        while (data.Items.FieldByName(u"ItemCode")->AsString() != PicturedItem && !data.Items.Eof())
            FPlayer.Key(Qt::Key_Down);
        FPlayer.Picture(u"items"_s);
    });
    FPlayer.Add(u"改单价，离开这一行就保存"_s, [&] {
        FPlayer.ClickCell(grid, data.Items.RecNo() - 1, u"Price"_s);
        FPlayer.Type(u"88.5"_s);
        FPlayer.Key(Qt::Key_Down);
        FPlayer.Check(
            data.Items.State() == dsBrowse &&
                InDatabase(u"select PRICE from ITEM where ITEMCODE='%1'"_s.arg(PicturedItem)).toDouble() ==
                    88.5,
            u"数据库中，%1 的单价为 88.5"_s.arg(PicturedItem));
    });
    FPlayer.Add(u"看最右边的图片栏"_s, [&] {
        FPlayer.ClickCell(grid, data.Items.RecNo() - 1, u"ItemCode"_s);
        FPlayer.Key(Qt::Key_Up);
        FPlayer.Key(Qt::Key_End);
        FPlayer.Picture(u"items-right"_s);
    });
}

void TOrderScript::AddEnd()
{
    FPlayer.Add(u"关闭窗口"_s, [&] {
        const TBusyMeter &meter = FPlayer.Meter();
        const double scale = FForm.devicePixelRatioF();
        const QString told = u"最长一次 %1 毫秒没有响应（%2），比例 %3 %，%4"_s.arg(
            QString::number(meter.LongestMs(), 'f', 1), meter.LongestWork(), QString::number(scale * 100),
            IsOptimised ? u"优化版"_s : u"调试版"_s);
        FPlayer.Check(!IsOptimised || scale > 1 || meter.LongestMs() < LongestMs, told);
        FPlayer.Key(Qt::Key_F4, Qt::AltModifier);
        FPlayer.Check(!FForm.isVisible(), u"窗口已关闭"_s);
    });
}
