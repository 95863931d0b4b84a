#pragma once

class QWidget;

/// What the program is and who made it: the second tab of the Settings dialog.
QWidget* buildAboutPage();
