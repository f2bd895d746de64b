// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/dataset/DataSet.h"
#include "platform/data/dataset/DataSource.h"

#include <QAbstractTableModel>

#include <memory>

namespace Korvane {

/// The rows of a dataset for Qt's own views: tables, completers, combo boxes, QML.
///
///     TDataSetModel model;
///     model.SetDataSource(&source);
///     table.setModel(&model);
///
/// Rows are read without moving the dataset; the row being edited shows what is typed, and one being
/// inserted has a row of its own. Moving in the dataset leaves indexes as they are. They go with
/// their records when a row is inserted, posted, cancelled or deleted. When rows change otherwise
/// the model is reset if that shows in their number, their order or the current one; if not, indexes
/// stay at their places.
///
/// In QML a field's text in a row is the role of the field's name.
///
/// Nothing is raised through a view: what fails reports false, sets ErrorText and emits Failed; an
/// abort is silent. A cell whose text cannot be made reads as empty.
class TDataSetModel : public QAbstractTableModel
{
    Q_OBJECT
    Q_PROPERTY(Korvane::TDataSource *DataSource READ DataSource WRITE SetDataSource)
    Q_PROPERTY(QStringList FieldNames READ FieldNames WRITE SetFieldNames)
    Q_PROPERTY(QStringList CheckFields READ CheckFields WRITE SetCheckFields)

public:
    explicit TDataSetModel(QObject *parent = nullptr);
    ~TDataSetModel() override;

    TDataSource *DataSource() const;
    void SetDataSource(TDataSource *source);
    /// The fields that are columns, in this order; empty, as at first, for the visible fields of the
    /// dataset. Raises EDatabaseError for a name that the open dataset lacks; one that a dataset
    /// opened later lacks is left out.
    const QStringList &FieldNames() const { return FFieldNames; }
    void SetFieldNames(const QStringList &names);
    /// Fields that show a box to check in place of their text: booleans, and texts of "Y" and "N".
    const QStringList &CheckFields() const { return FCheckFields; }
    void SetCheckFields(const QStringList &names);
    /// Adds one of them.
    void SetCheckField(const QString &name);

    /// The message of the last failure; empty after a change that succeeded.
    const QString &ErrorText() const { return FErrorText; }
    /// The field of a column; null outside, and for one whose field has been destroyed.
    TField *Field(int column) const;
    /// The row of the dataset's current or new row; -1 without one.
    int CurrentRow() const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    /// A view asks for more when it comes to the end of the rows that are there: all others are fetched.
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// Labels of the fields, and numbers of the rows.
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QHash<int, QByteArray> roleNames() const override;
    /// Makes the row current, which posts the one edited before, begins an edit and writes the field.
    /// The row is posted when another is edited, or by submit(). A text that stands there already
    /// begins no edit.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    /// Orders a client dataset by a column, ascending by its IndexFieldNames and descending by an index
    /// that is added to it; the natural order for column -1. The order ends when the dataset closes,
    /// since what it opens next may lack the field.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

public Q_SLOTS:
    /// Posts the row being edited, if anything was written into it. A view calls it when its current
    /// row changes.
    bool submit() override;
    /// Cancels the edit or the new row.
    void revert() override;

Q_SIGNALS:
    void Failed(const QString &message);

private:
    class TLink;

    /// What was known of the rows when they were last looked at.
    struct TRows
    {
        qsizetype Count = 0;     // of the dataset
        qsizetype Inserted = -1; // where a new row stands
        qsizetype Current = -1;
        TBookmark Bookmark; // of the current row
        TDataSetState State = dsInactive;
        QStringList Rules; // that select and order them
    };

    /// What a change of the rows does to those of the model.
    struct TStep
    {
        enum TKind { Reset, Insert, Remove, Move, Stay } Kind = Reset;
        qsizetype Row = -1;
        qsizetype Target = -1; // of a move
    };

    /// Null unless one is open.
    TDataSet *OpenSet() const;
    QList<QPointer<TField>> FieldsShown() const;
    TRows LookAtRows() const;
    TStep StepTo(const TRows &rows) const;
    /// Brings the model's rows to those of the dataset, with the signals for it.
    void Synchronize();
    void Apply(const TStep &step, const TRows &rows);
    void Adopt(const TRows &rows);
    void TellAllCells();
    void SetChanged();
    void LayoutChanged();
    void RowsFetched();
    /// Shows the current row anew, or one field of it and what is calculated from it.
    void RowChanged(const TField *field);
    void CursorMoved();

    /// The place in the dataset of a row; -1 for a new one.
    qsizetype PlaceOf(int row) const;
    /// The field that an index shows in a role.
    TField *FieldOf(const QModelIndex &index, int role) const;
    QVariant Cell(const TField &field, int role) const;
    /// Runs an action with the fields reading a row; false if there is no such row now.
    template <class Action> bool WithRow(int row, Action action) const;
    bool ShowsCheck(const TField &field) const;
    bool MayEdit(const TField &field) const;
    void Write(const QModelIndex &index, const QVariant &value, int role);
    void GoTo(const QPersistentModelIndex &index);
    /// Runs what may fail; see above for failures.
    bool Try(const std::function<void()> &action);
    void GiveUpSort();

    QStringList FFieldNames;
    QStringList FCheckFields;
    QList<QPointer<TField>> FFields; // of the columns
    TRows FRows;
    int FRowCount = 0;
    // One row may stand apart from those of the dataset in order: a new one, which is none of its rows
    // yet (place -1), and while the views are told of a step, a row that has gone or moved.
    qsizetype FApart = -1;
    qsizetype FApartPlace = -1;
    bool FIsTelling = false;
    bool FIsOutdated = false; // the rows have changed while the views were told
    QString FErrorText;
    QString FSortFields, FSortIndex; // what sort() has set in the dataset
    std::unique_ptr<TLink> FLink;
};

} // namespace Korvane
