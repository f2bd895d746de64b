// SPDX-License-Identifier: MIT
#pragma once

#include "controls/ExDBGrid.h"

#include <QWidget>

class QLabel;
class TOrdersData;

/// The page of orders: heads above, the lines of the current one below, and beside them the item of
/// the current line.
class TOrderPage : public QWidget
{
public:
    explicit TOrderPage(TOrdersData &data, QWidget *parent = nullptr);

    Korvane::TExDBGrid &HeadGrid() const { return *FHeadGrid; }
    Korvane::TExDBGrid &LineGrid() const { return *FLineGrid; }
    /// Lines can be written while an order is entered.
    void ShowEntering();
    void ShowLineItem();
    /// Goes to a new line, at its item.
    void BeginLine();

private:
    QWidget *NewItemPanel();

    TOrdersData &FData;
    Korvane::TExDBGrid *FHeadGrid;
    Korvane::TExDBGrid *FLineGrid;
    QLabel *FItemName = nullptr;
    QLabel *FItemSpec = nullptr;
};
