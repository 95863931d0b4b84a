#pragma once

#include <QString>

class QBoxLayout;
class QFrame;
class QGroupBox;
class QLabel;
class QLayout;
class QLineEdit;
class QPixmap;
class QPushButton;
class QVBoxLayout;
class QWidget;

/// The pieces that the wizard's pages are put together from. Object names act
/// as style classes.
namespace pageparts {

inline constexpr int coverPixels = 140; ///< edge of the cover box

/// A text that is shown as it stands, whatever a title or a path in it looks like.
QLabel* label(const QString& text, const char* objectName);
/// A text whose "%1" is a link that opens in the browser, by mouse or keyboard.
QLabel* linkLabel(const QString& text, const QString& address, const QString& linkText);
/// A horizontal line.
QFrame* line();
QLabel* heading(const QString& text);
QLineEdit* lineEdit(const char* objectName, const QString& placeholder = {});
QPushButton* button(const QString& text, const char* objectName);
/// A titled frame that takes over the layout.
QGroupBox* group(const QString& title, QBoxLayout* content);
/// The common frame of a text page: its margins, and the spacing given.
QVBoxLayout* pageLayout(QWidget* page, int spacing);

/// Puts the cover into its box, scaled to the box.
void showCover(QLabel* box, const QPixmap& cover);

} // namespace pageparts
