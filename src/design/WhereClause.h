// SPDX-License-Identifier: MIT
#pragma once

#include "general/Types.h"

#include <QList>
#include <QString>
#include <QVariant>

#include <functional>
#include <vector>

namespace Korvane {

/// What a condition needs to know of a key.
struct TConditionColumn
{
    QString Name; ///< as it is written in the condition
    TDataType Type;
};

/// The columns of the key lists (names joined by ";") that a definition was asked for lately,
/// so that a list that comes with every row is resolved once.
class TKeyColumns
{
public:
    void Clear() { FLists.clear(); }
    /// The columns of a list. Each name is resolved by the function given, which raises for an
    /// unknown one. A list is resolved anew when the reading of the design file that it was
    /// resolved by is not the latest any more. The reference is good until the next call.
    const QList<TConditionColumn> &Of(const QString &keys, quint64 reading,
                                      const std::function<TConditionColumn(const QString &)> &resolve);

private:
    struct TKeyList
    {
        QString Keys;
        QList<TConditionColumn> Columns;
    };

    std::vector<TKeyList> FLists;
    quint64 FReading = 0;
};

/// Adds the conditions of key columns and their values, without the word where and without
/// brackets; nothing when there are no columns. values is a list with an entry per column, or
/// the value itself when there is one column. EVariantError is raised when a value is missing.
///
/// A value is written as it is, neither trimmed nor turned into a flag's letter, and a Boolean
/// is quoted: the caller passes the stored letter. A like option on a number writes its
/// wildcards bare, without quotes.
void AppendConditions(QString &statement, TDBType type, const QList<TConditionColumn> &columns,
                      const QVariant &values, TOpenOption option);

} // namespace Korvane
