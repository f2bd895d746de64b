// SPDX-License-Identifier: MIT
#include "datasets/export/XlsxWriter.h"

#include "platform/core/Exceptions.h"
#include "platform/data/NumberText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QUtf8StringView>
#include <QUuid>

#include <minizip/unzip.h>
#include <xlsxwriter.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace Korvane {

namespace {

constexpr int MaxWidth = 254;
constexpr qint64 MaxExactInteger = 999'999'999'999'999; // a cell shows 15 digits
constexpr std::string_view SheetEnd = "</worksheet>";

/// A hidden name beside the file, so that it can take the file's place in one step.
QString PartOf(const QString &fileName)
{
    const QFileInfo info(fileName);
    return info.absoluteDir().filePath(
        QStringLiteral(".%1.%2").arg(info.fileName(), QUuid::createUuid().toString(QUuid::Id128).left(8)));
}

bool IsHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

/// Whether a text reads "_xHHHH_" here, the format's form of a character that XML cannot hold.
bool LooksEscaped(std::string_view text)
{
    return text.size() >= 7 && text[1] == 'x' && text[6] == '_' &&
           std::all_of(text.begin() + 2, text.begin() + 6, IsHexDigit);
}

/// What libxlsxwriter, which escapes control characters, leaves to its caller: texts that look like what
/// it writes for these, a carriage return, which XML reads as another character, a zero, which would end
/// the text, and the two characters behind all others.
void AppendEscaped(std::string &text, std::string_view utf8)
{
    using namespace std::string_view_literals;
    if (utf8.find_first_of("_\r\xEF\0"sv) == std::string_view::npos) {
        text.append(utf8);
        return;
    }
    for (size_t i = 0; i < utf8.size(); ++i) {
        const std::string_view rest = utf8.substr(i);
        if (rest[0] == '_' && LooksEscaped(rest))
            text.append("_x005F_");
        else if (rest[0] == '\r' || rest[0] == '\0')
            text.append(rest[0] == '\r' ? "_x000D_" : "_x0000_");
        else if (rest.starts_with("\xEF\xBF\xBE") || rest.starts_with("\xEF\xBF\xBF"))
            text.append(rest[2] == '\xBE' ? "_xFFFE_" : "_xFFFF_"), i += 2;
        else
            text.push_back(rest[0]);
    }
}

bool IsAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return uchar(c) < 0x80; });
}

/// UTF-16 units of a text in UTF-8.
qsizetype LengthOf(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), qsizetype(utf8.size())).size();
}

/// Brings a file, or a folder's list of files, to disk.
bool Sync(const QString &path)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    const bool done = descriptor >= 0 && ::fsync(descriptor) == 0;
    ::close(descriptor);
    return done;
}

} // namespace

