// SPDX-License-Identifier: MIT
#include "platform/controls/DataSetModel.h"

#include "platform/core/Text.h"
#include "platform/data/dataset/ClientDataSet.h"
#include "platform/data/dataset/DataLink.h"

#include <QScopedValueRollback>

#include <limits>

namespace Korvane {

using namespace Qt::StringLiterals;

class TDataSetModel::TLink : public TDataLink
{
public:
    explicit TLink(TDataSetModel &model) : FModel(model) {}

protected:
    void ActiveChanged() override { FModel.SetChanged(); }
    void RecordChanged(TField *field) override { FModel.RowChanged(field); }
    void DataSetChanged() override { FModel.Synchronize(); }
    void DataSetScrolled(qsizetype) override { FModel.CursorMoved(); }
    void LayoutChanged() override { FModel.LayoutChanged(); }
    void RowsFetched() override { FModel.RowsFetched(); }

private:
    TDataSetModel &FModel;
};

TDataSetModel::TDataSetModel(QObject *parent)
    : QAbstractTableModel(parent), FLink(std::make_unique<TLink>(*this))
{
}

TDataSetModel::~TDataSetModel() = default;

TDataSource *TDataSetModel::DataSource() const { return FLink->DataSource(); }

void TDataSetModel::SetDataSource(TDataSource *source) { FLink->SetDataSource(source); }

TDataSet *TDataSetModel::OpenSet() const
{
    TDataSet *set = FLink->Active() ? FLink->DataSet() : nullptr;
    return set && set->Active() ? set : nullptr;
}

// ---- columns --------------------------------------------------------------------------

void TDataSetModel::SetFieldNames(const QStringList &names)
{
    if (const TDataSet *set = OpenSet())
        for (const QString &name : names)
            set->FieldByName(name);
    FFieldNames = names;
    Synchronize();
}

void TDataSetModel::SetCheckFields(const QStringList &names)
{
    FCheckFields = names;
    Synchronize();
}

void TDataSetModel::SetCheckField(const QString &name)
{
    if (!FCheckFields.contains(name, Qt::CaseInsensitive))
        SetCheckFields(FCheckFields + QStringList(name));
}

QList<QPointer<TField>> TDataSetModel::FieldsShown() const
{
    QList<QPointer<TField>> fields;
    const TDataSet *set = OpenSet();
    if (!set)
        return fields;
    if (!FFieldNames.isEmpty()) {
        for (const QString &name : FFieldNames)
            if (TField *field = set->FindField(name))
                fields.append(field);
        return fields;
    }
    for (TField *field : set->Fields())
        if (field->Visible())
            fields.append(field);
    return fields;
}

TField *TDataSetModel::Field(int column) const
{
    return column >= 0 && column < FFields.size() ? FFields[column].data() : nullptr;
}

TField *TDataSetModel::FieldOf(const QModelIndex &index, int role) const
{
    return Field(role >= Qt::UserRole ? role - Qt::UserRole : index.column());
}

bool TDataSetModel::ShowsCheck(const TField &field) const
{
    return FCheckFields.contains(field.FieldName(), Qt::CaseInsensitive);
}

bool TDataSetModel::MayEdit(const TField &field) const
{
    const TDataSet *set = OpenSet();
    const bool isText = !field.IsBlob() || ColumnKindOf(field.DataType()) == TColumnKind::Text;
    return set && set->CanModify() && (FLink->Editing() || DataSource()->AutoEdit()) && isText &&
           !field.ReadOnly() && !field.Calculated();
}

// ---- rows -----------------------------------------------------------------------------

TDataSetModel::TRows TDataSetModel::LookAtRows() const
{
    TRows rows;
    const TDataSet *set = OpenSet();
    if (!set)
        return rows;
    rows.Count = set->FetchedCount();
    rows.Inserted = set->InsertPosition();
    rows.Current = set->RecNo() - 1;
    rows.Bookmark = set->GetBookmark();
    rows.State = set->State();
    rows.Rules += set->Filtered() ? set->Filter() : QString();
    if (const auto *client = qobject_cast<const TCustomClientDataSet *>(set))
        rows.Rules += {client->IndexFieldNames(), client->IndexName(), client->SortLocale()};
    return rows;
}

/// A dataset tells that rows have changed, and not which; but an insertion, a post, a cancelled
/// insertion and a deletion show in what is known of the current row.
TDataSetModel::TStep TDataSetModel::StepTo(const TRows &rows) const
{
    const TRows &old = FRows;
    const bool wasInserting = old.Inserted >= 0;
    const bool isInserting = rows.Inserted >= 0;
    if ((old.State == dsInactive) != (rows.State == dsInactive) || old.Rules != rows.Rules ||
        FFields != FieldsShown())
        return {TStep::Reset};
    if (wasInserting && isInserting)
        return {old.Count == rows.Count && old.Inserted == rows.Inserted ? TStep::Stay : TStep::Reset};
    if (isInserting)
        return old.Count == rows.Count ? TStep{TStep::Insert, rows.Inserted} : TStep{TStep::Reset};
    if (wasInserting) {
        if (rows.Count == old.Count) // given up, or posted and not among the rows that are shown
            return {TStep::Remove, old.Inserted};
        return rows.Count == old.Count + 1 ? TStep{TStep::Move, old.Inserted, rows.Current}
                                           : TStep{TStep::Reset};
    }
    const bool hasOldRow = old.Bookmark.IsNull() || OpenSet()->BookmarkValid(old.Bookmark);
    if (rows.Count == old.Count - 1 && !hasOldRow)
        return {TStep::Remove, old.Current};
    if (rows.Count != old.Count || !hasOldRow)
        return {TStep::Reset};
    if (rows.Bookmark != old.Bookmark || rows.Current == old.Current)
        return {TStep::Stay};
    return old.State == dsEdit ? TStep{TStep::Move, old.Current, rows.Current} : TStep{TStep::Reset};
}

void TDataSetModel::Synchronize()
{
    FIsOutdated = true;
    while (!FIsTelling && std::exchange(FIsOutdated, false)) {
        const TRows rows = LookAtRows();
        Apply(StepTo(rows), rows);
    }
}

void TDataSetModel::Apply(const TStep &step, const TRows &rows)
{
    const QScopedValueRollback telling(FIsTelling, true);
    const int row = int(step.Row);
    const int target = int(step.Target);
    switch (step.Kind) {
    case TStep::Reset:
        beginResetModel();
        FFields = FieldsShown();
        Adopt(rows);
        return endResetModel();
    case TStep::Insert:
        beginInsertRows({}, row, row);
        Adopt(rows);
        endInsertRows();
        break;
    case TStep::Remove:
        FApart = row;
        FApartPlace = -1;
        beginRemoveRows({}, row, row);
        Adopt(rows);
        endRemoveRows();
        break;
    case TStep::Move:
        if (row == target) {
            Adopt(rows);
            break;
        }
        FApart = row;
        FApartPlace = target;
        beginMoveRows({}, row, row, {}, target > row ? target + 1 : target);
        Adopt(rows);
        endMoveRows();
        break;
    case TStep::Stay:
        Adopt(rows);
        break;
    }
    TellAllCells();
}

void TDataSetModel::RowsFetched()
{
    const TRows rows = LookAtRows();
    if (FIsTelling || rows.Count <= FRows.Count)
        return Synchronize();
    {
        const QScopedValueRollback telling(FIsTelling, true);
        beginInsertRows({}, FRowCount, FRowCount + int(rows.Count - FRows.Count) - 1);
        Adopt(rows);
        endInsertRows();
    }
    if (FIsOutdated)
        Synchronize();
}

bool TDataSetModel::canFetchMore(const QModelIndex &parent) const
{
    const TDataSet *set = OpenSet();
    return !parent.isValid() && set && !set->IsFetched();
}

void TDataSetModel::fetchMore(const QModelIndex &parent)
{
    if (canFetchMore(parent) && !FIsTelling)
        Try([set = OpenSet()] { set->FetchAll(); });
}

void TDataSetModel::Adopt(const TRows &rows)
{
    FRows = rows;
    FApart = rows.Inserted;
    FApartPlace = -1;
    FRowCount = int(qMin<qsizetype>(rows.Count + (FApart >= 0 ? 1 : 0), std::numeric_limits<int>::max()));
}

void TDataSetModel::TellAllCells()
{
    if (FRowCount > 0 && !FFields.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(FRowCount - 1, columnCount() - 1));
}

void TDataSetModel::SetChanged()
{
    if (!FLink->Active())
        GiveUpSort();
    Synchronize();
}

void TDataSetModel::LayoutChanged()
{
    Synchronize();
    if (!FIsTelling && !FFields.isEmpty())
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
}

void TDataSetModel::CursorMoved()
{
    const TDataSet *set = OpenSet();
    if (!set)
        return;
    FRows.Current = set->RecNo() - 1;
    FRows.Bookmark = set->GetBookmark();
}

void TDataSetModel::RowChanged(const TField *field)
{
    const TDataSet *set = OpenSet();
    if (!set || FIsTelling) // what is told now ends with all cells
        return;
    if (!field)
        FRows.State = set->State();
    const int row = CurrentRow();
    if (row < 0 || (set->State() == dsInsert && FApart < 0)) // the new row is being filled and comes soon
        return;
    if (!field && !FFields.isEmpty())
        Q_EMIT dataChanged(index(row, 0), index(row, columnCount() - 1));
    for (int column = 0; field && column < columnCount(); ++column)
        if (Field(column) == field || (Field(column) && Field(column)->Calculated()))
            Q_EMIT dataChanged(index(row, column), index(row, column));
}

int TDataSetModel::CurrentRow() const
{
    const qsizetype row = FApart >= 0 ? FApart : FRows.Current;
    return row < FRowCount ? int(row) : -1;
}

qsizetype TDataSetModel::PlaceOf(int row) const
{
    if (row == FApart)
        return FApartPlace;
    const qsizetype place = FApart >= 0 && row > FApart ? row - 1 : row;
    return FApartPlace >= 0 && place >= FApartPlace ? place + 1 : place;
}

// ---- reading --------------------------------------------------------------------------

int TDataSetModel::rowCount(const QModelIndex &parent) const { return parent.isValid() ? 0 : FRowCount; }

int TDataSetModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(FFields.size());
}

