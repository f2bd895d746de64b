// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Exceptions.h"
#include "platform/data/FilterExpression.h"
#include "platform/data/KeyLookup.h"
#include "platform/data/dataset/Field.h"
#include "platform/data/store/RowValues.h"

#include <QDeadlineTimer>

#include <functional>

namespace Korvane {

class TDataLink;
class TDataSource;

/// A remembered place in a dataset: the number of a record. It stays good while rows come, go
/// and are ordered anew, until other data is loaded.
class TBookmark
{
public:
    TBookmark() = default;
    TBookmark(quint64 data, quint32 record) : FData(data), FRecord(record) {}

    bool IsNull() const { return FData == 0; }
    quint64 Data() const { return FData; } ///< which loaded data it belongs to
    quint32 Record() const { return FRecord; }

    friend bool operator==(const TBookmark &, const TBookmark &) = default;

private:
    quint64 FData = 0;
    quint32 FRecord = 0;
};

/// Rows with a current one: walks them, edits the current one, and tells data links what
/// happens. Base of the client datasets, which hold the rows.
///
/// A dataset is a small state machine. Edit, Insert and Append begin a change of one row, Post
/// ends it and Cancel drops it, as do Delete, Close and what undoes logged changes; all else that
/// leaves the row posts it first if anything was written into it, and cancels it otherwise
/// (CheckBrowseMode). A Before event may stop what it
/// announces by raising, silently by Abort(). Order of the events:
///
///     Open    BeforeOpen, state, AfterOpen, AfterScroll
///     Close   BeforeClose, state, AfterClose
///     Edit    BeforeEdit, state, AfterEdit
///     Insert  BeforeInsert, BeforeScroll, state, OnNewRecord, AfterInsert, AfterScroll
///     Post    BeforePost, state, AfterPost
///     Cancel  BeforeCancel, [BeforeScroll,] state, AfterCancel [, AfterScroll] of an insertion
///     Delete  BeforeDelete, BeforeScroll, state, AfterDelete, AfterScroll
///     move    BeforeScroll, AfterScroll
///
/// Beginning and end are flags: First sets Bof, Last sets Eof, moving beyond the last row sets
/// Eof and stays there; on an empty set both are true.
///
/// A set may be open when only its first rows are there. The others are fetched as soon as anything
/// depends on them: a change of any row, RecordCount, Last, moving beyond those that are there, a
/// search, an order, a filter, a sum. So only what shows rows needs to know: it asks for FetchedCount,
/// and fetches the others while the user is idle.
class TDataSet : public TComponent
{
    Q_OBJECT
    Q_PROPERTY(bool Active READ Active WRITE SetActive)
    Q_PROPERTY(QString Filter READ Filter WRITE SetFilter)
    Q_PROPERTY(bool Filtered READ Filtered WRITE SetFiltered)

public:
    explicit TDataSet(QObject *owner = nullptr);
    ~TDataSet() override;

    // ---- state
    TDataSetState State() const { return FState; }
    bool Active() const { return FState != dsInactive; }
    void SetActive(bool active);
    void Open() { SetActive(true); }
    void Close() { SetActive(false); }
    /// Something was written into the row being edited.
    bool Modified() const { return FModified; }
    /// False for read-only data.
    virtual bool CanModify() const { return true; }
    /// Whether trailing blanks are cut off texts that are written.
    virtual bool TrimsStrings() const { return false; }
    /// Raises EDatabaseError when closed.
    void CheckActive() const;
    /// Ends an edit: posts the row if it was written to, cancels otherwise.
    void CheckBrowseMode();
    /// Lets the controls write what was typed, while the row is being edited.
    void UpdateRecord();

