// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/DataPacket.h"

namespace Korvane {

/// One row, read by column. Filters and lookups read rows through it that do not stand in a
/// packet as they are: changed ones, new ones. Which getter serves a column follows from its
/// kind: GetInt for Int32 and Int64, GetDouble for Double, GetText for Text and Blob. A NULL
/// reads as 0 or empty.
class TRowReader
{
public:
    virtual ~TRowReader() = default;

    virtual bool IsNull(int column) const = 0;
    virtual qint64 GetInt(int column) const = 0;
    virtual double GetDouble(int column) const = 0;
    /// Valid until the reader moves to another row.
    virtual std::string_view GetText(int column) const = 0;
};

/// A row of a packet; the packet must live as long.
class TPacketRow final : public TRowReader
{
public:
    TPacketRow(const TDataPacket &packet, qsizetype row) : FPacket(packet), FRow(row) {}

    bool IsNull(int column) const override { return FPacket.Column(column).IsNull(FRow); }
    qint64 GetInt(int column) const override { return FPacket.Column(column).Int(FRow); }
    double GetDouble(int column) const override { return FPacket.Column(column).Doubles()[size_t(FRow)]; }
    std::string_view GetText(int column) const override { return FPacket.Column(column).Bytes(FRow); }

private:
    const TDataPacket &FPacket;
    const qsizetype FRow;
};

} // namespace Korvane
