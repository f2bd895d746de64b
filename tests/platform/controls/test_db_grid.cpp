// SPDX-License-Identifier: MIT
// Columns, the current cell, titles, totals and painting of a grid.
#include "platform/controls/GridTesting.h"
#include "platform/data/dataset/Fields.h"
#include "platform/graphics/ImageList.h"

#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

std::unique_ptr<TClientDataSet> Items(int count = 5)
{
    QList<QVariantList> rows;
    for (int i = 0; i < count; ++i)
        rows += {u"A%1"_s.arg(i), i % 2 == 0 ? u"Y"_s : u"N"_s, (i + 1) * 10, u"品名%1"_s.arg(i)};
    return DataSetOf({{"CODE", ftString, 10}, {"STOPPED", ftString, 1}, {"QTY", ftInteger}, {"NAME", ftString, 20}},
                     rows);
}

TEST(DBGrid, BuildsColumnsFromLinesOrFields)
{
    auto set = Items();
    set->FieldByName(u"NAME")->SetVisible(false);
    TGridWindow grid(*set);
    EXPECT_EQ(grid.Titles(), u"CODE STOPPED QTY"_s) << "without a list the visible fields";

    grid->SetSelected({u"qty\t6\t数量\tT"_s, u"MISSING\t5\t没有"_s, u"CODE"_s});
    EXPECT_EQ(grid.Titles(), u"数量 CODE"_s) << "a name that the dataset does not have makes no column";
    EXPECT_TRUE(grid->Columns(0)->ReadOnly());
    EXPECT_EQ(grid->ColumnByName(u"Code"_s), grid->Columns(1));
    EXPECT_EQ(grid->ColumnByName(u"MISSING"_s), nullptr);
    EXPECT_EQ(grid->Columns(1)->GetDisplayWidth(), set->FieldByName(u"CODE")->DisplayWidth());

    grid->BeginUpdate();
    grid->BeginUpdate();
    grid->GetSelectedFields() = {u"CODE"_s};
    grid->EndUpdate(false);
    EXPECT_EQ(grid->ColumnCount(), 2);
    grid->EndUpdate(false);
    EXPECT_EQ(grid->ColumnCount(), 1);

    set->Close();
    EXPECT_EQ(grid->ColumnCount(), 0);
    EXPECT_TRUE(grid->CurrentCell().IsNull());
    EXPECT_EQ(grid->Selected(), (QStringList{u"CODE"_s}));
}

TEST(DBGrid, FollowsTheDatasetAndLeadsIt)
{
    auto set = Items(100);
    TGridWindow grid(*set);
    set->Locate(u"CODE"_s, u"A50"_s);
    EXPECT_EQ(grid.Place(), u"50,0 browse"_s);
    EXPECT_TRUE(grid->Layout().RowsArea().contains(grid->CellRect(grid->CurrentCell())));
    grid.Type(u"<Down><Right><Right>"_s);
    EXPECT_EQ(grid.Place(), u"51,2 browse"_s);
    EXPECT_EQ(set->FieldByName(u"CODE")->AsString(), u"A51"_s);
    EXPECT_EQ(grid->GetActiveField()->FieldName(), u"QTY"_s);

    struct
    {
        QString Keys;
        QString Place;
    } const steps[] = {
        {u"<Home>"_s, u"51,0 browse"_s},      {u"<End>"_s, u"51,3 browse"_s},
        {u"<Ctrl+Home>"_s, u"0,3 browse"_s},  {u"<Up>"_s, u"0,3 browse"_s},
        {u"<Ctrl+End>"_s, u"99,3 browse"_s},  {u"<Right>"_s, u"99,3 browse"_s},
        {u"<Tab>"_s, u"99,3 browse"_s},       {u"<Shift+Tab>"_s, u"99,2 browse"_s},
        {u"<Ctrl+Left>"_s, u"99,0 browse"_s}, {u"<Shift+Tab>"_s, u"98,3 browse"_s},
        {u"<Tab>"_s, u"99,0 browse"_s},
    };
    grid->SetKeyOptions({});
    for (const auto &step : steps) {
        grid.Type(step.Keys);
        EXPECT_EQ(grid.Place(), step.Place) << step.Keys.toStdString();
    }
    const int page = grid->Layout().FullRows();
    grid.Type(u"<PgUp>"_s);
    EXPECT_EQ(grid->CurrentCell().Row, 99 - page);

    grid.Click(90, 1);
    EXPECT_EQ(grid.Place(), u"90,1 browse"_s);
    EXPECT_EQ(set->RecNo(), 91);
}

