// SPDX-License-Identifier: MIT
#include "QtItems.h"

#include "LargeTable.h"

#include <QSqlError>
#include <QSqlQuery>

namespace Bench {

QSqlDatabase OpenQtDatabase(const QString &name, const QString &file)
{
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    database.setDatabaseName(file);
    if (!database.open())
        qFatal("%s: %s", qUtf8Printable(file), qUtf8Printable(database.lastError().text()));
    for (const char *pragma :
         {"journal_mode=wal", "synchronous=full", "foreign_keys=on", "temp_store=memory"})
        QSqlQuery(database).exec(QStringLiteral("pragma ") + QLatin1String(pragma));
    return database;
}

TQtItems::TQtItems(const QSqlDatabase &database, const QString &where) : QSqlTableModel(nullptr, database)
{
    setEditStrategy(OnManualSubmit);
    setTable(LargeTableName);
    setFilter(where);
}

void TQtItems::SelectAll()
{
    if (!select())
        qFatal("%s", qUtf8Printable(lastError().text()));
    while (canFetchMore())
        fetchMore();
}

} // namespace Bench
