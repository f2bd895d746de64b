// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Event.h"
#include "platform/data/dataset/DataSource.h"
#include "platform/data/dataset/Field.h"

#include <utility>

namespace Korvane {

/// The end of a data source in what shows or follows its dataset. Derived classes override
/// what they want to hear; while the dataset's controls are disabled, only UpdateData and
/// CheckBrowseMode are called. Not a QObject: it lives as a member of a control. A handler may
/// destroy the link that runs it.
class TDataLink
{
public:
    TDataLink() = default;
    virtual ~TDataLink();
    TDataLink(const TDataLink &) = delete;
    TDataLink &operator=(const TDataLink &) = delete;

    TDataSource *DataSource() const { return FDataSource; }
    void SetDataSource(TDataSource *source);
    /// Null without a source.
    TDataSet *DataSet() const;
    /// An open dataset is behind an enabled source.
    bool Active() const { return FActive; }
    /// The row is being edited and the link may write it.
    bool Editing() const { return FEditing; }
    bool ReadOnly() const { return FReadOnly; }
    void SetReadOnly(bool readOnly);
    /// Begins an edit as TDataSource::Edit; gives whether the link may write now.
    bool Edit();
    /// Lets the link hand over what was typed (UpdateData), once.
    void UpdateRecord();

protected:
    friend class TDataSource;

    /// Knows whether a link has outlived the handlers that it ran.
    class TLife
    {
    public:
        explicit TLife(TDataLink &link) : FLink(&link), FOuter(std::exchange(link.FLife, this)) {}
        ~TLife()
        {
            if (FLink)
                FLink->FLife = FOuter;
        }
        TLife(const TLife &) = delete;
        TLife &operator=(const TLife &) = delete;

        bool IsOver() const { return !FLink; }

    private:
        friend class TDataLink;

        TDataLink *FLink;
        TLife *const FOuter;
    };

    /// Whether the link may write once the row is being edited.
    virtual bool MayWrite() const { return !FReadOnly; }
    /// Raises for a source that the link must not have.
    virtual void CheckDataSource(TDataSource *) const {}
    /// Finds out anew whether the link is active and editing, and tells what has changed.
    void UpdateState();

    virtual void ActiveChanged() {}
    virtual void EditingChanged() {}
    /// A field, or null for a whole row. Not called for what the link itself writes in UpdateData.
    virtual void RecordChanged(TField *) {}
    /// Rows, order or anything else. By default a record change.
    virtual void DataSetChanged() { RecordChanged(nullptr); }
    /// Another row is current, so many rows further. By default a change of the dataset.
    virtual void DataSetScrolled(qsizetype) { DataSetChanged(); }
    virtual void LayoutChanged() { DataSetChanged(); }
    /// FetchedCount has grown. By default nothing: who asked for RecordCount knew of these rows.
    virtual void RowsFetched() {}
    virtual void UpdateData() {}
    virtual void CheckBrowseMode() {}
    virtual void FocusControl(TField *) {}
    /// Another source is set, or the source has gone.
    virtual void DataSourceChanged() {}

private:
    void Handle(TDataEvent event, TField *field, qsizetype distance);
    void Leave();
    void SourceDied();

    TDataSource *FDataSource = nullptr; // a dying source clears it
    bool FActive = false;
    bool FEditing = false;
    bool FReadOnly = false;
    bool FUpdating = false;
    TLife *FLife = nullptr; // the innermost one
};

/// The link of a control of one field. It is editing only while that field can be written.
class TFieldDataLink : public TDataLink
{
public:
    const QString &FieldName() const { return FFieldName; }
    void SetFieldName(const QString &name);
    /// Null while the dataset is closed or has no such field.
    TField *Field() const { return FField; }
    /// Whether the field can be written once an edit has begun.
    bool CanModify() const;
    /// Something was typed: UpdateData will be asked for before the row is left or posted.
    void Modified() { FModified = true; }
    bool IsModified() const { return FModified; }
    /// Drops what was typed and shows the field again.
    void Reset();

    TEvent<> OnDataChange;    ///< show the field
    TEvent<> OnEditingChange; ///< may be typed, or not any more
    TEvent<> OnUpdateData;    ///< write what was typed into the field
    TEvent<> OnActiveChange;

protected:
    bool MayWrite() const override { return CanModify(); }
    void ActiveChanged() override;
    void EditingChanged() override;
    void RecordChanged(TField *field) override;
    void LayoutChanged() override;
    void UpdateData() override;

private:
    void UpdateField();

    QString FFieldName;
    QPointer<TField> FField;
    bool FModified = false;
};

/// The link of a detail dataset to its master.
class TMasterDataLink : public TDataLink
{
public:
    /// The detail; it must live as long as the link.
    explicit TMasterDataLink(TDataSet *detail) : FDetail(detail) {}

    TDataSet *Detail() const { return FDetail; }
    /// Names of the master's fields, joined by ";".
    const QString &FieldNames() const { return FFieldNames; }
    /// Names that the master lacks leave the old ones.
    void SetFieldNames(const QString &names);
    /// The master's fields; empty while it is closed. Names that it lacks raise EDatabaseError
    /// when the master opens or the names are set.
    const QList<TField *> &Fields() const { return FFields; }

    /// The master's current row, or its values in the linked fields, are others.
    TEvent<TMasterDataLink *> OnMasterChange;
    /// The master is closed or gone.
    TEvent<TMasterDataLink *> OnMasterDisable;

protected:
    void CheckDataSource(TDataSource *source) const override;
    void ActiveChanged() override;
    void RecordChanged(TField *field) override;
    void LayoutChanged() override;
    void CheckBrowseMode() override;

private:
    QList<TField *> FieldsOf(const QString &names) const;
    void TellDetail();

    TDataSet *const FDetail;
    QString FFieldNames;
    QList<TField *> FFields;
};

} // namespace Korvane
