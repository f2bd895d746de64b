// SPDX-License-Identifier: MIT
#include "platform/core/Exceptions.h"
#include "platform/core/StringList.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Korvane;

namespace {

QString S(const char *text) { return QString::fromUtf8(text); }

QStringList L(std::initializer_list<const char *> items)
{
    QStringList result;
    for (const char *item : items)
        result += S(item);
    return result;
}

void WriteFile(const QString &name, const QByteArray &bytes)
{
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray ReadFile(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TEST(StringList, CommaTextGoesBothWays)
{
    const struct
    {
        QStringList List;
        const char *Text;
    } rows[] = {
        {L({}), ""},
        {L({""}), "\"\""},
        {L({"", ""}), ","},
        {L({"a", "b"}), "a,b"},
        {L({"a", "", "b"}), "a,,b"},
        {L({"a", ""}), "a,"},
        {L({"select", "中文"}), "select,中文"},
        {L({"a b", "c,d", "e\"f", "g\th"}), "\"a b\",\"c,d\",\"e\"\"f\",\"g\th\""},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(CommaText(row.List).toStdString(), row.Text);
        QStringList list{S("before")};
        SetCommaText(list, S(row.Text));
        EXPECT_EQ(list, row.List) << row.Text;
    }
}

TEST(StringList, ReadsLooseDelimitedText)
{
    const struct
    {
        const char *Text;
        TDelimiting Delimiting;
        QStringList List;
    } rows[] = {
        {"  a , b c\td ", TDelimiting::BlanksToo, L({"a", "b", "c", "d"})},
        {"a,\"b c\" d", TDelimiting::BlanksToo, L({"a", "b c", "d"})},
        {"a, ", TDelimiting::BlanksToo, L({"a"})},
        {"\"a\"b,c", TDelimiting::BlanksToo, L({"a", "b", "c"})},
        {"\"open, a", TDelimiting::BlanksToo, L({"open, a"})},
        {" a , b c ", TDelimiting::DelimiterOnly, L({" a ", " b c "})},
        {"a,\" b\",", TDelimiting::DelimiterOnly, L({"a", " b", ""})},
    };
    for (const auto &row : rows) {
        QStringList list;
        SetDelimitedText(list, S(row.Text), u',', u'"', row.Delimiting);
        EXPECT_EQ(list, row.List) << row.Text;
    }
    EXPECT_EQ(DelimitedText(L({"a b", "c;d"}), u';', u'\'', TDelimiting::DelimiterOnly), S("a b;'c;d'"));
    QStringList self = L({"x,y"});
    SetCommaText(self, self.first()); // the text may be an item of the list
    EXPECT_EQ(self, L({"x", "y"}));
}

TEST(StringList, SplitsLinesAtEveryKindOfEnd)
{
    const struct
    {
        const char *Text;
        QStringList List;
    } rows[] = {
        {"", L({})},
        {"a", L({"a"})},
        {"a\r\nb\nc\rd", L({"a", "b", "c", "d"})},
        {"a\r\n", L({"a"})},
        {"a\n\n", L({"a", ""})},
        {"\r\n\r\n", L({"", ""})},
        {"\n\ra", L({"", "", "a"})},
    };
    for (const auto &row : rows) {
        QStringList list;
        SetTextOf(list, S(row.Text));
        EXPECT_EQ(list, row.List) << row.Text;
    }
    EXPECT_EQ(TextOf(L({"a", ""})), S("a\r\n\r\n"));
    EXPECT_EQ(TextOf({}), S(""));
}

TEST(StringList, ReadsFilesInUtf8OrCodePage936)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(S("文件.txt"));
    const struct
    {
        QByteArray Bytes;
        QStringList List;
    } rows[] = {
        {"", L({})},
        {"\xE4\xB8\xAD\xE6\x96\x87\r\nb", L({"中文", "b"})},
        {"\xEF\xBB\xBF\xE4\xB8\xAD\n", L({"中"})},
        {"\xD6\xD0\xCE\xC4\r\n\x80", L({"中文", "€"})},
        {"ab\xD6\xD0", L({"ab中"})},
    };
    for (const auto &row : rows) {
        WriteFile(name, row.Bytes);
        EXPECT_EQ(LoadLines(name), row.List) << row.Bytes.toHex().toStdString();
    }
}

TEST(StringList, SavesAsAWholeOrNotAtAll)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(S("out.txt"));
    SaveLines(name, L({"中", "b"}));
    EXPECT_EQ(ReadFile(name), QByteArray("\xE4\xB8\xAD\r\nb\r\n"));
    SaveLines(name, {});
    EXPECT_EQ(ReadFile(name), QByteArray());
    const QString missing = folder.filePath(S("none/out.txt"));
    EXPECT_THROW(SaveLines(missing, L({"a"})), EFileError);
    try {
        LoadLines(missing);
        FAIL();
    } catch (const EFileError &error) {
        EXPECT_TRUE(error.Message().startsWith(S("读取文件 '") + missing + S("' 出错："))) << error.what();
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), L({"out.txt"}));
}

TEST(StringList, FindsValuesByName)
{
    const QStringList list = L({"no sign", "Name=张三", "Path=a=b", "name=second", "Empty="});
    EXPECT_EQ(ValueOf(list, S("NAME")), S("张三"));
    EXPECT_EQ(ValueOf(list, S("Path")), S("a=b"));
    EXPECT_EQ(ValueOf(list, S("no sign")), S(""));
    EXPECT_EQ(IndexOfName(list, S("Empty")), 4);
    EXPECT_EQ(IndexOfName(list, S("none")), -1);
}
