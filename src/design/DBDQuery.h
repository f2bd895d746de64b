// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBDTable.h"

#include <array>
#include <optional>

namespace Korvane {

/// The definition of one query: a select over one or more tables with named columns and, per
/// dialect, a text behind the "from". Records are written back to its main table alone, and
/// only in the columns that are plain columns of that table.
class TDBDQuery : public TDBDObject
{
    Q_OBJECT
    Q_PROPERTY(QString Table READ Table STORED false)
    Q_PROPERTY(QString Query READ Query WRITE SetQuery)
    Q_PROPERTY(std::shared_ptr<Korvane::TQuerysObject> QueryObject READ QueryObject STORED false)
    Q_PROPERTY(Korvane::TObjectList<Korvane::TColumnsObject> Columns READ Columns STORED false)
    Q_PROPERTY(Korvane::TObjectList<Korvane::TFieldsObject> QueryFields READ QueryFields STORED false)
    Q_PROPERTY(Korvane::TObjectList<Korvane::TIndexsObject> Indexs READ Indexs STORED false)
    Q_PROPERTY(Korvane::TObjectList<Korvane::TFieldsObject> KeyFields READ KeyFields STORED false)
    Q_PROPERTY(QString KeyFieldStr READ KeyFieldStr STORED false)

public:
    explicit TDBDQuery(QObject *owner = nullptr);

    /// Code of the main table.
    const QString &Table() const { return FTable; }
    /// The code or class name by which the definition was last aimed.
    const QString &Query() const { return FQuery; }
    /// Aims the definition, with the same caching as TDBDTable::SetTable.
    void SetQuery(const QString &query);
    /// Raises Exception when no query is set.
    void CheckQuery();

    const std::shared_ptr<TQuerysObject> &QueryObject() const { return FQueryObject; }
    const TObjectList<TColumnsObject> &Columns() const { return FColumns; }
    /// One per column, at the same index: the source field's type under the column's alias.
    const TObjectList<TFieldsObject> &QueryFields() const { return FQueryFields; }
    /// The main table's indexes, their fields as property names.
    const TObjectList<TIndexsObject> &Indexs() const { return FIndexs; }
    /// The main table's key fields.
    const TObjectList<TFieldsObject> &KeyFields() const { return FKeyFields; }
    /// Their property names joined by ";".
    const QString &KeyFieldStr() const { return FKeyFieldStr; }

    /// The query fields bound to an object's class, found once per class and aim. Raises
    /// EClassNotFound when the class is not registered.
    const TRecordBinding &BindingOf(const TDBObject &object) { return FRowStatements.BindingOf(object); }

    /// The query field of that name, exact in case and shared with QueryFields; otherwise a new
    /// object of the main table's field.
    std::shared_ptr<TFieldsObject> GetField(const QString &name);
    /// A new object of the main table's field.
    std::unique_ptr<TFieldsObject> GetFieldCode(const QString &name);
    /// A list of field names joined by ";", each replaced by its property name.
    QString SetFieldProp(const QString &fields);

    /// The select list up to the word from; empty for a query without columns. audit adds the
    /// audit columns of the main table.
    QString GetScript(bool selection, bool audit) const;
    QString GetAccessQueryScript(bool selection, bool audit) const;
    QString GetMSSQLQueryScript(bool selection, bool audit) const;
    QString GetQueryScript(TDBType type, bool selection, bool audit) const;

    QString GetSelectSQL(TDBType type, bool selection, bool audit);
    /// With no keys the statement ends in " where ", which no database takes.
    QString GetSelectSQL(TDBType type, const QString &keys, const QVariant &values, TOpenOption option,
                         bool selection, bool audit);
    /// Conditions on the query's result columns.
    QString GetWhereSQL(TDBType type, const QString &keys, const QVariant &values, TOpenOption option);
    /// Conditions on the main table's columns.
    QString GetTableWhere(TDBType type, const QString &keys, const QVariant &values, TOpenOption option);
    /// Takes the plain columns of the main table. When the query's first column is none of
    /// them, both lists begin with ", ", which no database takes.
    QString GetInsertSQL(const TDBObject &object);
    QString GetUpdateSQL(TDBType type, const TDBObject &object);
    QString GetUpdateSQL(TDBType type, const TDBObject &object, const QString &keys, const QVariant &values);
    QString GetDeleteSQL(TDBType type, const TDBObject &object);
    QString GetDeleteSQL(TDBType type, const TDBObject &object, const QString &keys, const QVariant &values);
    QString GetDeleteSQL(TDBType type, const QString &keys, const QVariant &values);

    /// Source text of the query's record class in the language of the component framework.
    QString GetQueryClass() const;

private:
    QList<TWrittenColumn> WrittenColumns() const;
    QString SelectList(bool selection, bool audit) const;
    const QList<TConditionColumn> &ResultKeys(const QString &keys);
    const QList<TConditionColumn> &TableKeys(const QString &keys);
    quint64 FieldsReading() const;
    QString DialectScript(const QString &text, bool selection, bool audit) const;

    QString FTable;
    QString FQuery;
    std::shared_ptr<TQuerysObject> FQueryObject;
    TObjectList<TColumnsObject> FColumns;
    TObjectList<TFieldsObject> FQueryFields;
    TObjectList<TIndexsObject> FIndexs;
    TObjectList<TFieldsObject> FKeyFields;
    QString FKeyFieldStr;
    TDBDTable FDBDTable; // the main table
    TRowStatements FRowStatements;
    TKeyColumns FResultKeys;
    TKeyColumns FTableKeys;
    mutable std::array<std::optional<QString>, 4> FScripts; // by the flags of GetScript; made at need
};

} // namespace Korvane
