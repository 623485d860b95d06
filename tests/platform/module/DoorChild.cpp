// Uses what each module gives, and prints to its standard error what came of it. KX_DEBUG=1 adds what the
// library says of it. With an argument, in a thread for each of eight.
#include "include/platform/Com.h"
#include "include/platform/Internet.h"
#include "include/platform/ServiceManager.h"
#include "include/platform/Services.h"
#include "include/platform/Xml.h"

#include <cstdio>
#include <memory>
#include <string_view>
#include <thread>
#include <vector>

namespace {

const char* Fetch()
{
    try {
        CInternetSession session;
        const std::unique_ptr<CHttpFile> file(session.OpenURL("http://127.0.0.1:1/"));
        return "fetched";
    } catch (CInternetException* exception) {
        const bool bNoModule = exception->m_dwError == ERROR_INTERNET_INTERNAL_ERROR;
        exception->Delete();
        return bNoModule ? "no HTTP" : "HTTP";
    }
}

const char* OpenManager()
{
    if (const SC_HANDLE hManager = OpenSCManagerA(nullptr, nullptr, 1)) CloseServiceHandle(hManager);
    return KXHost::MakeSystemdManager() ? "services" : "no services";
}

const char* MakeDocument()
{
    CoInitialize(nullptr);
    void* document = nullptr;
    const HRESULT result = CoCreateInstance(CLSID_DOMDocument, nullptr, 1, IID_IXMLDOMDocument, &document);
    if (document) static_cast<IXMLDOMDocument*>(document)->Release();
    CoUninitialize();
    return document ? "XML" : result == REGDB_E_CLASSNOTREG ? "no XML" : "XML fails";
}

void UseAll()
{
    std::fprintf(stderr, "%s, %s, %s\n", Fetch(), OpenManager(), MakeDocument());
}

} // namespace

int main(int count, char**)
{
    std::vector<std::jthread> threads;
    for (int n = 0; count > 1 && n < 8; ++n)
        threads.emplace_back(UseAll);
    threads.clear();
    UseAll();
}
