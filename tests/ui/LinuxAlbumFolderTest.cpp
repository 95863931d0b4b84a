// Names have 255 bytes at most here, and a kanji has three.

#include "ui/AlbumFolder.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(LinuxAlbumFolder, IsCutAtAWholeCharacterToWhatAFileSystemTakes)
{
    const QString kanji = QString(86, QChar(u'漢'));
    const QString name = albumFolderName(kanji, QStringLiteral("Album"));
    EXPECT_EQ(name, QString(85, QChar(u'漢')));
    const QTemporaryDir folder;
    EXPECT_TRUE(QDir(folder.path()).mkdir(name));
    EXPECT_EQ(albumFolderName(QString(83, QChar(u'漢')), kanji),
              QString(83, QChar(u'漢')) + QStringLiteral(" - 漢"));
}

TEST(LinuxAlbumFolder, AMillionCharactersOfSeveralBytesAreNoWorkOfHours)
{
    EXPECT_EQ(albumFolderName(QString(4'000'000, QChar(u'漢')), QString(4'000'000, u'/')),
              QString(85, QChar(u'漢')));
}
