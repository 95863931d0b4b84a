#include "codecs/CFile.h"

#include "base/FilePath.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

constexpr char bytes[] = "a\nb\x1A"
                         "c";
const QString name = QStringLiteral("tüne テスト 🎸.bin");

} // namespace

TEST(CFile, WritesAndReadsBytesUnderANameOfAnyScript)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(name);
    {
        const CFile written = openForWriting(toPath(path));
        ASSERT_TRUE(written);
        ASSERT_EQ(std::fwrite(bytes, 1, 5, written.get()), 5U);
    }
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray(bytes, 5)) << "bytes, not text";

    const CFile read = openForReading(toPath(path));
    ASSERT_TRUE(read);
    char found[8];
    EXPECT_EQ(std::fread(found, 1, sizeof found, read.get()), 5U);
    EXPECT_EQ(found[3], '\x1A');
}

TEST(CFile, AFileThatIsBeingWrittenCanBeRemoved)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(name);
    {
        const CFile written = openForWriting(toPath(path));
        ASSERT_TRUE(written);
        ASSERT_EQ(std::fwrite("abc", 1, 3, written.get()), 3U);
        EXPECT_TRUE(QFile::remove(path));
    }
    EXPECT_FALSE(QFile::exists(path));
}

TEST(CFile, WhatCannotBeOpenedIsNull)
{
    const QTemporaryDir folder;
    EXPECT_FALSE(openForReading(toPath(folder.filePath(name))));
    EXPECT_FALSE(openForWriting(toPath(folder.filePath(QStringLiteral("none/") + name))));
}
