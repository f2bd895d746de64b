// SPDX-License-Identifier: MIT
#include "import/TableLoader.h"

#include "session/DBSession.h"

namespace Korvane {

namespace {

// Bounds of one statement: rows, values, bytes.
constexpr int MostRows = 16;
constexpr int MostValues = 400;
constexpr size_t MostBytes = 16 * 1024;

constexpr qint64 ProgressRows = 10000;

void AppendQuotedUtf8(std::string &statement, std::string_view text)
{
    statement += '\'';
    for (size_t quote = text.find('\''); quote != std::string_view::npos; quote = text.find('\'')) {
        statement.append(text.substr(0, quote)).append("''");
        text.remove_prefix(quote + 1);
    }
    statement.append(text) += '\'';
}

/// What the database itself says of a failed statement, without the statement.
QString ReasonOf(const Exception &error) { return error.Message().section(u'\r', 0, 0).trimmed(); }

} // namespace

TRowWriter::TRowWriter(const TImportTable &table, TDBSession &session) : FSession(session)
{
    QStringList codes;
    bool hasImage = false;
    for (const TImportColumn &column : table.Filled()) {
        codes.append(column.Code);
        hasImage = hasImage || column.Type == dtImage;
    }
    FHead = QStringLiteral("insert into %1(%2) values").arg(table.Code, codes.join(u',')).toStdString();
    // A picture is a parameter and none is a literal: statements of several rows would differ.
    if (!hasImage)
        FMostRows = qBound(1, MostValues / qMax(int(codes.size()), 1), MostRows);
}

void TRowWriter::Write(std::span<const TImportValue> row)
{
    if (FPending == 0) {
        FStatement = FHead;
        FStarts.clear();
    } else {
        FStatement += ',';
    }
    FStarts.push_back(FStatement.size());
    AppendRow(row);
    ++FPending;
    if (FPending >= FMostRows || FStatement.size() > MostBytes)
        Flush();
}

void TRowWriter::AppendRow(std::span<const TImportValue> row)
{
    FStatement += '(';
    for (size_t i = 0; i < row.size(); ++i) {
        if (i > 0)
            FStatement += ',';
        switch (row[i].Kind) {
        case TImportValue::Null:
            FStatement += "null";
            break;
        case TImportValue::Number:
            FStatement += row[i].Bytes;
            break;
        case TImportValue::Text:
            AppendQuotedUtf8(FStatement, row[i].Bytes);
            break;
        case TImportValue::Blob: {
            const QString name = QStringLiteral("PIC%1").arg(FBlobs.Count());
            FStatement += ':' + name.toStdString();
            FBlobs.Add(name, QByteArray(row[i].Bytes.data(), qsizetype(row[i].Bytes.size())));
            break;
        }
        }
    }
    FStatement += ')';
}

void TRowWriter::Flush()
{
    if (FPending == 0)
        return;
    const QString statement = QString::fromUtf8(FStatement.data(), qsizetype(FStatement.size()));
    if (FBlobs.IsEmpty()) {
        FSession.Execute(statement);
    } else {
        const TBlobStreams blobs = std::exchange(FBlobs, {});
        FSession.Execute(statement, &blobs);
    }
    FPending = 0;
}

int TRowWriter::FindRefused(const QString &reason)
{
    if (FPending < 2)
        return FPending - 1;
    FStarts.push_back(FStatement.size() + 1);
    for (size_t i = 0; i + 1 < FStarts.size(); ++i) {
        const std::string row = FHead + FStatement.substr(FStarts[i], FStarts[i + 1] - 1 - FStarts[i]);
        try {
            FSession.Execute(QString::fromStdString(row));
        } catch (const Exception &error) {
            return ReasonOf(error) == reason ? int(i) : -1;
        }
    }
    return -1;
}

TTableLoader::TTableLoader(const TImportTable &table, TDBSession *session)
    : FTable(table), FSession(session), FRows(table), FSums(FRows.Columns())
{
}

/// A server of the MSSQL dialect takes numbers for a numbering column only when it is told.
void TTableLoader::Number(const char *onOff)
{
    const QList<TImportColumn> &columns = FRows.Columns();
    const bool hasNumbers = std::any_of(columns.begin(), columns.end(),
                                        [](const TImportColumn &column) { return column.IsAuto; });
    if (FSession && FSession->DBType() == dbtMSSQL && hasNumbers)
        FSession->Execute(QStringLiteral("set identity_insert %1 %2").arg(FTable.Code, QLatin1String(onOff)));
}

QString TTableLoader::RowTextAt(TJetFile &file, qint64 number) const
{
    TRowConverter rows(FTable);
    QString text;
    file.ReadTable(FTable.OldName, [&](std::span<const TJetCell> row) {
        rows.Convert(row);
        if (--number == 0)
            text = rows.RowText(row);
    });
    return text;
}

/// The problem that a failed statement is: the row that is to blame, or the first and the last
/// that may be.
TImportProblem TTableLoader::RefusalOf(TRowWriter &writer, const Exception &error, TJetFile &file) const
{
    const QString reason = ReasonOf(error);
    const qint64 last = FSums.RowCount();
    const qint64 first = last - writer.PendingRows() + 1;
    const int refused = writer.FindRefused(reason);
    QString row = RowTextAt(file, refused < 0 ? first : first + refused);
    if (refused < 0)
        row += QStringLiteral(" 到 ") + RowTextAt(file, last);
    return {FTable.Code, row, {}, {}, reason};
}

void TTableLoader::Run(TJetFile &file, const TProgress &progress, const TProblem &problem)
{
    std::optional<TRowWriter> writer;
    if (FSession)
        writer.emplace(FTable, *FSession);
    const auto giveUp = [&](const TImportProblem &what) {
        writer.reset();
        problem(what);
    };
    const auto guarded = [&](auto action) {
        try {
            action();
        } catch (const Exception &error) {
            giveUp(RefusalOf(*writer, error, file));
        }
    };
    FRows.OnProblem = giveUp;
    Number("on");
    file.ReadTable(FTable.OldName, [&](std::span<const TJetCell> row) {
        const bool fits = FRows.Convert(row);
        FSums.AddRow(FRows.Values());
        if (FSums.RowCount() % ProgressRows == 0)
            progress(FSums.RowCount());
        if (fits && writer)
            guarded([&] { writer->Write(FRows.Values()); });
    });
    if (writer)
        guarded([&] { writer->Flush(); });
    if (writer)
        Number("off");
    FRows.OnProblem = nullptr;
}

} // namespace Korvane
