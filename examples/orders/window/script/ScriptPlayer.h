// SPDX-License-Identifier: MIT
#pragma once

#include "examples/orders/window/script/BusyMeter.h"
#include "platform/controls/grid/DBGrid.h"

#include <QObject>

#include <functional>
#include <vector>

/// Plays a user: steps that press keys and the mouse as the window system would, look at what comes
/// of it, and take pictures. Each step has an event of the application's own, so that the steps go on
/// while a message box waits. The program ends with 1 at the first thing that is not so.
class TScriptPlayer : public QObject
{
public:
    TScriptPlayer(QWidget &window, const QString &pictureFolder);

    void Add(const QString &name, std::function<void()> action);
    /// From the next event on.
    void Start();

    // ---- what a user does
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    void Type(const QString &text);
    void Click(QWidget &widget, QPoint place);
    void ClickCell(Korvane::TwwDBGrid &grid, qsizetype row, const QString &field);
    void ClickTitle(Korvane::TwwDBGrid &grid, const QString &field);
    void ClickAction(QAction &action);

    // ---- looking
    /// The window in front: a message box or dialog if there is one.
    QWidget &Front() const;
    /// The text of the message box in front; empty if there is none.
    QString Message() const;
    void Check(bool holds, const QString &claim);
    /// Saves what the user sees: the window, and the box or dialog over it.
    void Picture(const QString &name);

    const TBusyMeter &Meter() const { return FMeter; }

private:
    struct TStep
    {
        QString Name;
        std::function<void()> Action;
    };

    void PlayNext();
    /// Sends an event, whose handling counts.
    void Send(const std::function<void()> &event);
    static int ColumnOf(const Korvane::TwwDBGrid &grid, const QString &field);

    QWidget &FWindow;
    const QString FFolder;
    TBusyMeter FMeter;
    std::vector<TStep> FSteps;
    size_t FNext = 0;
    std::vector<const QWidget *> FPlaying; // the window in front when each step began that is not through
    int FPictures = 0;
    int FActivations = 0; // tried in a row
};
