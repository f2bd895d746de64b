// SPDX-License-Identifier: MIT
#include "examples/orders/window/OrderLines.h"

#include <cmath>

using namespace Korvane;
using namespace Qt::StringLiterals;

TOrderLines::TOrderLines(TExQuery &items, QObject *owner) : TExQuery(owner), FItems(items)
{
    SetName(u"Lines"_s);
    SetQuery(u"QORDERLINE"_s);
    SetAutoField(u"BillLine"_s);
    SetHideFields(u"BillType;BillCode"_s);
    SetIndexFieldNames(u"BillLine"_s);
}

void TOrderLines::DoAfterOpen()
{
    TExQuery::DoAfterOpen();
    FIsReordered = false;
    static constexpr std::pair<const char16_t *, int> Widths[] = {
        {u"BillLine", 7}, {u"ItemCode", 12}, {u"ItemName", 14}, {u"SpecName", 14}, {u"UnitName", 5},
        {u"Qty", 11},     {u"Price", 11},    {u"Discount", 7},  {u"Amount", 13},   {u"DeliveryDate", 11},
        {u"WhsCode", 8},  {u"WhsName", 10},  {u"IsClosed", 5},  {u"LineNote", 24}};
    for (const auto &[name, width] : Widths)
        FieldByName(name)->SetDisplayWidth(width);
    TField *code = FieldByName(u"ItemCode");
    code->OnValidate = {this, &TOrderLines::CheckItem};
    code->OnChange = [this](TField *) { TakeItem(); };
    for (const char16_t *name : {u"Qty", u"Price", u"Discount"})
        FieldByName(name)->OnChange = [this](TField *) { Reckon(); };
}

void TOrderLines::Post()
{
    if (State() == dsInsert && IsUntouched())
        Cancel();
    else
        TExQuery::Post();
}

bool TOrderLines::IsUntouched() const
{
    return FieldByName(u"ItemCode")->AsString().trimmed().isEmpty() && FieldByName(u"Qty")->AsFloat() == 0 &&
           FieldByName(u"LineNote")->AsString().trimmed().isEmpty();
}

void TOrderLines::Move(bool up)
{
    const QString line = FieldByName(u"BillLine")->AsString();
    up ? MoveUp() : MoveDown();
    FIsReordered = FIsReordered || ChangeCount() > 0;
    // The line that was moved stays current.
    const int step = up ? -1 : 1;
    Locate(u"BillLine"_s, u"%1"_s.arg(line.toInt() + step, int(line.size()), 10, QLatin1Char('0')));
}

void TOrderLines::Restore(const TDataPacket &lines)
{
    const QString line = FieldByName(u"BillLine")->AsString();
    const bool wasReordered = FIsReordered;
    SetData(lines);
    FIsReordered = wasReordered;
    Locate(u"BillLine"_s, line);
}

// ---- the item -------------------------------------------------------------------------

bool TOrderLines::FindItem()
{
    return Active() && (State() == dsInsert || !IsEmpty()) && FItems.Active() &&
           FItems.Locate(u"ItemCode"_s, FieldByName(u"ItemCode")->AsString().trimmed());
}

void TOrderLines::CheckItem(TField *code)
{
    const QString text = code->AsString().trimmed();
    if (text.isEmpty())
        return;
    if (!FItems.Locate(u"ItemCode"_s, text))
        throw Exception(u"没有编号为“%1”的物料，请重新输入"_s.arg(text));
    if (FItems.FieldByName(u"IsStopped")->AsBoolean())
        throw Exception(u"物料“%1”已经停用，不能再订货"_s.arg(text));
}

void TOrderLines::TakeItem()
{
    if (!FindItem())
        return;
    for (const char16_t *name : {u"ItemName", u"SpecName", u"UnitName", u"Price"})
        FieldByName(name)->SetValue(FItems.FieldByName(name)->Value());
    FieldByName(u"WhsCode")->SetValue(FItems.FieldByName(u"DefaultWhs")->Value());
    FieldByName(u"WhsName")->Clear(); // read with the order again
}

/// In hundredths, as the column keeps it.
void TOrderLines::Reckon()
{
    const double amount = FieldByName(u"Qty")->AsFloat() * FieldByName(u"Price")->AsFloat() *
                          FieldByName(u"Discount")->AsFloat();
    FieldByName(u"Amount")->SetAsFloat(std::round(amount * 100) / 100);
}
