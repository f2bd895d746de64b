// SPDX-License-Identifier: MIT
// Random work on client datasets that share their rows, beside a model that does everything in
// the plainest way.
#include "DataSetModel.h"
#include "support/DataSets.h"

#include "platform/core/Variants.h"
#include "platform/data/dataset/Fields.h"

#include <gtest/gtest.h>

#include <QScopeGuard>

#include <random>

namespace Korvane {

namespace {

const char *const Names[] = {"CODE", "QTY", "AMT", "NOTE"};
const QString Kinds = QStringLiteral("tnnt");
constexpr int ColumnCount = 4;
constexpr int NoFilter = -1;

const struct
{
    const char *Text;
    TFilterOptions Options;
    bool (*Accepts)(const TModelRow &);
} Filters[] = {
    {"QTY>3", {}, [](const TModelRow &row) { return row[1] && row[1]->toInt() > 3; }},
    {"not (QTY>3)", {}, [](const TModelRow &row) { return row[1] && row[1]->toInt() <= 3; }},
    {"CODE='a*'", {}, [](const TModelRow &row) { return row[0] && row[0]->startsWith(u'a'); }},
    {"CODE='a*'", foCaseInsensitive,
     [](const TModelRow &row) { return row[0] && row[0]->startsWith(u'a', Qt::CaseInsensitive); }},
    {"AMT is null or CODE='B'",
     {},
     [](const TModelRow &row) { return !row[2] || (row[0] && row[0] == QLatin1String("B")); }},
    {"NOTE is not null and QTY<>2",
     {},
     [](const TModelRow &row) { return row[3] && row[1] && row[1]->toInt() != 2; }},
};

QVariant ValueOf(int column, const TModelCell &cell)
{
    if (!cell)
        return {};
    return column == 1 ? QVariant(cell->toInt()) : column == 2 ? QVariant(cell->toDouble()) : QVariant(*cell);
}

TModelCell Doubled(const TModelCell &cell)
{
    return cell ? TModelCell(QString::number(2 * cell->toInt())) : std::nullopt;
}

TDataPacket PacketFor(const std::vector<TModelRow> &rows)
{
    QList<QVariantList> values;
    for (const TModelRow &row : rows) {
        values.emplace_back();
        for (int column = 0; column < ColumnCount; ++column)
            values.back().append(ValueOf(column, row[size_t(column)]));
    }
    return PacketOf({{"CODE", ftString, 10}, {"QTY", ftInteger}, {"AMT", ftFloat}, {"NOTE", ftMemo}}, values);
}

/// A dataset with a calculated field and an aggregate, its model, and what the model does not know of the
/// dataset's settings.
struct TPair
{
    std::unique_ptr<TClientDataSet> Real = std::make_unique<TClientDataSet>();
    std::optional<TModelDataSet> Model;
    int Filter = NoFilter;
    TAggregate *Sum = nullptr;

    TPair()
    {
        auto *doubled = new TIntegerField(Real.get());
        doubled->SetFieldName("DOUBLED");
        doubled->SetFieldKind(fkCalculated);
        doubled->SetDataSet(Real.get());
        Real->OnCalcFields = [doubled](TDataSet *set) {
            const TField *quantity = set->FieldByName(u"QTY");
            if (!quantity->IsNull())
                doubled->SetAsInteger(2 * quantity->AsInteger());
        };
        Sum = Real->Aggregates().Add();
        Sum->SetExpression("sum(QTY)");
        Sum->SetActive(true);
    }
    void SetModel(TModelDataSet model)
    {
        Model = std::move(model);
        Model->Calculate = [](const TModelRow &row) { return Doubled(row[1]); };
    }
    QString ModelSum()
    {
        std::optional<int> sum;
        for (const int number : Model->View())
            if (const TModelCell cell = Model->Store->Find(number)->Values[1])
                sum = sum.value_or(0) + cell->toInt();
        return sum ? QString::number(*sum) : QString();
    }
};

class TRun
{
public:
    explicit TRun(unsigned seed) : FRandom(seed)
    {
        const std::vector<TModelRow> rows = Rows(20);
        FPairs[0].Real->SetData(PacketFor(rows));
        FPairs[0].SetModel({std::make_shared<TModelStore>(rows), Kinds});
        Clone();
    }

