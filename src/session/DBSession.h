// SPDX-License-Identifier: MIT
#pragma once

#include "general/Types.h"
#include "platform/core/Component.h"
#include "platform/core/DateTime.h"
#include "platform/data/BlobStreams.h"
#include "platform/data/RowFeed.h"
#include "platform/sql/ADOCommand.h"
#include "platform/sql/ADOConnection.h"
#include "platform/sql/ADODataSet.h"

#include <QStringList>

namespace Korvane {

/// The library's one connection to a database, in either dialect. Datasets read through its
/// Open and write through its Execute.
///
///     TDBSession session;
///     session.SetDBType(dbtAccess);
///     session.SetDBName("orders.db");
///     session.SetConnected(true);
///     const TDataPacket rows = session.Open("select * from CUSTOMER");
///
/// A failed statement raises an Exception whose message is the provider's description, a
/// carriage return and the statement. The session opens no transaction by itself. It is used
/// from one thread and serves one call at a time: an Open invalidates what the query of the
/// call before held, but not the packet that it returned.
class TDBSession : public TComponent
{
    Q_OBJECT
    Q_PROPERTY(bool Connected READ Connected WRITE SetConnected)
    Q_PROPERTY(Korvane::TDBType DBType READ DBType WRITE SetDBType)
    Q_PROPERTY(QString DBServer READ DBServer WRITE SetDBServer)
    Q_PROPERTY(QString DBName READ DBName WRITE SetDBName)
    Q_PROPERTY(QString DBUser READ DBUser WRITE SetDBUser)
    Q_PROPERTY(QString DBPassword READ DBPassword WRITE SetDBPassword)
    Q_PROPERTY(QString AppName READ AppName WRITE SetAppName)
    Q_PROPERTY(int SPID READ SPID STORED false)
    Q_PROPERTY(QStringList SQL READ GetSQL WRITE SetSQL)

public:
    explicit TDBSession(QObject *owner = nullptr);
    ~TDBSession() override;

    bool Connected() const { return FConnected; }
    /// Connects or disconnects, whatever the state is: setting true on a live session makes
    /// the connection anew, with a new SPID.
    void SetConnected(bool connected);
    TDBType DBType() const { return FDBType; }
    /// Also puts the dialect's usual user into DBUser: "Admin" or "sa".
    void SetDBType(TDBType type);
    const QString &DBServer() const { return FDBServer; }
    void SetDBServer(const QString &server) { FDBServer = server; }
    const QString &DBName() const { return FDBName; }
    void SetDBName(const QString &name) { FDBName = name; }
    const QString &DBUser() const { return FDBUser; }
    void SetDBUser(const QString &user) { FDBUser = user; }
    const QString &DBPassword() const { return FDBPassword; }
    void SetDBPassword(const QString &password) { FDBPassword = password; }
    /// The name under which the server lists this session.
    const QString &AppName() const { return FAppName; }
    void SetAppName(const QString &name) { FAppName = name; }
    /// Tells the sessions on a database apart; new with each connect.
    int SPID() const { return FSPID; }

    void Connect();
    void DisConnect();
    void ConnectAccess();
    void ConnectMSSQL();

    /// Joins a running transaction: there is no nesting.
    void BeginTrans();
    void CommitTrans();
    void RollbackTrans();

    /// Runs one statement. Its parameters take the streams in the order of the list, whatever
    /// the names are. The failed statement goes to the file "Error.sql". Always true.
    bool Execute(const QString &statement, const TBlobStreams *streams);
    /// Runs a script in batches, cut at lines that consist of GO; stops at the first that
    /// fails, and the batches before it stay run. Always true.
    bool Execute(const QStringList &script);
    /// Runs one statement and returns how many rows it affected. Failures as above.
    int Execute(const QString &statement);
    /// All rows of a statement. Failures as above.
    TDataPacket Open(const QString &statement);
    /// The same rows, but only so many at once; the others by the feed, which may outlive the session and
    /// whose failures are those of Open. Where an engine cannot read on later without keeping others
    /// from working, they are all there at once.
    TFirstRows Open(const QString &statement, qsizetype firstRows);

