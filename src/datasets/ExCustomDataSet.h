// SPDX-License-Identifier: MIT
#pragma once

#include "datasets/RowMapping.h"
#include "general/Types.h"
#include "platform/data/BlobStreams.h"
#include "platform/data/dataset/ClientDataSet.h"
#include "platform/data/dataset/DataLink.h"

namespace Korvane {

class TBlobField;
class TDBDFile;
class TDBSession;
class TXlsxWriter;

/// Rows in memory that are read by the statements of a design file and written back by them.
/// Base of TExTable and TExQuery, which name a table or a query of the design.
///
/// Saving. By default (ctCommit) Post runs an insert or update statement and Delete a delete
/// statement at once, each followed by an update of the row's audit columns; a statement that
/// fails leaves the row in its edit state with what the user typed. With ctBatchCommit changes
/// stay in memory until Save, which writes the changed rows (utChanged) or replaces all rows
/// of the latest read (utAll). No transaction is opened: for a save that holds as a whole
/// call BeginTrans of the session before it and CommitTrans behind it.
///
///     TExTable orders;
///     orders.SetDBDFile(&design);
///     orders.SetDBSession(&session);
///     orders.SetTable("ORDERHEAD");
///     orders.OpenTable("BILLTYPE;BILLCODE", VarArrayOf({"2201", "20230100001"}), ooEqualAnd);
///     orders.Edit();
///     orders.FieldByName(u"REMARK")->SetAsString("加急");
///     orders.Post();
///
/// Rows and records. A row can be had as an object of the record class that the design names
/// (GetCurrentObject) and be filled from one (AddObject, AppendObject, InsertObject).
class TExCustomDataSet : public TCustomClientDataSet
{
    Q_OBJECT
    Q_MOC_INCLUDE("design/DBDFile.h")
    Q_MOC_INCLUDE("platform/data/dataset/DataSource.h")
    Q_MOC_INCLUDE("session/DBSession.h")
    Q_PROPERTY(bool Actived READ Actived WRITE SetActived)
    Q_PROPERTY(int FirstRows READ FirstRows WRITE SetFirstRows)
    Q_PROPERTY(QString AutoField READ AutoField WRITE SetAutoField)
    Q_PROPERTY(QString DetailField READ DetailField WRITE SetDetailField)
    Q_PROPERTY(QString HideFields READ HideFields WRITE SetHideFields)
    Q_PROPERTY(TCommitType CommitType READ CommitType WRITE SetCommitType)
    Q_PROPERTY(Korvane::TDBDFile *DBDFile READ DBDFile WRITE SetDBDFile)
    Q_PROPERTY(Korvane::TDBSession *DBSession READ DBSession WRITE SetDBSession)
    Q_PROPERTY(bool IsSelectAll READ IsSelectAll STORED false)
    Q_PROPERTY(bool AllowSelect READ AllowSelect WRITE SetAllowSelect)
    Q_PROPERTY(TUpdateType UpdateType READ UpdateType WRITE SetUpdateType)
    Q_PROPERTY(bool IgnoreCheck READ IgnoreCheck WRITE SetIgnoreCheck)
    Q_PROPERTY(Korvane::TDataSource *MasterDataSource READ GetMasterDataSource WRITE SetMasterDataSource)
    Q_PROPERTY(QString MasterField READ GetMasterField WRITE SetMasterField)
    Q_PROPERTY(Korvane::TFilterOptions FilterOptions READ FilterOptions WRITE SetFilterOptions)
    Q_PROPERTY(QList<Korvane::TIndexDef> IndexDefs READ IndexDefs STORED false)

public:
    /// When changes reach the database: with each Post and Delete, or with Save.
    enum TCommitType { ctCommit, ctBatchCommit };
    Q_ENUM(TCommitType)
    /// What Save writes: the changes, or all rows in the place of those of the latest read.
    enum TUpdateType { utChanged, utAll };
    Q_ENUM(TUpdateType)

    explicit TExCustomDataSet(QObject *owner = nullptr);
    ~TExCustomDataSet() override;

