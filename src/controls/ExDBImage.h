// SPDX-License-Identifier: MIT
#pragma once

#include "controls/PictureCache.h"
#include "platform/controls/PaintCopy.h"
#include "platform/data/dataset/DataLink.h"
#include "platform/forms/BorderStyle.h"
#include "platform/graphics/Color.h"
#include "platform/graphics/Picture.h"

#include <QFrame>

namespace Korvane {

class TBlobField;

/// (graphic, stream): reads the stream, which stands at its beginning, into a new picture of a format that
/// the control does not know. Left null, or raising, there is no picture.
using TLoadCustomImageEvent = TEvent<std::unique_ptr<TGraphic> &, QIODevice &>;

/// Shows and edits the picture in a blob field, whose format is told by its first two bytes: bitmap, icon,
/// metafile, JPEG, or the library's own header. Anything else goes to OnLoadCustomImage. What cannot be
/// read shows as an empty picture, and its bytes stay in the field as long as the picture is not changed.
///
/// With AutoDisplay off it shows the field's label in parentheses until Enter or a double click.
class TExDBImage : public QFrame, public TPaintCopy
{
    Q_OBJECT
    Q_PROPERTY(QString Name READ Name WRITE SetName STORED false)
    Q_PROPERTY(bool AutoDisplay READ AutoDisplay WRITE SetAutoDisplay)
    Q_PROPERTY(Korvane::TBorderStyle BorderStyle READ BorderStyle WRITE SetBorderStyle)
    Q_PROPERTY(bool Center READ Center WRITE SetCenter)
    Q_PROPERTY(Korvane::TColor Color READ Color WRITE SetColor)
    Q_PROPERTY(QString DataField READ DataField WRITE SetDataField)
    Q_PROPERTY(Korvane::TDataSource *DataSource READ DataSource WRITE SetDataSource)
    Q_PROPERTY(bool ParentColor READ ParentColor WRITE SetParentColor)
    Q_PROPERTY(bool QuickDraw READ QuickDraw WRITE SetQuickDraw)
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE SetReadOnly)
    Q_PROPERTY(bool Stretch READ Stretch WRITE SetStretch)
    Q_PROPERTY(bool TabStop READ TabStop WRITE SetTabStop)

public:
    /// The commands of an edit menu.
    enum TEditCommand { ecCopy, ecCut, ecPaste, ecClear, ecUndo };
    Q_ENUM(TEditCommand)

    explicit TExDBImage(QWidget *parent = nullptr);

    QString Name() const { return objectName(); }
    void SetName(const QString &name) { setObjectName(name); }
    /// Whether each change of the data loads the picture. On by default.
    bool AutoDisplay() const { return FAutoDisplay; }
    /// Switching it on loads the picture.
    void SetAutoDisplay(bool display);
    TBorderStyle BorderStyle() const { return FBorderStyle; }
    void SetBorderStyle(TBorderStyle style);
    /// Whether a picture that is not stretched stands in the middle. On by default.
    bool Center() const { return FCenter; }
    void SetCenter(bool center);
    /// What lies below the picture; clWindow by default.
    TColor Color() const { return FColor; }
    /// Ends ParentColor.
    void SetColor(TColor color);
    /// Whether the parent's background is taken for Color. Off by default.
    bool ParentColor() const { return FParentColor; }
    void SetParentColor(bool parentColor);
    const QString &DataField() const { return FLink.FieldName(); }
    void SetDataField(const QString &name) { FLink.SetFieldName(name); }
    TDataSource *DataSource() const { return FLink.DataSource(); }
    void SetDataSource(TDataSource *source) { FLink.SetDataSource(source); }
    /// Whether a bitmap painted in a cell of a grid ignores its palette. Screens have no palette of their
    /// own any more, so that both look the same.
    bool QuickDraw() const { return FQuickDraw; }
    void SetQuickDraw(bool quickDraw) { FQuickDraw = quickDraw; }
    bool ReadOnly() const { return FLink.ReadOnly(); }
    void SetReadOnly(bool readOnly) { FLink.SetReadOnly(readOnly); }
    /// Whether the picture takes the control's size.
    bool Stretch() const { return FStretch; }
    void SetStretch(bool stretch);
    bool TabStop() const { return focusPolicy() & Qt::TabFocus; }
    void SetTabStop(bool stop) { setFocusPolicy(stop ? Qt::TabFocus : Qt::NoFocus); }

    /// Null while the dataset is closed or has no such field.
    TField *Field() const { return FLink.Field(); }
    /// What is shown. Changing it changes the field when the row's edit is saved.
    TPicture &Picture() { return FPicture; }
    const TPicture &Picture() const { return FPicture; }

    /// Loads the field's picture, unless it is loaded or the field is no blob.
    void LoadPicture();
    void CopyToClipboard();
    /// Begins an edit. Nothing without a picture, and where the field cannot be edited.
    void CutToClipboard();
    /// Begins an edit. Nothing without a picture on the clipboard, and where the field cannot be edited.
    /// Raises EInvalidGraphic for a picture that cannot be read.
    void PasteFromClipboard();
    /// Puts a file's bytes into the field, whatever they are. Begins an edit. Raises EFileError, and
    /// EDatabaseError where the field cannot be edited. Nothing unless the field is a blob.
    void LoadFromFile(const QString &fileName);
    /// Writes the field's bytes as they are. Nothing before the picture is loaded, and unless the field
    /// is a blob. Raises EFileError.
    void SaveToFile(const QString &fileName);

    /// Does a command of an edit menu if it can be done now; false if not.
    bool ExecuteAction(TEditCommand command);
    /// Whether a command can be done now.
    bool UpdateAction(TEditCommand command) const;

    /// The data are others.
    void DataChange();
    /// Writes the picture into the field. A picture that cannot be written makes it NULL.
    void UpdateData();
    /// The picture is another.
    void PictureChanged();

    void PaintCopy(QPainter &painter, const QRect &cell, TField &field) override;
    QSize sizeHint() const override { return {105, 105}; }

    TLoadCustomImageEvent OnLoadCustomImage;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    TBlobField *BlobField() const;
    std::unique_ptr<TGraphic> ReadBlob(const QByteArray &bytes) const;
    void ShowGraphic(std::unique_ptr<TGraphic> graphic);
    void ClearPicture();
    bool CanEdit() const;
    QPixmap Render(const TGraphic &graphic, QSize size, qreal ratio) const;
    QColor FillColor() const;
    QString Caption() const;
    void Repaint();

    bool FAutoDisplay = true;
    TBorderStyle FBorderStyle = bsNone;
    bool FCenter = true;
    TColor FColor = clWindow;
    bool FParentColor = false;
    bool FQuickDraw = true;
    bool FStretch = false;
    bool FPictureLoaded = false;
    bool FIsLoading = false; // the picture changes by the control itself
    QString FFieldLabel;     // the accessible name that was taken from the field
    TPicture FPicture;
    QPixmap FShown; // the picture as it was painted last
    TPictureCache FCopies;
    TFieldDataLink FLink; // NOTE: goes first, since what it tells needs the others
};

} // namespace Korvane
