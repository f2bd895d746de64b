// SPDX-License-Identifier: MIT
// Measures the library beside its peers, in one process and one run.
//
//     korvane_bench --work FOLDER [--benchmark_filter=…]
#include "BusinessBenchmarks.h"
#include "CopyBenchmarks.h"
#include "DataSetBenchmarks.h"
#include "DesignBenchmarks.h"
#include "ExportBenchmarks.h"
#include "GridBenchmarks.h"
#include "ImportBenchmarks.h"
#include "LargeTable.h"
#include "SaveBenchmarks.h"
#include "ServerBenchmarks.h"

#include <QApplication>
#include <QDir>

#include <cstring>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QString folder = QStringLiteral(".");
    QList<char *> rest = {argv[0]};
    // Ours and peers are measured in turn, so that a change of the machine's speed meets both.
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    rest.append(interleaving);
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--work") == 0 && i + 1 < argc)
            folder = QString::fromLocal8Bit(argv[++i]);
        else
            rest.append(argv[i]);
    }
    QDir().mkpath(folder);
    const auto table = std::make_shared<Bench::TLargeTable>(folder);
    const bool holds = Bench::RunComparisons(
        Bench::DesignComparisons(folder) + Bench::DataSetComparisons(table) + Bench::SaveComparisons(table) +
            Bench::ServerComparisons(table) + Bench::CopyComparisons(table, folder) +
            Bench::ImportComparisons(table, folder) + Bench::BusinessComparisons(folder) +
            Bench::ExportComparisons(table, folder) + Bench::GridComparisons(table),
        QDir(folder).filePath(QStringLiteral("table.tsv")), int(rest.size()), rest.data());
    return holds ? 0 : 1;
}
