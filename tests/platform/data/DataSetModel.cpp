// SPDX-License-Identifier: MIT
#include "DataSetModel.h"

#include <algorithm>

namespace Korvane {

namespace {

int CompareCells(const TModelCell &left, const TModelCell &right, QChar kind, bool isBlind)
{
    if (!left || !right)
        return int(left.has_value()) - int(right.has_value());
    if (kind == u'n')
        return left->toDouble() < right->toDouble() ? -1 : left->toDouble() > right->toDouble();
    return isBlind ? left->toCaseFolded().compare(right->toCaseFolded()) : left->compare(*right);
}

bool IsFound(const TModelCell &cell, const TModelCell &value, QChar kind, bool blind, bool partial)
{
    if (!cell || !value || kind == u'n' || !partial)
        return CompareCells(cell, value, kind, blind) == 0;
    return cell->startsWith(*value, blind ? Qt::CaseInsensitive : Qt::CaseSensitive);
}

} // namespace

QString TextOf(const TModelRow &row)
{
    QStringList cells;
    for (const TModelCell &cell : row)
        cells += cell.value_or(QStringLiteral("~"));
    return cells.join(u'|');
}

// ---- store ----------------------------------------------------------------------------

TModelStore::TModelStore(const std::vector<TModelRow> &rows)
{
    for (const TModelRow &row : rows)
        FRecords.push_back({FNext++, row, row, usUnmodified});
}

TModelStore::TRecord *TModelStore::Find(int number)
{
    for (TRecord &record : FRecords)
        if (record.Number == number)
            return &record;
    return nullptr;
}

void TModelStore::Erase(int number)
{
    std::erase_if(FRecords, [number](const TRecord &record) { return record.Number == number; });
    std::erase(FLog, number);
}

int TModelStore::Insert(const TModelRow &row, int before)
{
    const auto place = std::find_if(FRecords.begin(), FRecords.end(),
                                    [before](const TRecord &record) { return record.Number == before; });
    FRecords.insert(place, {FNext, row, row, FLogChanges ? usInserted : usUnmodified});
    if (FLogChanges)
        FLog.push_back(FNext);
    FEvents.push_back({TEvent::Inserted, FNext, {}, row});
    return FNext++;
}

void TModelStore::Modify(int number, const TModelRow &row)
{
    TRecord &record = *Find(number);
    FEvents.push_back({TEvent::Modified, number, record.Values, row});
    record.Values = row;
    if (!FLogChanges) {
        record.Stored = row;
    } else if (record.Status == usUnmodified) {
        record.Status = usModified;
        FLog.push_back(number);
    }
}

void TModelStore::Delete(int number)
{
    TRecord &record = *Find(number);
    if (record.Status == usInserted || !FLogChanges)
        return Erase(number);
    if (record.Status == usUnmodified)
        FLog.push_back(number);
    record.Values = record.Stored;
    record.Status = usDeleted;
}

void TModelStore::Revert(int number)
{
    TRecord &record = *Find(number);
    if (record.Status == usInserted)
        return Erase(number);
    const auto kind = record.Status == usDeleted ? TEvent::Inserted : TEvent::Modified;
    FEvents.push_back({kind, number, record.Values, record.Stored});
    record.Values = record.Stored;
    record.Status = usUnmodified;
    std::erase(FLog, number);
}

int TModelStore::UndoLast()
{
    if (FLog.empty())
        return -1;
    const int number = FLog.back();
    Revert(number);
    return number;
}

void TModelStore::Append(const std::vector<TModelRow> &rows)
{
    for (const TModelRow &row : rows)
        FRecords.push_back({FNext++, row, row, usUnmodified});
    FEvents.push_back({TEvent::Reset, 0, {}, {}});
}

void TModelStore::CancelUpdates()
{
    if (FLog.empty())
        return;
    while (!FLog.empty())
        Revert(FLog.back());
    FEvents.push_back({TEvent::Reset, 0, {}, {}});
}

void TModelStore::Merge()
{
    if (FLog.empty())
        return;
    FEvents.push_back({TEvent::Merged, 0, {}, {}});
    std::erase_if(FRecords, [](const TRecord &record) { return record.Status == usDeleted; });
    for (TRecord &record : FRecords) {
        record.Stored = record.Values;
        record.Status = usUnmodified;
    }
    FLog.clear();
}

QString TModelStore::Delta() const
{
    QString text;
    for (const int number : FLog) {
        const TRecord &record = *const_cast<TModelStore *>(this)->Find(number);
        if (record.Status == usInserted)
            text += QStringLiteral("inserted ") + TextOf(record.Values) + u'\n';
        if (record.Status == usDeleted)
            text += QStringLiteral("deleted ") + TextOf(record.Stored) + u'\n';
        if (record.Status != usModified)
            continue;
        text += QStringLiteral("unmodified ") + TextOf(record.Stored) + u'\n';
        TModelRow changed = record.Values;
        for (size_t i = 0; i < changed.size(); ++i)
            if (changed[i] == record.Stored[i])
                changed[i] = std::nullopt;
        text += QStringLiteral("modified ") + TextOf(changed) + u'\n';
    }
    return text;
}

void TModelStore::Reload()
{
    // The stored records are numbered first, the inserted ones behind them by the log.
    std::vector<std::pair<int, int>> numbers;
    int next = 0;
    for (TRecord &record : FRecords)
        if (record.Status != usInserted)
            numbers.emplace_back(record.Number, next++);
    for (const int number : FLog)
        if (Find(number)->Status == usInserted)
            numbers.emplace_back(number, next++);
    const auto renumber = [&](int number) {
        return std::find_if(numbers.begin(), numbers.end(),
                            [&](const auto &pair) { return pair.first == number; })
            ->second;
    };
    for (TRecord &record : FRecords)
        record.Number = renumber(record.Number);
    for (int &number : FLog)
        number = renumber(number);
    FNext = next;
}

// ---- dataset --------------------------------------------------------------------------

TModelDataSet::TModelDataSet(std::shared_ptr<TModelStore> store, QString kinds)
    : Store(std::move(store)), FKinds(std::move(kinds))
{
    Select();
    First();
}

bool TModelDataSet::Sees(const TModelStore::TRecord &record) const
{
    const bool hasStatus =
        !Statuses ? record.Status != usDeleted : Statuses.testFlag(TUpdateStatusFlag(1 << record.Status));
    return hasStatus && (!Filter || Filter(record.Values));
}

int TModelDataSet::CompareKeys(const TModelRow &left, const TModelRow &right) const
{
    for (const TSortKey &key : Order) {
        const auto column = size_t(key.Column);
        const int result = CompareCells(left[column], right[column], FKinds[key.Column], key.IsBlind);
        if (result != 0)
            return key.Descends ? -result : result;
    }
    return 0;
}

int TModelDataSet::RankOf(int number) const
{
    const auto rank = FRanks.find(number);
    return rank == FRanks.end() ? number : rank->second;
}

void TModelDataSet::Select()
{
    FRanks.clear();
    FLastRank = 1000000;
    FSelectedLimit = Store->Limit();
    FEventsSeen = Store->Events().size();
}

void TModelDataSet::CatchUp()
{
    for (; FEventsSeen < Store->Events().size(); ++FEventsSeen) {
        const TModelStore::TEvent &event = Store->Events()[FEventsSeen];
        if (event.Kind == TModelStore::TEvent::Reset ||
            (event.Kind == TModelStore::TEvent::Merged && Statuses))
            return Select();
        const bool wasShown =
            !event.Old.empty() && Statuses.testFlag(usfDeleted) && (!Filter || Filter(event.Old));
        const bool isLater =
            event.Kind == TModelStore::TEvent::Inserted
                ? event.Number >= FSelectedLimit && !wasShown
                : event.Kind == TModelStore::TEvent::Modified && CompareKeys(event.Old, event.New) != 0;
        if (isLater)
            FRanks[event.Number] = ++FLastRank;
    }
}

std::vector<int> TModelDataSet::View()
{
    CatchUp();
    std::vector<TModelStore::TRecord> seen;
    for (const TModelStore::TRecord &record : Store->Records())
        if (Sees(record))
            seen.push_back(record);
    const auto isBefore = [this](const TModelStore::TRecord &left, const TModelStore::TRecord &right) {
        const int result = CompareKeys(left.Values, right.Values);
        return result != 0 ? result < 0 : RankOf(left.Number) < RankOf(right.Number);
    };
    if (!Order.empty())
        std::sort(seen.begin(), seen.end(), isBefore);
    std::vector<int> numbers;
    for (const TModelStore::TRecord &record : seen)
        numbers.push_back(record.Number);
    return numbers;
}

QString TModelDataSet::LineOf(const TModelRow &row) const
{
    return TextOf(row) + u'|' + Calculate(row).value_or(QStringLiteral("~"));
}

QString TModelDataSet::ViewText()
{
    QString text;
    for (const int number : View()) {
        if (FState != dsInsert && number == FCurrent)
            text += u'>';
        text += LineOf(FState == dsEdit && number == FCurrent ? FEdited : Store->Find(number)->Values);
        text += u'\n';
    }
    return text;
}

QString TModelDataSet::StatusText()
{
    QString text;
    for (const int number : View())
        text += QStringLiteral("umid")[Store->Find(number)->Status];
    return text;
}

QString TModelDataSet::PlaceText()
{
    const auto count = qsizetype(View().size());
    const bool isOnRow = FState != dsInsert && count > 0;
    QString text = FState == dsBrowse ? "browse" : FState == dsEdit ? "edit" : "insert";
    text += QStringLiteral(" %1/%2").arg(isOnRow ? FPosition + 1 : 0).arg(count);
    if (FState == dsBrowse && FBof)
        text += QStringLiteral(" bof");
    if (FState == dsBrowse && FEof)
        text += QStringLiteral(" eof");
    if (FModified)
        text += QStringLiteral(" modified");
    return text;
}

TModelRow TModelDataSet::Row() const
{
    if (FState != dsBrowse)
        return FEdited;
    return FCurrent < 0 ? TModelRow(size_t(FKinds.size())) : Store->Find(FCurrent)->Values;
}

QString TModelDataSet::RowText() const { return LineOf(Row()); }

void TModelDataSet::SetPosition(int position)
{
    const std::vector<int> view = View();
    FPosition = position;
    FCurrent = view.empty() ? -1 : view[size_t(position)];
    FBof = FEof = view.empty();
    FAreFlagsOpen = false;
}

void TModelDataSet::Resync(int number)
{
    const std::vector<int> view = View();
    const auto found = std::find(view.begin(), view.end(), number);
    if (found != view.end())
        return SetPosition(int(found - view.begin()));
    SetPosition(std::clamp(FPosition, 0, std::max(int(view.size()) - 1, 0)));
}

void TModelDataSet::Follow(const std::vector<int> &before)
{
    const std::vector<int> view = View();
    const bool areOpen = FAreFlagsOpen || FBof || FEof;
    if (view != before)
        Resync(FCurrent);
    FAreFlagsOpen = areOpen && !view.empty();
}

void TModelDataSet::Goto(int position)
{
    Leave();
    if (position != FPosition)
        SetPosition(position);
}

void TModelDataSet::GotoNumber(int number)
{
    const std::vector<int> view = View();
    const auto found = std::find(view.begin(), view.end(), number);
    if (found != view.end())
        SetPosition(int(found - view.begin()));
}

void TModelDataSet::First()
{
    Leave();
    SetPosition(0);
    FBof = true;
}

void TModelDataSet::Last()
{
    Leave();
    SetPosition(std::max(int(View().size()) - 1, 0));
    FEof = true;
}

int TModelDataSet::MoveBy(int distance)
{
    Leave();
    const int last = int(View().size()) - 1;
    const bool isAtEdge = FPosition == (distance > 0 ? last : 0);
    if (distance == 0 || (FAreFlagsOpen ? isAtEdge : distance > 0 ? FEof : FBof))
        return 0;
    const int from = FPosition;
    const int to = from + distance;
    SetPosition(std::clamp(to, 0, last));
    FBof = to < 0;
    FEof = to > last;
    return FPosition - from;
}

void TModelDataSet::Edit()
{
    if (FState != dsBrowse)
        return;
    if (FCurrent < 0)
        return Insert(false);
    FState = dsEdit;
    FEdited = Store->Find(FCurrent)->Values;
}

void TModelDataSet::Insert(bool atEnd)
{
    Leave();
    FReturn = FCurrent;
    FBefore = atEnd ? -1 : FCurrent;
    FState = dsInsert;
    FEdited = TModelRow(size_t(FKinds.size()));
}

void TModelDataSet::Set(int column, TModelCell value)
{
    FEdited[size_t(column)] = std::move(value);
    FModified = true;
}

void TModelDataSet::Post()
{
    int number = FCurrent;
    if (FState == dsInsert)
        number = Store->Insert(FEdited, FBefore);
    else
        Store->Modify(number, FEdited);
    FState = dsBrowse;
    FModified = false;
    Resync(number);
}

void TModelDataSet::Cancel()
{
    if (FState == dsBrowse)
        return;
    const int number = FState == dsInsert ? FReturn : FCurrent;
    FState = dsBrowse;
    FModified = false;
    Resync(number);
}

void TModelDataSet::Delete()
{
    if (FState == dsInsert)
        return Cancel();
    FState = dsBrowse;
    FModified = false;
    Store->Delete(FCurrent);
    Resync(-1);
}

void TModelDataSet::Leave()
{
    if (FState == dsBrowse)
        return;
    if (!FModified)
        return Cancel();
    Post();
    if (OnLeft)
        OnLeft();
}

bool TModelDataSet::Locate(const std::vector<int> &columns, const TModelRow &values, bool blind, bool partial)
{
    Leave();
    const std::vector<int> view = View();
    for (size_t at = 0; at < view.size(); ++at) {
        const TModelRow &row = Store->Find(view[at])->Values;
        bool isFound = true;
        for (size_t i = 0; i < columns.size(); ++i)
            isFound =
                isFound && IsFound(row[size_t(columns[i])], values[i], FKinds[columns[i]], blind, partial);
        if (!isFound)
            continue;
        SetPosition(int(at));
        return true;
    }
    return false;
}

} // namespace Korvane
