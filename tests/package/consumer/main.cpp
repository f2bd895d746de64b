// SPDX-License-Identifier: MIT
// What the README shows, as an outside project does it with the installed library:
//
//     consumer DESIGN-FILE DATABASE-FILE
#include "OrdersRecords.h" // generated from the design

#include <Korvane/DBDFile.h>
#include <Korvane/DBSession.h>
#include <Korvane/Korvane.h>

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

namespace {

int Run(const QString &designFile, const QString &databaseFile)
{
    Korvane::TDBDFile design;
    design.SetFileName(designFile);
    design.SetActived(true);

    Korvane::TDBSession session;
    session.SetDBType(Korvane::dbtAccess);
    session.SetDBName(databaseFile);
    design.CreateDB(session, false); // the whole schema, at the latest version

    session.SetConnected(true);
    Korvane::TDBDTable *unit = design.GetDBDTable("UNIT");
    TUnit kilogram;
    kilogram.UnitCode = "KG";
    kilogram.UnitName = "公斤";
    session.Execute(unit->GetInsertSQL(kilogram), nullptr);
    const Korvane::TDataPacket rows =
        session.Open(unit->GetSelectSQL(Korvane::dbtAccess, "UNITCODE", "KG", Korvane::ooEqualAnd, false));

    std::printf("%s: %s\n", qUtf8Printable(Korvane::GetDBTypeName(session.DBType())),
                qUtf8Printable(rows.Text(rows.IndexOf(u"UNITNAME"), 0)));

    const auto view = Korvane::FindClass("TUnitView").Create();
    const QStringList columns = dynamic_cast<const Korvane::TDBObject &>(*view).GetClassProperties();
    std::printf("TUnitView: %s\n", qUtf8Printable(columns.join(u' ')));
    return rows.RowCount() == 1 && columns.contains(u"UnitCode") ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    try {
        QFile::remove(arguments.value(2));
        return Run(arguments.value(1), arguments.value(2));
    } catch (const Korvane::Exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