    // ---- properties
    /// True from the end of a read until Close. Setting true reads, also when it is true.
    bool Actived() const { return FActived; }
    void SetActived(bool actived);
    /// How many rows OpenTable reads before it returns, so that the first page of a long table is there
    /// at once; 0, which is the default, for all. When the others are read, TDataSet tells; they are
    /// those of the moment of OpenTable.
    int FirstRows() const { return FFirstRows; }
    void SetFirstRows(int rows) { FFirstRows = rows; }
    /// The field of new rows that gets generated numbers.
    const QString &AutoField() const { return FAutoField; }
    void SetAutoField(const QString &field) { FAutoField = field; }
    /// The fields that follow the master's, joined by ";", in the order of MasterField.
    const QString &DetailField() const { return FDetailField; }
    void SetDetailField(const QString &fields);
    /// Names of fields to hide, joined by ";". On an open dataset an empty list shows all fields,
    /// any other only hides.
    const QString &HideFields() const { return FHideFields; }
    void SetHideFields(const QString &fields);
    /// Exact in the case of letters.
    bool IsHideField(const QString &name) const;
    TCommitType CommitType() const { return FCommitType; }
    /// With a master it is ctBatchCommit whatever is asked for.
    void SetCommitType(TCommitType type);
    TDBDFile *DBDFile() const;
    void SetDBDFile(TDBDFile *file);
    TDBSession *DBSession() const;
    void SetDBSession(TDBSession *session);
    /// SelectAll was the last of SelectAll and UnSelectAll.
    bool IsSelectAll() const { return FIsSelectAll; }
    /// Reads a first column FSELECTED for marking rows.
    bool AllowSelect() const { return FAllowSelect; }
    void SetAllowSelect(bool allow) { FAllowSelect = allow; }
    TUpdateType UpdateType() const { return FUpdateType; }
    void SetUpdateType(TUpdateType type) { FUpdateType = type; }
    /// Post leaves ValidValue out.
    bool IgnoreCheck() const { return FIgnoreCheck; }
    void SetIgnoreCheck(bool ignore) { FIgnoreCheck = ignore; }
    /// The statement of the latest read.
    const QString &LastSQL() const { return FLastSQL; }

    /// Raise Exception when a property is not set; open the file, connect the session.
    void CheckDBDFile() const;
    void CheckDBSession() const;

    // ---- reading
    void Open() { OpenTable(); }
    void Close();
    /// All rows, or with a master those that belong to its current row.
    void OpenTable();
    /// Rows whose fields, names joined by ";", match the values.
    void OpenTable(const QString &field, const QVariant &value, TOpenOption option);
    /// Rows of a condition, without the word where, in an order; all of them when top is 0.
    template <class Int>
    requires std::is_integral_v<Int>
    void OpenTable(const QString &where, const QString &order, Int top)
    {
        OpenWhere(where, order, qint32(top));
    }
    /// Opens with no rows and the definition's fields; needs no database.
    void CreateDataSet();
    /// Gives the fields labels, widths and formats by the definition. Raises EDatabaseError when
    /// one is missing.
    void SetFieldName();

    // ---- rows and records
    std::unique_ptr<TDBObject> GetCurrentObject();
    /// Raises Exception that names class, property and value when the property refuses it.
    void SetCurrentObject(TDBObject &object);
    /// From the current row of another dataset with the same fields. Without all, the NULLs of a
    /// modified row of a delta leave the object as it is.
    void SetCurrentObject(TDBObject &object, TDataSet &source, bool all);
    /// Writes the object's properties into the fields of their names.
    void SetFieldValue(const TDBObject &object);
    /// Nothing happens in dsBrowse or without the field.
    void SetFieldValue(const QString &field, const QString &value);
    // In memory only, whatever CommitType is, and unchecked.
    void InsertObject(const TDBObject &object);
    void AppendObject(const TDBObject &object);
    void AddObject(const TDBObject &object);
    /// One object per row; the cursor ends at the end.
    TObjectList<TDBObject> GetDBObjects();
    QVariant GetKeyValues();
    QVariant GetKeyValues(TDataSet &source);
    QVariant GetKeyValues(const TDBObject &object);
    /// An empty separator means ";".
    QString GetKeyValueStr(const QString &separator);
    /// One column of all rows; the cursor ends at the end.
    QStringList GetValues(const QString &field);
    /// Adds the value to the blobs of the next statement and gives its place there.
    QString GetBlobString(const TField &field);
    /// The posted rows without filter and order.
    std::unique_ptr<TClientDataSet> CloneData();
    void CloneCursor(TCustomClientDataSet *source, bool reset, bool keepSettings = false) override;
    /// Delete rows in the database and leave those in memory alone: those of the master's
    /// current row, which is nothing without a master; or those of a condition.
    void DeleteTable();
    void DeleteTable(const QString &field, const QVariant &value);

    // ---- saving
    void Post() override;
    /// Posts to memory, unchecked and without a statement.
    void InterPost() { TCustomClientDataSet::Post(); }
    void Delete();
    /// Nothing happens with ctCommit.
    void Save();
    void SaveChanged();
    void SaveAll();
    // The audit columns of a row in its edit state, of a row of a delta, of rows by condition.
    void UpdateRecordInfo(TDBObject &object);
    void UpdateRecordInfo(const TDBObject &object, TUpdateStatus status);
    void UpdateRecordInfo(const QString &field, const QVariant &value);

