// SPDX-License-Identifier: MIT
#include "support/Stores.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace Korvane {

namespace {

/// The same store, told in the plainest way: all rows in a list, each with all it had.
class TPlainStore
{
public:
    struct TRow
    {
        quint32 Number;
        std::string Now;
        std::string Stored;
        TUpdateStatus Status = usUnmodified;
    };
    std::vector<TRow> Rows; // in natural order, without those that are gone
    std::vector<quint32> Log;
    bool LogChanges = true;

    size_t PlaceOf(quint32 number) const
    {
        const auto found =
            std::find_if(Rows.begin(), Rows.end(), [&](auto &row) { return row.Number == number; });
        return size_t(found - Rows.begin());
    }
    void Insert(quint32 number, const std::string &values, size_t place)
    {
        Rows.insert(Rows.begin() + qsizetype(place),
                    {number, values, {}, LogChanges ? usInserted : usUnmodified});
        if (LogChanges)
            Log.push_back(number);
    }
    void Modify(size_t place, const std::string &values)
    {
        if (LogChanges)
            Change(Rows[place], usModified);
        Rows[place].Now = values;
    }
    void Delete(size_t place)
    {
        if (!LogChanges || Rows[place].Status == usInserted)
            return Remove(place);
        Change(Rows[place], usDeleted);
        Rows[place].Status = usDeleted;
        Rows[place].Now = Rows[place].Stored;
    }
    void Revert(size_t place)
    {
        if (Rows[place].Status == usInserted)
            return Remove(place);
        if (Rows[place].Status != usUnmodified)
            Rows[place].Now = Rows[place].Stored;
        Rows[place].Status = usUnmodified;
        std::erase(Log, Rows[place].Number);
    }
    void Merge()
    {
        std::erase_if(Rows, [](const TRow &row) { return row.Status == usDeleted; });
        for (TRow &row : Rows)
            row.Status = usUnmodified;
        Log.clear();
    }

    std::string Shown() const
    {
        std::string text;
        for (const TRow &row : Rows)
            text += StatusMarks[row.Status] + row.Now;
        return text;
    }
    std::string Delta() const
    {
        std::string text;
        for (const quint32 number : Log) {
            const TRow &row = Rows[PlaceOf(number)];
            if (row.Status == usInserted)
                text += '+' + row.Now;
            else if (row.Status == usDeleted)
                text += '-' + row.Stored;
            else
                text += ' ' + row.Stored + '*' + Changed(row);
        }
        return text;
    }

private:
    static std::string Changed(const TRow &row)
    {
        return (row.Now[0] == row.Stored[0] ? std::string("~") : row.Now.substr(0, 1)) +
               (row.Now.substr(1) == row.Stored.substr(1) ? std::string("~") : row.Now.substr(1));
    }
    void Change(TRow &row, TUpdateStatus status)
    {
        if (row.Status != usUnmodified)
            return;
        row.Status = status;
        row.Stored = row.Now;
        Log.push_back(row.Number);
    }
    void Remove(size_t place)
    {
        std::erase(Log, Rows[place].Number);
        Rows.erase(Rows.begin() + qsizetype(place));
    }
};

/// Does the same to both stores, at random.
class TTwins
{
public:
    explicit TTwins(unsigned seed) : FRandom(seed) { Append(Any(30)); }

    void Step()
    {
        const unsigned what = Any(1000);
        const bool isSome = !FPlain.Rows.empty();
        const size_t place = isSome ? Any(unsigned(FPlain.Rows.size())) : 0;
        if (what < 300 && isSome)
            Modify(place);
        else if (what < 550)
            Insert(place);
        else if (what < 830 && isSome)
            Delete(place);
        else if (what < 900 && isSome)
            Revert(place);
        else if (what < 960)
            Undo();
        else
            Rare(what - 960);
    }

    void CompareRecords()
    {
        ASSERT_EQ(TextOf(*FStore), FPlain.Shown());
        ASSERT_EQ(FStore->ChangeCount(), qsizetype(FPlain.Log.size()));
    }
    void CompareDeltaAndOrder()
    {
        ASSERT_EQ(DeltaOf(*FStore), FPlain.Delta());
        const std::vector<quint32> order = OrderOf(*FStore);
        for (size_t i = 0; i < order.size(); ++i) {
            ASSERT_EQ(order[i], FPlain.Rows[i].Number);
            const quint32 place = FStore->NaturalPlace(order[i]);
            ASSERT_EQ(FStore->IsNaturalByNumber() ? place : FStore->NaturalOrder()[place], order[i]);
        }
    }

private:
    unsigned Any(unsigned limit) { return std::uniform_int_distribution(0u, limit - 1)(FRandom); }
    TRowValues AnyRow()
    {
        const char code = char('a' + Any(4));
        return StoreRow({&code, 1}, Any(5) == 0 ? std::nullopt : std::optional(int(Any(50))));
    }

