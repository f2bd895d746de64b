// SPDX-License-Identifier: MIT
#include "examples/orders/window/script/ScriptPlayer.h"

#include "platform/core/Exceptions.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QPainter>
#include <QSet>
#include <QTest>
#include <QTextStream>
#include <QTimer>
#include <QToolBar>

#include <cstdlib>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int PauseMs =
    160; // between steps, for what comes late: a button pressed by its letter stays down 100 ms
constexpr int MostActivations = 50;

void Say(const QString &text)
{
    static QTextStream out(stdout);
    out << text << Qt::endl;
}

/// Whether a picture has but a few colours.
bool IsBlank(const QImage &image)
{
    constexpr qsizetype FewColors = 32;
    QSet<QRgb> colors;
    for (int y = 0; y < image.height() && colors.size() <= FewColors; ++y)
        for (int x = 0; x < image.width(); ++x)
            colors.insert(image.pixel(x, y));
    return colors.size() <= FewColors;
}

} // namespace

TScriptPlayer::TScriptPlayer(QWidget &window, const QString &pictureFolder)
    : FWindow(window), FFolder(pictureFolder)
{
    if (!QDir().mkpath(FFolder))
        throw EFileError(u"不能建立文件夹：%1"_s.arg(FFolder));
    FMeter.SetWork(u"显示窗口"_s);
}

void TScriptPlayer::Add(const QString &name, std::function<void()> action)
{
    FSteps.push_back({name, std::move(action)});
}

void TScriptPlayer::Start() { QTimer::singleShot(PauseMs, this, &TScriptPlayer::PlayNext); }

void TScriptPlayer::PlayNext()
{
    if (FNext == FSteps.size())
        return;
    // A step that is not through yet goes on only with the box or dialog that it has opened.
    if (!FPlaying.empty() && (&Front() == &FWindow || &Front() == FPlaying.back()))
        return Start();
    // Where no window manager does it, the window in front gets the keyboard here.
    if (!Front().isActiveWindow() && FActivations++ < MostActivations) {
        Front().activateWindow();
        return Start();
    }
    FActivations = 0;
    const TStep &step = FSteps[FNext++];
    FPlaying.push_back(&Front());
    Start(); // NOTE: first, since the step may end only when the next ones have closed its box
    Say(u"\n%1. %2"_s.arg(FNext).arg(step.Name));
    FMeter.SetWork(step.Name);
    FMeter.Restart();
    try {
        step.Action();
    } catch (const Exception &error) {
        Check(false, error.Message());
    }
    FPlaying.pop_back();
    FMeter.Restart();
}

// ---- what a user does -----------------------------------------------------------------

void TScriptPlayer::Send(const std::function<void()> &event)
{
    FMeter.Restart();
    event();
    FMeter.Count();
    FMeter.Restart();
}

void TScriptPlayer::Key(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QWindow *window = Front().windowHandle();
    Send([&] { QTest::sendKeyEvent(QTest::Press, window, key, QString(), modifiers); });
    if (window == Front().windowHandle())
        Send([&] { QTest::sendKeyEvent(QTest::Release, window, key, QString(), modifiers); });
}

void TScriptPlayer::Type(const QString &text)
{
    for (const QChar character : text) {
        QWindow *window = Front().windowHandle();
        Send([&] { QTest::keyClick(window, character.toLatin1()); });
    }
}

void TScriptPlayer::Click(QWidget &widget, QPoint place)
{
    QWidget &window = *widget.window();
    const QPoint inWindow = widget.mapTo(&window, place);
    Send([&] { QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, inWindow); });
}

int TScriptPlayer::ColumnOf(const TwwDBGrid &grid, const QString &field)
{
    for (int column = 0; column < grid.ColumnCount(); ++column)
        if (grid.Columns(column)->FieldName() == field)
            return column;
    throw Exception(u"表格中没有栏位“%1”"_s.arg(field));
}

void TScriptPlayer::ClickCell(TwwDBGrid &grid, qsizetype row, const QString &field)
{
    Click(*grid.viewport(), grid.CellRect({row, ColumnOf(grid, field)}).center());
}

void TScriptPlayer::ClickTitle(TwwDBGrid &grid, const QString &field)
{
    Click(*grid.viewport(), grid.Layout().TitleRect(ColumnOf(grid, field)).center());
}

void TScriptPlayer::ClickAction(QAction &action)
{
    QWidget *button = FWindow.findChild<QToolBar *>()->widgetForAction(&action);
    Click(*button, button->rect().center());
}

// ---- looking --------------------------------------------------------------------------

QWidget &TScriptPlayer::Front() const
{
    QWidget *modal = QApplication::activeModalWidget();
    return modal ? *modal : FWindow;
}

QString TScriptPlayer::Message() const
{
    const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    return box ? box->text() : QString();
}

void TScriptPlayer::Check(bool holds, const QString &claim)
{
    if (holds)
        return Say(u"   √ "_s + claim);
    Say(u"   × 核对不符："_s + claim);
    if (!Message().isEmpty())
        Say(u"   消息框："_s + Message());
    try {
        Picture(u"failure"_s);
    } catch (const Exception &) {
        // The claim is what is to be told.
    }
    std::quick_exit(1); // NOTE: boxes may be open, and with them loops that would have to end first
}

void TScriptPlayer::Picture(const QString &name)
{
    constexpr int SmallestFile = 0;
    QPixmap picture = FWindow.grab();
    const QWidget &front = Front();
    if (&front != &FWindow) {
        QPainter painter(&picture);
        const QRect place(front.mapToGlobal(QPoint()) - FWindow.mapToGlobal(QPoint()), front.size());
        painter.drawPixmap(place.topLeft(), QPixmap(const_cast<QWidget &>(front).grab()));
        painter.setPen(front.palette().color(QPalette::Dark));
        painter.drawRect(place.adjusted(-1, -1, 0, 0)); // no window manager has framed it
    }
    const QImage image = picture.toImage().convertToFormat(QImage::Format_RGB888);
    if (IsBlank(image))
        Check(false, u"画面不是空白"_s);
    const QString file = u"%1-%2.png"_s.arg(++FPictures, 2, 10, QLatin1Char('0')).arg(name);
    if (!image.save(QDir(FFolder).filePath(file), "PNG", SmallestFile))
        throw EFileError(u"不能写文件：%1"_s.arg(file));
    Say(u"   图片 %1"_s.arg(file));
}