QHash<int, QByteArray> TDataSetModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractTableModel::roleNames();
    for (int column = 0; column < columnCount(); ++column)
        if (const TField *field = Field(column))
            names[Qt::UserRole + column] = field->FieldName().toUtf8();
    return names;
}

QVariant TDataSetModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    const TField *field = Field(section);
    return field ? field->DisplayLabel() : QVariant();
}

Qt::ItemFlags TDataSetModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    const TField *field = index.isValid() ? Field(index.column()) : nullptr;
    if (field && MayEdit(*field))
        flags |= ShowsCheck(*field) ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable;
    return flags;
}

template <class Action> bool TDataSetModel::WithRow(int row, Action action) const
{
    TDataSet *set = OpenSet();
    const qsizetype place = PlaceOf(row);
    // NOTE: the dataset may be ahead of what it has told.
    if (!set || place >= set->FetchedCount() || (place < 0 && set->State() != dsInsert))
        return false;
    const TDataSet::TPeek peek(*set, place);
    action();
    return true;
}

QVariant TDataSetModel::Cell(const TField &field, int role) const
{
    if (role == Qt::CheckStateRole)
        return field.AsBoolean() ? Qt::Checked : Qt::Unchecked;
    return role == Qt::EditRole ? field.Text() : field.DisplayText();
}

