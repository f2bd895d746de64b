// SPDX-License-Identifier: MIT
#include "support/Packets.h"

#include "platform/data/FilterExpression.h"
#include "platform/data/KeyLookup.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>

namespace Korvane {

namespace {

const QVariant Null;

TDataPacket Parts()
{
    return PacketOf({{"ID", ftInteger},
                     {"CODE", ftString, 10},
                     {"数量", ftFloat},
                     {"Big", ftLargeint},
                     {"Done", ftBoolean},
                     {"Day", ftDate},
                     {"Un it", ftString},
                     {"PIC", ftBlob}},
                    {{1, "A1", 1.5, 1LL << 60, 1, 45292.0, "个", QByteArray("p")},
                     {2, "a1", 2.0, (1LL << 60) + 1, 0, 45293.5, "箱", Null},
                     {3, "A10", -0.5, -5, -1, Null, "", QByteArray()},
                     {4, "B'2", Null, 0, Null, 45323.0, Null, QByteArray("q")},
                     {5, Null, 1e3, Null, 0, 45658.0, "5", Null},
                     {6, "中文件", 0.1, 7, 1, 45292.25, "É*", Null}});
}

/// The IDs of the rows that a filter selects, by bulk and row by row alike.
std::string Selected(const TDataPacket &packet, const QString &text, TFilterOptions options = {})
{
    const TBoundFilter filter = TFilterExpression(text, options).Bind(packet.Fields());
    std::vector<quint32> rows;
    filter.Select(packet, rows);
    std::vector<quint32> single;
    for (quint32 row = 0; row < packet.RowCount(); ++row)
        if (filter.Matches(TPacketRow(packet, row)))
            single.push_back(row);
    EXPECT_EQ(rows, single) << text.toStdString();
    QStringList ids;
    for (const quint32 row : rows)
        ids += packet.Text(0, row);
    return ids.join(u' ').toStdString();
}

TEST(FilterExpression, SelectsRows)
{
    const TDataPacket packet = Parts();
    const struct
    {
        const char *Text;
        const char *Rows;
        TFilterOptions Options = {};
    } cases[] = {
        {"", "1 2 3 4 5 6"},
        {"  \r\n", "1 2 3 4 5 6"},
        // numbers
        {"ID=3", "3"},
        {"id<>3", "1 2 4 5 6"},
        {"ID<3", "1 2"},
        {"ID>3", "4 5 6"},
        {"ID<=3", "1 2 3"},
        {"ID>=3", "3 4 5 6"},
        {"3<ID", "4 5 6"},
        {"ID>2 and ID<=4", "3 4"},
        {"ID=2.0", "2"},
        {"ID>2.5", "3 4 5 6"},
        {"2.5>=ID", "1 2"},
        {"数量=2", "2"},
        {"数量 < 0", "3"},
        {"数量>=.1", "1 2 5 6"},
        {"数量=1e3", "5"},
        {"ID='3'", "3"},
        {"ID<'2.5'", "1 2"},
        {"数量='1.5'", "1"},
        {"Big=1152921504606846977", "2"},
        {"Big>1152921504606846976.0", "2"},
        {"Big<99999999999999999999", "1 2 3 4 6"},
        // texts
        {"CODE='A1'", "1"},
        {"CODE='A1'", "1 2", foCaseInsensitive},
        {"CODE<>'A1'", "2 3 4 6"},
        {"CODE='B''2'", "4"},
        {"CODE>'A1'", "2 3 4 6"},
        {"CODE>'A1'", "3 4 6", foCaseInsensitive},
        {"CODE>='a'", "2 6"},
        {"CODE='A*'", "1 3"},
        {"CODE='a*'", "1 2 3", foCaseInsensitive},
        {"CODE<>'A*'", "2 4 6"},
        {"CODE='中*'", "6"},
        {"CODE='*'", "1 2 3 4 6"},
        {"CODE='A*'", "", foNoPartialCompare},
        {"[Un it]='É*'", "6", foNoPartialCompare},
        {"[Un it]='é*'", "6", foNoPartialCompare | foCaseInsensitive},
        {"[Un it]=''", "3"},
        {"[Un it]=5", "5"},
        {"[Un it]=ID", "5"},
        {"\"Un it\"='个'", "1"},
        {"PIC='p'", "1"},
        // like
        {"CODE like 'A%'", "1 3"},
        {"CODE like 'a%'", "1 2 3", foCaseInsensitive},
        {"CODE like '_1'", "1 2"},
        {"CODE like '%1%'", "1 2 3"},
        {"CODE like '%文_'", "6"},
        {"CODE like '中%件'", "6"},
        {"CODE not like '%1%'", "4 6"},
        {"CODE like 'A*'", ""},
        {"CODE like '%'", "1 2 3 4 6"},
        {"CODE like ''", ""},
        {"CODE like '%%1_%%'", "3"},
        {"ID like '_'", "1 2 3 4 5 6"},
        {"CODE like CODE", "1 2 3 4 6"},
        // NULL
        {"CODE is null", "5"},
        {"CODE is not null", "1 2 3 4 6"},
        {"CODE=null", "5"},
        {"CODE <> NULL", "1 2 3 4 6"},
        {"not CODE='A1'", "2 3 4 6"},
        {"数量>0 or ID=4", "1 2 4 5 6"},
        {"not (数量>0 and ID=4)", "1 2 3 5 6"},
        {"not (数量>0 or ID=4)", "3"},
        {"PIC is null", "2 5 6"},
        // in
        {"ID in (1, 3,9)", "1 3"},
        {"ID not in (1,3)", "2 4 5 6"},
        {"ID in (1, '2', 3.0)", "1 2 3"},
        {"CODE in ('a1','A10')", "2 3"},
        {"CODE in ('a1','a10')", "1 2 3", foCaseInsensitive},
        {"CODE in ('A1*','B''2')", "1 3 4"},
        {"CODE in ('a1',null)", "2 5"},
        {"CODE not in ('a1',null)", "1 3 4 6"},
        {"数量 in (2, -0.5)", "2 3"},
        // arithmetic
        {"ID*2=4", "2"},
        {"ID+1=3 or ID-1=3", "2 4"},
        {"-ID<-5", "6"},
        {"ID - -1 = 2", "1"},
        {"ID/2=1.5", "3"},
        {"1+2*3=7", "1 2 3 4 5 6"},
        {"(1+2)*3=ID+6", "3"},
        {"10-4-3=ID", "3"},
        {"8/ID/2=1", "4"},
        {"ID/0=1", ""},
        {"not ID/0=1", ""},
        {"Big*100=0", "4"},
        {"not Big*100=0", "3 6"},
        {"ID+数量=2.5", "1 3"},
        // conditions
        {"Done", "1 3 6"},
        {"not Done", "2 5"},
        {"Done=true", "1 3 6"},
        {"Done<>TRUE", "2 5"},
        {"Done=False", "2 5"},
        {"true=Done", "1 3 6"},
        {"(ID=2)=false", "1 3 4 5 6"},
        {"true", "1 2 3 4 5 6"},
        {"false or ID=1", "1"},
        {"ID=1 or ID=2 and CODE='x'", "1"},
        {"(ID=1 or ID=2) and CODE='a1'", "2"},
        {"not ID=1 and not ID=2", "3 4 5 6"},
        {"not not ID=1", "1"},
        {"((((ID))))=1", "1"},
        // dates
        {"Day='2024-01-01'", "1"},
        {"Day>='2024-01-02' and Day<'2024-02-02'", "2 4"},
        {"Day='2024-01-01 06:00:00'", "6"},
        {"Day=45292", "1"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Selected(packet, QString::fromUtf8(c.Text), c.Options), c.Rows) << c.Text;
}

TEST(FilterExpression, RefusesWithTextPositionAndFault)
{
    const TDataPacket packet = Parts();
    const struct
    {
        const char *Text;
        int Position;
        const char *Fault;
    } cases[] = {
        {"ID=", 4, "条件不完整"},
        {"ID=1 and", 9, "条件不完整"},
        {"ID=1 ID=2", 6, "此处不应出现“ID”"},
        {"(ID=1", 6, "条件不完整"},
        {"ID=1)", 5, "此处不应出现“)”"},
        {"and ID=1", 1, "此处不应出现“and”"},
        {"ID==1", 4, "此处不应出现“=”"},
        {"CODE='A1", 6, "缺少结束符“'”"},
        {"[CODE=1", 1, "缺少结束符“]”"},
        {"ID=1;", 5, "无法识别的字符“;”"},
        {"ID in 1", 7, "此处不应出现“1”"},
        {"ID in ()", 8, "此处不应出现“)”"},
        {"ID in (1", 9, "条件不完整"},
        {"ID is 1", 7, "此处不应出现“1”"},
        {"ID not 1", 8, "此处不应出现“1”"},
        {"ID<null", 4, "NULL 只能用 = 或 <> 比较"},
        {"ID=1e999", 4, "“1e999”不是有效的数值"},
        {"Unknown=1", 1, "字段“Unknown”没有找到"},
        {"ID=1 or [数 量]=1", 9, "字段“数 量”没有找到"},
        {"ID='abc'", 4, "“abc”不是有效的数值"},
        {"Day='yesterday'", 5, "“yesterday”不是有效的日期"},
        {"CODE+1=2", 1, "只有数值才能计算"},
        {"CODE", 1, "此处需要一个条件"},
        {"ID=1 or 5", 9, "此处需要一个条件"},
        {"数量", 1, "此处需要一个条件"},
        {"(ID=1)+1=2", 2, "此处需要一个值"},
        {"Done>true", 6, "TRUE 和 FALSE 只能用 = 或 <> 比较"},
    };
    for (const auto &c : cases) {
        const QString text = QString::fromUtf8(c.Text);
        EXPECT_EQ(RaisedBy([&] { TFilterExpression(text).Bind(packet.Fields()); }).toStdString(),
                  QStringLiteral("EDatabaseError: 过滤条件“%1”第 %2 个字符处有误：%3")
                      .arg(text, QString::number(c.Position), QString::fromUtf8(c.Fault))
                      .toStdString());
    }
}

TEST(FilterExpression, BoundsTheNesting)
{
    const auto refusal = [](const QString &text) { return RaisedBy([&] { TFilterExpression{text}; }); };
    for (const char *part : {"(", "not ", "-", "1+"})
        EXPECT_TRUE(refusal(QString::fromLatin1(part).repeated(100000) + QStringLiteral("1"))
                        .contains(u"条件嵌套过深"))
            << part;
    QString chain = QStringLiteral("ID=0");
    for (int i = 1; i < 20'000; ++i)
        chain += QStringLiteral(" or ID=%1").arg(i);
    EXPECT_EQ(refusal(chain), "nothing");
    EXPECT_EQ(refusal(QString(150, u'(') + QStringLiteral("ID=1") + QString(150, u')')), "nothing");
}

TEST(FilterExpression, DamagedTextsAreParsedOrRefused)
{
    const TDataPacket packet = Parts();
    const QString seeds[] = {
        QStringLiteral("ID in (1,'2',null) and not ([Un it] like '%a_' or \"CODE\"<>'b''*')"),
        QStringLiteral("-ID*2.5e1+(数量/3) >= 1 or Done = true and Day < '2024-01-01'")};
    std::mt19937 random(7);
    for (int i = 0; i < 20'000; ++i) {
        QString text = seeds[random() % 2];
        for (int edits = int(random() % 4); edits >= 0; --edits) {
            const qsizetype at = qsizetype(random() % size_t(text.size()));
            if (random() % 2 == 0)
                text.remove(at, qsizetype(1 + random() % 5));
            else
                text.insert(at, QStringLiteral("()'[]\"=<>,-*1aé\0%").at(qsizetype(random() % 17)));
            if (text.isEmpty())
                break;
        }
        const QString refusal = RaisedBy([&] { Selected(packet, text); });
        ASSERT_TRUE(refusal == u"nothing" || refusal.startsWith(u"EDatabaseError: 过滤条件"))
            << refusal.toStdString();
    }
}

TEST(FilterExpression, SelectsAmongCandidatesInTheirOrder)
{
    const TDataPacket packet = Parts();
    const std::vector<quint32> candidates = {5, 3, 0, 1};
    std::vector<quint32> rows = {42};
    TFilterExpression("ID<>4").Bind(packet.Fields()).Select(packet, candidates, rows);
    EXPECT_EQ(rows, (std::vector<quint32>{42, 5, 0, 1}));
    rows.clear();
    TBoundFilter().Select(packet, candidates, rows);
    EXPECT_EQ(rows, candidates);

    const TBoundFilter filter = TFilterExpression("CODE='x'").Bind(packet.Fields());
    EXPECT_EQ(RaisedBy([&] {
                  filter.Select(PacketOf({{"ID", ftInteger}}, {{1}}), candidates, rows);
              }),
              "EDatabaseError: 过滤条件与数据包的字段不符");
}

TEST(FilterExpression, SeesTheRowsThatLieOverThePacket)
{
    const TDataPacket packet = Parts();
    const std::vector<TColumnKind> kinds = {TColumnKind::Int32, TColumnKind::Text,  TColumnKind::Double,
                                            TColumnKind::Int64, TColumnKind::Int32, TColumnKind::Double,
                                            TColumnKind::Text,  TColumnKind::Blob};
    TRowOverlay overlay;
    const auto cover = [&](quint32 row, const char *code, double amount) {
        TRowValues values(TPacketRow(packet, row % packet.RowCount()), kinds);
        values.SetText(1, code);
        values.SetDouble(2, amount);
        overlay.Set(row, std::make_shared<const TRowValues>(values));
    };
    cover(1, "B2", 7);
    cover(4, "A1", 7);
    cover(6, "A1", 8);
    cover(3001, "A1", 9);
    const struct
    {
        const char *Text;
        std::vector<quint32> Rows;
    } cases[] = {
        {"", {3001, 5, 6, 4, 3, 2, 1, 0}},
        {"CODE='A1'", {3001, 6, 4, 0}},
        {"CODE='A*' and not 数量=8", {3001, 4, 2, 0}},
        {"数量>6", {3001, 6, 4, 1}},
        {"数量 is null", {3}},
        {"CODE is null", {}},
        {"PIC='p'", {6, 0}},
    };
    for (const auto &c : cases) {
        std::vector<quint32> rows;
        TFilterExpression(QString::fromUtf8(c.Text))
            .Bind(packet.Fields())
            .Select(packet, overlay, std::vector<quint32>{3001, 5, 6, 4, 3, 2, 1, 0}, rows);
        EXPECT_EQ(rows, c.Rows) << c.Text;
    }

    // Over more than a block, beside the rows one by one.
    std::vector<quint32> candidates(5000), expected, rows;
    for (quint32 i = 0; i < 5000; ++i)
        candidates[i] = i % 3 == 0 ? 3001 : i % 7;
    const TBoundFilter filter = TFilterExpression("CODE like 'A%' or 数量<1").Bind(packet.Fields());
    std::ranges::copy_if(candidates, std::back_inserter(expected),
                         [&](quint32 row) { return filter.Matches(TOverlaidRow(packet, overlay, row)); });
    filter.Select(packet, overlay, candidates, rows);
    EXPECT_EQ(rows, expected);
}

TEST(KeyLookup, FindsRowsThatLieOverThePacket)
{
    const TDataPacket packet =
        PacketOf({{"CODE", ftString}, {"N", ftInteger}}, {{"A", 1}, {"B", 2}, {"C", 3}});
    TRowOverlay overlay;
    for (const quint32 row : {1u, 3u}) {
        TRowValues values(2);
        values.SetText(0, "c");
        values.SetInt(1, 3);
        overlay.Set(row, std::make_shared<const TRowValues>(values));
    }
    const auto rowAt = [&](quint32 i) { return TOverlaidRow(packet, overlay, i); };
    for (const TLocateOptions options : {TLocateOptions(), TLocateOptions(loCaseInsensitive)}) {
        TRowKey key({0, 1}, {ftString, ftInteger}, options);
        TKeyLookup lookup;
        lookup.Build(
            4, [&](quint32 i) { return key.HashOf(rowAt(i)); },
            [&](quint32 a, quint32 b) { return key.AreSame(rowAt(a), rowAt(b)); });
        const auto find = [&](const QVariant &code, const QVariant &number) {
            key.Set(0, code);
            key.Set(1, number);
            return lookup.Find(key.Hash(), [&](quint32 i) { return key.Matches(rowAt(i)); });
        };
        EXPECT_EQ(find("C", 3), options ? 1u : 2u);
        EXPECT_EQ(find("c", 3), 1u);
        EXPECT_EQ(find("B", 2), TKeyLookup::NotFound);
        EXPECT_EQ(find("A", 1), 0u);
    }
}

// ---- random filters, beside a row-by-row evaluation that shares no code with them ------

using TRandom = std::mt19937;

int Pick(TRandom &random, int count) { return int(random() % unsigned(count)); }

TDataPacket RandomPacket(TRandom &random, int rows)
{
    TDataPacketBuilder builder({{"I", ftInteger}, {"D", ftFloat}, {"T", ftString}, {"L", ftLargeint}});
    const char *const texts[] = {"", "a", "A", "ab", "Ab*", "中", "中a", "é", "É"};
    for (int row = 0; row < rows; ++row) {
        if (Pick(random, 4) != 0)
            builder.AppendInt(0, Pick(random, 5) - 2);
        if (Pick(random, 4) != 0)
            builder.AppendDouble(1, (Pick(random, 9) - 4) / 2.0);
        if (Pick(random, 4) != 0)
            builder.AppendText(2, texts[Pick(random, 9)]);
        if (Pick(random, 4) != 0)
            builder.AppendInt(3, (Pick(random, 3) - 1) * (qint64(1) << 53) + Pick(random, 2));
        builder.EndRow();
    }
    return std::move(builder).Build();
}

enum class TLogic { No, Unknown, Yes };

/// A random filter: its text, and its truth for a row, evaluated without the library.
struct TModel
{
    QString Text;
    std::function<TLogic(const TDataPacket &, qsizetype)> Truth;
};

TModel RandomComparison(TRandom &random, bool isBlind)
{
    static const char *const operators[] = {"=", "<>", "<", ">", "<=", ">="};
    const int chosen = Pick(random, 6);
    const auto outcome = [chosen](int order) {
        const bool results[] = {order == 0, order != 0, order<0, order> 0, order <= 0, order >= 0};
        return results[chosen] ? TLogic::Yes : TLogic::No;
    };
    const QString operation = QString::fromLatin1(operators[chosen]);
    if (Pick(random, 2) == 0) {
        static const char *const constants[] = {"", "a", "AB", "中", "é", "b"};
        const QString constant = QString::fromUtf8(constants[Pick(random, 6)]);
        return {QStringLiteral("T%1'%2'").arg(operation, constant),
                [=](const TDataPacket &packet, qsizetype row) {
                    if (packet.Column(2).IsNull(row))
                        return TLogic::Unknown;
                    const QString text = packet.Text(2, row);
                    const QString left = isBlind ? text.toCaseFolded() : text;
                    const QString right = isBlind ? constant.toCaseFolded() : constant;
                    return outcome(left < right ? -1 : left > right);
                }};
    }
    const int column = std::array{0, 1, 3}[size_t(Pick(random, 3))];
    const double constant = (Pick(random, 9) - 4) / 2.0;
    const QString name = QString::fromLatin1(std::array{"I", "D", "", "L"}[size_t(column)]);
    return {QStringLiteral("%1%2%3").arg(name, operation).arg(constant),
            [=](const TDataPacket &packet, qsizetype row) {
                if (packet.Column(column).IsNull(row))
                    return TLogic::Unknown;
                const double value = packet.Value(column, row).toDouble();
                return outcome(value < constant ? -1 : value > constant);
            }};
}

TModel RandomCondition(TRandom &random, bool isBlind, int depth)
{
    const int kind = depth == 0 ? 0 : Pick(random, 5);
    if (kind == 0)
        return RandomComparison(random, isBlind);
    if (kind == 1) {
        const int column = Pick(random, 4);
        return {QStringLiteral("%1 is null").arg(QStringLiteral("IDTL").at(column)),
                [=](const TDataPacket &packet, qsizetype row) {
                    return packet.Column(column).IsNull(row) ? TLogic::Yes : TLogic::No;
                }};
    }
    const TModel left = RandomCondition(random, isBlind, depth - 1);
    if (kind == 2)
        return {QStringLiteral("not (%1)").arg(left.Text), [=](const TDataPacket &packet, qsizetype row) {
                    return TLogic(2 - int(left.Truth(packet, row)));
                }};
    const TModel right = RandomCondition(random, isBlind, depth - 1);
    const bool isAnd = kind == 3;
    return {QStringLiteral("(%1) %2 (%3)").arg(left.Text, isAnd ? "and" : "or", right.Text),
            [=](const TDataPacket &packet, qsizetype row) {
                const TLogic a = left.Truth(packet, row);
                const TLogic b = right.Truth(packet, row);
                return isAnd ? std::min(a, b) : std::max(a, b);
            }};
}

TEST(FilterExpression, AgreesWithAModelOnRandomFilters)
{
    TRandom random(20240501);
    const TDataPacket packet = RandomPacket(random, 2500); // over two blocks
    size_t selected = 0;
    for (int i = 0; i < 300; ++i) {
        const bool isBlind = Pick(random, 2) == 0;
        const TModel model = RandomCondition(random, isBlind, 4);
        std::vector<quint32> expected;
        for (quint32 row = 0; row < packet.RowCount(); ++row)
            if (model.Truth(packet, row) == TLogic::Yes)
                expected.push_back(row);
        const TBoundFilter filter =
            TFilterExpression(model.Text, isBlind ? TFilterOptions(foCaseInsensitive) : TFilterOptions())
                .Bind(packet.Fields());
        std::vector<quint32> rows;
        filter.Select(packet, rows);
        ASSERT_EQ(rows, expected) << model.Text.toStdString();
        for (quint32 row = 0, at = 0; row < 300; ++row) {
            const bool isIn = at < expected.size() && expected[at] == row;
            at += isIn;
            ASSERT_EQ(filter.Matches(TPacketRow(packet, row)), isIn) << model.Text.toStdString();
        }
        selected += rows.size();
    }
    // The random filters must neither refuse nor take nearly everything.
    EXPECT_GT(selected, 300 * 2500 / 10);
    EXPECT_LT(selected, 300 * 2500 * 9 / 10);
}

} // namespace

} // namespace Korvane
