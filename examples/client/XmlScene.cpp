#include "Scene.h"

#include <cstdio>
#include <platform/Com.h>
#include <vector>

namespace {

struct Entry
{
    CString strWord;
    CString strMeaning;
    int nScore;
    COleDateTime tLearned;
};

// The right to use documents, for as long as the scene lasts.
class Com
{
public:
    Com() { CoInitialize(nullptr); }
    Com(const Com&) = delete;
    Com& operator=(const Com&) = delete;
    ~Com() { CoUninitialize(); }
};

// A score of 0 is left out of the file, and read back as the default.
bool Store(const CString& strPath, const std::vector<Entry>& entries)
{
    CKXXmlDomDocument doc;
    if (!doc.LoadXml("<?xml version='1.0' encoding='GB2312'?><words/>")) return false;
    CKXXmlDomElement root = doc.GetDocumentElement();
    root.SetAttributeString("list", "Unit 1");
    root.SetAttributeInt32("count", static_cast<long>(entries.size()));
    for (Entry entry : entries) {
        CKXXmlDomElement word = doc.CreateElement("word", nullptr);
        word.AppendChild(doc, "text", entry.strWord, false);
        word.AppendChild(doc, "meaning", entry.strMeaning, false);
        word.AppendChild(doc, "score", entry.nScore, false, 0);
        word.AppendChild(doc, "learned", entry.tLearned, true);
        root.AppendChild(word);
    }
    doc.Save(strPath);
    return true;
}

Entry Read(const CKXXmlDomElement& word)
{
    Entry entry;
    word.GetChild("text", entry.strWord, true);
    word.GetChild("meaning", entry.strMeaning, false);
    word.GetChild("score", entry.nScore, false, 0);
    word.GetChild("learned", entry.tLearned, false, COleDateTime());
    return entry;
}

bool Same(const Entry& one, const Entry& other)
{
    return one.strWord == other.strWord && one.strMeaning == other.strMeaning && one.nScore == other.nScore &&
           one.tLearned == other.tLearned;
}

} // namespace

// Meanings are in Chinese, so the file is in the encoding that it declares.
bool client::ShowWordLists()
{
    const std::vector<Entry> entries{
        {"harbour", "\xB8\xDB\xCD\xE5", 85, COleDateTime(2009, 3, 1, 12, 34, 56)},
        {"ember", "\xD3\xE0\xBD\xFD", 0, COleDateTime(2009, 3, 2, 8, 0, 0)},
        {"salt & pepper", "\xBD\xB7\xD1\xCE", 100, COleDateTime(2009, 3, 5, 19, 15, 30)},
    };
    const Com com;
    const CString strPath = CKXFileSystem::GetInstancePtr()->GetAppPath() + "words.xml";
    if (!Store(strPath, entries)) return false;

    CKXXmlDomDocument doc;
    if (!doc.Load(strPath)) return false;
    CKXXmlDomElement root = doc.GetDocumentElement();
    std::printf("   \"%s\", %ld words, as read back from words.xml:\n",
                KXText::ToUtf8(root.GetAttributeString("list")).c_str(), root.GetAttributeInt32("count"));
    std::size_t nSame = 0;
    for (const CKXXmlDomElement& word : root.GetChilds("word")) {
        const Entry entry = Read(word);
        std::printf("      %-14s %-6s %3d  %s\n", KXText::ToUtf8(entry.strWord).c_str(),
                    KXText::ToUtf8(entry.strMeaning).c_str(), entry.nScore,
                    entry.tLearned.Format("%Y-%m-%d %H:%M:%S").GetString());
        if (nSame < entries.size()) nSame += Same(entry, entries[nSame]);
    }
    std::printf(
        "   best: %s\n",
        KXText::ToUtf8(root.GetChild("word[score][not(../word/score > score)]/text").GetText()).c_str());
    std::printf("   %s\n", KXText::ToUtf8(root.GetChild("word[3]").GetXml()).c_str());
    return nSame == entries.size();
}
