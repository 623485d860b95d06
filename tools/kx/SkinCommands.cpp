// Checking a skin, and drawing its sheet.

#include "skin/SkinCheck.h"
#include "tools/kx/Commands.h"
#include "tools/kx/Findings.h"
#include "tools/kx/SkinSheet.h"

#include <KXGdiplusBitmap.h>
#include <KXText.h>
#include <cstdio>
#include <filesystem>

namespace kx::tool {

int CheckSkin(Arguments& arguments)
{
    const bool bJson = arguments.Flag("--json");
    const auto dir = arguments.Word();
    if (!dir || !arguments.Rest().empty()) return Misused("kx skin check DIR [--json]");
    if (!std::filesystem::is_directory(*dir)) return Complain("there is no directory " + *dir);
    const CString strDir = LibraryPath(*dir, true);
    if (strDir.IsEmpty()) return Complain("the path is too long: " + *dir);
    Findings findings;
    {
        Progress progress;
        const FindingSink add = findings.Sink();
        skin::CheckSkin(strDir, [&](const Finding& finding) {
            progress.At("checking " + KXText::ToUtf8(finding.strFile.Mid(strDir.GetLength())));
            add(finding);
        });
    }
    return findings.Print(*dir, bJson);
}

int PreviewSkin(Arguments& arguments)
{
    const auto out = arguments.Value("-o");
    const auto dir = arguments.Word();
    if (!dir || !out || !arguments.Rest().empty()) return Misused("kx skin preview DIR -o FILE.png");
    const CString strDir = LibraryPath(*dir, true);
    const CString strOut = LibraryPath(*out, false);
    if (strDir.IsEmpty() || !std::filesystem::is_directory(*dir))
        return Complain("there is no directory " + *dir);
    SkinSheet sheet(strDir);
    CKXGdiplusBitmap bitmap(sheet.Bitmap());
    if (strOut.IsEmpty() || !bitmap.SaveToFile(strOut, "image/png"))
        return Complain("the file can't be written: " + *out);
    return Clean;
}

} // namespace kx::tool
