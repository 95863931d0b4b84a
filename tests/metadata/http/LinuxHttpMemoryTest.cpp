#include "metadata/http/HttpTransport.h"
#include "support/LoopbackServices.h"

#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

// In a process of its own, which has less memory than the body takes.
TEST(HttpMemory, ABodyThatMemoryDoesNotHoldIsAFailedExchange)
{
    LoopbackServices services;
    ServedAnswer endless = page(QByteArray(100'000, 'x'));
    endless.framing = ServedAnswer::Framing::UntilClose;
    endless.endless = true;
    services.on("a.test", "/", endless);

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString& name : {QStringLiteral("ASAN_OPTIONS"), QStringLiteral("TSAN_OPTIONS")})
        environment.insert(name,
                           environment.value(name)
                               + QStringLiteral(":allocator_may_return_null=1:max_allocation_size_mb=16"));
    QProcess probe;
    probe.setProcessEnvironment(environment);
    probe.start(QStringLiteral(TARVEL_SCARCE_MEMORY_PROBE), {QString::number(services.detour().plainPort)});
    ASSERT_TRUE(probe.waitForFinished(120'000));
    EXPECT_EQ(probe.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(probe.exitCode(), 0) << probe.readAllStandardError().left(2000).toStdString();
    const auto stage = static_cast<int>(HttpStage::Exchange);
    EXPECT_EQ(probe.readAllStandardOutput().trimmed(),
              "stage " + QByteArray::number(stage) + " status 0 body 0");
}

TEST(HttpMemory, ABodyEndsAt64MiBByItself)
{
    EXPECT_EQ(HttpLimits().bodyBytes, 67'108'864);
}
