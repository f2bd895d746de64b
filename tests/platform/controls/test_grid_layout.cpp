// SPDX-License-Identifier: MIT
#include "platform/controls/grid/GridColumn.h"
#include "platform/controls/grid/GridLayout.h"
#include "platform/controls/grid/TabText.h"

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

/// Five columns of 100 pixels, the first one frozen, in 300 pixels; rows of 20 in 3 and a half rows.
TGridLayout Sample()
{
    TGridLayout layout;
    layout.IndicatorWidth = 10;
    layout.TitleHeight = 30;
    layout.FooterHeight = 20;
    layout.RowHeight = 20;
    layout.FrozenCount = 1;
    layout.Size = {300, 30 + 70 + 20};
    layout.RowCount = 1'000'000;
    layout.SetWidths({100, 100, 100, 100, 100});
    return layout;
}

TEST(GridLayout, FindsCellsUnderPoints)
{
    TGridLayout layout = Sample();
    layout.Offset = 150;
    layout.TopRow = 999'990;
    layout.Clamp();
    EXPECT_EQ(layout.TopRow, 999'990);
    struct
    {
        QPoint Point;
        TGridCell Cell;
    } const cases[] = {
        {{5, 40}, {999'990, -1}},  // the indicator
        {{10, 30}, {999'990, 0}},  // frozen: where it was
        {{109, 49}, {999'990, 0}}, // its last pixel
        {{110, 50}, {999'991, 2}}, // behind it the scrolled ones: 110 is 50 into the second scrolling one
        {{159, 99}, {999'993, 2}}, // half a row
        {{160, 40}, {999'990, 3}}, //
        {{299, 29}, {-1, 4}},      // titles
        {{299, 100}, {-1, 4}},     // totals
    };
    for (const auto &each : cases) {
        EXPECT_EQ(layout.RowAt(each.Point.y()), each.Cell.Row) << each.Point.x();
        EXPECT_EQ(layout.ColumnAt(each.Point.x()), each.Cell.Column) << each.Point.x();
        if (!each.Cell.IsNull()) {
            EXPECT_TRUE(layout.CellRect(each.Cell).contains(each.Point));
        }
    }
    EXPECT_EQ(layout.NearestCell({-50, -50}), (TGridCell{999'989, 0}));
    EXPECT_EQ(layout.NearestCell({9999, 9999}).Column, 4);
}

TEST(GridLayout, ScrollsNoFurtherThanNeeded)
{
    TGridLayout layout = Sample();
    EXPECT_EQ(layout.FullRows(), 3);
    EXPECT_EQ(layout.EndRow(), 4);
    EXPECT_EQ(layout.LastTopRow(), 999'997);
    EXPECT_EQ(layout.LastOffset(), 210);
    layout.TopRow = 100;
    EXPECT_EQ(layout.TopRowFor(99), 99);
    EXPECT_EQ(layout.TopRowFor(102), 100);
    EXPECT_EQ(layout.TopRowFor(103), 101);
    EXPECT_EQ(layout.OffsetFor(0), 0);   // frozen
    EXPECT_EQ(layout.OffsetFor(2), 10);  // its right edge
    EXPECT_EQ(layout.OffsetFor(4), 210); //
    layout.Offset = 150;
    EXPECT_EQ(layout.OffsetFor(1), 0); // its left edge at the frozen one's right
    layout.SetWidths({100, 900, 100});
    layout.Offset = 0;
    EXPECT_EQ(layout.OffsetFor(1), 0) << "of a column wider than the room the beginning is seen";
    layout.RowCount = 2;
    layout.TopRow = 5;
    layout.Clamp();
    EXPECT_EQ(layout.TopRow, 0);
}

TEST(GridLayout, FindsEdgesInSightOnly)
{
    TGridLayout layout = Sample();
    EXPECT_EQ(layout.EdgeAt(108, 3), 0);
    EXPECT_EQ(layout.EdgeAt(213, 3), 1);
    EXPECT_EQ(layout.EdgeAt(160, 3), -1);
    layout.Offset = 150; // the edge of the second column is under the frozen one
    EXPECT_EQ(layout.EdgeAt(60, 3), -1);
    EXPECT_EQ(layout.EdgeAt(160, 3), 2);
}

TEST(SelectedLine, ReadsWhatIsThere)
{
    const auto line = TSelectedLine::FromText(u"QTY\t8\t数量\tT"_s);
    EXPECT_EQ(line.FieldName, u"QTY"_s);
    EXPECT_EQ(line.DisplayWidth, 8);
    EXPECT_EQ(line.DisplayLabel, u"数量"_s);
    EXPECT_TRUE(line.ReadOnly);
    EXPECT_EQ(line.ToText(), u"QTY\t8\t数量\tT"_s);
    EXPECT_EQ(TSelectedLine::FromText(u"QTY"_s).ToText(), u"QTY\t0\t\tF"_s);
    EXPECT_EQ(TSelectedLine::FromText(u"QTY\t-3\tx\tt"_s).ToText(), u"QTY\t0\tx\tF"_s);
}

TEST(TabText, ExchangesCellsWithSpreadsheets)
{
    const QList<QStringList> rows = {{u"a"_s, u"b\tc"_s}, {u"两\n行"_s, u"\"q"_s, u"5\"6"_s}, {QString()}};
    const QString text = TabTextOf(rows);
    EXPECT_EQ(text, u"a\t\"b\tc\"\n\"两\n行\"\t\"\"\"q\"\t5\"6\n"_s);
    EXPECT_EQ(RowsOfTabText(text).mid(0, 2), rows.mid(0, 2));

    struct
    {
        QString Text;
        QList<QStringList> Rows;
    } const cases[] = {
        {{}, {}},
        {u"1"_s, {{u"1"_s}}},
        {u"1\t\r\n\t2\r\n"_s, {{u"1"_s, {}}, {{}, u"2"_s}}},
        {u"1\r2"_s, {{u"1"_s}, {u"2"_s}}},
        {u"\"open\t1"_s, {{u"open\t1"_s}}},
        {u"\n\n"_s, {{{}}, {{}}}},
    };
    for (const auto &each : cases)
        EXPECT_EQ(RowsOfTabText(each.Text), each.Rows) << each.Text.toStdString();
}

} // namespace
