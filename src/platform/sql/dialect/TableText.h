// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlError.h"
#include "platform/sql/dialect/SqlRewriter.h"

#include <QList>
#include <QString>

namespace Korvane {

/// The text of a "create table" statement as the engine keeps it, for changes that the engine has
/// no statement for: the driver makes the table anew from the changed text. Names are compared blind
/// to the case of letters. All functions raise ESqlError.
class TTableText
{
public:
    struct TItem
    {
        QString Name; ///< of the column or the constraint, without quotes; empty for a nameless one
        QString Text; ///< the whole definition as it stands, its name included
    };

    /// Reads the text of a table; it must be in the engine's language.
    explicit TTableText(const QString &sql);

    const QString &Name() const { return FName; }
    const QList<TItem> &Columns() const { return FColumns; }
    const QList<TItem> &Constraints() const { return FConstraints; }

    /// Makes one of the changes below, as a rewritten statement tells it.
    void Apply(const TTableChange &change);

    /// Adds a column at the end; the text is its definition with its name.
    void AddColumn(const QString &text);
    /// The text holds what becomes new: a type, or options, or both. The options that it does not
    /// name stay; so does the type if it begins with an option. "default null" drops a default.
    void AlterColumn(const QString &column, const QString &text);
    /// Refuses the column of a constraint and the last column.
    void DropColumn(const QString &column);
    /// Adds a constraint: a second one of the name and a second primary key are refused.
    void AddConstraint(const QString &text);
    /// Drops a constraint of the table or of a column.
    void DropConstraint(const QString &name);

    /// The statement that creates the table, under another name if one is given.
    QString ToSql(const QString &newName = {}) const;

private:
    TItem *FindColumn(const QString &name);
    bool HasPrimaryKey() const;
    static bool Mentions(const QString &text, const QString &column);

    QString FName;
    QString FHead; ///< "create table" with what else stands before the name
    QString FTail; ///< what stands behind the bracket
    QList<TItem> FColumns;
    QList<TItem> FConstraints;
};

} // namespace Korvane
