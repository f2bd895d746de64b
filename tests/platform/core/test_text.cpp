// SPDX-License-Identifier: MIT
#include "platform/core/Text.h"

#include <gtest/gtest.h>

using namespace Korvane;

namespace {

QString S(const char *text) { return QString::fromUtf8(text); }

} // namespace

TEST(Text, QuotesAndReadsBack)
{
    EXPECT_EQ(QuotedStr(S("")), S("''"));
    EXPECT_EQ(QuotedStr(S("it's '中'")), S("'it''s ''中'''"));
    for (const char *text : {"", "a", "'", "''", "a'b''c", "中'"})
        EXPECT_EQ(AnsiDequotedStr(QuotedStr(S(text)), u'\''), S(text)) << text;
    EXPECT_EQ(AnsiDequotedStr(S("plain"), u'"'), S("plain"));
    EXPECT_EQ(AnsiDequotedStr(S("\"open"), u'"'), S("open"));
}

TEST(Text, ExtractsQuotedTextAtAPosition)
{
    const struct
    {
        const char *Text;
        qsizetype Pos;
        const char *Result;
        qsizetype End;
    } rows[] = {
        {"x'a''b'y", 1, "a'b", 7}, {"x'a'", 0, "", 0}, {"''", 0, "", 2}, {"'a", 0, "a", 2},
        {"'a'''", 0, "a'", 5},     {"'a'", 3, "", 3},  {"", 0, "", 0},
    };
    for (const auto &row : rows) {
        qsizetype pos = row.Pos;
        EXPECT_EQ(AnsiExtractQuotedStr(S(row.Text), pos, u'\'').toStdString(), row.Result) << row.Text;
        EXPECT_EQ(pos, row.End) << row.Text;
    }
}

TEST(Text, TrimsBlanksAndControlCharactersOnly)
{
    const QString wide(QChar(0x3000)), hard(QChar(0xA0));
    EXPECT_EQ(Trim(S("\x01 \t\r\n a b \x1f\n")), S("a b"));
    EXPECT_EQ(Trim(wide + u'a' + hard), wide + u'a' + hard);
    EXPECT_EQ(Trim(S(" \t")), S(""));
    EXPECT_EQ(TrimLeft(S(" a ")), S("a "));
    EXPECT_EQ(TrimRight(S(" a ")), S(" a"));
}

TEST(Text, WalksFieldNames)
{
    int pos = 1;
    const QString fields = S("Code; 名称 ;;Qty");
    EXPECT_EQ(ExtractFieldName(fields, pos), S("Code"));
    EXPECT_EQ(pos, 6);
    EXPECT_EQ(ExtractFieldName(fields, pos), S("名称"));
    EXPECT_EQ(ExtractFieldName(fields, pos), S(""));
    EXPECT_EQ(ExtractFieldName(fields, pos), S("Qty"));
    EXPECT_GT(pos, fields.size());
    EXPECT_EQ(ExtractFieldName(fields, pos), S("")); // past the end
    EXPECT_EQ(SplitFieldNames(S("a;b;")), (QStringList{S("a"), S("b")}));
    EXPECT_EQ(SplitFieldNames(S("")), QStringList());
    EXPECT_EQ(SplitFieldNames(S(";")), QStringList{S("")});
}

TEST(Text, ComparesAndChangesCase)
{
    EXPECT_TRUE(SameText(u"SysMQ", u"SYSmq"));
    EXPECT_FALSE(SameText(u"a", u"ab"));
    EXPECT_LT(CompareText(u"a", u"B"), 0);
    EXPECT_GT(CompareText(u"b", u"A"), 0);
    EXPECT_EQ(UpperCase(S("aZ{é中")), S("AZ{é中"));
    EXPECT_EQ(LowerCase(S("aZ[É中")), S("az[É中"));
}
