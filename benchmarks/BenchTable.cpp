// SPDX-License-Identifier: MIT
#include "BenchTable.h"

#include <benchmark/benchmark.h>

#include <QFile>
#include <QHash>
#include <QStringList>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace Bench {

namespace {

constexpr int Repetitions = 7;

/// Collects the time of each repetition by the benchmark's name.
class TCollector : public benchmark::ConsoleReporter
{
public:
    TCollector() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs)
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                Times[QString::fromStdString(run.run_name.function_name)].append(run.real_accumulated_time /
                                                                                 double(run.iterations));
    }

    double Median(const QString &name) const
    {
        QList<double> times = Times.value(name);
        if (times.isEmpty())
            return 0;
        std::sort(times.begin(), times.end());
        return times[times.size() / 2];
    }

    QHash<QString, QList<double>> Times;
};

QString TimeText(double seconds)
{
    if (seconds <= 0)
        return QStringLiteral("-");
    return seconds < 1e-3  ? QString::number(seconds * 1e6, 'f', 2) + QStringLiteral(" us")
           : seconds < 1.0 ? QString::number(seconds * 1e3, 'f', 2) + QStringLiteral(" ms")
                           : QString::number(seconds, 'f', 3) + QStringLiteral(" s");
}

void Register(const QString &name, const std::function<void()> &work, const std::function<void()> &prepare)
{
    benchmark::RegisterBenchmark(
        name.toStdString().c_str(),
        [work, prepare](benchmark::State &state) {
            for ([[maybe_unused]] auto unused : state) {
                if (prepare)
                    prepare();
                const auto begin = std::chrono::steady_clock::now();
                work();
                state.SetIterationTime(
                    std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
            }
        })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(Repetitions)
        ->MinTime(0.05);
}

void PrintAligned(const QList<QStringList> &rows)
{
    std::printf("\n");
    for (const QStringList &row : rows) {
        QString line;
        for (qsizetype column = 0; column < row.size(); ++column) {
            qsizetype width = 0;
            for (const QStringList &other : rows)
                width = qMax(width, other[column].size());
            line += row[column].leftJustified(column + 1 < row.size() ? width + 2 : 0);
        }
        std::printf("%s\n", qUtf8Printable(line));
    }
}

QStringList RowOf(const TComparison &comparison, const TCollector &collector, bool &holds)
{
    const double ours = collector.Median(comparison.What + QStringLiteral("/ours"));
    const double peer = collector.Median(comparison.What + QStringLiteral("/peer")) * comparison.PeerScale;
    const double ratio = ours > 0 && peer > 0 ? peer / ours : 0;
    holds = comparison.Goal.Kind == TGoal::None || comparison.Goal.Holds(ratio);
    return {comparison.What,
            TimeText(ours),
            comparison.Theirs ? TimeText(peer) + QStringLiteral(" (") + comparison.Peer + QLatin1Char(')')
                              : QStringLiteral("-"),
            ratio > 0 ? QString::number(ratio, 'f', 2) : QStringLiteral("-"),
            comparison.Goal.Text(),
            comparison.Goal.Kind == TGoal::None ? QStringLiteral("-")
                                                : (holds ? QStringLiteral("yes") : QStringLiteral("NO"))};
}

} // namespace

QString TGoal::Text() const
{
    switch (Kind) {
    case AtLeastTimesAsFast:
        return QStringLiteral("at least %1 times as fast").arg(Factor);
    case WithinTimesItsTime:
        return QStringLiteral("within %1 of its time").arg(Factor);
    case None:
        break;
    }
    return QStringLiteral("-");
}

bool TGoal::Holds(double ratio) const
{
    switch (Kind) {
    case AtLeastTimesAsFast:
        return ratio >= Factor;
    case WithinTimesItsTime:
        return ratio > 0 && 1 / ratio <= Factor;
    case None:
        break;
    }
    return true;
}

bool RunComparisons(const QList<TComparison> &comparisons, const QString &tableFile, int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    for (const TComparison &comparison : comparisons) {
        Register(comparison.What + QStringLiteral("/ours"), comparison.Ours, comparison.Prepare);
        if (comparison.Theirs)
            Register(comparison.What + QStringLiteral("/peer"), comparison.Theirs, comparison.Prepare);
    }
    TCollector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);

    bool all = true;
    QList<QStringList> rows = {{QStringLiteral("what"), QStringLiteral("ours"), QStringLiteral("peer"),
                                QStringLiteral("ratio"), QStringLiteral("goal"), QStringLiteral("holds")}};
    for (const TComparison &comparison : comparisons) {
        if (!collector.Times.contains(comparison.What + QStringLiteral("/ours")))
            continue; // left out by a filter
        bool holds = true;
        rows.append(RowOf(comparison, collector, holds));
        all = all && holds;
    }
    PrintAligned(rows);
    QByteArray text;
    for (const QStringList &row : std::as_const(rows))
        text += row.join(QLatin1Char('\t')).toUtf8() + '\n';
    QFile file(tableFile);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
        std::fprintf(stderr, "cannot write %s\n", qUtf8Printable(tableFile));
        return false;
    }
    return all;
}

void Use(qint64 value) { benchmark::DoNotOptimize(value); }

} // namespace Bench
