// SPDX-License-Identifier: MIT
#include "controls/ExDBImage.h"

#include "platform/data/dataset/DataSet.h"
#include "platform/data/dataset/Fields.h"
#include "platform/graphics/GraphicFormats.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QScopedValueRollback>

namespace Korvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int DefaultSide = 105;

/// What a key means to the control, if anything.
std::optional<TExDBImage::TEditCommand> CommandOf(const QKeyEvent &event)
{
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const bool isShift = modifiers == Qt::ShiftModifier;
    const bool isControl = modifiers == Qt::ControlModifier;
    switch (event.key()) {
    case Qt::Key_Insert:
        if (isShift)
            return TExDBImage::ecPaste;
        return isControl ? std::optional(TExDBImage::ecCopy) : std::nullopt;
    case Qt::Key_Delete:
        if (isShift)
            return TExDBImage::ecCut;
        return isControl ? std::optional(TExDBImage::ecClear) : std::nullopt;
    case Qt::Key_C:
        return isControl ? std::optional(TExDBImage::ecCopy) : std::nullopt;
    case Qt::Key_V:
        return isControl ? std::optional(TExDBImage::ecPaste) : std::nullopt;
    case Qt::Key_X:
        return isControl ? std::optional(TExDBImage::ecCut) : std::nullopt;
    case Qt::Key_Z:
        return isControl ? std::optional(TExDBImage::ecUndo) : std::nullopt;
    default:
        return {};
    }
}

/// Whether the keyboard goes to another control of the form, and not to a menu or another window.
bool IsExit(Qt::FocusReason reason)
{
    return reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason &&
           reason != Qt::MenuBarFocusReason;
}

} // namespace

TExDBImage::TExDBImage(QWidget *parent) : QFrame(parent)
{
    resize(DefaultSide, DefaultSide);
    SetBorderStyle(bsSingle);
    SetTabStop(true);
    FPicture.OnChange = [this] { PictureChanged(); };
    FLink.OnDataChange = [this] { DataChange(); };
    FLink.OnUpdateData = [this] { UpdateData(); };
}

// ---- properties -----------------------------------------------------------------------

void TExDBImage::SetAutoDisplay(bool display)
{
    if (display == FAutoDisplay)
        return;
    FAutoDisplay = display;
    if (display)
        LoadPicture();
}

void TExDBImage::SetBorderStyle(TBorderStyle style)
{
    FBorderStyle = style == bsNone ? bsNone : bsSingle;
    setFrameStyle(FBorderStyle == bsNone ? int(QFrame::NoFrame) : int(QFrame::StyledPanel) | QFrame::Sunken);
    Repaint();
}

void TExDBImage::SetCenter(bool center)
{
    FCenter = center;
    Repaint();
}

void TExDBImage::SetColor(TColor color)
{
    FColor = color;
    FParentColor = false;
    update();
}

void TExDBImage::SetParentColor(bool parentColor)
{
    FParentColor = parentColor;
    update();
}

void TExDBImage::SetStretch(bool stretch)
{
    FStretch = stretch;
    Repaint();
}

void TExDBImage::Repaint()
{
    FShown = {};
    update();
}

// ---- data -----------------------------------------------------------------------------

TBlobField *TExDBImage::BlobField() const { return qobject_cast<TBlobField *>(FLink.Field()); }

/// Null for what cannot be read: a damaged row must not keep the user from the others.
std::unique_ptr<TGraphic> TExDBImage::ReadBlob(const QByteArray &bytes) const
{
    std::unique_ptr<TGraphic> graphic;
    if (HasGraphicHeader(bytes)) {
        try {
            graphic = ReadWithHeader(bytes);
        } catch (const std::exception &) {
            graphic.reset();
        }
        return graphic; // the own format is never the application's
    }
    QBuffer stream;
    stream.setData(bytes);
    stream.open(QIODevice::ReadOnly);
    graphic = NewGraphicOf(bytes);
    if (graphic) {
        try {
            graphic->LoadFromStream(stream);
        } catch (const std::exception &) {
            graphic.reset();
        }
    }
    if (!graphic && OnLoadCustomImage) {
        try {
            stream.seek(0);
            OnLoadCustomImage(graphic, stream);
        } catch (const std::exception &) {
            graphic.reset();
        }
    }
    return graphic;
}

void TExDBImage::ShowGraphic(std::unique_ptr<TGraphic> graphic)
{
    const QScopedValueRollback loading(FIsLoading, true);
    FPicture.SetGraphic(std::move(graphic));
}

