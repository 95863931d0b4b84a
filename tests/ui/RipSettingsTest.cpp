#include "ui/RipSettings.h"

#include <QSettings>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace {

class RipSettingsTest : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    static QVariant stored(const char* key) { return QSettings().value(QLatin1String(key)); }
    static void put(const char* key, const QVariant& value)
    {
        QSettings().setValue(QLatin1String(key), value);
    }
};

} // namespace

TEST_F(RipSettingsTest, AnEmptyStoreGivesTheDefaults)
{
    const RipSettings loaded = RipSettings::load();
    EXPECT_EQ(loaded.maxRetries, 20);
    EXPECT_EQ(loaded.sampleOffset, 0);
    EXPECT_EQ(loaded.defaultFolder, QString());
    EXPECT_EQ(loaded.namingRule, QStringLiteral("{track}. {title}"));
    EXPECT_EQ(loaded.folderToStartWith(), QStandardPaths::writableLocation(QStandardPaths::MusicLocation));
    EXPECT_TRUE(QSettings().allKeys().isEmpty()) << "loading stores nothing";
}

TEST_F(RipSettingsTest, WhatIsStoredIsLoaded)
{
    RipSettings chosen;
    chosen.maxRetries = 7;
    chosen.sampleOffset = -30;
    chosen.defaultFolder = QStringLiteral("/my/rips");
    chosen.namingRule = QStringLiteral("{title}");
    chosen.store();
    EXPECT_EQ(stored(settings::maxRetries).toInt(), 7);
    EXPECT_EQ(stored(settings::sampleOffset).toInt(), -30);
    EXPECT_EQ(stored(settings::defaultDir).toString(), QStringLiteral("/my/rips"));
    EXPECT_EQ(stored(settings::namingRule).toString(), QStringLiteral("{title}"));
    EXPECT_EQ(QSettings().allKeys().size(), 4);

    const RipSettings loaded = RipSettings::load();
    EXPECT_EQ(loaded.maxRetries, 7);
    EXPECT_EQ(loaded.sampleOffset, -30);
    EXPECT_EQ(loaded.defaultFolder, QStringLiteral("/my/rips"));
    EXPECT_EQ(loaded.folderToStartWith(), QStringLiteral("/my/rips"));
    EXPECT_EQ(loaded.namingRule, QStringLiteral("{title}"));
}

TEST_F(RipSettingsTest, ABlankRuleIsTheDefaultAndStaysInTheStore)
{
    put(settings::namingRule, QStringLiteral("   "));
    EXPECT_EQ(RipSettings::load().namingRule, QStringLiteral("{track}. {title}"));
    EXPECT_EQ(stored(settings::namingRule).toString(), QStringLiteral("   "));
}

TEST_F(RipSettingsTest, BlanksAroundARuleStay)
{
    put(settings::namingRule, QStringLiteral(" {track} "));
    EXPECT_EQ(RipSettings::load().namingRule, QStringLiteral(" {track} "));
}

TEST_F(RipSettingsTest, AnEmptyRuleIsNotTaken)
{
    RipSettings chosen;
    chosen.setNamingRule(QStringLiteral("{title}"));
    EXPECT_EQ(chosen.namingRule, QStringLiteral("{title}"));
    chosen.setNamingRule(QString());
    EXPECT_EQ(chosen.namingRule, QStringLiteral("{track}. {title}"));
}

// The dialog's limits are its own; what a person wrote into the store is in force.
TEST_F(RipSettingsTest, AValueBeyondTheDialogsLimitsIsInForce)
{
    put(settings::maxRetries, 500);
    put(settings::sampleOffset, 5000);
    EXPECT_EQ(RipSettings::load().maxRetries, 500);
    EXPECT_EQ(RipSettings::load().sampleOffset, 5000);
}
