// SPDX-License-Identifier: MIT
#include "controls/ExDBGrid.h"

#include "controls/ExDBImage.h"
#include "datasets/ExCustomDataSet.h"
#include "design/DBDObjects.h"
#include "general/TextRoutines.h"
#include "platform/core/Cursor.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Text.h"
#include "platform/core/TryFinally.h"
#include "platform/forms/ComponentOwner.h"

#include <QApplication>
#include <QScopeGuard>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

const QString SelectField = QStringLiteral("FSELECTED");

QString ReadOnlyMark(bool readOnly) { return readOnly ? u"T"_s : u"F"_s; }

} // namespace

TExDBGrid::TExDBGrid(QWidget *parent) : TwwDBGrid(parent)
{
    SetReadOnlyFields(u"BillLine;ItemName;SpecName;UnitName;WhsName"_s);
    SetEditControlOptions(EditControlOptions() | ecoCheckboxSingleClick);
    SetKeyOptions(KeyOptions() | dgEnterToTab);
    SetPaintOptions({clBtnFace, clMenuHighlight});
    SetwwMemoAttributes(MemoAttributes() | mGridShow);
}

// ---- properties -----------------------------------------------------------------------

void TExDBGrid::SetReadOnly(bool readOnly)
{
    TwwDBGrid::SetReadOnly(readOnly);
    const TwwDBGridKeyOptions rowKeys = dgAllowDelete | dgAllowInsert;
    SetKeyOptions(readOnly ? KeyOptions() & ~rowKeys : KeyOptions() | rowKeys);
    SetwwMemoAttributes(MemoAttributes().setFlag(mViewOnly, readOnly));
    LinkActive(true);
}

void TExDBGrid::SetReadOnlyFields(const QString &fields)
{
    FReadOnlyFields = fields;
    FReadOnlyList = Split(fields, u";"_s);
}

void TExDBGrid::SetColumnAutoWidth(bool automatic)
{
    FColumnAutoWidth = automatic;
    if (!automatic || !DataLink().Active())
        return;
    WithControlsDisabled(*DataSet(), [this] {
        for (int column = 0; column < ColumnCount(); ++column)
            AutoSizeColumn(column);
        viewport()->update();
    });
}

bool TExDBGrid::IsReadOnlyField(const QString &fieldName) const
{
    return FReadOnlyList.contains(fieldName, Qt::CaseInsensitive);
}

bool TExDBGrid::IsHideField(const QString &fieldName, const QString &hideFields) const
{
    return SplitFieldNames(hideFields).contains(fieldName);
}

// ---- the columns ----------------------------------------------------------------------

void TExDBGrid::LinkActive(bool value)
{
    TwwDBGrid::LinkActive(value);
    BeginUpdate();
    TryFinally(
        [this] {
            FDateList.clear();
            GetSelectedFields().clear();
            ControlType().clear();
            TDataSet *dataSet = DataSet();
            if (!dataSet || !dataSet->Active())
                return;
            AddSelectColumn(*dataSet);
            AddDesignColumns();
        },
        [this] { EndUpdate(false); });
}

void TExDBGrid::AddSelectColumn(const TDataSet &dataSet)
{
    if (!dataSet.FindField(SelectField))
        return;
    GetSelectedFields() += u"FSELECTED\t1\t选择\tF"_s;
    ControlType() += u"FSELECTED;CheckBox;Y;N"_s;
}

void TExDBGrid::AddDesignColumns()
{
    auto *dataSet = qobject_cast<TExCustomDataSet *>(DataSet());
    if (!dataSet)
        return;
    for (const auto &field : dataSet->GetFields()) {
        const QString &name = field->FieldProp;
        if (field->FieldType == u"boolean")
            ControlType() += name + u";CheckBox;Y;N"_s;
        else if (field->FieldType == u"date")
            FDateList += name;
        else if (field->FieldType == u"image")
            ControlType() += name + u";CustomEdit;"_s + GetDBImage(name) + u";T"_s;
        // What a hidden field has got by its type stays: it still counts as a date, for instance.
        if (!dataSet->HideFields().isEmpty() && IsHideField(name, dataSet->HideFields()))
            continue;
        const int width = dataSet->FieldByName(field->FieldCode)->DisplayWidth();
        GetSelectedFields() += QStringList{name, QString::number(width), field->FieldName,
                                           ReadOnlyMark(GetReadOnly() || IsReadOnlyField(name))}
                                   .join(u'\t');
    }
}