    const QStringList &GetSQL() const { return FSQL; }
    void SetSQL(const QStringList &lines) { FSQL = lines; }
    /// Runs each line of the SQL property as a statement of its own. Always true.
    bool ExecuteSQL();

    bool TableExists(const QString &table);
    /// Exact in the case of letters; views and system tables do not count.
    bool TableExistsAccess(const QString &table);
    bool TableExistsMSSQL(const QString &table);
    /// True when the statement returns no row.
    bool IsEmpty(const QString &statement);
    /// The number of the highest schema change that the database contains.
    int GetVersion();
    void SetVersion(int version);

    /// The database's clock; each call asks the server.
    TDateTime GetDateTime();
    QString GetDateTimeStr(); ///< "yyyymmddhhmmss"
    QString GetDateStr();     ///< "yyyymmdd"
    QString GetTimeStr();     ///< "hhmmss"

    /// In the Access dialect all other connections to the database, whatever their name; in
    /// the MSSQL dialect all of that application name, this session included.
    int GetOnlineUsers(const QString &applicationName);
    /// When the database was made.
    TDateTime GetDBDate();
    void OpenSchema(TSchemaInfo schema, const QVariant &restrictions, const QVariant &schemaId,
                    TADODataSet &target);

    // Backup and restore talk to the user themselves: a failure is shown as a message and ends with
    // EAbort, so that a result of false is never seen. Afterwards the session is disconnected.

    /// Copies the whole database to a file; in the MSSQL dialect the server does, and the file's name
    /// is a path of the server's. Others may go on working. After a failure the Access dialect
    /// stays connected as it was.
    bool BackupDB(const QString &fileName);
    /// The database file DBName, whether the session is connected to it or not.
    bool BackupAccess(const QString &fileName);
    bool BackupMSSQL(const QString &fileName);
    /// Puts the database back from a file. The session must be connected, as the only user by the count of
    /// GetOnlineUsers(AppName): in the MSSQL dialect it is therefore connected under another
    /// name than AppName, or under none. There DBName is "master" after a success and as before after
    /// a failure, and the statement restores "master", on purpose: which database that is, the server says.
    bool RestoreDB(const QString &fileName);
    /// The copy passes through "~template.mdb" in the folder of DBName. A backup that is damaged or missing
    /// costs nothing. Whether the last step, the exchange of the files, could be done is not looked at.
    bool RestoreAccess(const QString &fileName);
    bool RestoreMSSQL(const QString &fileName);

    /// Sees each statement before it runs.
    TEvent<const QString &> &OnExecute() { return FConnection.OnExecute; }

private:
    class TFeed;
    enum class TLogging { ErrorFile, None };
    /// Runs an action on the database; any failure is reported in the library's one form.
    template <class Text, class Action> auto Guarded(TLogging logging, Text text, Action action);
    [[noreturn]] static void Fail(TLogging logging, const QList<TSqlError> &errors, const QString &sql);
    void OpenQuery(const QString &statement);
    void ConnectTo(const QString &connectionString);
    QVariant FirstValue() const;
    /// Runs one of the server's own statements on a connection made anew.
    void RunOnServer(const QString &statement);
    /// Shows what failed, with the provider's main error, and aborts.
    [[noreturn]] void AbortWithError(const QString &message);
    void AbortIfInUse();

    TADOConnection FConnection;
    TADOQuery FQuery;
    TDataSetProvider FProvider;
    TADODataSet FSchema;
    TADOCommand FCommand;
    bool FConnected = false;
    QString FDBServer;
    QString FDBName;
    QString FDBUser;
    QString FDBPassword;
    TDBType FDBType = dbtAccess;
    int FTransLevel = 0;
    QString FAppName;
    int FSPID = 0;
    QStringList FSQL;
};

/// The connection string of each dialect, values quoted where they hold a ";".
QString AccessConnectionString(const QString &fileName, const QString &user, const QString &password);
QString MSSQLConnectionString(const QString &server, const QString &database, const QString &user,
                              const QString &password, const QString &applicationName);

} // namespace Korvane
