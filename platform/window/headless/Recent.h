#pragma once

#include <deque>
#include <iterator>
#include <vector>

namespace kx::window {

// The newest 1,000 of what was recorded.
template <class T>
class Recent
{
public:
    static constexpr std::size_t kMax = 1'000;

    void Add(const T& item)
    {
        if (m_items.size() == kMax) m_items.pop_front();
        m_items.push_back(item);
    }

    // Gives them, oldest first, and forgets them.
    std::vector<T> Take()
    {
        std::vector<T> items(std::make_move_iterator(m_items.begin()),
                             std::make_move_iterator(m_items.end()));
        m_items.clear();
        return items;
    }

private:
    std::deque<T> m_items;
};

} // namespace kx::window