TEST(DBGrid, IsLeftByTheKeyboard)
{
    auto set = Items();
    TGridWindow grid(*set);
    QLineEdit before(&grid.FWindow), after(&grid.FWindow);
    QWidget::setTabOrder(&before, grid.Grid);
    QWidget::setTabOrder(grid.Grid, &after);
    before.show(), after.show();
    grid.Type(u"<Ctrl+Tab>"_s);
    EXPECT_TRUE(after.hasFocus());
    grid->setFocus();
    grid.Type(u"<Ctrl+Shift+Backtab>"_s);
    EXPECT_TRUE(before.hasFocus());
    grid->setFocus();
    grid->SetOptions(grid->Options() & ~dgTabs);
    grid.Type(u"<Tab>"_s);
    EXPECT_TRUE(after.hasFocus());
    EXPECT_EQ(grid.Place(), u"0,0 browse"_s);
}

TEST(DBGrid, ScrollsWithoutMovingTheRow)
{
    auto set = Items(1000);
    TGridWindow grid(*set);
    TLinkRecorder links(*set);
    links.Take();
    grid->verticalScrollBar()->setValue(500);
    EXPECT_EQ(grid->Layout().TopRow, 500);
    QWheelEvent wheel({50, 50}, grid->mapToGlobal(QPointF(50, 50)), {}, {0, -240}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(grid->viewport(), &wheel);
    EXPECT_EQ(grid->Layout().TopRow, 500 + 2 * QApplication::wheelScrollLines());
    grid->grab();
    EXPECT_EQ(set->RecNo(), 1);
    EXPECT_EQ(links.Take(), QString()) << "painting other rows tells nobody anything";
    grid.Type(u"<Down>"_s);
    EXPECT_EQ(grid->Layout().TopRow, 1) << "the current row comes back into sight";
}

TEST(DBGrid, TellsEnteredColumnsAndRefusals)
{
    auto set = Items();
    TGridWindow grid(*set);
    QStringList told;
    grid->OnColEnter = [&](TwwDBGrid *sender) { told += u"enter "_s + sender->GetActiveField()->FieldName(); };
    grid->OnColExit = [&](TwwDBGrid *sender) { told += u"exit "_s + sender->GetActiveField()->FieldName(); };
    grid->OnRowChanged = [&](TwwDBGrid *) { told += u"row"_s; };
    grid.Type(u"<Right><Down>"_s);
    grid.Click(3, 0);
    EXPECT_EQ(told.join(u','), u"exit CODE,enter STOPPED,row,row,exit STOPPED,enter CODE"_s);

    set->BeforeScroll = [](TDataSet *) { throw Exception(u"不能离开"_s); };
    EXPECT_THROW(grid.Type(u"<Down>"_s), Exception);
    EXPECT_EQ(grid.Place(), u"3,0 browse"_s);
    set->BeforeScroll = nullptr;
    grid.Type(u"<Down>"_s);
    EXPECT_EQ(grid.Place(), u"4,0 browse"_s);
}

TEST(DBGrid, MovesSizesAndHidesColumnsAsTheUserWants)
{
    auto set = Items();
    TGridWindow grid(*set);
    grid->SetSelectedIndex(2);
    const QString before = grid->SaveLayout();
    grid.Drag(grid.TitleOf(0), grid.TitleOf(2) + QPoint(20, 0));
    EXPECT_EQ(grid.Titles(), u"STOPPED QTY CODE NAME"_s);
    EXPECT_EQ(grid->GetActiveField()->FieldName(), u"QTY"_s) << "the current column is the same one";
    const QRect title = grid->Layout().TitleRect(0);
    grid.Drag({title.right(), 5}, {title.right() + 40, 5});
    EXPECT_EQ(grid->Layout().TitleRect(0).width(), title.width() + 40);
    grid->ColumnByName(u"NAME"_s)->SetVisible(false);
    EXPECT_EQ(grid.Titles(), u"STOPPED QTY CODE"_s);

    const QString layout = grid->SaveLayout();
    set->SetData(set->Data());
    EXPECT_EQ(grid.Titles(), u"STOPPED QTY CODE NAME"_s) << "what was set by the program is not the user's";
    grid->RestoreLayout(layout);
    EXPECT_EQ(grid->SaveLayout(), layout);
    grid->ApplySelected();
    EXPECT_EQ(grid->SaveLayout(), layout);
    EXPECT_EQ(grid->Layout().TitleRect(0).width(), title.width() + 40);
    grid->ResetLayout();
    EXPECT_EQ(grid->SaveLayout(), before);

    for (const QString &bad : {u"no"_s, u"{}"_s, u"[{\"field\":\"\"}]"_s, u"[{\"field\":\"QTY\",\"width\":-1}]"_s})
        EXPECT_EQ(KindRaised([&] { grid->RestoreLayout(bad); }), u"EConvertError"_s) << bad.toStdString();
    EXPECT_EQ(grid->SaveLayout(), before);
}

TEST(DBGrid, TheMenuOfTheTitlesHidesAndShowsColumns)
{
    auto set = Items();
    TGridWindow grid(*set);
    const auto choose = [&](const QString &entry) {
        const QPoint place = grid.TitleOf(0);
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, grid->viewport()->mapToGlobal(place));
        QApplication::sendEvent(grid->viewport(), &event);
        auto *menu = grid->findChild<QMenu *>();
        bool isEnabled = false;
        for (QAction *action : menu->actions())
            if (action->text() == entry) {
                isEnabled = action->isEnabled();
                action->trigger();
            }
        delete menu;
        return isEnabled;
    };
    EXPECT_TRUE(choose(u"CODE"_s));
    EXPECT_TRUE(choose(u"QTY"_s));
    EXPECT_EQ(grid.Titles(), u"STOPPED NAME"_s);
    set->SetData(set->Data());
    EXPECT_EQ(grid.Titles(), u"STOPPED NAME"_s) << "also for columns that come later";
    EXPECT_TRUE(choose(u"CODE"_s));
    EXPECT_TRUE(choose(u"NAME"_s));
    EXPECT_TRUE(choose(u"STOPPED"_s));
    EXPECT_FALSE(choose(u"CODE"_s)) << "the last column stays";
    EXPECT_EQ(grid.Titles(), u"CODE"_s);
    EXPECT_TRUE(choose(u"恢复默认布局"_s));
    EXPECT_EQ(grid.Titles(), u"CODE STOPPED QTY NAME"_s);
}

