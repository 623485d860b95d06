// kx: for the authors of skins and languages, and for who looks after a client.

#include "tools/kx/Commands.h"
#include "tools/kx/Findings.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <platform/CodePage.h>
#include <platform/Exception.h>
#include <platform/GdiPlus.h>
#include <platform/Host.h>

namespace kx::tool {

namespace {

constexpr char kHelp[] =
    "usage: kx COMMAND [OPTION]... ARGUMENT...\n"
    "\n"
    "  kx skin check DIR                checks a skin: files, sizes, states, Skin.ini\n"
    "  kx skin new DIR                  makes a skin with plain artwork and all keys\n"
    "  kx skin preview DIR -o FILE.png  draws a sheet of all that the skin has\n"
    "  kx skin watch DIR                shows the sheet in a window, anew at every change\n"
    "  kx language check DIR [--base ID] [--sources GLOB]\n"
    "                                   checks the languages below a directory against one\n"
    "  kx language new ID --from ID DIR makes a language with another's texts, to translate\n"
    "  kx language pseudo ID --from ID DIR\n"
    "                                   makes one with longer, accented texts, to test layouts\n"
    "  kx log FILE [-f] [--level N] [--match TEXT]\n"
    "                                   shows a log\n"
    "  kx report FILE [--no-gdb]        shows a crash report, and the dump in gdb\n"
    "\n"
    "  --json            findings as JSON\n"
    "  --code-page N     936 (the default) or 65001, for texts and file names\n"
    "  --help, --version\n"
    "\n"
    "Exit code: 0 nothing worse than a note, 1 warnings or errors found, 2 it couldn't be done.\n";

struct Command
{
    const char* pszGroup;
    const char* pszName; // null: the group is the command
    int (*pfn)(Arguments&);
};

constexpr Command kCommands[] = {
    {"skin", "check", CheckSkin},           {"skin", "new", NewSkin},
    {"skin", "preview", PreviewSkin},       {"skin", "watch", WatchSkin},
    {"language", "check", CheckLanguages},  {"language", "new", NewLanguage},
    {"language", "pseudo", PseudoLanguage}, {"log", nullptr, ShowLog},
    {"report", nullptr, ShowReport},
};

// Starts the layer of pictures for as long as it lives.
class Pictures
{
public:
    Pictures()
    {
        const Gdiplus::GdiplusStartupInput input;
        Gdiplus::GdiplusStartup(&m_nToken, &input, nullptr);
    }
    Pictures(const Pictures&) = delete;
    Pictures& operator=(const Pictures&) = delete;
    ~Pictures() { Gdiplus::GdiplusShutdown(m_nToken); }

private:
    std::uintptr_t m_nToken = 0;
};

int Run(int nArgs, char** args)
{
    const auto is = [&](int n, const char* pszWord) {
        return n < nArgs && std::strcmp(args[n], pszWord) == 0;
    };
    if (nArgs < 2) {
        std::fputs(kHelp, stderr);
        return Failed;
    }
    for (int n = 1; n < nArgs; ++n)
        if (is(n, "--help") || is(n, "-h")) return std::fputs(kHelp, stdout), Clean;
    if (is(1, "--version")) return std::puts("kx " KX_VERSION), Clean;
    for (const Command& command : kCommands) {
        if (!is(1, command.pszGroup) || (command.pszName && !is(2, command.pszName))) continue;
        const int nFirst = command.pszName ? 3 : 2;
        Arguments arguments(nArgs - nFirst, args + nFirst);
        if (const auto page = arguments.Value("--code-page"))
            if (!KXHost::SetCodePage(static_cast<UINT>(std::atoi(page->c_str()))))
                return Complain("the code page is 936 or 65001, not " + *page);
        const Pictures pictures;
        return command.pfn(arguments);
    }
    return Complain(std::string("there is no command \"") + args[1] +
                    (nArgs > 2 ? std::string(" ") + args[2] : "") + "\"; kx --help names them");
}

} // namespace

int Misused(const char* pszUsage)
{
    return Complain(std::string("usage: ") + pszUsage);
}

bool Arguments::Flag(const std::string& name)
{
    return std::erase(m_words, name) > 0;
}

std::optional<std::string> Arguments::Value(const std::string& name)
{
    for (auto word = m_words.begin(); word != m_words.end(); ++word) {
        if (word->starts_with(name + "=")) {
            const std::string value = word->substr(name.size() + 1);
            m_words.erase(word);
            return value;
        }
        if (*word != name || word + 1 == m_words.end()) continue;
        const std::string value = word[1];
        m_words.erase(word, word + 2);
        return value;
    }
    return std::nullopt;
}

std::optional<std::string> Arguments::Word()
{
    const auto word = std::find_if(m_words.begin(), m_words.end(),
                                   [](const std::string& one) { return !one.starts_with('-'); });
    if (word == m_words.end()) return std::nullopt;
    const std::string found = *word;
    m_words.erase(word);
    return found;
}

} // namespace kx::tool

int main(int nArgs, char** args)
{
    try {
        return kx::tool::Run(nArgs, args);
    } catch (CException* pException) {
        char text[256];
        pException->GetErrorMessage(text, sizeof(text));
        pException->Delete();
        return kx::tool::Complain(text);
    } catch (const std::exception& exception) {
        return kx::tool::Complain(exception.what());
    }
}