TField *TExDBGrid::FieldOfColumn(const QString &name) const
{
    if (TField *field = TwwDBGrid::FieldOfColumn(name))
        return field;
    auto *dataSet = qobject_cast<TExCustomDataSet *>(DataSet());
    if (!dataSet)
        return nullptr;
    for (const auto &field : dataSet->GetFields())
        if (field->FieldProp.compare(name, Qt::CaseInsensitive) == 0)
            return dataSet->FindField(field->FieldCode);
    return nullptr;
}

bool TExDBGrid::IsDateField(TField *field) const
{
    if (!field || !DataLink().Active() || !qobject_cast<TExCustomDataSet *>(DataSet()))
        return TwwDBGrid::IsDateField(field);
    return FDateList.contains(field->FieldName(), Qt::CaseInsensitive);
}

QWidget *TExDBGrid::GetTopParent()
{
    QWidget *top = this;
    while (top->parentWidget())
        top = top->parentWidget();
    return top;
}

QString TExDBGrid::GetDBImage(const QString &fieldName)
{
    QWidget *top = GetTopParent();
    const QString name = u"_img"_s + objectName() + fieldName;
    QObject *found = FindComponent(*top, name);
    auto *image = qobject_cast<TExDBImage *>(found);
    if (found && !image)
        throw EInvalidCast(u"部件“%1”不是图片控件"_s.arg(name));
    if (!image) {
        const TwwColumn *column = ColumnByName(fieldName);
        image = new TExDBImage(top);
        image->SetBorderStyle(bsSingle);
        image->resize(column ? column->GetDisplayWidth() : image->width(), RowHeights(0));
        // The name of a property leads to no field where the column is called otherwise.
        const TField *field = DataSet() ? FieldOfColumn(fieldName) : nullptr;
        image->SetDataField(field && !DataSet()->FindField(fieldName) ? field->FieldName() : fieldName);
        image->SetDataSource(GetDataSource());
        image->setObjectName(name);
        image->SetStretch(true);
        image->SetReadOnly(true);
        image->setVisible(false);
    }
    return image->objectName();
}

// ---- what the user does ---------------------------------------------------------------

void TExDBGrid::ColEnter()
{
    TwwDBGrid::ColEnter();
    if (!DataLink().Active() || DataSet()->IsEmpty() || !DataSet()->FindField(SelectField))
        return;
    const TField *field = GetActiveField();
    WriteReadOnly(!field || field->FieldName() != SelectField);
}

void TExDBGrid::ColExit()
{
    TwwDBGrid::ColExit();
    setFocus();
}

void TExDBGrid::DblClick()
{
    SetScreenCursor(crHourGlass);
    const auto restore = qScopeGuard([] { SetScreenCursor(crDefault); });
    TwwDBGrid::DblClick();
}

bool TExDBGrid::MayChangeRows() const
{
    return TwwDBGrid::MayChangeRows() && !DataSet()->FindField(SelectField);
}

void TExDBGrid::DeleteRecord()
{
    auto *dataSet = qobject_cast<TExCustomDataSet *>(DataSet());
    dataSet ? dataSet->Delete() : TwwDBGrid::DeleteRecord();
}

/// A tick goes into the rows in memory at once, without a statement.
void TExDBGrid::DoFieldChanged(TField *field)
{
    if (field->FieldName() == SelectField)
        if (auto *dataSet = qobject_cast<TExCustomDataSet *>(field->DataSet()))
            dataSet->InterPost();
    TwwDBGrid::DoFieldChanged(field);
}

bool TExDBGrid::DoMouseWheel(int delta)
{
    if (!TellMouseWheel(delta))
        return false;
    if (delta == 0)
        return true;
    // The size of the turn plays no part.
    const int direction = delta > 0 ? -1 : 1;
    if (DataLink().Active())
        DataSet()->MoveBy(direction * QApplication::wheelScrollLines());
    viewport()->update();
    return true;
}

void TExDBGrid::DoTitleButtonClick(const QString &fieldName)
{
    auto *dataSet = qobject_cast<TExCustomDataSet *>(DataSet());
    const TField *field = dataSet && dataSet->Active() ? FieldOfColumn(fieldName) : nullptr;
    if (OnTitleButtonClick || !field || field->IsBlob())
        return TwwDBGrid::DoTitleButtonClick(fieldName);
    dataSet->DoSorting(field->FieldName());
}

} // namespace Korvane
