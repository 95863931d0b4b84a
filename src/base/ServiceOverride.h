#pragma once

#include <utility>

/// Puts another object in the place of a service that the whole process shares,
/// for its lifetime: a test's seam. They may be nested. While nobody uses the
/// service, for nothing here is locked.
template<typename Service>
class ServiceOverride {
public:
    explicit ServiceOverride(Service& replacement) : previous(std::exchange(current, &replacement)) {}
    ~ServiceOverride() { current = previous; }
    ServiceOverride(const ServiceOverride&) = delete;
    ServiceOverride& operator=(const ServiceOverride&) = delete;

    /// What stands in for the service now; the service itself without any.
    static Service& orElse(Service& own) { return current ? *current : own; }

private:
    static inline Service* current = nullptr;

    Service* previous;
};
