// SPDX-License-Identifier: MIT
#include "platform/controls/GridTesting.h"

namespace Korvane::Testing {

void TGridWindow::Type(const QString &keys)
{
    const auto target = [this]() -> QWidget * {
        QWidget *focus = QApplication::focusWidget();
        return focus ? focus : Grid;
    };
    for (qsizetype i = 0; i < keys.size(); ++i) {
        if (keys[i] != u'<') {
            QTest::keyClicks(target(), keys.mid(i, 1));
            continue;
        }
        const qsizetype end = keys.indexOf(u'>', i);
        const QKeyCombination key = QKeySequence(keys.mid(i + 1, end - i - 1))[0];
        QTest::keyClick(target(), key.key(), key.keyboardModifiers());
        i = end;
    }
}

void TGridWindow::Drag(QPoint from, QPoint to)
{
    QWidget *viewport = Grid->viewport();
    const auto send = [&](QEvent::Type type, QPoint place, Qt::MouseButtons buttons) {
        QMouseEvent event(type, place, viewport->mapToGlobal(place), Qt::LeftButton, buttons, Qt::NoModifier);
        QApplication::sendEvent(viewport, &event);
    };
    send(QEvent::MouseButtonPress, from, Qt::LeftButton);
    send(QEvent::MouseMove, (from + to) / 2, Qt::LeftButton);
    send(QEvent::MouseMove, to, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, to, Qt::NoButton);
}

QString TGridWindow::Place() const
{
    static const char *const states[] = {"inactive", "browse", "edit", "insert"};
    const TGridCell cell = Grid->CurrentCell();
    const TDataSet *set = Grid->DataSet();
    return QStringLiteral("%1,%2 %3%4")
        .arg(cell.Row)
        .arg(cell.Column)
        .arg(QLatin1String(states[set ? set->State() : dsInactive]), Grid->IsEditing() ? QStringLiteral("*") : QString());
}

QString TGridWindow::Titles() const
{
    QStringList titles;
    for (int column = 0; column < Grid->ColumnCount(); ++column)
        titles += Grid->Columns(column)->DisplayLabel();
    return titles.join(u' ');
}

} // namespace Korvane::Testing