TXlsxWriter::TXlsxWriter(const QString &fileName, const QList<TXlsxColumn> &columns)
    : FFileName(fileName), FPart(PartOf(fileName)), FColumns(columns)
{
    const QFileInfo info(fileName);
    const auto raise = [&](const QString &reason) {
        throw EFileError(QStringLiteral("创建文件“%1”失败：%2").arg(fileName, reason));
    };
    if (info.exists() && !info.isFile())
        raise(QStringLiteral("不是普通文件"));
    QFile part(FPart); // libxlsxwriter opens it only at the end
    if (!part.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        raise(part.errorString());
    if (info.exists())
        part.setPermissions(info.permissions());
    part.close();
    QByteArray folder = QFile::encodeName(info.absolutePath());
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    options.tmpdir = folder.data(); // on the same disk
    options.use_zip64 = LXW_TRUE;
    FWorkbook = workbook_new_opt(QFile::encodeName(FPart).constData(), &options);
    FSheet = FWorkbook ? workbook_add_worksheet(FWorkbook, nullptr) : nullptr;
    if (!FSheet || !FSheet->optimize_tmpfile) {
        lxw_workbook_free(FWorkbook);
        part.remove();
        raise(QStringLiteral("不能建立临时文件"));
    }
    try {
        WriteHead();
    } catch (...) {
        lxw_workbook_free(FWorkbook);
        part.remove();
        throw;
    }
}

TXlsxWriter::~TXlsxWriter()
{
    if (FWorkbook)
        lxw_workbook_free(FWorkbook);
    QFile::remove(FPart); // not there when it has taken its place
}

void TXlsxWriter::WriteHead()
{
    lxw_format *const bold = workbook_add_format(FWorkbook);
    format_set_bold(bold);
    FStyle = bold;
    for (const TXlsxColumn &column : FColumns) {
        worksheet_set_column(FSheet, FColumn, FColumn, std::min(column.Width, MaxWidth), nullptr);
        Text(column.Label);
    }
    FStyle = nullptr;
    worksheet_freeze_panes(FSheet, 1, 0);
    EndRow();
}

void TXlsxWriter::WriteNumber(double value)
{
    worksheet_write_number(FSheet, FRow, FColumn++, value, FStyle);
}

void TXlsxWriter::Integer(qint64 value)
{
    if (value < -MaxExactInteger || value > MaxExactInteger)
        Text(TNumberText(value).View());
    else
        WriteNumber(double(value));
}

void TXlsxWriter::Number(double value)
{
    if (std::isfinite(value))
        WriteNumber(value);
    else
        Text(TNumberText(value).View());
}

void TXlsxWriter::Text(std::string_view utf8)
{
    if (utf8.empty())
        return Skip();
    if (!IsAscii(utf8) && !QUtf8StringView(utf8.data(), qsizetype(utf8.size())).isValidUtf8())
        return Text(QString::fromUtf8(utf8.data(), qsizetype(utf8.size())));
    if (utf8.size() > size_t(MaxTextLength))
        if (const qsizetype length = LengthOf(utf8); length > MaxTextLength)
            RaiseTooLong(length);
    FText.clear();
    AppendEscaped(FText, utf8);
    worksheet_write_string(FSheet, FRow, FColumn++, FText.c_str(), FStyle);
}

void TXlsxWriter::RaiseTooLong(qsizetype length) const
{
    throw EOutOfResources(QStringLiteral("第 %1 行的“%2”有 %3 个字符，Excel 的单元格最多 %4 个")
                              .arg(FRow)
                              .arg(FColumns.value(FColumn).Label)
                              .arg(length)
                              .arg(MaxTextLength));
}

void TXlsxWriter::RaiseWriting(const QString &reason) const
{
    throw EFileError(QStringLiteral("写文件“%1”失败：%2").arg(FFileName, reason));
}

void TXlsxWriter::EndRow()
{
    ++FRow;
    FColumn = 0;
}

/// The bytes of the rows so far. NOTE: the library does not look at whether they could be written.
qint64 TXlsxWriter::FinishRows()
{
    std::FILE *const rows = FSheet->optimize_tmpfile;
    if (std::fflush(rows) != 0 || std::ferror(rows))
        RaiseWriting(QStringLiteral("磁盘空间不足"));
    return ::ftello(rows);
}

void TXlsxWriter::Close()
{
    const qint64 rowBytes = FinishRows();
    const lxw_error error = workbook_close(std::exchange(FWorkbook, nullptr));
    if (error != LXW_NO_ERROR)
        RaiseWriting(QString::fromUtf8(lxw_strerror(error)));
    CheckSheet(rowBytes);
    if (!Sync(FPart) ||
        std::rename(QFile::encodeName(FPart).constData(), QFile::encodeName(FFileName).constData()) != 0)
        RaiseWriting(QString::fromLocal8Bit(std::strerror(errno)));
    Sync(QFileInfo(FFileName).absolutePath());
}

/// Reads the sheet back: a disk that was full at some moment shows here, and nowhere before.
void TXlsxWriter::CheckSheet(qint64 rowBytes) const
{
    const unzFile archive = unzOpen64(QFile::encodeName(FPart).constData());
    const auto close = qScopeGuard([archive] {
        if (archive)
            unzClose(archive);
    });
    std::string piece(size_t(256) * 1024, '\0'), end;
    qint64 bytes = 0;
    bool isWhole = archive && unzLocateFile(archive, "xl/worksheets/sheet1.xml", 1) == UNZ_OK &&
                   unzOpenCurrentFile(archive) == UNZ_OK;
    if (isWhole) {
        int count = 0;
        while ((count = unzReadCurrentFile(archive, piece.data(), unsigned(piece.size()))) > 0) {
            bytes += count;
            end.append(piece, 0, size_t(count));
            end.erase(0, end.size() - std::min(end.size(), SheetEnd.size()));
        }
        isWhole = unzCloseCurrentFile(archive) == UNZ_OK && count == 0 && bytes > rowBytes && end == SheetEnd;
    }
    if (!isWhole)
        RaiseWriting(QStringLiteral("磁盘空间不足"));
}

} // namespace Korvane
