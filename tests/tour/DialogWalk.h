#pragma once

#include "tour/TourGuide.h"

/// Opens Settings and About, and converts a folder by the Convert Files dialog.
class DialogWalk {
public:
    DialogWalk(TourGuide& tourGuide, const QString& sourceFolder, const QString& outputFolder)
        : guide(tourGuide), sources(sourceFolder), output(outputFolder)
    {
    }

    void walk();

private:
    void settings();
    void convert(int formatPlace);

    TourGuide& guide;
    QString sources;
    QString output;
};
