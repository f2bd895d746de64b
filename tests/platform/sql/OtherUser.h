// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>
#include <QString>

#include <gtest/gtest.h>

namespace Korvane::Testing {

/// A user of a database in another process.
///
///     OtherUser user;
///     EXPECT_EQ(user.Ask("connect", database.ConnectionString()), "ok");
///     EXPECT_EQ(user.Ask("run", "insert into T values(1)"), "1");
class OtherUser
{
public:
    OtherUser()
    {
        FProcess.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        FProcess.start(QStringLiteral(KORVANE_OTHER_USER), QStringList());
        EXPECT_TRUE(FProcess.waitForStarted()) << KORVANE_OTHER_USER;
    }
    OtherUser(const OtherUser &) = delete;
    OtherUser &operator=(const OtherUser &) = delete;
    /// Leaves in good order, unless it was killed.
    ~OtherUser()
    {
        FProcess.closeWriteChannel();
        if (!FProcess.waitForFinished(60'000))
            Kill();
    }

    /// Says what to do, and does not wait.
    void Tell(const QString &word, const QString &text = {})
    {
        FProcess.write((word + QLatin1Char(' ') + text + QLatin1Char('\n')).toUtf8());
        EXPECT_TRUE(FProcess.waitForBytesWritten());
    }
    /// Waits for the answer to what was told.
    QString Answer()
    {
        while (!FProcess.canReadLine())
            if (!FProcess.waitForReadyRead(60'000))
                return QStringLiteral("no answer");
        return QString::fromUtf8(FProcess.readLine()).chopped(1);
    }
    QString Ask(const QString &word, const QString &text = {})
    {
        Tell(word, text);
        return Answer();
    }
    /// Whether an answer comes within some milliseconds.
    bool Answers(int milliseconds)
    {
        return FProcess.canReadLine() || FProcess.waitForReadyRead(milliseconds);
    }
    qint64 ProcessId() const { return FProcess.processId(); }
    /// As by a signal that no program can catch.
    void Kill()
    {
        FProcess.kill();
        FProcess.waitForFinished(60'000);
    }

private:
    QProcess FProcess;
};

} // namespace Korvane::Testing
