// SPDX-License-Identifier: MIT
#include "support/TestDatabase.h"

#include "support/Packets.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace Korvane::Testing {

TestDatabase::TestDatabase(TSqlDialect dialect, const QString &password) : FDialect(dialect)
{
    CreateCatalog(ConnectionString(password));
}

QString TestDatabase::ConnectionString(const QString &password) const
{
    return FDialect == TSqlDialect::Access ? ConnectionTo(FileName(), password)
                                           : ConnectionTo(u"orders"_s, password);
}

QString TestDatabase::ConnectionTo(const QString &database, const QString &password) const
{
    const QString secret = TConnectionString::Quoted(password);
    if (FDialect == TSqlDialect::Access)
        return u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=%1;User ID=Admin;Jet OLEDB:Database Password=%2;"_s
            .arg(database, secret);
    return u"Provider=SQLOLEDB.1;Data Source=%1;Initial Catalog=%2;User ID=sa;Password=%3;"_s.arg(
        Server(), database, secret);
}

std::unique_ptr<TADOConnection> TestDatabase::Connect(const QString &furtherParts, int timeout) const
{
    return ConnectTo(ConnectionString() + furtherParts, timeout);
}

std::unique_ptr<TADOConnection> ConnectTo(const QString &connectionString, int timeout)
{
    auto connection = std::make_unique<TADOConnection>();
    connection->SetConnectionString(connectionString);
    connection->SetCommandTimeout(timeout);
    connection->SetConnected(true);
    return connection;
}

void RunAll(TADOConnection &connection, const QStringList &statements)
{
    for (const QString &statement : statements)
        connection.Execute(statement);
}

QString Rows(TADOConnection &connection, const QString &statement)
{
    QStringList lines = TextOf(connection.Query(statement)).split(u'\n');
    return lines.mid(1, lines.size() - 2).join(u" / "_s);
}

namespace {

QString FailureOf(TADOConnection &connection, const std::function<void()> &action)
{
    try {
        action();
        return u"nothing"_s;
    } catch (const Exception &error) {
        QStringList texts;
        for (const TSqlError &entry : connection.Errors())
            texts += entry.Description;
        if (texts.isEmpty() || texts[0] != error.Message())
            texts += u"raised: "_s + error.Message();
        return texts.join(u" / "_s);
    }
}

} // namespace

QString FailureOf(TADOConnection &connection, const QString &statement)
{
    return FailureOf(connection, [&] { connection.Execute(statement); });
}

QString ConnectFailure(const QString &connectionString, TConnectMode mode, int timeout)
{
    TADOConnection connection;
    connection.SetConnectionString(connectionString);
    connection.SetMode(mode);
    connection.SetCommandTimeout(timeout);
    return FailureOf(connection, [&] { connection.SetConnected(true); });
}

PlainDatabase::PlainDatabase(const QString &fileName)
{
    if (sqlite3_open(fileName.toUtf8().constData(), &FHandle) != SQLITE_OK)
        throw Exception(u"cannot open "_s + fileName);
}

PlainDatabase::~PlainDatabase() { sqlite3_close_v2(FHandle); }

QString PlainDatabase::Run(const QString &sql)
{
    QStringList rows;
    const auto addRow = [](void *list, int count, char **values, char **) {
        QStringList cells;
        for (int i = 0; i < count; ++i)
            cells += values[i] ? QString::fromUtf8(values[i]) : u"~"_s;
        static_cast<QStringList *>(list)->append(cells.join(u'|'));
        return 0;
    };
    if (sqlite3_exec(FHandle, sql.toUtf8().constData(), addRow, &rows, nullptr) != SQLITE_OK)
        return u"error: "_s + QString::fromUtf8(sqlite3_errmsg(FHandle));
    return rows.join(u" / "_s);
}

} // namespace Korvane::Testing
