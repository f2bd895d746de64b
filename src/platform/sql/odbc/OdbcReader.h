// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/DataPacket.h"
#include "platform/sql/odbc/OdbcConnection.h"

#include <QHash>
#include <QStringEncoder>

#include <memory>
#include <string>
#include <vector>

namespace Korvane {

/// Reads the present result of a statement into a packet: by blocks of rows into arrays that
/// are bound once, single long values by pieces. Field types come from the column types.
class TOdbcReader
{
public:
    /// writtenNames: names for columns that the server names differently.
    TOdbcReader(TOdbcStatement &statement, const QHash<QString, QString> &writtenNames);
    ~TOdbcReader();
    TOdbcReader(const TOdbcReader &) = delete;
    TOdbcReader &operator=(const TOdbcReader &) = delete;

    TDataPacket ReadAll();

private:
    enum class TCell : quint8 { Int32, Int64, Bit, Double, Decimal, Utf8, Utf16, Blob, DateTime, Date, Time };
    struct TColumn
    {
        TPacketField Field;
        TCell Cell = TCell::Utf8;
        SQLSMALLINT CType = SQL_C_BINARY;
        size_t Width = 0;         ///< bytes of a place in the array
        size_t Room = 0;          ///< of these, for the value without the sign that ends it
        bool IsUnlimited = false; ///< values may be longer than the place
        bool IsBound = true;
        std::unique_ptr<char[]> Places;
        std::vector<SQLLEN> Indicators;

        const char *Place(size_t row) const { return Places.get() + row * Width; }
    };

    void Describe(const QHash<QString, QString> &writtenNames);
    void ChooseCell(TColumn &column, int number, SQLSMALLINT type, SQLULEN size, SQLSMALLINT digits) const;
    void ChooseText(TColumn &column, int number, SQLULEN size) const;
    QString Attribute(int number, SQLUSMALLINT which) const;
    void BindBlocks();
    void AppendRow(TDataPacketBuilder &builder, size_t row);
    void AppendCell(TDataPacketBuilder &builder, int field, size_t row);
    void AppendBound(TDataPacketBuilder &builder, int field, const char *place, SQLLEN length);
    void AppendDecimal(TDataPacketBuilder &builder, int field, std::string_view digits);
    void AppendUtf16(TDataPacketBuilder &builder, int field, const char *bytes, size_t size);
    /// False for NULL; else FLong has the bytes. expected: how many, 0 where that is not known.
    bool ReadByPieces(int field, SQLSMALLINT ctype, size_t expected);
    void AppendLong(TDataPacketBuilder &builder, int field, size_t row);

    TOdbcStatement &FStatement;
    std::vector<TColumn> FColumns;
    size_t FBlockRows = 1;
    SQLULEN FFetched = 0;
    std::vector<SQLUSMALLINT> FRowStates;
    QStringEncoder FToUtf8;
    std::vector<char> FUtf8;
    std::string FLong;
};

} // namespace Korvane
