// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Component.h"
#include "platform/core/Event.h"
#include "platform/sql/SqlDriver.h"

#include <memory>

namespace Korvane {

class TADODataSet;

/// How far a transaction sees what others do. Kept for the drivers that can choose.
enum TIsolationLevel {
    ilUnspecified,
    ilChaos,
    ilReadUncommitted,
    ilBrowse,
    ilCursorStability,
    ilReadCommitted,
    ilRepeatableRead,
    ilSerializable,
    ilIsolated
};

/// A connection to a database through the driver that its connection string names. The
/// error list holds what the last failure left; it is emptied when the next operation begins.
class TADOConnection : public TComponent
{
    Q_OBJECT
    Q_PROPERTY(QString ConnectionString READ ConnectionString WRITE SetConnectionString)
    Q_PROPERTY(bool Connected READ Connected WRITE SetConnected STORED false)

public:
    explicit TADOConnection(QObject *owner = nullptr);
    ~TADOConnection() override;

    const QString &ConnectionString() const { return FConnectionString; }
    /// Takes effect at the next connect.
    void SetConnectionString(const QString &text) { FConnectionString = text; }

    bool Connected() const;
    /// True connects; an existing connection stays. Raises ESqlError.
    void SetConnected(bool connected);

    TConnectMode Mode() const { return FOptions.Mode; }
    void SetMode(TConnectMode mode) { FOptions.Mode = mode; }
    /// How long a statement waits for the lock of another user, in seconds.
    int CommandTimeout() const { return FOptions.CommandTimeout; }
    void SetCommandTimeout(int seconds) { FOptions.CommandTimeout = seconds; }
    /// Under which name the connection is listed, where its connection string has no place for one.
    QString ApplicationName() const { return FOptions.ApplicationName; }
    void SetApplicationName(const QString &name) { FOptions.ApplicationName = name; }
    TIsolationLevel IsolationLevel() const { return FIsolationLevel; }
    void SetIsolationLevel(TIsolationLevel level) { FIsolationLevel = level; }
    /// Without it the connection closes when its last open query does. Set by default.
    bool KeepConnection() const { return FKeepConnection; }
    void SetKeepConnection(bool keep) { FKeepConnection = keep; }
    /// Nothing here ever asks for a name and a password; the property is for stored forms.
    bool LoginPrompt() const { return FLoginPrompt; }
    void SetLoginPrompt(bool prompt) { FLoginPrompt = prompt; }

    /// Returns the nesting level, which is always 1: transactions do not nest.
    int BeginTrans();
    void CommitTrans();
    void RollbackTrans();
    bool InTransaction() const;

    /// What the last failure left: a list of entries, the first being the main one.
    const QList<TSqlError> &Errors() const { return FErrors; }
    void ClearErrors() { FErrors.clear(); }

    qint64 Execute(const QString &statement, std::span<const TSqlParameter> parameters = {});
    TDataPacket Query(const QString &statement, std::span<const TSqlParameter> parameters = {});
    /// At least so many rows at once, the others by the feed: see SqlDriver.
    TFirstRows QueryFirst(const QString &statement, qsizetype rows);
    QVariant QueryValue(const QString &statement);
    /// Fills the target with a schema rowset and opens it. restrictions is a list or invalid.
    void OpenSchema(TSchemaInfo schema, const QVariant &restrictions, const QVariant &schemaId,
                    TADODataSet &target);

    /// The driver in use. Raises EDatabaseError when not connected.
    SqlDriver &Driver() const;

    TEvent<TADOConnection *> AfterConnect, AfterDisconnect;
    /// Sees each statement before it runs, for logs and profilers.
    TEvent<const QString &> OnExecute;

private:
    /// Runs an action of the driver; its failure fills the error list and passes on.
    template <class Action> auto Guarded(Action action);

    QString FConnectionString;
    TSqlConnectOptions FOptions;
    TIsolationLevel FIsolationLevel = ilCursorStability;
    bool FKeepConnection = true;
    bool FLoginPrompt = true;
    std::unique_ptr<SqlDriver> FDriver;
    QList<TSqlError> FErrors;
};

/// Makes the empty database that a connection string names. Raises ESqlError.
void CreateCatalog(const QString &connectionString);
/// Removes the database that a connection string names. Raises ESqlError, also when it is in
/// use.
void RemoveCatalog(const QString &connectionString);

} // namespace Korvane
