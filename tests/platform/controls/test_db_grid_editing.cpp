// SPDX-License-Identifier: MIT
// Editing in a grid: keys, tick boxes, rows, input methods and the clipboard.
#include "platform/controls/GridTesting.h"
#include "support/ScriptedPrompts.h"

#include <QClipboard>
#include <QLineEdit>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

std::unique_ptr<TClientDataSet> Items()
{
    return DataSetOf({{"CODE", ftString, 10}, {"STOPPED", ftString, 1}, {"QTY", ftInteger}, {"NAME", ftString, 20}},
                     {{"A1", "N", 10, "一"}, {"A2", "Y", 20, "二"}, {"A3", "N", 30, "三"}});
}

struct TEditedGrid : TGridWindow
{
    explicit TEditedGrid(TDataSet &set) : TGridWindow(set)
    {
        Grid->SetControlType({u"STOPPED;CheckBox;Y;N"_s});
        Grid->SetKeyOptions(Grid->KeyOptions() | dgEnterToTab);
    }
};

TEST(DBGridEditing, KeysLeadThroughTheRows)
{
    struct
    {
        QString Keys;
        QString Place;
        QString View;
    } const cases[] = {
        {u"B1"_s, u"0,0 edit*"_s, u"A1|N|10|一"_s},                          // not yet in the field
        {u"B1<Right>"_s, u"0,1 edit"_s, u"B1|N|10|一"_s},                    // an arrow at the text's end leaves
        {u"B1<Left><Left>x"_s, u"0,0 edit*"_s, u"A1|N|10|一"_s},             // within the text it does not
        {u"<F2><End>x<Enter>"_s, u"0,1 edit"_s, u"A1x|N|10|一"_s},           // F2 keeps the value
        {u"B1<Esc>"_s, u"0,0 edit"_s, u"A1|N|10|一"_s},                      // first the cell,
        {u"B1<Enter><Right>5<Esc><Esc>"_s, u"0,2 browse"_s, u"A1|N|10|一"_s}, // then the row
        {u"<Right><Right>12x<Down>"_s, u"1,2 browse"_s, u"A1|N|12|一"_s},    // no letters in numbers; the row is posted
        {u"<Right><Space>"_s, u"0,1 edit"_s, u"A1|Y|10|一"_s},
        {u"<Right>x"_s, u"0,1 browse"_s, u"A1|N|10|一"_s},                   // a tick box takes no letters
        {u"<End><Del><Down>"_s, u"1,3 browse"_s, u"A1|N|10|"_s},
        {u"<Shift+Tab>"_s, u"0,0 browse"_s, u"A1|N|10|一"_s},
        {u"B1<PgDown>"_s, u"2,0 browse"_s, u"B1|N|10|一"_s},
    };
    for (const auto &each : cases) {
        auto set = Items();
        TEditedGrid grid(*set);
        grid.Type(each.Keys);
        EXPECT_EQ(grid.Place(), each.Place) << each.Keys.toStdString();
        const bool isBrowsing = set->State() == dsBrowse;
        if (isBrowsing)
            set->First();
        EXPECT_EQ(RowOf(*set), each.View) << each.Keys.toStdString();
    }
}

TEST(DBGridEditing, EnterFindsTheNextCellThatCanBeEdited)
{
    auto set = Items();
    TEditedGrid grid(*set);
    grid->SetSelected({u"CODE\t10\t编号\tT"_s, u"STOPPED\t4\t停用"_s, u"QTY\t8\t数量"_s, u"NAME\t8\t名称\tT"_s});
    grid.Type(u"<Enter>"_s);
    EXPECT_EQ(grid.Place(), u"0,1 browse"_s);
    grid.Type(u"<Enter>55<Enter>"_s);
    EXPECT_EQ(grid.Place(), u"1,1 browse"_s) << "behind the last one that can be edited comes the next row";
    grid.Type(u"<Down><Enter><Enter>"_s);
    EXPECT_EQ(grid.Place(), u"3,1 insert"_s) << "behind the last row a new one";
    grid.Type(u"<Enter>7<Enter>"_s);
    EXPECT_EQ(grid.Place(), u"4,1 insert"_s);
    grid.Type(u"<Enter><Enter>"_s);
    EXPECT_EQ(grid.Place(), u"4,2 insert"_s) << "an empty new row has no other behind it";
    grid.Type(u"<Up>"_s);
    EXPECT_EQ(grid.Place(), u"3,2 browse"_s) << "and goes when it is left";
    EXPECT_EQ(ViewOf(*set, u"QTY"_s), u"55 20 30 >7"_s);

    grid->SetKeyOptions({});
    set->Last();
    grid.Type(u"<Enter>8<Enter>"_s);
    EXPECT_EQ(grid.Place(), u"3,2 edit"_s) << "without the option Enter opens and closes the cell";
}

