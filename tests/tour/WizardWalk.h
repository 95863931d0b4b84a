#pragma once

#include "tour/TourGuide.h"

/// Takes the wizard through a whole rip of an image.
class WizardWalk {
public:
    struct Choices {
        QString format;
        QString cue;
        QString cover;
        QString output;
    };

    WizardWalk(TourGuide& tourGuide, Choices userChoices) : guide(tourGuide), choices(std::move(userChoices))
    {
    }

    void walk();

private:
    void sourceStep();
    void outputStep();
    void metadataStep();
    void ripStep();
    void printLog() const;

    TourGuide& guide;
    Choices choices;
};
