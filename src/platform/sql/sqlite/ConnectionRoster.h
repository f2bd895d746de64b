// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

#include <functional>

namespace Korvane {

/// One connection in the roster of a database or a folder of databases.
struct TRosterEntry
{
    int Number = 0; ///< tells the connections of one roster apart; from 1
    QString ApplicationName;
    QString ComputerName;
    QString LoginName;
    QString Database;
    qint64 ProcessId = 0;
    QDateTime Connected;
};

/// Who is connected: a file beside the database with a slot per connection. A slot counts as
/// taken as long as its byte is locked, and a lock goes with its process, so that a killed
/// process leaves nothing behind. The locks belong to the open file description (F_OFD_SETLK
/// of fcntl(2)), so that several connections of one process count as several. The file goes
/// with the last connection.
///
/// Where the file cannot be written, as in a read-only folder, the roster knows only the
/// connection itself.
class TConnectionRoster
{
public:
    explicit TConnectionRoster(QString fileName);
    ~TConnectionRoster();
    TConnectionRoster(const TConnectionRoster &) = delete;
    TConnectionRoster &operator=(const TConnectionRoster &) = delete;

    /// Takes a slot; the entry's number is set by the roster.
    void Join(TRosterEntry entry);
    void Leave();
    /// The number that Join gave, 0 when not joined.
    int Number() const { return FOwn.Number; }
    void SetDatabase(const QString &database);

    /// All connections at this moment, the own one among them, by number.
    QList<TRosterEntry> Entries();
    /// Runs an action with the present connections while nobody can join or leave.
    void WhileClosed(const std::function<void(const QList<TRosterEntry> &)> &action);

private:
    void TakeSlot();
    void WriteSlot();
    bool IsTaken(int slot) const;
    QList<TRosterEntry> ReadEntries();

    QString FFileName;
    int FFile = -1;
    TRosterEntry FOwn;
};

} // namespace Korvane
