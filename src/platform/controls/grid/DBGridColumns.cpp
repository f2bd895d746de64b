// SPDX-License-Identifier: MIT
// The columns of a grid: built, moved, sized, and what stands in their titles and at their feet.
#include "platform/controls/DataSetRows.h"
#include "platform/controls/grid/DBGrid.h"
#include "platform/controls/grid/GridEditing.h"
#include "platform/controls/grid/GridTotals.h"
#include "platform/core/Exceptions.h"
#include "platform/core/TryFinally.h"
#include "platform/data/dataset/ClientDataSet.h"
#include "platform/graphics/ImageList.h"

#include <QStyle>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

/// How a client dataset is ordered, when it is by this field alone.
std::optional<Qt::SortOrder> SortOrderOf(const TField &field)
{
    const auto *dataSet = qobject_cast<const TCustomClientDataSet *>(field.DataSet());
    if (!dataSet)
        return {};
    const auto isField = [&](const QString &names) {
        return names.compare(field.FieldName(), Qt::CaseInsensitive) == 0;
    };
    if (isField(dataSet->IndexFieldNames()))
        return Qt::AscendingOrder;
    const TIndexDef *index =
        dataSet->IndexName().isEmpty() ? nullptr : dataSet->FindIndex(dataSet->IndexName());
    if (!index || !isField(index->Fields))
        return {};
    const bool goesDown = index->Options.testFlag(ixDescending) || isField(index->DescFields);
    return goesDown ? Qt::DescendingOrder : Qt::AscendingOrder;
}

} // namespace

void TwwDBGrid::LinkActive(bool) { ApplySelected(); }

TField *TwwDBGrid::FieldOfColumn(const QString &name) const { return DataSet()->FindField(name); }

void TwwDBGrid::SetSelected(const QStringList &lines)
{
    FSelected = lines;
    ApplySelected();
}

void TwwDBGrid::SetControlType(const QStringList &lines)
{
    FControlType = lines;
    ApplySelected();
}

void TwwDBGrid::EndUpdate(bool repaint)
{
    if (FUpdateCount == 0 || --FUpdateCount > 0)
        return;
    ApplySelected();
    if (repaint)
        viewport()->repaint();
}

void TwwDBGrid::ApplySelected()
{
    if (IsUpdating() || FIsBuilding)
        return;
    FEditing->Close();
    FIsBuilding = true;
    TryFinally([this] { BuildColumns(); },
               [this] {
                   FIsBuilding = false;
                   ColumnsChanged();
               });
}

void TwwDBGrid::BuildColumns()
{
    FTotals->Forget();
    if (!FLink.Active())
        return FColumns.Clear();
    QStringList lines = FSelected;
    if (lines.isEmpty())
        for (const TField *field : DataSet()->Fields())
            if (field->Visible())
                lines += TSelectedLine{field->FieldName()}.ToText();
    FColumns.Build(*this, lines, [this](const QString &name) { return FieldOfColumn(name); });
    for (const auto &column : FColumns.All())
        column->FControl = ControlFor(*column);
}

void TwwDBGrid::ColumnsChanged()
{
    if (FIsBuilding)
        return;
    FTotals->Forget();
    FColumns.UpdateShown();
    FColumn = qBound(0, FColumn, qMax(0, ColumnCount() - 1));
    if (FBlockEnd.Column >= ColumnCount())
        FBlockEnd = {};
    UpdateLayout();
}

void TwwDBGrid::MoveColumn(int from, int to)
{
    if (from < 0 || from >= ColumnCount() || to < 0 || to > ColumnCount())
        throw EListError(u"没有第%1列"_s.arg(qMax(from, to) + 1));
    CommitEdit();
    const TwwColumn *current = ColumnCount() > 0 ? Columns(FColumn) : nullptr;
    FColumns.Move(from, to);
    FColumns.KeepLayout();
    FColumn = qMax(0, FColumns.IndexOf(current));
    FBlockEnd = {};
    UpdateLayout();
    OnColumnsMoved(this);
}

