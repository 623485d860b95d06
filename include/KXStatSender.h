#pragma once

#include "KXExport.h"
#include "platform/String.h"

// Reports of usage to a statistics server: each is one HTTP GET whose answer is dropped, sent through
// CKXHttpDownloadMgr behind what that has to do before, and lost without a word if that can't. The URL is
//
//     BASE?userid=ID&ver=VERSION&optype=TYPE&optypeval=VALUE
//
// with the caller's texts as they are, so who passes them encodes what has to be.
//
// ID names the user of this machine across runs: the value "PCGUID" of the per-user key
// "Software\norvale\setup", 32 upper-case hexadecimal digits made at the first use. A stored text of up to 99
// bytes is taken as it is, unless it is empty; anything else is replaced. Of several processes that make one
// at the same time the last one's stays; each sends its own until it ends.
class KX_API CKXStatSender
{
public:
    // The sender, made at the first call, which must not race with another.
    static CKXStatSender& Instance();

    // Copies what Initialize was given.
    CKXStatSender(CKXStatSender const& other);
    CKXStatSender& operator=(CKXStatSender const& other);

    // Finds or makes the user's id and keeps what all reports begin with. Not while others report.
    void Initialize(CString const& strBaseUrl, CString const& strVersion);

    // Queues a report and returns. Without Initialize its URL is no URL, and it fails as any such download.
    // Any thread.
    void Report(CString const& strOpType, int nOpTypeVal);

    // Does nothing, and need not be called.
    void UnInitialize() {}

protected:
    // Nothing is sent before Initialize.
    CKXStatSender();
    ~CKXStatSender();

    // The user's id in the registry: reads it, or stores a new one. Whether that succeeded.
    bool ReadUserId(CString& strId);
    bool SaveUserId(CString const& strId);

private:
    CString m_strUrlPrefix;
};
