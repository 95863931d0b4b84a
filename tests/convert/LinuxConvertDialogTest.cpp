#include "convert/ConvertDialogStage.h"

#include <QFile>
#include <QFileInfo>

namespace {

class LinuxConvertDialog : public ConvertDialogStage {};

INSTANTIATE_TEST_SUITE_P(Both, LinuxConvertDialog, bothLanguages, nameOfLanguage);

} // namespace

TEST_P(LinuxConvertDialog, AFileThatCannotBeReadFailsAndTheOthersGoOn)
{
    // A regular file that opens and whose first page nobody can read.
    const QString unreadable = QStringLiteral("/proc/self/mem");
    QFile probe(unreadable);
    ASSERT_TRUE(QFileInfo(unreadable).isFile());
    ASSERT_TRUE(probe.open(QIODevice::ReadOnly));
    ASSERT_TRUE(probe.read(12).isEmpty());
    for (const char* name : {"/1.wav", "/3.flac", "/5.dsf"})
        ASSERT_TRUE(QFile::link(unreadable, place.source() + QLatin1String(name)));
    place.addWave(QStringLiteral("2.wav"), 2);
    place.addWave(QStringLiteral("6.wav"), 6);
    view().format()->setCurrentIndex(2);
    EXPECT_EQ(convert(), text("完了: 5件中 2件成功、3件変換不可", "Done: 2 of 5 files converted, 3 failed"));
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/2.mp3", "Album/6.mp3"}));
}
