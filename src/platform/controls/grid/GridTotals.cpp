// SPDX-License-Identifier: MIT
#include "platform/controls/grid/GridTotals.h"

#include "platform/controls/DataSetRows.h"
#include "platform/controls/grid/GridColumn.h"
#include "platform/core/FormatFloat.h"
#include "platform/data/dataset/ClientDataSet.h"
#include "platform/data/dataset/Fields.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

bool IsNumber(const TField &field) { return qobject_cast<const TNumericField *>(&field) != nullptr; }

QString FunctionName(TFooterKind kind)
{
    switch (kind) {
    case fkSum:
        return u"sum"_s;
    case fkAverage:
        return u"avg"_s;
    case fkMinimum:
        return u"min"_s;
    case fkMaximum:
        return u"max"_s;
    default:
        return u"count"_s;
    }
}

/// What calculated fields come to, and fields of datasets without aggregates: row by row.
QVariant WalkedFigure(TFooterKind kind, const TField &field, TDataSet &dataSet)
{
    const TDataSetRows rows(&dataSet);
    double sum = 0, least = 0, greatest = 0;
    qint64 count = 0;
    for (qsizetype row = 0; row < rows.Count(); ++row) {
        const TDataSetRows::TReading reading(rows, row);
        if (field.IsNull())
            continue;
        const double value = kind == fkCount ? 0 : field.AsFloat();
        least = count == 0 ? value : qMin(least, value);
        greatest = count == 0 ? value : qMax(greatest, value);
        sum += value;
        ++count;
    }
    if (kind == fkCount)
        return qlonglong(count);
    if (count == 0)
        return {};
    return kind == fkSum       ? sum
           : kind == fkAverage ? sum / double(count)
           : kind == fkMinimum ? least
                               : greatest;
}

QVariant Figure(TFooterKind kind, const TField &field, TDataSet &dataSet)
{
    auto *rows = qobject_cast<TCustomClientDataSet *>(&dataSet);
    if (!rows || field.Calculated())
        return WalkedFigure(kind, field, dataSet);
    TAggregate aggregate(rows);
    aggregate.SetExpression(FunctionName(kind) + u"(["_s + field.FieldName() + u"])"_s);
    aggregate.SetActive(true);
    return aggregate.Value();
}

QString Formatted(const QVariant &figure, TFooterKind kind, const TField &field)
{
    if (!figure.isValid() || figure.isNull())
        return {};
    if (kind == fkCount || !IsNumber(field))
        return figure.toString();
    const QString format = field.DisplayFormat();
    const double value = figure.toDouble();
    return format.isEmpty() ? FloatToStr(value) : FormatFloat(format, value);
}

} // namespace

QString TGridTotals::TextOf(const TwwColumn &column, TDataSet *dataSet)
{
    const TField *field = column.Field();
    const auto footer = FFooters.constFind(column.FieldName().toUpper());
    if (footer == FFooters.constEnd() || !footer->Value.isEmpty())
        return footer == FFooters.constEnd() ? QString() : footer->Value;
    const TFooterKind kind = footer->Kind;
    if (kind == fkNone || !field || !dataSet || !dataSet->Active() || !dataSet->IsFetched() ||
        (kind != fkCount && !IsNumber(*field)))
        return {};
    const auto known = FTexts.constFind(footer.key());
    if (known != FTexts.constEnd())
        return *known;
    return *FTexts.insert(footer.key(), Formatted(Figure(kind, *field, *dataSet), kind, *field));
}

} // namespace Korvane
