// SPDX-License-Identifier: MIT
#include "examples/orders/window/OrdersData.h"

#include "business/AutoCode.h"
#include "general/Messages.h"
#include "platform/core/ApplicationTitle.h"
#include "platform/core/Cursor.h"
#include "platform/core/Prompts.h"

#include <QScopeGuard>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

const QString OrderKey = QStringLiteral("BillType;BillCode");

QString Quoted(const QString &text) { return u'\'' + QString(text).replace(u'\'', u"''"_s) + u'\''; }

} // namespace

TOrdersData::TOrdersData(TDBDFile &design, TDBSession &session) : Lines(LineItem), FSession(session)
{
    for (TExQuery *set :
         {&Items, &LineItem, static_cast<TExQuery *>(&Heads), static_cast<TExQuery *>(&Lines)}) {
        set->SetDBDFile(&design);
        set->SetDBSession(&session);
    }
    Items.SetName(u"Items"_s);
    Items.SetQuery(u"QITEM"_s);
    Items.AfterOpen = [this](TDataSet *) { ItemsOpened(); };
    LineItem.SetQuery(u"QITEM"_s);
    ItemSource.SetDataSet(&Items);

    HeadSource.SetDataSet(&Heads);
    Heads.BeforePost = [this](TDataSet *) { BeforeHeadPost(); };
    Heads.BeforeCancel = [this](TDataSet *) { BeforeHeadCancel(); };
    Heads.BeforeDelete = [this](TDataSet *) {
        if (FIsDeleting)
            FSession.CommitTrans(); // NOTE: the statements have run; the row in memory goes after this
    };
    Heads.AfterPost = [this](TDataSet *) { HeadEnded(); };
    Heads.AfterCancel = [this](TDataSet *) { HeadEnded(); };

    Lines.SetMasterDataSource(&HeadSource);
    Lines.SetMasterField(OrderKey);
    Lines.SetDetailField(OrderKey);
    LineSource.SetDataSet(&Lines);
    Lines.AfterPost = [this](TDataSet *) { SumUp(); };
    Lines.AfterDelete = [this](TDataSet *) { SumUp(); };
    Lines.AfterScroll = [this](TDataSet *) { ShowLineItem(); };
    LineSource.OnDataChange = [this](TDataSource *, TField *field) {
        if (field && field->FieldName() == u"ItemCode")
            ShowLineItem();
    };
}

TOrdersData::~TOrdersData()
{
    // What the datasets tell while they go is of no use any more.
    Lines.AfterScroll = nullptr;
    LineSource.OnDataChange = nullptr;
    Heads.OnLeave = nullptr;
    FIsEntering = false;
}

void TOrdersData::Open()
{
    Items.OpenTable();
    Heads.OpenTable();
    Lines.OpenTable();
}

void TOrdersData::Refresh(TExQuery &set)
{
    const THourGlass wait;
    const QString key = set.IsEmpty() ? QString() : set.GetKeyValueStr({});
    set.OpenTable();
    if (!key.isEmpty())
        set.LocateA(key);
}

QList<QStringList> TOrdersData::Rows(const QString &statement)
{
    const TDataPacket packet = FSession.Open(statement);
    QList<QStringList> rows;
    for (qsizetype row = 0; row < packet.RowCount(); ++row) {
        QStringList texts;
        for (int column = 0; column < packet.FieldCount(); ++column)
            texts.append(packet.Column(column).IsNull(row) ? QString() : packet.Text(column, row));
        rows.append(texts);
    }
    return rows;
}

QString TOrdersData::NextBillCode(const QString &kind, const QString &date)
{
    TAutoCode code;
    code.SetDBSession(&FSession);
    code.SetTable(u"ORDERHEAD"_s);
    code.SetField(u"BILLCODE"_s);
    code.SetToday(TDateTime(QDate::fromString(date, u"yyyyMMdd"_s)));
    return code.GetAutoCode(kind);
}

// ---- entering an order ----------------------------------------------------------------

void TOrdersData::NewOrder(const TOrderHeadValues &values)
{
    Heads.Append();
    BeginEntry();
    Heads.SetValues(values);
}

void TOrdersData::ChangeOrder()
{
    if (Heads.FieldByName(u"IsChecked")->AsBoolean())
        throw Exception(u"订单 %1 已经审核，不能修改"_s.arg(Heads.OrderName()));
    Heads.Edit();
    BeginEntry();
    SumUp(); // NOTE: a row that has not been written to would be left without asking
}

void TOrdersData::BeginEntry()
{
    FIsEntering = true;
    Heads.OnLeave = {this, &TOrdersData::LeaveOrder};
    // A tick would post the row.
    Heads.FieldByName(u"FSELECTED")->SetReadOnly(true);
    OnEntering();
}

void TOrdersData::EndEntry()
{
    FIsEntering = false;
    Heads.OnLeave = nullptr;
    Heads.FieldByName(u"FSELECTED")->SetReadOnly(false);
    OnEntering();
}

void TOrdersData::SaveOrder()
{
    Lines.CheckBrowseMode();
    if (Lines.IsEmpty())
        throw Exception(u"订单没有明细，不能保存"_s);
    SumUp();
    const THourGlass wait;
    const TDataPacket entered = Lines.Data();
    const auto onLeave = std::exchange(Heads.OnLeave, nullptr);
    FIsSaving = true;
    FAreLinesSaved = false;
    FSession.BeginTrans();
    try {
        Heads.Post(); // on its way BeforeHeadPost writes the lines
    } catch (...) {
        FSession.RollbackTrans();
        FIsSaving = false;
        if (Heads.State() == dsBrowse)
            throw; // all is written; what failed is showing it
        Heads.OnLeave = onLeave;
        if (FAreLinesSaved)
            Lines.Restore(entered); // their changes count as stored in memory, but are not
        throw;
    }
    FIsSaving = false;
}

