// SPDX-License-Identifier: MIT
// What screen readers see of a grid, and what they are told.
#include "platform/controls/GridTesting.h"
#include "platform/controls/grid/DBGridAccessible.h"

#include <QAccessible>

#include <set>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

std::unique_ptr<TClientDataSet> Items()
{
    return DataSetOf({{"CODE", ftString, 10}, {"STOPPED", ftString, 1}, {"QTY", ftInteger}, {"PIC", ftBlob}},
                     {{"A1", "N", 10, {}}, {"A2", "Y", 20, {}}, {"A3", "N", 30, {}}});
}

/// A grid that a screen reader listens to. Notes its events: "focus 2,1", "select 2,1", "name 2,1", "state
/// 2,1", "reset".
class TReadGrid : public TGridWindow
{
public:
    explicit TReadGrid(TDataSet &set) : TGridWindow(set)
    {
        Grid->SetControlType({u"STOPPED;CheckBox;Y;N"_s});
        GridAccessibilityListener() = [this](QAccessibleEvent &event) { Note(event); };
        Table(); // a reader looks at what it listens to
    }
    ~TReadGrid() { GridAccessibilityListener() = nullptr; }

    QAccessibleInterface *Root() const { return QAccessible::queryAccessibleInterface(Grid); }
    QAccessibleTableInterface *Table() const { return Root()->tableInterface(); }
    QAccessibleInterface *Cell(int row, int column) const { return Table()->cellAt(row, column); }
    /// "name" and the letters of its states: s selected, f focused, e editable, c checkable, x checked, o out
    /// of sight.
    static QString Told(const QAccessibleInterface *cell)
    {
        const QAccessible::State state = cell->state();
        QString letters;
        letters += state.selected ? u"s"_s : QString();
        letters += state.focused ? u"f"_s : QString();
        letters += state.editable ? u"e"_s : QString();
        letters += state.checkable ? u"c"_s : QString();
        letters += state.checked ? u"x"_s : QString();
        letters += state.offscreen ? u"o"_s : QString();
        return cell->text(QAccessible::Name) + u' ' + letters;
    }
    QString Take() { return std::exchange(FNotes, {}).join(u' '); }

private:
    void Note(QAccessibleEvent &event)
    {
        static const QHash<int, QString> names = {{QAccessible::Focus, u"focus"_s},
                                                  {QAccessible::Selection, u"select"_s},
                                                  {QAccessible::NameChanged, u"name"_s},
                                                  {QAccessible::StateChanged, u"state"_s}};
        if (event.type() == QAccessible::TableModelChanged)
            FNotes += u"reset"_s;
        QAccessibleInterface *cell = event.child() < 0 ? nullptr : event.accessibleInterface();
        if (names.contains(event.type()) && cell && cell->tableCellInterface())
            FNotes += u"%1:%2,%3"_s.arg(names[event.type()])
                          .arg(cell->tableCellInterface()->rowIndex())
                          .arg(cell->tableCellInterface()->columnIndex());
    }

    QStringList FNotes;
};

