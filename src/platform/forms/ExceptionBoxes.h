// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

namespace Korvane {

/// Shows failures one after the other, and keeps one that comes again and again from filling the screen.
class TExceptionBoxes
{
public:
    /// Waits until the box is answered. While one is up, another text waits for it and the same is dropped.
    void Show(const QString &text);
    /// Drops what waits.
    void Clear() { FWaiting.clear(); }

    /// Whether an event comes by itself, so that a box would only bring it again.
    static bool ComesByItself(QEvent::Type type);
    /// Whether a failure of such an event is to be told: not if it was the receiver's last one too.
    bool IsNews(QObject *receiver, QEvent::Type type, const QString &text);
    /// The next failure is news again. Quick when there was none.
    void Succeeded(const QObject *receiver, QEvent::Type type)
    {
        if (!FLast.isEmpty() && ComesByItself(type))
            FLast.remove({receiver, type});
    }

private:
    struct Failure
    {
        QPointer<QObject> Receiver;
        QString Text;
    };

    QHash<std::pair<const QObject *, int>, Failure> FLast;
    QString FShown;
    QStringList FWaiting;
    bool FIsShowing = false;
};

} // namespace Korvane
