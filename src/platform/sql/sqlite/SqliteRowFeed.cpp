// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/SqliteRowFeed.h"

namespace Korvane {

namespace {

/// So many rows are read between two looks at the clock.
constexpr int RowsPerLook = 64;

/// Whether a column without a declared type begins with an integer or NULL, behind which any type may
/// come. A column that begins with a text takes all but blobs in, one that begins with a float all numbers.
bool HasOpenType(TSqliteStatement &row)
{
    const QList<TPacketField> &fields = row.Fields();
    for (int i = 0; i < int(fields.size()); ++i)
        if (fields[i].Type == ftUnknown && !row.IsText(i) && !row.IsFloat(i))
            return true;
    return false;
}

} // namespace

TSqliteRowFeed::TSqliteRowFeed(std::unique_ptr<TSqliteStatement> statement, qsizetype firstRows)
    : FStatement(std::move(statement)), FBuilder({})
{
    bool hasRow = FStatement->Step();
    FBuilder = TDataPacketBuilder(FStatement->Fields());
    const qsizetype limit = hasRow && HasOpenType(*FStatement) ? TDataPacket::MaxRowCount : firstRows;
    for (; hasRow && FBuilder.RowCount() < limit; hasRow = FStatement->Step())
        FStatement->AppendRow(FBuilder);
    FFirstRows = std::move(FBuilder).Build();
    if (!hasRow) {
        FRows = FFirstRows;
        FStatement.reset();
        return;
    }
    // Columns that the first rows have widened stay so.
    FBuilder = TDataPacketBuilder(FFirstRows.Fields());
    FBuilder.AppendRows(FFirstRows, 0, FFirstRows.RowCount());
}

bool TSqliteRowFeed::Read(QDeadlineTimer deadline)
{
    if (FFailure)
        std::rethrow_exception(FFailure);
    try {
        bool hasRow = FStatement != nullptr;
        while (hasRow) {
            for (int i = 0; hasRow && i < RowsPerLook; ++i) {
                FStatement->AppendRow(FBuilder);
                hasRow = FStatement->Step();
            }
            if (!hasRow)
                Freeze();
            else if (deadline.hasExpired())
                return false;
        }
    } catch (...) {
        FFailure = std::current_exception();
        FStatement.reset();
        throw;
    }
    return true;
}

void TSqliteRowFeed::Freeze()
{
    FRows = std::move(FBuilder).Build();
    FStatement.reset();
}

void TSqliteRowFeed::Finish() noexcept
{
    try {
        if (!FFailure)
            Read(QDeadlineTimer::Forever);
    } catch (...) {
        // The next Read tells it, to whom it concerns.
    }
}

} // namespace Korvane
