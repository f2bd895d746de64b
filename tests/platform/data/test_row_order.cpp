// SPDX-License-Identifier: MIT
#include "support/Packets.h"

#include "platform/data/NumberText.h"
#include "platform/data/RowOrder.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>

namespace Korvane {

namespace {

using TRandom = std::mt19937;

const QVariant Null;
const std::vector<TColumnKind> Kinds = {TColumnKind::Int32, TColumnKind::Int64, TColumnKind::Double,
                                        TColumnKind::Text,  TColumnKind::Blob,  TColumnKind::Text};

/// Values that are easy to take for one another, for each kind of column; the last column has
/// few texts, so that other keys decide.
QVariantList Samples(int column)
{
    const QString longText(460, u'x');
    const QVariantList samples[] = {
        {1, -1, 0, 2, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), Null},
        {std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::min() + 1,
         std::numeric_limits<qint64>::max(), 0, -1, Null},
        {0.0, -0.0, 1.5, -1.5, 1e300, -1e300, 5e-324, std::nan(""), qInf(), -qInf(), Null},
        {"",
         "a",
         "A",
         "b",
         "abcdef",
         "abcdefg",
         "abcdefgh",
         "ABCDEFGHJ",
         "abcdefgij",
         "abcdefghijklmn",
         "abcdefghijklmno",
         QString(u"a"_qs + QChar(0)),
         QString(QChar(0)),
         "中文字甲",
         "中文字乙",
         "中文字",
         "中文A",
         "中文a",
         "é",
         "É",
         "éa",
         "ÉB",
         "a😀",
         "a\uFFFD",
         "ſ",
         "s",
         "K",
         "k",
         "\u212A",
         longText,
         longText + u'A',
         longText + u'a',
         longText + u'é',
         longText + u'B',
         Null},
        {QByteArray("\x00", 1), QByteArray(), QByteArray("\xff\xfe"), QByteArray("\xe4\xb8"), QByteArray("a"),
         QByteArray("abcdefg\x00", 8), QByteArray("abcdefg"), QByteArray("ABCDEFG\xe4\xb8\xad"), Null},
        {"一号仓库", "二号仓库", Null}};
    return samples[column];
}

QVariantList RandomRow(TRandom &random)
{
    QVariantList row;
    for (int column = 0; column < int(Kinds.size()); ++column) {
        const QVariantList samples = Samples(column);
        row += samples[qsizetype(random() % size_t(samples.size()))];
    }
    return row;
}

TDataPacket PacketOfRows(const QList<QVariantList> &rows)
{
    return PacketOf({{"I", ftInteger},
                     {"L", ftLargeint},
                     {"F", ftFloat},
                     {"S", ftString},
                     {"B", ftBlob},
                     {"W", ftString}},
                    rows);
}

std::shared_ptr<const TRowValues> Values(const QVariantList &row)
{
    return std::make_shared<const TRowValues>(TPacketRow(PacketOfRows({row}), 0), Kinds);
}

/// The plain order of two rows, by the getters alone.
int PlainOrder(const TRowReader &left, const TRowReader &right, std::span<const TOrderPart> order)
{
    for (const auto &[column, mode, direction, collation] : order) {
        int result = int(right.IsNull(column)) - int(left.IsNull(column));
        const TColumnKind kind = Kinds[size_t(column)];
        if (left.IsNull(column) || right.IsNull(column))
            ;
        else if (kind == TColumnKind::Double)
            result = CompareNumbers(left.GetDouble(column), right.GetDouble(column));
        else if (kind < TColumnKind::Double)
            result = CompareNumbers(left.GetInt(column), right.GetInt(column));
        else if (kind == TColumnKind::Text && collation)
            result = collation->Compare(left.GetText(column), right.GetText(column), mode);
        else
            result = CompareTexts(left.GetText(column), right.GetText(column), mode);
        if (result != 0)
            return direction == TSortDirection::Ascending ? result : -result;
    }
    return 0;
}

int SignOf(int order) { return (order > 0) - (order < 0); }

/// Each kind of column as the first key and the second, or with both, in all directions and
/// modes of texts.
std::vector<std::vector<TOrderPart>> Orders()
{
    std::vector<std::vector<TOrderPart>> orders = {{}};
    for (int first = 0; first < int(Kinds.size()); ++first) {
        for (const TCaseMode mode : {TCaseMode::Exact, TCaseMode::Blind}) {
            for (const auto direction : {TSortDirection::Ascending, TSortDirection::Descending}) {
                for (const TTextCollation *collation :
                     {static_cast<const TTextCollation *>(nullptr), TTextCollation::ForLocale("zh")}) {
                    const TOrderPart part = {first, mode, direction, collation};
                    orders.push_back({part});
                    orders.push_back({{5, mode, TSortDirection::Descending, collation}, part});
                    orders.push_back({part, {(first + 1) % 5, mode, TSortDirection::Ascending, collation}});
                }
            }
        }
    }
    return orders;
}

std::string TextOf(std::span<const TOrderPart> order)
{
    QStringList parts;
    for (const TOrderPart &part : order)
        parts += QStringLiteral("%1%2%3%4")
                     .arg(part.Column)
                     .arg(int(part.Mode))
                     .arg(int(part.Direction))
                     .arg(part.Collation != nullptr);
    return parts.join(u' ').toStdString();
}

// Some rows of a packet, and of one with others over it and behind it, in any order: beside a
// stable sort by the plain order.
TEST(RowOrder, SortsAndComparesAsThePlainOrderDoes)
{
    TRandom random(20240611);
    for (const size_t count : {3u, 11u, 60u, 300u}) {
        QList<QVariantList> rows;
        for (size_t i = 0; i < count; ++i)
            rows += RandomRow(random);
        const TDataPacket packet = PacketOfRows(rows);
        for (const bool isOverlaid : {false, true}) {
            TRowOverlay overlay;
            for (size_t i = 0; isOverlaid && i < count / 3; ++i) {
                overlay.Set(quint32(random() % count), Values(RandomRow(random)));
                overlay.Set(quint32(count + i), Values(RandomRow(random)));
            }
            std::vector<quint32> given(count + (isOverlaid ? count / 3 : 0));
            std::iota(given.begin(), given.end(), 0u);
            if (random() % 2 == 0)
                std::shuffle(given.begin(), given.end(), random);
            given.resize(given.size() - given.size() / 10);

            for (const std::vector<TOrderPart> &order : Orders()) {
                const auto plain = [&](quint32 left, quint32 right) {
                    return PlainOrder(TOverlaidRow(packet, overlay, left),
                                      TOverlaidRow(packet, overlay, right), order);
                };
                std::vector<quint32> expected = given, sorted = given;
                std::ranges::stable_sort(expected, [&](quint32 a, quint32 b) { return plain(a, b) < 0; });
                SortRows(packet, overlay, order, sorted);
                ASSERT_EQ(sorted, expected) << TextOf(order) << ", rows: " << count << isOverlaid;
                if (!isOverlaid) {
                    sorted = given;
                    SortRows(packet, order, sorted);
                    ASSERT_EQ(sorted, expected) << TextOf(order);
                }
                for (int i = 0; i < 10; ++i) {
                    const quint32 left = given[random() % given.size()],
                                  right = given[random() % given.size()];
                    const TOverlaidRow leftRow(packet, overlay, left);
                    const TRowValues key(TOverlaidRow(packet, overlay, right), Kinds);
                    ASSERT_EQ(SignOf(CompareRows(packet, overlay, order, left, right)),
                              SignOf(plain(left, right)));
                    ASSERT_EQ(SignOf(CompareRowToKey(leftRow, order, key, order.size(), Kinds)),
                              SignOf(plain(left, right)));
                }
            }
        }
    }
}

TEST(RowOrder, ComparesWithTheFirstPartsOfAKey)
{
    const std::vector<TOrderPart> order = {{3}, {0, TCaseMode::Exact, TSortDirection::Descending}};
    const auto row = Values({5, Null, Null, "a", Null, Null});
    const struct
    {
        QVariant Text;
        QVariant Number;
        const char *Orders; // by no parts, by one, by two, and by more than there are
    } cases[] = {{"a", 5, "0 0 0 0"},    {"a", 4, "0 0 -1 -1"}, {"a", Null, "0 0 -1 -1"},
                 {"b", 4, "0 -1 -1 -1"}, {Null, 5, "0 1 1 1"},  {"A", 6, "0 1 1 1"}};
    for (const auto &c : cases) {
        const auto key = Values({c.Number, Null, Null, c.Text, Null, Null});
        QStringList orders;
        for (const size_t parts : {0u, 1u, 2u, 9u})
            orders += QString::number(SignOf(CompareRowToKey(*row, order, *key, parts, Kinds)));
        EXPECT_EQ(orders.join(u' ').toStdString(), c.Orders) << c.Text.toString().toStdString();
    }
}

TEST(RowOrder, LongEqualTextsNeedNoDeepStack)
{
    QList<QVariantList> same, longer;
    for (int i = 0; i < 1500; ++i) {
        longer += {Null, Null, Null, QString(1499 - i, u'y'), Null, Null};
        if (i < 20)
            same += {Null, Null, Null, Null, QByteArray(500'000, 'z'), Null};
    }
    const auto sorted = [](const QList<QVariantList> &rows, TOrderPart part) {
        std::vector<quint32> numbers(size_t(rows.size()));
        std::iota(numbers.begin(), numbers.end(), 0u);
        SortRows(PacketOfRows(rows), {&part, 1}, numbers);
        return numbers;
    };
    std::vector<quint32> expected(1500);
    std::iota(expected.rbegin(), expected.rend(), 0u);
    for (const TCaseMode mode : {TCaseMode::Exact, TCaseMode::Blind})
        EXPECT_EQ(sorted(longer, {3, mode}), expected);
    EXPECT_EQ(sorted(same, {4}),
              (std::vector<quint32>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19}));
}

} // namespace

} // namespace Korvane
