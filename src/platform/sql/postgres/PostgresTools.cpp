// SPDX-License-Identifier: MIT
#include "platform/sql/postgres/PostgresTools.h"

#include "platform/sql/SqlError.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>

#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

constexpr qsizetype LongestWords = 2000; ///< characters of a program's output that an error tells

/// A value of libpq's connection strings.
QString ConnectValue(QString value)
{
    return u'\'' + value.replace(u'\\', "\\\\"_L1).replace(u'\'', "\\'"_L1) + u'\'';
}

QString WordsOf(QProcess &process)
{
    QString words = QString::fromUtf8(process.readAllStandardError()).trimmed();
    if (words.isEmpty())
        words = process.errorString();
    if (words.size() > LongestWords)
        words = words.first(LongestWords) + u'…';
    return words;
}

} // namespace

/// NOTE: the name goes as a connection string: a name alone that looks like one would be taken for it.
QStringList PostgresToolArguments(const TPostgresLogin &login, const QString &database)
{
    return {u"--host="_s + login.Host, u"--port="_s + QString::number(login.Port),
            u"--username="_s + login.User, u"--no-password"_s,
            u"--dbname=sslmode=prefer dbname="_s + ConnectValue(database)};
}

QString FindPostgresTool(const QString &program, const QString &versions)
{
    QString path = QStandardPaths::findExecutable(program);
    QStringList names = QDir(versions).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    std::sort(names.begin(), names.end(),
              [](const QString &left, const QString &right) { return left.toDouble() > right.toDouble(); });
    for (const QString &name : names) {
        if (path.isEmpty())
            path = QStandardPaths::findExecutable(program, {versions + u'/' + name + u"/bin"_s});
    }
    if (path.isEmpty())
        throw ESqlError(u"找不到程序 %1，请安装 postgresql-client"_s.arg(program));
    return path;
}

QByteArray RunPostgresTool(const QString &program, const QStringList &arguments, const QString &password)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!password.isEmpty())
        environment.insert(u"PGPASSWORD"_s, password);
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setChildProcessModifier([parent = ::getpid()] {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (::getppid() != parent) // it ended before the line above
            ::_exit(1);
    });
    process.start(FindPostgresTool(program), arguments);
    process.waitForFinished(-1);
    if (process.error() == QProcess::FailedToStart || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        throw ESqlError(WordsOf(process));
    return process.readAllStandardOutput();
}

} // namespace Korvane
