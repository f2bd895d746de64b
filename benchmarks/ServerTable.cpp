// SPDX-License-Identifier: MIT
#include "ServerTable.h"

#include "LargeTable.h"
#include "design/DBDFile.h"
#include "platform/sql/ConnectionString.h"
#include "session/DBSession.h"

#include <QCoreApplication>
#include <QSqlError>
#include <QSqlQuery>

namespace Bench {

using namespace Korvane;

namespace {

constexpr auto Variable = "KORVANE_POSTGRES";

// %1: number of rows; %2, %3: the words that names are put together of.
constexpr auto Insert = R"(
insert into "LARGEITEM"("CREATOR", "CREATEDATE", "MODIFIER", "MODIFYDATE", "CREATORGROUP", "ITEMCODE", "ITEMNAME",
  "CATEGORY", "QTY", "LEADDAYS", "PRICE", "WEIGHT", "STOPPED", "MADEDATE", "NOTE")
select 'u101', '20240102080000', 'u101', '20240102080000', 'SalesA', 'P' || lpad(i::text, 10, '0'),
  (array[%2])[1 + a % 20] || (array[%3])[1 + b % 50] || 'M' || 4 + c % 10 * 2 || '×' || 10 + a / 32 % 5 * 15,
  (array[%3])[1 + c % 50] || '类' || 1 + b / 64 % 4, a % 100000, b % 90, c % 10000000 / 100.0,
  a % 1000000 / 1024.0, case when b / 128 % 10 = 0 then 'Y' else 'N' end,
  (20150101 + a / 512 % 10 * 10000 + b / 1024 % 12 * 100 + c / 2048 % 28)::text,
  case when c / 4096 % 4 > 0 then '第' || b % 5000 || '批次，随货附合格证' end
from (select i, hashint8(i) & 2147483647 as a, hashint8(i + 10000000) & 2147483647 as b,
        hashint8(i + 20000000) & 2147483647 as c
      from generate_series(0::bigint, %1 - 1) i) numbers)";

QString ServerValue(const char *suffix)
{
    return qEnvironmentVariable((QByteArray(Variable) + suffix).constData());
}

QString Literals(const QStringList &words)
{
    return QLatin1Char('\'') + words.join(QStringLiteral("','")) + QLatin1Char('\'');
}

} // namespace

bool TServerTable::HasServer() { return !ServerValue("").isEmpty(); }

TServerTable::TServerTable(TDBDFile &design) : FSession(std::make_unique<TDBSession>())
{
    FSession->SetDBType(dbtMSSQL);
    FSession->SetDBServer(ServerValue(""));
    FSession->SetDBUser(ServerValue("_USER"));
    FSession->SetDBPassword(ServerValue("_PASSWORD"));
    FSession->SetDBName(QStringLiteral("korvane_bench_%1").arg(QCoreApplication::applicationPid()));
    design.CreateDB(*FSession, true);
    Fill();
    FSession->SetConnected(true);
}

TServerTable::~TServerTable()
{
    FOdbc.reset();
    QSqlDatabase::removeDatabase(FQtName);
    const QString name = FSession->DBName();
    FSession->SetDBName(QStringLiteral("master"));
    try {
        FSession->SetConnected(true);
        FSession->Execute(QStringLiteral("drop database [%1]").arg(name));
    } catch (const Exception &error) {
        qWarning("%s", qUtf8Printable(error.Message()));
    }
}

TOdbcTarget TServerTable::Target() const
{
    TConnectionString connection;
    connection.SetValue(QStringLiteral("Data Source"), FSession->DBServer());
    connection.SetValue(QStringLiteral("Initial Catalog"), FSession->DBName());
    connection.SetValue(QStringLiteral("User ID"), FSession->DBUser());
    connection.SetValue(QStringLiteral("Password"), FSession->DBPassword());
    return OdbcTargetOf(PostgresOverOdbc(), connection, {});
}

void TServerTable::Fill()
{
    TOdbcStatement statement(Odbc());
    statement.Execute(
        QString::fromUtf8(Insert).arg(LargeRows).arg(Literals(LargeMaterials()), Literals(LargeThings())));
    statement.Execute(QStringLiteral("vacuum analyze \"LARGEITEM\""));
}

TOdbcConnection &TServerTable::Odbc()
{
    if (!FOdbc) {
        FOdbc = std::make_unique<TOdbcConnection>(PostgresOverOdbc());
        FOdbc->Connect(Target());
        TOdbcStatement(*FOdbc).Execute(PostgresOverOdbc().SessionSql(Target(), {}));
    }
    return *FOdbc;
}

QSqlDatabase TServerTable::Qt()
{
    if (!FQtName.isEmpty())
        return QSqlDatabase::database(FQtName);
    FQtName = QStringLiteral("server");
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), FQtName);
    database.setDatabaseName(
        OdbcConnectionText(PostgresOverOdbc(), Target(), {QStringLiteral("PostgreSQL Unicode")}));
    if (!database.open())
        qFatal("%s", qUtf8Printable(database.lastError().text()));
    QSqlQuery(database).exec(PostgresOverOdbc().SessionSql(Target(), {}));
    return database;
}

} // namespace Bench
