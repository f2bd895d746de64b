// SPDX-License-Identifier: MIT
#pragma once

#include "general/Types.h"

#include <QString>
#include <QVariant>

#include <functional>

namespace Korvane {

/// What a condition needs to know of a key.
struct TConditionColumn
{
    QString Name;      ///< as it is written in the condition
    QString FieldType; ///< name of the logical type
};

/// The conditions of a key list (names joined by ";") and its values, without the word where
/// and without brackets; empty for an empty list. values is a list with an entry per key, or
/// the value itself when there is one key. Each name is resolved by the function given, which
/// raises for an unknown one; EVariantError is raised when a value is missing.
///
/// A value is written as it is, neither trimmed nor turned into a flag's letter, and a Boolean
/// is quoted: the caller passes the stored letter. A like option on a number writes its
/// wildcards bare, without quotes.
QString WhereClause(TDBType type, const QString &keys, const QVariant &values, TOpenOption option,
                    const std::function<TConditionColumn(const QString &)> &resolve);

} // namespace Korvane