    // ---- fields
    int FieldCount() const { return int(FFields.size()); }
    /// In the order of the columns, calculated ones behind, unless Index was set.
    const QList<TField *> &Fields() const { return FFields; }
    TField *Fields(int index) const;
    /// Blind to the case of letters; null if there is none.
    TField *FindField(QStringView name) const;
    /// Raises EDatabaseError when there is none.
    TField *FieldByName(QStringView name) const;
    /// The row that the data fields read now, its columns numbered by FieldNo; null without one. For
    /// who reads many fields at once; good until the dataset moves or changes.
    const TRowReader *CurrentRow() const;
    /// The fields of a list of names joined by ";". Raises EDatabaseError for an unknown one.
    QList<TField *> GetFieldList(const QString &names) const;
    /// What CreateDataSet makes columns from; of an open dataset, its columns.
    QList<TFieldDef> &FieldDefs() { return FFieldDefs; }
    const QList<TFieldDef> &FieldDefs() const { return FFieldDefs; }

    // ---- rows
    /// How many rows are shown. Fetches all.
    qsizetype RecordCount() const;
    bool IsEmpty() const { return FetchedCount() == 0; }
    /// How many of them are there: less than RecordCount only while IsFetched is false, and never 0 then.
    virtual qsizetype FetchedCount() const = 0;
    virtual bool IsFetched() const { return true; }
    /// Fetches rows until the deadline, without moving. They appear together, when the last one is there
    /// (deRowsFetched). What fails raises, here and wherever all rows are needed.
    virtual void FetchNext(QDeadlineTimer) {}
    /// All rows belong to the set before they are fetched too, so that this changes nothing.
    void FetchAll() const;
    bool Bof() const { return FBof; }
    bool Eof() const { return FEof; }
    /// From 1; 0 on an empty set and for a new row.
    qsizetype RecNo() const;
    /// Where a row being inserted stands among those shown: before the one at this place, from 0, or
    /// at the end for RecordCount(). -1 unless inserting.
    qsizetype InsertPosition() const;
    /// Moves to a row by number, from 1. Raises EDatabaseError outside.
    void SetRecNo(qsizetype number);
    void First();
    void Last();
    void Next() { MoveBy(1); }
    void Prior() { MoveBy(-1); }
    /// Gives by how many rows it moved.
    qsizetype MoveBy(qsizetype distance);
    /// Shows the rows anew, the same one being current if it is still there.
    void Refresh();

    // ---- change of a row
    void Edit();
    void Insert();
    void Append();
    virtual void Post();
    void Cancel();
    void Delete();

    // ---- places
    TBookmark GetBookmark() const;
    /// Raises EDatabaseError when the row is not among those shown.
    void GotoBookmark(const TBookmark &bookmark);
    bool BookmarkValid(const TBookmark &bookmark) const;
    /// Of the record at a place among those shown, from 0; null outside.
    TBookmark BookmarkAt(qsizetype place) const;
    /// The place of a bookmark's record among those shown, from 0; -1 if it is not there.
    qsizetype PlaceOf(const TBookmark &bookmark) const;
    /// For programs that pair it with GetBookmark; there is nothing to free.
    void FreeBookmark(const TBookmark &) {}

    // ---- search
    /// Makes the first row current whose fields, names joined by ";", equal the values: a list,
    /// or the one value of a single field. False, with the position left alone, if none does.
    virtual bool Locate(const QString &names, const QVariant &values, TLocateOptions options = {}) = 0;
    /// The values of the result fields in the first row that Locate would find, without moving:
    /// one value for one field, a list for several; a null QVariant if there is none.
    virtual QVariant Lookup(const QString &names, const QVariant &values, const QString &resultNames) = 0;

    // ---- filter
    const QString &Filter() const { return FFilter; }
    void SetFilter(const QString &text) { ChangeFilter(text, FFiltered, FFilterOptions); }
    /// Switches the filter text and OnFilterRecord on and off together.
    bool Filtered() const { return FFiltered; }
    void SetFiltered(bool filtered) { ChangeFilter(FFilter, filtered, FFilterOptions); }
    TFilterOptions FilterOptions() const { return FFilterOptions; }
    void SetFilterOptions(TFilterOptions options) { ChangeFilter(FFilter, FFiltered, options); }
    /// (dataset, accept): sees each row as current and may refuse it. It must not move.
    const TEvent<TDataSet *, bool &> &OnFilterRecord() const { return FOnFilterRecord; }
    void SetOnFilterRecord(const TEvent<TDataSet *, bool &> &handler);