    // ---- checks and defaults
    /// Checks required fields, the key and the unique indexes of the row being edited. Raises
    /// Exception at the first fault.
    void ValidValue();
    void ValidKeyField(const QString &fields, const QVariant &values);
    void GetFieldDefault();
    /// FieldProp of each field that must not be empty.
    QStringList GetIsNotNullFields();
    bool IsChanged();
    /// Of the current row, in these fields alone, joined by ";".
    bool IsChanged(const QString &fields);
    /// Nothing happens on an empty dataset, or when a row is being edited already.
    void Edit();
    // Nothing happens when a row is being edited already.
    void Insert();
    void Append();

    // ---- master and detail
    TDataSource *GetMasterDataSource() const { return FMasterLink->DataSource(); }
    TDataSource *MasterDataSource() const { return GetMasterDataSource(); }
    /// Turns CommitType to ctBatchCommit, or without a source to ctCommit. Raises EDatabaseError
    /// when the dataset would follow itself.
    void SetMasterDataSource(TDataSource *source);
    const QString &GetMasterField() const { return FMasterLink->FieldNames(); }
    const QString &MasterField() const { return GetMasterField(); }
    void SetMasterField(const QString &fields) { FMasterLink->SetFieldNames(fields); }
    TDataSource *DataSource() const override { return GetMasterDataSource(); }
    QVariant GetMasterFieldValues() const;
    /// Puts the master's values into the current row.
    void SetDetailFieldValues();
    /// Puts them into the properties that are called as the master's fields.
    void SetDetailFieldValues(TDBObject &object) const;
    void MasterChanged(TMasterDataLink *sender);

    // ---- selection
    void SelectAll();
    void UnSelectAll();
    /// The selected rows, or the current one when rows cannot be selected.
    const TObjectList<TDBObject> &GetSelected();
    void SetSelected(bool selected);
    bool IsSelected() const;

    // ---- order, marks, sums, search
    /// Swap the values of the order's field with those of the neighbour.
    void MoveUp();
    void MoveDown();
    /// A click on a column's head: upwards, and downwards when it is upwards already.
    void DoSorting(const QString &field);
    void DoSortingDesc(const QString &field);
    /// The first downwards, the second upwards.
    void DoSortingDesc(const QString &first, const QString &second);
    /// Remembers the current row by its key, also beyond a new read.
    void SetMark();
    void GotoMark();
    QString GetSumValue(const QString &field);
    QString GetSumValue(const QString &field, const QString &filter);
    /// The first argument is not used.
    QString GetGroupValue(const QString &first, const QString &field);
    /// Locates by key values joined by ";". Pieces are those of Split.
    bool LocateA(const QString &values);
    /// Whether there is such a row; the position stays.
    bool FindText(const QString &fields, const QVariant &values);

    // ---- files for spreadsheet programs
    /// Asks for a name and writes all rows shown into a worksheet file (.xls), under the labels of
    /// all fields, and tells that it is done. A value stands there as it is edited, numbers as
    /// numbers; of a field that is not visible, and where "******" is shown, there is none. Texts are
    /// in code page 936. The format counts rows to 65,536, and wraps beyond.
    void ExportToExcel();
    /// The same without a word. A file of the name is deleted first; a failure leaves what was
    /// written. Raises EFileError.
    void ExportToExcel(const QString &fileName);
    /// Asks for a name and writes a workbook (.xlsx) of the same cells: up to 1,048,575 rows, texts
    /// up to 32,767 characters in any script, NULL numbers as empty cells, and integers of more than
    /// 15 digits as texts. The head is bold and stays in sight, DisplayWidth makes the widths.
    void ExportToWorkbook();
    /// The same without a word. The file appears whole or not at all, and the current row stays.
    /// Raises EFileError, EOutOfResources for what the format cannot hold, and EAbort when
    /// OnExportProgress cancels.
    void ExportToWorkbook(const QString &fileName);
    /// (rows written, all rows, cancel): while a workbook is written, now and then and at the end.
    TEvent<qsizetype, qsizetype, bool &> OnExportProgress;

    // ---- numbers
    /// The text of a number for AutoField: with leading zeros unless the field is an "int".
    QString FormatAutoValue(int number);
    /// Numbers the rows from 1 in memory, in their natural order. The cursor ends one row further.
    void ResetAutoField();