QVariant TDataSetModel::data(const QModelIndex &index, int role) const
{
    const TField *field = index.isValid() && index.row() < FRowCount ? FieldOf(index, role) : nullptr;
    if (!field)
        return {};
    if (role == Qt::TextAlignmentRole)
        return int(field->Alignment() |
                   (field->Alignment() & Qt::AlignVertical_Mask ? Qt::Alignment() : Qt::AlignVCenter));
    const bool isShown = role == (ShowsCheck(*field) ? Qt::CheckStateRole : Qt::DisplayRole);
    if (!isShown && role != Qt::EditRole && role < Qt::UserRole)
        return {};
    QVariant cell;
    try {
        WithRow(index.row(), [&] { cell = Cell(*field, role); });
    } catch (const Exception &) {
        return {}; // there is nobody to tell: views ask at each painting
    }
    return cell;
}

// ---- writing --------------------------------------------------------------------------

bool TDataSetModel::Try(const std::function<void()> &action)
{
    QString message;
    try {
        action();
        FErrorText.clear();
        return true;
    } catch (const EAbort &) {
        return false;
    } catch (const Exception &failure) {
        message = failure.Message();
    }
    FErrorText = message;
    Q_EMIT Failed(message);
    return false;
}

namespace {

bool IsTextual(const QVariant &value) { return value.typeId() == QMetaType::QString; }

/// Whether a field reads as a value already.
bool Holds(const TField &field, const QVariant &value, int role)
{
    if (role == Qt::CheckStateRole)
        return !field.IsNull() && field.AsBoolean() == (value.toInt() != Qt::Unchecked);
    return IsTextual(value) && field.Text() == value.toString();
}

void Store(TField &field, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole)
        return IsTextual(value) ? field.SetText(value.toString()) : field.SetValue(value);
    const bool checked = value.toInt() != Qt::Unchecked;
    if (ColumnKindOf(field.DataType()) == TColumnKind::Text)
        field.SetText(checked ? u"Y"_s : u"N"_s);
    else
        field.SetAsBoolean(checked);
}

} // namespace

