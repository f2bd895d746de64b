// SPDX-License-Identifier: MIT
#include "examples/orders/window/OrderHeadForm.h"

#include "examples/orders/window/OrdersData.h"
#include "platform/forms/Button.h"

#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QLineEdit>
#include <QVBoxLayout>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

const QString StoredDate = QStringLiteral("yyyyMMdd");

QLineEdit *NewEdit(const QString &name, int longest)
{
    auto *edit = new QLineEdit;
    edit->setObjectName(name);
    edit->setMaxLength(longest);
    return edit;
}

} // namespace

TOrderHeadForm::TOrderHeadForm(TOrdersData &data, QWidget *owner)
    : TForm(owner), FData(data), FKind(new QComboBox), FCode(NewEdit(u"HeadCode"_s, 12)),
      FDate(new QDateEdit), FCustomer(new QComboBox), FLinkMan(NewEdit(u"HeadLinkMan"_s, 20)),
      FAddress(NewEdit(u"HeadAddress"_s, 120)), FNote(NewEdit(u"HeadNote"_s, 0x7FFF))
{
    SetName(u"OrderHeadForm"_s);
    SetPosition(poOwnerFormCenter);
    auto *center = new QWidget;
    auto *column = new QVBoxLayout(center);
    auto *fields = new QFormLayout;
    AddFields(*fields);
    column->addLayout(fields);
    column->addSpacing(8);
    auto *buttons = new QHBoxLayout;
    auto *ok = new TButton(u"确定"_s);
    ok->setObjectName(u"HeadOk"_s);
    ok->SetDefault(true);
    ok->SetModalResult(mrOk);
    auto *cancel = new TButton(u"取消"_s);
    cancel->SetCancel(true);
    cancel->SetModalResult(mrCancel);
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    column->addLayout(buttons);
    column->setContentsMargins(16, 16, 16, 12);
    setCentralWidget(center);
    SetSize(center->sizeHint());
    SetBorderStyle(bsDialog); // NOTE: fixes the size
    OnCloseQuery = [this](bool &mayClose) { Check(mayClose); };
}

void TOrderHeadForm::AddFields(QFormLayout &layout)
{
    FDate->setDisplayFormat(u"yyyy-MM-dd"_s);
    FDate->setCalendarPopup(true);
    FKind->setObjectName(u"HeadKind"_s);
    FCustomer->setObjectName(u"HeadCustomer"_s);
    FCustomer->setMinimumContentsLength(30);
    layout.setLabelAlignment(Qt::AlignRight);
    layout.addRow(u"单别"_s, FKind);
    layout.addRow(u"单据日期"_s, FDate);
    layout.addRow(u"单号"_s, FCode);
    layout.addRow(u"客户"_s, FCustomer);
    layout.addRow(u"联系人"_s, FLinkMan);
    layout.addRow(u"送货地址"_s, FAddress);
    layout.addRow(u"备注"_s, FNote);
    connect(FKind, &QComboBox::activated, this, [this] { ProposeCode(); });
    connect(FDate, &QDateEdit::dateChanged, this, [this] { ProposeCode(); });
    connect(FCustomer, &QComboBox::activated, this, [this] { TakeCustomer(); });
}

void TOrderHeadForm::ReadChoices()
{
    FKind->clear();
    for (const QStringList &row :
         FData.Rows(u"select MQ001, MQ002 from SYSMQ where MQ003='22' order by MQ001"_s))
        FKind->addItem(row[0] + u"  "_s + row[1], row[0]);
    FCustomer->clear();
    FCustomers.clear();
    for (const QStringList &row :
         FData.Rows(u"select CUSTCODE, CUSTNAME, CONTACT, ADDRESS from CUSTOMER order by CUSTCODE"_s)) {
        FCustomers.append({row[0], row[1], row[2], row[3]});
        FCustomer->addItem(row[0] + u"  "_s + row[1], row[0]);
    }
}

bool TOrderHeadForm::Enter(TOrderHeadValues &values)
{
    SetCaption(u"新增订单"_s);
    FIsNew = true;
    return Run(values);
}

bool TOrderHeadForm::Change(TOrderHeadValues &values)
{
    SetCaption(u"订单 %1-%2"_s.arg(values.BillType, values.BillCode));
    FIsNew = false;
    return Run(values);
}

bool TOrderHeadForm::Run(TOrderHeadValues &values)
{
    ReadChoices();
    FKind->setEnabled(FIsNew);
    FCode->setEnabled(FIsNew);
    ShowValues(values);
    SetSize(centralWidget()->sizeHint()); // the choices have made it wider
    SetActiveControl(FIsNew ? static_cast<QWidget *>(FKind) : FDate);
    if (ShowModal() != mrOk)
        return false;
    values = Entered();
    return true;
}

void TOrderHeadForm::ShowValues(const TOrderHeadValues &values)
{
    FKind->setCurrentIndex(qMax(0, FKind->findData(values.BillType)));
    const QDate date = QDate::fromString(values.BillDate, StoredDate);
    FDate->setDate(date.isValid() ? date : QDate::currentDate());
    FCode->setText(values.BillCode);
    FCustomer->setCurrentIndex(FCustomer->findData(values.CustCode)); // none for a new order
    FLinkMan->setText(values.LinkMan);
    FAddress->setText(values.ShipAddress);
    FNote->setText(values.Note);
    ProposeCode();
}

TOrderHeadValues TOrderHeadForm::Entered() const
{
    TOrderHeadValues values;
    values.BillType = FKind->currentData().toString();
    values.BillCode = FCode->text().trimmed();
    values.BillDate = FDate->date().toString(StoredDate);
    if (FCustomer->currentIndex() >= 0) {
        values.CustCode = FCustomers[FCustomer->currentIndex()].Code;
        values.CustName = FCustomers[FCustomer->currentIndex()].Name;
    }
    values.LinkMan = FLinkMan->text();
    values.ShipAddress = FAddress->text();
    values.Note = FNote->text();
    return values;
}

void TOrderHeadForm::ProposeCode()
{
    if (FIsNew)
        FCode->setText(
            FData.NextBillCode(FKind->currentData().toString(), FDate->date().toString(StoredDate)));
}

void TOrderHeadForm::TakeCustomer()
{
    const TCustomer &customer = FCustomers[FCustomer->currentIndex()];
    FLinkMan->setText(customer.LinkMan);
    FAddress->setText(customer.Address);
}

/// Keeps the dialog open until what must not be empty is there.
void TOrderHeadForm::Check(bool &mayClose)
{
    if (ModalResult() != mrOk)
        return;
    mayClose = false;
    if (FCode->text().trimmed().isEmpty()) {
        FCode->setFocus();
        throw Exception(u"[单号] 不可空白，请重新输入"_s);
    }
    if (FCustomer->currentIndex() < 0) {
        FCustomer->setFocus();
        throw Exception(u"请选择客户"_s);
    }
    mayClose = true;
}
