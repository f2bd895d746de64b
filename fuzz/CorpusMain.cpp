// SPDX-License-Identifier: MIT
// Runs a fuzz target over every file of a folder, each as it stands and cut short at a few
// places: what a fuzzer once found stays found.
#include <QDir>
#include <QFile>

#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

int main(int argc, char **argv)
{
    const QDir folder(QString::fromLocal8Bit(argc > 1 ? argv[1] : "."));
    int count = 0;
    for (const QString &name : folder.entryList(QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            return 1;
        const QByteArray bytes = file.readAll();
        for (const qsizetype size :
             {bytes.size(), bytes.size() / 2, bytes.size() - 1, qsizetype(1), qsizetype(0)})
            if (size >= 0 && size <= bytes.size())
                LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.constData()), size_t(size));
        ++count;
    }
    std::printf("%d files\n", count);
    return count > 0 ? 0 : 1;
}
