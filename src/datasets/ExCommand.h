// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Component.h"

#include <QPointer>
#include <QVariant>

#include <initializer_list>

namespace Korvane {

class TDBDFile;
class TDBSession;

/// Runs a named statement of the design file, with macros for the signed-in user and the
/// server's clock and with places for arguments.
///
///     TExCommand close;
///     close.SetCommand("CLOSEORDER"); // "update … set CHECKER='%USERCODE%' where BILLCODE='%s'"
///     close.SetDBDFile(&design);
///     close.SetDBSession(&session);
///     close.Execute({"20230100001"});
class TExCommand : public TComponent
{
    Q_OBJECT
    Q_MOC_INCLUDE("design/DBDFile.h")
    Q_MOC_INCLUDE("session/DBSession.h")
    Q_PROPERTY(QString Command READ Command WRITE SetCommand)
    Q_PROPERTY(Korvane::TDBDFile *DBDFile READ DBDFile WRITE SetDBDFile)
    Q_PROPERTY(Korvane::TDBSession *DBSession READ DBSession WRITE SetDBSession)

public:
    explicit TExCommand(QObject *owner = nullptr);

    /// The command's code in the design file.
    const QString &Command() const { return FCommand; }
    void SetCommand(const QString &command) { FCommand = command; }
    TDBDFile *DBDFile() const;
    void SetDBDFile(TDBDFile *file);
    TDBSession *DBSession() const;
    void SetDBSession(TDBSession *session);

    /// Raise Exception when the property is not set; open the file, connect the session.
    void CheckDBDFile() const;
    void CheckDBSession() const;

    /// The text for the session's dialect with the macros "%USERCODE%", "%USERGROUP%",
    /// "%ISSUPER%", "%DATETIME%", "%DATE%" and "%TIME%" filled in, unquoted. Asks the server for
    /// its clock three times, whether or not the text needs it.
    QString GetCommandSQL();
    /// Always true; failures are those of TDBSession::Execute.
    bool Execute();
    /// Fills the text's places, after the macros, as Format does.
    bool Execute(const QVariantList &args);
    bool Execute(std::initializer_list<QVariant> args) { return Execute(QVariantList(args)); }
    /// Shows the statement that would run.
    void Debug(const QVariantList &args);
    void Debug(std::initializer_list<QVariant> args) { Debug(QVariantList(args)); }

private:
    QString FCommand;
    QPointer<TDBDFile> FDBDFile;
    QPointer<TDBSession> FDBSession;
};

} // namespace Korvane
