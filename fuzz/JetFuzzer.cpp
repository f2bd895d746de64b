// SPDX-License-Identifier: MIT
// Reads all tables, and their indexes, of a file made of the input. Nothing but an ESqlError may come of it.
#include "platform/sql/SqlError.h"
#include "platform/sql/jet/JetFile.h"

#include <sys/mman.h>
#include <unistd.h>

using namespace Korvane;

namespace {

/// A file in memory that has a path.
class TMemoryFile
{
public:
    TMemoryFile(const uint8_t *data, size_t size) : FDescriptor(memfd_create("jet", MFD_CLOEXEC))
    {
        if (FDescriptor < 0 || write(FDescriptor, data, size) != ssize_t(size))
            abort();
    }
    ~TMemoryFile() { close(FDescriptor); }
    TMemoryFile(const TMemoryFile &) = delete;
    TMemoryFile &operator=(const TMemoryFile &) = delete;

    QString Path() const { return QStringLiteral("/proc/self/fd/%1").arg(FDescriptor); }

private:
    int FDescriptor;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const TMemoryFile memory(data, size);
    try {
        TJetFile file(memory.Path());
        for (const TJetTableInfo &table : file.Tables()) {
            if (table.Kind == TJetTableKind::View)
                continue;
            file.Indexes(table.Name);
            file.ReadTable(table.Name, [](std::span<const TJetCell>) {});
        }
    } catch (const ESqlError &) {
        // Told with the file's name: that is how damage shows.
    }
    return 0;
}
