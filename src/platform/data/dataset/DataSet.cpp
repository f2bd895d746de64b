// SPDX-License-Identifier: MIT
#include "platform/data/dataset/DataSet.h"

#include "platform/data/dataset/DataSource.h"

namespace Korvane {

TDataSet::TDataSet(QObject *owner) : TComponent(owner) {}

TDataSet::~TDataSet()
{
    for (TDataSource *source : QList(FSources))
        source->DataSetDied();
    for (TField *field : QList(FFields))
        field->FDataSet = nullptr;
}

void TDataSet::Fail(const QString &message) const
{
    throw EDatabaseError(Name().isEmpty() ? message : QStringLiteral("%1：%2").arg(Name(), message));
}

// ---- events ---------------------------------------------------------------------------

void TDataSet::DoBeforeOpen() { BeforeOpen(this); }
void TDataSet::DoAfterOpen() { AfterOpen(this); }
void TDataSet::DoBeforeClose() { BeforeClose(this); }
void TDataSet::DoAfterClose() { AfterClose(this); }
void TDataSet::DoBeforeInsert() { BeforeInsert(this); }
void TDataSet::DoAfterInsert() { AfterInsert(this); }
void TDataSet::DoBeforeEdit() { BeforeEdit(this); }
void TDataSet::DoAfterEdit() { AfterEdit(this); }
void TDataSet::DoBeforePost() { BeforePost(this); }
void TDataSet::DoAfterPost() { AfterPost(this); }
void TDataSet::DoBeforeCancel() { BeforeCancel(this); }
void TDataSet::DoAfterCancel() { AfterCancel(this); }
void TDataSet::DoBeforeDelete() { BeforeDelete(this); }
void TDataSet::DoAfterDelete() { AfterDelete(this); }
void TDataSet::DoBeforeScroll() { BeforeScroll(this); }
void TDataSet::DoAfterScroll() { AfterScroll(this); }
void TDataSet::DoOnNewRecord() { OnNewRecord(this); }
void TDataSet::DoOnCalcFields() { OnCalcFields(this); }

// ---- state ----------------------------------------------------------------------------

void TDataSet::CheckActive() const
{
    if (!Active())
        Fail(QStringLiteral("数据集未打开，无法执行此操作"));
}

void TDataSet::SetState(TDataSetState state)
{
    if (FState == state)
        return;
    FState = state;
    FModified = false;
    FIsCalculated = false;
    Notify(deUpdateState);
}

void TDataSet::SetActive(bool active)
{
    if (active == Active())
        return;
    if (!active) {
        if (!FIsDestroying)
            DoBeforeClose();
        SetState(dsInactive);
        UnbindFields();
        InternalClose();
        if (!FIsDestroying)
            DoAfterClose();
        return;
    }
    DoBeforeOpen();
    try {
        InternalOpen();
        BindFields();
        InternalRefresh(); // a filter's handler reads fields
    } catch (...) {
        UnbindFields();
        InternalClose();
        throw;
    }
    FPosition = 0;
    ClearFlags();
    FBof = true;
    SetState(dsBrowse);
    DoAfterOpen();
    DoAfterScroll();
}

void TDataSet::CheckBrowseMode()
{
    CheckActive();
    Notify(deCheckBrowseMode);
    if (!EditedRow())
        return;
    UpdateRecord();
    if (FModified)
        Post();
    else
        Cancel();
}

void TDataSet::UpdateRecord()
{
    if (!EditedRow())
        Fail(QStringLiteral("数据集不在编辑或新增状态"));
    Notify(deUpdateRecord);
}

// ---- moving ---------------------------------------------------------------------------

/// Neither at the beginning nor at the end, unless there is nothing.
void TDataSet::ClearFlags() { FBof = FEof = IsEmpty(); }

void TDataSet::SetPosition(qsizetype position)
{
    FPosition = position;
    FIsCalculated = false;
    ClearFlags();
}

quint32 TDataSet::CurrentRecord() const
{
    return FState == dsInactive || FState == dsInsert || IsEmpty() ? NoRecord : RecordAt(FPosition);
}

void TDataSet::Resync(quint32 record)
{
    const qsizetype place = record == NoRecord ? -1 : PositionOf(record);
    SetPosition(place >= 0 ? place : qBound<qsizetype>(0, FPosition, qMax<qsizetype>(FetchedCount() - 1, 0)));
}

void TDataSet::FetchAll() const
{
    if (!IsFetched())
        const_cast<TDataSet *>(this)->FetchNext(QDeadlineTimer::Forever);
}

qsizetype TDataSet::RecordCount() const
{
    FetchAll();
    return FetchedCount();
}

qsizetype TDataSet::RecNo() const { return Active() && FState != dsInsert && !IsEmpty() ? FPosition + 1 : 0; }

qsizetype TDataSet::InsertPosition() const
{
    if (FState != dsInsert)
        return -1;
    const qsizetype place = FInsertBefore == NoRecord ? -1 : PositionOf(FInsertBefore);
    return place < 0 ? FetchedCount() : place;
}

void TDataSet::SetRecNo(qsizetype number)
{
    CheckBrowseMode();
    if (number < 1 || (number > FetchedCount() && number > RecordCount()))
        Fail(QStringLiteral("没有第 %1 条记录").arg(number));
    if (number == RecNo())
        return;
    DoBeforeScroll();
    const qsizetype distance = number - 1 - FPosition;
    SetPosition(number - 1);
    Notify(deDataSetScroll, nullptr, distance);
    DoAfterScroll();
}

void TDataSet::First()
{
    CheckBrowseMode();
    DoBeforeScroll();
    SetPosition(0);
    FBof = true;
    Notify(deDataSetChange);
    DoAfterScroll();
}

void TDataSet::Last()
{
    CheckBrowseMode();
    DoBeforeScroll();
    SetPosition(qMax<qsizetype>(RecordCount() - 1, 0));
    FEof = true;
    Notify(deDataSetChange);
    DoAfterScroll();
}

qsizetype TDataSet::MoveBy(qsizetype distance)
{
    CheckBrowseMode();
    DoBeforeScroll();
    if (distance == 0 || (distance > 0 ? FEof : FBof))
        return 0;
    if (distance > FetchedCount() - 1 - FPosition)
        FetchAll();
    const qsizetype room = distance > 0 ? FetchedCount() - 1 - FPosition : FPosition;
    const bool isShort = distance > 0 ? distance > room : distance < -room;
    const qsizetype moved = !isShort ? distance : distance > 0 ? room : -room;
    SetPosition(FPosition + moved);
    FEof = FEof || (isShort && distance > 0);
    FBof = FBof || (isShort && distance < 0);
    Notify(deDataSetScroll, nullptr, moved);
    DoAfterScroll();
    return moved;
}

void TDataSet::Refresh()
{
    CheckBrowseMode();
    const quint32 record = CurrentRecord();
    InternalRefresh();
    Resync(record);
    Notify(deDataSetChange);
}

TBookmark TDataSet::GetBookmark() const
{
    const quint32 record = CurrentRecord();
    return record == NoRecord ? TBookmark() : TBookmark(DataNumber(), record);
}

bool TDataSet::BookmarkValid(const TBookmark &bookmark) const
{
    return PlaceOf(bookmark) >= 0;
}

TBookmark TDataSet::BookmarkAt(qsizetype place) const
{
    if (!Active() || place < 0 || place >= FetchedCount())
        return {};
    return TBookmark(DataNumber(), RecordAt(place));
}

qsizetype TDataSet::PlaceOf(const TBookmark &bookmark) const
{
    const bool isOurs = Active() && !bookmark.IsNull() && bookmark.Data() == DataNumber();
    return isOurs ? PositionOf(bookmark.Record()) : -1;
}

void TDataSet::GotoBookmark(const TBookmark &bookmark)
{
    if (bookmark.IsNull())
        return;
    CheckBrowseMode();
    if (!BookmarkValid(bookmark))
        Fail(QStringLiteral("书签所指的记录没有找到"));
    DoBeforeScroll();
    SetPosition(PlaceOf(bookmark));
    Notify(deDataSetChange);
    DoAfterScroll();
}

// ---- change of a row ------------------------------------------------------------------

void TDataSet::CheckOperation(const TEvent<TDataSet *, const EDatabaseError &, TDataAction &> &handler,
                              const std::function<void()> &operation)
{
    for (;;) {
        try {
            return operation();
        } catch (const EDatabaseError &error) {
            TDataAction action = daFail;
            handler(this, error, action);
            if (action == daFail)
                throw;
            if (action == daAbort)
                Abort();
        }
    }
}

void TDataSet::Edit()
{
    if (EditedRow())
        return;
    CheckActive();
    if (IsEmpty())
        return Insert();
    CheckBrowseMode();
    FetchAll();
    if (!CanModify())
        Fail(QStringLiteral("数据集是只读的，不能修改"));
    DoBeforeEdit();
    CheckOperation(OnEditError, [this] {
        FEditRecord = CurrentRecord();
        FEditRow = TRowValues(RowOf(FEditRecord), FKinds);
    });
    SetState(dsEdit);
    Notify(deRecordChange);
    DoAfterEdit();
}

void TDataSet::Insert() { BeginInsert(false); }

void TDataSet::Append() { BeginInsert(true); }

void TDataSet::BeginInsert(bool atEnd)
{
    CheckBrowseMode();
    if (!CanModify())
        Fail(QStringLiteral("数据集是只读的，不能新增"));
    FetchAll();
    DoBeforeInsert();
    DoBeforeScroll();
    FReturnRecord = CurrentRecord();
    FInsertBefore = atEnd ? NoRecord : FReturnRecord;
    FEditRecord = NoRecord;
    FEditRow = TRowValues(int(FKinds.size()));
    SetState(dsInsert);
    FBof = FEof = false;
    try {
        FillNewRow();
    } catch (...) {
        EndEdit(FReturnRecord);
        throw;
    }
    FModified = false;
    Notify(deDataSetChange);
    DoAfterInsert();
    DoAfterScroll();
}

void TDataSet::FillNewRow()
{
    for (TField *field : std::as_const(FFields))
        if (!field->Calculated() && !field->DefaultExpression().isEmpty())
            field->StoreText(FEditRow, field->FieldNo(), field->DefaultExpression());
    DoOnNewRecord();
}

void TDataSet::CheckRequiredFields() const
{
    for (TField *field : FFields)
        if (field->Required() && !field->Calculated() && field->IsNull()) {
            field->FocusControl();
            Fail(QStringLiteral("字段“%1”必须有值").arg(field->DisplayLabel()));
        }
}

void TDataSet::StoreEditedRow()
{
    if (FState == dsEdit)
        InternalModify(FEditRecord, FEditRow);
    else
        FEditRecord = InternalInsert(FEditRow, FInsertBefore);
}

/// Back to browsing, with a record current.
void TDataSet::EndEdit(quint32 record)
{
    SetState(dsBrowse);
    Resync(record);
    Notify(deDataSetChange);
}

void TDataSet::Post()
{
    UpdateRecord();
    Notify(deCheckBrowseMode);
    DoBeforePost();
    CheckRequiredFields();
    CheckOperation(OnPostError, [this] { StoreEditedRow(); });
    EndEdit(FEditRecord);
    DoAfterPost();
}

void TDataSet::Cancel()
{
    if (!EditedRow())
        return;
    Notify(deCheckBrowseMode);
    DoBeforeCancel();
    const bool wasInsert = FState == dsInsert;
    if (wasInsert)
        DoBeforeScroll();
    EndEdit(wasInsert ? FReturnRecord : FEditRecord);
    DoAfterCancel();
    if (wasInsert)
        DoAfterScroll();
}

void TDataSet::Delete()
{
    CheckActive();
    if (FState == dsInsert)
        return Cancel();
    if (IsEmpty())
        Fail(QStringLiteral("数据集为空，没有可删除的记录"));
    if (!CanModify())
        Fail(QStringLiteral("数据集是只读的，不能删除"));
    FetchAll();
    Notify(deCheckBrowseMode);
    DoBeforeDelete();
    DoBeforeScroll();
    CheckOperation(OnDeleteError, [this] { InternalDelete(CurrentRecord()); });
    EndEdit(NoRecord);
    DoAfterDelete();
    DoAfterScroll();
}

// ---- filter ---------------------------------------------------------------------------

void TDataSet::ChangeFilter(const QString &text, bool filtered, TFilterOptions options)
{
    const bool isOther = filtered ? text != FFilter || options != FFilterOptions || !FFiltered : FFiltered;
    const bool selects = Active() && isOther;
    if (selects) {
        CheckBrowseMode();
        InternalFilter(text, filtered, options);
    }
    FFilter = text;
    FFiltered = filtered;
    FFilterOptions = options;
    if (selects) {
        SetPosition(0);
        First();
    }
}

void TDataSet::SetOnFilterRecord(const TEvent<TDataSet *, bool &> &handler)
{
    if (Active())
        CheckBrowseMode();
    FOnFilterRecord = handler;
    if (!Active() || !FFiltered)
        return;
    InternalRefresh();
    SetPosition(0);
    First();
}

// ---- controls -------------------------------------------------------------------------

void TDataSet::AddSource(TDataSource *source) { FSources.append(source); }

void TDataSet::RemoveSource(TDataSource *source) { FSources.removeOne(source); }

void TDataSet::Notify(TDataEvent event, TField *field, qsizetype distance)
{
    // What only asks the controls is asked even while nothing is told; and the links always learn
    // of opening and closing, since they hold fields that come and go with it.
    const bool asks = event == deUpdateRecord || event == deCheckBrowseMode;
    const bool opens = event == deUpdateState && (FState == dsInactive) != (FToldState == dsInactive);
    if (FDisableCount > 0 && !asks && !opens) {
        if (event == deLayoutChange)
            FEventWhenEnabled = deLayoutChange;
        return;
    }
    if (event == deUpdateState)
        FToldState = FState;
    // NOTE: a source may leave, or die, while others are told.
    const QList<TDataSource *> sources = FSources;
    for (TDataSource *source : sources)
        if (FSources.contains(source))
            source->Notify(event, field, distance);
}

void TDataSet::DisableControls()
{
    if (FDisableCount++ == 0)
        FEventWhenEnabled = deDataSetChange;
}

void TDataSet::EnableControls()
{
    if (FDisableCount == 0 || --FDisableCount > 0)
        return;
    if (FToldState != FState)
        Notify(deUpdateState);
    if (Active())
        Notify(FEventWhenEnabled);
}

bool TDataSet::IsLinkedTo(const TDataSource *source) const
{
    for (; source && source->DataSet(); source = source->DataSet()->DataSource())
        if (source->DataSet() == this)
            return true;
    return false;
}

} // namespace Korvane
