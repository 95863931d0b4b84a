#pragma once

#include "convert/ConvertDialog.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

/// The Convert dialog by what a person sees of it, in the order from top to
/// bottom.
class ConvertDialogView {
public:
    explicit ConvertDialogView(QDialog* shown) : dialog(shown) {}

    QLineEdit* source() const { return edit(0); }
    QLineEdit* output() const { return edit(1); }
    QComboBox* format() const { return dialog->findChild<QComboBox*>(); }
    QPushButton* sourceBrowse() const { return button(0); }
    QPushButton* outputBrowse() const { return button(1); }
    QPushButton* convert() const { return button(2); }
    QLabel* label(int place) const { return dialog->findChildren<QLabel*>().value(place); }
    QLabel* sourceLabel() const { return label(0); }
    QLabel* warning() const { return label(1); }
    QLabel* formatLabel() const { return label(2); }
    QLabel* outputLabel() const { return label(3); }
    QLabel* statusLabel() const { return label(4); }
    QString status() const { return statusLabel()->text(); }

    void fill(const QString& sourceFolder, const QString& outputFolder) const
    {
        source()->setText(sourceFolder);
        output()->setText(outputFolder);
    }
    void click() const { QTest::mouseClick(convert(), Qt::LeftButton); }

private:
    QLineEdit* edit(int place) const
    {
        return dialog->findChildren<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly).value(place);
    }
    QPushButton* button(int place) const { return dialog->findChildren<QPushButton*>().value(place); }

    QDialog* dialog;
};
