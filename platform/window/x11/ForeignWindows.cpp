#include "platform/window/x11/ForeignWindows.h"

#include "platform/window/WindowTable.h"
#include "platform/window/x11/Connection.h"
#include "platform/window/x11/Properties.h"

#include <algorithm>
#include <set>
#include <span>
#include <tuple>
#include <utility>

namespace kx::window::x11 {

namespace {

constexpr std::uint32_t kMost = 1'000;

} // namespace

ForeignWindows::ForeignWindows(const Connection& connection)
    : m_connection(connection), m_machine(MachineName())
{
}

std::vector<xcb_window_t> ForeignWindows::Candidates() const
{
    xcb_connection_t* const connection = m_connection.Get();
    const auto listCookie = xcb_get_property(connection, 0, m_connection.Root(),
                                             m_connection.atoms.netClientList, XCB_ATOM_WINDOW, 0, kMost);
    const auto treeCookie = xcb_query_tree(connection, m_connection.Root());
    const auto [listed, tree] = m_connection.Wait([&] {
        return std::pair(TakeReply(xcb_get_property_reply(connection, listCookie, nullptr)),
                         TakeReply(xcb_query_tree_reply(connection, treeCookie, nullptr)));
    });
    std::vector<xcb_window_t> ids;
    if (listed && listed->format == 32) {
        const auto windows = ValuesOf<xcb_window_t>(listed.get());
        ids.assign(windows.begin(), windows.end());
    } else if (tree) {
        // The window ids in the reply, one per 32-bit word; may be fewer than it announces.
        const std::uint32_t nSome = std::min({std::uint32_t{tree->children_len}, tree->length, kMost});
        const std::span some(xcb_query_tree_children(tree.get()), nSome);
        ids.assign(some.begin(), some.end());
    }
    std::erase_if(ids, [&](xcb_window_t id) { return m_connection.IsOurs(id); });
    return ids;
}

std::vector<HWND> ForeignWindows::List()
{
    std::vector<Questions> questions;
    std::set<xcb_window_t> added;
    for (const xcb_window_t id : Candidates()) {
        if (Add(id)) added.insert(id);
        questions.push_back(Ask(id));
    }
    std::vector<HWND> handles;
    for (const Questions& asked : questions) {
        const bool bIsOne = Answer(asked).has_value();
        const auto it = m_handles.find(asked.id); // none of a window that has ended meanwhile
        if (bIsOne && it != m_handles.end()) handles.push_back(it->second);
        if (!bIsOne && added.contains(asked.id)) Forget(asked.id);
    }
    return handles;
}

// Its end is to be told from now on, since its number of the server's may then become another's. One that is
// found alive after this can't end untold.
bool ForeignWindows::Add(xcb_window_t id)
{
    HWND& handle = m_handles[id];
    if (handle) return false;
    handle = reinterpret_cast<HWND>(NewAge());
    m_windows.emplace(handle, id);
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection.Get(), id, XCB_CW_EVENT_MASK, &events);
    return true;
}

void ForeignWindows::Forget(xcb_window_t id) noexcept
{
    const auto it = m_handles.find(id);
    if (it == m_handles.end()) return;
    m_windows.erase(it->second);
    m_handles.erase(it);
}

std::optional<WindowFacts> ForeignWindows::Find(HWND hWnd) const noexcept
{
    const auto it = m_windows.find(hWnd);
    return it == m_windows.end() ? std::nullopt : Answer(Ask(it->second));
}

ForeignWindows::Questions ForeignWindows::Ask(xcb_window_t id) const
{
    return {id, xcb_get_window_attributes(m_connection.Get(), id),
            AskFor(m_connection, id, m_connection.atoms.netWmPid),
            AskFor(m_connection, id, XCB_ATOM_WM_CLIENT_MACHINE)};
}

// A process of another machine has a number that means nothing here.
std::optional<WindowFacts> ForeignWindows::Answer(const Questions& questions) const noexcept
{
    xcb_connection_t* const connection = m_connection.Get();
    const auto [attributes, process, machine] = m_connection.Wait([&] {
        return std::tuple(
            TakeReply(xcb_get_window_attributes_reply(connection, questions.attributes, nullptr)),
            TakeReply(xcb_get_property_reply(connection, questions.process, nullptr)),
            TakeReply(xcb_get_property_reply(connection, questions.machine, nullptr)));
    });
    const auto id = NumberOf(process.get());
    if (!attributes || !id || *id == 0 || TextOf(machine.get()) != m_machine) return std::nullopt;
    // A process's first thread has the process's number.
    return WindowFacts{*id, *id, attributes->map_state == XCB_MAP_STATE_VIEWABLE};
}

} // namespace kx::window::x11
