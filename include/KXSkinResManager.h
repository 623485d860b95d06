#pragma once

#include "KXFileSystem.h"
#include "KXSkinBtnRes.h"
#include "KXSkinColorDef.h"
#include "KXSkinIMListRes.h"
#include "KXSkinOtherRes.h"
#include "KXSkinWndRes.h"
#include "platform/Window.h"

#include <memory>
#include <vector>

// The skins installed below the application's directory, the current one, and what it is drawn with.
//
// A skin is a directory directly below CKXFileSystem::GetAppPath() + "\Skins\" that holds an entry
// `skin.ini`; one whose name begins with a point is none. It is described by its `Skin.ini`, and its images
// lie in `Common\Window\`, `Common\Button\`, `Common\IMList\` and `Common\Others\`. As everywhere, an exact
// name wins and case is ignored without one, so a skin may spell its names as it likes.
//
// A client calls GetSingletonPtr, which lists the skins once and for all, then SetSkin; no skin is loaded
// until then. The sets are loaded in place and guarded by nothing: skins are selected, and the sets read, by
// one thread at a time.
class KX_API CKXSkinResManager
{
public:
    // The manager, made at the first call, which must not race with another; null (or a CMemoryException*
    // from its members) for lack of memory. The object is the library's.
    static CKXSkinResManager* GetSingletonPtr();

    CKXSkinResManager(const CKXSkinResManager&) = delete;
    CKXSkinResManager& operator=(const CKXSkinResManager&) = delete;

    // Does nothing, and need not be called.
    void Initialize() {}
    // Empties the two images of GetOthRes, which is to be done before the last GdiplusShutdown. A later
    // SetSkin by name loads them again.
    void UnInitialize();

    // Selects by position in the list: loads the five sets, in the order of their getters below, and with
    // `bNotify` calls the callback, then sends message WM_KXSKINCHANGED to every visible top-level window of
    // the process, waiting for each. 1, also where files are missing or broken: their values are then the
    // defaults, their images empty. 1 at once, with nothing loaded or announced, for the current skin; 0,
    // with nothing changed, for a position that isn't in the list.
    int SetSkin(int nIndex, int bNotify);
    // The same by name, ignoring case; the path keeps the argument's spelling. The current skin is loaded and
    // announced again.
    int SetSkin(const CString& strSkinName, int bNotify);

    // A procedure that is called with GetCurrentSkinPath() at a notified change, once all is loaded and
    // before any window hears of it; its result isn't read. Null, as at first, for none.
    void SetCallbackFunc(int (*pfn)(const CString&)) { m_pfnSkinChanged = pfn; }

    // The current skin's position, name and directory, which ends in a backslash; -1 and empty until one is
    // selected.
    int GetCurrentSkinkID() const { return m_nCurrentSkin; }
    CString GetCurrentSkinName() { return GetSkinName(m_nCurrentSkin); }
    const CString& GetCurrentSkinPath() const { return m_strCurrentSkinPath; }

    // The name at a position; empty for one that isn't in the list.
    CString GetSkinName(int nIndex);
    int GetSkinsTotal() const { return static_cast<int>(m_vecSkins.size()); }

    // The current skin's pictures and colours. Valid as long as the library: a change loads the same objects
    // anew.
    CKXSkinWndRes* GetWndRes() { return &m_WndRes; }
    CKXSkinBtnRes* GetBtnRes() { return &m_BtnRes; }
    CKXSkinIMListRes* GetIMLRes() { return &m_IMLRes; }
    CKXSkinOtherRes* GetOthRes() { return &m_OthRes; }
    CKXSkinColorDef* GetClrDef() { return &m_ClrDef; }

    // By how many pixels the skin's title is higher than the desktop's caption with its frame; negative if it
    // is lower.
    int GetTitleBarAdjust();

protected:
    // Lists the skins; none is current.
    CKXSkinResManager();
    ~CKXSkinResManager();

    // Lists the skins anew; how many there are.
    int EnumSkins();
    // Adds a directory to the list of the manager at `lParam` if it is a skin; 1.
    static int EnumDirCallback(tagKXFileInfo* pInfo, long lParam);
    // Loads the five sets from the current skin's directory; 1.
    int LoadSkinResources();
    // Announces the current skin to the callback and the process's windows; 1.
    int NotifySkinChanged();
    static int WndEnumProc(HWND hWnd, long lParam);

private:
    friend struct std::default_delete<CKXSkinResManager>;

    int Select(int nIndex, const CString& strName, int bNotify);

    int (*m_pfnSkinChanged)(const CString&) = nullptr;
    CString m_strSkinsRoot;
    CString m_strCurrentSkinPath;
    int m_nCurrentSkin = -1;
    CKXSkinWndRes m_WndRes;
    CKXSkinBtnRes m_BtnRes;
    CKXSkinIMListRes m_IMLRes;
    CKXSkinOtherRes m_OthRes;
    CKXSkinColorDef m_ClrDef;
    std::vector<CString> m_vecSkins;

    static CKXSkinResManager* s_pInstance;
    static std::unique_ptr<CKXSkinResManager> s_auto_ptr;
};
