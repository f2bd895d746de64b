// SPDX-License-Identifier: MIT
#include "platform/controls/editors/CellEditor.h"
#include "platform/core/Exceptions.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSizeGrip>
#include <QTextBlock>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

bool IsEnter(const QKeyEvent &key) { return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter; }

/// Lines of text; Ctrl+Enter accepts them.
class TMemoText : public QPlainTextEdit
{
public:
    TMemoText() { setTabChangesFocus(true); }

    /// The text with line ends of a kind. Not toPlainText, which makes blanks of hard blanks.
    QString Text(const QString &lineEnd) const
    {
        QStringList lines;
        for (QTextBlock block = document()->begin(); block.isValid(); block = block.next())
            lines += block.text();
        return lines.join(lineEnd);
    }

    TEvent<> OnEnter;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (IsEnter(*event) && event->modifiers().testFlag(Qt::ControlModifier))
            return OnEnter();
        // Shift+Enter is an end of a line like any other.
        if (IsEnter(*event) && event->modifiers().testFlag(Qt::ShiftModifier) && !isReadOnly())
            return insertPlainText(u"\n"_s);
        QPlainTextEdit::keyPressEvent(event);
    }
};

/// The window of a memo: part of the grid's form, so that input methods and the focus are as
/// everywhere on it, and gone from sight together with the grid.
class TMemoFrame : public QFrame
{
public:
    TMemoFrame(QWidget &over, bool isReadOnly) : QFrame(over.window(), Qt::SubWindow), FOver(over)
    {
        hide();
        setPalette(over.palette());
        setAutoFillBackground(true);
        setFrameStyle(QFrame::Box | QFrame::Plain);
        auto *buttons = new QHBoxLayout;
        buttons->addStretch();
        if (!isReadOnly)
            AddButton(*buttons, u"确定"_s, OnAccept);
        AddButton(*buttons, isReadOnly ? u"关闭"_s : u"取消"_s, OnCancel);
        buttons->addWidget(new QSizeGrip(this), 0, Qt::AlignBottom | Qt::AlignRight);
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(1, 1, 1, 1);
        layout->setSpacing(2);
        layout->addWidget(&Text);
        layout->addLayout(buttons);
        setFocusProxy(&Text);
        over.installEventFilter(this);
    }

    /// Under the cell, or over it where the form ends.
    void PlaceAt(const QRect &cell)
    {
        const QRect room = parentWidget()->rect();
        const QRect at(FOver.mapTo(parentWidget(), cell.topLeft()), cell.size());
        setMinimumSize(Smallest.boundedTo(room.size()));
        if (!FIsPlaced)
            resize(Smallest.expandedTo({at.width(), 0}).boundedTo(room.size()));
        FIsPlaced = true;
        int top = at.bottom() + 1;
        if (top + height() > room.height() && at.top() - height() >= 0)
            top = at.top() - height();
        move(qBound(0, at.left(), qMax(0, room.width() - width())),
             qBound(0, top, qMax(0, room.height() - height())));
        raise();
    }

    TMemoText Text;
    TEvent<> OnAccept, OnCancel;

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (object == &FOver && !event->spontaneous()) {
            if (event->type() == QEvent::Hide && isVisible()) {
                FReturns = true; // unless it can be stored
                hide();
                OnAccept();
            } else if (event->type() == QEvent::Show && std::exchange(FReturns, false)) {
                show();
            }
        }
        return QFrame::eventFilter(object, event);
    }
    // What the text and the buttons leave over is not the form's.
    void keyPressEvent(QKeyEvent *event) override
    {
        auto *button = qobject_cast<QPushButton *>(focusWidget());
        if (IsEnter(*event) && button && button->hasFocus())
            button->click();
        event->accept();
    }
    void mousePressEvent(QMouseEvent *event) override { event->accept(); }
    void wheelEvent(QWheelEvent *event) override { event->accept(); }

private:
    static constexpr QSize Smallest{320, 160};

    void AddButton(QHBoxLayout &layout, const QString &text, const TEvent<> &event)
    {
        auto *button = new QPushButton(text, this);
        button->setAutoDefault(false);
        layout.addWidget(button);
        connect(button, &QAbstractButton::clicked, this, [&event] { event(); });
    }

    QWidget &FOver;
    bool FIsPlaced = false;
    bool FReturns = false; // hidden together with the grid
};

class TMemoEditor : public TCellEditor
{
public:
    explicit TMemoEditor(const TCellEditorRequest &request)
        : FFrame(new TMemoFrame(*request.Parent, request.ReadOnly))
    {
        TMemoText &text = FFrame->Text;
        text.setAccessibleName(request.Field.DisplayLabel());
        text.setLineWrapMode(request.MemoAttributes.testFlag(mWordWrap) ? QPlainTextEdit::WidgetWidth
                                                                        : QPlainTextEdit::NoWrap);
        if (request.ReadOnly) {
            text.setReadOnly(true);
            text.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        }
        QObject::connect(&text, &QPlainTextEdit::textChanged, &text, [this] { OnChange(); });
        FFrame->OnCancel = [this] { Leave(); };
        FFrame->OnAccept =
            text.OnEnter = [this] { FFrame->Text.document()->isModified() ? OnAccept() : Leave(); };
    }
    /// The form may have gone first, and the frame with it.
    ~TMemoEditor() override { delete FFrame; }

    QWidget *Widget() override { return FFrame; }
    void Place(const QRect &cell, const QRect &) override { FFrame->PlaceAt(cell); }
    /// The cursor behind the text; nothing is selected, since one key would replace it all.
    void Load(TField &field) override
    {
        const QString text = field.IsBlob() ? field.AsString() : field.Text();
        const bool hasCr = text.contains(u'\r'), hasLf = text.contains(u'\n');
        FLineEnd = text.contains(u"\r\n"_s) || hasCr == hasLf ? u"\r\n"_s : hasLf ? u"\n"_s : u"\r"_s;
        const QSignalBlocker blocker(FFrame->Text);
        FFrame->Text.setPlainText(text);
        FFrame->Text.moveCursor(FFrame->Text.isReadOnly() ? QTextCursor::Start : QTextCursor::End);
    }
    /// Raises EConvertError for a text that is too long for its field.
    void Store(TField &field) override
    {
        const QString text = FFrame->Text.Text(FLineEnd);
        if (!field.IsBlob() && field.Size() > 0 && text.size() > field.Size())
            throw EConvertError(
                u"“%1”有%2个字符，最多%3个"_s.arg(field.DisplayLabel()).arg(text.size()).arg(field.Size()));
        if (field.IsBlob())
            field.SetAsString(text);
        else
            field.SetText(text);
        FFrame->Text.document()->setModified(false);
    }
    /// Ctrl+Z brings the value back.
    void TypeOver(const QString &text) override
    {
        const QSignalBlocker blocker(FFrame->Text);
        FFrame->Text.selectAll();
        FFrame->Text.insertPlainText(text);
    }
    bool KeepsKey(const QKeyEvent &key) const override { return key.key() != Qt::Key_Escape; }

private:
    /// Without a change, as the grid does it by Esc.
    void Leave()
    {
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QCoreApplication::sendEvent(&FFrame->Text, &key);
    }

    const QPointer<TMemoFrame> FFrame;
    QString FLineEnd;
};

} // namespace

std::unique_ptr<TCellEditor> MakeMemoEditor(const TCellEditorRequest &request)
{
    return std::make_unique<TMemoEditor>(request);
}

} // namespace Korvane
