// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/DatabaseFile.h"

#include "platform/sql/sqlite/SqliteMetadata.h"

#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

#include <sqlite3.h>

namespace Korvane {

namespace {

bool IsOnNetwork(const QString &fileName)
{
    const QByteArray type = QStorageInfo(QFileInfo(fileName).absolutePath()).fileSystemType().toLower();
    for (const char *network : {"nfs", "cifs", "smb", "9p", "afs", "sshfs", "davfs", "webdav", "ncp"})
        if (type.contains(network))
            return true;
    return false;
}

void CheckHeader(const QString &fileName)
{
    const QFileInfo info(fileName);
    if (!info.exists())
        throw ESqlError(QStringLiteral("找不到数据库文件：%1").arg(fileName));
    if (info.isDir())
        throw ESqlError(QStringLiteral("这是文件夹，不是数据库文件：%1").arg(fileName));
    if (FirstBytesOf(fileName, 16) != QByteArray("SQLite format 3\0", 16))
        throw ESqlError(QStringLiteral("不是有效的数据库文件：%1").arg(fileName));
}

} // namespace

QByteArray FirstBytesOf(const QString &fileName, int count)
{
    const TSqliteDatabase opened(fileName, TSqliteOpen::ReadOnly);
    sqlite3_file *file = nullptr;
    sqlite3_file_control(opened.Handle(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
    QByteArray bytes(qMin<qint64>(count, QFileInfo(fileName).size()), '\0');
    if (!bytes.isEmpty() && (!file || !file->pMethods ||
                             file->pMethods->xRead(file, bytes.data(), int(bytes.size()), 0) != SQLITE_OK))
        throw ESqlError(QStringLiteral("不能打开数据库文件：%1").arg(fileName), SQLITE_IOERR);
    return bytes;
}

std::unique_ptr<TSqliteDatabase> OpenDatabaseFile(const QString &fileName, TSqliteOpen mode, int timeout)
{
    CheckHeader(fileName);
    auto database = std::make_unique<TSqliteDatabase>(fileName, mode);
    sqlite3_busy_timeout(database->Handle(), timeout * 1000);
    // The engine opens lazily: the first read shows whether the file can be used at all.
    database->Value("select count(*) from sqlite_master");
    return database;
}

void CreateDatabaseFile(const QString &fileName, const QString &password)
{
    if (fileName.isEmpty())
        throw ESqlError(QStringLiteral("没有指定数据库文件"));
    // NOTE: made exclusively first, so that of two creators one fails and nothing is overwritten.
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        throw ESqlError(
            file.exists() ? QStringLiteral("数据库文件已经存在：%1").arg(fileName)
                          : QStringLiteral("不能创建数据库文件：%1（%2）").arg(fileName, file.errorString()));
    file.close();
    try {
        TSqliteDatabase database(fileName, TSqliteOpen::ReadWrite);
        database.Run("begin");
        CreateMetadata(database, password);
        database.Run("commit");
        ChooseJournal(database);
    } catch (...) {
        RemoveDatabaseFile(fileName);
        throw;
    }
}

void RemoveDatabaseFile(const QString &fileName)
{
    for (const char *suffix : {"-wal", "-shm", "-journal", ""}) {
        QFile file(fileName + QLatin1String(suffix));
        if (file.exists() && !file.remove())
            throw ESqlError(
                QStringLiteral("不能删除文件：%1（%2）").arg(file.fileName(), file.errorString()));
    }
}

void ChooseJournal(TSqliteDatabase &database)
{
    // A file made by another tool keeps what that tool chose.
    if (database.Value("pragma application_id").toInt() != DatabaseApplicationId)
        return;
    const QString wanted =
        IsOnNetwork(database.FileName()) ? QStringLiteral("delete") : QStringLiteral("wal");
    if (database.Value("pragma journal_mode") == wanted)
        return;
    try {
        database.Run("pragma journal_mode=" + wanted.toLatin1());
    } catch (const ESqlError &) {
        // Another user holds the file open in the other mode; it works for now, and the next
        // connect tries again.
    }
}

} // namespace Korvane
