// SPDX-License-Identifier: MIT
#include "CopyBenchmarks.h"

#include "LargeTable.h"
#include "platform/sql/sqlite/DatabaseFile.h"
#include "platform/sql/sqlite/SqliteDatabase.h"
#include "session/DBSession.h"

#include <QDir>
#include <QFile>

#include <sqlite3.h>

#include <fcntl.h>
#include <unistd.h>

namespace Bench {

using namespace Korvane;

namespace {

/// The engine's own copy, in one step, and on disk when it is done.
void BackupByEngine(const QString &source, const QString &target)
{
    {
        TSqliteDatabase from(source, TSqliteOpen::ReadWrite);
        TSqliteDatabase to(target, TSqliteOpen::Create);
        to.Run("pragma synchronous=full");
        sqlite3_backup *backup = sqlite3_backup_init(to.Handle(), "main", from.Handle(), "main");
        if (sqlite3_backup_step(backup, -1) != SQLITE_DONE || sqlite3_backup_finish(backup) != SQLITE_OK)
            qFatal("%s: %s", qUtf8Printable(target), sqlite3_errmsg(to.Handle()));
    }
    const int file = ::open(QFile::encodeName(target).constData(), O_RDWR | O_CLOEXEC);
    if (file < 0 || ::fsync(file) != 0 || ::close(file) != 0)
        qFatal("cannot bring %s to disk", qUtf8Printable(target));
}

/// The bytes of a database file without what the head says of its journal and its writer.
QByteArray PagesOf(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qUtf8Printable(fileName));
    QByteArray bytes = file.readAll();
    for (const auto &[begin, size] : {std::pair(18, 2), std::pair(24, 4), std::pair(92, 8)})
        bytes.replace(begin, size, QByteArray(size, 0));
    return bytes;
}

bool HoldsTheRows(const QString &fileName)
{
    TSqliteDatabase database(fileName, TSqliteOpen::ReadOnly);
    return database.Value("select count(*) from LARGEITEM") == QString::number(LargeRows) &&
           database.Value("pragma integrity_check") == QLatin1String("ok");
}

} // namespace

QList<TComparison> CopyComparisons(const std::shared_ptr<TLargeTable> &table, const QString &folder)
{
    const QString ours = QDir(folder).filePath(QStringLiteral("backup-ours.db"));
    const QString theirs = QDir(folder).filePath(QStringLiteral("backup-theirs.db"));
    // Not that of the table: a backup leaves it disconnected.
    const auto session = std::make_shared<std::unique_ptr<TDBSession>>();
    const auto prepare = [table, session, ours, theirs] {
        RemoveDatabaseFile(ours);
        RemoveDatabaseFile(theirs);
        *session = ConnectTo(table->File());
        // What was written before is nobody's work here.
        ::sync();
    };
    const auto backup = [session, ours] { (*session)->BackupDB(ours); };
    const auto backupPeer = [table, theirs] { BackupByEngine(table->File(), theirs); };
    return {
        {.What = QStringLiteral("BackupDB of a database of 187 MB: made beside, brought to disk, renamed"),
         .Peer = QStringLiteral("sqlite3_backup_step of all pages to a new file, synchronous=full, fsync"),
         .Goal = AtLeast(0.9),
         .Ours = backup,
         .Theirs = backupPeer,
         .Prepare = prepare,
         .Repetitions = 11,
         .Same = [ours, theirs, prepare, backup, backupPeer] {
             prepare(), backup(), backupPeer();
             return HoldsTheRows(ours) && PagesOf(ours) == PagesOf(theirs);
         }}};
}

} // namespace Bench
