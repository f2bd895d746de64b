// SPDX-License-Identifier: MIT
#include "JetBuilder.h"
#include "JetTesting.h"

#include <random>

namespace Korvane {
namespace {

using namespace Testing;

/// Reads a file whole and checks that what fails is an ESqlError with the file's name. Returns
/// whether it failed.
bool FailsProperly(const QString &fileName)
{
    try {
        ReadEverything(fileName);
        return false;
    } catch (const ESqlError &error) {
        EXPECT_TRUE(error.Message().contains(fileName)) << error.what();
        return true;
    }
}

QString ErrorOf(const QString &fileName)
{
    try {
        ReadEverything(fileName);
    } catch (const ESqlError &error) {
        return error.Message();
    }
    return {};
}

TEST(JetDamage, RefusesForeignFiles)
{
    QTemporaryDir folder;
    const QByteArray sample = ReadBytes(Sample(QStringLiteral("orders.dbd")));
    QByteArray version = sample;
    version[0x14] = 99;
    const std::pair<QByteArray, QString> files[] = {
        {"", QStringLiteral("“%1”不是有效的数据库文件")},
        {"select * from Tables\r\n", QStringLiteral("“%1”不是有效的数据库文件")},
        {"SQLite format 3" + QByteArray(8192, 0), QStringLiteral("“%1”不是有效的数据库文件")},
        {QByteArray(100000, 0), QStringLiteral("“%1”不是有效的数据库文件")},
        {sample.left(19), QStringLiteral("“%1”不是有效的数据库文件")},
        {sample.left(20), QStringLiteral("数据库文件“%1”已损坏：版本号无效")},
        {version, QStringLiteral("数据库文件“%1”已损坏：版本号无效")},
        {sample.left(1000), QStringLiteral("数据库文件“%1”已损坏：文件不完整")},
        {sample.left(4096), QStringLiteral("数据库文件“%1”已损坏：文件不完整")},
        {sample + "x", QStringLiteral("数据库文件“%1”已损坏：文件不完整")},
    };
    for (const auto &[bytes, message] : files) {
        const QString path = WriteBytes(folder, QStringLiteral("外来.dbd"), bytes);
        EXPECT_EQ(ErrorOf(path), message.arg(path));
    }
    const QString missing = folder.filePath(QStringLiteral("没有.dbd"));
    EXPECT_EQ(ErrorOf(missing), QStringLiteral("找不到数据库文件“%1”").arg(missing));
    EXPECT_EQ(ErrorOf(folder.path()), QStringLiteral("“%1”不是文件").arg(folder.path()));
}

TEST(JetDamage, NoticesAFileThatIsCut)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("cut.dbd"));
    for (const char *name : {"orders.dbd", "orders-jet3.dbd", "empty.dbd"}) {
        const QByteArray whole = ReadBytes(Sample(QString::fromLatin1(name)));
        const qsizetype pageSize = whole[0x14] == 0 ? 2048 : 4096;
        qsizetype failed = 0;
        for (qsizetype size = 0; size < whole.size(); size += pageSize) {
            WriteBytes(folder, QStringLiteral("cut.dbd"), whole.left(size));
            failed += FailsProperly(path) ? 1 : 0;
            for (const qsizetype more : {qsizetype(1), pageSize / 2, pageSize - 1}) {
                WriteBytes(folder, QStringLiteral("cut.dbd"), whole.left(size + more));
                EXPECT_TRUE(FailsProperly(path)) << name << ' ' << size + more;
            }
        }
        // Each page but the last few of a table that is empty belongs to some table.
        EXPECT_GE(failed, whole.size() / pageSize * 9 / 10) << name;
    }
}

/// Bytes of every page, half of them in its head and row offsets; more of a page that is no page
/// of rows.
QList<qsizetype> Places(const QByteArray &whole, std::mt19937 &random)
{
    constexpr char rowsPage = 1;
    const qsizetype pageSize = whole[0x14] == 0 ? 2048 : 4096;
    QList<qsizetype> places;
    for (qsizetype page = 0; page < whole.size(); page += pageSize) {
        const int count = whole[page] == rowsPage ? 4 : 30;
        for (int i = 0; i < count; ++i)
            places.append(page + qsizetype(random() % quint32(i % 2 == 0 ? 64 : pageSize)));
    }
    return places;
}