TEST(DBGrid, PressesTitlesAndMarksTheOrder)
{
    auto set = Items();
    TGridWindow grid(*set);
    QStringList pressed;
    grid->OnTitleButtonClick = [&](TwwDBGrid *, const QString &name) { pressed += name; };
    grid.ClickTitle(2);
    EXPECT_TRUE(pressed.isEmpty()) << "titles are no buttons";
    grid->SetTitleButtons(true);
    grid.ClickTitle(2);
    grid.Drag(grid.TitleOf(1), grid.TitleOf(1) + QPoint(1, 1));
    EXPECT_EQ(pressed, (QStringList{u"QTY"_s, u"STOPPED"_s}));

    QMap<QString, std::optional<Qt::SortOrder>> marks;
    grid->OnCalcTitleImage = [&](TwwDBGrid *, TField *field, TTitleImageAttributes &attributes) {
        marks[field->FieldName()] = attributes.SortMark;
    };
    set->SetIndexFieldNames(u"qty"_s);
    grid->grab();
    EXPECT_EQ(marks[u"QTY"_s], Qt::AscendingOrder);
    EXPECT_EQ(marks[u"CODE"_s], std::nullopt);
    set->AddIndex(u"DOWN"_s, u"CODE"_s, ixDescending);
    set->SetIndexName(u"DOWN"_s);
    grid->grab();
    EXPECT_EQ(marks[u"QTY"_s], std::nullopt);
    EXPECT_EQ(marks[u"CODE"_s], Qt::DescendingOrder);
}

