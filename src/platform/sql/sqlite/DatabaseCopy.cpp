// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/DatabaseCopy.h"

#include "platform/sql/sqlite/SqliteErrors.h"
#include "platform/sql/sqlite/SqliteMetadata.h"

#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace Korvane {

namespace {

/// Raises what the operating system says about a file.
[[noreturn]] void FailFile(const QString &fileName)
{
    throw ESqlError(QStringLiteral("不能写入文件：%1（%2）").arg(fileName, qt_error_string(errno)));
}

bool IsSameFile(const struct stat &one, const struct stat &other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool StateOf(const QString &fileName, struct stat &state)
{
    return ::stat(QFile::encodeName(fileName).constData(), &state) == 0;
}

/// Brings a folder's list of names to disk, as far as the file system can.
void SyncFolder(const QString &fileName)
{
    const QByteArray folder = QFile::encodeName(QFileInfo(fileName).absolutePath());
    const int descriptor = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}

void RemoveSideFiles(const QString &fileName)
{
    for (const char *suffix : {"-wal", "-shm", "-journal"}) {
        const QString side = fileName + QLatin1String(suffix);
        if (::unlink(QFile::encodeName(side).constData()) != 0 && errno != ENOENT)
            FailFile(side);
    }
}

/// The file in which a copy is made, beside the place that it is for. It is locked, so that two copies
/// to one place do not mix, and goes with the object unless it was given away. What a killed process
/// left is used again.
class TPartFile
{
public:
    TPartFile(const QString &target, mode_t mode) : FFileName(target + QStringLiteral(".part"))
    {
        while (!Open()) {
        }
        try {
            RemoveSideFiles(FFileName);
            if (::ftruncate(FDescriptor, 0) != 0 || ::fchmod(FDescriptor, mode & 0777) != 0)
                FailFile(FFileName);
        } catch (...) {
            ::close(FDescriptor);
            throw;
        }
    }
    ~TPartFile()
    {
        if (!FIsGiven)
            ::unlink(QFile::encodeName(FFileName).constData());
        ::close(FDescriptor);
    }
    TPartFile(const TPartFile &) = delete;
    TPartFile &operator=(const TPartFile &) = delete;

    const QString &FileName() const { return FFileName; }

    /// Takes the mark of a write-ahead log off the file: the versions of its format, each of one byte
    /// (sqlite.org/fileformat.html, 1.3.3). There is no log that belongs to it.
    void ForgetLog()
    {
        constexpr char versions[] = {1, 1};
        if (::pwrite(FDescriptor, versions, sizeof versions, 18) != sizeof versions)
            FailFile(FFileName);
    }
    /// Lets the disk begin on what is there while more is being copied.
    void BeginWriting() { ::sync_file_range(FDescriptor, 0, 0, SYNC_FILE_RANGE_WRITE); }
    void Sync()
    {
        if (::fsync(FDescriptor) != 0)
            FailFile(FFileName);
    }
    void GiveAway() { FIsGiven = true; }

private:
    /// False when the file went away between being opened and being locked.
    bool Open()
    {
        const QByteArray path = QFile::encodeName(FFileName);
        FDescriptor = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
        if (FDescriptor < 0)
            FailFile(FFileName);
        struct flock lock = {};
        lock.l_type = F_WRLCK;
        lock.l_whence = SEEK_SET;
        lock.l_len = 1;
        if (::fcntl(FDescriptor, F_OFD_SETLK, &lock) != 0) {
            const int code = errno;
            ::close(FDescriptor);
            errno = code;
            if (code != EAGAIN && code != EACCES)
                FailFile(FFileName);
            throw ESqlError(QStringLiteral("正在备份到同一文件，请稍后再试：%1").arg(FFileName));
        }
        struct stat opened = {}, present = {};
        ::fstat(FDescriptor, &opened);
        if (StateOf(FFileName, present) && IsSameFile(opened, present))
            return true;
        ::close(FDescriptor);
        return false;
    }

    const QString FFileName;
    int FDescriptor = -1;
    bool FIsGiven = false;
};

/// Reads one state of a database for as long as it lives.
class TSnapshot
{
public:
    explicit TSnapshot(TSqliteDatabase &database) : FDatabase(database)
    {
        FDatabase.Run("begin");
        try {
            FDatabase.Value("select count(*) from sqlite_master");
        } catch (...) {
            End();
            throw;
        }
    }
    ~TSnapshot() { End(); }
    TSnapshot(const TSnapshot &) = delete;
    TSnapshot &operator=(const TSnapshot &) = delete;

private:
    void End() { sqlite3_exec(FDatabase.Handle(), "rollback", nullptr, nullptr, nullptr); }

    TSqliteDatabase &FDatabase;
};

/// Ends a backup of the engine with the object.
class TBackup
{
public:
    TBackup(TSqliteDatabase &source, TSqliteDatabase &target) : FSource(source), FTarget(target)
    {
        FBackup = sqlite3_backup_init(target.Handle(), "main", source.Handle(), "main");
        if (!FBackup)
            target.Fail();
    }
    ~TBackup() { sqlite3_backup_finish(FBackup); }
    TBackup(const TBackup &) = delete;
    TBackup &operator=(const TBackup &) = delete;

    /// Copies some pages; false when none are left.
    bool Step(int pages)
    {
        const int code = sqlite3_backup_step(FBackup, pages);
        if (code == SQLITE_OK || code == SQLITE_DONE)
            return code == SQLITE_OK;
        // NOTE: a lock is told by the step alone, and not by the end of the backup.
        const int kind = code & 0xff;
        const bool isTargets = kind == SQLITE_FULL || kind == SQLITE_IOERR || kind == SQLITE_READONLY;
        throw ESqlError(DescribeSqliteError(code, QString::fromUtf8(sqlite3_errstr(code)),
                                            (isTargets ? FTarget : FSource).FileName()),
                        code);
    }

private:
    const TSqliteDatabase &FSource;
    const TSqliteDatabase &FTarget;
    sqlite3_backup *FBackup = nullptr;
};

void CopyPages(TSqliteDatabase &source, TPartFile &part)
{
    constexpr int PagesAtOnce = 2048;
    TSqliteDatabase target(part.FileName(), TSqliteOpen::Create);
    // It is brought to disk as a whole later on; until then nobody but this knows it.
    target.Run("pragma journal_mode=off");
    target.Run("pragma synchronous=off");
    // One state of the source over all steps: writers do not make the backup begin anew.
    const TSnapshot snapshot(source);
    TBackup backup(source, target);
    while (backup.Step(PagesAtOnce))
        part.BeginWriting();
}

bool HasMetadata(TSqliteDatabase &database)
{
    return sqlite3_table_column_metadata(database.Handle(), "main", MetadataTable, nullptr, nullptr, nullptr,
                                         nullptr, nullptr, nullptr) == SQLITE_OK;
}

/// Takes a database out of use: its log is worked in and gone, and nobody else can get at it as long as the
/// result lives. Nothing comes back for a file that is missing, damaged or no database.
std::unique_ptr<TSqliteDatabase> TakeOutOfUse(const QString &fileName)
{
    if (QFileInfo(fileName).size() == 0)
        return nullptr;
    try {
        auto database = std::make_unique<TSqliteDatabase>(fileName, TSqliteOpen::ReadWrite);
        database->Value("select count(*) from sqlite_master");
        if (database->Value("pragma journal_mode=delete") != QLatin1String("delete"))
            throw ESqlError(QStringLiteral("数据库正在使用中，不能替换：%1").arg(fileName), SQLITE_BUSY);
        database->Run("begin exclusive");
        return database;
    } catch (const ESqlError &error) {
        if (!IsDamage(error))
            throw;
        return nullptr;
    }
}

void TakeOverModeAndOwner(const QString &from, const QString &to)
{
    struct stat state = {};
    const QByteArray path = QFile::encodeName(to);
    if (!StateOf(from, state))
        return;
    // Giving a file to another owner is for few; the mode is everyone's.
    if (::chown(path.constData(), state.st_uid, state.st_gid) != 0 &&
        ::chown(path.constData(), uid_t(-1), state.st_gid) != 0)
        errno = 0;
    if (::chmod(path.constData(), state.st_mode & 0777) != 0)
        FailFile(to);
}

} // namespace

std::unique_ptr<TSqliteDatabase> OpenCopySource(const QString &fileName, int timeout)
{
    const QFileInfo info(fileName);
    if (!info.exists())
        throw ESqlError(QStringLiteral("找不到数据库文件：%1").arg(fileName));
    if (info.isDir())
        throw ESqlError(QStringLiteral("这是文件夹，不是数据库文件：%1").arg(fileName));
    // The engine takes an empty file for an empty database.
    if (info.size() == 0)
        throw ESqlError(QStringLiteral("不是有效的数据库文件：%1").arg(fileName), SQLITE_NOTADB);
    auto database = std::make_unique<TSqliteDatabase>(fileName, TSqliteOpen::ReadWrite);
    sqlite3_busy_timeout(database->Handle(), timeout * 1000);
    database->Value("select count(*) from sqlite_master");
    return database;
}

void CopyDatabaseTo(TSqliteDatabase &source, const QString &target,
                    const std::function<void(TSqliteDatabase &)> &finish)
{
    struct stat from = {}, to = {};
    if (!StateOf(source.FileName(), from))
        throw ESqlError(QStringLiteral("找不到数据库文件：%1").arg(source.FileName()));
    if (StateOf(target, to)) {
        if (IsSameFile(from, to))
            throw ESqlError(QStringLiteral("数据库不能复制到自身：%1").arg(target));
        if (!S_ISREG(to.st_mode))
            throw ESqlError(QStringLiteral("不能写入文件：%1（不是普通文件）").arg(target));
    }
    TPartFile part(target, from.st_mode);
    CopyPages(source, part);
    part.ForgetLog();
    if (finish) {
        TSqliteDatabase copy(part.FileName(), TSqliteOpen::ReadWrite);
        copy.Run("pragma synchronous=off");
        copy.Run("pragma journal_mode=memory");
        finish(copy);
    }
    part.Sync();
    ReplaceDatabaseFile(part.FileName(), target);
    part.GiveAway();
}

void ReplaceDatabaseFile(const QString &copy, const QString &fileName)
{
    const QFileInfo info(fileName);
    const QString place = info.isSymLink() && info.exists() ? info.canonicalFilePath() : fileName;
    const auto old = TakeOutOfUse(place);
    TakeOverModeAndOwner(place, copy);
    // NOTE: what the engine keeps beside the old file goes, for good, before the new one comes: a log or a
    // journal found beside a database is worked into it, whatever it was of.
    RemoveSideFiles(place);
    SyncFolder(place);
    if (::rename(QFile::encodeName(copy).constData(), QFile::encodeName(place).constData()) != 0)
        FailFile(place);
    SyncFolder(place);
}

void CheckUndamaged(TSqliteDatabase &copy, const QString &source)
{
    const QString found = copy.Value("pragma integrity_check(1)");
    if (found != QLatin1String("ok"))
        throw ESqlError(
            QStringLiteral("数据库文件已损坏：%1（%2）").arg(source, found.section(QLatin1Char('\n'), -1)),
            SQLITE_CORRUPT);
}

bool IsDamage(const ESqlError &error)
{
    const int code = error.Errors().value(0).NativeError & 0xff;
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
}

void RecordBackupName(TSqliteDatabase &backup, const QString &name)
{
    if (!HasMetadata(backup))
        return;
    TSqliteStatement statement(backup,
                               "insert or replace into _korvane(Kind, Name, Value) values('backup', '', ?1)");
    statement.Bind(1, name);
    statement.Step();
}

QString BackupName(TSqliteDatabase &backup)
{
    return HasMetadata(backup) ? backup.Value("select Value from _korvane where Kind='backup'") : QString();
}

void ForgetBackupName(TSqliteDatabase &database)
{
    if (HasMetadata(database))
        database.Run("delete from _korvane where Kind='backup'");
}

} // namespace Korvane
