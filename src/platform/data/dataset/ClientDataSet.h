// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/RowFeed.h"
#include "platform/data/RowSearches.h"
#include "platform/data/dataset/Aggregate.h"
#include "platform/data/dataset/DataSet.h"
#include "platform/data/store/RecordView.h"

namespace Korvane {

/// A dataset in memory: rows loaded from a packet, and a log of what has become of them. Order,
/// filter and position are the dataset's own; the rows may be shared with others (CloneCursor).
///
///     TClientDataSet set;
///     set.SetData(packet);
///     set.SetIndexFieldNames("CODE");
///     if (set.Locate("CODE", "A1")) { set.Edit(); … set.Post(); }
///     const TDataPacket delta = set.Delta();
class TCustomClientDataSet : public TDataSet, private TStoreObserver
{
    Q_OBJECT
    Q_PROPERTY(QString IndexFieldNames READ IndexFieldNames WRITE SetIndexFieldNames)
    Q_PROPERTY(QString IndexName READ IndexName WRITE SetIndexName)
    Q_PROPERTY(bool DisableStringTrim READ DisableStringTrim WRITE SetDisableStringTrim)
    Q_PROPERTY(QString SortLocale READ SortLocale WRITE SetSortLocale)
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE SetReadOnly)

public:
    explicit TCustomClientDataSet(QObject *owner = nullptr);
    ~TCustomClientDataSet() override;

    // ---- data
    /// All rows with the change log. Setting closes the dataset and opens it on the new rows; a
    /// packet without fields only closes. A delta shows its rows, each with its UpdateStatus.
    TDataPacket Data() const;
    void SetData(const TDataPacket &packet);
    /// Opens on the first rows; the others are fetched when something depends on them, which is at once
    /// where an order or a filter is set.
    void SetData(const TFirstRows &rows);
    /// Adds rows at the end, which are no changes. On a closed dataset the same as SetData.
    /// hitEof is for programs that fetch in steps; it has no effect.
    void AppendData(const TDataPacket &packet, bool hitEof = true);
    /// Opens with no rows, the columns from FieldDefs, or from the data fields if there are none.
    void CreateDataSet();
    /// Removes all rows and the log.
    void EmptyDataSet();
    /// All rows with the change log, in the packet's binary form. Both raise EFileError.
    void SaveToFile(const QString &fileName) const;
    void LoadFromFile(const QString &fileName);
    /// Shares the rows of an open dataset, with a position of its own. With reset the clone has no
    /// filter and no order; with keepSettings it keeps its own; otherwise it takes the source's.
    virtual void CloneCursor(TCustomClientDataSet *source, bool reset, bool keepSettings = false);
    /// By default trailing blanks of fixed and varying texts are cut when they are written.
    bool DisableStringTrim() const { return FDisableStringTrim; }
    void SetDisableStringTrim(bool disable) { FDisableStringTrim = disable; }
    bool ReadOnly() const { return FReadOnly; }
    void SetReadOnly(bool readOnly) { FReadOnly = readOnly; }
    bool CanModify() const override { return !FReadOnly; }
    bool TrimsStrings() const override { return !FDisableStringTrim; }

    // ---- the change log
    int ChangeCount() const;
    /// Of the current row.
    TUpdateStatus UpdateStatus() const;
    /// See TRecordStore::Delta. Posts a row that is being edited first.
    TDataPacket Delta();
    void MergeChangeLog();
    void CancelUpdates();
    /// Undoes the change of the current row.
    void RevertRecord();
    /// Undoes the last entry of the log; follow makes its row current. False for an empty log.
    bool UndoLastChange(bool follow);
    /// The rows shown, by status. Empty, which it is at first, shows all but the deleted ones.
    TUpdateStatusSet StatusFilter() const { return FStatusFilter; }
    void SetStatusFilter(TUpdateStatusSet statuses);
    bool LogChanges() const;
    void SetLogChanges(bool log);

    // ---- order
    /// Orders the rows by fields, names joined by ";"; empty for the natural order. Replaces the
    /// order by IndexName, and the other way round. Raises EDatabaseError for an unknown field of
    /// an open dataset, or for a blob.
    const QString &IndexFieldNames() const { return FIndexFieldNames; }
    void SetIndexFieldNames(const QString &names);
    const QString &IndexName() const { return FIndexName; }
    void SetIndexName(const QString &name);
    /// The indexes by name. What is added or removed in the list counts at once; the order in use
    /// follows when IndexName is set again.
    QList<TIndexDef> &IndexDefs() { return FIndexDefs; }
    const QList<TIndexDef> &IndexDefs() const { return FIndexDefs; }
    /// Null if there is none; blind to case.
    const TIndexDef *FindIndex(const QString &name) const;
    /// Raises EDatabaseError for a name that is taken, a bad field, or a unique index that the rows
    /// break. A unique index refuses a post that would break it.
    void AddIndex(const QString &name, const QString &fields, TIndexOptions options,
                  const QString &descFields = {}, const QString &caseInsFields = {}, int groupingLevel = 0);
    /// Raises EDatabaseError when there is none. An order that used it goes back to the natural one.
    void DeleteIndex(const QString &name);
    /// How texts are ordered: empty for their code points; "zh" for pinyin, or any other locale
    /// that ICU knows. Raises EDatabaseError for an unknown one.
    const QString &SortLocale() const { return FSortLocale; }
    void SetSortLocale(const QString &locale);

