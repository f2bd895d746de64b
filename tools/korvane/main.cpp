// SPDX-License-Identifier: MIT
#include "Tool.h"

#include <cstdio>
#include <unistd.h>

int main(int argc, char **argv)
{
    // Text is UTF-8 whatever the locale is, as file names are.
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromUtf8(argv[i]));
    QTextStream out(stdout), err(stderr), in(stdin);
    Korvane::TToolStreams streams{out, err, in, isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0,
                                  isatty(STDERR_FILENO) != 0};
    return Korvane::RunTool(arguments, streams);
}