TEST(DBGrid, TotalsFollowTheRows)
{
    auto set = Items();
    const TDataPacket rows = set->Data();
    set->Close();
    auto *doubled = new TFloatField(set.get());
    doubled->SetFieldName(u"DOUBLE"_s);
    doubled->SetFieldKind(fkCalculated);
    doubled->SetDataSet(set.get());
    doubled->SetDisplayFormat(u"#,##0.00"_s);
    set->OnCalcFields = [doubled](TDataSet *each) {
        doubled->SetAsFloat(each->FieldByName(u"QTY")->AsFloat() * 200);
    };
    set->SetData(rows);
    TGridWindow grid(*set);
    grid->SetOptions(grid->Options() | dgShowFooter);
    const auto feet = [&] {
        QStringList texts;
        for (int column = 0; column < grid->ColumnCount(); ++column)
            texts += grid->FooterText(column);
        return texts.join(u'|');
    };
    grid->SetFooterKind(u"CODE"_s, fkCount);
    grid->SetFooterKind(u"QTY"_s, fkSum);
    grid->SetFooterKind(u"NAME"_s, fkSum);
    grid->SetFooterKind(u"DOUBLE"_s, fkSum);
    EXPECT_EQ(feet(), u"5||150||30,000.00"_s) << "texts have no sum";
    Do(*set, u"edit;QTY=11;post"_s);
    EXPECT_EQ(feet(), u"5||151||30,200.00"_s);
    set->SetFilter(u"QTY>30"_s);
    set->SetFiltered(true);
    EXPECT_EQ(feet(), u"2||90||18,000.00"_s);
    set->SetFilter(u"QTY>99"_s);
    EXPECT_EQ(feet(), u"0||||"_s);
    grid->SetFooterValue(u"STOPPED"_s, u"合计"_s);
    EXPECT_EQ(feet(), u"0|合计|||"_s);
}

/// The colour in the middle of a cell's left edge, where no text is.
QColor ColorOf(TGridWindow &grid, qsizetype row, int column)
{
    const QImage image = grid->viewport()->grab().toImage();
    const QRect cell = grid->CellRect({row, column});
    return image.pixelColor((QPointF(cell.left() + 2, cell.center().y()) * image.devicePixelRatio()).toPoint());
}

/// The number of different colours within a cell.
qsizetype ColorsIn(TGridWindow &grid, qsizetype row, int column)
{
    const QImage image = grid->viewport()->grab(grid->CellRect({row, column}).adjusted(2, 2, -2, -2)).toImage();
    QSet<QRgb> colors;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            colors += image.pixel(x, y);
    return colors.size();
}

TEST(DBGrid, PaintsRowsAndBlocksInTheirColours)
{
    auto set = Items(8);
    TGridWindow grid(*set);
    grid->SetPaintOptions({TColor(0xE0F0E0), TColor(0x804000)});
    grid->OnCalcCellColors = [](TwwDBGrid *, TField *field, const TGridCell &, TCellColors &colors) {
        if (field->FieldName() == u"QTY" && field->AsInteger() > 60)
            colors.Fill = Qt::red;
    };
    grid->SetSelectedIndex(3);
    const QColor active(0x00, 0x40, 0x80), alternating(0xE0, 0xF0, 0xE0);
    EXPECT_EQ(ColorOf(grid, 0, 0), active);
    EXPECT_EQ(ColorOf(grid, 1, 0), alternating);
    EXPECT_EQ(ColorOf(grid, 2, 0), grid->palette().color(QPalette::Base));
    EXPECT_EQ(ColorOf(grid, 6, 2), QColor(Qt::red)) << "each cell is asked with its own row's value";
    EXPECT_EQ(ColorOf(grid, 5, 2), alternating);
    // Texts are there in every row, also beside frozen columns.
    for (const int frozen : {0, 1}) {
        grid->SetFixedCols(frozen);
        for (qsizetype row = 0; row < 8; ++row)
            EXPECT_GT(ColorsIn(grid, row, 3), 3) << row;
    }
    grid->SetFixedCols(0);
    grid.Type(u"<Shift+Down><Shift+Down><Shift+Left>"_s);
    EXPECT_EQ(grid->SelectedBlock().Bottom, 2);
    EXPECT_EQ(ColorOf(grid, 2, 2), grid->palette().color(QPalette::Highlight));
    EXPECT_EQ(ColorOf(grid, 2, 1), grid->palette().color(QPalette::Base));
    EXPECT_EQ(set->RecNo(), 1) << "marking moves nothing";
    grid.Type(u"<Down>"_s);
    EXPECT_TRUE(grid->SelectedBlock().IsSingleCell());
}

