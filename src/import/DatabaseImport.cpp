// SPDX-License-Identifier: MIT
#include "import/DatabaseImport.h"

#include "design/AuditColumns.h"
#include "design/DBDFile.h"
#include "general/SessionValues.h"
#include "import/ImportTarget.h"
#include "import/JetDesign.h"
#include "import/TableLoader.h"
#include "import/TableVerifier.h"
#include "session/DBSession.h"

#include <QFileInfo>

namespace Korvane {

namespace {

/// The lines of a message are parted by carriage returns.
[[noreturn]] void Fail(const QStringList &lines) { throw Exception(lines.join(u'\r')); }

/// Commits, or rolls back when it is left without that.
class TLoadTransaction
{
public:
    explicit TLoadTransaction(TDBSession &session) : FSession(session) { FSession.BeginTrans(); }
    ~TLoadTransaction()
    {
        try {
            if (!FCommitted)
                FSession.RollbackTrans();
        } catch (const Exception &) {
            // The database goes as a whole.
        }
    }
    TLoadTransaction(const TLoadTransaction &) = delete;
    TLoadTransaction &operator=(const TLoadTransaction &) = delete;

    void Commit()
    {
        FSession.CommitTrans();
        FCommitted = true;
    }

private:
    TDBSession &FSession;
    bool FCommitted = false;
};

} // namespace

TDatabaseImport::TDatabaseImport(QObject *owner)
    : TComponent(owner), FUserCode(AUserCode.isEmpty() ? AuditColumns[0].Repair : AUserCode),
      FUserGroup(AUserGroup.isEmpty() ? AuditColumns[4].Repair : AUserGroup)
{
}

TDatabaseImport::~TDatabaseImport() = default;

TDBDFile *TDatabaseImport::DBDFile() const { return static_cast<TDBDFile *>(FDBDFile.data()); }
void TDatabaseImport::SetDBDFile(TDBDFile *design) { FDBDFile = design; }
TDBSession *TDatabaseImport::DBSession() const { return static_cast<TDBSession *>(FDBSession.data()); }
void TDatabaseImport::SetDBSession(TDBSession *session) { FDBSession = session; }

std::unique_ptr<TJetFile> TDatabaseImport::OpenOld() const
{
    if (FFileName.isEmpty())
        throw Exception(QStringLiteral("没有指定旧数据库文件"));
    auto file = std::make_unique<TJetFile>(FFileName);
    if (!file->Password().isEmpty() && file->Password() != FPassword)
        throw Exception(QStringLiteral("数据库文件“%1”设有密码，给出的密码不正确").arg(FFileName));
    return file;
}

TImportPlan TDatabaseImport::PlanOf(TJetFile &file) const
{
    if (!DBDFile())
        throw Exception(QStringLiteral("没有设置数据库设计文件"));
    return MakeImportPlan(*DBDFile(), file);
}

TImportPlan TDatabaseImport::Plan() { return PlanOf(*OpenOld()); }

void TDatabaseImport::Run()
{
    FReport = {};
    const std::unique_ptr<TJetFile> file = OpenOld();
    TImportPlan plan = PlanOf(*file);
    if (!plan.Obstacles.isEmpty())
        Fail(plan.Obstacles);
    if (!DBSession())
        throw Exception(QStringLiteral("没有设置数据库连接"));
    TDBSession &session = *DBSession();
    if (session.DBType() == dbtAccess && QFileInfo(FFileName) == QFileInfo(session.DBName()))
        throw Exception(QStringLiteral("新数据库不能是旧数据库文件本身：%1").arg(FFileName));

    TImportTarget target(session);
    if (target.ReplacesAtOnce()) {
        // What is overwritten is gone then: the values are looked at before.
        FillAudit(plan, QString());
        LoadTables(plan, *file, nullptr);
        FReport = {};
    }
    target.Create(*DBDFile(), FBoolAsChar);
    FillAudit(plan, session.GetDateTimeStr());
    TLoadTransaction transaction(session);
    const std::vector<TColumnSums> sums = LoadTables(plan, *file, &session);
    transaction.Commit();
    VerifyTables(plan, *file, sums);
    target.Finish();
}

/// The audit columns that the old tables do not have: one who, one when for the whole import.
void TDatabaseImport::FillAudit(TImportPlan &plan, const QString &time) const
{
    QHash<QString, QString> values;
    for (const TAuditColumn &column : AuditColumns)
        values.insert(column.Name, column.Repair.isEmpty() ? time : FUserCode);
    values[std::end(AuditColumns)[-1].Name] = FUserGroup;
    for (TImportTable &table : plan.Tables)
        for (TImportColumn &column : table.Columns)
            if (column.Origin == TImportOrigin::Audit)
                column.Default = values[column.Code];
}

void TDatabaseImport::Tell(const TImportPlan &plan, TImportStep step, int table, qint64 rows) const
{
    OnProgress({step, plan.Tables[table].Code, table + 1, int(plan.Tables.size()), rows});
}

std::vector<TColumnSums> TDatabaseImport::LoadTables(const TImportPlan &plan, TJetFile &file,
                                                     TDBSession *session)
{
    const TImportStep step = session ? TImportStep::Loading : TImportStep::Checking;
    std::vector<TColumnSums> sums;
    for (int i = 0; i < int(plan.Tables.size()); ++i) {
        Tell(plan, step, i, 0);
        TTableLoader loader(plan.Tables[i], FReport.ProblemCount == 0 ? session : nullptr);
        loader.Run(
            file, [&](qint64 rows) { Tell(plan, step, i, rows); },
            [&](const TImportProblem &problem) { FReport.Add(problem); });
        FReport.Add(plan.Tables[i], loader.Rows(), loader.Sums().RowCount());
        sums.push_back(loader.Sums());
    }
    if (FReport.ProblemCount > 0)
        Fail(FReport.FailureLines());
    return sums;
}

void TDatabaseImport::VerifyTables(const TImportPlan &plan, TJetFile &file,
                                   const std::vector<TColumnSums> &sums)
{
    for (int i = 0; i < int(plan.Tables.size()); ++i) {
        Tell(plan, TImportStep::Verifying, i, 0);
        TTableVerifier verifier(plan.Tables[i], *DBSession());
        FReport.Differences += verifier.Verify(sums[size_t(i)], file);
    }
    if (!FReport.Differences.isEmpty())
        Fail(FReport.FailureLines());
}

QStringList TDatabaseImport::WriteDesign(const QString &fileName)
{
    return WriteJetDesign(*OpenOld(), fileName);
}

} // namespace Korvane
