// SPDX-License-Identifier: MIT
// Backs up or restores a database in a process of its own, which dies at a chosen operation on a file:
//
//     korvane_killed backup|restore|swap access|mssql SERVER DATABASE FILE [FILE]
//
// The environment variable KORVANE_KILL_AT counts the operations that change files, from 1, beginning when
// the database is connected; at that one the process is killed, as by a signal that no program can catch.
// "swap" restores one file after the other without end. The status is 0 when the work came to its end.
#include "general/Types.h"
#include "session/DBSession.h"

#include <QCoreApplication>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

namespace {

int LeftToLive = 0; // operations; 0 is for ever

void Count()
{
    if (LeftToLive > 0 && --LeftToLive == 0)
        ::raise(SIGKILL);
}

/// The function of the C library that one of this program stands before.
template <class Function> Function *Real(const char *name)
{
    return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

} // namespace

// The program's own functions go before those of the C library, for the engine too.
extern "C" {

int rename(const char *from, const char *to) noexcept
{
    Count();
    return Real<int(const char *, const char *)>("rename")(from, to);
}
int unlink(const char *path) noexcept
{
    Count();
    return Real<int(const char *)>("unlink")(path);
}
int fsync(int file)
{
    Count();
    return Real<int(int)>("fsync")(file);
}
int fdatasync(int file)
{
    Count();
    return Real<int(int)>("fdatasync")(file);
}
int ftruncate(int file, off_t size) noexcept
{
    Count();
    return Real<int(int, off_t)>("ftruncate")(file, size);
}
int ftruncate64(int file, off64_t size) noexcept
{
    Count();
    return Real<int(int, off64_t)>("ftruncate64")(file, size);
}
ssize_t write(int file, const void *bytes, size_t count)
{
    Count();
    return Real<ssize_t(int, const void *, size_t)>("write")(file, bytes, count);
}
ssize_t pwrite(int file, const void *bytes, size_t count, off_t at)
{
    Count();
    return Real<ssize_t(int, const void *, size_t, off_t)>("pwrite")(file, bytes, count, at);
}
ssize_t pwrite64(int file, const void *bytes, size_t count, off64_t at)
{
    Count();
    return Real<ssize_t(int, const void *, size_t, off64_t)>("pwrite64")(file, bytes, count, at);
}
}

namespace {

using namespace Korvane;

void Work(const QStringList &arguments)
{
    const QString &what = arguments[1];
    TDBSession session;
    session.SetDBType(arguments[2] == QLatin1String("mssql") ? dbtMSSQL : dbtAccess);
    session.SetDBServer(arguments[3]);
    for (int round = 0;; ++round) {
        session.SetDBName(arguments[4]);
        session.SetConnected(true);
        if (what != QLatin1String("swap"))
            session.Execute(QStringLiteral("update T set A='old'"));
        LeftToLive = qEnvironmentVariableIntValue("KORVANE_KILL_AT");
        if (what == QLatin1String("backup"))
            session.BackupDB(arguments[5]);
        else
            session.RestoreDB(arguments[5 + (what == QLatin1String("swap") ? round % 2 : 0)]);
        LeftToLive = 0;
        if (what != QLatin1String("swap"))
            return;
        if (round == 0) {
            std::puts("swapping");
            std::fflush(stdout);
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    try {
        Work(QCoreApplication::arguments());
        return 0;
    } catch (const Exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
