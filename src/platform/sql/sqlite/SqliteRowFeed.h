// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/RowFeed.h"
#include "platform/sql/sqlite/SqliteDatabase.h"

#include <exception>

namespace Korvane {

/// The rows of a statement that has been begun. They are those of the moment of its first step, as
/// long as nothing is changed over the same connection: whoever changes something finishes it first.
class TSqliteRowFeed final : public TRowFeed
{
public:
    /// A statement that gives rows and whose parameters are bound. Reads the first rows; all of them when
    /// there is a column whose type only all rows tell.
    TSqliteRowFeed(std::unique_ptr<TSqliteStatement> statement, qsizetype firstRows);

    const TDataPacket &FirstRows() const { return FFirstRows; }
    bool IsFinished() const { return !FStatement; }

    bool Read(QDeadlineTimer deadline) override;
    const TDataPacket &Rows() const override { return FRows; }
    /// Reads all that is left and lets go of the database. What fails is raised by the next Read.
    void Finish() noexcept;

private:
    void Freeze();

    std::unique_ptr<TSqliteStatement> FStatement; // on a row that is not in the builder; null at the end
    TDataPacketBuilder FBuilder;
    TDataPacket FFirstRows;
    TDataPacket FRows;
    std::exception_ptr FFailure;
};

} // namespace Korvane
