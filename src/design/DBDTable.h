// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBDObject.h"
#include "design/RowStatements.h"
#include "design/WhereClause.h"

namespace Korvane {

/// The definition of one table: its fields, key and indexes, and every statement that reads or
/// writes it. The statements are plain text with the values written in. Unset until it is
/// aimed at a table; each generator then works on that table.
///
/// A key list is a text of field codes or property names joined by ";". Values are a list with
/// an entry per key, or the value itself when there is one key.
class TDBDTable : public TDBDObject
{
    Q_OBJECT
    Q_PROPERTY(QString Table READ Table WRITE SetTable)
    Q_PROPERTY(std::shared_ptr<Korvane::TTablesObject> TableObject READ TableObject STORED false)
    Q_PROPERTY(Korvane::TObjectList<Korvane::TFieldsObject> TableFields READ TableFields STORED false)
    Q_PROPERTY(Korvane::TObjectList<Korvane::TIndexsObject> Indexs READ Indexs STORED false)
    Q_PROPERTY(Korvane::TObjectList<Korvane::TFieldsObject> KeyFields READ KeyFields STORED false)
    Q_PROPERTY(QString KeyFieldStr READ KeyFieldStr STORED false)

public:
    explicit TDBDTable(QObject *owner = nullptr);

    /// The code or class name by which the definition was last aimed.
    const QString &Table() const { return FTable; }
    /// Aims the definition. Nothing happens when it stands on that text already, so that it
    /// has to be aimed at another table first to see a changed design file. Raises the
    /// exception of TDBDFile::GetTable; the text is kept all the same.
    void SetTable(const QString &table);
    /// Raises Exception when no table is set.
    void CheckTable();

    const std::shared_ptr<TTablesObject> &TableObject() const { return FTableObject; }
    const TObjectList<TFieldsObject> &TableFields() const { return FTableFields; }
    const TObjectList<TIndexsObject> &Indexs() const { return FIndexs; }
    /// The key fields; all fields when none is marked as key.
    const TObjectList<TFieldsObject> &KeyFields() const { return FKeyFields; }
    /// Their codes joined by ";".
    const QString &KeyFieldStr() const { return FKeyFieldStr; }

    /// The fields bound to an object's class, found once per class and aim. Raises
    /// EClassNotFound when the class is not registered.
    const TRecordBinding &BindingOf(const TDBObject &object) { return FRowStatements.BindingOf(object); }

    /// A new object of the field with that code or property name.
    std::unique_ptr<TFieldsObject> GetField(const QString &field);

    /// With selection the rows get a first column FSELECTED with the constant 'N'.
    QString GetSelectSQL(bool selection);
    QString GetSelectSQL(TDBType type, const QString &keys, const QVariant &values, TOpenOption option,
                         bool selection);
    /// Conditions without the word where; empty when there are no keys.
    QString GetWhereSQL(TDBType type, const QString &keys, const QVariant &values, TOpenOption option);
    QString GetInsertSQL(const TDBObject &object);
    /// Finds the row by the object's KeyValues. A "%" in a key value is read as a placeholder.
    QString GetUpdateSQL(TDBType type, const TDBObject &object);
    QString GetUpdateSQL(TDBType type, const TDBObject &object, const QString &keys, const QVariant &values);
    QString GetDeleteSQL(TDBType type, const TDBObject &object);
    /// The object is not read. With no keys the statement ends in " where ", which no database takes.
    QString GetDeleteSQL(TDBType type, const TDBObject &object, const QString &keys, const QVariant &values);
    /// With no keys the statement empties the table.
    QString GetDeleteSQL(TDBType type, const QString &keys, const QVariant &values);

    // The scripts do not check that the definition is aimed.

    /// The statement that creates the table, with the audit columns before its own. Comments
    /// are "--" comments behind the columns; property puts the property name into them.
    QString GetTableScript(TDBType type, bool comments, bool boolAsChar, bool property);
    QString GetAccessTableScript(bool comments, bool boolAsChar, bool property);
    QString GetMSSQLTableScript(bool comments, bool boolAsChar, bool property);
    QString GetIndexScript(TDBType type, const TIndexsObject &index) const;
    QString GetAccessIndexScript(const TIndexsObject &index) const;
    QString GetMSSQLIndexScript(const TIndexsObject &index) const;

    /// Source text of the table's record class in the language of the component framework.
    QString GetTableClass() const;

private:
    void AppendWhere(QString &statement, TDBType type, const QString &keys, const QVariant &values,
                     TOpenOption option);
    QString TableScript(TDBType type, bool comments, bool boolAsChar, bool property);

    QString FTable;
    std::shared_ptr<TTablesObject> FTableObject;
    TObjectList<TFieldsObject> FTableFields;
    TObjectList<TIndexsObject> FIndexs;
    TObjectList<TFieldsObject> FKeyFields;
    QString FKeyFieldStr;
    TRowStatements FRowStatements;
    TKeyColumns FKeyColumns;
};

} // namespace Korvane
