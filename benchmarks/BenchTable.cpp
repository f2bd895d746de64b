// SPDX-License-Identifier: MIT
#include "BenchTable.h"

#include <benchmark/benchmark.h>

#include <QFile>
#include <QHash>
#include <QStringList>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include <malloc.h>

namespace Bench {

namespace {

constexpr auto AmountCounter = "amount";

/// Collects what each repetition measured by the benchmark's name.
class TCollector : public benchmark::ConsoleReporter
{
public:
    TCollector() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs)
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                Amounts[QString::fromStdString(run.run_name.function_name)].append(AmountOf(run));
    }

    double Median(const QString &name) const
    {
        QList<double> amounts = Amounts.value(name);
        if (amounts.isEmpty())
            return 0;
        std::sort(amounts.begin(), amounts.end());
        return amounts[amounts.size() / 2];
    }

    QHash<QString, QList<double>> Amounts;

private:
    static double AmountOf(const Run &run)
    {
        const auto counter = run.counters.find(AmountCounter);
        return counter != run.counters.end() ? double(counter->second)
                                             : run.real_accumulated_time / double(run.iterations);
    }
};

QString TimeText(double seconds)
{
    if (seconds <= 0)
        return QStringLiteral("-");
    return seconds < 1e-3  ? QString::number(seconds * 1e6, 'f', 2) + QStringLiteral(" us")
           : seconds < 1.0 ? QString::number(seconds * 1e3, 'f', 2) + QStringLiteral(" ms")
                           : QString::number(seconds, 'f', 3) + QStringLiteral(" s");
}

QString BytesText(double bytes)
{
    return bytes > 0 ? QString::number(bytes / (1 << 20), 'f', 2) + QStringLiteral(" MiB")
                     : QStringLiteral("-");
}

double SecondsOf(const std::function<void()> &work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// What the program holds of the allocator, in its arenas and in mappings.
double HeapInUse()
{
    const struct mallinfo2 heap = mallinfo2();
    return double(heap.uordblks) + double(heap.hblkhd);
}

void Register(const QString &name, const TWork &work, const std::function<void()> &prepare, int repetitions)
{
    auto *registered = benchmark::RegisterBenchmark(name.toStdString().c_str(), [work, prepare](
                                                                                    benchmark::State &state) {
        for ([[maybe_unused]] auto unused : state) {
            prepare();
            if (work.MeasuresMemory())
                state.SetIterationTime(SecondsOf([&] { state.counters[AmountCounter] = work.Measure(); }));
            else
                state.SetIterationTime(work.Measure());
        }
    });
    registered->UseManualTime()->Unit(benchmark::kMillisecond)->Repetitions(repetitions);
    if (work.MeasuresMemory())
        registered->Iterations(1);
    else
        registered->MinTime(0.05);
}

void Register(const TComparison &comparison)
{
    const auto prepare = [comparison] {
        if (comparison.Prepare)
            comparison.Prepare();
    };
    const auto preparePeer = [comparison, prepare] {
        prepare();
        if (comparison.PreparePeer)
            comparison.PreparePeer();
    };
    Register(comparison.What + QStringLiteral("/ours"), comparison.Ours, prepare, comparison.Repetitions);
    if (comparison.Theirs)
        Register(comparison.What + QStringLiteral("/peer"), comparison.Theirs, preparePeer,
                 comparison.PeerRepetitions > 0 ? comparison.PeerRepetitions : comparison.Repetitions);
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
    const auto text = comparison.Ours.MeasuresMemory() ? BytesText : TimeText;
    const bool hasGoal = comparison.Goal.Kind != TGoal::None;
    holds = !hasGoal || comparison.Goal.Holds(ratio);
    QString verdict = !hasGoal ? QStringLiteral("-") : holds ? QStringLiteral("yes") : QStringLiteral("NO");
    if (ratio > 0 && comparison.Same && !comparison.Same()) {
        holds = false;
        verdict = QStringLiteral("NO: the results differ");
    }
    return {comparison.What,
            text(ours),
            comparison.Theirs ? text(peer) + QStringLiteral(" (") + comparison.Peer + QLatin1Char(')')
                              : QStringLiteral("-"),
            ratio > 0 ? QString::number(ratio, 'f', 2) : QStringLiteral("-"),
            comparison.Goal.Text(),
            verdict};
}

} // namespace

QString TGoal::Text() const
{
    switch (Kind) {
    case AtLeastTimesAsFast:
        return QStringLiteral("at least %1 times as fast").arg(Factor);
    case WithinTimesItsTime:
        return QStringLiteral("within %1 of its time").arg(Factor);
    case AtMostItsShare:
        return QStringLiteral("at most %1 of it").arg(Factor, 0, 'g', 3);
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
    case AtMostItsShare:
        return ratio > 0 && 1 / ratio <= Factor;
    case None:
        break;
    }
    return true;
}

double TWork::Measure() const
{
    if (FRun)
        return SecondsOf(FRun);
    const double before = HeapInUse();
    const std::shared_ptr<void> made = FMake();
    return HeapInUse() - before;
}

bool RunComparisons(const QList<TComparison> &comparisons, const QString &tableFile, int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    for (const TComparison &comparison : comparisons)
        Register(comparison);
    TCollector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    // The work and all that it holds would else last into the end of the program.
    benchmark::ClearRegisteredBenchmarks();

    bool all = true;
    QList<QStringList> rows = {{QStringLiteral("what"), QStringLiteral("ours"), QStringLiteral("peer"),
                                QStringLiteral("ratio"), QStringLiteral("goal"), QStringLiteral("holds")}};
    for (const TComparison &comparison : comparisons) {
        if (!collector.Amounts.contains(comparison.What + QStringLiteral("/ours")))
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
