// SPDX-License-Identifier: MIT
#include "platform/controls/grid/GridColumn.h"

#include "platform/controls/grid/DBGrid.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

constexpr int WidthWithoutField = 10;
constexpr double WidestColumn = 1000;

} // namespace

// ---- TSelectedLine --------------------------------------------------------------------

TSelectedLine TSelectedLine::FromText(const QString &text)
{
    const QStringList pieces = text.split(u'\t');
    TSelectedLine line;
    line.FieldName = pieces.value(0);
    line.DisplayWidth = qBound(0.0, pieces.value(1).toDouble(), WidestColumn);
    line.DisplayLabel = pieces.value(2);
    line.ReadOnly = pieces.value(3) == u"T"_s;
    return line;
}

QString TSelectedLine::ToText() const
{
    return QStringList{FieldName, QString::number(DisplayWidth), DisplayLabel, ReadOnly ? u"T"_s : u"F"_s}
        .join(u'\t');
}

// ---- TwwColumn ------------------------------------------------------------------------

TwwColumn::TwwColumn(TwwDBGrid &grid, const TSelectedLine &line, TField *field)
    : FGrid(grid), FLine(line), FField(field)
{
}

QString TwwColumn::DisplayLabel() const
{
    return FLine.DisplayLabel.isEmpty() && FField ? FField->DisplayLabel() : FLine.DisplayLabel;
}

void TwwColumn::SetDisplayLabel(const QString &label)
{
    FLine.DisplayLabel = label;
    FGrid.ColumnsChanged();
}

double TwwColumn::DisplayWidth() const
{
    if (FLine.DisplayWidth > 0)
        return FLine.DisplayWidth;
    return FField ? FField->DisplayWidth() : WidthWithoutField;
}

void TwwColumn::SetDisplayWidth(double characters)
{
    FLine.DisplayWidth = qBound(0.0, characters, WidestColumn);
    FGrid.ColumnsChanged();
}

void TwwColumn::SetReadOnly(bool readOnly) { FLine.ReadOnly = readOnly; }

void TwwColumn::SetVisible(bool visible)
{
    FVisible = visible;
    FGrid.ColumnsChanged();
}

} // namespace Korvane
