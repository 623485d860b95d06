#pragma once

#include "tests/support/Test.h"

#include <gio/gio.h>

namespace test {

// Resource path, without the first slash, to content.
using Resources = std::map<std::string, std::string>;

// Compiles a bundle file of these resources, as a product's build would.
inline std::string CompileBundle(const TempDir& dir, const Resources& resources, bool compressed = false)
{
    std::string xml = "<gresources><gresource prefix='/'>";
    for (const auto& [path, content] : resources) {
        dir.Write("source/" + path, content);
        xml += (compressed ? "<file compressed='true'>" : "<file>") + path + "</file>";
    }
    dir.Write("list.xml", xml + "</gresource></gresources>");
    const std::string command = "glib-compile-resources --target='" + dir.Path("bundle") + "' --sourcedir='" +
                                dir.Path("source") + "' '" + dir.Path("list.xml") + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    return dir.Path("bundle");
}

// Resources registered in this process, as those that a program links in are.
class LinkedIn : Fixed
{
public:
    explicit LinkedIn(const Resources& resources)
    {
        const TempDir dir;
        const std::string bundle = CompileBundle(dir, resources);
        m_resource = g_resource_load(bundle.c_str(), nullptr);
        EXPECT_NE(m_resource, nullptr);
        g_resources_register(m_resource);
    }
    ~LinkedIn()
    {
        g_resources_unregister(m_resource);
        g_resource_unref(m_resource);
    }

private:
    GResource* m_resource;
};

} // namespace test