TEST(JetDamage, SurvivesBytesThatAreOverwritten)
{
    QTemporaryDir folder;
    std::mt19937 random(20240101);
    for (const QString &name : {Sample(QStringLiteral("orders.dbd")),
                                Sample(QStringLiteral("orders-jet3.dbd")), LegacyDatabase()}) {
        const QByteArray whole = ReadBytes(name);
        const QString path = WriteBytes(folder, QStringLiteral("damaged.dbd"), whole);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
        const auto put = [&file](qsizetype at, char byte) {
            file.seek(at);
            file.write(&byte, 1);
        };
        int failed = 0;
        int tried = 0;
        for (const qsizetype at : Places(whole, random)) {
            const char bytes[] = {'\0', '\xff', char(random())};
            put(at, bytes[tried % 3]);
            failed += FailsProperly(path) ? 1 : 0;
            ++tried;
            put(at, whole[at]);
        }
        EXPECT_GT(failed, 0);
        EXPECT_LT(failed, tried);
        EXPECT_FALSE(FailsProperly(path)) << "the file is whole again";
    }
}

// Heads, definitions, maps, row offsets and rows, byte by byte.
TEST(JetDamage, SurvivesDamagedStructures)
{
    QTemporaryDir folder;
    for (const bool isJet3 : {false, true}) {
        const QByteArray head =
            ReadBytes(Sample(isJet3 ? QStringLiteral("orders-jet3.dbd") : QStringLiteral("orders.dbd")));
        TJetBuilder builder(head, isJet3);
        builder.BeginTable(QStringLiteral("T"),
                           {{QStringLiteral("Id"), TJetType::LongInteger, 4, true},
                            {QStringLiteral("Price"), TJetType::Decimal, 17, true, 12, 2},
                            {QStringLiteral("Made"), TJetType::DateTime, 8, true},
                            {QStringLiteral("Name"), TJetType::Text, 100, false},
                            {QStringLiteral("Memo"), TJetType::Memo, 0, false}});
        for (int i = 0; i < 3; ++i) {
            builder.AddRow({TJetBuilder::Int(quint64(i), 4), QByteArray(17, 0),
                            TJetBuilder::DoubleBytes(45292), QByteArray(300, 'n'),
                            builder.ChainedValue(QByteArray(9000, 'm'))});
        }
        builder.UseMapPages();
        const QByteArray whole = builder.Build();
        const QString path = WriteBytes(folder, QStringLiteral("built.mdb"), whole);
        ASSERT_GT(ReadEverything(path), 0);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
        const qsizetype pageSize = isJet3 ? 2048 : 4096;
        int failed = 0;
        for (qsizetype at = 2 * pageSize; at < whole.size(); ++at) {
            // The middle of a page is empty or the inside of a memo.
            const qsizetype inPage = at % pageSize;
            if (inPage > 220 && inPage < pageSize - 60)
                continue;
            for (const char byte : {'\0', '\x7f', '\xff'}) {
                file.seek(at);
                file.write(&byte, 1);
                failed += FailsProperly(path) ? 1 : 0;
            }
            file.seek(at);
            file.write(whole.constData() + at, 1);
        }
        EXPECT_GT(failed, 500);
    }
}

/// Overwrites bytes of a built file and returns what reading it says.
class JetCircles : public ::testing::Test
{
protected:
    QString ErrorAfter(const TJetBuilder &builder, qsizetype at, const QByteArray &bytes)
    {
        QByteArray file = builder.Build();
        file.replace(at, bytes.size(), bytes);
        const QString path = WriteBytes(FFolder, QStringLiteral("built.mdb"), file);
        return ErrorOf(path).remove(path);
    }
    TJetBuilder Builder() const
    {
        TJetBuilder builder(ReadBytes(Sample(QStringLiteral("orders.dbd"))), false);
        builder.BeginTable(QStringLiteral("T"), {{QStringLiteral("Ole"), TJetType::Ole, 0, false}});
        return builder;
    }