TEST(DBGridEditing, RowsComeAndGoByKeys)
{
    auto set = Items();
    TEditedGrid grid(*set);
    grid.Type(u"<Down><Ins>N<Enter>"_s);
    EXPECT_EQ(grid.Place(), u"1,1 insert"_s) << "before the current row";
    EXPECT_EQ(grid->Layout().RowCount, 4);
    grid.Type(u"<Down>"_s);
    EXPECT_EQ(ViewOf(*set, u"CODE"_s), u"A1 N >A2 A3"_s);
    grid.Type(u"<Ctrl+Ins>"_s);
    EXPECT_EQ(grid.Place(), u"2,1 insert"_s);
    grid.Type(u"<Esc>"_s);
    EXPECT_EQ(ViewOf(*set, u"CODE"_s), u"A1 N >A2 A3"_s);
    grid.Type(u"<Ctrl+Ins>"_s);
    grid.Click(3, 0);
    EXPECT_EQ(ViewOf(*set, u"CODE"_s), u"A1 N >A2 A3"_s) << "an empty new row is gone, and the row clicked at is current";
    {
        const PromptScript script({IDNO, IDYES});
        grid.Type(u"<Ctrl+Del>"_s);
        EXPECT_EQ(ViewOf(*set, u"CODE"_s), u"A1 N >A2 A3"_s);
        grid.Type(u"<Ctrl+Del>"_s);
        EXPECT_EQ(ViewOf(*set, u"CODE"_s), u"A1 N >A3"_s);
        EXPECT_EQ(script->Boxes[0].Text, u"确定要删除当前行吗？"_s);
    }
    grid->SetKeyOptions(dgEnterToTab);
    grid.Type(u"<Ctrl+Del><Ins><Down><Down>"_s);
    EXPECT_EQ(ViewOf(*set, u"CODE"_s), u"A1 N >A3"_s);
    EXPECT_EQ(grid.Place(), u"2,0 browse"_s);
}

TEST(DBGridEditing, RefusalsKeepTheCellAndTheText)
{
    auto set = Items();
    TEditedGrid grid(*set);
    set->FieldByName(u"QTY")->OnValidate = [](TField *field) {
        if (field->AsInteger() > 50)
            throw Exception(u"数量太大"_s);
    };
    grid.Type(u"<Right><Right>"_s);
    EXPECT_EQ(RaisedBy([&] { grid.Type(u"99<Down>"_s); }), u"Exception: 数量太大"_s);
    EXPECT_EQ(grid.Place(), u"0,2 edit*"_s);
    EXPECT_EQ(qobject_cast<QLineEdit *>(QApplication::focusWidget())->text(), u"99"_s);
    grid.Type(u"<Backspace><Down>"_s);
    EXPECT_EQ(grid.Place(), u"1,2 browse"_s);
    EXPECT_EQ(ViewOf(*set, u"QTY"_s), u"9 >20 30"_s);

    set->BeforePost = [](TDataSet *) { throw Exception(u"不能保存"_s); };
    grid.Type(u"21"_s);
    EXPECT_EQ(RaisedBy([&] { grid.Type(u"<Down>"_s); }), u"Exception: 不能保存"_s);
    EXPECT_EQ(grid.Place(), u"1,2 edit"_s);
    EXPECT_EQ(RowOf(*set), u"A2|Y|21|二"_s);
    set->BeforePost = nullptr;
    set->BeforeEdit = [](TDataSet *) { throw Exception(u"不能修改"_s); };
    grid.Type(u"<Down>"_s);
    EXPECT_EQ(RaisedBy([&] { grid.Type(u"5"_s); }), u"Exception: 不能修改"_s);
    EXPECT_EQ(grid.Place(), u"2,2 browse"_s) << "what cannot be edited has no editor";
}

