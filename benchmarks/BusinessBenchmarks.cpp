// SPDX-License-Identifier: MIT
#include "BusinessBenchmarks.h"

#include "business/MD5.h"
#include "business/MoneyWords.h"

#include <QDir>
#include <QFile>

#include <openssl/evp.h>

#include <random>

namespace Bench {

using namespace Korvane;

namespace {

constexpr qsizetype DigestedBytes = qsizetype(64) << 20;
constexpr int SpelledAmounts = 100'000;

/// A file of random bytes, and what is in it.
class TDigestedFile
{
public:
    explicit TDigestedFile(const QString &folder) : FName(QDir(folder).filePath(QStringLiteral("digested")))
    {
        std::mt19937_64 random(1321);
        FBytes.resize(DigestedBytes);
        for (qsizetype i = 0; i < FBytes.size(); i += qsizetype(sizeof(quint64))) {
            const quint64 word = random();
            std::memcpy(FBytes.data() + i, &word, sizeof word);
        }
        QFile file(FName);
        if (!file.open(QIODevice::WriteOnly) || file.write(FBytes) != FBytes.size())
            qFatal("%s", qUtf8Printable(file.errorString()));
    }
    ~TDigestedFile() { QFile::remove(FName); }

    QByteArray Ours() const
    {
        MD5Context context;
        MD5Init(context);
        MD5Update(context, reinterpret_cast<const quint8 *>(FBytes.constData()), unsigned(FBytes.size()));
        MD5Digest digest;
        MD5Final(context, digest);
        return MD5Print(digest).toLatin1();
    }
    QByteArray OursFromFile() const { return RivestFile(FName).toLatin1(); }
    QByteArray Theirs() const { return Digest({FBytes.constData(), FBytes.size()}); }
    QByteArray TheirsFromFile() const
    {
        QFile file(FName);
        if (!file.open(QIODevice::ReadOnly))
            qFatal("%s", qUtf8Printable(file.errorString()));
        const uchar *const bytes = file.map(0, file.size());
        return Digest({bytes, file.size()});
    }

private:
    static QByteArray Digest(QByteArrayView bytes)
    {
        unsigned char digest[EVP_MAX_MD_SIZE];
        unsigned size = 0;
        EVP_Digest(bytes.data(), size_t(bytes.size()), digest, &size, EVP_md5(), nullptr);
        return QByteArray(reinterpret_cast<const char *>(digest), int(size)).toHex();
    }

    const QString FName;
    QByteArray FBytes;
};

} // namespace

QList<TComparison> BusinessComparisons(const QString &folder)
{
    const auto made = std::make_shared<std::shared_ptr<TDigestedFile>>();
    const auto file = [made, folder]() -> TDigestedFile & {
        if (!*made)
            *made = std::make_shared<TDigestedFile>(folder);
        return **made;
    };
    const auto prepare = [file] { file(); };
    return {{.What = QStringLiteral("MD5 of 64 MiB in memory"),
             .Peer = QStringLiteral("OpenSSL's EVP_Digest"),
             .Goal = AtLeast(0.95),
             .Ours = [file] { Use(file().Ours().size()); },
             .Theirs = [file] { Use(file().Theirs().size()); },
             .Prepare = prepare,
             .Repetitions = 9,
             .Same = [file] { return file().Ours() == file().Theirs(); }},
            {.What = QStringLiteral("the same bytes in a file"),
             .Peer = QStringLiteral("OpenSSL's EVP_Digest over the mapped file"),
             .Goal = AtLeast(0.95),
             .Ours = [file] { Use(file().OursFromFile().size()); },
             .Theirs = [file] { Use(file().TheirsFromFile().size()); },
             .Prepare = prepare,
             .Repetitions = 9,
             .Same = [file] { return file().OursFromFile() == file().TheirsFromFile(); }},
            {.What = QStringLiteral("100,000 amounts by CnMoney"),
             .Peer = {},
             .Goal = {},
             .Ours =
                 [] {
                     for (int i = 0; i < SpelledAmounts; ++i)
                         Use(CnMoney(i * 1234567.89).size());
                 },
             .Theirs = {}}};
}

} // namespace Bench