    // ---- controls
    /// Nests: nothing is told to links until as many EnableControls have followed, then one
    /// summary of it.
    void DisableControls();
    void EnableControls();
    bool ControlsDisabled() const { return FDisableCount > 0; }
    /// Whether a source leads, through its dataset and that one's masters, to this dataset: with
    /// it as master the dataset would follow itself.
    bool IsLinkedTo(const TDataSource *source) const;
    /// The source of the master; null without one.
    virtual TDataSource *DataSource() const { return nullptr; }

    /// Makes another row the one that fields read, without moving and without events, for as
    /// long as it lives: how a control reads the rows that it shows.
    class TPeek
    {
    public:
        /// A row by its place in the view, from 0.
        TPeek(TDataSet &dataSet, qsizetype position);
        ~TPeek();
        TPeek(const TPeek &) = delete;
        TPeek &operator=(const TPeek &) = delete;

    private:
        TDataSet &FDataSet;
        const qsizetype FSaved;
    };

    TEvent<TDataSet *> BeforeOpen, AfterOpen, BeforeClose, AfterClose;
    TEvent<TDataSet *> BeforeInsert, AfterInsert, BeforeEdit, AfterEdit;
    TEvent<TDataSet *> BeforePost, AfterPost, BeforeCancel, AfterCancel;
    TEvent<TDataSet *> BeforeDelete, AfterDelete, BeforeScroll, AfterScroll;
    TEvent<TDataSet *> OnNewRecord, OnCalcFields;
    /// (dataset, failure, action): may choose what happens next.
    TEvent<TDataSet *, const EDatabaseError &, TDataAction &> OnEditError, OnPostError, OnDeleteError;

protected:
    // Each fires its event; a derived class adds to it.
    virtual void DoBeforeOpen();
    virtual void DoAfterOpen();
    virtual void DoBeforeClose();
    virtual void DoAfterClose();
    virtual void DoBeforeInsert();
    virtual void DoAfterInsert();
    virtual void DoBeforeEdit();
    virtual void DoAfterEdit();
    virtual void DoBeforePost();
    virtual void DoAfterPost();
    virtual void DoBeforeCancel();
    virtual void DoAfterCancel();
    virtual void DoBeforeDelete();
    virtual void DoAfterDelete();
    virtual void DoBeforeScroll();
    virtual void DoAfterScroll();
    virtual void DoOnNewRecord();
    virtual void DoOnCalcFields();

    // ---- what the rows' holder does
    /// Opens the data and fills FieldDefs; the rows are selected by InternalRefresh once there are
    /// fields. Raises EDatabaseError.
    virtual void InternalOpen() = 0;
    virtual void InternalClose() = 0;
    /// The record at a place of the view.
    virtual quint32 RecordAt(qsizetype position) const = 0;
    /// The place of a record in the view; -1 if it is not there.
    virtual qsizetype PositionOf(quint32 record) const = 0;
    /// Tells data of one loading from that of another; never 0 while open.
    virtual quint64 DataNumber() const = 0;
    /// A reader of a record's values, good until the next call, and of those before its logged
    /// change, null if there were none.
    virtual const TRowReader &RowOf(quint32 record) const = 0;
    virtual const TRowReader *StoredRowOf(quint32 record) const = 0;
    /// Keeps a row: as a new record before another one (at the end for NoRecord), or as the new
    /// values of a record. Gives the record.
    virtual quint32 InternalInsert(const TRowValues &row, quint32 before) = 0;
    virtual void InternalModify(quint32 record, const TRowValues &row) = 0;
    virtual void InternalDelete(quint32 record) = 0;
    /// Takes the filter on: selects the rows anew. What can fail comes before any change.
    virtual void InternalFilter(const QString &text, bool filtered, TFilterOptions options) = 0;
    /// Selects the rows anew by what stands.
    virtual void InternalRefresh() = 0;

    static constexpr quint32 NoRecord = 0xFFFFFFFF;

