// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/StringList.h"
#include "support/Packets.h"
#include "support/ScriptedPrompts.h"
#include "support/TestPlace.h"

namespace Korvane::Testing {

/// A connected session on an empty database, whose "Error.sql" is in a folder of its own.
class SessionFixture : public testing::TestWithParam<TTestPlace>
{
protected:
    SessionFixture()
    {
        QDir::setCurrent(FCurrent.path());
        if (!IsThere(GetParam()))
            return;
        Aim(FSession, FDatabase);
        FSession.SetConnected(true);
        FSession.OnExecute() = [this](const QString &statement) { FSent += statement; };
    }
    ~SessionFixture() override { QDir::setCurrent(FBefore); }

    bool IsAccess() const { return GetParam() == dbtAccess; }
    /// The lines of "Error.sql"; none if there is no such file.
    QStringList Logged() const
    {
        const QString file = FCurrent.filePath(QStringLiteral("Error.sql"));
        return QFile::exists(file) ? LoadLines(file) : QStringList();
    }
    /// What the engine says of a table that it does not have.
    QString NoTable(const QString &name) const
    {
        return GetParam().IsPostgres()
                   ? QStringLiteral("ERROR: relation \"%1\" does not exist").arg(name.toUpper())
                   : QStringLiteral("no such table: ") + name;
    }
    QString Rows(const QString &statement)
    {
        QStringList lines = TextOf(FSession.Open(statement)).split(QLatin1Char('\n'));
        return lines.mid(1, lines.size() - 2).join(QStringLiteral(" / "));
    }

    QString Path(const QString &name) const { return FCurrent.filePath(name); }
    /// How a call ended: "true", "false" or "EAbort"; the messages shown, in brackets; and the session's
    /// state.
    QString Outcome(const std::function<bool()> &call)
    {
        const PromptScript script;
        QString text;
        try {
            text = call() ? QStringLiteral("true") : QStringLiteral("false");
        } catch (const EAbort &) {
            text = QStringLiteral("EAbort");
        }
        for (const ScriptedPrompts::Box &box : script->Boxes)
            text += QStringLiteral(" [") + box.Text + u']';
        return text + (FSession.Connected() ? QStringLiteral(" connected") : QStringLiteral(" disconnected"));
    }

    QString FBefore = QDir::currentPath();
    QTemporaryDir FCurrent;
    PlaceDatabase FDatabase{GetParam()};
    TDBSession FSession;
    QStringList FSent;
};

inline std::string DialectName(const testing::TestParamInfo<TSqlDialect> &tested)
{
    return tested.param == TSqlDialect::Access ? "Access" : "MSSQL";
}

} // namespace Korvane::Testing
