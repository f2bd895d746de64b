// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

#include <memory>
#include <string>
#include <string_view>

struct lxw_format;
struct lxw_workbook;
struct lxw_worksheet;

namespace Korvane {

/// A column of a workbook's sheet: what stands at its head, and its width in characters.
struct TXlsxColumn
{
    QString Label;
    int Width = 10;
};

/// Writes a workbook with one sheet by libxlsxwriter, cell by cell from the left to the right and row
/// by row, in the same little memory whatever its size is. Its head is bold and stays while the rows
/// scroll.
///
/// The file is made beside the one of the name, and takes its place in Close alone.
class TXlsxWriter
{
public:
    static constexpr qsizetype MaxRowCount = 1'048'576; ///< with the head
    static constexpr qsizetype MaxColumnCount = 16'384;
    static constexpr qsizetype MaxTextLength = 32'767; ///< UTF-16 units of a cell

    /// Raises EFileError, and EOutOfResources for a label that is too long.
    TXlsxWriter(const QString &fileName, const QList<TXlsxColumn> &columns);
    TXlsxWriter(const TXlsxWriter &) = delete;
    TXlsxWriter &operator=(const TXlsxWriter &) = delete;
    ~TXlsxWriter();

    // Each writes a cell and goes to the next one.
    /// As a text when the format cannot hold all digits.
    void Integer(qint64 value);
    /// As a text when it is no number.
    void Number(double value);
    /// Raises EOutOfResources, with row and column, beyond MaxTextLength.
    void Text(std::string_view utf8);
    void Text(const QString &text) { Text(text.toStdString()); }
    /// Leaves the cell out.
    void Skip() { ++FColumn; }
    void EndRow();

    /// Ends the sheet and puts the whole workbook in its place. Raises EFileError when the disk does
    /// not hold it.
    void Close();

private:
    void WriteHead();
    void WriteNumber(double value);
    qint64 FinishRows();
    void CheckSheet(qint64 rowBytes) const;
    [[noreturn]] void RaiseTooLong(qsizetype length) const;
    [[noreturn]] void RaiseWriting(const QString &reason) const;

    const QString FFileName;
    const QString FPart; // the file on the way
    const QList<TXlsxColumn> FColumns;
    lxw_workbook *FWorkbook = nullptr;
    lxw_worksheet *FSheet = nullptr;
    lxw_format *FStyle = nullptr;
    std::string FText; // of the cell, ended by a zero
    quint32 FRow = 0;
    quint16 FColumn = 0;
};

} // namespace Korvane