void TExDBImage::LoadPicture()
{
    const TField *field = Field();
    if (FPictureLoaded || (field && !field->IsBlob()))
        return;
    ShowGraphic(field && !field->IsNull() ? ReadBlob(field->AsBytes()) : nullptr);
}

void TExDBImage::DataChange()
{
    ShowGraphic(nullptr);
    FPictureLoaded = false;
    const QString label = Field() ? Field()->DisplayLabel() : QString();
    if (accessibleName() == FFieldLabel) // else the application has given one
        setAccessibleName(label);
    FFieldLabel = label;
    if (FAutoDisplay)
        LoadPicture();
    update();
}

void TExDBImage::PictureChanged()
{
    // NOTE: what the control shows of the field is no change of the field. Marked as one, a picture that is
    // not loaded or cannot be read would be written back as none.
    if (!FIsLoading)
        FLink.Modified();
    FPictureLoaded = true;
    Repaint();
}

void TExDBImage::UpdateData()
{
    TField *field = Field();
    if (!field || !field->IsBlob())
        return;
    try {
        if (!FPicture.Graphic())
            throw EInvalidGraphic(u"没有图片可以保存"_s);
        QBuffer stream;
        stream.open(QIODevice::WriteOnly);
        FPicture.Graphic()->SaveToStream(stream);
        field->SetAsBytes(stream.data());
    } catch (const std::exception &) {
        field->Clear(); // meant: without a picture that can be stored, there is none
    }
}

// ---- commands -------------------------------------------------------------------------

void TExDBImage::CopyToClipboard()
{
    if (!FPicture.Empty())
        QGuiApplication::clipboard()->setMimeData(FPicture.ToMimeData().release());
}

void TExDBImage::CutToClipboard()
{
    if (!FLink.Edit())
        return;
    LoadPicture(); // beginning the edit has shown the field anew
    if (FPicture.Empty())
        return;
    CopyToClipboard();
    FPicture.Assign(nullptr);
}

void TExDBImage::PasteFromClipboard()
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    if (!data || !TPicture::HasPicture(*data) || !CanEdit())
        return;
    TPicture pasted;
    if (!pasted.LoadFromMimeData(*data))
        throw EInvalidGraphic(u"剪贴板中的图片不能识别"_s);
    if (FLink.Edit())
        FPicture.Assign(pasted);
}

void TExDBImage::ClearPicture()
{
    if (FLink.Edit())
        FPicture.Assign(nullptr);
}

void TExDBImage::LoadFromFile(const QString &fileName)
{
    if (!BlobField())
        return;
    const QString name = Field()->DisplayLabel();
    const bool isEditing = FLink.Edit();
    TBlobField *blob = BlobField();
    if (!isEditing || !blob)
        throw EDatabaseError(u"字段“%1”现在不能修改"_s.arg(name));
    blob->LoadFromFile(fileName); // which shows the field anew
    LoadPicture();
    const QScopedValueRollback loading(FIsLoading, true); // the bytes stand in the field already
    PictureChanged();
}

void TExDBImage::SaveToFile(const QString &fileName)
{
    if (const TBlobField *blob = BlobField(); blob && FPictureLoaded)
        blob->SaveToFile(fileName);
}

bool TExDBImage::CanEdit() const
{
    return FLink.CanModify() && (FLink.Editing() || FLink.DataSource()->AutoEdit());
}

bool TExDBImage::UpdateAction(TEditCommand command) const
{
    switch (command) {
    case ecCopy:
        return !FPicture.Empty();
    case ecCut:
        return CanEdit() && (FPictureLoaded ? !FPicture.Empty() : !Field()->IsNull());
    case ecPaste: {
        const QMimeData *data = QGuiApplication::clipboard()->mimeData();
        return CanEdit() && data && TPicture::HasPicture(*data);
    }
    case ecClear:
        return CanEdit() && (!Field()->IsNull() || !FPicture.Empty());
    case ecUndo:
        return FLink.IsModified();
    }
    return false;
}

bool TExDBImage::ExecuteAction(TEditCommand command)
{
    if (!UpdateAction(command))
        return false;
    switch (command) {
    case ecCopy:
        CopyToClipboard();
        break;
    case ecCut:
        CutToClipboard();
        break;
    case ecPaste:
        PasteFromClipboard();
        break;
    case ecClear:
        ClearPicture();
        break;
    case ecUndo:
        FLink.Reset();
        break;
    }
    return true;
}

// ---- keys, mouse, focus ---------------------------------------------------------------

bool TExDBImage::event(QEvent *event)
{
    // With the keyboard, the control's keys go before the short cuts of the window.
    if (event->type() == QEvent::ShortcutOverride && CommandOf(static_cast<QKeyEvent &>(*event))) {
        event->accept();
        return true;
    }
    return QFrame::event(event);
}