TEST(DBGrid, TellsOfFailuresInPaintingOnce)
{
    auto set = Items();
    set->FieldByName(u"NAME")->OnGetText = [](TField *, QString &, bool) { throw Exception(u"读不出"_s); };
    TGridWindow grid(*set);
    grid->grab();
    grid->grab();
    EXPECT_EQ(RaisedBy([] { QCoreApplication::processEvents(); }), u"Exception: 读不出"_s);
    grid->grab();
    EXPECT_EQ(RaisedBy([] { QCoreApplication::processEvents(); }), u"nothing"_s);
}

TEST(DBGrid, FrozenColumnsStayAndWideOnesComeIntoSight)
{
    auto set = Items();
    TGridWindow grid(*set);
    grid->SetFixedCols(1);
    for (int column = 0; column < grid->ColumnCount(); ++column)
        grid->Columns(column)->SetDisplayWidth(30);
    grid.Type(u"<End>"_s);
    EXPECT_GT(grid->Layout().Offset, 0);
    EXPECT_EQ(grid->CellRect({0, 0}).left(), grid->Layout().IndicatorWidth);
    EXPECT_LE(grid->CellRect({0, 3}).right(), grid->Layout().Size.width());
    grid.Type(u"<Home><Right>"_s);
    EXPECT_EQ(grid->CellRect({0, 1}).left(), grid->CellRect({0, 0}).right() + 1);
    QFont font = grid->font();
    const int width = grid->CellRect({0, 0}).width(), height = grid->RowHeights(0);
    font.setPixelSize(28);
    grid->setFont(font);
    EXPECT_GT(grid->CellRect({0, 0}).width(), width * 3 / 2) << "widths are in characters";
    EXPECT_GT(grid->RowHeights(0), height * 3 / 2);
}

