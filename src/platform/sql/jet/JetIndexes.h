// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/jet/JetValue.h"

#include <QHash>
#include <QList>
#include <QStringList>

namespace Korvane {

/// An index of a table as its definition tells it; the index itself is never read.
struct TJetIndex
{
    QString Name;
    QStringList Columns;
    bool IsUnique = false;
    bool IsPrimary = false;
};

/// Where the descriptions of the indexes stand in a definition, behind the columns' names.
struct TJetIndexPlaces
{
    size_t At = 0;
    size_t PhysicalCount = 0; ///< trees of keys
    size_t NamedCount = 0;    ///< names for them; several may share one tree
};

/// Reads the indexes in the order of the file, those left out that only serve a relation.
/// columns are the names by the columns' numbers.
QList<TJetIndex> ReadJetIndexes(TJetBytes definition, const TJetIndexPlaces &places, bool isJet3,
                                const QHash<int, QString> &columns, TJetText &text);

} // namespace Korvane
