// SPDX-License-Identifier: MIT
#pragma once

#include "design/RecordBinding.h"

namespace Korvane {

/// A column that a definition writes.
struct TWrittenColumn
{
    qsizetype Field; ///< the place of the definition's field that gives the value
    QString Code;    ///< what the column is called in the statement
};

/// The statements that write an object into a table, for one definition. What the columns and
/// their properties are called is worked out once, not for every row.
class TRowStatements
{
public:
    void Aim(const QString &table, const TObjectList<TFieldsObject> &fields, QList<TWrittenColumn> columns);

    const TRecordBinding &BindingOf(const TDBObject &object) { return FBindings.Of(object); }
    QString InsertSQL(const TDBObject &object);
    /// NOTE: the conditions are part of a format, so that a "%" in them is a placeholder, and
    /// EConvertError is raised where it is a wrong one.
    QString UpdateSQL(const TDBObject &object, const QString &conditions);

private:
    void PrepareTexts();
    QString ColumnNames() const;
    /// The value of each column, behind the column's text in a list of as many.
    void AppendValues(QString &statement, const QStringList &before, const TDBObject &object);

    QString FTable;
    QList<TWrittenColumn> FColumns;
    TRecordBindings FBindings;
    QString FInsertHead; // up to the values; made at the first use
    // What stands before each value; made at the first use.
    QStringList FBeforeValues; // of an insert: ", "
    QStringList FAssignments;  // of an update: ", CODE="
};

} // namespace Korvane
