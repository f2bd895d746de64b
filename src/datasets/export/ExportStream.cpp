// SPDX-License-Identifier: MIT
#include "datasets/export/ExportStream.h"

#include "platform/core/Exceptions.h"

#include <algorithm>
#include <utility>

namespace Korvane {

void TExportStream::Flush()
{
    // Emptied first: what has failed is not tried again.
    const size_t size = std::exchange(FSize, 0);
    if (size != 0 && FFile.write(FBuffer.get(), qint64(size)) != qint64(size))
        throw EFileError(QStringLiteral("写文件“%1”失败：%2").arg(FFile.fileName(), FFile.errorString()));
}

void TExportStream::WriteLarge(const char *bytes, size_t count)
{
    while (count > 0) {
        const size_t piece = std::min(count, Capacity);
        Write(bytes, piece);
        bytes += piece;
        count -= piece;
    }
}

} // namespace Korvane
