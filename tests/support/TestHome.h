#pragma once

#include <QTemporaryDir>

/// A home of its own for a test process, so that neither settings nor music folders
/// of the person at the machine are ever touched.
class TestHome {
public:
    TestHome();

private:
    QTemporaryDir folder;
};
