// SPDX-License-Identifier: MIT
#include "platform/controls/editors/CellEditor.h"
#include "platform/controls/editors/DropDownEdit.h"
#include "platform/core/Exceptions.h"

#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QListWidget>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

/// Typing completes by the first text of the list that begins so, blind to case; what was not typed
/// is selected, so that the next letter takes its place.
class TComboLine : public TDropDownEdit
{
public:
    TComboLine(const TCellEditorRequest &request)
        : TDropDownEdit(request.Field, request.Parent), FTexts(request.Control.Shown)
    {
        Button().setAccessibleName(u"打开列表"_s);
        // A text of the list may be longer than what it stands for.
        qsizetype longest = request.Field.IsBlob() ? 0 : request.Field.Size();
        if (longest > 0) {
            for (const QString &text : FTexts)
                longest = qMax(longest, text.size());
            setMaxLength(int(longest));
        }
    }

    void Complete()
    {
        const QString typed = text();
        if (typed.isEmpty() || hasSelectedText() || cursorPosition() < typed.size())
            return;
        const auto found = std::find_if(FTexts.begin(), FTexts.end(), [&](const QString &text) {
            return text.startsWith(typed, Qt::CaseInsensitive);
        });
        if (found == FTexts.end() || found->size() == typed.size())
            return;
        insert(found->mid(typed.size()));
        setSelection(int(text().size()), int(typed.size() - text().size()));
    }

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        TDropDownEdit::keyPressEvent(event);
        const bool isCommand =
            event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
        if (!isCommand && !event->text().isEmpty() && event->text()[0].isPrint())
            Complete();
    }
    void inputMethodEvent(QInputMethodEvent *event) override
    {
        TDropDownEdit::inputMethodEvent(event);
        if (!event->commitString().isEmpty())
            Complete();
    }

private:
    const QStringList FTexts;
};

/// The list. The line keeps the focus, so that typing and input methods go on.
class TComboList : public TDropDownFrame
{
public:
    TComboList(QLineEdit &line, const QWidget &button, const QStringList &texts)
        : TDropDownFrame(line, button), FList(new QListWidget(this))
    {
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(1, 1, 1, 1);
        layout->addWidget(FList);
        FList->setFrameShape(QFrame::NoFrame);
        FList->setFocusPolicy(Qt::NoFocus);
        FList->setUniformItemSizes(true);
        FList->setMouseTracking(true);
        FList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        FList->setTextElideMode(Qt::ElideRight);
        FList->addItems(texts);
        FList->setAccessibleName(line.accessibleName());
        connect(FList, &QListWidget::itemEntered, FList,
                [this](QListWidgetItem *item) { FList->setCurrentItem(item); });
        connect(FList, &QListWidget::itemClicked, this,
                [this](QListWidgetItem *item) { Choose(FList->row(item)); });
        connect(&line, &QLineEdit::textChanged, this, [this] { FollowLine(); });
    }

    void Open()
    {
        constexpr int MostRows = 10;
        const int rows = qMin(MostRows, FList->count()), frame = 2 * (frameWidth() + 1);
        const int bar = FList->count() > MostRows ? FList->verticalScrollBar()->sizeHint().width() : 0;
        const int height = qMax(1, FList->sizeHintForRow(0));
        TDropDownFrame::Open(
            {qMax(Line().width(), FList->sizeHintForColumn(0) + bar + frame), rows * height + frame});
        FollowLine();
    }

    bool TakeKey(QKeyEvent &key) override
    {
        if (TDropDownFrame::TakeKey(key))
            return true;
        const int row = FList->currentRow(), last = FList->count() - 1;
        const int page = qMax(1, FList->viewport()->height() / qMax(1, FList->sizeHintForRow(0)) - 1);
        switch (key.key()) {
        case Qt::Key_Up:
            return GoTo(row - 1);
        case Qt::Key_Down:
            return GoTo(qMin(last, row + 1));
        case Qt::Key_PageUp:
            return GoTo(row - page);
        case Qt::Key_PageDown:
            return GoTo(qMin(last, row + page));
        case Qt::Key_Return:
        case Qt::Key_Enter:
            Choose(row);
            return true;
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            hide(); // and the grid leaves the cell
            if (row >= 0)
                OnTake(row);
            QCoreApplication::sendEvent(&Line(), &key);
            return true;
        default:
            return false;
        }
    }