    // ---- search
    bool Locate(const QString &names, const QVariant &values, TLocateOptions options = {}) override;
    QVariant Lookup(const QString &names, const QVariant &values, const QString &resultNames) override;
    /// Goes to the first row with these values of the order's first fields. False, with the
    /// position left alone, if there is none. Raises EDatabaseError without an order.
    bool FindKey(const QVariantList &values);
    /// The same, or else to the first row behind; to the last row if there is none behind.
    void FindNearest(const QVariantList &values);

    // ---- sums
    /// Aggregates over the rows shown. The list's aggregates belong to the dataset.
    TAggregates &Aggregates() { return FAggregates; }

    qsizetype FetchedCount() const override;
    bool IsFetched() const override { return !FFeed; }
    void FetchNext(QDeadlineTimer deadline) override;

    /// Bytes of the rows and their order.
    qsizetype MemoryUsage() const;

protected:
    void InternalOpen() override;
    void InternalClose() override;
    quint32 RecordAt(qsizetype position) const override { return FView->RecordAt(position); }
    qsizetype PositionOf(quint32 record) const override { return FView->PositionOf(record); }
    quint64 DataNumber() const override { return *FDataNumber; }
    const TRowReader &RowOf(quint32 record) const override;
    const TRowReader *StoredRowOf(quint32 record) const override;
    quint32 InternalInsert(const TRowValues &row, quint32 before) override;
    void InternalModify(quint32 record, const TRowValues &row) override;
    void InternalDelete(quint32 record) override;
    void InternalFilter(const QString &text, bool filtered, TFilterOptions options) override;
    void InternalRefresh() override;

    /// The rows of Delta, where they stand.
    TDeltaRows DeltaRows();

private:
    friend class TAggregate;

    void RecordInserted(quint32 record) override;
    void RecordModified(quint32 record, const TRowReader &old) override;
    void ChangesMerged() override;
    void RowsFetched() override;
    void RecordDeleted(quint32 record) override;
    void StoreReset() override;

    void OpenStore(std::shared_ptr<TRecordStore> store, std::shared_ptr<quint64> number,
                   std::shared_ptr<TRowFeed> feed = nullptr);
    void OpenPacket(const TDataPacket &packet, std::shared_ptr<TRowFeed> feed);
    void AdoptSettings(const TCustomClientDataSet &source);
    /// The order that the index properties ask for, on the open data.
    std::vector<TOrderPart> OrderFor(const QString &fieldNames, const QString &indexName) const;
    std::vector<TOrderPart> OrderOf(const TIndexDef &index) const;
    TRecordView::TRules RulesFor(std::vector<TOrderPart> order, const QString &filter, bool filtered,
                                 TFilterOptions options);
    /// Selects the rows by rules, the current one staying current.
    void SelectBy(TRecordView::TRules rules);
    void ChangeOrder(const QString &fieldNames, const QString &indexName);
    int ColumnOf(QStringView name) const;
    std::vector<int> ColumnsOf(const QString &names) const;
    int CheckAggregate(const QString &field, bool numbers) const;
    void CheckUnique(const TRowValues &row, quint32 except) const;
    void CheckIndex(const TIndexDef &index) const;
    /// The place of the first row with these values; -1 if there is none.
    qsizetype Find(const QString &names, const QVariant &values, TLocateOptions options);
    size_t SetKey(TRowValues &key, const QVariantList &values) const;
    void MoveTo(qsizetype place);
    void DropSearchesOf(quint32 record, const TRowReader &old);
    /// After a change of the rows by whomever: position and links follow.
    void Follow(quint32 current, bool moved);

    std::shared_ptr<TRecordStore> FStore;
    std::shared_ptr<TRowFeed> FFeed; // of the rows that are not there yet; nothing is changed before
    std::optional<TRecordView> FView;
    std::shared_ptr<quint64> FDataNumber; // of the loaded data, shared with clones
    quint64 FVersion = 1;                 // counts what aggregates depend on
    bool FIsChanging = false;             // the change is this dataset's own
    mutable std::optional<TOverlaidRow> FReader;
    mutable TRowValues FStoredRow;
    TRowSearches FSearches;

    QString FIndexFieldNames;
    QString FIndexName;
    QList<TIndexDef> FIndexDefs;
    QString FSortLocale;
    TUpdateStatusSet FStatusFilter;
    TAggregates FAggregates{this};
    bool FDisableStringTrim = false;
    bool FReadOnly = false;
    bool FLogChanges = true;
};

/// A client dataset for applications; all of it is in the base.
class TClientDataSet : public TCustomClientDataSet
{
    Q_OBJECT

public:
    using TCustomClientDataSet::TCustomClientDataSet;
};

} // namespace Korvane
