// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class TOrderForm;
class TStage;

// The steps of the road, each in a file of its own. They follow one another on one form: an
// order is made, changed in every way, and deleted.

/// Walks heads, and the lines follow.
void WalkOrders(TStage &stage);
/// The next number of a kind of order on a day, "yyyymmdd", by the rule in the table of kinds.
QString NextBillCode(TStage &stage, const QString &kind, const QString &date);
/// Inserts a head (direct mode). Returns its number.
QString InsertHead(TStage &stage, TOrderForm &form);
/// Inserts lines (batch mode, what changed) and then writes the head's totals.
void InsertLines(TStage &stage, TOrderForm &form);
/// Changes, deletes and inserts lines in one save in a transaction.
void ChangeLines(TStage &stage, TOrderForm &form);
/// Replaces the lines in the database by those in memory (batch mode, all rows).
void ReplaceLines(TStage &stage, TOrderForm &form);
/// Gives the head another key, and its lines with it. Returns the new number.
QString ChangeKey(TStage &stage, TOrderForm &form);
/// A direct save that is rolled back.
void RollBackHead(TStage &stage, TOrderForm &form);
/// Saves that fail midway, within a transaction and without, and what becomes of them.
void FailAndRepeat(TStage &stage, TOrderForm &form);
/// Deletes lines and head.
void DeleteOrder(TStage &stage, TOrderForm &form);
