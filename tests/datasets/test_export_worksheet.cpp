// SPDX-License-Identifier: MIT
// Worksheet files, byte by byte.
#include "ExportTesting.h"

#include "datasets/export/Cp936Encoder.h"
#include "platform/core/Cp936.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class Worksheet : public ExportTest
{
protected:
    QByteArray Exported(const QString &name = u"out.xls"_s)
    {
        Set.ExportToExcel(Path(name));
        return BytesOf(Path(name));
    }
};

TEST_F(Worksheet, NoRows)
{
    Load({{u"数量"_s, ftInteger}, {u"B"_s, ftString, 3}}, {});
    EXPECT_EQ(Exported().toHex(' ').toUpper(), "09 08 08 00 00 00 10 00 00 00 00 00 "
                                               "04 02 0C 00 00 00 00 00 00 00 04 00 CA FD C1 BF "
                                               "04 02 09 00 00 00 01 00 00 00 01 00 42 "
                                               "0A 00 00 00");
}

TEST_F(Worksheet, Integers)
{
    const struct
    {
        int Value;
        const char *Bytes;
    } cases[] = {
        {5, "16000000"}, {0, "02000000"}, {-1, "feffffff"}, {-5, "eeffffff"}, {0x20000001, "06000080"}};
    for (const auto &[value, bytes] : cases) {
        Load({{u"N"_s, ftInteger}}, {{value}});
        EXPECT_EQ(Exported().mid(25).toHex(), QByteArray("7e020a00010000000000") + bytes + "0a000000")
            << value;
    }
}

TEST_F(Worksheet, EveryKindOfField)
{
    LoadKinds();
    EXPECT_EQ(Exported().toHex('\n'), BytesOf(KORVANE_TEST_DATA_DIR "/kinds.xls").toHex('\n'));
    EXPECT_EQ(SheetOf(Path(u"out.xls"_s)),
              "\"编号\"|\"QTY\"|\"DAYS\"|\"RATE\"|\"PRICE\"|\"MADE\"|\"STOPPED\"|\"NOTE\"|\"PIC\"|\"BIG\"\n"
              "\"A1\"|5|1|0.5|1.25|\"2023-03-15\"|\"是\"|\"螺丝 M8\"|\"(BLOB)\"|\"123456789012345678\"\n"
              "\"\"|-1|-32768|-1e+300|0.1|\"1899-12-31\"|\"否\"|\"→?\"|\"(blob)\"|\"12\"\n"
              "\"007\"|536870911|0|0|1000000000000000|\"2099-12-31\"|\"是\"|\"a\\nb\"|\"\"|\"-5\"\n"
              "\"\"|0|0|0|0|\"\"|\"\"|\"\"|\"\"|\"\"\n");
}

TEST_F(Worksheet, WordsOfFlags)
{
    const std::pair<QString, const char *> cases[] = {{u"是;否"_s, "\"S\"\n\"是\"\n\"否\"\n"},
                                                      {u"√;"_s, "\"S\"\n\"√\"\n\"\"\n"},
                                                      {u"******;x"_s, "\"S\"\n~\n\"x\"\n"}};
    for (const auto &[words, sheet] : cases) {
        Load({{u"S"_s, ftBoolean}}, {{1}, {0}});
        Set.FieldByName(u"S")->SetDisplayFormat(words);
        Exported();
        EXPECT_EQ(SheetOf(Path(u"out.xls"_s)), sheet);
    }
}

TEST_F(Worksheet, OnlyWhatMayBeSeen)
{
    LoadSecrets();
    const QByteArray bytes = Exported();
    EXPECT_EQ(SheetOf(Path(u"out.xls"_s)), "\"A\"|\"PASS\"|\"PIN\"|\"COST\"|\"Z\"\n"
                                           "\"a1\"|~|~|~|\"z1\"\n"
                                           "\"a2\"|~|~|~|\"z2\"\n");
    EXPECT_FALSE(bytes.contains("geheim77") || bytes.contains("****"));
    EXPECT_FALSE(bytes.contains(QByteArray::fromHex("1E5A4B00"))); // 1234567 as it would stand
}

TEST_F(Worksheet, RowsShownInTheirOrderAndTheCurrentOneStays)
{
    Load({{u"A"_s, ftString, 3}, {u"N"_s, ftInteger}}, {{u"b"_s, 1}, {u"a"_s, 2}, {u"c"_s, 9}});
    Set.SetIndexFieldNames(u"A"_s);
    Set.SetFilter(u"N<9"_s);
    Set.SetFiltered(true);
    Set.Last();
    Exported();
    EXPECT_EQ(SheetOf(Path(u"out.xls"_s)), "\"A\"|\"N\"\n\"a\"|2\n\"b\"|1\n");
    EXPECT_EQ(Set.FieldByName(u"A")->AsString(), "b");
}

