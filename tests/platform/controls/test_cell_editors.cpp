// SPDX-License-Identifier: MIT
// The lists, calendars and windows of memos that cells are edited with, driven through a grid.
#include "platform/controls/GridTesting.h"

#include <QAbstractButton>
#include <QCalendarWidget>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QSizeGrip>
#include <QToolButton>
#include <QWheelEvent>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

const double Stamp = TDateTime(QDate(2026, 11, 23), QTime(14, 5, 6, 789)).Days();

/// One row with a cell of each kind: 0 list, 1 date, 2 date and time, 3 date in a text, 4 memo, 5 memo in a
/// short text.
std::unique_ptr<TClientDataSet> Cells(const QString &memo = u"一\r\n二"_s)
{
    return DataSetOf({{"SEX", ftString, 4},
                      {"DAY", ftDate},
                      {"STAMP", ftDateTime},
                      {"TEXTDAY", ftString, 8},
                      {"NOTE", ftMemo},
                      {"REMARK", ftString, 6}},
                     {{"M", Stamp, Stamp, "20261123", memo, "r"}, {"F", {}, {}, {}, {}, {}}});
}

struct TCellGrid : TGridWindow
{
    explicit TCellGrid(TDataSet &set) : TGridWindow(set)
    {
        Grid->SetControlType(
            {u"SEX;ComboBox;Male=M;Female=F;未知=;Box"_s, u"TEXTDAY;DateTimePicker"_s, u"REMARK;Memo"_s});
        set.First();
    }
    void Open(int column)
    {
        Grid->SetSelectedIndex(column);
        ASSERT_TRUE(Grid->EditCell());
    }
    QWidget *Popup() const { return QApplication::activePopupWidget(); }
    QLineEdit *Line() const { return Grid->viewport()->findChild<QLineEdit *>(); }
    QPlainTextEdit *Memo() const { return FWindow.findChild<QPlainTextEdit *>(); }
    static void Press(const QWidget &parent, const QString &text)
    {
        for (auto *button : parent.findChildren<QAbstractButton *>())
            if (button->text() == text && button->isVisible())
                return QTest::mouseClick(button, Qt::LeftButton);
        ADD_FAILURE() << "no button " << text.toStdString();
    }
};

TEST(CellEditors, ListsStoreWhatTheirTextsStandFor)
{
    struct
    {
        QString Keys;
        QString Value;
        QString Place;
    } const cases[] = {
        {u"f<Enter>"_s, u"F"_s, u"0,0 edit"_s},              // completed, blind to case
        {u"fe<Backspace><Enter>"_s, u"fe"_s, u"0,0 edit"_s}, // what the list added is gone
        {u"X9<Enter>"_s, u"X9"_s, u"0,0 edit"_s},            // no text of the list
        {u"M<Del><Enter>"_s, u"M"_s, u"0,0 edit"_s},         // nor this one
        {u"b<Right>x<Enter>"_s, u"boxx"_s,
         u"0,0 edit"_s}, // the arrow keeps what was added, letters stay as typed
        {u"<F2>female<Enter>"_s, u"F"_s, u"0,0 edit"_s},
        {u"<F4><Down><Enter>"_s, u"F"_s, u"0,0 edit"_s},
        {u"<Alt+Down><Down><Down><Down><Up><Enter>"_s, u""_s, u"0,0 edit"_s},
        {u"<F4><PgDown><Down><Down><Down><Enter>"_s, u"Box"_s, u"0,0 edit"_s},
        {u"<F4>bo<Enter>"_s, u"Box"_s, u"0,0 edit"_s}, // the open list follows what is typed
        {u"<F4><Down><Tab>"_s, u"F"_s, u"0,1 edit"_s},
        {u"<F4><Down><Esc>"_s, u"M"_s, u"0,0 browse*"_s},
        {u"<F4><Down><F4><Enter>"_s, u"M"_s, u"0,0 browse"_s},
        {u"<F4><Esc><Down>"_s, u"M"_s, u"1,0 browse"_s}, // without the list arrows are the grid's
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.Keys.toStdString());
        auto set = Cells();
        TCellGrid grid(*set);
        grid.Type(each.Keys);
        EXPECT_EQ(grid.Place(), each.Place);
        EXPECT_FALSE(grid.Popup());
        if (set->State() == dsBrowse)
            set->First();
        EXPECT_EQ(set->FieldByName(u"SEX")->AsString(), each.Value);
    }
}

