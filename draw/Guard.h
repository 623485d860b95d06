#pragma once

#include "platform/Exception.h"

#include <type_traits>

namespace kx::draw {

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

} // namespace kx::draw
