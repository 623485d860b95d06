#pragma once

#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace test {

// A JPEG of 8 by 8 blocks of one colour each, side by side; a colour is one value for each component.
struct Jpeg
{
    std::vector<std::vector<int>> blocks;
    bool progressive = false;
    int adobe = -1;         // the transform of Adobe's mark, if there is one
    std::string extra = {}; // segments before the frame

    static std::string Be16(std::size_t n) { return {static_cast<char>(n >> 8), static_cast<char>(n)}; }
    static std::string Segment(char mark, const std::string& content)
    {
        return std::string("\xFF") + mark + Be16(content.size() + 2) + content;
    }

    // The levels of a block's mean, each of a code of four bits that tells how many bits follow; the other
    // coefficients are left out by a code of one bit.
    std::string Scan() const
    {
        std::string bits;
        std::vector<int> last(blocks[0].size(), 128);
        for (const auto& block : blocks)
            for (std::size_t c = 0; c < block.size(); ++c) {
                const int difference = block[c] - last[c];
                last[c] = block[c];
                int size = 0;
                while (std::abs(difference) >> size != 0)
                    ++size;
                Append(bits, size, 4);
                Append(bits, difference < 0 ? difference + (1 << size) - 1 : difference, size);
                if (!progressive) bits += '0';
            }
        std::string bytes;
        bits.resize((bits.size() + 7) / 8 * 8, '1');
        for (std::size_t at = 0; at < bits.size(); at += 8) {
            bytes += static_cast<char>(std::stoi(bits.substr(at, 8), nullptr, 2));
            if (bytes.back() == '\xFF') bytes += '\0'; // else it would begin a mark
        }
        return bytes;
    }
    static void Append(std::string& bits, int value, int count)
    {
        while (count-- > 0)
            bits += value >> count & 1 ? '1' : '0';
    }

    std::string File() const
    {
        using namespace std::string_literals;
        const std::size_t components = blocks[0].size();
        std::string file = "\xFF\xD8" + extra;
        if (adobe >= 0) file += Segment('\xEE', "Adobe\0\x64\0\0\0\0"s + static_cast<char>(adobe));
        file += Segment('\xDB', '\0' + std::string(64, '\x08'));
        std::string frame = '\x08' + Be16(8) + Be16(8 * blocks.size()) + static_cast<char>(components);
        std::string scan(1, static_cast<char>(components));
        for (std::size_t c = 0; c < components; ++c) {
            frame += std::string{static_cast<char>(c + 1), '\x11', '\0'};
            scan += std::string{static_cast<char>(c + 1), '\0'};
        }
        file += Segment(progressive ? '\xC2' : '\xC0', frame);
        file += Segment('\xC4', "\0\0\0\0\x09"s + std::string(12, '\0') + "\0\1\2\3\4\5\6\7\x08"s);
        file += Segment('\xC4', "\x10\x01"s + std::string(15, '\0') + '\0');
        file += Segment('\xDA', scan + '\0' + (progressive ? '\0' : '\x3F') + '\0');
        return file + Scan() + "\xFF\xD9";
    }
};

} // namespace test
