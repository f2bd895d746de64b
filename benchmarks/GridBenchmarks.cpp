// SPDX-License-Identifier: MIT
#include "GridBenchmarks.h"

#include "LargeTable.h"
#include "QtItems.h"
#include "controls/ExDBGrid.h"
#include "datasets/ExDB.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTableView>

using namespace Korvane;

namespace Bench {

namespace {

constexpr QSize WindowSize(1280, 800);
constexpr int PagesPerRun = 100;
constexpr int FirstRows = 1000;

/// Shows a window and has it painted before it returns.
void ShowPainted(QWidget &window)
{
    window.resize(WindowSize);
    window.show();
    window.repaint();
    QCoreApplication::processEvents();
}

/// A page down by the keyboard, the frame painted before the next one.
void PageDown(QAbstractScrollArea &view)
{
    QKeyEvent press(QEvent::KeyPress, Qt::Key_PageDown, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &press);
    view.viewport()->repaint();
}

/// Ours: the dataset with its grid.
struct TOurs
{
    explicit TOurs(TLargeTable &large) : Table(NewTable(large)) { Source.SetDataSet(Table.get()); }

    /// Opens so that the first rows are there at once.
    void OpenInSteps()
    {
        Table->SetFirstRows(FirstRows);
        Table->OpenTable();
    }
    void ShowGrid()
    {
        Grid = std::make_unique<TExDBGrid>();
        Grid->SetDataSource(&Source);
        ShowPainted(*Grid);
    }

    std::unique_ptr<TExTable> Table;
    TDataSource Source;
    std::unique_ptr<TExDBGrid> Grid;
};

/// Qt's: the model with its view.
struct TTheirs
{
    explicit TTheirs(const QSqlDatabase &database) : Model(database) {}

    void ShowView()
    {
        View = std::make_unique<QTableView>();
        View->setAlternatingRowColors(true);
        View->setModel(&Model);
        ShowPainted(*View);
    }
    /// Makes columns and rows as large as the grid's, so that both paint as many cells.
    void LookLike(const TwwDBGrid &grid)
    {
        View->verticalHeader()->setDefaultSectionSize(grid.RowHeights(0));
        for (int column = 0; column < grid.ColumnCount(); ++column)
            View->setColumnWidth(column, grid.Layout().ColumnWidth(column));
        ShowPainted(*View);
    }

    TQtItems Model;
    std::unique_ptr<QTableView> View;
};

/// What the comparisons share, each piece made at its first use.
class TWindows
{
public:
    explicit TWindows(std::shared_ptr<TLargeTable> large) : FLarge(std::move(large)) {}

