// SPDX-License-Identifier: MIT
#include "support/Packets.h"

#include "platform/data/TextCollation.h"

#include <QCollator>

#include <gtest/gtest.h>

#include <random>

namespace Korvane {

namespace {

int SignOf(int order) { return (order > 0) - (order < 0); }

std::string Sorted(const char *locale, const char *words, TCaseMode mode = TCaseMode::Exact)
{
    const TTextCollation *collation = TTextCollation::ForLocale(QString::fromLatin1(locale));
    QStringList sorted = QString::fromUtf8(words).split(u' ');
    std::ranges::stable_sort(sorted, [&](const QString &left, const QString &right) {
        return collation->Compare(left.toStdString(), right.toStdString(), mode) < 0;
    });
    return sorted.join(u' ').toStdString();
}

TEST(TextCollation, OrdersAsTheLocaleSays)
{
    const char *const names = "赵六 王五 李四 张三 阿明 欧阳修 丁一 陈二 曾国藩 重庆 长沙 吕布 北京 李白";
    const char *const byPinyin = "阿明 北京 曾国藩 陈二 重庆 丁一 李白 李四 吕布 欧阳修 王五 张三 长沙 赵六";
    for (const char *locale : {"zh", "zh_CN", "zh-CN", "zh@collation=pinyin"})
        EXPECT_EQ(Sorted(locale, names), byPinyin) << locale;
    EXPECT_EQ(Sorted("zh@collation=stroke", "曾 王 李 丁 三 一 陈 赵"), "一 丁 三 王 李 陈 赵 曾");
    EXPECT_EQ(Sorted("zh", "中 a B 1 A b ２ é 2 e 甲"), "1 2 ２ 甲 中 a A b B é e");
    EXPECT_EQ(Sorted("zh", "b B a A Ａ é É é", TCaseMode::Blind), "a A Ａ b B é É é");
    EXPECT_EQ(Sorted("zh", "B b A a"), "a A b B");
    EXPECT_EQ(Sorted("root", "ö z o"), "o ö z");
    EXPECT_EQ(Sorted("sv", "ö z o"), "o z ö");
}

TEST(TextCollation, KnowsItsLocales)
{
    EXPECT_EQ(TTextCollation::ForLocale("zh_CN"), TTextCollation::ForLocale("zh_CN"));
    EXPECT_EQ(TTextCollation::ForLocale("zh_CN")->Locale(), "zh_CN");
    for (const char *name : {"en", "en_US", "de@collation=phonebook", "zh_TW", "zh-u-co-stroke"})
        EXPECT_EQ(RaisedBy([&] { TTextCollation::ForLocale(QString::fromLatin1(name)); }), "nothing") << name;
    for (const QString &name : {u"xx"_qs, u""_qs, u"中文"_qs, u"zh@collation=nonsense"_qs,
                                u"en@collation=stroke"_qs, QString(5000, u'z')}) {
        EXPECT_EQ(RaisedBy([&] { TTextCollation::ForLocale(name); }),
                  QStringLiteral("EDatabaseError: 没有“%1”的文字排序规则").arg(name));
    }
}

TEST(TextCollation, AgreesWithTheSystemsCollatorOnRandomTexts)
{
    const TTextCollation *collation = TTextCollation::ForLocale("zh_CN");
    QCollator exact{QLocale("zh_CN")}, blind{QLocale("zh_CN")};
    blind.setCaseSensitivity(Qt::CaseInsensitive);
    const QString alphabet =
        QStringLiteral("aAbBzéÉ１1 -._中国重庆长沙的得张章赵ＡａαΑ㐀\U00020000\uFFFD\u0301");
    std::mt19937 random(3);
    const auto text = [&] {
        QString made;
        for (size_t length = random() % 6 + (random() % 50 == 0) * 300; length > 0; --length)
            made += alphabet[qsizetype(random() % size_t(alphabet.size()))];
        return QString::fromUtf8(made.toUtf8()); // half a pair becomes another character
    };
    std::vector<char> buffer;
    for (int i = 0; i < 20'000; ++i) {
        const QString left = text(), right = random() % 3 == 0 ? left.toUpper() : text();
        const std::string a = left.toStdString(), b = right.toStdString();
        for (const TCaseMode mode : {TCaseMode::Exact, TCaseMode::Blind}) {
            const QCollator &peer = mode == TCaseMode::Exact ? exact : blind;
            const int order = SignOf(collation->Compare(a, b, mode));
            ASSERT_EQ(order, SignOf(peer.compare(left, right))) << a << '|' << b << '|' << int(mode);
            const std::string leftKey(collation->SortKey(a, mode, buffer));
            ASSERT_EQ(leftKey.find('\0'), std::string::npos);
            ASSERT_EQ(SignOf(leftKey.compare(collation->SortKey(b, mode, buffer))), order) << a << '|' << b;
        }
    }
}

TEST(TextCollation, BrokenBytesCountAsReplacements)
{
    const TTextCollation *collation = TTextCollation::ForLocale("zh");
    std::vector<char> buffer;
    const std::pair<std::string, std::string> cases[] = {
        {"a\xff", "a\uFFFD"}, {"a\xe4\xb8", "a\uFFFD"}, {"a\xed\xa0\x80", "a\uFFFD\uFFFD\uFFFD"}};
    for (const auto &[broken, replaced] : cases) {
        EXPECT_EQ(collation->Compare(broken, replaced, TCaseMode::Exact), 0);
        const std::string key(collation->SortKey(broken, TCaseMode::Exact, buffer));
        EXPECT_EQ(key, collation->SortKey(replaced, TCaseMode::Exact, buffer));
    }
}

} // namespace

} // namespace Korvane
