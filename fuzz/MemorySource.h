#pragma once

#include "platform/module/FileVersion.h"

#include <cstring>

// A fuzzer's input as a file.
class MemorySource : public kx::module::ByteSource
{
public:
    MemorySource(const std::uint8_t* data, std::size_t size) : m_data(data, size) {}
    std::uint64_t Size() const noexcept override { return m_data.size(); }

protected:
    bool ReadAt(std::uint64_t offset, std::span<std::uint8_t> target) const override
    {
        const auto part = m_data.subspan(offset, target.size());
        if (!part.empty()) std::memcpy(target.data(), part.data(), part.size());
        return true;
    }

private:
    std::span<const std::uint8_t> m_data;
};