TEST(DBGridEditing, WhatIsTypedIsPartOfThePost)
{
    auto set = Items();
    TEditedGrid grid(*set);
    grid.Type(u"C9"_s);
    set->Post();
    EXPECT_EQ(ViewOf(*set, u"CODE"_s), u">C9 A2 A3"_s);
    EXPECT_EQ(grid.Place(), u"0,0 browse"_s);
    grid.Type(u"D9"_s);
    set->Cancel();
    EXPECT_EQ(ViewOf(*set, u"CODE"_s), u">C9 A2 A3"_s);
    EXPECT_EQ(grid.Place(), u"0,0 browse"_s);

    QLineEdit other;
    other.show();
    grid.Type(u"E9"_s);
    other.setFocus();
    QApplication::setActiveWindow(&other);
    EXPECT_EQ(grid.Place(), u"0,0 edit"_s) << "another control gets the focus: the cell is stored, the row stays";
    EXPECT_EQ(RowOf(*set), u"E9|N|10|一"_s);
}

TEST(DBGridEditing, ReadOnlyInEveryWayIsReadOnly)
{
    const std::map<std::string, std::function<void(TEditedGrid &, TClientDataSet &)>> ways = {
        {"grid", [](TEditedGrid &grid, TClientDataSet &) { grid->SetReadOnly(true); }},
        {"option", [](TEditedGrid &grid, TClientDataSet &) { grid->SetOptions(grid->Options() & ~dgEditing); }},
        {"column", [](TEditedGrid &grid, TClientDataSet &) { grid->Columns(0)->SetReadOnly(true); }},
        {"field", [](TEditedGrid &, TClientDataSet &set) { set.FieldByName(u"CODE")->SetReadOnly(true); }},
        {"dataset", [](TEditedGrid &, TClientDataSet &set) { set.SetReadOnly(true); }},
        {"source", [](TEditedGrid &grid, TClientDataSet &) { grid.FSource->SetAutoEdit(false); }},
        {"rows", [](TEditedGrid &grid, TClientDataSet &) { grid->SetOptions(grid->Options() | dgRowSelect); }},
    };
    for (const auto &[name, make] : ways) {
        auto set = Items();
        TEditedGrid grid(*set);
        make(grid, *set);
        QGuiApplication::clipboard()->setText(u"Z"_s);
        grid.Type(u"x<F2><Del><Ctrl+V><Ctrl+X>"_s);
        EXPECT_EQ(grid.Place(), u"0,0 browse"_s) << name;
        EXPECT_EQ(ViewOf(*set, u"CODE"_s), u">A1 A2 A3"_s) << name;
        EXPECT_FALSE(grid->inputMethodQuery(Qt::ImEnabled).toBool()) << name;
    }
}

TEST(DBGridEditing, ClicksTickAndEdit)
{
    auto set = Items();
    TEditedGrid grid(*set);
    QStringList changed;
    grid->OnFieldChanged = [&](TwwDBGrid *, TField *field) { changed += field->FieldName(); };
    grid.Click(0, 1);
    EXPECT_EQ(RowOf(*set), u"A1|N|10|一"_s) << "the first click selects";
    grid.Click(0, 1);
    EXPECT_EQ(RowOf(*set), u"A1|Y|10|一"_s);
    grid->SetEditControlOptions(ecoCheckboxSingleClick);
    grid.Click(1, 1);
    EXPECT_EQ(RowOf(*set), u"A2|N|20|二"_s);
    EXPECT_EQ(changed.join(u','), u"STOPPED,STOPPED"_s);

    grid.Click(2, 3);
    EXPECT_FALSE(grid->IsEditing());
    grid.Click(2, 3);
    EXPECT_TRUE(grid->IsEditing()) << "the second click into a cell edits";
    int doubles = 0;
    grid->OnDblClick = [&](TwwDBGrid *) { ++doubles; };
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, grid->CellRect({0, 0}).center());
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, grid.TitleOf(0));
    EXPECT_EQ(doubles, 1);
}

void Compose(QWidget *widget, const QString &preedit, const QString &commit = {})
{
    QInputMethodEvent event(preedit, {});
    event.setCommitString(commit);
    QApplication::sendEvent(widget, &event);
}