    TEvent<int> OnChoose; ///< by the mouse or Enter
    TEvent<int> OnTake;   ///< the cell is left by Tab

protected:
    void keyPressEvent(QKeyEvent *event) override { QCoreApplication::sendEvent(&Line(), event); }
    bool focusNextPrevChild(bool) override { return false; } // Tab is a key of the list

private:
    bool GoTo(int row)
    {
        FList->setCurrentRow(qMax(0, row));
        return true;
    }
    /// The item of the line's text, or the first that begins with what was typed, is the current one.
    void FollowLine()
    {
        if (!isVisible())
            return;
        const QString text = Line().text();
        QList<QListWidgetItem *> found = FList->findItems(text, Qt::MatchFixedString);
        if (found.isEmpty() && !text.isEmpty())
            found = FList->findItems(text, Qt::MatchStartsWith);
        FList->setCurrentItem(found.value(0));
        if (found.isEmpty())
            return FList->clearSelection();
        FList->scrollToItem(found[0]);
    }
    void Choose(int row)
    {
        hide();
        if (row >= 0)
            OnChoose(row);
    }

    QListWidget *const FList;
};

class TComboEditor : public TCellEditor
{
public:
    explicit TComboEditor(const TCellEditorRequest &request)
        : FShown(request.Control.Shown), FStored(request.Control.Stored),
          FLine(std::make_unique<TComboLine>(request))
    {
        QObject::connect(FLine.get(), &QLineEdit::textEdited, FLine.get(), [this] { OnChange(); });
        FLine->OnDrop = [this] { DropDown(); };
    }

    QWidget *Widget() override { return FLine.get(); }
    void Load(TField &field) override
    {
        const QString text = field.Text();
        const qsizetype item = FStored.indexOf(text);
        FLine->setText(item < 0 ? text : FShown[item]);
        FLine->selectAll();
    }
    /// An item is found blind to case unless one is spelled exactly so. Raises EConvertError for any
    /// other text that is too long.
    void Store(TField &field) override
    {
        const QString text = FLine->text();
        qsizetype item = FShown.indexOf(text);
        for (qsizetype i = 0; item < 0 && i < FShown.size(); ++i)
            if (FShown[i].compare(text, Qt::CaseInsensitive) == 0)
                item = i;
        if (item < 0 && !field.IsBlob() && field.Size() > 0 && text.size() > field.Size())
            throw EConvertError(u"“%1”超过%2个字符"_s.arg(text).arg(field.Size()));
        field.SetText(item < 0 ? text : FStored[item]);
    }
    void TypeOver(const QString &text) override
    {
        FLine->setText(text);
        FLine->Complete();
    }
    void DropDown() override
    {
        if (FShown.isEmpty())
            return;
        if (!FList) {
            FList = new TComboList(*FLine, FLine->Button(), FShown);
            FLine->SetPopup(FList);
            FList->OnTake = [this](int item) { Take(item); };
            FList->OnChoose = [this](int item) {
                Take(item);
                OnAccept();
            };
        }
        FList->Open();
    }
    bool KeepsKey(const QKeyEvent &key) const override { return FLine->KeepsKey(key); }

private:
    void Take(int item)
    {
        FLine->setText(FShown[item]);
        FLine->selectAll();
        OnChange();
    }

    const QStringList FShown, FStored;
    const std::unique_ptr<TComboLine> FLine;
    TComboList *FList = nullptr; // the line's
};

} // namespace

std::unique_ptr<TCellEditor> MakeComboEditor(const TCellEditorRequest &request)
{
    return std::make_unique<TComboEditor>(request);
}

} // namespace Korvane
