#include "KXCommonClass.h"
#include "tests/platform/module/Images.h"

#include <dlfcn.h>

namespace {

using testing::ElementsAre;

// The result, and the version that the caller has then instead of 6.7.8.9.
std::vector<DWORD> VersionOf(const CString& path)
{
    CKXExeFileInfo::VersionInfo info{6, 7, 8, 9};
    const auto dwResult = static_cast<DWORD>(CKXExeFileInfo::GetFileInfo(path, info));
    return {dwResult, info.dwMajor, info.dwMinor, info.dwRevision, info.dwBuild};
}

TEST(KXExeFileInfo, ReadsAVersionIfThereIsOne)
{
    Dl_info library{};
    ASSERT_NE(dladdr(reinterpret_cast<const void*>(&CKXExeFileInfo::GetFileInfo), &library), 0);
    EXPECT_THAT(VersionOf(KXHost::FromSystemPath(library.dli_fname)), ElementsAre(1, 1, 0, 0, 0));
    const test::TempDir dir;
    dir.Write("image", test::PeImage(true).bytes);
    EXPECT_THAT(VersionOf(dir.Win("image")), ElementsAre(1, 1, 2, 3, 4));
    dir.Write("text", "MZ, but no image");
    for (const CString& path : {dir.Win("text"), dir.Win("absent"), dir.Win(), CString()})
        EXPECT_THAT(VersionOf(path), ElementsAre(0, 6, 7, 8, 9)) << path.GetString();
}

constexpr GUID kGuid{0x01234567, 0x09AB, 0x0DEF, {0xFE, 0x0C, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10}};

GUID Parsed(const char* pszText)
{
    GUID guid;
    std::memset(&guid, 0x5A, sizeof(guid));
    String2GUID(pszText, guid);
    return guid;
}

TEST(KXGuid, HasAFixedTextFormThatReadsBackToTheSameBytes)
{
    CString text("old");
    GUID2String(kGuid, text);
    EXPECT_EQ(text, "01234567-09AB-0DEF-FE0C-BA9876543210");
    for (const char* psz : {"01234567-09AB-0DEF-FE0C-BA9876543210", "{01234567-09AB-0DEF-FE0C-BA9876543210}",
                            "01234567-09ab-0def-fe0c-ba9876543210"})
        EXPECT_EQ(IsSameGUID(Parsed(psz), kGuid), 1) << psz;
    for (std::size_t i = 0; i < sizeof(GUID); ++i) {
        GUID other = kGuid;
        reinterpret_cast<unsigned char*>(&other)[i] ^= 1;
        EXPECT_EQ(IsSameGUID(kGuid, other), 0) << i;
    }
}

TEST(KXGuid, BadTextsGiveZero)
{
    for (const char* text :
         {"", "{", "}", "{01234567-09AB-0DEF-FE0C-BA9876543210", "\xD6\xD0", "\xFF",
          "01234567-09AB-0DEF-FE0C-BA9876543210}", "01234567-09AB-0DEF-FE0C-BA987654321",
          "{{01234567-09AB-0DEF-FE0C-BA9876543210}}", "01234567-09AB-0DEF-FE0C-BA98765432100",
          " {01234567-09AB-0DEF-FE0C-BA9876543210}", "0123456709AB-0DEF-FE0C-BA9876543210---",
          "01234567-09AB-0DEF-FE0C-BA987654321G", "+1234567-09AB-0DEF-FE0C-BA9876543210",
          "0x234567-09AB-0DEF-FE0C-BA9876543210", "{01234567-09AB-0DEF-FE0C-BA9876543210} ",
          "01234567089AB0CDEF0FE0C0BA9876543210"})
        EXPECT_EQ(IsSameGUID(Parsed(text), GUID{}), 1) << text;
    EXPECT_EQ(IsSameGUID(Parsed(std::string(100'000, 'A').c_str()), GUID{}), 1);
    GUID guid = kGuid;
    EXPECT_EQ(CLSIDFromString(u"{0}", &guid), CO_E_CLASSSTRING);
    EXPECT_EQ(CLSIDFromString(nullptr, &guid), S_OK);
    EXPECT_EQ(CLSIDFromString(u"", nullptr), E_INVALIDARG);
    EXPECT_EQ(CoCreateGuid(nullptr), E_INVALIDARG);
}

TEST(KXGuid, NewOnesDiffer)
{
    CString first, second;
    ASSERT_EQ(CreateGUIDString(first), 1);
    ASSERT_EQ(CreateGUIDString(second), 1);
    EXPECT_NE(first, second);
    EXPECT_THAT(first.GetString(),
                testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
}

std::vector<int> Apart(const char* pszText)
{
    std::vector<int> numbers{0}; // stays
    const int count = CKXNum::ApartNums(pszText, numbers);
    EXPECT_EQ(count, static_cast<int>(numbers.size()));
    return numbers;
}

TEST(KXNum, ApartNumsAppendsEachRunOfDigitsIn32Bits)
{
    EXPECT_THAT(Apart("RGB(12,345) IP(0.1 -7 +8 009"), ElementsAre(0, 12, 345, 0, 1, 7, 8, 9));
    EXPECT_THAT(Apart("\xC8\xFD\x31\xB0\xB0\x32"), ElementsAre(0, 1, 2)); // 1, 2
    EXPECT_THAT(Apart(nullptr), ElementsAre(0));
    EXPECT_THAT(Apart("2147483647 2147483648 4294967296"), ElementsAre(0, INT_MAX, INT_MIN, 0));
    EXPECT_THAT(Apart("99999999999999999999"), ElementsAre(0, 1661992959));
}

TEST(KXNum, CalcFactorialMultipliesTheRange)
{
    // The highest factor, the lowest and the product. A range of four billion ends at once.
    std::istringstream cases("5 1 120  5 3 60  4 4 4  3 4 1  3 -3 0  -1 -3 -6  -2 -3 6  13 1 1932053504  "
                             "33 1 -2147483648  34 1 0  -2147483648 2147483647 1  2147483647 -2147483648 0  "
                             "2147483647 1 0  2147483647 2147483646 -2147483646  "
                             "2147483647 2147483647 2147483647  -2147483648 -2147483648 -2147483648");
    for (int nHigh, nLow, nProduct; cases >> nHigh >> nLow >> nProduct;)
        EXPECT_EQ(CKXNum::CalcFactorial(nHigh, nLow), nProduct) << nLow << " to " << nHigh;
}

TEST(KXNum, IntersectRectCountsTouching)
{
    const RECT middle{10, 10, 20, 20};
    const std::pair<RECT, bool> cases[] = {
        {{12, 12, 15, 15}, true},  {{0, 0, 30, 30}, true},   {{20, 10, 30, 20}, true},
        {{0, 10, 10, 20}, true},   {{20, 20, 30, 30}, true}, {{10, 0, 20, 10}, true},
        {{21, 10, 30, 20}, false}, {{0, 10, 9, 20}, false},  {{10, 0, 20, 9}, false},
        {{10, 21, 20, 30}, false},
    };
    for (const auto& [other, meets] : cases) {
        EXPECT_EQ(CKXNum::IntersectRect(middle, other), meets) << other.left << ',' << other.top;
        EXPECT_EQ(CKXNum::IntersectRect(other, middle), meets) << other.left << ',' << other.top;
    }
}

TEST(KXRandom, IsTheRuntimesGeneratorSeededWithTheSecondAndCutToTheRange)
{
    const test::VirtualClock clock(1234);
    CKXRandom::Init();
    const int first = std::rand();
    std::srand(1234);
    EXPECT_EQ(std::rand(), first);
    for (unsigned nSeed = 0; nSeed < 50; ++nSeed) {
        std::srand(nSeed);
        const int nExpected = std::rand() % 11 - 5;
        std::srand(nSeed);
        EXPECT_EQ(CKXRandom::GetRandom(-5, 5), nExpected);
    }
    for (const int only : {3, 0, INT_MIN, INT_MAX})
        EXPECT_EQ(CKXRandom::GetRandom(only, only), only);
    CKXRandom::GetRandom(INT_MAX, INT_MIN); // a range the wrong way round is harmless
    EXPECT_EQ(CKXRandom::GetRandom(4, 3), 4);
    for (int i = 0; i < 100; ++i)
        EXPECT_THAT(CKXRandom::GetRandom(5, 1), testing::AllOf(testing::Ge(5), testing::Le(7)));
}

TEST(KXRandom, WideRangesHaveBothHalves)
{
    int negative = 0;
    for (int i = 0; i < 1000; ++i)
        negative += CKXRandom::GetRandom(INT_MIN, INT_MAX) < 0;
    EXPECT_NEAR(negative, 500, 150);
}

TEST(AutoLock, GuardsAndNests)
{
    CKXCritSection section;
    int nCount = 0;
    test::RunThreads(4, [&](int) {
        for (int k = 0; k < 5000; ++k) {
            const CKXAutoLock outer(&section);
            const CKXAutoLock inner(&section); // the owner may take it again
            ++nCount;
        }
    });
    EXPECT_EQ(nCount, 20000);
    const CKXAutoLock none(nullptr);
}

TEST(AutoLock, AssignmentMovesWhatIsGivenBack)
{
    CKXCritSection kept;
    CKXCritSection given;
    {
        CKXAutoLock first(&kept);
        const CKXAutoLock second(&given);
        given.Lock(); // for `first` to give back in place of `kept`
        first = second;
    }
    std::jthread([&] { const CKXAutoLock lock(&given); }).join();
    kept.UnLock();
    std::jthread([&] { const CKXAutoLock lock(&kept); }).join();
}

// The inner one gives back what it found; so does one to which that was assigned.
TEST(AutoResHandle, NestsAndAssignmentCopiesWhatComesBack)
{
    int a = 0;
    int b = 0;
    const auto hBefore = AfxGetResourceHandle();
    const auto hOuter = reinterpret_cast<HINSTANCE>(&a);
    const auto hInner = reinterpret_cast<HINSTANCE>(&b);
    for (const bool bAssign : {false, true}) {
        {
            CKXAutoResHandle outer(hOuter);
            {
                const CKXAutoResHandle inner(hInner);
                EXPECT_EQ(AfxGetResourceHandle(), hInner);
                if (bAssign) outer = inner;
            }
            EXPECT_EQ(AfxGetResourceHandle(), hOuter);
        }
        EXPECT_EQ(AfxGetResourceHandle(), bAssign ? hOuter : hBefore);
        AfxSetResourceHandle(hBefore);
    }
}

} // namespace
