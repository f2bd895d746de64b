// SPDX-License-Identifier: MIT
#include "controls/ExDBGrid.h"
#include "controls/ExDBImage.h"
#include "datasets/ExDB.h"
#include "design/DBDFile.h"
#include "platform/controls/GridTesting.h"
#include "platform/core/Cursor.h"
#include "support/ScriptedPrompts.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

class TUnit : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString UnitCode MEMBER UnitCode)
    Q_PROPERTY(QString UnitName MEMBER UnitName)
    Q_PROPERTY(int Digits MEMBER Digits)
    Q_PROPERTY(bool IsBase MEMBER IsBase)

public:
    QString UnitCode, UnitName;
    int Digits = 0;
    bool IsBase = false;
};

/// A grid on tables of the sample design, whose rows are in memory alone.
class ExDBGridTest : public testing::Test
{
protected:
    /// What the base calls, to be called by the test.
    struct TGrid : TExDBGrid
    {
        using TExDBGrid::DoMouseWheel;
        using TExDBGrid::IsDateField;
        using TExDBGrid::LinkActive;
        using TExDBGrid::TExDBGrid;
    };

    ExDBGridTest()
    {
        Design.SetFileName(QStringLiteral(KORVANE_EXAMPLES_DIR "/orders.dbd"));
        Design.SetActived(true);
        Grid->setObjectName(u"dbgItems"_s);
        Source.SetDataSet(&Table);
        Grid->SetDataSource(&Source);
        Window.resize(900, 300);
        Grid->resize(900, 300);
        Window.show();
        QApplication::setActiveWindow(&Window);
        Grid->setFocus();
    }

    void Open(const QString &table, int rows = 3)
    {
        Table.SetTable(table);
        Table.SetDBDFile(&Design);
        Table.SetCommitType(ctBatchCommit);
        Table.CreateDataSet();
        if (Table.AllowSelect()) { // which a read adds in front
            QList<TFieldDef> fields = Table.FieldDefs();
            fields.prepend({.Name = u"FSELECTED"_s, .DataType = ftString, .Size = 1});
            Table.Close();
            Table.FieldDefs() = fields;
            Table.TCustomClientDataSet::CreateDataSet();
        }
        for (int row = 0; row < rows; ++row) {
            Table.TCustomClientDataSet::Append();
            Table.Fields(Table.AllowSelect() ? 1 : 0)->SetAsString(QString::number(row));
            if (Table.AllowSelect())
                Table.Fields(0)->SetAsString(u"N"_s);
            Table.InterPost();
        }
        Table.MergeChangeLog();
        Table.First();
    }
    QStringList Lines() { return Grid->GetSelectedFields(); }
    QString Line(const QString &name)
    {
        for (const QString &line : Lines())
            if (line.startsWith(name + u'\t'))
                return line;
        return {};
    }
    QStringList Shown() { return ViewOf(Table, u"ITEMCODE"_s).remove(u'>').split(u' '); }
    void Click(int row, int column)
    {
        QTest::mouseClick(Grid->viewport(), Qt::LeftButton, {}, Grid->CellRect({row, column}).center());
    }

    TDBDFile Design;
    TExTable Table;
    TDataSource Source;
    QWidget Window;
    TGrid *const Grid = new TGrid(&Window);
};

TEST_F(ExDBGridTest, BuildsColumnsByTheDesign)
{
    EXPECT_EQ(Grid->KeyOptions(), dgEnterToTab | dgAllowDelete | dgAllowInsert);
    EXPECT_TRUE(Grid->EditControlOptions().testFlag(ecoCheckboxSingleClick));
    EXPECT_EQ(Grid->PaintOptions(), (TwwPaintOptions{clBtnFace, clMenuHighlight}));
    EXPECT_EQ(Grid->MemoAttributes(), mGridShow | mWordWrap);

    Grid->SetReadOnlyFields(u"itemname;SpecName;xx"_s);
    Table.SetHideFields(u"Cost;barcode;BARCODE;Weight"_s);
    Open(u"ITEM"_s);
    EXPECT_EQ(Lines().first(), u"ItemCode\t20\t物料编号\tF"_s);
    EXPECT_EQ(Line(u"ItemName"_s), u"ItemName\t40\t品名\tT"_s) << "read-only names are blind to case";
    EXPECT_EQ(Line(u"BarCode"_s), u"BarCode\t20\t条码\tF"_s) << "names to hide are not";
    EXPECT_EQ(Line(u"Weight"_s), QString());
    EXPECT_EQ(Grid->ControlType(), (QStringList{u"IsStopped;CheckBox;Y;N"_s,
                                                u"Picture;CustomEdit;_imgdbgItemsPicture;T"_s}));
    EXPECT_EQ(Grid->ColumnByName(u"DefaultWhs"_s)->Field()->FieldName(), u"WHSCODE"_s)
        << "a property whose column is called otherwise";

    Grid->SetReadOnly(true);
    EXPECT_EQ(Grid->KeyOptions(), TwwDBGridKeyOptions(dgEnterToTab));
    EXPECT_TRUE(Grid->MemoAttributes().testFlag(mViewOnly));
    EXPECT_TRUE(Lines().first().endsWith(u"\tT"));
    Grid->SetReadOnly(false);
    EXPECT_TRUE(Lines().first().endsWith(u"\tF"));
    EXPECT_EQ(Grid->KeyOptions(), dgEnterToTab | dgAllowDelete | dgAllowInsert);

    Table.Close();
    EXPECT_TRUE(Lines().isEmpty());
    EXPECT_TRUE(Grid->ControlType().isEmpty());
    Grid->SetReadOnly(true); // on a closed dataset
    EXPECT_TRUE(Lines().isEmpty());
}

