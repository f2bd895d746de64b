// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <string_view>

class QIODevice;

namespace Korvane {

/// Writes rows as comma-separated values by RFC 4180, in UTF-8 with CR LF: text stands in
/// quotes, numbers do not, and an empty field without quotes is NULL, so that it differs
/// from the empty text "".
///
///     TCsvWriter csv(file);
///     csv.Text("P01"); csv.Bare("0.15"); csv.Null();
///     csv.EndRow();
///     csv.Finish();
class TCsvWriter
{
public:
    /// The device is open for writing, outlives the writer and stays the caller's.
    explicit TCsvWriter(QIODevice &device) : FDevice(device) {}

    /// Appends a field of text in quotes.
    void Text(std::string_view utf8);
    void Text(const QString &text);
    /// Appends a field without quotes: a number. Empty means NULL.
    void Bare(std::string_view ascii);
    void Null() { Bare({}); }
    void EndRow();

    /// Appends a whole row of text, in which a null string is NULL.
    void WriteRow(const QStringList &fields);

    /// Hands what is still in memory to the device. Without it the end of the data is lost.
    /// Like the other calls, fails with EFileError when the device refuses.
    void Finish();

private:
    void Separate();

    QIODevice &FDevice;
    QByteArray FBuffer;
    bool FInRow = false;
};

} // namespace Korvane
