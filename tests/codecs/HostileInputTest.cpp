#include "codecs/DecoderFiles.h"

#include <QProcess>
#include <QProcessEnvironment>

// Broken files through every decoder, in a child process with a limit on memory
// and on time. TARVEL_MUTATIONS sets their number.
class HostileInputTest : public EncoderTest, public ::testing::WithParamInterface<const char*> {
protected:
    static quint64 mutations()
    {
        bool given = false;
        const quint64 count = qEnvironmentVariable("TARVEL_MUTATIONS").toULongLong(&given);
        return given ? count : 250;
    }

    static QProcessEnvironment limits()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ASAN_OPTIONS"),
                           QStringLiteral("detect_leaks=0:hard_rss_limit_mb=2048:max_allocation_size_mb=300:"
                                          "allocator_may_return_null=0:abort_on_error=0"));
        environment.insert(QStringLiteral("UBSAN_OPTIONS"), QStringLiteral("halt_on_error=1"));
        return environment;
    }
};

TEST_P(HostileInputTest, NoMutantCrashesHangsOrTakesMemoryOutOfProportion)
{
    const QString extension = QString::fromLatin1(GetParam());
    decoderfiles::make(file("valid") + extension, 6000);
    QProcess process;
    process.setProcessEnvironment(limits());
    process.start(QStringLiteral(TARVEL_DECODE_MUTANTS),
                  {file("valid") + extension, file("mutant") + extension, QStringLiteral("0"),
                   QString::number(mutations())});
    ASSERT_TRUE(process.waitForFinished(-1));
    const QByteArray output = process.readAllStandardOutput();
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_TRUE(output.endsWith("all played\n"))
        << output.right(40).toStdString() << process.readAllStandardError().left(4000).toStdString();
}

INSTANTIATE_TEST_SUITE_P(All, HostileInputTest,
                         ::testing::Values(".wav", ".aiff", ".mp3", ".flac", ".aac", ".m4a", ".ogg", ".opus",
                                           ".wv", ".dsf", ".dff"),
                         [](const auto& instance) { return std::string(instance.param + 1); });
