#pragma once

#include <utility>

// Does something at the end of a scope, whatever way it is left.
template <class Action>
class ScopeExit {
public:
    explicit ScopeExit(Action action) : action_(std::move(action)) {}
    ~ScopeExit() { action_(); }
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;

private:
    Action action_;
};
