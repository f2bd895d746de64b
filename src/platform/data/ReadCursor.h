// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/FilterExpression.h"
#include "platform/data/RowOrder.h"
#include "platform/data/RowSearches.h"

namespace Korvane {

class TCellReader;
class TReadCursor;

/// A field of a cursor's current row. A light value, for use while the cursor lives and is
/// open; it follows the cursor from row to row. Without a row, all of it reads as NULL.
/// A conversion that a value does not allow raises EConvertError.
class TFieldHandle
{
public:
    TFieldHandle(const TReadCursor &cursor, int index) : FCursor(&cursor), FIndex(index) {}

    int Index() const { return FIndex; }
    const QString &Name() const;
    TFieldType Type() const;

    bool IsNull() const;
    QString AsString() const; ///< dates in the short form; NULL is empty
    qint64 AsInteger() const; ///< a fraction rounds, halves to the even neighbour; NULL is 0
    double AsFloat() const;   ///< NULL is 0
    QVariant AsVariant() const;
    QByteArray AsBytes() const; ///< of a text in UTF-8; NULL is empty

private:
    template <class Result> Result Read(Result (TCellReader::*get)() const) const;

    const TReadCursor *FCursor;
    int FIndex;
};

/// A position over the rows of a packet, with a filter, an order and a search. It reads and
/// never changes the packet. Beginning and end are flags, as in all datasets: First sets
/// Bof, Last sets Eof, Next on the last row sets Eof and stays there; on an empty set both
/// are true. Without a packet, all that needs one raises EDatabaseError
/// "数据集未打开，无法执行此操作".
class TReadCursor
{
public:
    TReadCursor() = default;
    explicit TReadCursor(const TDataPacket &packet) { Open(packet); }

    /// Takes a packet and goes to the first row. An active filter is bound to the new
    /// packet's fields; if that fails the cursor is closed. The order is the packet's own.
    void Open(const TDataPacket &packet);
    void Close();
    bool IsOpen() const { return FIsOpen; }
    const TDataPacket &Packet() const { return CheckOpen(), FPacket; }

    qsizetype RecordCount() const { return CheckOpen(), FCount; }
    bool IsEmpty() const { return RecordCount() == 0; }
    /// From 1; 0 on an empty set.
    qsizetype RecNo() const { return IsEmpty() ? 0 : FPosition + 1; }
    /// The packet's number of the current row; -1 on an empty set.
    qsizetype RowIndex() const { return IsEmpty() ? -1 : qsizetype(RowAt(FPosition)); }
    bool Bof() const { return CheckOpen(), FBof; }
    bool Eof() const { return CheckOpen(), FEof; }

    void First();
    void Last();
    void Next() { MoveBy(1); }
    void Prior() { MoveBy(-1); }
    /// Gives by how many rows it moved.
    qsizetype MoveBy(qsizetype distance);

    QString Filter() const { return FFilter; }
    bool Filtered() const { return FFiltered; }
    TFilterOptions FilterOptions() const { return FFilterOptions; }
    /// Each selects the rows anew and goes to the first of them, if it makes a difference on
    /// an open cursor. A bad filter raises EDatabaseError and changes nothing.
    void SetFilter(const QString &text) { ChangeFilter(text, FFiltered, FFilterOptions); }
    void SetFiltered(bool filtered) { ChangeFilter(FFilter, filtered, FFilterOptions); }
    void SetFilterOptions(TFilterOptions options) { ChangeFilter(FFilter, FFiltered, options); }

    /// Orders the rows by fields, their names joined by ";", and goes to the first. Rows of
    /// equal keys keep the packet's order; an empty text restores it.
    void Sort(const QString &names, TCaseMode mode = TCaseMode::Exact);

    /// Makes the first row current whose fields, names joined by ";", equal the values: a
    /// list, or the one value of a single field. False, with the position left alone, if
    /// there is none. From the second search of the same fields and options on it costs no
    /// walk, until filter, order or packet change.
    bool Locate(const QString &names, const QVariant &values, TLocateOptions options = {});
    /// The same by fields' numbers and texts, with no allocation.
    bool Locate(std::span<const int> fields, std::span<const QStringView> texts, TLocateOptions options = {});

    /// The number of a field by its name, blind to the case of letters. Raises
    /// EDatabaseError for an unknown name.
    int FieldIndex(QStringView name) const;
    TFieldHandle FieldByName(QStringView name) const { return {*this, FieldIndex(name)}; }
    TFieldHandle Field(int index) const { return {*this, index}; }

private:
    void CheckOpen() const
    {
        if (!FIsOpen)
            RaiseClosed();
    }
    [[noreturn]] static void RaiseClosed();
    quint32 RowAt(qsizetype position) const
    {
        return FRows.empty() ? quint32(position) : FRows[size_t(position)];
    }
    void ChangeFilter(const QString &text, bool filtered, TFilterOptions options);
    void SelectRows(const TBoundFilter &filter, std::span<const TOrderPart> order);
    std::vector<int> FieldIndexes(const QString &names) const;
    TRowSearches::TSearch &SearchFor(std::span<const int> fields, TLocateOptions options)
    {
        return FSearches.Of(fields, options, FPacket.Fields());
    }
    bool GoToKey(TRowSearches::TSearch &search);

    TDataPacket FPacket;
    bool FIsOpen = false;
    std::vector<quint32> FRows; // empty when they are all of the packet's, in its order
    qsizetype FCount = 0;
    qsizetype FPosition = 0;
    bool FBof = true;
    bool FEof = true;

    QString FFilter;
    bool FFiltered = false;
    TFilterOptions FFilterOptions;
    TBoundFilter FBound;
    std::vector<TOrderPart> FOrder;

    TRowSearches FSearches;
};

} // namespace Korvane
