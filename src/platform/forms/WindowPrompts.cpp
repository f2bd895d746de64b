// SPDX-License-Identifier: MIT
#include "platform/forms/WindowPrompts.h"

#include "platform/core/Cursor.h"
#include "platform/forms/MessageWindow.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QPointer>
#include <QRegularExpression>

namespace Korvane {

using namespace Qt::StringLiterals;

namespace {

/// What waits for the user shows no hourglass.
class TNoHourGlass
{
public:
    TNoHourGlass() : FSaved(ScreenCursor()) { SetScreenCursor(crDefault); }
    ~TNoHourGlass() { SetScreenCursor(FSaved); }
    TNoHourGlass(const TNoHourGlass &) = delete;
    TNoHourGlass &operator=(const TNoHourGlass &) = delete;

private:
    const TCursor FSaved;
};

/// A dialog over the active window. It may be freed with that while it is shown, and is then null.
template <class Dialog> class TShown
{
public:
    template <class... Args>
    explicit TShown(Args &&...args) : FDialog(new Dialog(std::forward<Args>(args)..., Parent()))
    {
    }
    ~TShown() { delete FDialog.data(); }
    TShown(const TShown &) = delete;
    TShown &operator=(const TShown &) = delete;

    Dialog *operator->() const { return FDialog; }
    /// Whether it is still there after it was answered.
    bool Run()
    {
        const TNoHourGlass cursor;
        FIsAccepted = FDialog->exec() == QDialog::Accepted;
        return FDialog != nullptr;
    }
    bool IsAccepted() const { return FIsAccepted && FDialog; }

private:
    static QWidget *Parent()
    {
        QWidget *modal = QApplication::activeModalWidget();
        return modal != nullptr ? modal : QApplication::activeWindow();
    }

    QPointer<Dialog> FDialog;
    bool FIsAccepted = false;
};

/// The suffix of a filter like "工作簿 (*.xlsx *.xls)"; empty if it takes any.
QString SuffixOf(const QString &filter)
{
    static const QRegularExpression suffix(u"\\(\\s*\\*\\.(\\w+)"_s);
    return suffix.match(filter).captured(1);
}

void StartAt(QFileDialog &dialog, const QString &name)
{
    const QFileInfo info(name);
    if (info.isDir()) {
        dialog.setDirectory(name);
    } else if (!name.isEmpty()) {
        dialog.setDirectory(info.path());
        dialog.selectFile(info.fileName());
    }
}

QString RunFileDialog(TShown<QFileDialog> &dialog, const QString &startName)
{
    StartAt(*dialog.operator->(), startName);
    return dialog.Run() && dialog.IsAccepted() ? dialog->selectedFiles().value(0) : QString();
}

} // namespace

int TWindowPrompts::MessageBox(const QString &text, const QString &caption, int flags)
{
    TShown<TMessageWindow> box(text, caption, flags);
    return box.Run() ? box->Answer() : TMessageWindow::AnswerOfNone(flags);
}

bool TWindowPrompts::InputText(const QString &caption, const QString &prompt, QString &value)
{
    TShown<QInputDialog> dialog;
    dialog->setWindowTitle(caption);
    dialog->setLabelText(prompt);
    dialog->setTextValue(value);
    dialog->setOkButtonText(u"确定"_s);
    dialog->setCancelButtonText(u"取消"_s);
    if (!dialog.Run() || !dialog.IsAccepted())
        return false;
    value = dialog->textValue();
    return true;
}

QString TWindowPrompts::OpenFileName(const QString &title, const QString &filter, const QString &startName)
{
    TShown<QFileDialog> dialog;
    dialog->setWindowTitle(title);
    dialog->setNameFilter(filter);
    dialog->setFileMode(QFileDialog::ExistingFile);
    return RunFileDialog(dialog, startName);
}

QString TWindowPrompts::SaveFileName(const QString &title, const QString &filter, const QString &startName)
{
    TShown<QFileDialog> dialog;
    dialog->setWindowTitle(title);
    dialog->setNameFilter(filter);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    QFileDialog *saving = dialog.operator->();
    saving->setDefaultSuffix(SuffixOf(saving->selectedNameFilter()));
    QObject::connect(saving, &QFileDialog::filterSelected, saving,
                     [saving](const QString &chosen) { saving->setDefaultSuffix(SuffixOf(chosen)); });
    return RunFileDialog(dialog, startName);
}

QString TWindowPrompts::SelectFolder(const QString &title)
{
    TShown<QFileDialog> dialog;
    dialog->setWindowTitle(title);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    return RunFileDialog(dialog, QString());
}

} // namespace Korvane
