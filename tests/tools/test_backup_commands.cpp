// SPDX-License-Identifier: MIT
#include "ToolTesting.h"

#include "session/DBSession.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

class BackupCommandTest : public DialectToolTest
{
protected:
    void SetUp() override
    {
        DialectToolTest::SetUp();
        DesignStore(Path(u"empty.dbd"_s));
        ASSERT_EQ(OnDatabase({u"create"_s, Path(u"empty.dbd"_s)}).Status, 0);
        SetVersion(7);
    }
    void SetVersion(int version) const
    {
        ASSERT_EQ(Sql(u"update Version set VerNo=%1"_s.arg(version)).Status, 0);
    }
    QString Version() const
    {
        return Sql(u"select VerNo from Version"_s, {u"--csv"_s}).Out.section(u"\r\n"_s, 1, 1);
    }
    bool IsAccess() const { return qstrcmp(GetParam(), "access") == 0; }
    /// Status and both outputs of a run on the test's database.
    QString Outcome(const QStringList &arguments, const ToolSetting &setting = {}) const
    {
        const ToolRun run = OnDatabase(arguments, setting);
        return QString::number(run.Status) + u'|' + run.Out + u'|' + run.Err;
    }
    /// What a failed statement adds to its reason.
    QString Statement(const QString &text, const QString &file) const
    {
        return IsAccess() ? QString() : text.arg(Path(file)) + u'\n';
    }

    const QString FName = IsAccess() ? Path(u"data.db"_s) : u"data"_s;
    const QString FBackedUp = u"0|已把数据库 %1 备份到 a.bak\n|"_s.arg(FName);
    const QString FRestored = u"0|已从 a.bak 恢复数据库 %1\n|"_s.arg(FName);
    const QString FQuestion = u"是否用备份替换数据库 %1？其现有的内容将会丢失。"_s.arg(FName);
    const QString FRestore = u"restore database [data] from disk='%1'"_s;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Dialects, BackupCommandTest, testing::Values("access", "mssql"), DialectName);

TEST_P(BackupCommandTest, a_restore_brings_back_what_was_backed_up)
{
    EXPECT_EQ(Outcome({u"backup"_s, u"a.bak"_s}), FBackedUp);
    SetVersion(8);
    EXPECT_EQ(Outcome({u"restore"_s, u"a.bak"_s, u"--yes"_s}), FRestored + FQuestion + u" 是\n"_s);
    EXPECT_EQ(Version(), u"7"_s);
    // A database that is gone, or cannot be opened any more, comes back just as well.
    QFile::remove(Path(u"data.db"_s));
    EXPECT_EQ(Outcome({u"restore"_s, u"a.bak"_s, u"--yes"_s}),
              FRestored + (IsAccess() ? QString() : FQuestion + u" 是\n"_s));
    EXPECT_EQ(Version(), u"7"_s);
    ASSERT_TRUE(QFile::resize(Path(u"data.db"_s), 5000));
    EXPECT_EQ(Outcome({u"restore"_s, u"a.bak"_s, u"--yes"_s}), FRestored + FQuestion + u" 是\n"_s);
    EXPECT_EQ(Version(), u"7"_s);
}

TEST_P(BackupCommandTest, nothing_is_overwritten_unless_the_user_agrees)
{
    const QString noTerminal = u" 否（没有终端可以询问，选项 --yes 表示同意）\n"_s;
    ASSERT_EQ(Outcome({u"backup"_s, u"a.bak"_s}), FBackedUp);
    SetVersion(8);
    EXPECT_EQ(Outcome({u"backup"_s, u"a.bak"_s}),
              u"1||备份文件已经存在，是否覆盖？"_s + noTerminal + u"没有备份数据库\n"_s);
    EXPECT_EQ(Outcome({u"restore"_s, u"a.bak"_s}), u"1||"_s + FQuestion + noTerminal + u"没有恢复数据库\n"_s);
    EXPECT_EQ(Version(), u"8"_s);
    EXPECT_EQ(Outcome({u"restore"_s, u"a.bak"_s}, {.Input = u"y\n"_s, .HasReader = true}),
              FRestored + FQuestion + u" [是/y 否/n]："_s);
    EXPECT_EQ(Version(), u"7"_s) << "the backup was not overwritten either";
    EXPECT_EQ(OnDatabase({u"backup"_s, u"a.bak"_s, u"--yes"_s}).Status, 0);
}

TEST_P(BackupCommandTest, failures_tell_their_reason_and_leave_all_as_it_was)
{
    const QString none = IsAccess() ? u"none/a.bak"_s : Path(u"none/a.bak"_s);
    EXPECT_EQ(Outcome({u"backup"_s, u"none/a.bak"_s}),
              u"1||不能写入文件：%1.part（No such file or directory）\n"_s.arg(none) +
                  Statement(u"backup database [data] to disk='%1'"_s, u"none/a.bak"_s));
    const QString bad = IsAccess() ? u"empty"_s : Path(u"empty"_s);
    QFile file(Path(u"empty"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(Outcome({u"restore"_s, u"empty"_s, u"--yes"_s}),
              u"1||%1 是\n不是有效的数据库文件：%2\n"_s.arg(FQuestion, bad) +
                  Statement(FRestore, u"empty"_s));
    ASSERT_EQ(Outcome({u"backup"_s, u"a.bak"_s}), FBackedUp);
    TDBSession user;
    user.SetDBType(IsAccess() ? dbtAccess : dbtMSSQL);
    user.SetDBServer(u"folder:"_s + Path({}));
    user.SetDBName(FName);
    user.SetConnected(true);
    EXPECT_EQ(Outcome({u"restore"_s, u"a.bak"_s, u"--yes"_s}),
              u"1||%1 是\n"_s.arg(FQuestion) +
                  (IsAccess() ? u"数据库正在使用中，不能替换："_s : u"数据库正在使用中，不能恢复："_s) +
                  FName + u'\n' + Statement(FRestore, u"a.bak"_s));
    EXPECT_FALSE(QFile::exists(Path(u"~template.mdb"_s)));
    EXPECT_EQ(Version(), u"7"_s);
}

TEST_P(BackupCommandTest, calls_in_a_wrong_way_are_told)
{
    for (const QString &command : {u"backup"_s, u"restore"_s}) {
        EXPECT_EQ(OnDatabase({command}).Status, 2);
        EXPECT_EQ(OnDatabase({command, u"a"_s, u"b"_s}).Status, 2);
        EXPECT_EQ(RunKorvane({command, u"a"_s}).Status, 2);
    }
    EXPECT_FALSE(QFile::exists(u"a"_s));
}
