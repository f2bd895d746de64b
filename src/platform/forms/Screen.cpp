// SPDX-License-Identifier: MIT
#include "platform/forms/Screen.h"

#include "platform/forms/Form.h"

#include <QApplication>
#include <QScreen>

#include <utility>

namespace Korvane {

TScreen &Screen()
{
    static TScreen screen;
    return screen;
}

TForm *TScreen::ActiveForm() const { return qobject_cast<TForm *>(QApplication::activeWindow()); }

QWidget *TScreen::ActiveControl() const { return QApplication::focusWidget(); }

int TScreen::Width() const { return QGuiApplication::primaryScreen()->geometry().width(); }

int TScreen::Height() const { return QGuiApplication::primaryScreen()->geometry().height(); }

QRect TScreen::WorkArea() const { return QGuiApplication::primaryScreen()->availableGeometry(); }

void TScreen::Add(TForm *form) { FForms.append(form); }

void TScreen::Remove(TForm *form)
{
    FForms.removeAll(form);
    if (FLastActive == form)
        FLastActive = nullptr;
}

void TScreen::CheckActiveForm()
{
    const TForm *active = ActiveForm();
    if (std::exchange(FLastActive, active) != active)
        OnActiveFormChange();
}

} // namespace Korvane