TEST_F(ExDBGridTest, DatesAreThoseOfTheDesign)
{
    Table.SetHideFields(u"BillDate"_s);
    Open(u"ORDERHEAD"_s);
    EXPECT_TRUE(Grid->IsDateField(Table.FieldByName(u"BILLDATE"))) << "hidden, but still a date";
    EXPECT_FALSE(Grid->IsDateField(Table.FieldByName(u"BILLCODE")));
    EXPECT_FALSE(Grid->IsDateField(nullptr));
    Table.SetHideFields(QString());

    auto plain = DataSetOf({{"AT", ftDateTime}, {"FSELECTED", ftString, 1}}, {{QVariant(), "N"}});
    Source.SetDataSet(plain.get());
    EXPECT_EQ(Lines(), (QStringList{u"FSELECTED\t1\t选择\tF"_s})) << "of any dataset the tick column";
    EXPECT_EQ(Grid->ControlType(), (QStringList{u"FSELECTED;CheckBox;Y;N"_s}));
    EXPECT_TRUE(Grid->IsDateField(plain->FieldByName(u"AT")));
    Source.SetDataSet(nullptr);
}

TEST_F(ExDBGridTest, OnlyTheTickColumnIsEditedWhereRowsAreMarked)
{
    RegisterClass<TUnit>();
    Table.SetAllowSelect(true);
    Open(u"UNIT"_s);
    ASSERT_EQ(Lines().first(), u"FSELECTED\t1\t选择\tF"_s);
    Click(0, 1);
    EXPECT_TRUE(Grid->GetReadOnly());
    QTest::keyClicks(Grid, u"x"_s);
    EXPECT_EQ(Table.State(), dsBrowse);
    Click(1, 0);
    EXPECT_FALSE(Grid->GetReadOnly());
    EXPECT_EQ(Table.State(), dsBrowse) << "a tick is posted at once";
    EXPECT_EQ(ViewOf(Table, u"FSELECTED"_s), u"N >Y N"_s);
    Click(1, 0);
    Click(2, 0);
    EXPECT_EQ(ViewOf(Table, u"FSELECTED"_s), u"N N >Y"_s);

    {
        const PromptScript nothingIsAsked;
        QTest::keyClick(Grid, Qt::Key_Delete, Qt::ControlModifier);
        QTest::keyClick(Grid, Qt::Key_Insert);
        EXPECT_EQ(ViewOf(Table, u"FSELECTED"_s), u"N N >Y"_s) << "rows neither come nor go";
    }
    Table.SetFilter(u"UNITCODE='none'"_s);
    Table.SetFiltered(true);
    Grid->SetSelectedIndex(1);
    EXPECT_FALSE(Grid->GetReadOnly()) << "without rows the flag stays";
}

