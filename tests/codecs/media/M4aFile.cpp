#include "codecs/media/M4aFile.h"

#include "support/Tool.h"

M4aFacts inspectM4a(const QString& name)
{
    const ToolResult decoding = runTool(QStringLiteral("ffmpeg"),
                                        {QStringLiteral("-v"), QStringLiteral("error"),
                                         QStringLiteral("-xerror"), QStringLiteral("-i"), name,
                                         QStringLiteral("-f"), QStringLiteral("null"), QStringLiteral("-")});
    EXPECT_TRUE(decoding.ok());
    EXPECT_EQ(decoding.errors, "") << name.toStdString();

    const ToolResult probing =
        runTool(QStringLiteral("ffprobe"),
                {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_format"),
                 QStringLiteral("-show_streams"), QStringLiteral("-of"), QStringLiteral("default"), name});
    EXPECT_TRUE(probing.ok()) << probing.errors.toStdString();
    M4aFacts facts;
    for (const QByteArray& line : probing.output.split('\n')) {
        const qsizetype equals = line.indexOf('=');
        const QByteArray key = line.left(equals);
        // The stream comes first, and its values are the ones that are asked for.
        if (equals > 0 && !facts.values.contains(key))
            facts.values.insert(key, line.mid(equals + 1));
    }
    return facts;
}

M4aFacts expectStereoM4a(const QString& name, const char* codec)
{
    const M4aFacts facts = inspectM4a(name);
    EXPECT_EQ(facts.text("codec_name"), codec);
    EXPECT_EQ(facts.text("sample_rate"), "44100");
    EXPECT_EQ(facts.text("channels"), "2");
    EXPECT_EQ(facts.text("channel_layout"), "stereo");
    EXPECT_EQ(facts.text("TAG:major_brand"), "M4A ");
    EXPECT_EQ(facts.text("nb_streams"), "1");
    EXPECT_EQ(readAll(name).mid(4, 8), "ftypM4A ");
    return facts;
}
