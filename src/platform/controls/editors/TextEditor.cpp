// SPDX-License-Identifier: MIT
#include "platform/controls/editors/CellEditor.h"

#include <QKeyEvent>
#include <QLineEdit>

namespace Korvane {

namespace {

/// A line that holds what the field takes: declared length and characters.
class TCellEdit : public QLineEdit
{
public:
    TCellEdit(const TField &field, QWidget *parent) : QLineEdit(parent), FField(&field)
    {
        setFrame(false);
        setAutoFillBackground(true);
        if (!field.IsBlob() && field.Size() > 0)
            setMaxLength(field.Size());
        setAlignment((field.Alignment() & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter);
        setAccessibleName(field.DisplayLabel());
    }

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        const QString text = event->text();
        if (text.size() == 1 && text[0].isPrint() && FField && !FField->IsValidChar(text[0]))
            return event->accept(); // a letter in a number
        QLineEdit::keyPressEvent(event);
    }

private:
    const QPointer<const TField> FField;
};

class TTextEditor : public TCellEditor
{
public:
    explicit TTextEditor(const TCellEditorRequest &request)
        : FEdit(std::make_unique<TCellEdit>(request.Field, request.Parent))
    {
        QObject::connect(FEdit.get(), &QLineEdit::textEdited, FEdit.get(), [this] { OnChange(); });
    }

    QWidget *Widget() override { return FEdit.get(); }
    void Load(TField &field) override
    {
        FEdit->setText(field.Text());
        FEdit->selectAll();
    }
    void Store(TField &field) override { field.SetText(FEdit->text()); }
    void TypeOver(const QString &text) override { FEdit->setText(text); }

    bool KeepsKey(const QKeyEvent &key) const override { return LineKeepsKey(*FEdit, key); }

private:
    const std::unique_ptr<TCellEdit> FEdit;
};

} // namespace

std::unique_ptr<TCellEditor> MakeTextEditor(const TCellEditorRequest &request)
{
    return std::make_unique<TTextEditor>(request);
}

} // namespace Korvane