TEST(GridAccessibility, CellsAreReadWithoutMovingTheDataSet)
{
    auto set = Items();
    TReadGrid grid(*set);
    set->FieldByName(u"CODE")->SetDisplayLabel(u"编号"_s);
    set->First();
    TDataSetRecorder events(*set);
    EXPECT_EQ(grid.Root()->role(), QAccessible::Table);
    EXPECT_EQ(grid.Table()->rowCount(), 3);
    EXPECT_EQ(grid.Table()->columnCount(), 4);
    const char *const texts[3][4] = {{"A1 sfe", "STOPPED ec", "10 e", " "},
                                     {"A2 e", "STOPPED ecx", "20 e", " "},
                                     {"A3 e", "STOPPED ec", "30 e", " "}};
    std::set<QAccessible::Id> ids;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column) {
            QAccessibleInterface *cell = grid.Cell(row, column);
            EXPECT_EQ(TReadGrid::Told(cell), QString::fromUtf8(texts[row][column]));
            EXPECT_EQ(cell, grid.Cell(row, column)) << "a cell has one interface";
            EXPECT_EQ(cell->parent(), grid.Root());
            EXPECT_EQ(grid.Root()->child(grid.Root()->indexOfChild(cell)), cell);
            const QPoint center = grid->viewport()->mapToGlobal(grid->CellRect({row, column}).center());
            EXPECT_TRUE(cell->rect().contains(center));
            EXPECT_EQ(grid.Root()->childAt(center.x(), center.y()), cell);
            ids.insert(QAccessible::uniqueId(cell));
        }
    EXPECT_EQ(ids.size(), 12U);
    EXPECT_EQ(events.Take(), QString());
    EXPECT_EQ(ViewOf(*set, u"CODE"_s), u">A1 A2 A3"_s);

    QAccessibleInterface *title = grid.Cell(1, 0)->tableCellInterface()->columnHeaderCells().value(0);
    ASSERT_TRUE(title);
    EXPECT_EQ(title->role(), QAccessible::ColumnHeader);
    EXPECT_EQ(title->text(QAccessible::Name), u"编号"_s);
    EXPECT_EQ(grid.Table()->columnDescription(0), u"编号"_s);
    EXPECT_EQ(grid.Cell(1, 0)->text(QAccessible::Description), u"编号"_s);
    EXPECT_EQ(grid.Root()->indexOfChild(title), 0);
    const QPoint place = title->rect().center();
    EXPECT_EQ(grid.Root()->childAt(place.x(), place.y()), title);
    grid->SetOptions(grid->Options() & ~dgTitles);
    EXPECT_FALSE(title->isValid());
    EXPECT_EQ(grid.Root()->child(0), grid.Cell(0, 0));
    for (const auto &[row, column] : {std::pair(-1, 0), {3, 0}, {0, -1}, {0, 4}})
        EXPECT_FALSE(grid.Cell(row, column)) << row << ',' << column;
    // Behind the cells come the widgets, and nothing behind them.
    EXPECT_EQ(grid.Root()->child(12)->object(), grid->viewport());
    EXPECT_FALSE(grid.Root()->child(grid.Root()->childCount()));

    set->FieldByName(u"QTY")->OnGetText = [](TField *, QString &, bool) { throw Exception(u"no text"_s); };
    EXPECT_EQ(grid.Cell(1, 2)->text(QAccessible::Name), QString());
    grid->viewport()->setUpdatesEnabled(false); // painting would raise it
}

TEST(GridAccessibility, ChangesAreTold)
{
    auto set = Items();
    TReadGrid grid(*set);
    set->First();
    grid.Take();
    struct
    {
        QString Keys;
        QString Told;
    } const cases[] = {
        {u"<Down>"_s, u"select:1,0 focus:1,0"_s},
        {u"<Right>"_s, u"select:1,1 focus:1,1"_s},
        {u"<Space>"_s, u"state:1,1"_s},
        {u"<Right>7<Enter>"_s, u"select:1,2 focus:1,2 name:1,2 focus:1,2"_s},
        {u"<Esc>"_s, u"name:1,2"_s}, // the row is as it was
        {u"<Ins>"_s, u"reset name:1,2"_s},
        {u"<Down>"_s, u"reset name:1,2"_s}, // an empty new row goes, and the next row takes its place
        {u"<F2>"_s, u""_s},                 // the editor speaks for itself,
        {u"<Esc>"_s, u"focus:1,2"_s},
    };
    for (const auto &each : cases) {
        grid.Type(each.Keys);
        QString told = grid.Take();
        EXPECT_EQ(told, each.Told) << each.Keys.toStdString();
    }
    EXPECT_EQ(TReadGrid::Told(grid.Root()->focusChild()), u"20 sfe"_s);

    grid->MoveColumn(0, 3);
    EXPECT_TRUE(grid.Take().startsWith(u"reset"_s)) << "as many columns, but others";
    grid->SetDataSource(nullptr);
    EXPECT_EQ(grid.Table()->columnCount(), 0);
    EXPECT_EQ(grid.Take(), u"reset"_s);
}

