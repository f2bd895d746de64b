// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace Korvane {

/// Where PostgreSQL's own programs connect to, and as whom.
struct TPostgresLogin
{
    QString Host;
    int Port = 5432;
    QString User;
    QString Password;
};

/// The arguments that connect a program to a database. The password is not among them.
QStringList PostgresToolArguments(const TPostgresLogin &login, const QString &database);

/// The path of a program of PostgreSQL's client: the one on PATH, else that of the newest version in
/// Debian's folder. Raises ESqlError where there is none.
QString FindPostgresTool(const QString &program,
                         const QString &versions = QStringLiteral("/usr/lib/postgresql"));

/// Runs such a program to its end, however long that takes, and gives what it writes. It ends with
/// this process, too, and learns the password from its environment. Raises ESqlError with what the
/// program says when it fails.
QByteArray RunPostgresTool(const QString &program, const QStringList &arguments,
                           const QString &password = {});

} // namespace Korvane
