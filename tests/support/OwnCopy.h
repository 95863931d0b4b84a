#pragma once

#include <QList>

/// A copy that shares nothing with the list. Before Qt changes a list in place it
/// looks whether somebody still shares it, but in a way that does not order the
/// change after what they read; so a list that is shared with another thread is
/// not guarded by a lock for the copying alone.
template<typename Value>
QList<Value> ownCopy(const QList<Value>& list)
{
    return {list.cbegin(), list.cend()};
}
