// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QMessageBox>

namespace Korvane {

/// One message box with the buttons, the symbol and the default button of its flags.
class TMessageWindow : public QMessageBox
{
public:
    /// Raises Exception for buttons that do not exist.
    TMessageWindow(const QString &text, const QString &caption, int flags, QWidget *parent);

    /// The answer of the button that was pressed, or what stands for none.
    int Answer() const;
    /// What a box with these flags answers without a button.
    static int AnswerOfNone(int flags);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void AddButtons();
    void SetText(const QString &text);
    void CopyAll() const;

    const int FFlags;
    QString FText;
    QList<QAbstractButton *> FButtons; // in the order of the flags, each with its answer as a property
};

} // namespace Korvane