    void Modify(size_t place)
    {
        const TRowValues row = AnyRow();
        if (FPlain.Rows[place].Status == usDeleted)
            return;
        FStore->Modify(FPlain.Rows[place].Number, row);
        FPlain.Modify(place, TextOfRow(row));
    }
    void Insert(size_t place)
    {
        const TRowValues row = AnyRow();
        const bool isAtEnd = FPlain.Rows.empty() || Any(2) == 0;
        const quint32 before = isAtEnd ? TRecordStore::NoRecord : FPlain.Rows[place].Number;
        FPlain.Insert(FStore->Insert(row, before), TextOfRow(row), isAtEnd ? FPlain.Rows.size() : place);
    }
    void Delete(size_t place)
    {
        FStore->Delete(FPlain.Rows[place].Number);
        if (FPlain.Rows[place].Status != usDeleted)
            FPlain.Delete(place);
    }
    void Revert(size_t place)
    {
        EXPECT_EQ(FStore->Revert(FPlain.Rows[place].Number), FPlain.Rows[place].Status != usUnmodified);
        FPlain.Revert(place);
    }
    void Undo()
    {
        const bool isSome = !FPlain.Log.empty();
        ASSERT_EQ(FStore->UndoLast(), isSome ? FPlain.Log.back() : TRecordStore::NoRecord);
        if (isSome)
            FPlain.Revert(FPlain.PlaceOf(FPlain.Log.back()));
    }
    void Rare(unsigned what)
    {
        if (what < 3)
            return Append(Any(20));
        if (what < 6) {
            FStore->MergeChangeLog();
            return FPlain.Merge();
        }
        if (what < 7) {
            FStore->CancelUpdates();
            while (!FPlain.Log.empty())
                FPlain.Revert(FPlain.PlaceOf(FPlain.Log.back()));
            return;
        }
        if (what < 15)
            return Reload();
        if (what < 25) {
            FPlain.LogChanges = !FPlain.LogChanges || Any(3) == 0;
            FStore->SetLogChanges(FPlain.LogChanges);
        }
    }
    void Append(unsigned count)
    {
        TDataPacketBuilder builder(StoreFields());
        for (unsigned i = 0; i < count; ++i) {
            const TRowValues row = AnyRow();
            builder.AppendCell(0, row);
            builder.AppendCell(1, row);
            builder.EndRow();
            FPlain.Rows.push_back({FStore->RecordLimit() + i, TextOfRow(row), {}, usUnmodified});
        }
        FStore->Append(std::move(builder).Build());
    }
    /// The records get new numbers; a deleted one shows what is stored.
    void Reload()
    {
        FStore = Reloaded(*FStore);
        FStore->SetLogChanges(FPlain.LogChanges);
        const std::vector<quint32> order = OrderOf(*FStore);
        ASSERT_EQ(order.size(), FPlain.Rows.size());
        std::map<quint32, quint32> numbers;
        for (size_t i = 0; i < order.size(); ++i) {
            TPlainStore::TRow &row = FPlain.Rows[i];
            numbers[row.Number] = order[i];
            row.Number = order[i];
            if (row.Status == usDeleted)
                row.Now = row.Stored;
        }
        for (quint32 &number : FPlain.Log)
            number = numbers[number];
    }

    std::mt19937 FRandom;
    std::unique_ptr<TRecordStore> FStore = std::make_unique<TRecordStore>(PacketOf(StoreFields(), {}));
    TPlainStore FPlain;
};

TEST(RecordStore, DoesAsAPlainListDoes)
{
    for (unsigned seed = 1; seed <= 8; ++seed) {
        TTwins twins(seed);
        for (int step = 0; step < 2500; ++step) {
            twins.Step();
            twins.CompareRecords();
            if (step % 8 == 0)
                twins.CompareDeltaAndOrder();
            if (HasFailure())
                FAIL() << "seed " << seed << ", step " << step;
        }
    }
}

} // namespace

} // namespace Korvane
