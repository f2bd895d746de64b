// SPDX-License-Identifier: MIT
#include "business/MD5.h"

#include <QCryptographicHash>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

const QString OfNothing = u"d41d8cd98f00b204e9800998ecf8427e"_s;

QString DigestOf(const QByteArray &bytes, qsizetype piece)
{
    MD5Context context;
    MD5Init(context);
    for (qsizetype i = 0; i < bytes.size(); i += piece)
        MD5Update(context, reinterpret_cast<const quint8 *>(bytes.constData()) + i,
                  unsigned(qMin(piece, bytes.size() - i)));
    MD5Digest digest;
    MD5Final(context, digest);
    EXPECT_EQ(QByteArray(reinterpret_cast<const char *>(&context), sizeof context),
              QByteArray(sizeof context, '\0'));
    return MD5Print(digest);
}

} // namespace

TEST(MD5, of_the_published_vectors)
{
    const struct
    {
        QString Text, Digest;
    } rows[] = {
        {{}, OfNothing},
        {u"a"_s, u"0cc175b9c0f1b6a831c399e269772661"_s},
        {u"abc"_s, u"900150983cd24fb0d6963f7d28e17f72"_s},
        {u"message digest"_s, u"f96b697d7cb7938d525a2f31aaf161d0"_s},
        {u"abcdefghijklmnopqrstuvwxyz"_s, u"c3fcd3d76192e4007dfb496cca67e13b"_s},
        {u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"_s,
         u"d174ab98d277d9f5a5611c2c9f419d9f"_s},
        {u"1234567890123456789012345678901234567890123456789012345678901234567890123456789"
         "0"_s,
         u"57edf4a22be3c955ac49da2e2107b67a"_s},
    };
    for (const auto &row : rows)
        EXPECT_EQ(RivestStr(row.Text), row.Digest) << qPrintable(row.Text);
    EXPECT_EQ(RivestStr(u"编码"_s), DigestOf("\xB1\xE0\xC2\xEB", 4)) << "in code page 936";
    EXPECT_TRUE(MD5Match(MD5String(u"a"_s), MD5String(u"a"_s)));
    EXPECT_FALSE(MD5Match(MD5String(u"a"_s), MD5String(u"b"_s)));
}

TEST(MD5, of_any_length_in_any_pieces)
{
    QByteArray bytes;
    for (int i = 0; i < 300; ++i)
        bytes += char(i * 7);
    for (qsizetype length = 0; length <= bytes.size(); ++length) {
        const QByteArray message = bytes.left(length);
        const QString expected =
            QString::fromLatin1(QCryptographicHash::hash(message, QCryptographicHash::Md5).toHex());
        for (const qsizetype piece : {1, 13, 63, 64, 65, 300})
            ASSERT_EQ(DigestOf(message, piece), expected) << length << " by " << piece;
    }
}

TEST(MD5, of_files)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"文件"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    QCryptographicHash expected(QCryptographicHash::Md5);
    // NOTE: more than is mapped at once. The end is written alone: what lies before are zeros.
    const qint64 zeros = (qint64(1) << 28) + 5;
    const QByteArray block(1 << 20, '\0');
    for (qint64 left = zeros; left > 0; left -= block.size())
        expected.addData(block.left(qMin(left, qint64(block.size()))));
    expected.addData("end");
    ASSERT_TRUE(file.seek(zeros) && file.write("end") == 3);
    file.close();
    EXPECT_EQ(RivestFile(file.fileName()), QString::fromLatin1(expected.result().toHex()));

    ASSERT_TRUE(file.resize(0));
    EXPECT_EQ(RivestFile(file.fileName()), OfNothing);
    EXPECT_EQ(RivestFile(folder.filePath(u"missing"_s)), OfNothing);
    EXPECT_EQ(RivestFile(folder.path()), OfNothing);
}