bool TDataSetModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const TField *field =
        index.isValid() && index.row() < FRowCount && !FIsTelling ? FieldOf(index, role) : nullptr;
    const bool isCheck = role == Qt::CheckStateRole;
    if (!field || (isCheck ? !ShowsCheck(*field) : role != Qt::EditRole && role < Qt::UserRole))
        return false;
    return Try([&] { Write(index, value, role); });
}

void TDataSetModel::Write(const QModelIndex &index, const QVariant &value, int role)
{
    const QPointer<TField> field = FieldOf(index, role);
    const QPointer<TDataSet> set = OpenSet();
    if (!MayEdit(*field))
        throw EDatabaseError(u"字段“%1”现在不能修改"_s.arg(field->DisplayLabel()));
    if (set->ControlsDisabled()) // rows may be others than those that are shown
        throw EDatabaseError(u"数据集正在批量处理，现在不能修改"_s);
    bool holds = false;
    WithRow(index.row(), [&] { holds = Holds(*field, value, role); });
    if (holds)
        return;
    GoTo(index);
    const bool begins = !FLink->Editing();
    if (!FLink->Edit() || !field)
        throw EDatabaseError(u"记录已经变化，请重新修改"_s);
    try {
        Store(*field, value, role);
    } catch (...) {
        if (begins && set && !set->Modified())
            set->Cancel();
        throw;
    }
}

/// Makes the row of an index current.
void TDataSetModel::GoTo(const QPersistentModelIndex &index)
{
    if (index.row() == CurrentRow())
        return;
    OpenSet()->CheckBrowseMode(); // may move the rows, and the index with them
    TDataSet *set = OpenSet();
    if (!set || !index.isValid())
        throw EDatabaseError(u"记录已经变化，请重新修改"_s);
    set->SetRecNo(PlaceOf(index.row()) + 1);
}

bool TDataSetModel::submit()
{
    TDataSet *set = OpenSet();
    if (!set || FIsTelling || !FLink->Editing())
        return true;
    return Try([set] {
        set->UpdateRecord();
        if (set->Modified())
            set->Post();
    });
}

void TDataSetModel::revert()
{
    TDataSet *set = OpenSet();
    if (set && !FIsTelling)
        Try([set] { set->Cancel(); });
}

// ---- order ----------------------------------------------------------------------------

void TDataSetModel::sort(int column, Qt::SortOrder order)
{
    auto *set = qobject_cast<TCustomClientDataSet *>(OpenSet());
    const TField *field = Field(column);
    if (!set || FIsTelling || (!field && column >= 0))
        return;
    Try([&] {
        const QString name = field ? field->FieldName() : QString();
        if (!field || order == Qt::AscendingOrder) {
            set->SetIndexFieldNames(name);
        } else {
            const QString index = name + u" DESC"_s;
            if (!set->FindIndex(index))
                set->AddIndex(index, name, ixDescending);
            set->SetIndexName(index);
        }
        FSortFields = set->IndexFieldNames();
        FSortIndex = set->IndexName();
    });
}

/// Takes the views' order off a dataset that is closed, unless another one has been set.
void TDataSetModel::GiveUpSort()
{
    auto *set = qobject_cast<TCustomClientDataSet *>(FLink->DataSet());
    if (set && !set->Active() && set->IndexFieldNames() == FSortFields && set->IndexName() == FSortIndex)
        set->SetIndexFieldNames({});
}

} // namespace Korvane
