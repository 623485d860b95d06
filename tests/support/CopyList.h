#pragma once

#include "tests/support/Test.h"

namespace test {

// The block copies made while it lives, each as text: "x,y cx,cy from x,y", with "keyed" in front of a
// transparent one, and the source's size behind one that stretches.
class CopyList : Fixed
{
public:
    CopyList()
    {
        KXHost::SetCopyObserver([this](const KXHost::CopyRecord& copy) {
            std::ostringstream text;
            if (copy.kind == KXHost::CopyKind::TransparentBlt) text << "keyed ";
            text << copy.x << ',' << copy.y << ' ' << copy.cx << 'x' << copy.cy << " from " << copy.xSrc
                 << ',' << copy.ySrc;
            if (copy.cxSrc != copy.cx || copy.cySrc != copy.cy)
                text << ' ' << copy.cxSrc << 'x' << copy.cySrc;
            m_copies.push_back(text.str());
        });
    }
    ~CopyList() { KXHost::SetCopyObserver({}); }

    // The copies since the last call.
    std::vector<std::string> Take() { return std::exchange(m_copies, {}); }

private:
    std::vector<std::string> m_copies;
};

} // namespace test
