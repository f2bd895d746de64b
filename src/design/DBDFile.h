// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBDChange.h"
#include "design/DBDCommand.h"
#include "design/DBDQuery.h"
#include "design/DBDTable.h"
#include "design/DesignLayouts.h"
#include "platform/core/Event.h"

namespace Korvane {

class TDBSession;

/// Which tables of the design file Refresh reads anew.
enum TRefreshType { rtAll, rtTables, rtQuerys, rtCommands, rtChanges };

/// What the latest lookup of a table read beside the table's own row.
struct TTableRead
{
    TObjectList<TFieldsObject> Fields;
    TObjectList<TFieldsObject> KeyFields; ///< all fields when none is marked as key
    QString KeyFieldStr;                  ///< their codes joined by ";"
    TObjectList<TIndexsObject> Indexs;
};

/// What the latest lookup of a query read beside the query's own row.
struct TQueryRead
{
    QString MainTable;
    TObjectList<TColumnsObject> Columns;
    TObjectList<TFieldsObject> Fields;
};

/// Opens a design file and answers every question about it: which tables, fields, indexes,
/// queries, commands and schema changes an application's database has. Creates a database from
/// it and brings an old one up to date. docs/design-file.md tells what stands in the file,
/// which is a Jet database or an SQLite file with the same seven tables, and is only read.
///
///     TDBDFile design;
///     design.SetFileName("orders.dbd");
///     design.SetActived(true);
///     TDBDTable *customer = design.GetDBDTable("CUSTOMER");
///     QString statement = customer->GetSelectSQL(false);
///
/// The file is read once; changes in it are seen after Refresh or another SetActived(true). A
/// failed lookup raises an Exception and leaves the component as it is.
class TDBDFile : public TComponent
{
    Q_OBJECT
    Q_PROPERTY(bool Actived READ Actived WRITE SetActived)
    Q_PROPERTY(QString FileName READ FileName WRITE SetFileName)

public:
    explicit TDBDFile(QObject *owner = nullptr);
    ~TDBDFile() override;

    bool Actived() const { return FActived; }
    /// Runs in full at every assignment: true connects anew and reads all seven tables. When
    /// that fails an exception is raised, and the property keeps its earlier value.
    void SetActived(bool actived);
    const QString &FileName() const { return FFileName; }
    /// Has no effect until Actived is set again.
    void SetFileName(const QString &fileName) { FFileName = fileName; }

    /// Called by the creation of a database before each table, with the number of tables and
    /// the number of this one, from 1.
    TEvent<int, int> OnProgressEvent;

    // Lists, in the order of the file. Every call makes new objects.
    TObjectList<TTablesObject> GetTables() const;
    TObjectList<TQuerysObject> GetQuerys() const;
    TObjectList<TCommandsObject> GetCommands() const;
    TObjectList<TChangesObject> GetChanges() const;
    /// A line for each table, ended by CR LF: the code filled to 20 bytes, and the name.
    QString GetTableNames() const;

    // Lookups. Every call makes new objects.
    /// By code or class name.
    std::shared_ptr<TTablesObject> GetTable(const QString &table);
    TObjectList<TFieldsObject> GetTableFields(const QString &tableCode);
    TObjectList<TIndexsObject> GetTableIndexs(const QString &tableCode);
    /// By field code or property name; the code goes first.
    std::unique_ptr<TFieldsObject> GetField(const QString &tableCode, const QString &field);
    /// By code or class name.
    std::shared_ptr<TQuerysObject> GetQuery(const QString &query);
    TObjectList<TColumnsObject> GetQueryColumns(const QString &queryCode);
    std::shared_ptr<TCommandsObject> GetCommand(const QString &command);
    std::shared_ptr<TChangesObject> GetChange(int number);
    /// 0 when there are no changes.
    int GetMaxChangeNo() const;
    /// Another number when the fields are read anew or closed, and the same for no two files.
    quint64 FieldsReading() const { return FFields.Reading(); }
    const TTableRead &LatestTable() const { return FLatestTable; }
    const TQueryRead &LatestQuery() const { return FLatestQuery; }

    // Definitions. Each is one shared object, aimed anew by the next call.
    TDBDTable *GetDBDTable(const QString &table);
    TDBDQuery *GetDBDQuery(const QString &query);
    TDBDCommand *GetDBDCommand(const QString &command);
    TDBDChange *GetDBDChange(int number);

    /// Reads tables of the file anew. Definitions that are aimed already keep what they read.
    void Refresh(TRefreshType type);

    /// All statements that create the schema, with a line "go" behind each; one entry may hold
    /// several lines. The flags are those of TDBDTable::GetTableScript.
    QStringList CreateScript(TDBType type, bool comments, bool boolAsChar, bool property);
    /// Creates the database that a session names, at the design's latest version. Asks before
    /// an existing one is overwritten; a refusal raises an Exception. Nothing is undone when a
    /// statement fails. Always true.
    bool CreateDB(TDBSession &session, bool boolAsChar);
    bool CreateAccessDB(TDBSession &session, bool boolAsChar, bool property);
    bool CreateMSSQLDB(TDBSession &session, bool boolAsChar, bool property);
    /// Runs the changes between the database's version and the design's, then writes the new
    /// version. False, with a message, when the database is up to date. A failing batch raises,
    /// and the version stays.
    bool UpgradeDB(TDBSession &session);
    bool UpgradeAccessDB(TDBSession &session);
    bool UpgradeMSSQLDB(TDBSession &session);
    /// The script lines of the changes after one number up to and including another.
    QStringList GetUpgradeSQL(TDBType type, int from, int to) const;
    /// A statement per column that returns a row for each NULL in it. Reads the file anew.
    QStringList GetCheckSQL();
    /// A statement per column that fills its NULLs. Reads the file anew.
    QStringList GetRepairSQL();

private:
    void OpenAll();
    void CloseAll();
    void CreateTables(TDBSession &session, bool boolAsChar, bool property);
    bool Upgrade(TDBSession &session);
    std::vector<TCheckedField> CheckedFields();

    bool FActived = false;
    QString FFileName;
    TADOConnection FConnection;
    TDesignTable<TTablesObject> FTables{TablesLayout};
    TDesignTable<TQuerysObject> FQuerys{QuerysLayout};
    TDesignTable<TCommandsObject> FCommands{CommandsLayout};
    TDesignTable<TFieldsObject> FFields{FieldsLayout};
    TDesignTable<TIndexsObject> FIndexs{IndexsLayout};
    TDesignTable<TColumnsObject> FColumns{ColumnsLayout};
    TDesignTable<TChangesObject> FChanges{ChangesLayout};
    TTableRead FLatestTable;
    TQueryRead FLatestQuery;
    TDBDTable FDBDTable;
    TDBDQuery FDBDQuery;
    TDBDCommand FDBDCommand;
    TDBDChange FDBDChange;
};

} // namespace Korvane