TEST_F(Worksheet, RowNumbersWrap)
{
    LoadNumbers(65'536);
    EXPECT_EQ(Exported().right(18).toHex(' '), "7e 02 0a 00 00 00 00 00 00 00 02 00 04 00 0a 00 00 00");
}

TEST_F(Worksheet, AsksForAName)
{
    const struct
    {
        QString Typed;
        QString File;
    } cases[] = {{u"a.xls"_s, u"a.xls"_s}, {u"b"_s, u"b.xls"_s}, {u"c.dat"_s, u"c.dat"_s}, {{}, {}}};
    Load({{u"A"_s, ftString, 3}}, {});
    for (const auto &[typed, file] : cases) {
        PromptScript script({}, {typed.isEmpty() ? QString() : Path(typed)});
        Set.ExportToExcel();
        EXPECT_EQ(script->Asked, QStringList{u"导出Excel|Excel文件(*.xls)|"_s});
        EXPECT_EQ(script->Boxes.size(), typed.isEmpty() ? 0 : 1);
        if (!typed.isEmpty()) {
            EXPECT_EQ(script->Boxes[0].Text, u"导出数据成功完成"_s);
            EXPECT_EQ(Files(), QStringList{file});
            QFile::remove(Path(file));
        }
    }
}

TEST_F(Worksheet, AFileOfTheNameIsDeletedFirst)
{
    Load({{u"A"_s, ftString, 3}}, {});
    QFile::copy(KORVANE_TEST_DATA_DIR "/kinds.xls", Path(u"old.xls"_s));
    QFile::link(Path(u"old.xls"_s), Path(u"out.xls"_s));
    EXPECT_EQ(Exported().size(), 29);
    EXPECT_GT(BytesOf(Path(u"old.xls"_s)).size(), 100) << "not what a link stood for";
}

TEST_F(Worksheet, NothingHappensWithoutAFile)
{
    LoadNumbers(3);
    Set.Last();
    PromptScript script({}, {Path(u"missing/a.xls"_s)});
    EXPECT_EQ(RaisedBy([&] { Set.ExportToExcel(); }),
              u"EFileError: 创建文件“%1”失败：No such file or directory"_s.arg(Path(u"missing/a.xls"_s)));
    EXPECT_EQ(Set.RecNo(), 3);
    EXPECT_TRUE(script->Boxes.isEmpty());
}

TEST_F(Worksheet, AFailureLeavesWhatWasWritten)
{
    LoadNumbers(3);
    Set.FieldByName(u"NO")->OnGetText = [](TField *field, QString &text, bool) {
        if (field->AsInteger() == 2)
            throw Exception(u"不行"_s);
        text = field->AsString();
    };
    PromptScript script({}, {Path(u"out.xls"_s)});
    EXPECT_EQ(RaisedBy([&] { Set.ExportToExcel(); }), "Exception: 不行");
    EXPECT_EQ(BytesOf(Path(u"out.xls"_s)).mid(26).toHex(), "7e020a0001000000000006000000");
    EXPECT_FALSE(Set.ControlsDisabled());
    EXPECT_TRUE(script->Boxes.isEmpty());
}

TEST_F(Worksheet, AFullDiskIsAFailure)
{
    LoadNumbers(40'000);
    EXPECT_EQ(RaisedBy([&] { Set.ExportToExcel(u"/dev/full"_s); }),
              "EFileError: 写文件“/dev/full”失败：No space left on device");
    const SmallDisk disk(100'000);
    EXPECT_EQ(RaisedBy([&] { Set.ExportToExcel(Path(u"out.xls"_s)); }).section(u':', 0, 0), "EFileError");
    EXPECT_EQ(BytesOf(Path(u"out.xls"_s)).size(), 100'000);
    EXPECT_FALSE(Set.ControlsDisabled());
}

TEST(Cp936Encoder, AsTheCodePageDoes)
{
    const TCp936Encoder encoder;
    QStringList texts = {u""_s, u"abc"_s, u"中a文"_s, u"𠀀中"_s, QString::fromUtf8("x\xC3(\xE4\xB8")};
    for (int unit = 1; unit < 0x10000; ++unit)
        if (!QChar::isSurrogate(char32_t(unit)))
            texts += QString(QChar(char16_t(unit)));
    for (const QString &text : texts) {
        const std::string utf8 = text.toStdString();
        std::string bytes(utf8.size(), '\0');
        bytes.resize(encoder.Encode(utf8, bytes.data()));
        ASSERT_EQ(bytes, Cp936::Encode(text).toStdString()) << utf8;
    }
    const std::string_view broken("\xE4\xB8|\xFF");
    char bytes[4];
    EXPECT_EQ(std::string(bytes, encoder.Encode(broken, bytes)), "??|?");
}

} // namespace
