#pragma once

#include <benchmark/benchmark.h>

namespace bench {

// Whether this process runs for the memory of one side, not for times.
bool IsMemoryMeasured();
// Forgets the peak of this process's resident memory up to now, or tells it as that of the work.
void ResetPeak();
void TellPeak(benchmark::State& state);

// The loop of a benchmark, `for (auto _ : bench::Loop(state))`, whose peak of memory is told: what is
// prepared and checked around it doesn't count but for what stays.
class Loop
{
public:
    explicit Loop(benchmark::State& state) : m_state(state) {}

    struct Iterator
    {
        benchmark::State::StateIterator inner;
        benchmark::State* pState;

        bool operator!=(const Iterator& end) const
        {
            if (inner != end.inner) [[likely]]
                return true;
            TellPeak(*pState);
            return false;
        }
        Iterator& operator++()
        {
            ++inner;
            return *this;
        }
        auto operator*() const { return *inner; }
    };

    Iterator begin()
    {
        ResetPeak();
        return {m_state.begin(), &m_state};
    }
    Iterator end() { return {m_state.end(), &m_state}; }

private:
    benchmark::State& m_state;
};

} // namespace bench
