#pragma once

#include "ui/DiscInHand.h"
#include "ui/RipSettings.h"

#include "support/Language.h"
#include "ui/DriveShelf.h"

#include <QGuiApplication>
#include <QStringList>
#include <QWidget>

/// What a page of the wizard needs around it, in place of the window.
struct PageStage {
    explicit PageStage(int language = 2, const QStringList& letters = {})
    {
        shelf.letters = letters;
        QGuiApplication::setQuitOnLastWindowClosed(false);
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        speak(language);
    }

    DriveShelf shelf;
    DrivePlatformOverride platform{shelf};
    RipSettings settings = RipSettings::load();
    DiscInHand disc{settings};
};

/// A widget of a page by its name, and by its place among those of that name.
template<typename Widget>
Widget* on(const QWidget& page, const char* objectName, int place = 0)
{
    return page.findChildren<Widget*>(QLatin1String(objectName)).value(place);
}

inline const QStringList oneDrive{QStringLiteral("/dev/sr0")};
