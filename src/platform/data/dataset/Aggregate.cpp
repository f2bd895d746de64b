// SPDX-License-Identifier: MIT
#include "platform/data/dataset/Aggregate.h"

#include "platform/core/Text.h"
#include "platform/core/Variants.h"
#include "platform/data/CellValues.h"
#include "platform/data/dataset/ClientDataSet.h"

namespace Korvane {

namespace {

enum class TFunction { Sum, Count, Min, Max, Average };

constexpr struct
{
    const char *Name;
    TFunction Function;
} Functions[] = {{"sum", TFunction::Sum},
                 {"count", TFunction::Count},
                 {"min", TFunction::Min},
                 {"max", TFunction::Max},
                 {"avg", TFunction::Average}};

struct TParsed
{
    TFunction Function;
    QString Field; ///< "*" for rows
};

TParsed Parse(const QString &expression)
{
    const qsizetype open = expression.indexOf(u'(');
    const QString name = Trim(expression.left(open));
    const QString rest = Trim(expression.mid(open + 1));
    if (open > 0 && rest.endsWith(u')'))
        for (const auto &entry : Functions)
            if (name.compare(QLatin1String(entry.Name), Qt::CaseInsensitive) == 0) {
                QString field = Trim(rest.chopped(1));
                if (field.startsWith(u'[') && field.endsWith(u']'))
                    field = field.mid(1, field.size() - 2);
                if (!field.isEmpty() && (field != u"*" || entry.Function == TFunction::Count))
                    return {entry.Function, field};
            }
    throw EDatabaseError(QStringLiteral("汇总表达式“%1”不正确").arg(expression));
}

/// What the rows of a view have in one column, gone through once.
class TReckoning
{
public:
    TReckoning(const TRecordStore &store, const TRecordView &view) : FStore(store), FView(view) {}

    qint64 CountRows(int column) const
    {
        qint64 count = 0;
        ForEach(column, [&](const TOverlaidRow &) { ++count; });
        return count;
    }

    /// Whole numbers add up exactly as long as they fit, and as floats beyond.
    QVariant Sum(int column) const
    {
        qint64 whole = 0;
        double total = 0;
        bool isExact = FStore.Kinds()[size_t(column)] < TColumnKind::Double;
        qint64 count = 0;
        ForEach(column, [&](const TOverlaidRow &row) {
            ++count;
            const double value = ValueOf(row, column);
            total += value;
            isExact = isExact && !__builtin_add_overflow(whole, row.GetInt(column), &whole);
        });
        return count == 0 ? VarNull() : isExact ? QVariant(qlonglong(whole)) : QVariant(total);
    }

    QVariant Average(int column) const
    {
        const qint64 count = CountRows(column);
        return count == 0 ? VarNull() : QVariant(Sum(column).toDouble() / double(count));
    }

    /// The record with the least or greatest value; NoRecord if none has any.
    quint32 Extreme(int column, TFunction function) const
    {
        const std::vector<TOrderPart> order = {{column}};
        quint32 best = TRecordStore::NoRecord;
        ForEach(column, [&](const TOverlaidRow &row) {
            const int result = best == TRecordStore::NoRecord
                                   ? 0
                                   : CompareRows(FStore.Packet(), FStore.Overlay(), order, row.Row(), best);
            if (best == TRecordStore::NoRecord || (function == TFunction::Min ? result < 0 : result > 0))
                best = row.Row();
        });
        return best;
    }

private:
    double ValueOf(const TOverlaidRow &row, int column) const
    {
        return FStore.Kinds()[size_t(column)] == TColumnKind::Double ? row.GetDouble(column)
                                                                     : double(row.GetInt(column));
    }
    /// Visits the rows with a value in the column.
    template <class Visit> void ForEach(int column, Visit visit) const
    {
        TOverlaidRow row = FStore.RowOf(0);
        for (qsizetype i = 0; i < FView.Count(); ++i) {
            row.MoveTo(FView.RecordAt(i));
            if (!row.IsNull(column))
                visit(row);
        }
    }

    const TRecordStore &FStore;
    const TRecordView &FView;
};

QVariant CellValue(const TRecordStore &store, quint32 record, int column)
{
    const TPacketField &field = store.Fields()[column];
    return TCellReader(store.RowOf(record), column, field.Type, field.Name).Value();
}

bool IsNumeric(TColumnKind kind) { return kind <= TColumnKind::Double; }

} // namespace

void TAggregate::SetExpression(const QString &expression)
{
    FExpression = expression;
    FReckoned = 0;
    if (FActive)
        SetActive(true);
}

void TAggregate::SetActive(bool active)
{
    FActive = false;
    FReckoned = 0;
    if (!active)
        return;
    const TParsed parsed = Parse(FExpression);
    if (FDataSet->Active())
        FDataSet->CheckAggregate(parsed.Field,
                                 parsed.Function == TFunction::Sum || parsed.Function == TFunction::Average);
    FActive = true;
}

QVariant TAggregate::Value()
{
    if (!FActive || !FDataSet->Active())
        return VarNull();
    FDataSet->FetchAll();
    if (FReckoned == FDataSet->FVersion)
        return FValue;
    const TParsed parsed = Parse(FExpression);
    const TRecordStore &store = *FDataSet->FStore;
    const TReckoning reckoning(store, *FDataSet->FView);
    if (parsed.Field == u"*") {
        FValue = qlonglong(FDataSet->RecordCount());
    } else {
        const bool numbers = parsed.Function == TFunction::Sum || parsed.Function == TFunction::Average;
        const int column = FDataSet->CheckAggregate(parsed.Field, numbers);
        switch (parsed.Function) {
        case TFunction::Sum:
            FValue = reckoning.Sum(column);
            break;
        case TFunction::Count:
            FValue = qlonglong(reckoning.CountRows(column));
            break;
        case TFunction::Average:
            FValue = reckoning.Average(column);
            break;
        case TFunction::Min:
        case TFunction::Max: {
            const quint32 record = reckoning.Extreme(column, parsed.Function);
            FValue = record == TRecordStore::NoRecord ? VarNull() : CellValue(store, record, column);
            break;
        }
        }
    }
    FReckoned = FDataSet->FVersion;
    return FValue;
}

TAggregate *TAggregates::Add()
{
    FItems.push_back(std::make_unique<TAggregate>(FDataSet));
    return FItems.back().get();
}

void TAggregates::Remove(TAggregate *aggregate)
{
    std::erase_if(FItems, [aggregate](const auto &item) { return item.get() == aggregate; });
}

/// The column of an aggregate's field. Raises EDatabaseError for one that cannot be reckoned.
int TCustomClientDataSet::CheckAggregate(const QString &field, bool numbers) const
{
    if (field == u"*")
        return -1;
    const int column = ColumnOf(field);
    const TColumnKind kind = FStore->Kinds()[size_t(column)];
    if (numbers ? !IsNumeric(kind) : kind == TColumnKind::Blob)
        Fail(QStringLiteral("字段“%1”不能这样汇总").arg(field));
    return column;
}

} // namespace Korvane
