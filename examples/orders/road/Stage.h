// SPDX-License-Identifier: MIT
#pragma once

#include "general/Types.h"
#include "session/DBSession.h"

#include <functional>
#include <memory>

namespace Korvane {
class TDataSet;
class TDBDFile;
} // namespace Korvane

/// What all steps work on: the design file and one of the demonstration's databases; and how
/// they show what happens, and check it.
class TStage
{
public:
    TStage(Korvane::TDBDFile &design, Korvane::TDBType type, const QString &folder);

    Korvane::TDBDFile &Design() { return FDesign; }
    Korvane::TDBSession &Session() { return *FSession; }
    /// The connection of another user to the same database.
    std::unique_ptr<Korvane::TDBSession> NewSession() const;

    /// Begins a step.
    void Head(const QString &text);
    void Say(const QString &text) const;

    /// Runs an action, prints the statements that it sent to the database and returns them.
    QStringList Watch(const std::function<void()> &action);
    // The transactions of the session, told to the reader.
    void Begin();
    void Commit();
    void RollBack();

    /// Prints the rows of a dataset as they stand in memory; fields joined by ";".
    void ShowInMemory(Korvane::TDataSet &set, const QString &fields) const;
    /// Prints rows of a table as they stand in the database, headed by the design's names.
    void ShowInDatabase(const QString &table, const QString &columns, const QString &where);
    int CountInDatabase(const QString &table, const QString &where);
    /// The first column of the first row.
    QString ValueInDatabase(const QString &statement);

    /// Prints what is claimed. Raises Exception when it does not hold.
    void Check(bool holds, const QString &claim) const;

private:
    QString LabelOf(const QString &table, const QString &column);

    Korvane::TDBDFile &FDesign;
    const Korvane::TDBType FType;
    const QString FFolder;
    std::unique_ptr<Korvane::TDBSession> FSession;
    int FStep = 0;
};
