// Decodes the byte 0xC4 as a start of the program does in whatever locale the
// environment names, and says it in UTF-8.

#include "base/LocalCodePage.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    std::printf("%s\n", decodeLocal8Bit("\xC4").toUtf8().constData());
    return 0;
}
