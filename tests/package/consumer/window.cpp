// SPDX-License-Identifier: MIT
// A window of an outside project with the installed library: window DESIGN-FILE
#include <Korvane/ActionState.h>
#include <Korvane/DBDFile.h>
#include <Korvane/ExDB.h>
#include <Korvane/ExDBGrid.h>
#include <Korvane/ExStdCtrls.h>
#include <Korvane/Korvane.h>
#include <Korvane/platform/forms/Application.h>
#include <Korvane/platform/forms/Form.h>

int main(int argc, char **argv)
{
    Korvane::TApplication application(argc, argv);
    Korvane::TDBDFile design;
    design.SetFileName(QString::fromLocal8Bit(argv[1]));
    design.SetActived(true);
    Korvane::TExTable units;
    units.SetDBDFile(&design);
    units.SetTable("UNIT");
    units.CreateDataSet();

    Korvane::TForm form;
    Korvane::TDataSource source;
    source.SetDataSet(&units);
    auto *grid = new Korvane::TExDBGrid(&form);
    grid->SetDataSource(&source);
    form.setCentralWidget(grid);
    form.show();
    const bool isShown = grid->ColumnCount() == units.FieldCount() && !grid->grab().isNull() &&
                         Korvane::GetBtnEdtGlyph(Korvane::bkFind);
    return isShown ? 0 : 1;
}
