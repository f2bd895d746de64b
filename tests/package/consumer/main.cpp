// SPDX-License-Identifier: MIT
// The least that an outside project does with the installed library.
#include <Korvane/DBDFile.h>
#include <Korvane/DBSession.h>
#include <Korvane/Korvane.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    try {
        Korvane::TDBDFile design;
        design.SetFileName(QString::fromLocal8Bit(argc > 1 ? argv[1] : "orders.dbd"));
        design.SetActived(true);
        std::printf("%s", qUtf8Printable(design.GetTableNames()));
        std::printf("%s\n", qUtf8Printable(design.GetDBDTable(QStringLiteral("UNIT"))->GetSelectSQL(false)));
        return design.GetTables().isEmpty() ? 1 : 0;
    } catch (const Korvane::Exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
