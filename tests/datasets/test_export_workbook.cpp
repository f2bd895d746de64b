// SPDX-License-Identifier: MIT
// Workbooks, as another program reads them.
#include "ExportTesting.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class Workbook : public ExportTest
{
protected:
    void Export() { Set.ExportToWorkbook(Path(u"out.xlsx"_s)); }
    /// What a reader finds, without the line on the head.
    QString Exported()
    {
        Export();
        return Sheet().section(u'\n', 1);
    }
    QString Sheet() const { return SheetOf(Path(u"out.xlsx"_s)); }
    /// The sheet's own text, out of the archive.
    QString Xml() const
    {
        return RunProgram(
            QStringLiteral(KORVANE_PYTHON),
            {u"-c"_s,
             u"import sys, zipfile; z = zipfile.ZipFile(sys.argv[1]); assert z.testzip() is None; "
             "sys.stdout.buffer.write(b''.join(z.read(n) for n in z.namelist()))"_s,
             Path(u"out.xlsx"_s)});
    }
};

TEST_F(Workbook, EveryKindOfField)
{
    LoadKinds();
    Set.SetRecNo(2);
    Export();
    EXPECT_EQ(Sheet(),
              "sheet Sheet1 frozen at A2 bold widths 6 10 10 10 10 10 1 10 10 10\n"
              "\"编号\"|\"QTY\"|\"DAYS\"|\"RATE\"|\"PRICE\"|\"MADE\"|\"STOPPED\"|\"NOTE\"|\"PIC\"|\"BIG\"\n"
              "\"A1\"|5|1|0.5|1.25|\"2023-03-15\"|\"是\"|\"螺丝 M8\"|\"(BLOB)\"|\"123456789012345678\"\n"
              "~|-1|-32768|-1e+300|0.1|\"1899-12-31\"|\"否\"|\"→𠀀\"|\"(blob)\"|12\n"
              "\"007\"|536870911|0|0|1000000000000000|\"2099-12-31\"|\"是\"|\"a\\nb\"|~|-5\n");
    EXPECT_EQ(Set.RecNo(), 2);
    EXPECT_EQ(Files(), QStringList{u"out.xlsx"_s});
}

TEST_F(Workbook, OnlyWhatMayBeSeen)
{
    LoadSecrets();
    EXPECT_EQ(Exported(), "\"A\"|\"PASS\"|\"PIN\"|\"COST\"|\"Z\"\n"
                          "\"a1\"|~|~|~|\"z1\"\n"
                          "\"a2\"|~|~|~|\"z2\"\n");
    const QString xml = Xml();
    EXPECT_TRUE(xml.contains(u"PASS"_s));
    for (const QString &secret : {u"geheim77"_s, u"****"_s, u"1234567"_s, u"9.5"_s})
        EXPECT_FALSE(xml.contains(secret)) << qPrintable(secret);
}

TEST_F(Workbook, TextsThatXmlCannotHold)
{
    const QStringList texts = {u"a\x01\x1F"
                               "b"_s,
                               u"<&>\"'"_s,
                               u" blank "_s,
                               u"_x0041_ _x"_s,
                               u"1\r\n2\t3"_s,
                               u"\uFFFE\uFFFF中\uFFFD"_s,
                               u"𠀀"_s,
                               u"0012345678901234567890"_s};
    QList<QVariantList> rows;
    for (const QString &text : texts)
        rows.append({text});
    Load({{u"A<&>"_s, ftString, 40}}, rows);
    EXPECT_EQ(Exported(), "\"A<&>\"\n"
                          "\"a\\x01\\x1fb\"\n"
                          "\"<&>\"'\"\n"
                          "\" blank \"\n"
                          "\"_x0041_ _x\"\n"
                          "\"1\\r\\n2\\t3\"\n"
                          "\"\uFFFE\uFFFF中\uFFFD\"\n"
                          "\"𠀀\"\n"
                          "\"0012345678901234567890\"\n");
}