void TwwDBGrid::AutoSizeColumn(int index)
{
    if (index < 0 || index >= ColumnCount())
        throw EListError(u"没有第%1列"_s.arg(index + 1));
    TwwColumn &column = *Columns(index);
    const QFontMetrics metrics(font());
    int width = metrics.horizontalAdvance(column.DisplayLabel());
    const TImageList *images = TitleImageList();
    TTitleImageAttributes attributes;
    DoCalcTitleImage(column.Field(), attributes);
    if (images && attributes.ImageIndex >= 0)
        width += images->Width() + CellMargin;
    else if (attributes.SortMark)
        width += style()->pixelMetric(QStyle::PM_HeaderMarkSize, nullptr, this) + CellMargin;
    const TDataSetRows rows = Rows();
    for (qsizetype row = FLayout.TopRow; column.Field() && row < FLayout.EndRow(); ++row) {
        const TDataSetRows::TReading reading(rows, row);
        width = qMax(width, metrics.horizontalAdvance(CellText(column)));
    }
    width = qMax(width, metrics.horizontalAdvance(FooterText(index)));
    column.SetDisplayWidth(CharactersOf(width + 2 * CellMargin + 2));
}

void TwwDBGrid::RestoreLayout(const QString &text)
{
    CommitEdit();
    FColumns.RestoreLayout(text);
    ColumnsChanged();
}

void TwwDBGrid::ResetLayout()
{
    CommitEdit();
    FColumns.ForgetLayout();
    ApplySelected();
}

TCellControl TwwDBGrid::ControlFor(const TwwColumn &column) const
{
    TCellControl control;
    // A later line of a field wins.
    for (const QString &text : FControlType)
        if (const TCellControl line = TCellControl::FromText(text);
            line.FieldName.compare(column.FieldName(), Qt::CaseInsensitive) == 0)
            control = line;
    TField *field = column.Field();
    if (!control.FieldName.isEmpty())
        return control;
    if (IsDateField(field) && !FEditControlOptions.testFlag(ecoDisableDateTimePicker))
        control.Kind = ckDate;
    else if (field->DataType() == ftMemo || field->DataType() == ftFmtMemo)
        control.Kind = ckMemo;
    return control;
}

QWidget *TwwDBGrid::FindControl(const QString &name) const
{
    return name.isEmpty() ? nullptr : window()->findChild<QWidget *>(name);
}

QString TwwDBGrid::CellText(const TwwColumn &column) const
{
    const TField &field = *column.Field();
    const TCellControl &control = column.Control();
    if (control.Kind == ckMemo && FMemoAttributes.testFlag(mGridShow)) {
        const QString text = field.AsString();
        return FRowLines > 1 ? text : text.simplified();
    }
    const QString text = field.DisplayText();
    const qsizetype item = control.Stored.indexOf(text);
    return item < 0 ? text : control.Shown[item];
}

QString TwwDBGrid::FooterText(int column) const { return FTotals->TextOf(*Columns(column), DataSet()); }

TFooterKind TwwDBGrid::FooterKind(const QString &fieldName) const { return FTotals->Kind(fieldName); }

void TwwDBGrid::SetFooterKind(const QString &fieldName, TFooterKind kind)
{
    FTotals->SetKind(fieldName, kind);
    FTotals->Forget();
    viewport()->update();
}

QString TwwDBGrid::FooterValue(const QString &fieldName) const { return FTotals->Value(fieldName); }

void TwwDBGrid::SetFooterValue(const QString &fieldName, const QString &text)
{
    FTotals->SetValue(fieldName, text);
    viewport()->update();
}

void TwwDBGrid::DoCalcTitleImage(TField *field, TTitleImageAttributes &attributes)
{
    attributes.SortMark = field ? SortOrderOf(*field) : std::nullopt;
    if (OnCalcTitleImage)
        OnCalcTitleImage(this, field, attributes);
}

} // namespace Korvane
