#include "platform/services/systemd/Bus.h"

#include <algorithm>

namespace kx::services::systemd {

namespace {

// Reads a variant's content, which is of the form `found`: 1, or 0 for another form than the target's.
struct Reader
{
    sd_bus_message* message;
    std::string_view found;

    int operator()(std::int32_t* target) const { return Value("i", target); }
    int operator()(std::uint32_t* target) const { return Value("u", target); }
    int operator()(std::uint64_t* target) const { return Value("t", target); }
    int operator()(bool* target) const
    {
        int value = 0;
        const int result = Value("b", &value);
        if (result > 0) *target = value != 0;
        return result;
    }
    int operator()(std::string* target) const
    {
        const char* text = nullptr;
        const int result = Value("s", &text);
        if (result > 0) *target = text;
        return result;
    }
    int operator()(JobRef* target) const
    {
        const char* path = nullptr;
        const int result = Value("(uo)", &target->id, &path);
        if (result > 0) target->path = path;
        return result;
    }
    int operator()(std::vector<std::string>* target) const
    {
        if (found != "as") return 0;
        int result = sd_bus_message_enter_container(message, 'v', "as");
        if (result >= 0) result = sd_bus_message_enter_container(message, 'a', "s");
        if (result < 0) return result;
        target->clear();
        const char* text = nullptr;
        while ((result = sd_bus_message_read_basic(message, 's', &text)) > 0)
            target->emplace_back(text);
        if (result >= 0) result = sd_bus_message_exit_container(message);
        if (result >= 0) result = sd_bus_message_exit_container(message);
        return result < 0 ? result : 1;
    }

private:
    template <class... Target>
    int Value(const char* form, Target*... targets) const
    {
        if (found != form) return 0;
        const int result = sd_bus_message_read(message, "v", form, targets...);
        return result < 0 ? result : 1;
    }
};

int ReadOne(sd_bus_message* message, std::span<const Property> properties)
{
    const char *name = nullptr, *found = nullptr;
    int result = sd_bus_message_read_basic(message, 's', &name);
    if (result > 0) result = sd_bus_message_peek_type(message, nullptr, &found);
    if (result <= 0) return result < 0 ? result : -EBADMSG;
    const auto wanted = std::find_if(properties.begin(), properties.end(),
                                     [&](const Property& property) { return property.name == name; });
    result = wanted == properties.end() ? 0 : std::visit(Reader{message, found ? found : ""}, wanted->target);
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

} // namespace kx::services::systemd