TEST_F(ExDBGridTest, PicturesHaveOneControlForEachColumn)
{
    Open(u"ITEM"_s);
    const auto images = [&] { return Window.findChildren<TExDBImage *>(); };
    ASSERT_EQ(images().size(), 1);
    TExDBImage *image = images().first();
    EXPECT_EQ(image->objectName(), u"_imgdbgItemsPicture"_s);
    EXPECT_EQ(image->parent(), &Window);
    EXPECT_TRUE(image->Stretch() && image->ReadOnly() && !image->isVisible());
    EXPECT_EQ(image->Field(), Table.FieldByName(u"PIC"));
    image->SetStretch(false);
    for (int i = 0; i < 100; ++i) {
        Table.Close();
        Open(u"ITEM"_s);
    }
    EXPECT_EQ(images(), (QList{image}));
    EXPECT_FALSE(image->Stretch()) << "it is used as it is";

    Grid->SetSelectedIndex(Grid->ColumnCount() - 2);
    ASSERT_EQ(Grid->GetActiveField(), Table.FieldByName(u"PIC"));
    EXPECT_TRUE(image->isVisible());
    const QPoint place = Grid->viewport()->mapFrom(&Window, image->geometry().center());
    EXPECT_TRUE(Grid->CellRect(Grid->CurrentCell()).contains(place));
    Grid->SetSelectedIndex(0);
    EXPECT_FALSE(image->isVisible());

    delete image;
    (new QObject(&Window))->setObjectName(u"_IMGdbgItemsPicture"_s);
    EXPECT_THROW(Grid->LinkActive(true), EInvalidCast);
    Grid->grab();
}

TEST_F(ExDBGridTest, DeletedRowsGoFromTheDatabaseToo)
{
    RegisterClass<TUnit>();
    Open(u"UNIT"_s);
    Table.SetCommitType(ctCommit); // without a session, so that the statement is refused
    Grid->SetOptions(Grid->Options() & ~dgConfirmDelete);
    EXPECT_THROW(QTest::keyClick(Grid, Qt::Key_Delete, Qt::ControlModifier), Exception);
    EXPECT_EQ(Table.RecordCount(), 3);
    Table.SetCommitType(ctBatchCommit);
    QTest::keyClick(Grid, Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(Table.RecordCount(), 2);
}

TEST_F(ExDBGridTest, TurnsOfTheWheelMoveTheRow)
{
    Open(u"UNIT"_s, 20);
    const int lines = QApplication::wheelScrollLines();
    EXPECT_TRUE(Grid->DoMouseWheel(-120));
    EXPECT_EQ(Table.RecNo(), 1 + lines);
    EXPECT_TRUE(Grid->DoMouseWheel(-7));
    EXPECT_EQ(Table.RecNo(), 1 + 2 * lines) << "whatever its size";
    EXPECT_TRUE(Grid->DoMouseWheel(960));
    EXPECT_EQ(Table.RecNo(), 1 + lines);
    EXPECT_TRUE(Grid->DoMouseWheel(0));
    Grid->OnMouseWheel = [](TwwDBGrid *, int, bool &handled) { handled = true; };
    EXPECT_FALSE(Grid->DoMouseWheel(120));
    EXPECT_EQ(Table.RecNo(), 1 + lines);
    Grid->OnMouseWheel = nullptr;
    Table.Close();
    EXPECT_TRUE(Grid->DoMouseWheel(120));
}

TEST_F(ExDBGridTest, TitlesSortAndColumnsFit)
{
    Open(u"ITEM"_s, 12);
    Grid->SetTitleButtons(true);
    const auto clickTitle = [&](int column) {
        QTest::mouseClick(Grid->viewport(), Qt::LeftButton, {}, Grid->Layout().TitleRect(column).center());
    };
    clickTitle(0);
    EXPECT_EQ(Table.IndexFieldNames(), u"ITEMCODE"_s);
    clickTitle(0);
    EXPECT_EQ(Shown().first(), u"9"_s);
    QString told;
    Grid->OnTitleButtonClick = [&](TwwDBGrid *, const QString &name) { told = name; };
    clickTitle(0);
    EXPECT_EQ(told, u"ItemCode"_s);
    EXPECT_EQ(Shown().first(), u"9"_s) << "a handler takes the sorting over";

    const int before = Grid->Layout().ColumnWidth(0);
    Grid->SetColumnAutoWidth(true);
    EXPECT_LT(Grid->Layout().ColumnWidth(0), before);
    Table.Close();
    Grid->SetColumnAutoWidth(true);
}

TEST_F(ExDBGridTest, TheHourGlassLastsAsLongAsADoubleClick)
{
    Open(u"UNIT"_s);
    TCursor seen = crDefault;
    Grid->OnDblClick = [&](TwwDBGrid *) {
        seen = ScreenCursor();
        throw Exception(u"失败"_s);
    };
    const QPoint place = Grid->CellRect({0, 0}).center();
    EXPECT_THROW(QTest::mouseDClick(Grid->viewport(), Qt::LeftButton, {}, place), Exception);
    EXPECT_EQ(seen, crHourGlass);
    EXPECT_EQ(ScreenCursor(), crDefault);
}

} // namespace

#include "test_ex_db_grid.moc"
