#include "ui/LogViewer.h"

#include "ui/MetadataEditor.h"

#include <QLabel>
#include <QLayout>
#include <QScrollBar>
#include <QTextBlock>
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

TEST(LogViewer, ShowsEveryLineAsItIsWhateverItLooksLike)
{
    LogViewer log;
    auto* text = log.findChild<QTextEdit*>();
    const QStringList lines{QStringLiteral("  Track 01: <b>Loud</b>"),
                            QStringLiteral("<img src=\"file:///etc/passwd\"/> <p>a</p><p>b</p>"),
                            QStringLiteral("   Track 02:  two  blanks   &amp; more  "), QString(),
                            QStringLiteral("<a href=\"http://a.test\">a</a>\t<br/>")};
    for (const QString& line : lines)
        log.append(line);
    EXPECT_EQ(text->toPlainText(), lines.join(QLatin1Char('\n')));
    const QTextDocument* document = text->document();
    ASSERT_EQ(document->blockCount(), lines.size());
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
            const QTextCharFormat format = piece.fragment().charFormat();
            EXPECT_FALSE(format.isImageFormat() || format.isAnchor() || format.fontWeight() > QFont::Normal);
        }
    }
}

TEST(LogViewer, ATitleOfSeveralLinesIsOneParagraph)
{
    LogViewer log;
    log.append(QStringLiteral("one\ntwo\r\nthree\rfour\u2029five"));
    log.append(QStringLiteral("next"));
    auto* text = log.findChild<QTextEdit*>();
    EXPECT_EQ(text->document()->blockCount(), 2);
    EXPECT_EQ(text->toPlainText(), QStringLiteral("one\ntwo\nthree\nfour\nfive\nnext"));
}

TEST(LogViewer, FollowsItsEndUnlessTheUserHasScrolledUp)
{
    LogViewer log;
    log.resize(300, 100);
    log.show();
    auto* bar = log.findChild<QTextEdit*>()->verticalScrollBar();
    const auto appendMany = [&log] {
        for (int i = 0; i < 100; ++i)
            log.append(QStringLiteral("line"));
    };
    appendMany();
    EXPECT_GT(bar->maximum(), 0);
    EXPECT_EQ(bar->value(), bar->maximum());
    bar->setValue(10);
    appendMany();
    EXPECT_EQ(bar->value(), 10);
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
