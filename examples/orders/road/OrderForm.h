// SPDX-License-Identifier: MIT
#pragma once

#include "datasets/ExDB.h"

#include <QString>

class TStage;

/// The kind of order that the steps work on.
inline const QString OrderKind = QStringLiteral("2201");

/// The datasets of an order entry form: heads, and the lines of the current head. The lines
/// follow the heads by the two columns of the order's key, and number themselves.
///
/// Heads are saved as soon as they are posted; lines, having a master, stay in memory until
/// Save.
class TOrderForm
{
public:
    explicit TOrderForm(TStage &stage);

    Korvane::TExTable Heads;
    Korvane::TDataSource HeadSource;
    Korvane::TExTable Lines;

    /// Reads one order.
    void Open(const QString &billCode);
    /// Opens the lines, once: from then on they follow the heads.
    void Follow();
    /// Writes the sums of the lines into the head, and saves it.
    void SaveTotals();
    /// Adds a line in memory.
    void AddLine(const QString &itemCode, double qty, double price);
    /// Changes the current line in memory.
    void ChangeQty(double qty);
    /// Makes a line current. Raises Exception when there is none of the number.
    void GoToLine(const QString &billLine);
};

/// A dataset of one table on a session of its own, as another program would have it.
void SetUp(Korvane::TExTable &set, TStage &stage, const QString &table);

/// Checks that the head's totals in the database are the sums of its lines there.
void CheckTotals(TStage &stage, const QString &billCode);

/// The condition that finds an order's rows, in either table.
QString OrderCondition(const QString &billCode);