    static constexpr qsizetype PageSize = 4096;
    QTemporaryDir FFolder;
};

TEST_F(JetCircles, DefinitionThatGoesOnInItself)
{
    const TJetBuilder builder = Builder();
    const quint32 page = builder.TablePage();
    EXPECT_EQ(ErrorAfter(builder, page * PageSize + 4, TJetBuilder::Int(page, 4)),
              QStringLiteral("数据库文件“”已损坏：表定义页 %1 循环").arg(page));
}

TEST_F(JetCircles, ChainThatNeverEnds)
{
    TJetBuilder builder = Builder();
    // Longer than the whole file, in rows that lead to themselves.
    const QByteArray value = builder.ChainedValue(QByteArray(5000, 'x'));
    builder.AddRow({TJetBuilder::Int(0x3fffffff, 4) + value.mid(4)});
    EXPECT_EQ(ErrorAfter(builder, 0, {}), QStringLiteral("数据库文件“”已损坏：备注或图片的长度无效"));
}

TEST_F(JetCircles, ManyRowsThatShareOneChain)
{
    TJetBuilder builder = Builder();
    const QByteArray value = builder.ChainedValue(QByteArray(60000, 'x'));
    for (int i = 0; i < 1000; ++i)
        builder.AddRow({value});
    EXPECT_EQ(ErrorAfter(builder, 0, {}), QStringLiteral("数据库文件“”已损坏：备注或图片的长度无效"));
}

TEST_F(JetCircles, ChainThatStopsEarly)
{
    TJetBuilder builder = Builder();
    const QByteArray value = builder.ChainedValue(QByteArray(5000, 'x'));
    builder.AddRow({TJetBuilder::Int(6000, 4) + value.mid(4)});
    EXPECT_EQ(ErrorAfter(builder, 0, {}), QStringLiteral("数据库文件“”已损坏：第 0 页不存在"));
}

TEST_F(JetCircles, PageOfRowsThatIsWipedOut)
{
    TJetBuilder builder = Builder();
    builder.AddRow({std::nullopt});
    const qsizetype page = builder.RowPage() * PageSize;
    EXPECT_EQ(ErrorAfter(builder, page, QByteArray(PageSize, 0)),
              QStringLiteral("数据库文件“”已损坏：缺少记录"));
    EXPECT_EQ(ErrorAfter(builder, page + 4, TJetBuilder::Int(2, 4)),
              QStringLiteral("数据库文件“”已损坏：第 %1 页属于别的表").arg(builder.RowPage()));
}

// Whatever byte of the definition is wrong: the indexes are read, or the damage is told.
TEST(JetDamage, TellsDamagedIndexes)
{
    QTemporaryDir folder;
    TJetBuilder builder(ReadBytes(Sample(QStringLiteral("orders.dbd"))).first(4096), false);
    builder.BeginTable(QStringLiteral("T"), {{QStringLiteral("A"), TJetType::LongInteger, 4, true}});
    builder.AddIndex(QStringLiteral("K"), {0}, TJetBuilder::TIndexKind::Primary);
    const QByteArray whole = builder.Build();
    const auto definition = qsizetype(builder.TablePage()) * 4096;
    int told = 0;
    for (qsizetype at = definition + 47; at < definition + 47 + 160; ++at) {
        QByteArray bytes = whole;
        bytes[at] = '\xff';
        const QString path = WriteBytes(folder, QStringLiteral("index.mdb"), bytes);
        try {
            TJetFile file(path);
            EXPECT_LE(file.Indexes(QStringLiteral("T")).size(), 1);
        } catch (const ESqlError &error) {
            EXPECT_TRUE(error.Message().contains(path)) << error.what();
            ++told;
        }
    }
    EXPECT_GT(told, 10);
}

} // namespace
} // namespace Korvane
