// SPDX-License-Identifier: MIT
#pragma once

#include "platform/controls/editors/CellControl.h"
#include "platform/controls/grid/DBGridTypes.h"
#include "platform/data/dataset/Field.h"

#include <QPointer>

namespace Korvane {

class TwwDBGrid;

/// One line of a grid's selected list: a field's name, the width in characters, the title and the
/// read-only mark ("T" or "F"), joined by tab characters. What is missing at the end is left to the
/// field.
struct TSelectedLine
{
    QString FieldName;
    double DisplayWidth = 0;
    QString DisplayLabel;
    bool ReadOnly = false;

    static TSelectedLine FromText(const QString &text);
    QString ToText() const;
};

/// One column of a grid. It belongs to the grid and lasts until the columns are built anew.
class TwwColumn
{
public:
    TwwColumn(TwwDBGrid &grid, const TSelectedLine &line, TField *field);
    TwwColumn(const TwwColumn &) = delete;
    TwwColumn &operator=(const TwwColumn &) = delete;

    /// As the selected list has it.
    const QString &FieldName() const { return FLine.FieldName; }
    /// Null when the dataset has gone.
    TField *Field() const { return FField; }
    /// The title; the field's label where the list has none.
    QString DisplayLabel() const;
    void SetDisplayLabel(const QString &label);
    /// In characters of the grid's font; 10 for a field that says nothing.
    int GetDisplayWidth() const { return qRound(DisplayWidth()); }
    double DisplayWidth() const;
    void SetDisplayWidth(double characters);
    bool ReadOnly() const { return FLine.ReadOnly; }
    void SetReadOnly(bool readOnly);
    bool Visible() const { return FVisible; }
    void SetVisible(bool visible);
    /// What its cells are shown and edited with.
    const TCellControl &Control() const { return FControl; }

private:
    friend class TGridColumns;
    friend class TwwDBGrid;

    /// As the user had it before.
    void ApplyPlace(double width, bool visible)
    {
        FLine.DisplayWidth = width;
        FVisible = visible;
    }

    TwwDBGrid &FGrid;
    TSelectedLine FLine;
    QPointer<TField> FField;
    bool FVisible = true;
    TCellControl FControl;
};

} // namespace Korvane
