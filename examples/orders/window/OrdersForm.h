// SPDX-License-Identifier: MIT
#pragma once

#include "controls/ExDBGrid.h"
#include "examples/orders/window/OrderActions.h"
#include "examples/orders/window/OrdersData.h"
#include "platform/forms/Form.h"

class QLabel;
class QTabWidget;
class TOrderHeadForm;
class TOrderPage;

/// The main window: orders on one page, items on the other.
class TOrdersForm : public Korvane::TForm
{
public:
    TOrdersForm(Korvane::TDBDFile &design, Korvane::TDBSession &session);
    ~TOrdersForm() override;

    TOrdersData &Data() { return FData; }
    TOrderActions &Actions() { return FActions; }
    TOrderPage &OrderPage() const { return *FOrderPage; }
    Korvane::TExDBGrid &ItemGrid() const { return *FItemGrid; }
    QTabWidget &Pages() const { return *FPages; }

private:
    void MakePages();
    void MakeBars();
    void MakeStatusBar();
    void ConnectActions();
    void ShowPage();
    void ShowState();
    void ShowEntering();

    bool AreOrdersInFront() const;
    Korvane::TExQuery &Rows();
    void Insert();
    void Update();
    void ChangeHead();
    void Delete();
    void Save();
    void Cancel();
    void AskToClose(bool &mayClose);

    TOrdersData FData;
    TOrderActions FActions;
    QTabWidget *FPages = nullptr;
    TOrderPage *FOrderPage = nullptr;
    Korvane::TExDBGrid *FItemGrid = nullptr;
    TOrderHeadForm *FHeadForm = nullptr;
    QLabel *FPlace = nullptr;
    QLabel *FMode = nullptr;
};
