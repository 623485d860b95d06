#include "platform/services/systemd/Property.h"

#include <algorithm>

namespace kx::systemd {

namespace {

template <class T>
struct Code;
template <>
struct Code<std::int32_t>
{
    static constexpr char kText[] = "i";
};
template <>
struct Code<std::uint32_t>
{
    static constexpr char kText[] = "u";
};
template <>
struct Code<std::uint64_t>
{
    static constexpr char kText[] = "t";
};

// Reads the content of a variant, which is of the form that `kText` says.
struct Reader
{
    sd_bus_message* message;

    template <class T>
    int operator()(T* target) const
    {
        return Variant(Code<T>::kText,
                       [&] { return sd_bus_message_read_basic(message, Code<T>::kText[0], target); });
    }
    int operator()(bool* target) const
    {
        int value = 0;
        const int result = Variant("b", [&] { return sd_bus_message_read_basic(message, 'b', &value); });
        if (result > 0) *target = value != 0;
        return result;
    }
    int operator()(std::string* target) const
    {
        return Variant("s", [&] { return Text('s', *target); });
    }
    int operator()(std::vector<std::string>* target) const
    {
        return Variant("as", [&] {
            if (const int result = sd_bus_message_enter_container(message, 'a', "s"); result < 0)
                return result;
            target->clear();
            int result = 0;
            for (std::string text; (result = Text('s', text)) > 0;)
                target->push_back(std::move(text));
            return result < 0 ? result : sd_bus_message_exit_container(message);
        });
    }
    int operator()(JobRef* target) const
    {
        return Variant("(uo)", [&] {
            int result = sd_bus_message_enter_container(message, 'r', "uo");
            if (result >= 0) result = sd_bus_message_read_basic(message, 'u', &target->id);
            if (result >= 0) result = Text('o', target->path);
            return result < 0 ? result : sd_bus_message_exit_container(message);
        });
    }

private:
    int Text(char type, std::string& target) const
    {
        const char* text = nullptr;
        const int result = sd_bus_message_read_basic(message, type, &text);
        if (result > 0) target = text;
        return result;
    }

    // 1 when it was read, 0 for a variant of another type, which stays.
    template <class Read>
    int Variant(const char* content, Read&& read) const
    {
        const char* found = nullptr;
        int result = sd_bus_message_peek_type(message, nullptr, &found);
        if (result <= 0) return result < 0 ? result : -EBADMSG;
        if (std::string_view(found ? found : "") != content) return 0;
        result = sd_bus_message_enter_container(message, 'v', content);
        if (result >= 0) result = read();
        if (result >= 0) result = sd_bus_message_exit_container(message);
        return result < 0 ? result : 1;
    }
};

int ReadOne(sd_bus_message* message, std::span<const Property> properties)
{
    const char* name = nullptr;
    int result = sd_bus_message_read_basic(message, 's', &name);
    if (result <= 0) return result < 0 ? result : -EBADMSG;
    const auto wanted = std::find_if(properties.begin(), properties.end(),
                                     [&](const Property& property) { return property.name == name; });
    if (wanted != properties.end())
        result = std::visit(Reader{message}, wanted->target);
    else
        result = 0;
    return result == 0 ? sd_bus_message_skip(message, "v") : result;
}

} // namespace

int ReadProperties(sd_bus_message* message, std::span<const Property> properties)
{
    int result = sd_bus_message_enter_container(message, 'a', "{sv}");
    if (result < 0) return result;
    while ((result = sd_bus_message_enter_container(message, 'e', "sv")) > 0) {
        if ((result = ReadOne(message, properties)) < 0) return result;
        if ((result = sd_bus_message_exit_container(message)) < 0) return result;
    }
    return result < 0 ? result : sd_bus_message_exit_container(message);
}

} // namespace kx::systemd