    /// Does one thing, and gives what differs; empty when nothing does.
    QString Step()
    {
        FDone.clear();
        Act();
        QString difference;
        for (TPair &pair : FPairs)
            difference += Compare(pair);
        return difference;
    }
    /// What the last step has done.
    const QString &Done() const { return FDone; }

private:
    int Below(int limit) { return int(FRandom() % unsigned(limit)); }
    bool OneIn(int count) { return Below(count) == 0; }

    TModelCell Cell(int column)
    {
        static const QStringList cells[] = {
            {"a", "A", "b", "B", "ab", "Ab", "ba", "", "中", "a1"},
            {"-3", "0", "1", "2", "3", "4", "5", "12"},
            {"-2", "0", "0.5", "1.5", "100"},
            {"x", "y", "longer"},
        };
        if (OneIn(6))
            return std::nullopt;
        return cells[column][Below(int(cells[column].size()))];
    }

    std::vector<TModelRow> Rows(int below)
    {
        std::vector<TModelRow> rows(size_t(Below(below)));
        for (TModelRow &row : rows)
            for (int column = 0; column < ColumnCount; ++column)
                row.push_back(Cell(column));
        return rows;
    }

    void Act();
    void Move(TPair &pair);
    void Change(TPair &pair);
    void ChangeLog(TPair &pair);
    void Select(TPair &pair);
    void Write(TPair &pair);
    void Locate(TPair &pair);
    void SetOrder(TPair &pair);
    void SetFilter(TPair &pair);
    void SetStatuses(TPair &pair);
    void Undo(TPair &pair);
    void Revert(TPair &pair);
    void ForAll(const std::function<void()> &change);
    void Clone();
    void Reload();
    void AppendData(TPair &pair);
    QString Compare(TPair &pair);