    TLargeTable &Large() { return *FLarge; }
    const QSqlDatabase &QtDatabase()
    {
        if (!FQtDatabase.isOpen())
            FQtDatabase = OpenQtDatabase(QStringLiteral("grid"), FLarge->File());
        return FQtDatabase;
    }
    /// With the rows in memory.
    TOurs &Ours()
    {
        if (!FOurs) {
            FOurs = std::make_unique<TOurs>(*FLarge);
            FOurs->Table->OpenTable();
        }
        return *FOurs;
    }
    TTheirs &Theirs()
    {
        if (!FTheirs) {
            FTheirs = std::make_unique<TTheirs>(QtDatabase());
            FTheirs->Model.SelectAll();
        }
        return *FTheirs;
    }
    TwwDBGrid &Grid()
    {
        if (!Ours().Grid)
            Ours().ShowGrid();
        return *Ours().Grid;
    }
    /// As large in all as the grid.
    QTableView &View()
    {
        if (!Theirs().View)
            Theirs().ShowView();
        Theirs().LookLike(Grid());
        return *Theirs().View;
    }
    /// For measuring what holds nothing else.
    void Clear()
    {
        FOurs.reset();
        FTheirs.reset();
    }

private:
    const std::shared_ptr<TLargeTable> FLarge;
    QSqlDatabase FQtDatabase;
    std::unique_ptr<TOurs> FOurs;
    std::unique_ptr<TTheirs> FTheirs;
};
using TWindowsPtr = std::shared_ptr<TWindows>;

std::unique_ptr<TOurs> OpenInStepsAndPaint(TLargeTable &large)
{
    auto ours = std::make_unique<TOurs>(large);
    ours->OpenInSteps();
    ours->ShowGrid();
    return ours;
}

/// A way to the first page, beside Qt's model with all rows.
TComparison BesideAllRows(const QString &what, const TGoal &goal, const TWindowsPtr &windows,
                          const std::function<void()> &ours)
{
    return {.What = what,
            .Peer = QStringLiteral("QSqlTableModel fetched to the end in a QTableView"),
            .Goal = goal,
            .Ours = ours,
            .Theirs =
                [windows] {
                    TTheirs theirs(windows->QtDatabase());
                    theirs.Model.SelectAll();
                    theirs.ShowView();
                },
            .Prepare = [windows] { windows->QtDatabase(), windows->Large().Session(); },
            .Repetitions = 5,
            .PeerRepetitions = 2};
}

bool ShowsAsMuch(TWindows &windows)
{
    const QTableView &view = windows.View();
    const TGridLayout &layout = windows.Grid().Layout();
    const int theirRows = view.viewport()->height() / view.rowHeight(0);
    return view.model()->rowCount() == layout.RowCount && qAbs(theirRows - layout.FullRows()) <= 1;
}

} // namespace

QList<TComparison> GridComparisons(const std::shared_ptr<TLargeTable> &table)
{
    const auto windows = std::make_shared<TWindows>(table);
    return {
        BesideAllRows(QStringLiteral("open 1,000,000 rows in steps and paint the first page"), AtLeast(10),
                      windows, [windows] { OpenInStepsAndPaint(windows->Large()); }),
        BesideAllRows(QStringLiteral("the same, until the idle window has fetched all rows"), AtLeast(3),
                      windows,
                      [windows] {
                          const auto ours = OpenInStepsAndPaint(windows->Large());
                          while (!ours->Table->IsFetched())
                              QCoreApplication::processEvents();
                      }),
        BesideAllRows(QStringLiteral("open 1,000,000 rows at once and paint the first page"), AtLeast(3),
                      windows,
                      [windows] {
                          TOurs ours(windows->Large());
                          ours.Table->OpenTable();
                          ours.ShowGrid();
                      }),
        {.What = QStringLiteral("open 1,000,000 rows in steps and paint the first page, 1,000 rows there"),
         .Peer = QStringLiteral("QSqlTableModel that has fetched 256 rows in a QTableView"),
         .Goal = AtLeast(0.5),
         .Ours = [windows] { OpenInStepsAndPaint(windows->Large()); },
         .Theirs =
             [windows] {
                 TTheirs theirs(windows->QtDatabase());
                 theirs.Model.select();
                 theirs.ShowView();
             },
         .Prepare = [windows] { windows->QtDatabase(), windows->Large().Session(); },
         .Repetitions = 15},
        {.What = QStringLiteral("first paint of a new view of the same rows, which are in memory"),
         .Peer = QStringLiteral("QTableView on the fetched QSqlTableModel"),
         .Goal = AtLeast(1.5),
         .Ours = [windows] { windows->Ours().ShowGrid(); },
         .Theirs = [windows] { windows->Theirs().ShowView(); },
         .Prepare = [windows] { windows->Ours().Grid.reset(), windows->Theirs().View.reset(); },
         .Repetitions = 15},
        {.What = QStringLiteral("page down and paint, 100 times"),
         .Peer = QStringLiteral("QTableView on the fetched QSqlTableModel"),
         .Goal = Within(1.1),
         .Ours =
             [windows] {
                 TwwDBGrid &grid = windows->Grid();
                 for (int page = 0; page < PagesPerRun; ++page)
                     PageDown(grid);
             },
         .Theirs =
             [windows] {
                 QTableView &view = *windows->Theirs().View;
                 for (int page = 0; page < PagesPerRun; ++page)
                     PageDown(view);
             },
         .Prepare =
             [windows] {
                 windows->Grid(), windows->Ours().Table->First();
                 windows->View().setCurrentIndex(windows->Theirs().Model.index(0, 0));
             },
         .Same = [windows] { return ShowsAsMuch(*windows); }},
        {.What = QStringLiteral("memory of 1,000,000 rows in a window"),
         .Peer = QStringLiteral("QSqlTableModel fetched to the end in a QTableView"),
         .Goal = AtMost(1.0 / 3),
         .Ours =
             [windows] {
                 auto ours = std::make_shared<TOurs>(windows->Large());
                 ours->Table->OpenTable();
                 ours->ShowGrid();
                 return ours;
             },
         .Theirs =
             [windows] {
                 auto theirs = std::make_shared<TTheirs>(windows->QtDatabase());
                 theirs->Model.SelectAll();
                 theirs->ShowView();
                 return theirs;
             },
         .Prepare =
             [windows] {
                 windows->Clear();
                 windows->QtDatabase();
                 // The session keeps what it read last; that of an earlier read would be given
                 // back while this one is measured.
                 windows->Large().Session().Open(QStringLiteral("select 1"));
             },
         .Repetitions = 1},
    };
}

} // namespace Bench