TEST(DBGridEditing, TheFirstLetterOfAWordIsNotLost)
{
    auto set = Items();
    TEditedGrid grid(*set);
    grid->SetSelectedIndex(3);
    ASSERT_TRUE(grid->inputMethodQuery(Qt::ImEnabled).toBool());
    Compose(grid.Grid, u"l"_s);
    EXPECT_EQ(QApplication::focusWidget(), grid.Grid) << "a change of focus would end the composition";
    EXPECT_TRUE(grid->IsEditing());
    Compose(grid.Grid, u"luo"_s);
    EXPECT_FALSE(grid->inputMethodQuery(Qt::ImCursorRectangle).toRect().isEmpty());
    Compose(grid.Grid, {}, u"螺"_s);
    EXPECT_NE(QApplication::focusWidget(), grid.Grid);
    Compose(QApplication::focusWidget(), u"shuan"_s);
    Compose(QApplication::focusWidget(), {}, u"栓"_s);
    grid.Type(u"<Down>"_s);
    EXPECT_EQ(ViewOf(*set, u"NAME"_s), u"螺栓 >二 三"_s) << "typed over the value";

    Compose(grid.Grid, u"m"_s);
    Compose(grid.Grid, {});
    EXPECT_EQ(grid.Place(), u"1,3 edit"_s) << "a word given up leaves the value";
    EXPECT_EQ(RowOf(*set), u"A2|Y|20|二"_s);
    set->Cancel();
    Compose(grid.Grid, {}, u"整"_s);
    EXPECT_EQ(grid.Place(), u"1,3 edit*"_s) << "a character without composition, from a panel";
    grid.Type(u"<Tab>"_s);
    EXPECT_EQ(ViewOf(*set, u"NAME"_s), u"螺栓 整 >三"_s);
}

TEST(DBGridEditing, RowsThatMoveInAnOrderedViewAreStillTheRightOnes)
{
    auto set = Items();
    set->SetIndexFieldNames(u"CODE"_s);
    TEditedGrid grid(*set);
    grid.Type(u"Z9<Down>"_s); // the row goes behind the others, and the one below it comes into its place
    EXPECT_EQ(ViewOf(*set, u"CODE"_s), u">A2 A3 Z9"_s);
    grid.Type(u"<Ins>B1"_s);
    grid.Click(2, 0);
    EXPECT_EQ(ViewOf(*set, u"CODE"_s), u"A2 >A3 B1 Z9"_s) << "the record that was clicked at";
    grid.Click(0, 0);
    QGuiApplication::clipboard()->setText(u"Y1\nY2\nY3\nY4\nY5"_s);
    grid.Type(u"<Ctrl+V>"_s);
    EXPECT_EQ(ViewOf(*set, u"CODE"_s), u"Y1 Y2 Y3 Y4 >Y5"_s);
}

TEST(DBGridEditing, BlocksGoToAndComeFromTheClipboard)
{
    auto set = Items();
    TEditedGrid grid(*set);
    grid.Type(u"<Shift+Right><Shift+Right><Shift+Down><Ctrl+C>"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"A1\tN\t10\nA2\tY\t20"_s);

    const auto paste = [&](const QString &text) {
        QGuiApplication::clipboard()->setText(text);
        return RaisedBy([&] { grid.Type(u"<Ctrl+V>"_s); });
    };
    grid.Click(1, 0);
    EXPECT_EQ(paste(u"B2\tN\t21\nB3\tY\t31\nB4\tN\t41\nB5\tY\t51"_s), u"nothing"_s);
    EXPECT_EQ(ViewOf(*set), u"A1|N|10|一\nB2|N|21|二\nB3|Y|31|三\nB4|N|41|~\n>B5|Y|51|~\n"_s)
        << "rows below the last are appended";

    grid.Click(0, 2);
    EXPECT_EQ(paste(u"1\t2\t3"_s), u"Exception: 粘贴的内容有3列，从当前列起只有2列"_s);
    EXPECT_EQ(RaisedBy([&] { grid.Type(u"<Up>"_s); }), u"nothing"_s);
    EXPECT_EQ(paste(u"71\tx\n次\ty"_s).section(u':', 0, 0), u"EConvertError"_s);
    EXPECT_EQ(grid.Place(), u"1,2 edit"_s) << "the row that refuses is being edited, the one before is posted";
    set->Cancel();
    EXPECT_EQ(ViewOf(*set, u"NAME"_s), u"x >二 三 ~ ~"_s);

    grid->Columns(0)->SetReadOnly(true);
    grid.Click(0, 0);
    EXPECT_EQ(paste(u"Z\tY"_s), u"nothing"_s);
    EXPECT_EQ(RowOf(*set), u"A1|Y|71|x"_s) << "columns that cannot be written are passed over";
    EXPECT_EQ(set->State(), dsEdit);
    set->Cancel();
    grid.Click(0, 2);
    grid.Type(u"<Shift+Down><Shift+Right><Ctrl+X>"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"71\tx\n21\t二"_s);
    EXPECT_EQ(ViewOf(*set).section(u'\n', 0, 1), u"A1|N|~|\n>B2|N|~|"_s);
    grid->SetKeyOptions({});
    grid.Click(4, 0);
    EXPECT_EQ(paste(u"1\n2\n3"_s), u"Exception: 不能新增行，粘贴的内容有2行没有写入"_s);
}

} // namespace