TEST(CellEditors, ListsTakeTheMouseAndInputMethodsAndRefuseWhatIsTooLong)
{
    auto set = Cells();
    TCellGrid grid(*set);
    TField &sex = *set->FieldByName(u"SEX");
    grid.Open(0);
    ASSERT_TRUE(grid.Line());
    EXPECT_EQ(grid.Line()->text(), u"Male"_s);
    EXPECT_EQ(grid.Line()->accessibleName(), u"SEX"_s);
    QWheelEvent wheel({5, 5}, grid.Line()->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(grid.Line(), &wheel);
    EXPECT_EQ(grid.Line()->text(), u"Male"_s);

    auto *button = grid.Line()->findChild<QAbstractButton *>();
    QTest::mouseClick(button, Qt::LeftButton);
    ASSERT_TRUE(grid.Popup());
    EXPECT_TRUE(grid->IsEditing()) << "the popup does not take the focus away";
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_FALSE(grid.Popup());
    QTest::mouseClick(button, Qt::LeftButton);
    auto *list = grid.Popup()->findChild<QListWidget *>();
    EXPECT_EQ(list->currentRow(), 0);
    EXPECT_GE(list->window()->width(), grid.Line()->width());
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(1)).center());
    EXPECT_EQ(sex.AsString(), u"F"_s);
    EXPECT_EQ(grid.Place(), u"0,0 edit"_s);
    EXPECT_TRUE(grid->hasFocus());

    grid.Open(0);
    QInputMethodEvent commit;
    commit.setCommitString(u"未"_s);
    QApplication::sendEvent(QApplication::focusWidget(), &commit);
    grid.Type(u"<Enter>"_s);
    EXPECT_TRUE(sex.IsNull() || sex.AsString().isEmpty()) << "completed to the text of the empty value";

    grid.Open(0);
    EXPECT_EQ(RaisedBy([&] { grid.Type(u"<Home><Shift+End>toolong<Enter>"_s); }),
              u"EConvertError: “toolon”超过4个字符"_s);
    EXPECT_EQ(grid.Place(), u"0,0 edit*"_s);
    grid.Type(u"<Esc>"_s);
    set->Cancel();
    QApplication::processEvents();
    grid.Open(0);
    grid.Type(u"<F4>"_s);
    ASSERT_TRUE(grid.Popup());
    set->Next();
    EXPECT_FALSE(grid.Popup()) << "the list goes with its cell";
}

TEST(CellEditors, DatesAreTakenInTheirForms)
{
    struct
    {
        int Column;
        QString Typed;
        QString Value; // or what is raised
    } const cases[] = {
        {1, u"2024-2-29"_s, u"2024-02-29"_s},
        {1, u"20240229"_s, u"2024-02-29"_s},
        {1, u"2024.2.29"_s, u"2024-02-29"_s},
        {1, u""_s, u""_s},
        {1, u"2023-2-29"_s, u"EConvertError: “2023-2-29”不是有效的日期"_s},
        {2, u"2024/2/29"_s, u"2024-02-29"_s},
        {2, u"2024-2-29 8:30"_s, u"2024-02-29 08:30:00"_s},
        {2, u"tomorrow"_s, u"EConvertError: “tomorrow”不是有效的日期"_s},
        {2, u""_s, u""_s},
        {3, u"20240229"_s, u"20240229"_s},
        {3, u" 2024-2-9 "_s, u"20240209"_s},
        {3, u"2024/12/9"_s, u"20241209"_s},
        {3, u"2024.12.09"_s, u"20241209"_s},
        {3, u""_s, u""_s},
        {3, u"20240230"_s, u"EConvertError: “20240230”不是有效的日期"_s},
        {3, u"2024-2/9"_s, u"EConvertError: “2024-2/9”不是有效的日期"_s},
        {3, u"00000101"_s, u"EConvertError: “00000101”不是有效的日期"_s},
        {3, u"2024-2-9 8:30"_s, u"EConvertError: “2024-2-9 8:30”不是有效的日期"_s},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.Typed.toStdString());
        auto set = Cells();
        TCellGrid grid(*set);
        grid.Open(each.Column);
        EXPECT_EQ(grid.Line()->text(), each.Column == 2 ? u"2026-11-23 14:05:06"_s : u"2026-11-23"_s);
        const TField &field = *set->Fields()[each.Column];
        const QString before = field.AsString();
        const QString raised = RaisedBy([&] { grid.Type(u"<Del>"_s + each.Typed + u"<Enter>"_s); });
        if (raised == u"nothing"_s) {
            EXPECT_EQ(field.AsString(), each.Value);
            EXPECT_FALSE(grid->IsEditing());
        } else {
            EXPECT_EQ(raised, each.Value);
            EXPECT_EQ(field.AsString(), before);
            EXPECT_TRUE(grid->IsEditing());
            EXPECT_EQ(grid.Line()->text(), each.Typed);
            grid->CancelEdit();
        }
    }
}

