// SPDX-License-Identifier: MIT
#pragma once

#include "import/ImportPlan.h"
#include "import/ImportReport.h"
#include "platform/core/Component.h"
#include "platform/core/Event.h"

#include <QPointer>

namespace Korvane {

class TColumnSums;
class TDBDFile;
class TDBSession;

enum class TImportStep { Checking, Loading, Verifying };

/// How far an import has come.
struct TImportProgress
{
    TImportStep Step = TImportStep::Loading;
    QString Table;
    int TableNo = 0; ///< from 1
    int TableCount = 0;
    qint64 RowCount = 0; ///< of this table so far
};

/// Brings the rows of an old Jet database into a new database of a design.
///
///     TDatabaseImport import;
///     import.SetFileName("legacy.mdb");
///     import.SetDBDFile(&design);     // open
///     import.SetDBSession(&session);  // names the new database
///     Show(import.Plan().Lines());
///     import.Run();
///     Show(import.Report().Lines());
///
/// All or nothing: the new database stands when every value has found its place exactly and
/// reads back as it was written; else an existing one is as before, and an exception tells what
/// does not fit. The old file is only read.
class TDatabaseImport : public TComponent
{
    Q_OBJECT
    Q_PROPERTY(QString FileName READ FileName WRITE SetFileName)
    Q_PROPERTY(QString Password READ Password WRITE SetPassword)
    Q_PROPERTY(QString UserCode READ UserCode WRITE SetUserCode)
    Q_PROPERTY(QString UserGroup READ UserGroup WRITE SetUserGroup)
    Q_PROPERTY(bool BoolAsChar READ BoolAsChar WRITE SetBoolAsChar)

public:
    explicit TDatabaseImport(QObject *owner = nullptr);
    ~TDatabaseImport() override;

    /// The old database.
    const QString &FileName() const { return FFileName; }
    void SetFileName(const QString &fileName) { FFileName = fileName; }
    /// The password that is set in it.
    const QString &Password() const { return FPassword; }
    void SetPassword(const QString &password) { FPassword = password; }
    TDBDFile *DBDFile() const;
    void SetDBDFile(TDBDFile *design);
    TDBSession *DBSession() const;
    /// The session is disconnected by the import, and stays so.
    void SetDBSession(TDBSession *session);
    /// Who imports, for the audit columns that the old tables do not have. The signed-in user at
    /// first, or "admin" and "Admins".
    const QString &UserCode() const { return FUserCode; }
    void SetUserCode(const QString &code) { FUserCode = code; }
    const QString &UserGroup() const { return FUserGroup; }
    void SetUserGroup(const QString &group) { FUserGroup = group; }
    /// As of TDBDFile::CreateDB.
    bool BoolAsChar() const { return FBoolAsChar; }
    void SetBoolAsChar(bool value) { FBoolAsChar = value; }

    /// Called for every table and every few thousand rows. An exception ends the import.
    TEvent<const TImportProgress &> OnProgress;

    /// What Run will do. Reads the definitions alone.
    TImportPlan Plan();
    /// Imports. Asks before an existing database is overwritten. What does not fit is looked for
    /// to the end and told in one exception, a line each; Report has it, too.
    void Run();
    const TImportReport &Report() const { return FReport; }

    /// Writes a first design file made from the old tables themselves, so that an import with it
    /// takes in everything. Asks before an existing file is overwritten; a refusal raises
    /// Exception. Gives a line per table and per name that had to be changed.
    QStringList WriteDesign(const QString &fileName);

private:
    std::unique_ptr<TJetFile> OpenOld() const;
    TImportPlan PlanOf(TJetFile &file) const;
    void FillAudit(TImportPlan &plan, const QString &time) const;
    /// What each table's rows came to.
    std::vector<TColumnSums> LoadTables(const TImportPlan &plan, TJetFile &file, TDBSession *session);
    void VerifyTables(const TImportPlan &plan, TJetFile &file, const std::vector<TColumnSums> &sums);
    void Tell(const TImportPlan &plan, TImportStep step, int table, qint64 rows) const;

    QString FFileName;
    QString FPassword;
    QPointer<QObject> FDBDFile;
    QPointer<QObject> FDBSession;
    QString FUserCode;
    QString FUserGroup;
    bool FBoolAsChar = false;
    TImportReport FReport;
};

} // namespace Korvane
