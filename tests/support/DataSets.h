// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/dataset/ClientDataSet.h"
#include "platform/data/dataset/DataLink.h"
#include "support/Packets.h"

namespace Korvane {

/// An open client dataset with rows from literals, as PacketOf takes them.
std::unique_ptr<TClientDataSet> DataSetOf(const QList<TPacketField> &fields, const QList<QVariantList> &rows);

/// Feeds the rows of a packet; that takes so many reads, or one without a deadline.
class TTestFeed : public TRowFeed
{
public:
    explicit TTestFeed(TDataPacket rows, int reads = 3) : FRows(std::move(rows)), FReads(reads) {}

    /// From now on each read raises an EDatabaseError with the message.
    void Break(const QString &message) { FMessage = message; }
    /// The first rows, and the feed for all of them.
    static TFirstRows Begin(const std::shared_ptr<TTestFeed> &feed, qsizetype rows);

    bool Read(QDeadlineTimer deadline) override;
    const TDataPacket &Rows() const override { return FRows; }

private:
    const TDataPacket FRows;
    int FReads;
    QString FMessage;
};

/// The rows shown, a line each: "|" between the cells, "~" for NULL, blobs as "0x" and digits,
/// and ">" before the current one.
QString ViewOf(TDataSet &set);

/// One field of the rows shown, in a line: "A1 >A2 A3".
QString ViewOf(TDataSet &set, const QString &field);

/// The fields of the row being edited, or of the current one, as in ViewOf.
QString RowOf(const TDataSet &set);

/// State, number of the current row and count, flags while browsing, and whether the row was
/// written to: "browse 1/3 bof", "edit 2/3 modified", "inactive".
QString PlaceOf(const TDataSet &set);

/// The delta, a line per row: "modified ~|7". Posts as Delta does.
QString DeltaOf(TCustomClientDataSet &set);
QString DeltaText(const TDataPacket &delta);

/// The statuses of the rows shown, a letter each: "umid".
QString StatusesOf(TCustomClientDataSet &set);

/// What a call raises, as the class alone; "nothing" if it raises none.
QString KindRaised(const std::function<void()> &call);

/// Works on a dataset by a text of steps, joined by ";": the names of its operations in small
/// letters, "move 2", "recno 3", "index CODE;QTY" as "index CODE,QTY", "filter QTY>3" (switches
/// it on; empty switches off), and "CODE=B1" which writes a field, with "~" for NULL.
void Do(TCustomClientDataSet &set, const QString &steps);

/// Notes the events of a dataset by name, and changes of its state as "=edit".
class TDataSetRecorder
{
public:
    explicit TDataSetRecorder(TDataSet &set);
    ~TDataSetRecorder();

    /// What has been noted since the last call, joined by blanks.
    QString Take();
    /// From now on raises from the event of this name, after it was noted: EAbort, or an EDatabaseError
    /// with the message where one is given.
    void StopAt(const QString &event, const QString &message = {});

private:
    void Note(const QString &event);

    TDataSet &FSet;
    TDataSource FSource;
    QStringList FEvents;
    QString FStop;
    QString FMessage;
};

/// Notes what a data link is told: "active", "editing", "record(QTY)", "dataset", "scroll(1)",
/// "layout", "fetched", "update", "leave", "focus(QTY)".
class TLinkRecorder : public TDataLink
{
public:
    explicit TLinkRecorder(TDataSet &set);
    ~TLinkRecorder() override;

    QString Take();

protected:
    void ActiveChanged() override { Note(QStringLiteral("active")); }
    void EditingChanged() override { Note(QStringLiteral("editing")); }
    void RecordChanged(TField *field) override;
    void DataSetChanged() override { Note(QStringLiteral("dataset")); }
    void DataSetScrolled(qsizetype distance) override { Note(QStringLiteral("scroll(%1)").arg(distance)); }
    void LayoutChanged() override { Note(QStringLiteral("layout")); }
    void RowsFetched() override { Note(QStringLiteral("fetched")); }
    void UpdateData() override { Note(QStringLiteral("update")); }
    void CheckBrowseMode() override { Note(QStringLiteral("leave")); }
    void FocusControl(TField *field) override;

private:
    void Note(const QString &what) { FNotes += what; }

    TDataSource FSource;
    QStringList FNotes;
};

} // namespace Korvane
