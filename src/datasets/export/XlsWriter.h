// SPDX-License-Identifier: MIT
#pragma once

#include "datasets/export/Cp936Encoder.h"
#include "datasets/export/ExportStream.h"

#include <QFile>

namespace Korvane {

/// Writes a worksheet as a bare stream of BIFF records, cell by cell from the left to the right and
/// row by row. Numbers of rows and columns and the lengths of texts keep their low 16 bits.
class TXlsWriter
{
public:
    /// Deletes a file of the name and makes a new one; what is no file, as a device, is written to.
    /// Raises EFileError.
    TXlsWriter(const QString &fileName, int columnCount);
    /// Puts what was written into the file, as far as it takes it.
    ~TXlsWriter();
    TXlsWriter(const TXlsWriter &) = delete;
    TXlsWriter &operator=(const TXlsWriter &) = delete;

    // Each writes a cell and goes to the next one.
    void Integer(qint32 value);
    void Number(double value);
    void Text(std::string_view utf8);
    void Text(const QString &text);
    /// Leaves the cell out.
    void Skip() { Advance(); }

    /// Writes the end record.
    void End();
    /// Brings everything into the file.
    void Close();

private:
    template <size_t Size> char *BeginCell(const std::array<quint8, Size> &record, size_t room);
    void Advance()
    {
        if (++FColumn >= FColumnCount) {
            FColumn = 0;
            ++FRow;
        }
    }

    QFile FFile;
    TExportStream FStream;
    const TCp936Encoder FEncoder;
    const int FColumnCount;
    quint32 FRow = 0;
    int FColumn = 0;
};

} // namespace Korvane
