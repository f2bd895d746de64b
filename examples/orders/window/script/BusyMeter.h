// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QObject>

/// Measures for how long at most the event loop did not come to wait: the time in which a user's key
/// would have got no answer. It may span several events. Made after the application; needs a
/// dispatcher that tells when it waits, see main.cpp.
class TBusyMeter : public QObject
{
public:
    TBusyMeter();

    /// What is going on from here on, for the report.
    void SetWork(const QString &work) { FWork = work; }
    /// What has passed until now was not the window's.
    void Restart();
    /// Counts what has passed since Restart, or since the first event after the loop waited.
    void Count();

    double LongestMs() const { return FLongestMs; }
    const QString &LongestWork() const { return FLongestWork; }

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    QElapsedTimer FTimer;
    bool FIsWaiting = false;
    QString FWork, FLongestWork;
    double FLongestMs = 0;
};