    std::mt19937 FRandom;
    TPair FPairs[2];
    std::vector<int> FSearched;
    bool FSearchIsBlind = false;
    QString FDone;
};

void TRun::Act()
{
    // A row that is being edited is finished before the other dataset's turn.
    int which = OneIn(4) ? 1 : 0;
    if (FPairs[1 - which].Model->State() != dsBrowse)
        which = 1 - which;
    TPair &pair = FPairs[which];
    TPair &other = FPairs[1 - which];
    std::vector<int> before = other.Model->View();
    pair.Model->OnLeft = [&] {
        other.Model->Follow(before);
        before = other.Model->View();
    };
    const auto end = qScopeGuard([&] { FPairs[which].Model->OnLeft = nullptr; });
    FDone = which == 0 ? QStringLiteral("set: ") : QStringLiteral("clone: ");
    const int kind = Below(100);
    if (kind < 20)
        Move(pair);
    else if (kind < 75)
        Change(pair);
    else if (kind < 85)
        Select(pair);
    else
        return ChangeLog(pair);
    other.Model->Follow(before);
}

void TRun::Move(TPair &pair)
{
    const int kind = Below(8);
    const int by = Below(9) - 4;
    FDone += QStringLiteral("move %1 %2").arg(kind).arg(by);
    if (kind == 0) {
        pair.Real->First();
        pair.Model->First();
    } else if (kind == 1) {
        pair.Real->Last();
        pair.Model->Last();
    } else if (kind >= 5) {
        Locate(pair);
    } else if (kind == 2 && !pair.Model->View().empty() && pair.Model->State() == dsBrowse) {
        const int place = Below(int(pair.Model->View().size()));
        pair.Real->SetRecNo(place + 1);
        pair.Model->Goto(place);
    } else {
        EXPECT_EQ(pair.Real->MoveBy(by), pair.Model->MoveBy(by));
    }
}

/// Mostly on the same fields as before, so that what was made for the last search is used again.
void TRun::Locate(TPair &pair)
{
    if (FSearched.empty() || OneIn(6)) {
        FSearched = {Below(ColumnCount)};
        if (OneIn(2))
            FSearched.push_back((FSearched[0] + 1) % ColumnCount);
        FSearchIsBlind = OneIn(2);
    }
    TModelRow values;
    QVariantList list;
    QStringList names;
    for (const int column : FSearched) {
        values.push_back(Cell(column));
        // Numbers are told as texts, too.
        list.append(values.back() && OneIn(2) ? QVariant(*values.back()) : ValueOf(column, values.back()));
        names += Names[column];
    }
    const bool partial = OneIn(5);
    TLocateOptions options;
    options.setFlag(loCaseInsensitive, FSearchIsBlind);
    options.setFlag(loPartialKey, partial);
    FDone += QStringLiteral(" locate %1 %2 %3 %4")
                 .arg(names.join(u';'), TextOf(values))
                 .arg(FSearchIsBlind)
                 .arg(partial);
    const QVariant sought = list.size() == 1 ? list[0] : QVariant(list);
    EXPECT_EQ(pair.Real->Locate(names.join(u';'), sought, options),
              pair.Model->Locate(FSearched, values, FSearchIsBlind, partial));
}

void TRun::Write(TPair &pair)
{
    const int column = Below(ColumnCount);
    const TModelCell cell = Cell(column);
    FDone += QStringLiteral(" %1=%2").arg(Names[column], cell.value_or(QStringLiteral("~")));
    TField *field = pair.Real->FieldByName(QString::fromLatin1(Names[column]));
    if (!cell)
        field->Clear();
    else if (OneIn(2))
        field->SetAsString(column == 0 ? *cell + u' ' : *cell);
    else
        field->SetValue(ValueOf(column, cell));
    pair.Model->Set(column, cell);
}

void TRun::Change(TPair &pair)
{
    if (pair.Model->State() != dsBrowse && !OneIn(5)) {
        const int kind = Below(3);
        FDone += kind == 0 ? "write" : kind == 1 ? "post" : "cancel";
        if (kind == 0) {
            Write(pair);
        } else if (kind == 1) {
            pair.Real->Post();
            pair.Model->Post();
        } else {
            pair.Real->Cancel();
            pair.Model->Cancel();
        }
        return;
    }
    const bool canChange =
        pair.Model->State() != dsBrowse || (pair.Model->IsOnRecord() && pair.Model->Status() != usDeleted);
    const bool isFull = pair.Model->Store->Records().size() > 30;
    const int kind = Below(8);
    if (canChange && (isFull || kind == 0)) {
        FDone += QStringLiteral("delete");
        pair.Real->Delete();
        pair.Model->Delete();
        return;
    }
    if (canChange && kind < 5) {
        FDone += QStringLiteral("edit");
        pair.Real->Edit();
        pair.Model->Edit();
    } else if (!isFull) {
        FDone += kind < 7 ? QStringLiteral("insert") : QStringLiteral("append");
        kind < 7 ? pair.Real->Insert() : pair.Real->Append();
        pair.Model->Insert(kind == 7);
    }
    while (pair.Model->State() != dsBrowse && !OneIn(3))
        Write(pair);
    if (pair.Model->State() == dsBrowse || OneIn(4))
        return;
    pair.Real->Post();
    pair.Model->Post();
}

void TRun::Select(TPair &pair)
{
    const int kind = Below(5);
    if (kind < 2)
        SetOrder(pair);
    else if (kind < 4)
        SetFilter(pair);
    else
        SetStatuses(pair);
}

void TRun::SetOrder(TPair &pair)
{
    std::vector<TModelDataSet::TSortKey> order;
    QStringList names;
    QStringList down;
    QStringList blind;
    const bool byIndex = OneIn(2);
    for (int column = Below(3); column < 3 && !OneIn(3); ++column) {
        order.push_back({column, byIndex && OneIn(2), byIndex && OneIn(2)});
        names += Names[column];
        if (order.back().Descends)
            down += Names[column];
        if (order.back().IsBlind)
            blind += Names[column];
    }
    FDone +=
        QStringLiteral("order %1 down %2 blind %3").arg(names.join(u';'), down.join(u';'), blind.join(u';'));
    if (byIndex && !names.isEmpty()) {
        if (pair.Real->FindIndex("X"))
            pair.Real->DeleteIndex("X");
        pair.Real->AddIndex("x", names.join(u';'), {}, down.join(u';'), blind.join(u';'));
        pair.Real->SetIndexName("X");
    } else {
        // Twice, since the same names again change nothing.
        pair.Real->SetIndexName({});
        pair.Real->SetIndexFieldNames(names.join(u';'));
    }
    pair.Model->Leave();
    pair.Model->Order = order;
    pair.Model->Select();
    pair.Model->Resync();
}

void TRun::SetFilter(TPair &pair)
{
    const int filter = Below(int(std::size(Filters)) + 2) - 2;
    FDone += QStringLiteral("filter %1").arg(filter);
    if (qMax(filter, NoFilter) == pair.Filter)
        return;
    pair.Filter = qMax(filter, NoFilter);
    pair.Model->Leave();
    if (filter < 0) {
        pair.Real->SetFiltered(false);
        pair.Model->Filter = nullptr;
    } else {
        pair.Real->SetFilter(QString::fromUtf8(Filters[filter].Text));
        pair.Real->SetFilterOptions(Filters[filter].Options);
        pair.Real->SetFiltered(true);
        pair.Model->Filter = Filters[filter].Accepts;
    }
    pair.Model->Select();
    pair.Model->First();
}

void TRun::SetStatuses(TPair &pair)
{
    const auto statuses = TUpdateStatusSet::fromInt(OneIn(2) ? 0 : Below(16));
    FDone += QStringLiteral("statuses %1").arg(statuses.toInt());
    pair.Real->SetStatusFilter(statuses);
    pair.Model->Leave();
    pair.Model->Statuses = statuses;
    pair.Model->Select();
    pair.Model->First();
}

/// A change of the records that is followed by both datasets alike.
void TRun::ForAll(const std::function<void()> &change)
{
    const std::vector<int> before[] = {FPairs[0].Model->View(), FPairs[1].Model->View()};
    change();
    for (int i = 0; i < 2; ++i)
        FPairs[i].Model->Follow(before[i]);
}

void TRun::Undo(TPair &pair)
{
    const bool follow = OneIn(2);
    FDone += QStringLiteral("undo %1").arg(follow);
    pair.Model->Cancel();
    int number = -1;
    ForAll([&] { number = pair.Model->Store->UndoLast(); });
    if (follow)
        pair.Model->GotoNumber(number);
    EXPECT_EQ(pair.Real->UndoLastChange(follow), number >= 0);
}

void TRun::Revert(TPair &pair)
{
    if (pair.Model->State() == dsInsert)
        return;
    FDone += QStringLiteral("revert");
    pair.Model->Cancel();
    ForAll([&] {
        if (pair.Model->CurrentNumber() >= 0)
            pair.Model->Store->Revert(pair.Model->CurrentNumber());
    });
    pair.Real->RevertRecord();
}

void TRun::ChangeLog(TPair &pair)
{
    const int kind = Below(40);
    if (kind < 12)
        return Undo(pair);
    if (kind < 24)
        return Revert(pair);
    if (pair.Model->State() != dsBrowse)
        return;
    TModelStore &store = *pair.Model->Store;
    if (kind < 26) {
        FDone += QStringLiteral("cancel updates");
        pair.Real->CancelUpdates();
        ForAll([&] { store.CancelUpdates(); });
    } else if (kind == 26) {
        AppendData(pair);
    } else if (kind < 28) {
        FDone += QStringLiteral("merge");
        pair.Real->MergeChangeLog();
        ForAll([&] { store.Merge(); });
    } else if (kind < 32) {
        FDone += QStringLiteral("reload");
        Reload();
    } else if (kind < 36) {
        FDone += QStringLiteral("clone");
        Clone();
    } else if (store.ChangeCount() == 0) {
        const bool log = OneIn(2);
        FDone += QStringLiteral("log %1").arg(log);
        for (TPair &each : FPairs)
            each.Real->SetLogChanges(log);
        store.SetLogChanges(log);
    }
}

/// The second dataset becomes a clone of the first, in one of the three ways.
void TRun::Clone()
{
    const TPair &source = FPairs[0];
    TPair &clone = FPairs[1];
    const bool reset = OneIn(3);
    const bool keep = !reset && clone.Model && OneIn(2);
    FDone += QStringLiteral(" %1 %2").arg(reset).arg(keep);
    clone.Real->CloneCursor(source.Real.get(), reset, keep);
    TModelDataSet model(source.Model->Store, Kinds);
    if (!reset) {
        const TModelDataSet &settings = keep ? *clone.Model : *source.Model;
        model.Order = settings.Order;
        model.Filter = settings.Filter;
        model.Statuses = settings.Statuses;
        clone.Filter = keep ? clone.Filter : source.Filter;
    } else {
        clone.Filter = NoFilter;
    }
    clone.SetModel(std::move(model));
    clone.Model->First();
}

/// The first dataset is written out and read again, with its log.
void TRun::Reload()
{
    TPair &pair = FPairs[0];
    TDataPacket packet = pair.Real->Data();
    packet.ValidateFull();
    if (OneIn(2))
        packet = TDataPacket::FromBytes(packet.ToBytes());
    pair.Real->SetData(packet);
    pair.Model->Store->Reload();
    pair.Model->Select();
    pair.Model->First();
    Clone();
}

void TRun::AppendData(TPair &pair)
{
    const std::vector<TModelRow> rows = Rows(4);
    FDone += QStringLiteral("append %1 rows").arg(rows.size());
    if (rows.empty())
        return;
    pair.Real->AppendData(PacketFor(rows));
    ForAll([&] { pair.Model->Store->Append(rows); });
}

QString WithoutFlags(QString place, const TModelDataSet &model)
{
    return model.AreFlagsOpen() ? place.remove(QStringLiteral(" bof")).remove(QStringLiteral(" eof")) : place;
}

QString TRun::Compare(TPair &pair)
{
    TClientDataSet &real = *pair.Real;
    TModelDataSet &model = *pair.Model;
    QString difference;
    const QString who = &pair == FPairs ? QStringLiteral("the set's") : QStringLiteral("the clone's");
    const auto compare = [&](const char *what, const QString &is, const QString &expected) {
        if (is != expected)
            difference +=
                QStringLiteral("%1 %2 is\n%3\nexpected\n%4\n").arg(who, QLatin1String(what), is, expected);
    };
    const auto truth = [](bool value) { return value ? QStringLiteral("true") : QStringLiteral("false"); };
    const auto count = [](int changes) { return QString::number(changes); };
    compare("place", WithoutFlags(PlaceOf(real), model), WithoutFlags(model.PlaceText(), model));
    if (model.State() == dsBrowse && !real.IsEmpty()) {
        compare("beginning", truth(real.Bof() && real.RecNo() != 1), truth(false));
        compare("end", truth(real.Eof() && real.RecNo() != real.RecordCount()), truth(false));
    }
    compare("view", ViewOf(real), model.ViewText());
    compare("row", RowOf(real), model.RowText());
    compare("sum", VarToStr(pair.Sum->Value()), pair.ModelSum());
    compare("change count", count(real.ChangeCount()), count(model.Store->ChangeCount()));
    if (model.State() != dsBrowse)
        return difference;
    compare("delta", DeltaOf(real), model.Store->Delta());
    if (!OneIn(4))
        return difference;
    TModelDataSet fresh = model; // as is the clone that StatusesOf walks
    fresh.Select();
    compare("statuses", StatusesOf(real), fresh.StatusText());
    return difference;
}

/// Which step failed and how, behind the last ones before it; empty when none did.
QString FailureOf(unsigned seed, int steps)
{
    TRun run(seed);
    QStringList done;
    for (int i = 0; i < steps; ++i) {
        QString difference;
        try {
            difference = run.Step();
        } catch (const Exception &error) {
            difference = QStringLiteral("raised: ") + error.Message();
        }
        done += QStringLiteral("%1 %2").arg(i).arg(run.Done());
        if (!difference.isEmpty() || testing::Test::HasFailure())
            return QStringLiteral("seed %1\n%2\n%3")
                .arg(seed)
                .arg(done.mid(qMax(i - 25, 0)).join(u'\n'), difference);
    }
    return {};
}

TEST(ClientDataSetModel, BehavesAsTheModel)
{
    // The first three have found faults.
    const unsigned seeds[] = {9, 34, 102, 1, 2, 3, 4, 5, 6, 7};
    for (const unsigned seed : seeds)
        ASSERT_EQ(FailureOf(seed, 1200), QString());
}

} // namespace

} // namespace Korvane
