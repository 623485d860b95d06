#pragma once

#include "include/platform/Exception.h"

#include <type_traits>

namespace kx {

// Gives `work`'s result, or `failure` where anything is thrown on the way: a lack of memory, a file that
// can't be read.
template <class Work, class Result = std::invoke_result_t<Work>>
Result Guard(Work&& work, std::type_identity_t<Result> failure = {}) noexcept
{
    try {
        return work();
    } catch (CException* pError) {
        pError->Delete();
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
    return failure;
}

// Whether `work`, which has no result, came to its end.
template <class Work>
requires std::is_void_v<std::invoke_result_t<Work>>
bool Guard(Work&& work) noexcept
{
    return Guard([&] {
        work();
        return true;
    });
}

} // namespace kx
