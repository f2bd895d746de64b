// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <string>
#include <string_view>
#include <vector>

class QIODevice;

namespace Korvane {

/// Reads comma-separated values by RFC 4180 in UTF-8, row by row and with one row in
/// memory. Lines end with CR LF or LF. A field that is empty and without quotes is NULL;
/// "" is the empty text. All rows have as many fields as the first.
///
///     for (TCsvReader csv(file); csv.Next();)
///         Take(csv.Text(0), csv.Bytes(1));
///
/// What breaks these rules fails with EConvertError, whose message names the line; a device
/// that cannot be read fails with EFileError.
class TCsvReader
{
public:
    /// The device is open for reading, outlives the reader and stays the caller's. A byte
    /// order mark at its beginning is skipped.
    explicit TCsvReader(QIODevice &device) : FDevice(device) {}

    /// Reads the next row; false when there is none.
    bool Next();

    qsizetype FieldCount() const { return qsizetype(FFields.size()); }
    bool IsNull(qsizetype field) const;
    /// The field in UTF-8, good until the next row is read; empty for NULL.
    std::string_view Bytes(qsizetype field) const;
    /// The field; a null string for NULL.
    QString Text(qsizetype field) const;
    /// The line that the row begins on, counted from 1.
    qint64 LineNumber() const { return FRowLine; }

private:
    struct Field
    {
        size_t Begin;
        size_t Size;
        bool Quoted;
    };

    bool Fill();
    void SkipByteOrderMark();
    int Peek();
    void ReadField();
    void ReadQuoted();
    void ReadPlain();
    bool ReadSeparator();
    void CheckRow();
    [[noreturn]] static void Fail(qint64 line, const QString &what);

    QIODevice &FDevice;
    QByteArray FChunk;
    qsizetype FPosition = 0;
    bool FStarted = false;
    qint64 FLine = 1;
    qint64 FRowLine = 0;
    size_t FColumnCount = 0;
    std::string FRow;
    std::vector<Field> FFields;
};

} // namespace Korvane
