// SPDX-License-Identifier: MIT
// Imports that fail: what is said, and that nothing is left behind.
#include "ImportTesting.h"

#include "support/FailingDriver.h"
#include "support/ScriptedPrompts.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class ImportRefusals : public ImportTest
{
protected:
    ImportRefusals()
    {
        FStore.Table("T", "TThing", "东西")
            .Field("CODE", "varchar(5)", {.Key = true, .NotNull = true})
            .Field("QTY", "int")
            .Field("NAME", "varchar(5)")
            .Index("UX_T", "NAME", "u");
        Open(FStore.FileName());
    }

    /// An old table with these rows of code, quantity and name.
    void Old(const QList<std::array<const char *, 3>> &rows)
    {
        JetStore old;
        old.Table("T", {TextColumn("CODE", 20), TextColumn("QTY", 20), TextColumn("NAME", 20)});
        for (const auto &row : rows)
            old.Row({Words(row[0]), Words(row[1]), Words(row[2])});
        Import.SetFileName(old.Write(Dir));
    }

    QString DatabaseFile() const { return GetParam() == dbtAccess ? "orders.mdb" : "orders.db"; }

    DesignStore FStore{Dir.filePath("design.dbd")};
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Dialects, ImportRefusals, testing::ValuesIn(EmbeddedPlaces()), PlaceName);

TEST_P(ImportRefusals, all_that_does_not_fit_is_told_at_once_and_nothing_is_left)
{
    QList<std::array<const char *, 3>> rows = {
        {"A", "1", "ok"}, {"B", "x", "太长的名称了"}, {"CCCCCC", "2.5", ""}};
    for (int i = 0; i < 9; ++i)
        rows.append({"D", "多", "ok"});
    Old(rows);
    EXPECT_EQ(Failure(), "有 13 处不能导入，没有建立新数据库\n"
                         "  T.QTY（CODE=B）“x”：不是数字\n"
                         "  T.NAME（CODE=B）“太长的名称了”：文本有 6 个字符，栏位只能容纳 5 个\n"
                         "  T.CODE（CODE=CCCCCC）“CCCCCC”：文本有 6 个字符，栏位只能容纳 5 个\n"
                         "  T.QTY（CODE=CCCCCC）“2.5”：有小数，不能存入整数栏位\n"
                         "  T.QTY（CODE=D）“多”：不是数字\n"
                         "  T.QTY（CODE=D）“多”：不是数字\n"
                         "  T.QTY（CODE=D）“多”：不是数字\n"
                         "  另有 6 处");
    EXPECT_EQ(Import.Report().ProblemCount, 13);
    EXPECT_EQ(Files(), QStringList());
    EXPECT_FALSE(Session.Connected());
    EXPECT_EQ(Session.DBName(), GetParam() == dbtAccess ? Dir.filePath("orders.mdb") : "orders");
}

TEST_P(ImportRefusals, a_row_that_the_database_refuses_is_named)
{
    for (int before : {0, 5, 40}) {
        QList<std::array<const char *, 3>> rows;
        QList<QByteArray> codes;
        for (int i = 0; i < before; ++i)
            codes.append(QByteArray::number(100 + i));
        for (const QByteArray &code : codes)
            rows.append({code.constData(), "1", code.constData()});
        rows += {{"A", "1", "first"}, {"B", "1", "FIRST"}, {"C", "1", "last"}};
        Old(rows);
        const QString failure = Failure();
        EXPECT_TRUE(failure.startsWith("有 1 处不能导入，没有建立新数据库\n  T（CODE=B）："))
            << qPrintable(failure);
        EXPECT_FALSE(failure.contains("insert")) << qPrintable(failure);
        EXPECT_EQ(Files(), QStringList());
    }
}

TEST_P(ImportRefusals, an_existing_database_stays_until_the_new_one_is_through)
{
    Old({{"A", "1", "old"}});
    Import.Run();
    Old({{"A", "1", "new"}, {"B", "x", ""}});
    {
        const PromptScript script({IDYES});
        EXPECT_TRUE(Failure().contains("不是数字"));
        ASSERT_EQ(script->Boxes.size(), 1);
        EXPECT_EQ(script->Boxes[0].Text, GetParam() == dbtAccess ? "数据库已经存在，是否覆盖现有的数据库？"
                                                                 : "数据库已经存在，是否覆盖现有的数据库?");
    }
    EXPECT_EQ(Imported("select NAME from T"), QStringList("old"));
    Old({{"A", "1", "new"}});
    {
        const PromptScript script({IDNO});
        EXPECT_EQ(Failure(), GetParam() == dbtAccess ? "创建数据库失败" : "创建数据库已被用户取消");
    }
    EXPECT_EQ(Imported("select NAME from T"), QStringList("old"));
    {
        // Somebody works with it.
        TDBSession other;
        Aim(other);
        other.SetConnected(true);
        const PromptScript script({IDYES});
        EXPECT_EQ(Failure(), "数据库正在使用中，不能覆盖：" + Session.DBName());
        other.SetConnected(false);
    }
    EXPECT_EQ(Imported("select NAME from T"), QStringList("old"));
    {
        const PromptScript script({IDYES});
        Import.Run();
    }
    EXPECT_EQ(Imported("select NAME from T"), QStringList("new"));
    EXPECT_EQ(Files(), QStringList(DatabaseFile()));
}

