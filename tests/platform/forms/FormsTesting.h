// SPDX-License-Identifier: MIT
#pragma once

#include "platform/forms/Form.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QTimer>

#include <functional>
#include <utility>

namespace Korvane::Testing {

/// Runs something when the events that wait now are handled, in whatever loop that is.
inline void Soon(std::function<void()> action) { QTimer::singleShot(0, qApp, std::move(action)); }

/// Lets everything happen that waits, and what that brings.
inline void Settle()
{
    for (int i = 0; i < 5; ++i) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

/// Shows a window and gives it the keyboard.
inline void ShowActive(QWidget &window)
{
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    Settle();
}

/// The box or form that blocks all others.
inline QWidget *Modal() { return QApplication::activeModalWidget(); }

/// Presses a key in the box that is up as soon as there is one.
inline void PressInBox(int key, Qt::KeyboardModifiers modifiers = {})
{
    Soon([key, modifiers] {
        ASSERT_NE(Modal(), nullptr);
        QWidget *control = Modal()->focusWidget();
        QTest::keyClick(control != nullptr ? control : Modal(), Qt::Key(key), modifiers);
    });
}

} // namespace Korvane::Testing
