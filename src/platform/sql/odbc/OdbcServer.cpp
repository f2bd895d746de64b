// SPDX-License-Identifier: MIT
#include "platform/sql/odbc/OdbcServer.h"

#include <QCoreApplication>
#include <QRegularExpression>

namespace Korvane {

namespace {

bool IsPostgresAddress(const QString &dataSource)
{
    return dataSource.startsWith(QLatin1String("postgresql://"), Qt::CaseInsensitive) ||
           dataSource.startsWith(QLatin1String("postgres://"), Qt::CaseInsensitive);
}

int NumberIn(const QString &name)
{
    static const QRegularExpression number(QStringLiteral("\\d+"));
    return number.match(name).captured().toInt();
}

/// The installed driver of a choice with the highest number in its name; empty if there is none.
QString BestName(const TOdbcDriverChoice &choice, const QStringList &installed)
{
    const QRegularExpression names(QRegularExpression::anchoredPattern(choice.Names),
                                   QRegularExpression::CaseInsensitiveOption);
    const QStringList fitting = installed.filter(names);
    const auto best =
        std::max_element(fitting.begin(), fitting.end(), [](const QString &left, const QString &right) {
            return NumberIn(left) < NumberIn(right);
        });
    return best == fitting.end() ? QString() : *best;
}

} // namespace

const TOdbcServer &OdbcServerOf(const QString &dataSource)
{
    return IsPostgresAddress(dataSource) ? PostgresOverOdbc() : SqlServerOverOdbc();
}

TOdbcTarget OdbcTargetOf(const TOdbcServer &server, const TConnectionString &connection,
                         const QString &applicationName)
{
    TOdbcTarget target = server.ReadAddress(connection.DataSource().trimmed());
    target.Database = connection.InitialCatalog().isEmpty()
                          ? server.ServerDatabase
                          : server.DatabaseName(connection.InitialCatalog());
    target.User = connection.UserID();
    target.Password = connection.Password();
    target.ApplicationName = applicationName.isEmpty() ? connection.ApplicationName() : applicationName;
    if (target.ApplicationName.isEmpty())
        target.ApplicationName = QCoreApplication::applicationName();
    return target;
}

QString OdbcConnectionText(const TOdbcServer &server, const TOdbcTarget &target,
                           const QStringList &installedDrivers)
{
    for (const TOdbcDriverChoice &choice : server.Drivers) {
        const QString name = BestName(choice, installedDrivers);
        if (!name.isEmpty())
            return QStringLiteral("Driver=") + OdbcBraced(name) + QLatin1Char(';') + choice.Parts(target);
    }
    for (const TOdbcDriverChoice &choice : server.Drivers)
        if (!choice.Library.isEmpty())
            return QStringLiteral("Driver=") + choice.Library + QLatin1Char(';') + choice.Parts(target);
    return {};
}

QString OdbcBraced(const QString &value)
{
    QString doubled = value;
    doubled.replace(QLatin1Char('}'), QLatin1String("}}"));
    return QLatin1Char('{') + doubled + QLatin1Char('}');
}

} // namespace Korvane
