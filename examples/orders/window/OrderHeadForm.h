// SPDX-License-Identifier: MIT
#pragma once

#include "examples/orders/window/OrderHeads.h"
#include "platform/forms/Form.h"

class QComboBox;
class QDateEdit;
class QFormLayout;
class QLineEdit;
class TOrdersData;

/// The dialog in which the head of an order is entered.
class TOrderHeadForm : public Korvane::TForm
{
public:
    TOrderHeadForm(TOrdersData &data, QWidget *owner);

    /// For a new order, whose number is proposed by its kind and date. False when given up; the values
    /// are then as before.
    bool Enter(TOrderHeadValues &values);
    /// The same for an order that is there: kind and number stay.
    bool Change(TOrderHeadValues &values);

private:
    struct TCustomer
    {
        QString Code, Name, LinkMan, Address;
    };

    void AddFields(QFormLayout &layout);
    void ReadChoices();
    bool Run(TOrderHeadValues &values);
    void ShowValues(const TOrderHeadValues &values);
    TOrderHeadValues Entered() const;
    void ProposeCode();
    void TakeCustomer();
    void Check(bool &mayClose);

    TOrdersData &FData;
    QList<TCustomer> FCustomers;
    bool FIsNew = false;
    QComboBox *FKind;
    QLineEdit *FCode;
    QDateEdit *FDate;
    QComboBox *FCustomer;
    QLineEdit *FLinkMan;
    QLineEdit *FAddress;
    QLineEdit *FNote;
};
