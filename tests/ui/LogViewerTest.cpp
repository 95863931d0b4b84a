#include "ui/LogViewer.h"

#include "ui/MetadataEditor.h"

#include <QLabel>
#include <QLayout>
#include <QTextEdit>

#include <gtest/gtest.h>

TEST(LogViewer, HoldsOneReadOnlyTextInConsolasWithoutMargins)
{
    LogViewer log;
    const auto texts = log.findChildren<QTextEdit*>();
    ASSERT_EQ(texts.size(), 1);
    EXPECT_TRUE(texts.first()->isReadOnly());
    EXPECT_EQ(texts.first()->font().family(), QStringLiteral("Consolas"));
    EXPECT_EQ(texts.first()->font().pointSize(), 9);
    EXPECT_EQ(log.layout()->contentsMargins(), QMargins());
}

TEST(LogViewer, EveryLineIsOneParagraphAndClearEmpties)
{
    LogViewer log;
    auto* text = log.findChild<QTextEdit*>();
    log.append(QStringLiteral("  first"));
    log.append(QString());
    log.append(QStringLiteral("日本語  ✦"));
    EXPECT_EQ(text->toPlainText(), QStringLiteral("  first\n\n日本語  ✦"));
    log.clear();
    EXPECT_TRUE(text->toPlainText().isEmpty());
}

TEST(LogViewer, KeepsEveryLineOfALongRun)
{
    LogViewer log;
    for (int i = 0; i < 20000; ++i)
        log.append(QString::number(i));
    EXPECT_EQ(log.findChild<QTextEdit*>()->document()->blockCount(), 20000);
}

TEST(MetadataEditor, IsOneLabel)
{
    const MetadataEditor editor;
    const auto labels = editor.findChildren<QLabel*>();
    ASSERT_EQ(labels.size(), 1);
    EXPECT_EQ(labels.first()->text(), QStringLiteral("Metadata Editor — coming soon"));
}
