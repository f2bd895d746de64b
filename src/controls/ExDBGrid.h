// SPDX-License-Identifier: MIT
#pragma once

#include "platform/controls/grid/DBGrid.h"

namespace Korvane {

/// The draw states of a tick box without and with its tick, for applications that draw cells.
inline constexpr int CtrlState[2] = {0, 0x400};

/// The grid of the system. On an open TExCustomDataSet it builds its columns from the fields of the
/// design: titles, widths, tick boxes, calendars and pictures by their types. A dataset whose rows
/// can be marked (FSELECTED) gets a tick column in front, and is read-only everywhere else.
///
///     TExDBGrid grid(&form);
///     grid.SetDataSource(&orders);
///     grid.SetTitleButtons(true); // a click on a title sorts
class TExDBGrid : public TwwDBGrid
{
    Q_OBJECT
    Q_PROPERTY(bool ColumnAutoWidth READ ColumnAutoWidth WRITE SetColumnAutoWidth)
    Q_PROPERTY(bool ReadOnly READ GetReadOnly WRITE SetReadOnly)
    Q_PROPERTY(QString ReadOnlyFields READ ReadOnlyFields WRITE SetReadOnlyFields)

public:
    explicit TExDBGrid(QWidget *parent = nullptr);

    /// Fits all columns to what is in sight, at the moment when it is set.
    bool ColumnAutoWidth() const { return FColumnAutoWidth; }
    void SetColumnAutoWidth(bool automatic);
    /// The base grid's flag as it stands: on a dataset with FSELECTED it follows the current column.
    bool GetReadOnly() const { return TwwDBGrid::ReadOnly(); }
    /// Also switches the keys that delete and insert rows, and builds the columns anew.
    void SetReadOnly(bool readOnly);
    /// Names of fields that are never edited, joined by ";". Counts when columns are built next.
    const QString &ReadOnlyFields() const { return FReadOnlyFields; }
    void SetReadOnlyFields(const QString &fields);

    /// Blind to case.
    bool IsReadOnlyField(const QString &fieldName) const;
    /// Whether a list joined by ";" has the name; exact in case.
    bool IsHideField(const QString &fieldName, const QString &hideFields) const;
    /// The outermost control around the grid, or the grid itself.
    QWidget *GetTopParent();
    /// The name of the picture control for an "image" column, which is made when it is not there
    /// yet and belongs to the outermost control. Raises EInvalidCast when the name is taken.
    QString GetDBImage(const QString &fieldName);

protected:
    void LinkActive(bool value) override;
    void ColEnter() override;
    void ColExit() override;
    void DblClick() override;
    void DoFieldChanged(TField *field) override;
    /// Moves the current row by as many rows as the system's setting has lines for a notch.
    bool DoMouseWheel(int delta) override;
    bool IsDateField(TField *field) const override;
    /// Without a handler the dataset is sorted by the field, or the other way round.
    void DoTitleButtonClick(const QString &fieldName) override;
    /// Names of properties lead to the fields of their columns.
    TField *FieldOfColumn(const QString &name) const override;
    /// Never where rows are marked: nothing but the tick is edited there.
    bool MayChangeRows() const override;
    /// In the database as well, as the dataset's own Delete does.
    void DeleteRecord() override;

private:
    void AddSelectColumn(const TDataSet &dataSet);
    void AddDesignColumns();

    bool FColumnAutoWidth = false;
    QString FReadOnlyFields;
    QStringList FReadOnlyList;
    QStringList FDateList;
};

} // namespace Korvane
