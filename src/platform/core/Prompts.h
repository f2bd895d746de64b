// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <memory>

namespace Korvane {

/// Flags of a message box: one button set, one symbol and the default button, added up.
enum TMessageFlag {
    MB_OK = 0,
    MB_OKCANCEL = 1,
    MB_ABORTRETRYIGNORE = 2,
    MB_YESNOCANCEL = 3,
    MB_YESNO = 4,
    MB_RETRYCANCEL = 5,
    MB_ICONERROR = 0x10,
    MB_ICONQUESTION = 0x20,
    MB_ICONWARNING = 0x30,
    MB_ICONINFORMATION = 0x40,
    MB_DEFBUTTON2 = 256,
    MB_DEFBUTTON3 = 512,
    MB_TOPMOST = 0x40000 ///< the box stays above all windows
};
inline constexpr int MB_BUTTONS = 0x0F;          ///< the part of the flags that is the button set
inline constexpr int MB_ICONS = 0xF0;            ///< the part that is the symbol
inline constexpr int MB_DEFAULT_BUTTONS = 0xF00; ///< the part that is the default button

/// Answers of a message box.
enum TMessageAnswer {
    IDOK = 1,
    IDCANCEL = 2,
    IDABORT = 3,
    IDRETRY = 4,
    IDIGNORE = 5,
    IDYES = 6,
    IDNO = 7
};

/// How the library talks to the person at the machine. Without a window this is the console; the
/// windowed form and tests install their own.
class Prompts
{
public:
    virtual ~Prompts() = default;

    virtual int MessageBox(const QString &text, const QString &caption, int flags) = 0;
    /// Asks for a line of text; false, with the value unchanged, if it is cancelled.
    virtual bool InputText(const QString &caption, const QString &prompt, QString &value) = 0;
    /// A file that exists; empty if cancelled. The filter is like "文本文件 (*.txt);;所有文件 (*)".
    virtual QString OpenFileName(const QString &title, const QString &filter, const QString &startName) = 0;
    virtual QString SaveFileName(const QString &title, const QString &filter, const QString &startName) = 0;
    /// A folder that exists; empty if cancelled.
    virtual QString SelectFolder(const QString &title) = 0;

    static Prompts &Current();
    /// Gives back the prompts before; null puts the console back.
    static std::shared_ptr<Prompts> Install(std::shared_ptr<Prompts> prompts);
};

} // namespace Korvane
