#pragma once

#include "support/LoopbackServices.h"
#include "ui/Restart.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// Counts the new starts of the program in place of making them.
class CountedStarts : public ProgramStarter {
public:
    void start(const QString&) override { ++count; }
    int count = 0;

private:
    ProgramStarterOverride inPlace{*this};
};

/// What is there for a walk to find: services, sheets, songs and pictures.
class WalkStage {
public:
    WalkStage();
    ~WalkStage();

    QString path(const QString& name) const { return folder.filePath(name); }
    QString output() const { return path(QStringLiteral("out")); }
    /// What may be typed into the path fields. Nothing lies outside of the stage.
    QStringList sheets() const;
    QStringList songs() const;
    QStringList pictures() const;
    QStringList folders() const;
    QStringList outputs() const;

private:
    void serve();

    QTemporaryDir folder;
    LoopbackServices services;
    CountedStarts starts;
};