void TExDBImage::keyPressEvent(QKeyEvent *event)
{
    QFrame::keyPressEvent(event);
    if (const auto command = CommandOf(*event)) {
        event->accept();
        ExecuteAction(*command);
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        // With nothing to load, the key goes on to the form's default button.
        event->setAccepted(!FPictureLoaded);
        LoadPicture();
    } else if (event->key() == Qt::Key_Escape) {
        event->setAccepted(FLink.IsModified());
        FLink.Reset();
    }
}

void TExDBImage::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && TabStop() && isEnabled())
        setFocus(Qt::MouseFocusReason);
    QFrame::mousePressEvent(event);
}

void TExDBImage::mouseDoubleClickEvent(QMouseEvent *event)
{
    LoadPicture();
    QFrame::mouseDoubleClickEvent(event);
}

void TExDBImage::focusInEvent(QFocusEvent *event)
{
    update();
    QFrame::focusInEvent(event);
}

void TExDBImage::focusOutEvent(QFocusEvent *event)
{
    const QPointer<TExDBImage> self(this);
    const TDataSet *set = FLink.DataSet();
    if (IsExit(event->reason()) && set && (set->State() == dsEdit || set->State() == dsInsert)) {
        try {
            FLink.UpdateRecord();
        } catch (...) {
            if (self)
                setFocus();
            throw;
        }
    }
    if (!self)
        return;
    update();
    QFrame::focusOutEvent(event);
}

// ---- painting -------------------------------------------------------------------------

QColor TExDBImage::FillColor() const
{
    if (FParentColor && parentWidget())
        return parentWidget()->palette().color(parentWidget()->backgroundRole());
    return ToQColor(FColor, palette());
}

QString TExDBImage::Caption() const { return u"(%1)"_s.arg(Field() ? Field()->DisplayLabel() : Name()); }

/// The picture on an area of a size; null if there is nothing to see.
QPixmap TExDBImage::Render(const TGraphic &graphic, QSize size, qreal ratio) const
{
    if (graphic.Empty())
        return {};
    QRect rect(QPoint(), FStretch ? size : graphic.Size());
    if (FCenter && !FStretch)
        rect.moveTo((size.width() - rect.width()) / 2, (size.height() - rect.height()) / 2);
    return RenderGraphic(graphic, size, rect, ratio);
}

void TExDBImage::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRect client = contentsRect();
    if (const QColor fill = FillColor(); fill.isValid())
        painter.fillRect(client, fill);
    drawFrame(&painter);
    if (FPictureLoaded) {
        const qreal ratio = devicePixelRatioF();
        if (!FPicture.Empty() && (FShown.deviceIndependentSize().toSize() != client.size() ||
                                  FShown.devicePixelRatio() != ratio)) {
            try {
                FShown = Render(*FPicture.Graphic(), client.size(), ratio);
            } catch (const std::exception &) {
                FShown = {}; // an application's own picture, which leaves the fill
            }
        }
        if (!FPicture.Empty() && !FShown.isNull())
            painter.drawPixmap(client.topLeft(), FShown);
    } else {
        painter.setClipRect(client);
        painter.setPen(ToQColor(clWindowText, palette()));
        painter.drawText(client, Qt::AlignCenter, Caption());
        painter.setClipping(false);
    }
    if (window()->focusWidget() == this) {
        painter.setPen(ToQColor(clWindowFrame, palette()));
        painter.drawRect(client.adjusted(0, 0, -1, -1));
    }
}

void TExDBImage::PaintCopy(QPainter &painter, const QRect &cell, TField &field)
{
    painter.save();
    if (const QColor fill = FillColor(); fill.isValid())
        painter.fillRect(cell, fill);
    try {
        if (field.IsBlob() && !field.IsNull()) {
            const QByteArray bytes = field.AsBytes();
            const qreal ratio = painter.device()->devicePixelRatioF();
            const TPictureCache::TPlace place{cell.size(), ratio, FStretch, FCenter, bool(OnLoadCustomImage)};
            const QPixmap pixmap = FCopies.Find(bytes, place, [&] {
                const auto graphic = ReadBlob(bytes);
                return graphic ? Render(*graphic, cell.size(), ratio) : QPixmap();
            });
            if (!pixmap.isNull())
                painter.drawPixmap(cell.topLeft(), pixmap);
        }
    } catch (const std::exception &) {
        // The fill is all that is painted of a picture that fails.
    }
    painter.restore();
}

} // namespace Korvane
