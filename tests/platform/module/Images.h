#pragma once

#include "tests/support/BmpBuilder.h"
#include "tests/support/Test.h"

namespace test {

// Files with a version in them, made in memory, whose fields a test may falsify.
struct Image
{
    void Put(std::size_t at, std::size_t width, std::uint64_t value) { Text(at, Le(value, width)); }
    void Text(std::size_t at, std::string_view text)
    {
        if (bytes.size() < at + text.size()) bytes.resize(at + text.size());
        bytes.replace(at, text.size(), text);
    }

    std::string bytes;
};

// The places of the fields of a PE image that the tests touch. The resource tree begins at 0x400 in the file.
struct PeFields
{
    explicit PeFields(bool b64)
        : optional(88), directories(optional + (b64 ? 112u : 96u)), sections(optional + (b64 ? 240u : 224u))
    {
    }

    std::size_t optional, directories, sections;
    std::size_t section = sections + 40; // the second one, which holds the resources
    static constexpr std::size_t peAt = 60, pe = 64, root = 0x400, names = 0x420, languages = 0x438,
                                 data = 0x450, head = 0x460, record = head + 40, end = record + 52;
};

// A PE image of version 1.2.3.4 with the resource tree type 16, a name, a language.
inline Image PeImage(bool b64)
{
    const PeFields at(b64);
    Image image;
    image.Text(0, "MZ");
    image.Put(at.peAt, 4, at.pe);
    image.Text(at.pe, "PE");
    image.Put(at.pe + 6, 2, 2);                          // sections
    image.Put(at.pe + 20, 2, at.sections - at.optional); // optional header's size
    image.Put(at.optional, 2, b64 ? 0x20B : 0x10B);
    image.Put(at.directories - 4, 4, 16);
    image.Put(at.directories + 16, 4, 0x2000); // resources
    for (std::size_t i = 0; i < 2; ++i) {
        image.Put(at.sections + 40 * i + 12, 4, 0x1000 * (i + 1)); // address
        image.Put(at.sections + 40 * i + 16, 4, 0x200);            // size in the file
        image.Put(at.sections + 40 * i + 20, 4, 0x200 * (i + 1));  // place in the file
    }
    const auto directory = [&](std::size_t where, std::size_t named, std::size_t numbered) {
        image.Put(where + 12, 2, named);
        image.Put(where + 14, 2, numbered);
    };
    const auto entry = [&](std::size_t where, std::uint64_t id, std::uint64_t target) {
        image.Put(where, 4, id);
        image.Put(where + 4, 4, target);
    };
    constexpr std::uint64_t kSub = 0x80000000;
    directory(at.root, 0, 2);
    entry(at.root + 16, 3, kSub | 0x1F0);
    entry(at.root + 24, 16, kSub | (at.names - at.root));
    directory(at.names, 1, 0);
    entry(at.names + 16, kSub | 0x1E0, kSub | (at.languages - at.root));
    directory(at.languages, 0, 1);
    entry(at.languages + 16, 1033, at.data - at.root);
    image.Put(at.data, 4, 0x2000 + at.head - at.root);
    image.Put(at.data + 4, 4, 92);
    image.Put(at.head, 2, 92);
    image.Put(at.head + 2, 2, 52);
    for (std::size_t i = 0; i < 15; ++i)
        image.Put(at.head + 6 + 2 * i, 2, static_cast<unsigned char>("VS_VERSION_INFO"[i]));
    image.Put(at.record, 4, 0xFEEF04BD);
    image.Put(at.record + 8, 4, 0x00010002);
    image.Put(at.record + 12, 4, 0x00030004);
    image.Put(at.record + 48, 4, 77); // dwFileDateLS
    image.Put(0x600, 1, 0);
    return image;
}

// An ELF file of version 5.6.7.8 whose note is named by a program header, behind another note. The note's own
// fields begin at `kElfNote`.
inline constexpr std::size_t kElfNote = 0x100 + 20;
inline Image ElfImage()
{
    constexpr std::size_t header = 64, size = 56, entry = header + size;
    Image image;
    image.Text(0, "\177ELF\2\1");
    image.Put(32, 8, header);
    image.Put(54, 2, size);
    image.Put(56, 2, 2); // the first entry is of no interest
    image.Put(entry, 4, 4);
    image.Put(entry + 8, 8, 0x100);
    image.Put(entry + 32, 8, 20 + 40);
    image.Put(entry + 48, 8, 4);

    image.Put(0x100, 4, 4); // a note of another owner: name, content, type
    image.Put(0x104, 4, 2);
    image.Text(0x10C, "GNU");
    image.Put(kElfNote, 4, 10);
    image.Put(kElfNote + 4, 4, 16);
    image.Put(kElfNote + 8, 4, 1);
    image.Text(kElfNote + 12, "KXVersion");
    for (std::size_t i = 0; i < 4; ++i)
        image.Put(kElfNote + 24 + 4 * i, 4, 5 + i);
    return image;
}

} // namespace test
