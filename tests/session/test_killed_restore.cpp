// SPDX-License-Identifier: MIT
// Backups and restores that are killed, at each of their operations on files and at random.
#include "SessionFixture.h"

#include <QProcess>
#include <QRandomGenerator>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

void Write(TDBSession &session, const QString &content)
{
    session.Execute(u"update T set A='%1'"_s.arg(content));
}

/// A database whose T holds 'new' and then 'old', with a backup of each.
class Killed : public testing::TestWithParam<TSqlDialect>
{
protected:
    Killed()
    {
        TDBSession session;
        Connect(session);
        session.Execute(u"create table T(A varchar(10), B image)"_s);
        session.Execute(u"create table FILLER(A varchar(200))"_s);
        for (int i = 0; i < 60; ++i)
            session.Execute(u"insert into FILLER values('%1')"_s.arg(QString(200, u'x')));
        session.Execute(u"insert into T(A) values('new')"_s);
        session.BackupDB(NewBackup);
        Connect(session);
        Write(session, u"old"_s);
        session.BackupDB(OldBackup);
    }

    void Connect(TDBSession &session) const
    {
        Aim(session, FDatabase);
        session.SetConnected(true);
    }
    QStringList Call(const QString &what, const QStringList &files) const
    {
        const bool isAccess = FDatabase.Dialect() == TSqlDialect::Access;
        return QStringList{what, isAccess ? u"access"_s : u"mssql"_s,
                           isAccess ? QString() : FDatabase.Server(),
                           isAccess ? FDatabase.FileName() : u"orders"_s} +
               files;
    }
    /// Runs the work until its number-th operation; true when it came to its end before.
    bool RunUntil(int number, const QString &what, const QString &file) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"KORVANE_KILL_AT"_s, QString::number(number));
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QStringLiteral(KORVANE_KILLED), Call(what, {file}));
        EXPECT_TRUE(process.waitForFinished(60'000));
        const bool isKilled = process.exitStatus() == QProcess::CrashExit;
        EXPECT_TRUE(isKilled || process.exitCode() == 0) << "at " << number;
        return !isKilled;
    }
    /// What the database holds when it opens whole: "ok" and the content.
    static QString StateOf(const QString &file)
    {
        return PlainDatabase(file).Run(
            u"pragma integrity_check; select A, (select count(*) from FILLER) from T"_s);
    }

    TestDatabase FDatabase{GetParam()};
    QTemporaryDir FBackups;
    const QString NewBackup = FBackups.filePath(u"new.bak"_s);
    const QString OldBackup = FBackups.filePath(u"old.bak"_s);
    const QString FOld = u"ok / old|60"_s, FNew = u"ok / new|60"_s;
};
INSTANTIATE_TEST_SUITE_P(Dialects, Killed, testing::ValuesIn(BothDialects), DialectName);

} // namespace

TEST_P(Killed, a_restore_leaves_the_old_or_the_new_database_whole)
{
    int olds = 0, number = 1;
    for (bool isDone = false; !isDone; ++number) {
        ASSERT_LT(number, 1000);
        isDone = RunUntil(number, u"restore"_s, NewBackup);
        const QString state = StateOf(FDatabase.FileName());
        EXPECT_TRUE(state == FNew || (state == FOld && !isDone))
            << "at " << number << ": " << state.toStdString();
        olds += state == FOld;
        // What it left behind is in nobody's way.
        TDBSession session;
        Connect(session);
        EXPECT_FALSE(session.IsEmpty(u"select * from T"_s));
    }
    EXPECT_GT(olds, 10) << "of " << number;
    EXPECT_EQ(QDir(FDatabase.Folder()).entryList(QDir::Files, QDir::Name),
              GetParam() == TSqlDialect::Access ? QStringList{u"orders.db"_s}
                                                : (QStringList{u"master.db"_s, u"orders.db"_s}));
}

TEST_P(Killed, a_backup_leaves_the_old_or_the_new_copy_whole)
{
    const QString copy = FBackups.filePath(u"copy.bak"_s);
    int olds = 0, number = 1;
    for (bool isDone = false; !isDone; ++number) {
        ASSERT_LT(number, 1000);
        QFile::remove(copy);
        ASSERT_TRUE(QFile::copy(NewBackup, copy));
        isDone = RunUntil(number, u"backup"_s, copy);
        const QString state = StateOf(copy);
        EXPECT_TRUE(state == FOld || (state == FNew && !isDone))
            << "at " << number << ": " << state.toStdString();
        EXPECT_EQ(StateOf(FDatabase.FileName()), FOld) << "at " << number;
        olds += state == FNew;
    }
    EXPECT_GT(olds, 10) << "of " << number;
}

TEST_P(Killed, at_random_leaves_one_of_the_databases_whole)
{
    for (int round = 0; round < 15; ++round) {
        QProcess process;
        process.setReadChannel(QProcess::StandardOutput);
        process.start(QStringLiteral(KORVANE_KILLED), Call(u"swap"_s, {NewBackup, OldBackup}));
        ASSERT_TRUE(process.waitForReadyRead(60'000));
        process.waitForFinished(int(QRandomGenerator::global()->bounded(60)));
        process.kill();
        ASSERT_TRUE(process.waitForFinished(60'000));
        EXPECT_EQ(process.exitStatus(), QProcess::CrashExit) << "it ended by itself";
        const QString state = StateOf(FDatabase.FileName());
        EXPECT_TRUE(state == FNew || state == FOld) << state.toStdString();
    }
}