    // ---- by the definition
    /// The next number for AutoField; here, one more than the highest in memory in batch mode.
    virtual QString GetAutoValue();
    virtual QString GetSelectSQL() = 0;
    virtual QString GetSelectSQL(const QString &field, const QVariant &value, TOpenOption option) = 0;
    virtual QString GetInsertSQL(const TDBObject &object) = 0;
    virtual QString GetUpdateSQL(const TDBObject &object) = 0;
    virtual QString GetUpdateSQL(const TDBObject &object, const QString &field, const QVariant &value) = 0;
    virtual QString GetDeleteSQL(const TDBObject &object) = 0;
    virtual QString GetDeleteSQL(const TDBObject &object, const QString &field, const QVariant &value) = 0;
    virtual QString GetDeleteSQL(const QString &field, const QVariant &value) = 0;
    virtual std::shared_ptr<TFieldsObject> GetField(const QString &name) = 0;
    /// A new record of the definition's class. Raises EClassNotFound when that is not registered.
    virtual std::unique_ptr<TDBObject> GetDBObject() = 0;
    virtual TObjectList<TFieldsObject> GetKeyFields() = 0;
    virtual TObjectList<TIndexsObject> GetIndexs() = 0;
    virtual QString GetKeyFieldStr() = 0;
    virtual TObjectList<TFieldsObject> GetFields() = 0;

protected:
    void DoAfterEdit() override;
    void DoAfterInsert() override;
    void DoAfterOpen() override;
    void DoBeforeEdit() override;
    void DoBeforeInsert() override;
    void DoOnNewRecord() override;
    void InternalClose() override;

    /// Whether the dataset names a definition that sets its fields up.
    virtual bool HasDefinition() const { return false; }
    /// Raises Exception when it does not and should.
    virtual void CheckDefinition() const {}

    /// Raise Exception when the property is not set.
    TDBDFile &File() const;
    TDBSession &Session() const;
    /// Reads by a statement, which is made after the checks. The field and value are those
    /// that SaveAll will replace by.
    void OpenStatement(const std::function<QString()> &statement, const QString &field = {},
                       const QVariant &value = {});
    /// The statement as a derived table with condition, order and, unless 0, a limit.
    static QString Wrapped(const QString &statement, const QString &where, const QString &order, qint32 top);
    /// Raises EClassNotFound.
    std::unique_ptr<TDBObject> NewRecord(const QString &className);
    int NextNumberInTable(const QString &column, const QString &table);

private:
    void OpenWhere(const QString &where, const QString &order, qint32 top);
    bool IsDetail() const;
    int NextNumberInMemory();
    /// From First to the end, controls disabled.
    void WalkRows(const std::function<void()> &visit);
    void FillObject(TDBObject &object, const TRowMapping &mapping, const TRowReader *row, bool skipNulls);
    QString MapBlob(const TField &field, const QByteArray &bytes);
    QList<TField *> KeySources(const TDataSet &source);
    struct TDeltaRow;
    void SaveDeltaRow(const TDeltaRow &row, std::unique_ptr<TDBObject> &object);
    void UpdateAuditColumns(const QString &statement, const QString &now, bool isNew, bool evenWithoutWhere);
    const QString &ServerTime();
    void CheckRequired();
    bool IsKeyChanged(const QStringList &names, const QVariant &values);
    void CheckKeyInMemory(QStringList names, QVariant values);
    void CheckKeyInTable(const QString &fields, const QVariant &values);
    void SetAllSelected(bool selected);
    void ClearSortIndex();
    void WriteAndSwap(TField &field, const QString &value);
    void WriteWorkbookRows(TXlsxWriter &writer);

    QString FOpenField;
    QVariant FOpenValue;
    QVariant FOldKeyValues;
    QString FMarkFields;
    QVariant FMarkValues;
    std::unique_ptr<TDBObject> FOldObject;
    std::unique_ptr<TMasterDataLink> FMasterLink;
    bool FActived = false;
    int FFirstRows = 0;
    QString FAutoField;
    QString FDetailField;
    QStringList FDetailFields;
    QString FHideFields;
    TCommitType FCommitType = ctCommit;
    QPointer<TDBDFile> FDBDFile;
    QPointer<TDBSession> FDBSession;
    TObjectList<TDBObject> FSelectedObjects;
    bool FIsSelectAll = false;
    bool FAllowSelect = false;
    QString FAutoValue;
    QString FLastSQL;
    TBlobStreams FBlobStreams;
    TUpdateType FUpdateType = utChanged;
    bool FIgnoreCheck = false;

    TDateTime FServerTime; // and what it looks like in the audit columns
    QString FServerTimeText;
    // The class that NewRecord was last asked for.
    const TClassInfo *FRecordClass = nullptr;
    QString FRecordClassName;
    quint64 FRecordClassVersion = 0;
    std::unique_ptr<TClientDataSet> FKeyRows; // the same rows, for checks of keys
    TRowMapping FRowMapping;                  // of the own rows
    TRowMapping FSourceMapping;               // of another dataset's rows
    TRecordMapping FRecordMapping;
};

using TCommitType = TExCustomDataSet::TCommitType;
using TUpdateType = TExCustomDataSet::TUpdateType;
using enum TExCustomDataSet::TCommitType;
using enum TExCustomDataSet::TUpdateType;

} // namespace Korvane
