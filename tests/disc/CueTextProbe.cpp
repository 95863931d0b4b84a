// Parses a sheet in whatever locale the environment names, and says its title.

#include "disc/CdDrive.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    const QCoreApplication application(argc, argv);
    std::printf("%s\n", CdDrive::parseCue(QFile::decodeName(argv[1])).albumTitle.toUtf8().constData());
    return 0;
}
