// SPDX-License-Identifier: MIT
#pragma once

#include "platform/controls/grid/GridColumn.h"

#include <functional>

namespace Korvane {

/// The columns of a grid: built from a selected list, then ordered, sized and hidden as the user
/// has done it before, column by column by name.
class TGridColumns
{
public:
    using TFieldFinder = std::function<TField *(const QString &name)>;

    /// Builds all columns anew. A line whose field the dataset does not have makes no column.
    void Build(TwwDBGrid &grid, const QStringList &selected, const TFieldFinder &find);
    void Clear();

    /// Those shown, in order.
    int Count() const { return int(FShown.size()); }
    TwwColumn *operator[](int index) const { return FShown[size_t(index)]; }
    /// All, in order.
    const std::vector<std::unique_ptr<TwwColumn>> &All() const { return FAll; }
    /// Blind to case; null if there is none.
    TwwColumn *Find(const QString &fieldName) const;
    /// The place among those shown; -1 if it is not shown.
    int IndexOf(const TwwColumn *column) const;
    /// Finds out anew which are shown.
    void UpdateShown();

    /// Puts a shown column before the shown column at another place, or behind all of them.
    void Move(int from, int to);

    /// Order, widths and hiding, as JSON.
    QString SaveLayout() const;
    /// Keeps a saved layout for this and all later columns. Raises EConvertError for a text that is
    /// none.
    void RestoreLayout(const QString &text);
    /// The columns as they are now are how the user wants them.
    void KeepLayout() { FKept = Places(); }
    void ForgetLayout() { FKept.clear(); }

private:
    struct TPlace
    {
        QString FieldName;
        double Width;
        bool Visible;
    };

    QList<TPlace> Places() const;
    void ApplyLayout();

    std::vector<std::unique_ptr<TwwColumn>> FAll;
    std::vector<TwwColumn *> FShown;
    QList<TPlace> FKept;
};

} // namespace Korvane
