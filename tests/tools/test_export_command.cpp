// SPDX-License-Identifier: MIT
// The command that exports, in every form.
#include "ToolTesting.h"

#include "platform/core/Cp936.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

const QString Orders = QStringLiteral(KORVANE_EXAMPLES_DIR "/orders.dbd");

class ExportCommandTest : public DialectToolTest
{
protected:
    void SetUp() override
    {
        DialectToolTest::SetUp();
        ASSERT_EQ(OnDatabase({u"create"_s, Orders, u"--bool-as-char"_s}).Status, 0);
        ASSERT_EQ(Sql(u"insert into UNIT(UNITCODE, UNITNAME, DIGITS, ISBASE) values('KG', '千克', 3, 'Y')"_s)
                      .Status,
                  0);
        ASSERT_EQ(
            Sql(u"insert into UNIT(UNITCODE, UNITNAME, DIGITS, ISBASE) values('PC', '件', 0, 'N')"_s).Status,
            0);
    }
    ToolRun Export(const QString &file, const QStringList &options = {},
                   const QString &name = u"UNIT"_s) const
    {
        return OnDatabase(QStringList{u"export"_s, Orders, name, file} + options);
    }
    QByteArray BytesOf(const QString &file) const
    {
        QFile device(Path(file));
        return device.open(QIODevice::ReadOnly) ? device.readAll() : QByteArray("no file");
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Dialects, ExportCommandTest, testing::Values("access", "mssql"), DialectName);

TEST_P(ExportCommandTest, the_ending_tells_the_form)
{
    for (const auto &[file, begin] : {std::pair(u"a.xls"_s, QByteArray::fromHex("09080800")),
                                      std::pair(u"a.XLSX"_s, QByteArray("PK\x03\x04")),
                                      std::pair(u"a.csv"_s, QByteArray("\"CREATOR\""))}) {
        const ToolRun run = Export(file);
        EXPECT_EQ(run.Out + run.Err, u"已把 2 行导出到 %1\n"_s.arg(file));
        EXPECT_EQ(run.Status, 0);
        EXPECT_EQ(BytesOf(file).left(begin.size()), begin);
    }
    EXPECT_TRUE(BytesOf(u"a.xls"_s).contains(Cp936::Encode(u"千克")));
    const ToolRun unknown = Export(u"a.txt"_s);
    EXPECT_EQ(unknown.Status, 2);
    EXPECT_EQ(
        unknown.Err,
        u"无法从文件名 a.txt 得知格式，应以 .xls、.xlsx 或 .csv 结尾。用法见 korvane export --help\n"_s);
    EXPECT_EQ(Export(u"a.xls"_s, {u"--bom"_s}).Status, 2);
}

TEST_P(ExportCommandTest, some_rows_in_an_order)
{
    EXPECT_EQ(Export(u"a.csv"_s, {u"--order"_s, u"UNITCODE desc"_s, u"--bom"_s}).Status, 0);
    EXPECT_EQ(BytesOf(u"a.csv"_s).toStdString(),
              "\xEF\xBB\xBF\"CREATOR\",\"CREATEDATE\",\"MODIFIER\",\"MODIFYDATE\",\"CREATORGROUP\","
              "\"UNITCODE\",\"UNITNAME\",\"DIGITS\",\"ISBASE\"\r\n"
              ",,,,,\"PC\",\"件\",0,\"N\"\r\n"
              ",,,,,\"KG\",\"千克\",3,\"Y\"\r\n");
    EXPECT_EQ(Export(u"b.csv"_s, {u"--where"_s, u"DIGITS=3"_s}, u"TUnit"_s).Out,
              u"已把 1 行导出到 b.csv\n"_s);
    EXPECT_EQ(Export(u"c.csv"_s, {}, u"QCATEGORY"_s).Out, u"已把 0 行导出到 c.csv\n"_s);
    EXPECT_EQ(Export(u"d.csv"_s, {}, u"NOTHING"_s).Err, u"设计文件中没有表或查询 NOTHING\n"_s);
    EXPECT_EQ(Export(u"d.csv"_s, {u"--where"_s, u"DIGITS="_s}).Status, 1);
    EXPECT_EQ(BytesOf(u"d.csv"_s), "no file");
}

TEST_P(ExportCommandTest, asks_before_it_overwrites)
{
    EXPECT_EQ(Export(u"a.xlsx"_s, {u"--progress"_s}).Err, u"正在导出第 2/2 行\n"_s);
    const QByteArray before = BytesOf(u"a.xlsx"_s);
    const ToolRun refused = Export(u"a.xlsx"_s, {u"--where"_s, u"DIGITS=3"_s});
    EXPECT_EQ(refused.Status, 1);
    EXPECT_EQ(refused.Err.section(u'\n', 1), u"没有导出\n"_s);
    EXPECT_EQ(BytesOf(u"a.xlsx"_s), before);
    EXPECT_EQ(Export(u"a.xlsx"_s, {u"--where"_s, u"DIGITS=3"_s, u"--yes"_s}).Status, 0);
    EXPECT_NE(BytesOf(u"a.xlsx"_s), before);
    EXPECT_EQ(Export(u"missing/a.csv"_s).Status, 1);
}
