// SPDX-License-Identifier: MIT
#pragma once

#include "DesignTesting.h"

#include "support/TestPlace.h"

#include <QDir>
#include <QMap>
#include <QRegularExpression>

#include <map>

namespace Korvane::Testing {

/// A long list as text, of which a failed test shows the lines that differ.
inline std::string LinesOf(const QStringList &list) { return list.join(QLatin1Char('\n')).toStdString(); }

/// A session on databases of a place that the test makes itself. A folder of the test's own is the
/// current one, so that the log of failed statements goes there; the embedded engine's
/// databases stand in it.
class DatabaseTest : public testing::TestWithParam<TTestPlace>
{
protected:
    DatabaseTest()
    {
        QDir::setCurrent(Dir.path());
        if (IsThere(GetParam()))
            Aim(Session);
    }
    ~DatabaseTest() override
    {
        Session.SetConnected(false);
        QDir::setCurrent(FPrevious);
    }

    /// Points a session at one of the test's databases.
    void Aim(TDBSession &session, const QString &name = QStringLiteral("orders"))
    {
        session.SetDBType(GetParam());
        if (!GetParam().IsEmbedded()) {
            Testing::Aim(session, OnServer(name));
        } else if (GetParam() == dbtMSSQL) {
            QDir(Dir.path()).mkpath(QStringLiteral("server"));
            session.SetDBServer(QStringLiteral("folder:") + Dir.filePath(QStringLiteral("server")));
            session.SetDBName(name);
        } else {
            session.SetDBName(Dir.filePath(name + QStringLiteral(".mdb")));
        }
        session.SetAppName(QStringLiteral("design"));
    }

    void OpenOrders()
    {
        Design.SetFileName(OrdersDesign);
        Design.SetActived(true);
    }

    /// The rows of a statement, the cells joined by "|", NULL as "~".
    QStringList Rows(const QString &statement)
    {
        QStringList lines = TextOf(Session.Open(statement)).split(QLatin1Char('\n'));
        lines.removeFirst();
        lines.removeLast();
        return lines;
    }

    /// The columns of all tables as "TABLE.COLUMN type", in alphabetical order. The type is in
    /// lower case, since the embedded engine writes some of its names in capitals.
    QStringList Columns(TDBSession &session)
    {
        QStringList columns;
        for (const QStringList &row : SchemaRows(session, siColumns))
            columns.append(row[0] + QLatin1Char('.') + row[1] + QLatin1Char(' ') +
                           QString(row[3]).remove(' ').toLower());
        columns.sort();
        return columns;
    }

    /// The indexes of all tables as "TABLE.INDEX(COLUMN,…)", with the marks of uniqueness and of
    /// the primary key, in alphabetical order.
    QStringList Indexes(TDBSession &session)
    {
        QMap<QString, QString> columns;
        for (const QStringList &row : SchemaRows(session, siIndexes)) {
            QString &list = columns[row[0] + QLatin1Char('.') + (row[5] == "Y" ? "key" : row[1]) +
                                    (row[4] == "Y" ? " unique" : "")];
            list += (list.isEmpty() ? QString() : QStringLiteral(",")) + row[2];
        }
        QStringList indexes;
        for (auto i = columns.cbegin(); i != columns.cend(); ++i)
            indexes.append(i.key() + QLatin1Char('(') + i.value() + QLatin1Char(')'));
        return indexes;
    }

private:
    std::map<QString, ServerDatabase> FOnServer; // outlives the session

protected:
    QTemporaryDir Dir;
    TDBDFile Design;
    TDBSession Session;

private:
    const ServerDatabase &OnServer(const QString &name)
    {
        return FOnServer.try_emplace(name, *GetParam().Server(), DatabaseMaking::ByTheTest).first->second;
    }

    /// The rows of a schema rowset, without the engine's own tables.
    static QList<QStringList> SchemaRows(TDBSession &session, TSchemaInfo schema)
    {
        TADODataSet rows;
        session.OpenSchema(schema, {}, {}, rows);
        const TDataPacket &packet = rows.Packet();
        QList<QStringList> result;
        for (qsizetype row = 0; row < packet.RowCount(); ++row) {
            QStringList cells;
            for (int field = 0; field < packet.FieldCount(); ++field)
                cells.append(packet.Text(field, row));
            if (!cells[0].startsWith("_korvane") && !cells[0].startsWith("sqlite_"))
                result.append(cells);
        }
        return result;
    }

    const QString FPrevious = QDir::currentPath();
};

} // namespace Korvane::Testing
