// SPDX-License-Identifier: MIT
#pragma once

#include "examples/orders/window/OrderHeads.h"
#include "examples/orders/window/OrderLines.h"
#include "session/DBSession.h"

namespace Korvane {
class TDBDFile;
}

/// The data of the window: orders with their lines, and items.
///
/// An order is entered as a whole: between NewOrder or ChangeOrder and SaveOrder or CancelOrder the
/// head is in its edit state, the lines change in memory, and the head's totals follow them. What
/// would leave such an order asks first.
class TOrdersData
{
public:
    TOrdersData(Korvane::TDBDFile &design, Korvane::TDBSession &session);
    ~TOrdersData();

    Korvane::TExQuery Items;
    Korvane::TDataSource ItemSource;
    /// The same rows with a position of their own: the item of the current line. Without a dataset
    /// where there is none.
    Korvane::TExQuery LineItem;
    Korvane::TDataSource LineItemSource;
    TOrderHeads Heads;
    Korvane::TDataSource HeadSource;
    TOrderLines Lines;
    Korvane::TDataSource LineSource;

    void Open();
    /// Reads a dataset again, the same row being current.
    void Refresh(Korvane::TExQuery &set);

    bool IsEntering() const { return FIsEntering; }
    void NewOrder(const TOrderHeadValues &values);
    /// Raises Exception for an order that has been checked.
    void ChangeOrder();
    /// Writes head and lines in one transaction. After a failure nothing is written, and all that
    /// was entered is still there.
    void SaveOrder();
    /// Asks, and gives up what was entered.
    void CancelOrder() { Heads.Cancel(); }
    void DeleteOrder();
    /// Saves or gives up the order as the user says. Raises EAbort when the order is to stay.
    void LeaveOrder();
    /// Raises Exception for an item that stands in orders.
    void DeleteItem();

    /// The next number of a kind of order on a day.
    QString NextBillCode(const QString &kind, const QString &date);
    /// The rows of a statement, column by column as texts.
    QList<QStringList> Rows(const QString &statement);

    /// Entering has begun or ended.
    Korvane::TEvent<> OnEntering;
    /// LineItem is another one.
    Korvane::TEvent<> OnLineItem;

private:
    void BeginEntry();
    void EndEntry();
    void BeforeHeadPost();
    void BeforeHeadCancel();
    void HeadEnded();
    void SumUp();
    void ShowLineItem();
    void ItemsOpened();
    void CheckCategory(Korvane::TField *code);
    void CheckUnit(Korvane::TField *code);

    Korvane::TDBSession &FSession;
    bool FIsEntering = false;
    bool FIsSaving = false;
    bool FIsGivingUp = false;
    bool FIsDeleting = false;
    bool FAreLinesSaved = false;
};
