// SPDX-License-Identifier: MIT
#pragma once

#include "platform/controls/grid/DBGrid.h"
#include "support/DataSets.h"

#include <QSignalSpy>
#include <QTest>

namespace Korvane::Testing {

/// A grid in a window of its own, on a dataset, which is the caller's.
class TGridWindow
{
public:
    explicit TGridWindow(TDataSet &set) : FSource(std::make_unique<TDataSource>())
    {
        FSource->SetDataSet(&set);
        Grid->SetDataSource(FSource.get());
        FWindow.resize(640, 300);
        Grid->resize(640, 300);
        FWindow.show();
        QApplication::setActiveWindow(&FWindow);
        Grid->setFocus();
    }

    TwwDBGrid *operator->() const { return Grid; }
    TwwDBGrid &operator*() const { return *Grid; }

    /// Presses keys: letters as they are, others by name in brackets: "12<Enter><Shift+Tab>". They go
    /// to whatever has the focus.
    void Type(const QString &keys);
    /// Clicks into the middle of a cell.
    void Click(qsizetype row, int column, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(Grid->viewport(), Qt::LeftButton, modifiers,
                          Grid->CellRect({row, column}).center());
    }
    QPoint TitleOf(int column) const { return Grid->Layout().TitleRect(column).center(); }
    void ClickTitle(int column) { QTest::mouseClick(Grid->viewport(), Qt::LeftButton, {}, TitleOf(column)); }
    void Drag(QPoint from, QPoint to);

    /// "row,column" from 0, and the state of the dataset: "1,2 edit"; with "*" while an editor is open.
    QString Place() const;
    /// The titles shown.
    QString Titles() const;

    QWidget FWindow;
    TwwDBGrid *const Grid = new TwwDBGrid(&FWindow);
    std::unique_ptr<TDataSource> FSource;
};

} // namespace Korvane::Testing
