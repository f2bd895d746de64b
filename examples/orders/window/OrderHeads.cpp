// SPDX-License-Identifier: MIT
#include "examples/orders/window/OrderHeads.h"

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

struct TEnteredField
{
    const char16_t *Name;
    QString TOrderHeadValues::*Value;
};

constexpr TEnteredField EnteredFields[] = {
    {u"BillType", &TOrderHeadValues::BillType},       {u"BillCode", &TOrderHeadValues::BillCode},
    {u"BillDate", &TOrderHeadValues::BillDate},       {u"CustCode", &TOrderHeadValues::CustCode},
    {u"CustName", &TOrderHeadValues::CustName},       {u"LinkMan", &TOrderHeadValues::LinkMan},
    {u"ShipAddress", &TOrderHeadValues::ShipAddress}, {u"Note", &TOrderHeadValues::Note},
};

} // namespace

TOrderHeads::TOrderHeads(QObject *owner) : TExQuery(owner)
{
    SetName(u"Heads"_s);
    SetQuery(u"QORDERHEAD"_s);
    SetAllowSelect(true);
    SetFirstRows(100); // the window is there at once, however many orders there are
}

void TOrderHeads::Post()
{
    if (OnLeave)
        OnLeave();
    else
        TExQuery::Post();
}

TOrderHeadValues TOrderHeads::Values() const
{
    TOrderHeadValues values;
    for (const TEnteredField &field : EnteredFields)
        values.*field.Value = FieldByName(field.Name)->AsString().trimmed();
    return values;
}

void TOrderHeads::SetValues(const TOrderHeadValues &values)
{
    for (const TEnteredField &field : EnteredFields)
        FieldByName(field.Name)->SetAsString(values.*field.Value);
}

QString TOrderHeads::OrderName() const
{
    return FieldByName(u"BillType")->AsString() + u'-' + FieldByName(u"BillCode")->AsString();
}

void TOrderHeads::DoAfterOpen()
{
    TExQuery::DoAfterOpen();
    static constexpr std::pair<const char16_t *, int> Widths[] = {
        {u"BillType", 5}, {u"BillCode", 13},    {u"BillDate", 11}, {u"CustCode", 8}, {u"CustName", 24},
        {u"LinkMan", 8},  {u"ShipAddress", 30}, {u"CurrCode", 5},  {u"CurrRate", 6}, {u"TotalQty", 12},
        {u"Amount", 14},  {u"PrintCount", 8},   {u"IsChecked", 5}, {u"Checker", 8},  {u"Note", 28}};
    for (const auto &[name, width] : Widths)
        FieldByName(name)->SetDisplayWidth(width);
}

void TOrderHeads::DoOnNewRecord()
{
    TExQuery::DoOnNewRecord();
    FieldByName(u"FSELECTED")->SetAsString(u"N"_s);
}
