// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/jet/JetBytes.h"

#include <QString>

#include <array>
#include <memory>

namespace Korvane {

/// Where the pieces of a table definition and of its column records stand; it differs
/// between Jet 3 and the later versions. Offsets in bytes.
struct TJetLayout
{
    bool IsJet3;
    size_t PageSize;
    size_t RowCount;     ///< on a data page; the rows' offsets follow
    size_t TableRows;    ///< from here on in a table definition
    size_t TableColumns; ///< the number of variable columns stands right before it
    size_t TableIndexes;
    size_t TableUsageMap;
    size_t TableHeader;  ///< size of the head, records of the indexes follow
    size_t IndexRecord;  ///< size of one of them, column records follow
    size_t ColumnRecord; ///< size of a column record, from here on within it
    size_t ColumnNumber;
    size_t ColumnVariable;
    size_t ColumnPrecision; ///< and the scale behind it
    size_t ColumnCodePage;  ///< of a Jet 3 text
    size_t ColumnFlags;
    size_t ColumnFixed;
    size_t ColumnSize;
};

/// The pages of a Jet file, read and decrypted by libmdb.
///
/// libmdb trusts what it reads: definitions, row offsets, memo chains and usage maps of a
/// damaged file lead it outside of its buffers or round in circles, and it writes its
/// complaints to the standard error stream. So it is given the part that cannot go wrong,
/// the file's header, versions, decryption and pages by number, and everything inside a
/// page is read here through TJetBytes. The layout is described in libmdb's HACKING file.
class TJetPages
{
public:
    /// Raises ESqlError for what is no Jet file, EJetDamage for a damaged one.
    explicit TJetPages(const QString &fileName);
    ~TJetPages();
    TJetPages(const TJetPages &) = delete;
    TJetPages &operator=(const TJetPages &) = delete;

    /// Whether a file begins as a Jet or ACE database does; false for what cannot be read.
    static bool HasMagic(const QString &fileName);

    const TJetLayout &Layout() const { return *FLayout; }
    quint32 PageCount() const { return FPageCount; }
    /// The Windows code page of the texts of a Jet 3 file.
    int CodePage() const { return FCodePage; }
    /// The database password that is set in the file, empty if there is none.
    const QString &Password() const { return FPassword; }

    /// The bytes of a page, valid until the next call of Page or Row.
    TJetBytes Page(quint32 number);
    /// The bytes of a row by its pointer, the row's number in the low byte and the page's in
    /// the others; valid until the next call of Page or Row.
    TJetBytes Row(quint32 pointer);

    /// The number of rows on a page that holds rows.
    int RowCount(TJetBytes page) const;
    /// The bytes of a row and its flags: RowIsElsewhere, RowIsDeleted.
    TJetBytes Row(TJetBytes page, int row, int &flags) const;

    enum TRowFlag {
        RowIsElsewhere = 0x4000, ///< the row holds a pointer to the row
        RowIsDeleted = 0x8000    ///< or it is reached by such a pointer alone
    };
    enum TPageType { DataPage = 1, DefinitionPage = 2, UsageMapPage = 5 };

private:
    struct THandle;
    struct TSlot
    {
        quint32 Number = 0;
        std::array<quint8, 4096> Bytes;
    };
    static constexpr size_t CacheSize = 64;

    void ReadHeader();

    std::unique_ptr<THandle> FHandle;
    const TJetLayout *FLayout = nullptr;
    quint32 FPageCount = 0;
    int FCodePage = 0;
    QString FPassword;
    std::array<std::unique_ptr<TSlot>, CacheSize> FCache;
};

} // namespace Korvane
