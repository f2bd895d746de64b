// SPDX-License-Identifier: MIT
// The command that imports, from end to end.
#include "ToolTesting.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

const QString Legacy = QStringLiteral(KORVANE_TEST_DATA_DIR "/legacy.mdb");
const QString Orders = QStringLiteral(KORVANE_EXAMPLES_DIR "/orders.dbd");

class ImportCommandTest : public DialectToolTest
{
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Dialects, ImportCommandTest, testing::Values("access", "mssql"), DialectName);

TEST_P(ImportCommandTest, imports_and_tells_what)
{
    const QStringList import = {u"import"_s, Legacy, u"--design"_s, Orders};
    const ToolRun run = OnDatabase(import + QStringList{u"--progress"_s});
    EXPECT_EQ(run.Status, 0) << qPrintable(run.Err);
    EXPECT_EQ(run.Out, u"CATEGORY → CATEGORY 物料分类：53 行，11 列校验一致\n"
                       "CUSTOMER → CUSTOMER 客户资料：60 行，19 列校验一致\n"
                       "ITEM → ITEM 物料资料：200 行，20 列校验一致\n"
                       "ORDERHEAD → ORDERHEAD 订单单头：300 行，20 列校验一致\n"
                       "ORDERLINE → ORDERLINE 订单明细：900 行，17 列校验一致\n"
                       "SYSMQ → SYSMQ 单据性质：6 行，13 列校验一致\n"
                       "UNIT → UNIT 计量单位：10 行，9 列校验一致\n"
                       "WAREHOUSE → WAREHOUSE 仓库资料：5 行，11 列校验一致\n"
                       "共 8 个表，1534 行\n"
                       "已导入到数据库 %1\n"_s.arg(Database().last()));
    EXPECT_EQ(run.Err.section(u'\n', 0, 1), u"正在导入表 1/8 CATEGORY\n正在导入表 2/8 CUSTOMER"_s);
    EXPECT_EQ(run.Err.section(u'\n', 15), u"正在校验表 8/8 WAREHOUSE\n"_s);
    EXPECT_EQ(Sql(u"select sum(AMOUNT) as A from ORDERHEAD where CHECKED='Y'"_s).Status, 0);

    // A second time it asks.
    const ToolRun refused = OnDatabase(import);
    EXPECT_EQ(refused.Status, 1);
    EXPECT_EQ(refused.Out, QString());
    const ToolRun again = OnDatabase(import + QStringList{u"--yes"_s, u"--bool-as-char"_s});
    EXPECT_EQ(again.Status, 0);
    EXPECT_EQ(again.Out, run.Out);
}

TEST_P(ImportCommandTest, writes_a_design_and_imports_with_it)
{
    const QString design = Path(u"first.store"_s);
    const ToolRun written = RunKorvane({u"import"_s, Legacy, u"--write-design"_s, design});
    EXPECT_EQ(written.Status, 0) << qPrintable(written.Err);
    EXPECT_EQ(written.Out.section(u'\n', 0, 0), u"CUSTOMER → CUSTOMER（TCustomer），14 个栏位"_s);
    EXPECT_EQ(written.Out.section(u'\n', -2), u"已写入设计文件 %1\n"_s.arg(design));
    const ToolRun plan = RunKorvane({u"import"_s, Legacy, u"--design"_s, design, u"--plan"_s});
    EXPECT_EQ(plan.Status, 0);
    EXPECT_EQ(plan.Out.section(u'\n', 0, 0), u"从 legacy.mdb 导入到 first.store 的设计（版本 6）"_s);
    EXPECT_FALSE(plan.Out.contains(u"不导入"_s)) << qPrintable(plan.Out);
    EXPECT_EQ(OnDatabase({u"import"_s, Legacy, u"--design"_s, design}).Status, 0);
    EXPECT_EQ(Sql(u"select count(*) as N from ORDERLINE"_s).Out, u"  N\n---\n900\n"_s);
}

TEST_P(ImportCommandTest, fails_with_what_does_not_fit)
{
    DesignStore(Path(u"small.dbd"_s))
        .Table(u"UNIT"_s)
        .Field(u"UNITCODE"_s, u"varchar(3)"_s, {.Key = true})
        .Field(u"UNITNAME"_s, u"int"_s);
    const ToolRun run = OnDatabase({u"import"_s, Legacy, u"--design"_s, Path(u"small.dbd"_s)});
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Out, QString());
    EXPECT_EQ(run.Err.section(u'\n', 0, 1), u"有 10 处不能导入，没有建立新数据库\n"
                                            "  UNIT.UNITNAME（UNITCODE=PCS）“个”：不是数字"_s);
    EXPECT_EQ(Sql(u"select 1"_s).Status, 1) << "there is no database";
}

TEST_P(ImportCommandTest, a_plan_that_cannot_be_carried_out_is_a_failure)
{
    DesignStore(Path(u"other.dbd"_s)).Table(u"NOTHERE"_s).Field(u"A"_s, u"int"_s);
    const ToolRun run = RunKorvane({u"import"_s, Legacy, u"--design"_s, Path(u"other.dbd"_s), u"--plan"_s});
    EXPECT_EQ(run.Status, 1);
    EXPECT_TRUE(run.Out.endsWith(u"\n不能导入：旧数据库中没有一个表在设计中有位置\n"_s))
        << qPrintable(run.Out);
}

TEST(ImportCommand, wrong_calls_do_nothing)
{
    const struct
    {
        QStringList Arguments;
        QString Err;
    } rows[] = {
        {{}, u"缺少参数 OLD"_s},
        {{Legacy}, u"缺少选项 --design"_s},
        {{Legacy, u"--plan"_s}, u"缺少选项 --design"_s},
        {{Legacy, u"--design"_s, Orders}, u"缺少选项 --database"_s},
        {{Legacy, u"--design"_s, Orders, u"--database"_s, u"x"_s, u"more"_s}, u"多余的参数 more"_s},
        {{Legacy, u"--write-design="_s}, u"缺少选项 --write-design"_s},
        {{Legacy, u"--write-design"_s, u"x"_s, u"--plan"_s},
         u"选项 --write-design 不能与 --design 或 --plan 同用"_s},
    };
    for (const auto &row : rows) {
        const ToolRun run = RunKorvane(QStringList{u"import"_s} + row.Arguments);
        EXPECT_EQ(run.Status, 2);
        EXPECT_EQ(run.Err, row.Err + u"。用法见 korvane import --help\n"_s);
    }
}