TEST(GridAccessibility, BlocksAreMarkedByRowsAndColumns)
{
    auto set = Items();
    TReadGrid grid(*set);
    set->First();
    QAccessibleTableInterface *table = grid.Table();
    EXPECT_EQ(table->selectedCells(), QList{grid.Cell(0, 0)});
    EXPECT_TRUE(table->selectRow(1));
    EXPECT_EQ(table->selectedRows(), QList{1});
    EXPECT_EQ(table->selectedCellCount(), 4);
    EXPECT_EQ(table->selectedColumnCount(), 0);
    EXPECT_TRUE(grid.Cell(1, 3)->tableCellInterface()->isSelected());
    EXPECT_TRUE(table->unselectRow(1));
    EXPECT_EQ(table->selectedCells(), QList{grid.Cell(1, 0)});
    EXPECT_TRUE(table->selectColumn(2));
    EXPECT_TRUE(table->isColumnSelected(2));
    EXPECT_FALSE(table->isRowSelected(0));
    EXPECT_EQ(table->selectedCellCount(), 3);
    EXPECT_FALSE(table->selectRow(3));
    EXPECT_FALSE(table->selectColumn(-1));
    grid->SetOptions(grid->Options() | dgRowSelect);
    EXPECT_TRUE(table->selectRow(2));
    EXPECT_EQ(table->selectedRows(), QList{2});
    EXPECT_EQ(set->RecNo(), 3);

    // A refusal is shown from the event loop, and the row stays.
    grid->SetOptions(grid->Options() & ~dgRowSelect);
    set->BeforePost = [](TDataSet *) { throw Exception(u"不能保存"_s); };
    Do(*set, u"edit;QTY=1"_s);
    EXPECT_FALSE(table->selectRow(0));
    EXPECT_EQ(set->RecNo(), 3);
    EXPECT_EQ(RaisedBy([] { QApplication::processEvents(); }), u"Exception: 不能保存"_s);
    set->Cancel();
    set->BeforePost = nullptr;

    QAccessibleActionInterface *actions = grid.Cell(0, 1)->actionInterface();
    EXPECT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::toggleAction()));
    actions->doAction(QAccessibleActionInterface::toggleAction());
    QApplication::processEvents();
    EXPECT_EQ(RowOf(*set), u"A1|Y|10|~"_s);
}

TEST(GridAccessibility, CellsGoWithRowsColumnsAndGrid)
{
    auto set = Items();
    QList<QAccessible::Id> ids;
    QPointer<TwwDBGrid> alive;
    {
        TReadGrid grid(*set);
        alive = grid.Grid;
        const auto idOf = [&](int row) { return QAccessible::uniqueId(grid.Cell(row, 0)); };
        ids = {idOf(0), idOf(2)};
        Do(*set, u"last;delete"_s);
        EXPECT_EQ(grid.Take().count(u"reset"_s), 1);
        for (const QAccessible::Id id : ids)
            EXPECT_FALSE(QAccessible::accessibleInterface(id)) << "dropped with the rows";
        EXPECT_FALSE(grid.Cell(2, 0));
        // While controls are disabled the grid does not know yet, and the cell has nothing to read.
        QAccessibleInterface *last = grid.Cell(1, 0);
        set->DisableControls();
        set->Delete();
        EXPECT_FALSE(last->isValid());
        EXPECT_EQ(last->text(QAccessible::Name), QString());
        EXPECT_EQ(last->rect(), QRect());
        EXPECT_TRUE(last->state().invalid);
        set->EnableControls();
        ids = {QAccessible::uniqueId(grid.Root()), idOf(0)};
        EXPECT_TRUE(QAccessible::accessibleInterface(ids[1]));
    }
    EXPECT_FALSE(alive);
    for (const QAccessible::Id id : ids)
        EXPECT_FALSE(QAccessible::accessibleInterface(id));
}

} // namespace
