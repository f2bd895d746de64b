// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlDriver.h"

namespace Korvane {

/// Read-only access to Jet 3 and Jet 4 files (.mdb, .dbd) in the Access dialect. Selects alone
/// run; all else is refused as read-only.
///
/// Each query opens the file anew, copies the tables that the statement names into a private
/// database in memory and runs there. So a query sees what others have written, nothing stays
/// locked, and its cost goes by the size of the tables, not of the result. Text compares with
/// case; dates are ISO texts; booleans are 0 and 1.
class TJetDriver : public SqlDriver
{
public:
    /// Whether a file begins as a Jet database does; false for what cannot be read.
    static bool IsJetFile(const QString &fileName);

    bool HasFeature(TSqlFeature feature) const override;
    /// The data source is the file. A database password that is set in the file must be
    /// given; users and their rights are not looked at.
    void Connect(const TConnectionString &connection, const TSqlConnectOptions &options) override;
    void Disconnect() override;
    bool IsConnected() const override { return !FFileName.isEmpty(); }
    qint64 Execute(const QString &statement, std::span<const TSqlParameter> parameters = {}) override;
    TDataPacket Query(const QString &statement, std::span<const TSqlParameter> parameters = {}) override;
    void BeginTransaction() override;
    void CommitTransaction() override;
    void RollbackTransaction() override;
    bool InTransaction() const override { return false; }
    /// Removes the file: a Jet file can be replaced by a new database, though not written to.
    void DropDatabase(const TConnectionString &connection) override;
    /// siTables, system tables first, siColumns, and siIndexes of the tables that are no system tables.
    TDataPacket OpenSchema(TSchemaInfo schema, const QVariantList &restrictions,
                           const QString &schemaId) override;

private:
    void CheckConnected() const;
    [[noreturn]] void FailReadOnly() const;

    QString FFileName; ///< empty when not connected
};

} // namespace Korvane
