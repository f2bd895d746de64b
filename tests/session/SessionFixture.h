// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/StringList.h"
#include "session/DBSession.h"
#include "support/Packets.h"
#include "support/TestDatabase.h"

namespace Korvane::Testing {

/// Sets a session's properties so that it connects to a test database.
inline void Aim(TDBSession &session, const TestDatabase &database)
{
    session.SetDBType(database.Dialect() == TSqlDialect::Access ? dbtAccess : dbtMSSQL);
    session.SetDBServer(database.Dialect() == TSqlDialect::Access ? QString() : database.Server());
    session.SetDBName(database.Dialect() == TSqlDialect::Access ? database.FileName()
                                                                : QStringLiteral("orders"));
}

/// A connected session on an empty database of either dialect, whose "Error.sql" is in a folder
/// of its own.
class SessionFixture : public testing::TestWithParam<TSqlDialect>
{
protected:
    SessionFixture()
    {
        QDir::setCurrent(FCurrent.path());
        Aim(FSession, FDatabase);
        FSession.SetConnected(true);
        FSession.OnExecute() = [this](const QString &statement) { FSent += statement; };
    }
    ~SessionFixture() override { QDir::setCurrent(FBefore); }

    bool IsAccess() const { return GetParam() == TSqlDialect::Access; }
    /// The lines of "Error.sql"; none if there is no such file.
    QStringList Logged() const
    {
        const QString file = FCurrent.filePath(QStringLiteral("Error.sql"));
        return QFile::exists(file) ? LoadLines(file) : QStringList();
    }
    QString Rows(const QString &statement)
    {
        QStringList lines = TextOf(FSession.Open(statement)).split(QLatin1Char('\n'));
        return lines.mid(1, lines.size() - 2).join(QStringLiteral(" / "));
    }

    QString FBefore = QDir::currentPath();
    QTemporaryDir FCurrent;
    TestDatabase FDatabase{GetParam()};
    TDBSession FSession;
    QStringList FSent;
};

inline std::string DialectName(const testing::TestParamInfo<TSqlDialect> &tested)
{
    return tested.param == TSqlDialect::Access ? "Access" : "MSSQL";
}

} // namespace Korvane::Testing
