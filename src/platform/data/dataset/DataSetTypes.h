// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/FieldTypes.h"

#include <QFlags>
#include <QString>

namespace Korvane {

/// What a dataset is doing.
enum TDataSetState {
    dsInactive,   ///< closed
    dsBrowse,     ///< shows rows
    dsEdit,       ///< the current row is being edited
    dsInsert,     ///< a new row is being filled
    dsCalcFields, ///< OnCalcFields runs
    dsFilter      ///< OnFilterRecord runs
};

/// What a dataset tells its data links.
enum TDataEvent {
    deFieldChange,     ///< a field of the row being edited has a new value
    deRecordChange,    ///< the current row, nothing else
    deDataSetChange,   ///< rows, order or the current row
    deDataSetScroll,   ///< another row is current
    deRowsFetched,     ///< more rows stand behind the others, and nothing else has changed
    deLayoutChange,    ///< the fields, or how they are shown
    deUpdateRecord,    ///< controls are to write what was typed into their fields
    deUpdateState,     ///< the state
    deCheckBrowseMode, ///< the current row is about to be left
    deFocusControl     ///< a field wants the focus
};

enum TFieldKind {
    fkData,      ///< a column of the data
    fkCalculated ///< filled by OnCalcFields, row by row, never saved
};

/// What happens after a failed edit, post or delete.
enum TDataAction {
    daFail,  ///< the exception passes on
    daAbort, ///< ends silently
    daRetry  ///< once more
};

enum TIndexOption {
    ixPrimary = 1,
    ixUnique = 2,
    ixDescending = 4,
    ixCaseInsensitive = 8,
};
Q_DECLARE_FLAGS(TIndexOptions, TIndexOption)
Q_DECLARE_OPERATORS_FOR_FLAGS(TIndexOptions)

/// The rows that a view shows, by what has become of them.
enum TUpdateStatusFlag {
    usfUnmodified = 1 << usUnmodified,
    usfModified = 1 << usModified,
    usfInserted = 1 << usInserted,
    usfDeleted = 1 << usDeleted,
};
Q_DECLARE_FLAGS(TUpdateStatusSet, TUpdateStatusFlag)
Q_DECLARE_OPERATORS_FOR_FLAGS(TUpdateStatusSet)

/// The definition of a field: what CreateDataSet makes a column from.
struct TFieldDef
{
    QString Name;
    TFieldType DataType = ftUnknown;
    int Size = 0;
    bool Required = false;
    int Precision = 0;
};

/// The definition of an index.
struct TIndexDef
{
    QString Name;
    QString Fields; ///< names joined by ";"
    TIndexOptions Options;
    QString DescFields;            ///< those that go down; with ixDescending and none named, all
    QString CaseInsensitiveFields; ///< those blind to case; with ixCaseInsensitive and none named, all
};

} // namespace Korvane
