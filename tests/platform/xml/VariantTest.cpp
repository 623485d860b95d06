#include "include/platform/Variant.h"
#include "tests/support/Test.h"

namespace {

std::u16string Text(BSTR bstr)
{
    return {bstr, SysStringLen(bstr)};
}

TEST(Bstr, CarriesItsLength)
{
    const BSTR bstr = SysAllocString(u"ab\u4F60");
    EXPECT_EQ(Text(bstr), u"ab\u4F60");
    EXPECT_EQ(bstr[3], u'\0');
    const BSTR part = SysAllocStringLen(u"a\0b", 3);
    EXPECT_EQ(Text(part), std::u16string(u"a\0b", 3));
    SysFreeString(SysAllocString(u"xxxxxxxx")); // the next one takes its place
    const BSTR room = SysAllocStringLen(nullptr, 7);
    EXPECT_EQ(SysStringLen(room), 7u);
    EXPECT_EQ(room[7], u'\0');
    for (const BSTR each : {bstr, part, room, BSTR{}})
        SysFreeString(each);
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysAllocStringLen(nullptr, MAX_BSTR_UNITS + 1), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(SysStringLen(nullptr), 0u);
}

struct Value : test::Fixed
{
    Value() { VariantInit(&m_variant); }
    explicit Value(LONG n) : Value() { m_variant.vt = VT_I4, m_variant.lVal = n; }
    explicit Value(double d) : Value() { m_variant.vt = VT_R8, m_variant.dblVal = d; }
    explicit Value(const char16_t* psz) : Value()
    {
        m_variant.vt = VT_BSTR;
        m_variant.bstrVal = SysAllocString(psz);
    }
    explicit Value(VARTYPE vt) : Value() { m_variant.vt = vt; }
    ~Value() { VariantClear(&m_variant); }

    HRESULT Change(VARTYPE vt) { return VariantChangeType(&m_variant, &m_variant, 0, vt); }

    VARIANT m_variant;
};

// A value as another type; nothing where it can't be turned into that.
template <class Take>
auto Turned(const Value& value, VARTYPE vt, Take take)
{
    Value to;
    const bool bTurned = SUCCEEDED(VariantChangeType(&to.m_variant, &value.m_variant, 0, vt));
    return bTurned ? std::optional(take(to.m_variant)) : std::nullopt;
}

TEST(Variant, IsTurnedIntoNumbersAndTexts)
{
    using Turns = std::tuple<std::optional<LONG>, std::optional<double>, std::optional<std::u16string>>;
    const struct
    {
        Value value;
        Turns turns;
    } cases[] = {
        {Value(), {0, 0.0, u""}},
        {Value(VT_NULL), {}},
        {Value(-7), {-7, -7.0, u"-7"}},
        {Value(0.5), {0, 0.5, u"0.5"}},
        {Value(1.5), {2, 1.5, u"1.5"}},
        {Value(2147483647.4), {2147483647, 2147483647.4, u"2147483647.4"}},
        {Value(2147483647.5), {{}, 2147483647.5, u"2147483647.5"}},
        {Value(u" +12 "), {12, 12.0, u" +12 "}},
        {Value(u"-1.5e1"), {-15, -15.0, u"-1.5e1"}},
        {Value(u"12x"), {{}, {}, u"12x"}},
        {Value(u""), {{}, {}, u""}},
        {Value(u"\u4F60"), {{}, {}, u"\u4F60"}},
        {Value(static_cast<const char16_t*>(nullptr)), {{}, {}, u""}},
    };
    for (const auto& [value, turns] : cases)
        EXPECT_EQ(Turns(Turned(value, VT_I4, [](const VARIANT& to) { return to.lVal; }),
                        Turned(value, VT_R8, [](const VARIANT& to) { return to.dblVal; }),
                        Turned(value, VT_BSTR, [](const VARIANT& to) { return Text(to.bstrVal); })),
                  turns);
}

TEST(Variant, LeavesTheTargetOnFailure)
{
    Value text(u"abc");
    EXPECT_EQ(text.Change(VT_I4), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(text.Change(VT_NULL), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(text.Change(99), DISP_E_BADVARTYPE);
    EXPECT_EQ(Text(text.m_variant.bstrVal), u"abc");
    EXPECT_EQ(VariantClear(&text.m_variant), S_OK);
    EXPECT_EQ(text.m_variant.vt, VT_EMPTY);
    Value number(u"1e10");
    EXPECT_EQ(number.Change(VT_I4), DISP_E_OVERFLOW);
    EXPECT_EQ(number.Change(VT_R8), S_OK);
    EXPECT_EQ(number.m_variant.dblVal, 1e10);
    EXPECT_EQ(number.Change(VT_BSTR), S_OK);
    EXPECT_EQ(VariantChangeType(nullptr, &number.m_variant, 0, VT_I4), E_INVALIDARG);
    EXPECT_EQ(VariantChangeType(&number.m_variant, nullptr, 0, VT_I4), E_INVALIDARG);
    EXPECT_EQ(VariantClear(nullptr), E_INVALIDARG);
    VARIANT strange{};
    strange.vt = 99;
    EXPECT_EQ(VariantClear(&strange), DISP_E_BADVARTYPE);
    EXPECT_EQ(VariantChangeType(&number.m_variant, &strange, 0, VT_I4), DISP_E_BADVARTYPE);
}

} // namespace