TEST(CellEditors, CalendarsChangeTheDayAndNotTheTime)
{
    for (const int column : {1, 2, 3}) {
        SCOPED_TRACE(column);
        auto set = Cells();
        TCellGrid grid(*set);
        const TField &field = *set->Fields()[column];
        const auto value = [&] {
            return column == 3 ? field.AsString() : QString::number(field.AsFloat(), 'f', 9);
        };
        const auto expected = [&](QDate day) {
            const TDateTime time = column == 2 ? TimeOf(TDateTime(Stamp)) : TDateTime();
            return column == 3 ? day.toString(u"yyyyMMdd"_s)
                               : QString::number(ComposeDateTime(TDateTime(day), time).Days(), 'f', 9);
        };
        grid.Open(column);
        grid.Type(u"<F4>"_s);
        ASSERT_TRUE(grid.Popup());
        auto *calendar = grid.Popup()->findChild<QCalendarWidget *>();
        EXPECT_EQ(calendar->selectedDate(), QDate(2026, 11, 23));
        EXPECT_EQ(calendar->findChild<QToolButton *>(u"qt_calendar_monthbutton"_s)->text(), u"十一月"_s);
        EXPECT_TRUE(calendar->isAncestorOf(QApplication::focusWidget()));
        grid.Type(u"<Right><Esc>"_s);
        EXPECT_EQ(grid.Place(), u"0,%1 browse*"_s.arg(column)) << "Esc closes the calendar alone";
        grid.Type(u"<F4><Right><Down><Enter>"_s);
        EXPECT_EQ(grid.Place(), u"0,%1 edit"_s.arg(column));
        EXPECT_EQ(value(), expected({2026, 12, 1}));

        grid.Open(column);
        grid.Type(u"<F4>"_s);
        ASSERT_TRUE(grid.Popup());
        TCellGrid::Press(*grid.Popup(), u"今天"_s);
        EXPECT_EQ(value(), expected(QDate::currentDate()));

        // Of a text that was typed the time counts, and without a date today is offered.
        grid.Open(column);
        grid.Type(u"<Del><F4>"_s);
        EXPECT_EQ(grid.Popup()->findChild<QCalendarWidget *>()->selectedDate(), QDate::currentDate());
        grid.Type(u"<F4><Esc>"_s);
        set->Cancel();
    }
    auto set = Cells();
    TCellGrid grid(*set);
    grid.Open(2);
    grid.Type(u"<Del>2024-2-28 8:30<F4><Right><Enter>"_s);
    EXPECT_EQ(set->Fields()[2]->AsString(), u"2024-02-29 08:30:00"_s);
}

TEST(CellEditors, MemosKeepTheirLineEnds)
{
    struct
    {
        QString Before;
        QString Keys;
        QString After;
    } const cases[] = {
        {u"一\r\n二"_s, u"x<Enter>y"_s, u"一\r\n二x\r\ny"_s},
        {u"a\nb"_s, u"<Shift+Enter>y"_s, u"a\nb\ny"_s},
        {u"a\rb"_s, u"<Enter>"_s, u"a\rb\r"_s},
        {u"a"_s, u"<Enter>b"_s, u"a\r\nb"_s},
        {u"hard\u00a0blank\tand tab"_s, u"x"_s, u"hard\u00a0blank\tand tabx"_s},
        {u"a"_s, u"<Backspace>"_s, u""_s},
        {u"a"_s, u"z<Ctrl+A><Ctrl+Z>"_s, u"a"_s},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.Before.toStdString() + " " + each.Keys.toStdString());
        auto set = Cells(each.Before);
        TCellGrid grid(*set);
        grid.Open(4);
        ASSERT_EQ(QApplication::focusWidget(), grid.Memo());
        grid.Type(each.Keys + u"<Ctrl+Enter>"_s);
        EXPECT_FALSE(grid->IsEditing());
        EXPECT_EQ(set->FieldByName(u"NOTE")->AsString(), each.After);
    }
}