TEST(DBGrid, SurvivesTheEndOfWhatItShowsInAnyOrder)
{
    const auto parts = [] {
        struct TParts
        {
            std::unique_ptr<TClientDataSet> Set = Items();
            std::unique_ptr<TDataSource> Source = std::make_unique<TDataSource>();
            std::unique_ptr<TImageList> Images = std::make_unique<TImageList>();
            std::unique_ptr<TwwDBGrid> Grid = std::make_unique<TwwDBGrid>();
        };
        auto all = std::make_unique<TParts>();
        all->Source->SetDataSet(all->Set.get());
        all->Grid->SetTitleImageList(all->Images.get());
        all->Grid->SetDataSource(all->Source.get());
        all->Grid->show();
        EXPECT_TRUE(all->Grid->EditCell());
        return all;
    };
    std::array order = {0, 1, 2, 3};
    do {
        auto all = parts();
        for (const int part : order) {
            if (part == 0)
                all->Set.reset();
            else if (part == 1)
                all->Source.reset();
            else if (part == 2)
                all->Images.reset();
            else
                all->Grid.reset();
            if (all->Grid)
                all->Grid->grab();
            QCoreApplication::processEvents();
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

/// A grid on a dataset of 100 rows that has fetched 20.
struct TFetchingGrid
{
    TFetchingGrid()
    {
        Set.SetData(TTestFeed::Begin(Feed, 20));
        Window = std::make_unique<TGridWindow>(Set);
        (*Window)->SetOptions((*Window)->Options() | dgShowFooter);
        (*Window)->SetFooterKind(u"QTY"_s, fkSum);
    }
    /// The fetched rows, the first one that is painted, the current cell and the sum.
    QString Text() const
    {
        const TwwDBGrid &grid = **Window;
        return u"%1 top %2 at %3 sum %4"_s.arg(grid.Layout().RowCount)
            .arg(grid.Layout().TopRow)
            .arg(Window->Place(), grid.FooterText(2));
    }

    const std::shared_ptr<TTestFeed> Feed = std::make_shared<TTestFeed>(Items(100)->Data(), 5);
    TClientDataSet Set;
    std::unique_ptr<TGridWindow> Window;
};

TEST(DBGrid, FetchesTheOtherRowsWhileNothingElseIsDone)
{
    TFetchingGrid fetching;
    TGridWindow &grid = *fetching.Window;
    grid->grab();
    EXPECT_EQ(fetching.Text(), u"20 top 0 at 0,0 browse sum "_s) << "the first page is there, and no sum yet";
    grid.Click(3, 2);
    grid->verticalScrollBar()->setValue(5);
    EXPECT_TRUE(QTest::qWaitFor([&] { return fetching.Set.IsFetched(); }));
    EXPECT_EQ(fetching.Text(), u"100 top 5 at 3,2 browse sum 50500"_s) << "row and scroll bar stay";
    EXPECT_GT(grid->verticalScrollBar()->maximum(), 80);

    TFetchingGrid broken;
    broken.Feed->Break(u"断线"_s);
    EXPECT_THROW(QCoreApplication::processEvents(), EDatabaseError);
    QCoreApplication::processEvents(); // told once
    EXPECT_EQ(broken.Window->Grid->Layout().RowCount, 20);

    TFetchingGrid closed;
    closed.Set.Close();
    QCoreApplication::processEvents();
    EXPECT_EQ(closed.Window->Grid->Layout().RowCount, 0);
}

TEST(DBGrid, KeysAndEditsReachRowsThatAreStillToBeFetched)
{
    const struct
    {
        QString Keys, Place;
        qsizetype Rows;
    } rows[] = {
        {u"<Down><Up><End><Home>"_s, u"0,0 browse"_s, 20},
        {u"<PgDown><Right>"_s, u"%1,1 browse"_s, 20},
        {u"<Ctrl+End>"_s, u"99,0 browse"_s, 100},
        {u"<Down><Down><Down><Down><Down><Down><Down><Down><Down><Down>"
         "<Down><Down><Down><Down><Down><Down><Down><Down><Down><Down>"_s,
         u"20,0 browse"_s, 100},
        {u"<Shift+Ctrl+End>"_s, u"0,0 browse"_s, 100},
        {u"<F2>"_s, u"0,0 browse*"_s, 20},
        {u"<F2>x"_s, u"0,0 edit*"_s, 100},
    };
    for (const auto &row : rows) {
        TFetchingGrid fetching;
        const int page = fetching.Window->Grid->Layout().FullRows();
        fetching.Window->Type(row.Keys);
        EXPECT_EQ(fetching.Window->Place(), row.Place.contains(u"%1") ? row.Place.arg(page) : row.Place)
            << row.Keys.toStdString();
        EXPECT_EQ(fetching.Set.FetchedCount(), row.Rows) << row.Keys.toStdString();
    }
    TFetchingGrid marked;
    marked.Window->Type(u"<Shift+Ctrl+End>"_s);
    EXPECT_EQ(marked.Window->Grid->SelectedBlock().Bottom, 99);
    TFetchingGrid chosen;
    chosen.Window->Grid->SetCurrentCell({70, 1});
    EXPECT_EQ(chosen.Window->Place(), u"70,1 browse"_s);
}

TEST(DBGrid, ReopeningKeepsNothing)
{
    auto set = Items(50);
    TGridWindow grid(*set);
    grid->grab();
    const auto objects = [&] { return grid->findChildren<QObject *>().size(); };
    const qsizetype before = objects();
    const TDataPacket rows = set->Data();
    for (int i = 0; i < 100; ++i) {
        grid.Click(3, 2);
        grid.Type(u"7"_s);
        EXPECT_TRUE(grid->IsEditing());
        set->Cancel();
        set->Close();
        grid->grab();
        set->SetData(rows);
        grid->grab();
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(objects(), before);
    EXPECT_EQ(set->ChangeCount(), 0);
}

} // namespace
