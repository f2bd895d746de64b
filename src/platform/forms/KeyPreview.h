// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>
#include <QList>
#include <QObject>
#include <QPointer>

class QKeyEvent;
class QWidget;

namespace Korvane {

class TForm;

/// Shows keys to the forms that want to see them before the control with the keyboard.
class TKeyPreview : public QObject
{
public:
    /// Once for each application object.
    static void Install();

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    /// A key on its way from the control up to those that it lies in.
    struct TPassing
    {
        const QEvent *Event;
        const QObject *Receiver; // never looked into: it may be gone
        const QObject *Parent;   // where the event goes next if the receiver does not want it
    };

    using QObject::QObject;
    bool IsPassedUp(QWidget *receiver, const QEvent *event);
    bool Show(QWidget *receiver, QKeyEvent *event);
    void Replace(QWidget *receiver, const QKeyEvent &event, int key, QChar character);

    // A handler may show a box with keys of its own, so that there can be several.
    QList<TPassing> FPassing;
    const QEvent *FReplacement = nullptr;
    bool FIsNewKey = false;
};

} // namespace Korvane