TEST(CellEditors, MemosAreAcceptedGivenUpAndRead)
{
    auto set = Cells();
    TCellGrid grid(*set);
    TField &note = *set->FieldByName(u"NOTE");
    grid.Open(4);
    QWidget *frame = grid.Memo()->parentWidget();
    EXPECT_TRUE(frame->isVisible());
    EXPECT_GE(frame->width(), 320);
    EXPECT_GE(frame->height(), 160);
    EXPECT_TRUE(grid.FWindow.rect().contains(frame->geometry()));
    EXPECT_EQ(grid.Memo()->accessibleName(), u"NOTE"_s);
    const QSize before = frame->size();
    auto *grip = frame->findChild<QSizeGrip *>();
    const auto drag = [&](QEvent::Type type, QPoint to) {
        QMouseEvent event(type, to, grip->mapToGlobal(to), Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(grip, &event);
    };
    drag(QEvent::MouseButtonPress, {5, 5});
    drag(QEvent::MouseMove, {5, 45});
    drag(QEvent::MouseButtonRelease, {5, 45});
    EXPECT_EQ(frame->size(), before + QSize(0, 40));
    grid->SetFixedCols(0); // lays the grid out anew, and not the memo
    EXPECT_EQ(frame->height(), before.height() + 40);
    TCellGrid::Press(*frame, u"确定"_s);
    EXPECT_EQ(grid.Place(), u"0,4 browse"_s) << "nothing was changed";

    QApplication::processEvents();
    grid.Open(4);
    grid.Type(u"x"_s);
    TCellGrid::Press(*grid.Memo()->parentWidget(), u"取消"_s);
    EXPECT_EQ(grid.Place(), u"0,4 edit"_s);
    EXPECT_EQ(note.AsString(), u"一\r\n二"_s);

    QApplication::processEvents();
    EXPECT_FALSE(grid.Memo()) << "its window is gone";
    grid.Type(u"z"_s); // in the place of the text
    TCellGrid::Press(*grid.Memo()->parentWidget(), u"确定"_s);
    EXPECT_EQ(note.AsString(), u"z"_s);

    // A memo in a text of a declared length.
    QApplication::processEvents();
    grid.Open(5);
    EXPECT_EQ(RaisedBy([&] { grid.Type(u"1<Enter>345<Ctrl+Enter>"_s); }),
              u"EConvertError: “REMARK”有7个字符，最多6个"_s);
    EXPECT_EQ(grid.Place(), u"0,5 edit*"_s);
    grid.Type(u"<Backspace><Ctrl+Enter>"_s);
    EXPECT_EQ(set->FieldByName(u"REMARK")->AsString(), u"r1\r\n34"_s);

    // Leaving by the focus stores, and going out of sight takes the window along.
    QApplication::processEvents();
    grid.Open(4);
    grid.Type(u"w"_s);
    grid->hide();
    EXPECT_EQ(note.AsString(), u"zw"_s);
    EXPECT_FALSE(grid->IsEditing());
    grid->show();
    QApplication::processEvents();
    EXPECT_FALSE(grid.Memo());

    grid->SetReadOnly(true);
    grid->setFocus();
    grid.Open(4);
    grid.Type(u"q<Del>"_s);
    EXPECT_EQ(grid.Memo()->toPlainText(), u"zw"_s);
    EXPECT_EQ(grid.Memo()->parentWidget()->findChildren<QAbstractButton *>().size(), 1);
    TCellGrid::Press(*grid.Memo()->parentWidget(), u"关闭"_s);
    EXPECT_FALSE(grid->IsEditing());
    EXPECT_EQ(note.AsString(), u"zw"_s);
}

TEST(CellEditors, MemosStandOverTheCellWhereTheFormEnds)
{
    auto set = Cells();
    TCellGrid grid(*set);
    grid->SetwwMemoAttributes({});
    for (int i = 0; i < 12; ++i)
        Do(*set, u"append;SEX=M;post"_s);
    grid.Open(4);
    const QWidget *frame = grid.Memo()->parentWidget();
    const QRect cell = grid->CellRect(grid->CurrentCell());
    const int top = grid->viewport()->mapTo(&grid.FWindow, cell.topLeft()).y();
    EXPECT_LE(frame->geometry().bottom(), top);
    EXPECT_GE(frame->y(), 0);
    EXPECT_EQ(grid.Memo()->lineWrapMode(), QPlainTextEdit::NoWrap);
    // A form smaller than the memo shows what it can.
    grid->CancelEdit();
    QApplication::processEvents();
    grid.FWindow.resize(200, 120);
    grid.Open(4);
    EXPECT_TRUE(grid.FWindow.rect().contains(grid.Memo()->parentWidget()->geometry()));
}

} // namespace
