#pragma once

class QGridLayout;
class QLabel;
class QString;
struct RipCounters;

/// The four numbers of the RIP step, each on a card of its own.
class StatCards {
public:
    StatCards();
    StatCards(const StatCards&) = delete;
    StatCards& operator=(const StatCards&) = delete;

    /// To be put into the page, whose widgets the cards become with it.
    QGridLayout* layout() const { return grid; }
    void showQuality(const RipCounters& counters);
    /// @param speed  KiB/s; 0 for none known
    void show(const RipCounters& counters, unsigned speed);
    void clear();

private:
    QLabel* addCard(int row, int column, const QString& title);

    QGridLayout* grid;
    QLabel* quality;
    QLabel* suspects;
    QLabel* errors;
    QLabel* speedText;
};
