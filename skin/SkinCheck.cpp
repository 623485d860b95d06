#include "skin/SkinCheck.h"

#include "KXBitmap.h"
#include "KXFileSystem.h"
#include "KXGdiplusImage.h"
#include "KXIniDataMgr.h"
#include "KXNum.h"
#include "KXSkinWndRes.h"
#include "internal/Debug.h"
#include "internal/FileSearch.h"
#include "platform/Exception.h"
#include "platform/Gdi.h"
#include "skin/IniFile.h"
#include "skin/SkinTable.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <new>
#include <numeric>
#include <string_view>
#include <vector>

namespace kx::skin {

namespace {

constexpr int kMostEntries = 10'000;
constexpr int kMostValue = 255;

bool SameName(const char* pszKnown, const CString& str)
{
    return str.CompareNoCase(pszKnown) == 0;
}

// How many letters have to change, come or go to make one word of the other.
std::size_t Distance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const char ch : a) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed = diagonal + (ch != b[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

// The word of a list that is next to another, if fewer than half of its letters differ.
class Nearest
{
public:
    explicit Nearest(const CString& strWord)
        : m_strWord(strWord.Left(64).MakeLower()), m_nLeast(strWord.View().size() / 2 + 1)
    {
    }
    void Offer(const char* pszWord)
    {
        const std::size_t n = Distance(m_strWord, CString(pszWord).MakeLower());
        if (n >= m_nLeast) return;
        m_nLeast = n;
        m_pszBest = pszWord;
    }
    // It is the end of a sentence; empty without one.
    CString Hint() const { return m_pszBest ? CString("; did you mean \"") + m_pszBest + "\"?" : CString(); }

private:
    const CString m_strWord; // in small letters
    std::size_t m_nLeast;
    const char* m_pszBest = nullptr;
};

// Loads something of which the check tells itself.
template <class Load>
auto Quietly(Load load)
{
    const debug::Quiet quiet;
    return load();
}

class Checker
{
public:
    Checker(const CString& strDir, const FindingSink& sink) : m_strDir(strDir), m_sink(sink) {}

    void Run()
    {
        CheckIni();
        for (const SkinFile& file : kFiles)
            CheckFile(file);
        CheckEntries("");
    }

private:
    void Tell(Severity severity, const char* pszRule, const CString& strFile, const CString& strText,
              int nLine = 0, int nColumn = 0) const
    {
        m_sink({severity, pszRule, strFile, nLine, nColumn, strText});
    }
    void TellOf(const IniLine& line, Severity severity, const char* pszRule, const CString& strText) const
    {
        Tell(severity, pszRule, m_strIni, strText, line.nLine, line.nColumn);
    }
    void TellOfValue(const IniLine& line, Severity severity, const char* pszRule,
                     const CString& strText) const
    {
        Tell(severity, pszRule, m_strIni, strText, line.nLine, line.nValueColumn);
    }

    void CheckIni();
    void CheckSection(const IniLine& line);
    void CheckKey(const IniLine& line);
    void CheckValue(const IniLine& line, const SkinKey& key);
    void CheckNumber(const IniLine& line, const SkinKey& key);
    void CheckPoints(const IniLine& line);
    void CheckFile(const SkinFile& file);
    void CheckBitmap(const SkinFile& file, const CString& strPath);
    void CheckEnds(const SkinFile& file, const CString& strPath, int nLength);
    void CheckEntries(const CString& strBelow);
    void CheckEntry(const CString& strName);

    // The number of a key, as it is read.
    int Number(const char* pszKey) const
    {
        for (const IniLine& line : m_lines)
            if (line.strKey.CompareNoCase(pszKey) == 0) return std::atoi(line.strValue);
        return 0;
    }

    const CString m_strDir;
    const CString m_strIni = m_strDir + "Skin.ini";
    const FindingSink& m_sink;
    std::vector<IniLine> m_lines;
    std::map<CString, int> m_places; // section, or section and key, in lower case: the first line
    CString m_strBackground = "default";
    int m_nEntries = 0;
};

void Checker::CheckIni()
{
    bool bAll = true;
    if (!ReadIniLines(m_strIni, m_lines, bAll)) {
        Tell(Severity::Error, "skin.no-ini", m_strIni,
             "can't be read: a directory without it is no skin, and every key takes its default");
        return;
    }
    for (const IniLine& line : m_lines)
        if (line.bSection)
            CheckSection(line);
        else
            CheckKey(line);
    if (!bAll)
        Tell(Severity::Warning, "skin.too-much", m_strIni, "is too long: only its first lines were looked at",
             m_lines.back().nLine);
}

void Checker::CheckSection(const IniLine& line)
{
    const auto [place, bNew] = m_places.emplace(CString(line.strSection).MakeLower(), line.nLine);
    CString strText;
    if (!bNew) {
        strText.Format("section [%s] stands at line %d already, and only that one is read",
                       line.strSection.GetString(), place->second);
        TellOf(line, Severity::Warning, "skin.section-twice", strText);
        return;
    }
    Nearest nearest(line.strSection);
    for (const SkinKey& key : kKeys) {
        if (SameName(key.pszSection, line.strSection)) return;
        nearest.Offer(key.pszSection);
    }
    strText.Format("nothing reads section [%s]%s", line.strSection.GetString(), nearest.Hint().GetString());
    TellOf(line, Severity::Warning, "skin.unknown-section", strText);
}

void Checker::CheckKey(const IniLine& line)
{
    CString strText;
    if (!line.bAssigns) {
        strText.Format("\"%s\" is no key: it has no \"=\"", line.strValue.Left(40).GetString());
        TellOf(line, Severity::Warning, "skin.no-key", strText);
        return;
    }
    if (line.strSection.IsEmpty()) {
        strText.Format("key %s stands before the first section, where nothing reads it",
                       line.strKey.GetString());
        TellOf(line, Severity::Warning, "skin.no-section", strText);
        return;
    }
    Nearest nearest(line.strKey);
    const SkinKey* pElsewhere = nullptr;
    bool bSection = false;
    for (const SkinKey& key : kKeys) {
        const bool bHere = SameName(key.pszSection, line.strSection);
        const bool bKey = SameName(key.pszKey, line.strKey);
        if (bHere && bKey) return CheckValue(line, key);
        bSection = bSection || bHere;
        if (bKey) pElsewhere = &key;
        if (bHere) nearest.Offer(key.pszKey);
    }
    if (!bSection) return; // its section was told of
    if (pElsewhere)
        strText.Format("nothing reads key %s here: it belongs to section [%s]", line.strKey.GetString(),
                       pElsewhere->pszSection);
    else
        strText.Format("nothing reads key %s%s", line.strKey.GetString(), nearest.Hint().GetString());
    TellOf(line, Severity::Warning, "skin.unknown-key", strText);
}

void Checker::CheckValue(const IniLine& line, const SkinKey& key)
{
    const CString strPlace = (line.strSection + "]" + line.strKey).MakeLower();
    const auto [place, bNew] = m_places.emplace(strPlace, line.nLine);
    CString strText;
    if (!bNew) {
        strText.Format("key %s stands at line %d already, and only that one is read", line.strKey.GetString(),
                       place->second);
        TellOf(line, Severity::Warning, "skin.key-twice", strText);
        return;
    }
    if (line.strValue.GetLength() > kMostValue)
        TellOfValue(line, Severity::Warning, "skin.long-value",
                    CString("of this value only the first 255 bytes are read"));
    if (line.strValue.IsEmpty()) return; // the default
    const char* const pszValue = line.strValue;
    switch (key.kind) {
    case ValueKind::Number:
        CheckNumber(line, key);
        break;
    case ValueKind::Flag:
        if (line.strValue.CompareNoCase("TRUE") != 0 && line.strValue.CompareNoCase("FALSE") != 0) {
            strText.Format("\"%s\" is neither TRUE nor FALSE; FALSE is taken", pszValue);
            TellOfValue(line, Severity::Error, "skin.bad-flag", strText);
        }
        break;
    case ValueKind::Color: {
        std::vector<int> numbers;
        CKXNum::ApartNums(line.strValue.Left(kMostValue), numbers);
        if (numbers.size() == 3 &&
            std::all_of(numbers.begin(), numbers.end(), [](int n) { return n >= 0 && n <= 255; }))
            break;
        strText.Format("\"%s\" is no colour, which is three numbers from 0 to 255; %s is taken", pszValue,
                       key.pszDefault);
        TellOfValue(line, Severity::Error, "skin.bad-color", strText);
        break;
    }
    case ValueKind::Points:
        CheckPoints(line);
        break;
    case ValueKind::Background:
        m_strBackground = CString(line.strValue).MakeLower();
        for (const char* pszKnown : {"default", "colorfill", "singlebmp", "multibmp"})
            if (m_strBackground == pszKnown) return;
        strText.Format(
            "\"%s\" is no type of background: default, colorfill, singlebmp or multibmp; default is "
            "taken",
            pszValue);
        TellOfValue(line, Severity::Error, "skin.bad-background", strText);
        break;
    case ValueKind::Text:
        break;
    }
}

void Checker::CheckNumber(const IniLine& line, const SkinKey& key)
{
    std::string_view text = line.strValue;
    if (text.starts_with('+')) text.remove_prefix(1);
    int n = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), n);
    CString strText;
    if (result.ec == std::errc::result_out_of_range) {
        strText.Format("\"%s\" is beyond the numbers there are; %d is taken",
                       line.strValue.Left(40).GetString(),
                       CKXIniDataMgr::GetInteger(m_strIni, key.pszSection, key.pszKey, 0));
        TellOfValue(line, Severity::Error, "skin.bad-number", strText);
    } else if (result.ec != std::errc()) {
        strText.Format("\"%s\" is no number; 0 is taken", line.strValue.Left(40).GetString());
        TellOfValue(line, Severity::Error, "skin.bad-number", strText);
    } else if (result.ptr != text.data() + text.size()) {
        strText.Format("of \"%s\" only %d is read", line.strValue.Left(40).GetString(), n);
        TellOfValue(line, Severity::Warning, "skin.bad-number", strText);
    } else if (n < 0 && std::string_view(key.pszKey).find("Offset") == std::string_view::npos) {
        strText.Format("%d is less than nothing", n);
        TellOfValue(line, Severity::Warning, "skin.negative", strText);
    }
}

void Checker::CheckPoints(const IniLine& line)
{
    const CString strPath = line.strValue.Left(kMostValue);
    int nStart = 0;
    CString strPoint;
    while (!(strPoint = strPath.Tokenize("|", nStart)).IsEmpty()) {
        int x = 0, y = 0, nEnd = 0;
        if (std::sscanf(strPoint, " %9d , %9d %n", &x, &y, &nEnd) == 2 && nEnd == strPoint.GetLength())
            continue;
        std::vector<CPoint> taken;
        CKXSkinWndRes().ParsePathPoint(strPoint, taken);
        CString strText, strTaken = "it is passed over";
        if (!taken.empty())
            strTaken.Format("%d,%d is taken", static_cast<int>(taken[0].x), static_cast<int>(taken[0].y));
        strText.Format("\"%s\" is no point, as in 0,5|1,3; %s", strPoint.Left(40).GetString(),
                       strTaken.GetString());
        TellOfValue(line, Severity::Error, "skin.bad-point", strText);
    }
}

void Checker::CheckFile(const SkinFile& file)
{
    if (file.pszBackground && m_strBackground != file.pszBackground) return;
    const CString strPath = m_strDir + file.pszPath;
    if (!CKXFileSystem::FileExists(strPath)) {
        Tell(Severity::Error, "skin.missing-file", strPath,
             "is missing: nothing is drawn where it is needed");
        return;
    }
    if (file.kind == FileKind::Bitmap) return CheckBitmap(file, strPath);
    if (file.kind == FileKind::Icon) {
        constexpr auto destroy = [](HANDLE handle) { DestroyIcon(static_cast<HICON>(handle)); };
        const std::unique_ptr<void, decltype(destroy)> icon(Quietly(
            [&] { return LoadImageA(nullptr, strPath, IMAGE_ICON, file.cx, file.cy, LR_LOADFROMFILE); }));
        if (!icon)
            Tell(Severity::Error, "skin.no-icon", strPath, "is no icon: nothing is drawn where it is needed");
        return;
    }
    CKXGdiplusImage image;
    if (!image.Load(strPath) || image.GetImageSize() == CSize(0, 0))
        Tell(Severity::Error, "skin.no-picture", strPath,
             "is no picture: nothing is drawn where it is needed");
}

void Checker::CheckBitmap(const SkinFile& file, const CString& strPath)
{
    CKXBitmap bitmap;
    if (!Quietly([&] { return bitmap.LoadBitmapA(strPath); })) {
        Tell(Severity::Error, "skin.no-bitmap", strPath,
             "is no BMP file that can be read: nothing is drawn where it is needed");
        return;
    }
    const BITMAP& record = bitmap.GetBITMAP();
    const int nLength = file.bHorz ? record.bmWidth : record.bmHeight;
    const char* const pszSide = file.bHorz ? "wide" : "high";
    CString strText;
    if (nLength < file.nStates) {
        strText.Format("is %d pixels %s, too few for %d states", nLength, pszSide, file.nStates);
        Tell(Severity::Error, "skin.states", strPath, strText);
        return;
    }
    if (const int nRest = nLength % file.nStates; nRest != 0) {
        strText.Format("is %d pixels %s, which %d states don't divide: the last %d belong to none", nLength,
                       pszSide, file.nStates, nRest);
        Tell(Severity::Warning, "skin.states", strPath, strText);
    }
    if (record.bmBitsPixel == 16)
        Tell(Severity::Warning, "skin.depth", strPath,
             "has 16 bits a pixel, which round colours: a transparent colour may not be found");
    const bool bVertical = std::string_view(file.pszPath).find("Frame_Left") != std::string_view::npos ||
                           std::string_view(file.pszPath).find("Frame_Right") != std::string_view::npos;
    CheckEnds(file, strPath,
              bVertical    ? record.bmHeight
              : file.bHorz ? record.bmWidth / file.nStates
                           : record.bmWidth);
}

void Checker::CheckEnds(const SkinFile& file, const CString& strPath, int nLength)
{
    if (!file.pszFirstKey) return;
    const int nFirst = Number(file.pszFirstKey);
    const int nLast = Number(file.pszLastKey);
    if (nFirst < 0 || nLast < 0 || std::int64_t{nFirst} + nLast < nLength) return;
    CString strText;
    strText.Format("is %d pixels long in one state, and %s and %s take %d and %d of them: there is no middle "
                   "to repeat",
                   nLength, file.pszFirstKey, file.pszLastKey, nFirst, nLast);
    Tell(Severity::Warning, "skin.ends", strPath, strText);
}

void Checker::CheckEntries(const CString& strBelow)
{
    WIN32_FIND_DATAA data;
    FileSearch search(m_strDir + strBelow + "*", data);
    if (!search) return;
    std::map<CString, CString> names; // in lower case
    std::vector<CString> dirs;
    do {
        const CString strName = data.cFileName;
        if (strName == "." || strName == "..") continue;
        if (++m_nEntries > kMostEntries) {
            CString strText;
            strText.Format("has more than %d entries: the others weren't looked at", kMostEntries);
            Tell(Severity::Warning, "skin.too-much", m_strDir, strText);
            break;
        }
        const auto [other, bNew] = names.emplace(CString(strName).MakeLower(), strName);
        if (!bNew)
            Tell(Severity::Warning, "skin.case", m_strDir + strBelow + strName,
                 "differs from \"" + other->second +
                     "\" by case alone: which is read depends on the spelling");
        if (!IsDirectory(data))
            CheckEntry(strBelow + strName);
        else if (!IsLink(data))
            dirs.push_back(strBelow + strName + "\\");
    } while (search.Next());
    for (const CString& strDir : dirs)
        if (m_nEntries <= kMostEntries) CheckEntries(strDir);
}

void Checker::CheckEntry(const CString& strName)
{
    if (SameName("Skin.ini", strName)) return;
    Nearest nearest(strName);
    for (const SkinFile& file : kFiles) {
        nearest.Offer(file.pszPath);
        if (!SameName(file.pszPath, strName)) continue;
        if (!file.pszBackground || m_strBackground == file.pszBackground) return;
        CString strText;
        strText.Format("is read with BkgType=%s alone", file.pszBackground);
        Tell(Severity::Note, "skin.unused-file", m_strDir + strName, strText);
        return;
    }
    Tell(Severity::Note, "skin.unknown-file", m_strDir + strName, "nothing reads this file" + nearest.Hint());
}

} // namespace

void CheckSkin(const CString& strDir, const FindingSink& sink)
try {
    Checker(strDir, sink).Run();
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

} // namespace kx::skin