TEST_P(ImportRefusals, verification_names_the_row_that_is_not_as_it_was_read)
{
    const struct
    {
        const char *Statement;
        const char *Failure;
    } rows[] = {
        {"update T set NAME='X' where CODE='B'", "表 T 的校验和不一致：NAME\n  CODE=B 的 NAME 成了“X”"},
        {"update T set QTY=null where CODE='A'", "表 T 的校验和不一致：QTY\n  CODE=A 的 QTY 成了NULL"},
        {"update T set NAME=NAME & ' ' where CODE='A'",
         "表 T 的校验和不一致：NAME\n  CODE=A 的 NAME 成了“one ”"},
        // Values that change places leave the sum of a column's values as it is.
        {"update T set QTY=3-QTY",
         "表 T 的校验和不一致：QTY\n  CODE=A 的 QTY 成了“2”\n  CODE=B 的 QTY 成了“1”"},
        {"delete from T where CODE='B'",
         "表 T 应有 2 行，实有 1 行\n表 T 的校验和不一致：CREATOR、CREATEDATE、MODIFIER、MODIFYDATE、"
         "CREATORGROUP、CODE、QTY、NAME\n  缺少的行：CODE=B"},
        {"insert into T(CODE,QTY) values('Z',1)",
         "表 T 应有 2 行，实有 3 行\n表 T 的校验和不一致：CREATOR、CREATEDATE、MODIFIER、MODIFYDATE、"
         "CREATORGROUP、CODE、QTY、NAME\n  旧表中没有的行：CODE=“Z”"},
    };
    Old({{"A", "1", "one"}, {"B", "2", "two"}});
    for (const auto &row : rows) {
        QString statement = row.Statement;
        if (GetParam() == dbtMSSQL)
            statement.replace('&', '+');
        Import.OnProgress = [&](const TImportProgress &progress) {
            if (progress.Step == TImportStep::Verifying)
                Session.Execute(statement);
        };
        EXPECT_EQ(Failure(), QString("导入后校验不一致，没有建立新数据库\n") + row.Failure);
        EXPECT_EQ(Files(), QStringList());
    }
}

TEST_P(ImportRefusals, a_failure_anywhere_leaves_nothing)
{
    Old({{"A", "1", "one"}, {"B", "2", "two"}});
    FailingServer server;
    int number = 1;
    for (; number < 100; ++number) {
        server.FailAt(number);
        const QString failure = Failure();
        if (failure == "nothing")
            break;
        EXPECT_TRUE(failure.contains("连接已断开")) << number << qPrintable(failure);
        EXPECT_EQ(Files(), QStringList()) << number;
        EXPECT_FALSE(Session.Connected());
    }
    EXPECT_GT(number, 7);
    server.FailAt(0);
    EXPECT_EQ(Files(), QStringList(DatabaseFile()));
    EXPECT_EQ(server.Ran.count("begin"), server.Ran.count("commit") + server.Ran.count("rollback"));
}

TEST_P(ImportRefusals, an_exception_of_the_progress_event_ends_the_import)
{
    Old({{"A", "1", "one"}});
    Import.OnProgress = [](const TImportProgress &) { throw Exception("用户停止"); };
    EXPECT_EQ(Failure(), "用户停止");
    EXPECT_EQ(Files(), QStringList());
}

TEST_P(ImportRefusals, what_a_killed_import_left_is_cleared_away)
{
    Old({{"A", "1", "one"}});
    Import.Run();
    const QString file =
        GetParam() == dbtAccess ? Dir.filePath("orders.mdb") : Dir.filePath("server/orders.db");
    const QString part = GetParam() == dbtAccess ? file + "_import" : Dir.filePath("server/orders_import.db");
    ASSERT_TRUE(QFile::rename(file, part));
    Import.Run();
    EXPECT_EQ(Files(), QStringList(DatabaseFile()));
}

TEST_P(ImportRefusals, inputs_are_checked_before_anything_is_made)
{
    Import.SetFileName({});
    EXPECT_EQ(Failure(), "没有指定旧数据库文件");
    Import.SetFileName(Dir.filePath("nowhere.mdb"));
    EXPECT_EQ(Failure(), "找不到数据库文件“" + Dir.filePath("nowhere.mdb") + "”");
    Import.SetFileName(FStore.FileName());
    EXPECT_EQ(Failure(), "“" + FStore.FileName() + "”不是有效的数据库文件");
    Import.SetFileName(JetStore().Table("U", {LongColumn("N")}).Write(Dir));
    EXPECT_EQ(Failure(), "旧数据库中没有一个表在设计中有位置");
    Old({{"A", "1", "one"}});
    if (GetParam() == dbtAccess) {
        Session.SetDBName(Import.FileName());
        EXPECT_EQ(Failure(), "新数据库不能是旧数据库文件本身：" + Import.FileName());
    }
    Import.SetDBSession(nullptr);
    EXPECT_EQ(Failure(), "没有设置数据库连接");
    Import.SetDBDFile(nullptr);
    EXPECT_EQ(Failure(), "没有设置数据库设计文件");
    EXPECT_EQ(Files(), QStringList());
}
