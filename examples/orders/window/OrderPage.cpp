// SPDX-License-Identifier: MIT
#include "examples/orders/window/OrderPage.h"

#include "controls/ExDBImage.h"
#include "examples/orders/window/OrdersData.h"

#include <QFrame>
#include <QLabel>
#include <QSplitter>
#include <QVBoxLayout>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int PanelWidth = 200;
constexpr int PictureSize = 160;

QLabel *NewLabel()
{
    auto *label = new QLabel;
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    return label;
}

} // namespace

TOrderPage::TOrderPage(TOrdersData &data, QWidget *parent)
    : QWidget(parent), FData(data), FHeadGrid(new TExDBGrid(this)), FLineGrid(new TExDBGrid(this))
{
    FHeadGrid->setObjectName(u"HeadGrid"_s);
    FHeadGrid->SetTitleButtons(true);
    FHeadGrid->SetFixedCols(3);             // the tick and the order's key
    FHeadGrid->SetKeyOptions(dgEnterToTab); // orders come and go by the actions alone
    FLineGrid->setObjectName(u"LineGrid"_s);
    FLineGrid->SetFixedCols(2);
    FLineGrid->SetOptions(FLineGrid->Options() | dgShowFooter);
    FLineGrid->SetFooterKind(u"Qty"_s, fkSum);
    FLineGrid->SetFooterKind(u"Amount"_s, fkSum);
    FLineGrid->SetReadOnlyFields(FLineGrid->ReadOnlyFields() + u";Amount"_s);

    auto *below = new QSplitter(Qt::Horizontal);
    below->addWidget(FLineGrid);
    below->addWidget(NewItemPanel());
    below->setStretchFactor(0, 1);
    below->setCollapsible(0, false);
    auto *halves = new QSplitter(Qt::Vertical);
    halves->addWidget(FHeadGrid);
    halves->addWidget(below);
    halves->setStretchFactor(0, 3);
    halves->setStretchFactor(1, 2);
    halves->setChildrenCollapsible(false);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(halves);
}

QWidget *TOrderPage::NewItemPanel()
{
    auto *panel = new QFrame;
    panel->setFrameShape(QFrame::StyledPanel);
    panel->setMinimumWidth(PanelWidth);
    auto *layout = new QVBoxLayout(panel);
    auto *picture = new TExDBImage(panel);
    picture->setObjectName(u"ItemPicture"_s);
    picture->setFixedSize(PictureSize, PictureSize);
    picture->SetDataField(u"Picture"_s);
    picture->SetDataSource(&FData.LineItemSource);
    picture->SetReadOnly(true);
    FItemName = NewLabel();
    FItemSpec = NewLabel();
    QFont bold = FItemName->font();
    bold.setBold(true);
    FItemName->setFont(bold);
    layout->addWidget(picture, 0, Qt::AlignHCenter);
    layout->addWidget(FItemName);
    layout->addWidget(FItemSpec);
    layout->addStretch();
    return panel;
}

void TOrderPage::ShowEntering() { FLineGrid->SetReadOnly(!FData.IsEntering()); }

void TOrderPage::BeginLine()
{
    FLineGrid->setFocus();
    FData.Lines.CheckBrowseMode(); // the line before
    FData.Lines.Append();
    for (int column = 0; column < FLineGrid->ColumnCount(); ++column)
        if (FLineGrid->Columns(column)->FieldName() == u"ItemCode")
            FLineGrid->SetSelectedIndex(column);
}

void TOrderPage::ShowLineItem()
{
    if (!FData.LineItemSource.DataSet()) {
        FItemName->clear();
        FItemSpec->clear();
        return;
    }
    const TExQuery &item = FData.LineItem;
    FItemName->setText(item.FieldByName(u"ItemName")->AsString());
    FItemSpec->setText(u"%1\n%2　每%3 %4 元"_s.arg(
        item.FieldByName(u"ItemCode")->AsString(), item.FieldByName(u"SpecName")->AsString(),
        item.FieldByName(u"UnitName")->AsString(), item.FieldByName(u"Price")->DisplayText()));
}
