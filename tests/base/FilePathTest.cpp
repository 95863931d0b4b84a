#include "base/FilePath.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(FilePath, ANameOfAnyScriptIsTheSameFileAndComesBack)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("tüne テスト 🎸.bin"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    EXPECT_TRUE(std::filesystem::exists(toPath(path)));
    EXPECT_EQ(fromPath(toPath(path)), path);
    EXPECT_EQ(QString::fromStdString(utf8Path(toPath(path))), path);
}
