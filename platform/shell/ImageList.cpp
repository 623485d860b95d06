#include "platform/shell/ImageList.h"

#include "platform/Immortal.h"

#include <deque>
#include <mutex>
#include <string_view>
#include <unordered_map>

struct _IMAGELIST
{
    int size; // the icons' sides in pixels
};

namespace {

constexpr _IMAGELIST kLarge{32};
constexpr _IMAGELIST kSmall{16};

// The icons so far, the same ones in both sizes. The names stay where they are once they are in.
class IconTable
{
public:
    IconTable() { Add("application-octet-stream application-x-generic"); }

    int Find(const std::string& names)
    {
        const std::lock_guard lock(m_lock);
        const auto found = m_indices.find(names);
        return found == m_indices.end() ? Add(names) : found->second;
    }

    int Count()
    {
        const std::lock_guard lock(m_lock);
        return static_cast<int>(m_names.size());
    }

    const char* NameAt(int nIndex)
    {
        const std::lock_guard lock(m_lock);
        const bool bInside = nIndex >= 0 && static_cast<std::size_t>(nIndex) < m_names.size();
        return bInside ? m_names[static_cast<std::size_t>(nIndex)].c_str() : "";
    }

private:
    int Add(const std::string& names)
    {
        const int index = static_cast<int>(m_names.size());
        m_indices.emplace(m_names.emplace_back(names), index);
        return index;
    }

    std::mutex m_lock;
    std::deque<std::string> m_names;
    std::unordered_map<std::string_view, int> m_indices;
};

IconTable& TheTable()
{
    static kx::Immortal<IconTable> table;
    return table.Get();
}

} // namespace

int kx::shell::IconIndex(const std::string& names)
{
    return names.empty() ? 0 : TheTable().Find(names);
}

const _IMAGELIST* kx::shell::SystemImageList(bool bSmall) noexcept
{
    return bSmall ? &kSmall : &kLarge;
}

int ImageList_GetImageCount(const _IMAGELIST* pList)
{
    return pList ? TheTable().Count() : 0;
}

int ImageList_GetIconSize(const _IMAGELIST* pList, int* pnWidth, int* pnHeight)
{
    if (!pList || !pnWidth || !pnHeight) return 0;
    *pnWidth = *pnHeight = pList->size;
    return 1;
}

const char* ImageList_GetIconName(const _IMAGELIST* pList, int nIndex)
{
    return pList ? TheTable().NameAt(nIndex) : "";
}
