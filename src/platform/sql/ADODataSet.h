// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Component.h"
#include "platform/data/ReadCursor.h"

#include <QPointer>
#include <QStringList>

namespace Korvane {

class TADOConnection;

/// A read-only walk over what a connection returned; base of the two below. Everything but
/// opening and closing is the cursor's: see TReadCursor.
class TCustomADODataSet : public TComponent
{
    Q_OBJECT

public:
    using TComponent::TComponent;

    TADOConnection *Connection() const { return FConnection; }
    void SetConnection(TADOConnection *connection) { FConnection = connection; }
    /// How many rows a driver that fetches in blocks asks for at a time.
    int CacheSize() const { return FCacheSize; }
    void SetCacheSize(int rows) { FCacheSize = rows; }
    /// Whether decimals come as exact texts instead of floating numbers.
    bool EnableBCD() const { return FEnableBCD; }
    void SetEnableBCD(bool enable) { FEnableBCD = enable; }

    bool Active() const { return FCursor.IsOpen(); }
    void Close() { FCursor.Close(); }

    /// All rows, as they were read.
    const TDataPacket &Packet() const { return FCursor.Packet(); }
    qsizetype RecordCount() const { return FCursor.RecordCount(); }
    bool IsEmpty() const { return FCursor.IsEmpty(); }
    bool Eof() const { return FCursor.Eof(); }
    bool Bof() const { return FCursor.Bof(); }
    void First() { FCursor.First(); }
    void Last() { FCursor.Last(); }
    void Next() { FCursor.Next(); }
    void Prior() { FCursor.Prior(); }
    TFieldHandle Fields(int index) const { return FCursor.Field(index); }
    TFieldHandle FieldByName(const QString &name) const { return FCursor.FieldByName(name); }
    bool Locate(const QString &names, const QVariant &values, TLocateOptions options = {})
    {
        return FCursor.Locate(names, values, options);
    }
    QString Filter() const { return FCursor.Filter(); }
    void SetFilter(const QString &text) { FCursor.SetFilter(text); }
    bool Filtered() const { return FCursor.Filtered(); }
    void SetFiltered(bool filtered) { FCursor.SetFiltered(filtered); }

protected:
    /// Raises EDatabaseError when no connection is set.
    TADOConnection &CheckConnection() const;

    TReadCursor FCursor;

private:
    QPointer<TADOConnection> FConnection;
    int FCacheSize = 1;
    bool FEnableBCD = true;
};

/// A dataset of a command text, or of a rowset that it is handed.
class TADODataSet : public TCustomADODataSet
{
    Q_OBJECT
    Q_PROPERTY(QString CommandText READ CommandText WRITE SetCommandText)

public:
    using TCustomADODataSet::TCustomADODataSet;

    const QString &CommandText() const { return FCommandText; }
    void SetCommandText(const QString &text) { FCommandText = text; }
    /// Runs the command text.
    void Open();
    /// Shows a rowset that was read elsewhere, as a schema rowset.
    void Open(const TDataPacket &packet) { FCursor.Open(packet); }

private:
    QString FCommandText;
};

/// A dataset of a statement held as lines, which also runs statements without a result.
class TADOQuery : public TCustomADODataSet
{
    Q_OBJECT
    Q_PROPERTY(QStringList SQL READ SQL WRITE SetSQL)

public:
    using TCustomADODataSet::TCustomADODataSet;

    const QStringList &SQL() const { return FSQL; }
    /// Closes the query.
    void SetSQL(const QStringList &lines);
    void Open();
    void ExecSQL();
    /// Of the last ExecSQL.
    qint64 RowsAffected() const { return FRowsAffected; }

private:
    QString Statement() const;

    QStringList FSQL;
    qint64 FRowsAffected = 0;
};

/// Hands out the rows of a dataset as a packet.
class TDataSetProvider : public TComponent
{
    Q_OBJECT

public:
    using TComponent::TComponent;

    TCustomADODataSet *DataSet() const { return FDataSet; }
    void SetDataSet(TCustomADODataSet *dataSet) { FDataSet = dataSet; }
    /// Raises EDatabaseError without an open dataset.
    TDataPacket Data() const;

private:
    QPointer<TCustomADODataSet> FDataSet;
};

} // namespace Korvane
