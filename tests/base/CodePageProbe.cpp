// Decodes the bytes that its argument writes in hexadecimal, as a start of the program
// does in whatever locale the environment names, and says it in UTF-8.

#include "base/LocalCodePage.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QByteArray bytes = QByteArray::fromHex(argc > 1 ? argv[1] : "");
    std::printf("%s\n", decodeLocal8Bit(bytes).toUtf8().constData());
    return 0;
}
