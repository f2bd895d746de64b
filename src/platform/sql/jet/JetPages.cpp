// SPDX-License-Identifier: MIT
#include "platform/sql/jet/JetPages.h"

#include "platform/sql/SqlError.h"
#include "platform/sql/jet/JetValue.h"
#include "platform/sql/sqlite/DatabaseFile.h"

#include <QFile>
#include <QFileInfo>

#include <mdbtools.h>

namespace Korvane {

namespace {

constexpr TJetLayout Jet3Layout = {true, 2048, 8, 12, 25, 31, 35, 43, 8, 18, 1, 3, 9, 11, 13, 14, 16};
constexpr TJetLayout Jet4Layout = {false, 4096, 12, 16, 45, 51, 55, 63, 12, 25, 5, 7, 11, 0, 15, 21, 23};

constexpr int RowOffsetMask = 0x1fff;
constexpr int DefaultCodePage = 936;

bool IsMagic(const QByteArray &head)
{
    return head.startsWith(QByteArrayView("\0\1\0\0Standard Jet DB\0", 20)) ||
           head.startsWith(QByteArrayView("\0\1\0\0Standard ACE DB\0", 20));
}

/// Checks what can be seen without libmdb, which would complain on the standard error
/// stream, and returns the size of the file.
qint64 CheckedSize(const QString &fileName)
{
    const QFileInfo info(fileName);
    if (!info.exists())
        throw ESqlError(QStringLiteral("找不到数据库文件“%1”").arg(fileName));
    if (!info.isFile())
        throw ESqlError(QStringLiteral("“%1”不是文件").arg(fileName));
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw ESqlError(QStringLiteral("无法打开数据库文件“%1”：%2").arg(fileName, file.errorString()));
    const QByteArray head = file.read(0x18);
    if (!IsMagic(head))
        throw ESqlError(QStringLiteral("“%1”不是有效的数据库文件").arg(fileName));
    if (head.size() <= 0x14 || quint8(head[0x14]) > MDB_VER_ACCDB_2019)
        throw EJetDamage(QStringLiteral("版本号无效"));
    return file.size();
}

} // namespace

struct TJetPages::THandle
{
    explicit THandle(MdbHandle *handle) : Mdb(handle) {}
    ~THandle() { mdb_close(Mdb); }
    THandle(const THandle &) = delete;
    THandle &operator=(const THandle &) = delete;

    MdbHandle *Mdb;
};

TJetPages::TJetPages(const QString &fileName)
{
    const qint64 size = CheckedSize(fileName);
    MdbHandle *mdb = mdb_open(QFile::encodeName(fileName).constData(), MDB_NOFLAGS);
    if (mdb == nullptr)
        throw EJetDamage(QStringLiteral("文件头无效"));
    FHandle = std::make_unique<THandle>(mdb);
    FLayout = IS_JET3(mdb) ? &Jet3Layout : &Jet4Layout;
    // A page, a usage map and the catalog's definition are the least there is.
    const auto pageSize = qint64(FLayout->PageSize);
    if (size % pageSize != 0 || size / pageSize < 3)
        throw EJetDamage(QStringLiteral("文件不完整"));
    // Row pointers have three bytes for the page.
    FPageCount = quint32(qMin<qint64>(size / pageSize, 1 << 24));
    ReadHeader();
}

TJetPages::~TJetPages() = default;

bool TJetPages::HasMagic(const QString &fileName)
{
    if (!QFileInfo(fileName).isFile())
        return false;
    try {
        // NOTE: it may be a database of the embedded engine that is in use.
        return IsMagic(FirstBytesOf(fileName, 0x18));
    } catch (const ESqlError &) {
        return false;
    }
}

// libmdb has just read and unmasked the first page. It knows the first 14 bytes of a Jet 3
// password and none of a later one.
void TJetPages::ReadHeader()
{
    const TJetBytes header(FHandle->Mdb->pg_buf, FLayout->PageSize);
    FCodePage = header.U16(0x3c);
    if (FCodePage == 0)
        FCodePage = DefaultCodePage;

    if (FLayout->IsJet3) {
        const TJetBytes bytes = header.Slice(0x42, 20);
        size_t size = 0;
        while (size < bytes.Size() && bytes.U8(size) != 0)
            ++size;
        FPassword = TJetText(FCodePage).Decode(bytes.Slice(0, size));
        return;
    }
    // The day on which the database was created masks the password once more.
    const double created = header.Double(0x72);
    const auto mask = created > 0 && created < 1e9 ? quint32(created) : 0;
    for (size_t i = 0; i < 20; ++i) {
        const auto shift = i % 2 == 0 ? 0 : 16;
        const auto unit = char16_t(header.U16(0x42 + 2 * i) ^ quint16(mask >> shift));
        if (unit == 0)
            break;
        FPassword += QChar(unit);
    }
}

TJetBytes TJetPages::Page(quint32 number)
{
    if (number == 0 || number >= FPageCount)
        throw EJetDamage(QStringLiteral("第 %1 页不存在").arg(number));
    std::unique_ptr<TSlot> &slot = FCache[number % CacheSize];
    if (slot == nullptr)
        slot = std::make_unique<TSlot>();
    if (slot->Number != number) {
        if (mdb_read_pg(FHandle->Mdb, number) != ssize_t(FLayout->PageSize))
            throw EJetDamage(QStringLiteral("第 %1 页无法读取").arg(number));
        slot->Number = number;
        std::memcpy(slot->Bytes.data(), FHandle->Mdb->pg_buf, FLayout->PageSize);
    }
    return {slot->Bytes.data(), FLayout->PageSize};
}

TJetBytes TJetPages::Row(quint32 pointer)
{
    const TJetBytes page = Page(pointer >> 8);
    if (page.U8(0) != DataPage)
        throw EJetDamage(QStringLiteral("第 %1 页不是数据页").arg(pointer >> 8));
    int flags = 0;
    return Row(page, int(pointer & 0xff), flags);
}

int TJetPages::RowCount(TJetBytes page) const
{
    const int count = page.U16(FLayout->RowCount);
    if (FLayout->RowCount + 2 + 2 * size_t(count) > page.Size())
        throw EJetDamage(QStringLiteral("页内的记录数无效"));
    return count;
}

TJetBytes TJetPages::Row(TJetBytes page, int row, int &flags) const
{
    if (row >= RowCount(page))
        throw EJetDamage(QStringLiteral("记录不存在"));
    const size_t entry = FLayout->RowCount + 2 + 2 * size_t(row);
    const int offset = page.U16(entry);
    flags = offset & (RowIsElsewhere | RowIsDeleted);
    // Rows fill the page from its end: one ends where the one before it begins.
    const size_t begin = size_t(offset & RowOffsetMask);
    const size_t end = row == 0 ? page.Size() : size_t(page.U16(entry - 2) & RowOffsetMask);
    if (begin > end || begin < FLayout->RowCount + 2)
        throw EJetDamage(QStringLiteral("记录的位置无效"));
    return page.Slice(begin, end - begin);
}

} // namespace Korvane