    /// The record of the current row; NoRecord for none and for a new row.
    quint32 CurrentRecord() const;
    /// The place of the current row in the view, from 0.
    qsizetype Position() const { return FPosition; }
    /// Makes a place current, both flags off, without events.
    void SetPosition(qsizetype position);
    /// After the rows have changed: goes to the record, or if it is not there to the place where
    /// the position stood; sets the flags.
    void Resync(quint32 record);
    /// The row being edited; null when none is.
    TRowValues *EditedRow() { return FState == dsEdit || FState == dsInsert ? &FEditRow : nullptr; }
    void SetState(TDataSetState state);
    /// Runs an action with a state that only lasts as long, and without events: reading a
    /// record's fields as if it was current.
    void WithRecord(TDataSetState state, quint32 record, const std::function<void()> &action);

    /// Tells the links, unless controls are disabled.
    void Notify(TDataEvent event, TField *field = nullptr, qsizetype distance = 0);
    /// Handlers of a failed operation choose: raises again, aborts, or repeats.
    void CheckOperation(const TEvent<TDataSet *, const EDatabaseError &, TDataAction &> &handler,
                        const std::function<void()> &operation);
    /// The values of all fields may be others: calculated ones are reckoned anew.
    void ForgetCalculated() { FIsCalculated = false; }
    /// From here on no event fires. For destructors, which close the dataset.
    void BeginDestruction() { FIsDestroying = true; }
    /// Raises EDatabaseError for the user, with the dataset's name where it has one.
    [[noreturn]] void Fail(const QString &message) const;

private:
    friend class TField;
    friend class TDataSource;

    // For TField.
    /// The row that the field's value is read from now; null without one. Calculated fields read
    /// a row of their own.
    const TRowReader *ReadRow(const TField &field) const;
    /// The row of the old values; null if there are none.
    const TRowReader *OldRow(const TField &field) const;
    /// The row that the field may be written into now. Raises EDatabaseError when no row is being
    /// edited, or the field is read-only.
    TRowValues &WriteRow(const TField &field);
    /// The field has been written: runs its OnChange and tells the links.
    void FieldChanged(TField &field);
    void AddField(TField *field);
    void RemoveField(TField *field);
    void MoveField(TField *field, int index);

    void AddSource(TDataSource *source);
    void RemoveSource(TDataSource *source);

    /// Makes fields for the columns that have none, and gives all their columns.
    void BindFields();
    void UnbindFields();
    void BeginInsert(bool atEnd);
    void FillNewRow();
    void CheckRequiredFields() const;
    void StoreEditedRow();
    void EndEdit(quint32 record);
    void ChangeFilter(const QString &text, bool filtered, TFilterOptions options);
    void ClearFlags();
    /// The record whose values fields read now, unless they read the edited row; NoRecord for none.
    quint32 ReadRecord() const;
    const TRowReader *CalculatedRow() const;

    TDataSetState FState = dsInactive;
    bool FModified = false;
    bool FIsDestroying = false;
    bool FBof = true;
    bool FEof = true;
    qsizetype FPosition = 0;

    std::vector<TColumnKind> FKinds; // of the columns
    TRowValues FEditRow;
    quint32 FEditRecord = NoRecord;   // the record being edited
    quint32 FInsertBefore = NoRecord; // where a new row goes
    quint32 FReturnRecord = NoRecord; // what is current when a new row is given up

    qsizetype FPeek = -1;           // place of the row that is peeked at
    quint32 FReadRecord = NoRecord; // the record that WithRecord shows
    bool FReadsRecord = false;

    mutable TRowValues FCalculated; // of FCalculatedRecord, or of the edited row
    mutable quint32 FCalculatedRecord = NoRecord;
    mutable bool FIsCalculated = false;
    bool FCalculatesEdited = false; // OnCalcFields runs for the edited row

    QList<TField *> FFields;
    int FCalculatedCount = 0;
    bool FIsFieldOrderSet = false;
    QList<TFieldDef> FFieldDefs;
    QString FFilter;
    bool FFiltered = false;
    TFilterOptions FFilterOptions;
    TEvent<TDataSet *, bool &> FOnFilterRecord;

    QList<TDataSource *> FSources;
    int FDisableCount = 0;
    TDataSetState FToldState = dsInactive; // what the links know
    TDataEvent FEventWhenEnabled = deDataSetChange;
};

} // namespace Korvane