/// Comes when the head's statements have run and its row is about to be posted in memory. The order
/// is committed here, so that a failure leaves the head in its edit.
void TOrdersData::BeforeHeadPost()
{
    if (!FIsSaving)
        return;
    FAreLinesSaved = true;
    Lines.SetUpdateType(Lines.IsReordered() ? utAll : utChanged);
    Lines.Save();
    FSession.CommitTrans();
}

void TOrdersData::BeforeHeadCancel()
{
    if (!FIsEntering || FIsGivingUp)
        return;
    if (ShowDialog(u"放弃订单 %1 中未保存的内容吗？"_s.arg(Heads.OrderName()), MB_DEFBUTTON2) != IDYES)
        Abort();
}

/// After a post or a cancel of any head, a tick among them: from here on the lines follow the heads
/// again, which they did not while one was edited.
void TOrdersData::HeadEnded()
{
    if (FIsEntering)
        EndEntry();
    Lines.OpenTable();
}

void TOrdersData::LeaveOrder()
{
    if (!FIsEntering)
        return;
    const int answer = Prompts::Current().MessageBox(u"订单 %1 尚未保存。要保存吗？"_s.arg(Heads.OrderName()),
                                                     ApplicationTitle(), MB_YESNOCANCEL | MB_ICONQUESTION);
    if (answer == IDYES)
        return SaveOrder();
    if (answer != IDNO)
        Abort();
    FIsGivingUp = true;
    const auto end = qScopeGuard([this] { FIsGivingUp = false; });
    Heads.Cancel();
}

void TOrdersData::DeleteOrder()
{
    if (Heads.FieldByName(u"IsChecked")->AsBoolean())
        throw Exception(u"订单 %1 已经审核，不能删除"_s.arg(Heads.OrderName()));
    if (ShowDialog(u"删除订单 %1 及其 %2 行明细吗？"_s.arg(Heads.OrderName()).arg(Lines.RecordCount()),
                   MB_DEFBUTTON2) != IDYES)
        return;
    FIsDeleting = true;
    const auto end = qScopeGuard([this] { FIsDeleting = false; });
    FSession.BeginTrans();
    try {
        Lines.DeleteTable();
        Heads.Delete();
    } catch (...) {
        FSession.RollbackTrans();
        throw;
    }
}

/// Puts the sums of the lines into the head that is being entered.
void TOrdersData::SumUp()
{
    if (!FIsEntering || FIsSaving || Heads.State() == dsBrowse)
        return;
    Heads.SetFieldValue(u"TotalQty"_s, Lines.GetSumValue(u"Qty"_s));
    Heads.SetFieldValue(u"Amount"_s, Lines.GetSumValue(u"Amount"_s));
}

// ---- items ----------------------------------------------------------------------------

void TOrdersData::ShowLineItem()
{
    LineItemSource.SetDataSet(Lines.FindItem() ? &LineItem : nullptr);
    OnLineItem();
}

void TOrdersData::ItemsOpened()
{
    static constexpr std::pair<const char16_t *, int> Widths[] = {
        {u"ItemCode", 12},  {u"ItemName", 12}, {u"SpecName", 13},  {u"CateCode", 9}, {u"CateName", 10},
        {u"UnitCode", 9},   {u"UnitName", 6},  {u"DefaultWhs", 9}, {u"BarCode", 14}, {u"Price", 11},
        {u"CostPrice", 11}, {u"Weight", 8},    {u"LeadDays", 7},   {u"SafeQty", 9},  {u"IsStopped", 5},
        {u"Picture", 12},   {u"Note", 28}};
    for (const auto &[name, width] : Widths)
        Items.FieldByName(name)->SetDisplayWidth(width);
    Items.FieldByName(u"CateCode")->OnValidate = {this, &TOrdersData::CheckCategory};
    Items.FieldByName(u"UnitCode")->OnValidate = {this, &TOrdersData::CheckUnit};
    LineItem.CloneCursor(&Items, true);
    ShowLineItem();
}

void TOrdersData::DeleteItem()
{
    const QString code = Items.FieldByName(u"ItemCode")->AsString();
    const QString count = Rows(u"select count(*) from ORDERLINE where ITEMCODE="_s + Quoted(code))[0][0];
    if (count != u"0")
        throw Exception(u"物料 %1 在 %2 行订单明细中使用，不能删除"_s.arg(code, count));
    if (ShowDialog(u"删除物料 %1 吗？"_s.arg(code), MB_DEFBUTTON2) == IDYES)
        Items.Delete();
}

void TOrdersData::CheckCategory(TField *code)
{
    const auto rows = Rows(u"select CATENAME from CATEGORY where CATECODE="_s + Quoted(code->AsString()));
    if (rows.isEmpty())
        throw Exception(u"没有编号为“%1”的物料分类，请重新输入"_s.arg(code->AsString()));
    Items.FieldByName(u"CateName")->SetAsString(rows[0][0]);
}

void TOrdersData::CheckUnit(TField *code)
{
    const auto rows = Rows(u"select UNITNAME from UNIT where UNITCODE="_s + Quoted(code->AsString()));
    if (rows.isEmpty())
        throw Exception(u"没有编号为“%1”的计量单位，请重新输入"_s.arg(code->AsString()));
    Items.FieldByName(u"UnitName")->SetAsString(rows[0][0]);
}