TEST_F(Workbook, IntegersKeepAllTheirDigits)
{
    Load({{u"N"_s, ftLargeint}}, {{999'999'999'999'999LL}, {-1'000'000'000'000'000LL}, {0}});
    EXPECT_EQ(Exported(), "\"N\"\n999999999999999\n\"-1000000000000000\"\n0\n");
}

TEST_F(Workbook, MoreRowsThanAWorksheetFileHolds)
{
    LoadNumbers(70'000);
    QStringList told;
    Set.OnExportProgress = [&](qsizetype rows, qsizetype all, bool &) {
        if (rows % 35'000 == 0)
            told += u"%1/%2"_s.arg(rows).arg(all);
    };
    EXPECT_EQ(Exported().section(u'\n', -3), "69999\n70000\n");
    EXPECT_EQ(told, (QStringList{u"35000/70000"_s, u"70000/70000"_s}));
}

TEST_F(Workbook, CancelledItLeavesNothing)
{
    LoadNumbers(5'000);
    Set.SetRecNo(7);
    Set.OnExportProgress = [&](qsizetype rows, qsizetype, bool &cancel) { cancel = rows == 3'000; };
    EXPECT_THROW(Export(), EAbort);
    EXPECT_EQ(Files(), QStringList());
    EXPECT_EQ(Set.RecNo(), 7);
    EXPECT_FALSE(Set.ControlsDisabled());
}

TEST_F(Workbook, WhatDoesNotFitIsRefused)
{
    const QString most(32'767, u'长');
    Load({{u"A"_s, ftInteger}, {u"NOTE"_s, ftMemo}}, {{1, most}});
    EXPECT_EQ(Exported().size(), most.size() + 16);
    const QByteArray before = BytesOf(Path(u"out.xlsx"_s));
    Load({{u"A"_s, ftInteger}, {u"NOTE"_s, ftMemo}}, {{1, u"x"_s}, {2, most + u'x'}});
    EXPECT_EQ(RaisedBy([&] { Export(); }),
              "EOutOfResources: 第 2 行的“NOTE”有 32768 个字符，Excel 的单元格最多 32767 个");
    LoadNumbers(1'048'576);
    PromptScript script;
    EXPECT_EQ(RaisedBy([&] { Set.ExportToWorkbook(); }),
              "EOutOfResources: 共有 1048576 行数据，Excel 工作表最多放得下 1048575 行，没有导出");
    EXPECT_EQ(BytesOf(Path(u"out.xlsx"_s)), before);
    EXPECT_EQ(Files(), QStringList{u"out.xlsx"_s});
}

TEST_F(Workbook, AFullDiskLeavesTheOldFile)
{
    LoadNumbers(3);
    Export();
    const QByteArray before = BytesOf(Path(u"out.xlsx"_s));
    LoadNumbers(200'000);
    for (const rlim_t bytes : {0, 1'000, 300'000}) {
        const SmallDisk disk(bytes);
        EXPECT_EQ(RaisedBy([&] { Export(); }).section(u'“', 0, 0), "EFileError: 写文件") << bytes;
    }
    EXPECT_EQ(BytesOf(Path(u"out.xlsx"_s)), before);
    EXPECT_EQ(Files(), QStringList{u"out.xlsx"_s});
    EXPECT_EQ(RaisedBy([&] { Set.ExportToWorkbook(u"/dev/full"_s); }),
              "EFileError: 创建文件“/dev/full”失败：不是普通文件");
}

TEST_F(Workbook, AsksForAName)
{
    LoadNumbers(1);
    {
        PromptScript script({}, {Path(u"a"_s)});
        Set.ExportToWorkbook();
        EXPECT_EQ(script->Asked, QStringList{u"导出Excel|Excel文件(*.xlsx)|"_s});
        EXPECT_EQ(script->Boxes[0].Text, u"导出数据成功完成"_s);
        EXPECT_EQ(Files(), QStringList{u"a.xlsx"_s});
    }
    PromptScript script({}, {QString()});
    Set.ExportToWorkbook();
    EXPECT_TRUE(script->Boxes.isEmpty());
}

} // namespace
