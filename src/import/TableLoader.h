// SPDX-License-Identifier: MIT
#pragma once

#include "import/ColumnSums.h"
#include "import/RowConverter.h"
#include "platform/data/BlobStreams.h"

namespace Korvane {

class TDBSession;

/// Writes converted rows into a table, several with one statement. The statements differ in
/// their literals alone, so that an engine that keeps prepared statements prepares few.
class TRowWriter
{
public:
    TRowWriter(const TImportTable &table, TDBSession &session);

    /// Raises Exception when the database refuses a row.
    void Write(std::span<const TImportValue> row);
    /// Writes what is still held back.
    void Flush();
    /// How many rows were handed over and not yet written; of a failed statement, too.
    int PendingRows() const { return FPending; }
    /// Which of the pending rows the database refuses for that reason, from 0: they are tried one
    /// by one. -1 when none is, as where a failed statement has ended the transaction.
    int FindRefused(const QString &reason);

private:
    void AppendRow(std::span<const TImportValue> row);

    TDBSession &FSession;
    std::string FHead;
    int FMostRows = 1;
    std::string FStatement;
    std::vector<size_t> FStarts; ///< of the rows in the statement
    TBlobStreams FBlobs;
    int FPending = 0;
};

/// Loads one table from the old file.
class TTableLoader
{
public:
    /// What is told while rows go by: how many so far.
    using TProgress = std::function<void(qint64)>;
    using TProblem = std::function<void(const TImportProblem &)>;

    /// Without a session the rows are converted only.
    TTableLoader(const TImportTable &table, TDBSession *session);

    /// Reads all rows. After the first problem no more is written, but the rest is still looked
    /// at, so that all that does not fit is told at once.
    void Run(TJetFile &file, const TProgress &progress, const TProblem &problem);

    const TColumnSums &Sums() const { return FSums; }
    const TRowConverter &Rows() const { return FRows; }

private:
    void Number(const char *onOff);
    QString RowTextAt(TJetFile &file, qint64 number) const;
    TImportProblem RefusalOf(TRowWriter &writer, const Exception &error, TJetFile &file) const;

    const TImportTable &FTable;
    TDBSession *FSession;
    TRowConverter FRows;
    TColumnSums FSums;
};

} // namespace Korvane
