// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/ConnectionRoster.h"

#include <QFile>
#include <QStringList>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace Korvane {

namespace {

// The file is a row of blocks: block 0 is the gate, block n the slot of connection n. A slot
// holds its entry's texts in UTF-8, a line each, filled with zeros.
constexpr int BlockSize = 1024;
constexpr int MaxSlots = 32767;

struct flock ByteOfBlock(int block, short type)
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = off_t(block) * BlockSize;
    lock.l_len = 1;
    return lock;
}

bool Lock(int file, int block, bool wait)
{
    struct flock lock = ByteOfBlock(block, F_WRLCK);
    int result;
    do {
        result = ::fcntl(file, wait ? F_OFD_SETLKW : F_OFD_SETLK, &lock);
    } while (result < 0 && errno == EINTR);
    return result == 0;
}

void Unlock(int file, int block)
{
    struct flock lock = ByteOfBlock(block, F_UNLCK);
    ::fcntl(file, F_OFD_SETLK, &lock);
}

/// Holds the gate for as long as it lives.
class TGate
{
public:
    explicit TGate(int file) : FFile(file) { Lock(FFile, 0, true); }
    ~TGate() { Unlock(FFile, 0); }
    TGate(const TGate &) = delete;
    TGate &operator=(const TGate &) = delete;

private:
    int FFile;
};

/// A text as a line of a block, cut to a number of bytes.
QByteArray ToLine(QString text, qsizetype bytes)
{
    text.replace(QLatin1Char('\n'), QLatin1Char(' '));
    while (text.toUtf8().size() > bytes)
        text.chop(1);
    return text.toUtf8() + '\n';
}

/// The entry's texts in one block. A database's name always fits; a path may be cut.
QByteArray ToBlock(const TRosterEntry &entry)
{
    return (ToLine(entry.ApplicationName, 160) + ToLine(entry.ComputerName, 160) +
            ToLine(entry.LoginName, 160) + ToLine(entry.Database, 400) +
            ToLine(QString::number(entry.ProcessId), 20) +
            ToLine(entry.Connected.toString(Qt::ISODateWithMs), 40))
        .leftJustified(BlockSize, '\0', true);
}

TRosterEntry FromBlock(int number, const QByteArray &block)
{
    const QStringList texts = QString::fromUtf8(block.left(block.indexOf('\0'))).split(QLatin1Char('\n'));
    TRosterEntry entry;
    entry.Number = number;
    entry.ApplicationName = texts.value(0);
    entry.ComputerName = texts.value(1);
    entry.LoginName = texts.value(2);
    entry.Database = texts.value(3);
    entry.ProcessId = texts.value(4).toLongLong();
    entry.Connected = QDateTime::fromString(texts.value(5), Qt::ISODateWithMs);
    return entry;
}

} // namespace

TConnectionRoster::TConnectionRoster(QString fileName) : FFileName(std::move(fileName)) {}

TConnectionRoster::~TConnectionRoster() { Leave(); }

void TConnectionRoster::Join(TRosterEntry entry)
{
    Leave();
    FOwn = std::move(entry);
    FOwn.Number = 1;
    const QByteArray path = QFile::encodeName(FFileName);
    while ((FFile = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) >= 0) {
        bool present = false;
        {
            const TGate gate(FFile);
            struct stat state = {};
            present = ::fstat(FFile, &state) == 0 && state.st_nlink > 0;
            if (present)
                TakeSlot();
        }
        if (present)
            return;
        // The last one to leave removed the file between opening and locking it.
        ::close(FFile);
        FFile = -1;
    }
}

void TConnectionRoster::TakeSlot()
{
    for (int slot = 1; slot <= MaxSlots; ++slot)
        if (Lock(FFile, slot, false)) {
            FOwn.Number = slot;
            WriteSlot();
            return;
        }
}

void TConnectionRoster::WriteSlot()
{
    const QByteArray block = ToBlock(FOwn);
    // A slot that cannot be written still counts: its lock says that it is taken.
    [[maybe_unused]] const ssize_t written =
        ::pwrite(FFile, block.constData(), size_t(block.size()), off_t(FOwn.Number) * BlockSize);
}

void TConnectionRoster::SetDatabase(const QString &database)
{
    FOwn.Database = database;
    if (FFile >= 0)
        WriteSlot();
}

void TConnectionRoster::Leave()
{
    if (FFile >= 0) {
        {
            const TGate gate(FFile);
            if (ReadEntries().size() <= 1)
                ::unlink(QFile::encodeName(FFileName).constData());
            Unlock(FFile, FOwn.Number);
        }
        ::close(FFile);
        FFile = -1;
    }
    FOwn = {};
}

bool TConnectionRoster::IsTaken(int slot) const
{
    struct flock lock = ByteOfBlock(slot, F_WRLCK);
    // Own locks do not show here.
    return ::fcntl(FFile, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

QList<TRosterEntry> TConnectionRoster::ReadEntries()
{
    QList<TRosterEntry> entries;
    struct stat state = {};
    ::fstat(FFile, &state);
    const int slots = int(qMin<qint64>(state.st_size / BlockSize, MaxSlots));
    for (int slot = 1; slot <= slots; ++slot) {
        if (slot == FOwn.Number) {
            entries.append(FOwn);
        } else if (IsTaken(slot)) {
            QByteArray block(BlockSize, '\0');
            if (::pread(FFile, block.data(), size_t(BlockSize), off_t(slot) * BlockSize) > 0)
                entries.append(FromBlock(slot, block));
        }
    }
    return entries;
}

QList<TRosterEntry> TConnectionRoster::Entries()
{
    if (FFile < 0)
        return FOwn.Number == 0 ? QList<TRosterEntry>() : QList<TRosterEntry>{FOwn};
    const TGate gate(FFile);
    return ReadEntries();
}

void TConnectionRoster::WhileClosed(const std::function<void(const QList<TRosterEntry> &)> &action)
{
    if (FFile < 0)
        return action(Entries());
    const TGate gate(FFile);
    action(ReadEntries());
}

} // namespace Korvane
