// SPDX-License-Identifier: MIT
// The command that runs statements.
#include "Commands.h"
#include "RowPrinter.h"
#include "ToolOptions.h"

#include "platform/core/StringList.h"
#include "platform/core/Text.h"
#include "session/DBSession.h"

#include <QRegularExpression>

namespace Korvane {

namespace {

/// The lines to run: the argument, the file's, or those of standard input.
QStringList ScriptLines(TCommandLine &line, TToolStreams &streams)
{
    const QString file = line.Value(QStringLiteral("file"));
    if (line.Has(QStringLiteral("file"))) {
        line.CheckEnd();
        return LoadLines(file);
    }
    const QString argument = line.Take(QStringLiteral("STATEMENT"));
    line.CheckEnd();
    QStringList lines;
    SetTextOf(lines, argument == QLatin1String("-") ? streams.In.readAll() : argument);
    return lines;
}

/// Cuts at the same lines as the session does, but leaves the lines of a batch as they are, so
/// that literals over several lines keep their blanks.
QStringList Batches(const QStringList &lines)
{
    QStringList batches, batch;
    const auto endBatch = [&] {
        const QString text = batch.join(QStringLiteral("\r\n"));
        if (!Trim(text).isEmpty())
            batches.append(text);
        batch.clear();
    };
    for (const QString &line : lines) {
        if (SameText(Trim(line), QStringLiteral("go")))
            endBatch();
        else
            batch.append(line);
    }
    endBatch();
    return batches;
}

/// What the first word of a statement, behind comments and brackets, says of its result.
enum class TResult { Rows, Count, Nothing };

TResult ResultOf(const QString &statement)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\A(?:\\s+|\\(|--[^\\r\\n]*|/\\*.*?\\*/)*+(?:(select|with|values|pragma|explain)|"
                       "insert|update|delete)\\b"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = pattern.match(statement);
    if (!match.hasMatch())
        return TResult::Nothing;
    return match.hasCaptured(1) ? TResult::Rows : TResult::Count;
}

/// Runs batches and prints what they give. With CSV the remarks go to Err, so that Out holds
/// nothing but rows.
class TBatchRunner
{
public:
    enum class Form { Table, Csv };

    TBatchRunner(TDBSession &session, TToolStreams &streams, Form form)
        : FSession(session), FStreams(streams), FForm(form)
    {
    }

    void Run(const QString &batch)
    {
        const TResult result = ResultOf(batch);
        if (result == TResult::Rows)
            return Print(FSession.Open(batch));
        const int count = FSession.Execute(batch);
        if (result == TResult::Count)
            Remark(QStringLiteral("%1 行受影响").arg(count));
        else
            Remark(QStringLiteral("语句已执行"));
    }

private:
    void Remark(const QString &text) { (FForm == Form::Csv ? FStreams.Err : FStreams.Out) << text << '\n'; }

    void Print(const TDataPacket &rows)
    {
        if (rows.FieldCount() == 0) // such as "select … into"
            return Remark(QStringLiteral("语句已执行"));
        if (FHasPrinted)
            FStreams.Out << (FForm == Form::Csv ? "\r\n" : "\n");
        FHasPrinted = true;
        if (FForm == Form::Table) {
            FStreams.Out << RowsAsTable(rows);
        } else {
            FStreams.Out.flush();
            WriteRowsAsCsv(rows, *FStreams.Out.device());
        }
    }

    TDBSession &FSession;
    TToolStreams &FStreams;
    Form FForm;
    bool FHasPrinted = false;
};

} // namespace

int RunSql(TCommandLine &line, TToolStreams &streams)
{
    TDBSession session;
    AimSession(session, line);
    const QStringList batches = Batches(ScriptLines(line, streams));
    session.SetConnected(true);

    TBatchRunner runner(session, streams,
                        line.Has(QStringLiteral("csv")) ? TBatchRunner::Form::Csv
                                                        : TBatchRunner::Form::Table);
    for (qsizetype i = 0; i < batches.size(); ++i) {
        try {
            runner.Run(batches[i]);
        } catch (const Exception &error) {
            streams.Out.flush();
            PrintError(streams, error);
            if (batches.size() > 1)
                streams.Err << QStringLiteral("第 %1 批失败，之前的 %2 批已经执行，后面的 %3 批没有执行。\n")
                                   .arg(i + 1)
                                   .arg(i)
                                   .arg(batches.size() - i - 1);
            return tsFailed;
        }
    }
    return tsDone;
}

} // namespace Korvane
