// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/dataset/DataSetTypes.h"

#include <QStringList>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace Korvane {

/// A cell as its text; none is NULL.
using TModelCell = std::optional<QString>;
using TModelRow = std::vector<TModelCell>;

QString TextOf(const TModelRow &row);

/// What a store of records does, in the plainest way: whole copies in a list, a log of numbers,
/// no indexes. The yardstick for the real one.
class TModelStore
{
public:
    struct TRecord
    {
        int Number = 0;
        TModelRow Values;
        TModelRow Stored;
        TUpdateStatus Status = usUnmodified;
    };

    /// What has become of a record, or of all of them.
    struct TEvent
    {
        enum TKind { Inserted, Modified, Merged, Reset } Kind = Reset;
        int Number = 0;
        TModelRow Old;
        TModelRow New;
    };

    explicit TModelStore(const std::vector<TModelRow> &rows);

    /// All that are not gone, in the natural order.
    const std::vector<TRecord> &Records() const { return FRecords; }
    TRecord *Find(int number);
    const std::vector<TEvent> &Events() const { return FEvents; }
    /// All numbers are below.
    int Limit() const { return FNext; }
    int ChangeCount() const { return int(FLog.size()); }
    void SetLogChanges(bool log) { FLogChanges = log; }

    /// Before a record, or at the end for -1. Gives the number.
    int Insert(const TModelRow &row, int before);
    void Modify(int number, const TModelRow &row);
    void Delete(int number);
    void Revert(int number);
    /// The number of the record, -1 for an empty log.
    int UndoLast();
    /// Adds rows at the end, which are no changes.
    void Append(const std::vector<TModelRow> &rows);
    void CancelUpdates();
    void Merge();
    /// As DeltaOf.
    QString Delta() const;
    /// What becomes of it when all is saved and loaded again.
    void Reload();

private:
    void Erase(int number);

    std::vector<TRecord> FRecords;
    std::vector<int> FLog;
    std::vector<TEvent> FEvents;
    int FNext = 0;
    bool FLogChanges = true;
};

/// A dataset on such a store, which makes its view anew whenever it is asked. Of rows with equal
/// keys it only remembers which came behind the others since it was last told to select.
class TModelDataSet
{
public:
    struct TSortKey
    {
        int Column = 0;
        bool Descends = false;
        bool IsBlind = false;
    };

    /// Kinds of the columns: 't' for texts, 'n' for numbers.
    TModelDataSet(std::shared_ptr<TModelStore> store, QString kinds);

    std::shared_ptr<TModelStore> Store;
    std::vector<TSortKey> Order;
    std::function<bool(const TModelRow &)> Filter;
    TUpdateStatusSet Statuses;
    /// A row that was left has been posted.
    std::function<void()> OnLeft;
    /// Of a calculated column, which is shown behind the others.
    std::function<TModelCell(const TModelRow &)> Calculate;

    TDataSetState State() const { return FState; }
    bool IsOnRecord() const { return FState == dsBrowse && FCurrent >= 0; }
    TUpdateStatus Status() { return Store->Find(FCurrent)->Status; }
    /// The records seen.
    std::vector<int> View();
    /// To be called when order, filter or statuses have changed.
    void Select();
    int CurrentNumber() const { return FCurrent; }
    QString ViewText();
    QString StatusText();
    QString PlaceText();
    /// Others have changed rows: the flags may still be set, on the row where they were true.
    bool AreFlagsOpen() const { return FAreFlagsOpen; }
    /// The row being edited, or the current one.
    QString RowText() const;
    TModelRow Row() const;

    void Goto(int position);
    void First();
    void Last();
    int MoveBy(int distance);
    void Edit();
    void Insert(bool atEnd);
    void Set(int column, TModelCell value);
    void Post();
    void Cancel();
    void Delete();
    /// Leaves a row that is being edited.
    void Leave();
    bool Locate(const std::vector<int> &columns, const TModelRow &values, bool blind, bool partial);
    /// After a change of the order.
    void Resync() { Resync(FCurrent); }
    /// After a change of the records by others, with the records that were seen before it.
    void Follow(const std::vector<int> &before);
    /// Goes to a record if it is seen.
    void GotoNumber(int number);

private:
    QString LineOf(const TModelRow &row) const;
    bool Sees(const TModelStore::TRecord &record) const;
    int CompareKeys(const TModelRow &left, const TModelRow &right) const;
    int RankOf(int number) const;
    void CatchUp();
    void Resync(int number);
    void SetPosition(int position);

    QString FKinds;
    TDataSetState FState = dsBrowse;
    int FCurrent = -1; // the record's number; -1 for none
    int FPosition = 0;
    bool FBof = false;
    bool FEof = false;
    bool FAreFlagsOpen = false;
    bool FModified = false;
    TModelRow FEdited;
    int FReturn = -1;
    int FBefore = -1;
    std::map<int, int> FRanks;
    int FLastRank = 0;
    int FSelectedLimit = 0;
    size_t FEventsSeen = 0;
};

} // namespace Korvane
