#pragma once

#include <memory>

/// What a table of classes names one by: the making of a new object of it.
template<typename Interface, typename Class>
std::unique_ptr<Interface> make()
{
    return std::make_unique<Class>();
}
