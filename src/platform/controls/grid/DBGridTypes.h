// SPDX-License-Identifier: MIT
#pragma once

#include "platform/graphics/Color.h"

#include <QFlags>
#include <QFont>
#include <QObject>

#include <optional>

namespace Korvane {

/// What a grid shows and allows.
enum TwwDBGridOption {
    dgEditing = 1 << 0,      ///< cells may be edited
    dgTitles = 1 << 1,       ///< a row of titles
    dgIndicator = 1 << 2,    ///< a column on the left that marks the current row and its state
    dgColumnResize = 1 << 3, ///< columns are resized and moved by their titles
    dgColumnMenu = 1 << 4,   ///< a menu on the titles hides and shows columns
    dgColLines = 1 << 5,
    dgRowLines = 1 << 6,
    dgTabs = 1 << 7,          ///< Tab goes to the next cell; otherwise it leaves the grid
    dgRowSelect = 1 << 8,     ///< the whole current row is highlighted; no cell is edited
    dgConfirmDelete = 1 << 9, ///< deleting a row by a key asks first
    dgShowFooter = 1 << 10    ///< a row of totals at the bottom
};
Q_DECLARE_FLAGS(TwwDBGridOptions, TwwDBGridOption)
Q_DECLARE_OPERATORS_FOR_FLAGS(TwwDBGridOptions)

/// What keys do in a grid.
enum TwwDBGridKeyOption {
    dgEnterToTab = 1 << 0,  ///< Enter goes to the next cell that can be edited, behind the last to a new row
    dgAllowDelete = 1 << 1, ///< Ctrl+Delete deletes the row
    dgAllowInsert = 1 << 2  ///< Insert and Ctrl+Insert insert a row, Down on the last row appends one
};
Q_DECLARE_FLAGS(TwwDBGridKeyOptions, TwwDBGridKeyOption)
Q_DECLARE_OPERATORS_FOR_FLAGS(TwwDBGridKeyOptions)

/// How the controls in cells behave.
enum TwwEditControlOption {
    ecoCheckboxSingleClick = 1 << 0,  ///< one click toggles a tick box; otherwise the first selects its cell
    ecoDisableDateTimePicker = 1 << 1 ///< date cells are edited as text
};
Q_DECLARE_FLAGS(TwwEditControlOptions, TwwEditControlOption)
Q_DECLARE_OPERATORS_FOR_FLAGS(TwwEditControlOptions)

/// How memos are shown and edited.
enum TwwMemoAttribute {
    mGridShow = 1 << 0, ///< the text stands in the cell instead of "(MEMO)"
    mViewOnly = 1 << 1, ///< the window of the memo shows and does not edit
    mWordWrap = 1 << 2  ///< its lines are broken at its edge
};
Q_DECLARE_FLAGS(TwwMemoAttributes, TwwMemoAttribute)
Q_DECLARE_OPERATORS_FOR_FLAGS(TwwMemoAttributes)

/// Colours of whole rows. clNone leaves a row as it is.
struct TwwPaintOptions
{
    Q_GADGET
    Q_PROPERTY(Korvane::TColor AlternatingRowColor MEMBER AlternatingRowColor)
    Q_PROPERTY(Korvane::TColor ActiveRecordColor MEMBER ActiveRecordColor)

public:
    TColor AlternatingRowColor = clNone; ///< every second row
    TColor ActiveRecordColor = clNone;   ///< the current row

    friend bool operator==(const TwwPaintOptions &, const TwwPaintOptions &) = default;
};

/// The picture in a column's title.
struct TTitleImageAttributes
{
    int ImageIndex = -1; ///< in the grid's TitleImageList; -1 is none
    Qt::Alignment Alignment = Qt::AlignRight;
    /// The style's arrow of a sorted column, shown where there is no picture; already set for a
    /// field by which the dataset is ordered.
    std::optional<Qt::SortOrder> SortMark;
};

/// How a cell is painted, to be changed by an application.
struct TCellColors
{
    QColor Fill;
    QColor Text;
    QFont Font;
};

/// The figure at the foot of a column.
enum TFooterKind { fkNone, fkSum, fkCount, fkAverage, fkMinimum, fkMaximum };

/// One cell: the place of its row among the rows shown and of its column among the columns shown,
/// both from 0.
struct TGridCell
{
    qsizetype Row = -1;
    int Column = -1;

    bool IsNull() const { return Row < 0 || Column < 0; }
    friend bool operator==(const TGridCell &, const TGridCell &) = default;
};

/// A block of cells, both ends included.
struct TGridBlock
{
    qsizetype Top = 0;
    int Left = 0;
    qsizetype Bottom = -1;
    int Right = -1;

    bool Contains(const TGridCell &cell) const
    {
        return cell.Row >= Top && cell.Row <= Bottom && cell.Column >= Left && cell.Column <= Right;
    }
    bool IsSingleCell() const { return Top == Bottom && Left == Right; }
};

} // namespace Korvane
