// SPDX-License-Identifier: MIT
#include "platform/forms/KeyPreview.h"

#include "platform/forms/Form.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScopeGuard>

#include <utility>

namespace Korvane {

namespace {

constexpr qsizetype MostPassing = 16; // boxes over boxes; what is older has long been handled

QList<QPointer<TForm>> FormsFromOutside(QWidget *control)
{
    QList<QPointer<TForm>> forms;
    for (QWidget *widget = control; widget != nullptr; widget = widget->parentWidget()) {
        if (auto *form = qobject_cast<TForm *>(widget))
            forms.prepend(form);
        if (widget->isWindow())
            break; // the keys of a list that has popped up are no keys of the form
    }
    return forms;
}

QChar CharacterOf(const QKeyEvent &event)
{
    const QString text = event.text();
    return text.size() == 1 ? text[0] : QChar();
}

} // namespace

void TKeyPreview::Install()
{
    static QPointer<TKeyPreview> preview;
    if (preview)
        return;
    preview = new TKeyPreview(qApp);
    qApp->installEventFilter(preview);
}

bool TKeyPreview::eventFilter(QObject *receiver, QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride)
        FIsNewKey = true; // comes before each key
    if (event->type() != QEvent::KeyPress || !receiver->isWidgetType() || event == FReplacement)
        return false;
    auto *control = static_cast<QWidget *>(receiver);
    return !IsPassedUp(control, event) && Show(control, static_cast<QKeyEvent *>(event));
}

bool TKeyPreview::IsPassedUp(QWidget *receiver, const QEvent *event)
{
    const bool isNewKey = std::exchange(FIsNewKey, false);
    for (qsizetype i = FPassing.size() - 1; i >= 0; --i) {
        TPassing &passing = FPassing[i];
        if (passing.Event != event)
            continue;
        const bool isPassedUp = !isNewKey && passing.Parent == receiver && passing.Receiver != receiver;
        FPassing.resize(i + (isPassedUp ? 1 : 0)); // what came later is through
        if (isPassedUp)
            FPassing.last() = {event, receiver, receiver->parentWidget()};
        if (isPassedUp)
            return true;
        break;
    }
    if (FPassing.size() == MostPassing)
        FPassing.removeFirst();
    FPassing.append({event, receiver, receiver->parentWidget()});
    return false;
}

/// Whether a form has eaten or replaced the key.
bool TKeyPreview::Show(QWidget *receiver, QKeyEvent *event)
{
    const QPointer<QWidget> control(receiver);
    int key = event->key();
    QChar character = CharacterOf(*event);
    for (const QPointer<TForm> &form : FormsFromOutside(receiver)) {
        if (!form || (!form->KeyPreview() && form != receiver))
            continue;
        const bool isOfKeys = key != 0;
        form->OnKeyDown(key, event->modifiers());
        if (form && key != 0 && !character.isNull()) {
            form->OnKeyPress(character);
            if (character.isNull())
                key = 0;
        }
        if ((isOfKeys && key == 0) || !control) {
            event->accept();
            return true;
        }
    }
    if (key == event->key() && character == CharacterOf(*event))
        return false;
    event->accept();
    Replace(receiver, *event, key, character);
    return true;
}

void TKeyPreview::Replace(QWidget *receiver, const QKeyEvent &event, int key, QChar character)
{
    QString text(character);
    if (character == CharacterOf(event)) { // the key is another one
        const bool writes = key >= Qt::Key_Space && key < 0xFFFF;
        const bool isCapital = (event.modifiers() & Qt::ShiftModifier) != 0;
        text = writes ? QString(isCapital ? QChar(key) : QChar(key).toLower()) : QString();
    }
    QKeyEvent replacement(QEvent::KeyPress, key, event.modifiers(), text, event.isAutoRepeat(),
                          quint16(event.count()));
    const QEvent *before = std::exchange(FReplacement, &replacement);
    const auto end = qScopeGuard([this, before] { FReplacement = before; });
    QCoreApplication::sendEvent(receiver, &replacement);
}

} // namespace Korvane
