// A small executable file with a version resource, byte by byte.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace kq {

class PeBuilder {
 public:
    enum class Width { Bits32, Bits64 };
    using Bytes = std::string;

    static Bytes Word(std::size_t value) {
        return {static_cast<char>(value & 0xFF), static_cast<char>((value >> 8) & 0xFF)};
    }
    static Bytes DoubleWord(std::size_t value) { return Word(value & 0xFFFF) + Word(value >> 16); }
    static Bytes Wide(const std::string& ascii) {
        Bytes wide;
        for (const char c : ascii)
            wide += Word(static_cast<unsigned char>(c));
        return wide + Word(0);
    }
    static Bytes Padded(Bytes bytes) {
        bytes.resize((bytes.size() + 3) / 4 * 4, '\0');
        return bytes;
    }

    // A block of the version tree. `value_length` is what the block says of its value.
    static Bytes Block(const std::string& name, bool text, std::size_t value_length, const Bytes& value,
                       std::initializer_list<Bytes> children = {}) {
        Bytes body = Padded(Bytes(6, '\0') + Wide(name)) + value;
        for (const auto& child : children)
            body = Padded(body) + child;
        const Bytes head = Word(body.size()) + Word(value_length) + Word(text ? 1 : 0);
        return head + body.substr(6);
    }
    static Bytes Text(const std::string& name, const std::string& value) {
        return Block(name, true, value.size() + 1, Wide(value));
    }

    static Bytes VersionInfo() {
        const Bytes fixed(52, '\x11');
        return Block(
            "VS_VERSION_INFO", false, fixed.size(), fixed,
            {Block("StringFileInfo", true, 0, "",
                   {Block("040904b0", true, 0, "",
                          {Text("FileVersion", "5.02.3"), Text("ProductName", "Client"), Text("Comments", ""),
                           // Its length counted in bytes, as some resource compilers do.
                           Block("CompanyName", true, 2 * 5, Wide("Acme"))})}),
             Block("VarFileInfo", true, 0, "",
                   {Block("Translation", false, 4, Word(0x0409) + Word(0x04B0))})});
    }

    // One section, .rsrc, that holds nothing but the version resource.
    static Bytes File(Width width, const Bytes& version, std::size_t type = 16) {
        constexpr std::size_t kAddress = 0x1000;
        const auto directory = [](std::size_t id, std::size_t offset) {
            return Bytes(14, '\0') + Word(1) + DoubleWord(id) + DoubleWord(offset);
        };
        constexpr std::size_t kDirectory = 24;
        Bytes resources = directory(type, 0x80000000U | kDirectory) +
                          directory(1, 0x80000000U | (2 * kDirectory)) + directory(1033, 3 * kDirectory);
        resources += DoubleWord(kAddress + 3 * kDirectory + 16) + DoubleWord(version.size()) + DoubleWord(0) +
                     DoubleWord(0) + version;

        const std::size_t before_directories = width == Width::Bits64 ? 112 : 96;
        Bytes optional = Word(width == Width::Bits64 ? 0x20B : 0x10B);
        optional.resize(before_directories - 4, '\0');
        optional += DoubleWord(16) + Bytes(16, '\0') + DoubleWord(kAddress) + DoubleWord(resources.size());
        optional.resize(before_directories + 16 * 8, '\0');

        Bytes file = "MZ";
        file.resize(60, '\0');
        file += DoubleWord(64) + Bytes("PE\0\0", 4) + Word(0x8664) + Word(1) + Bytes(12, '\0') +
                Word(optional.size()) + Word(0x22) + optional;
        const std::size_t raw_at = file.size() + 40;
        file += Bytes(".rsrc\0\0\0", 8) + DoubleWord(resources.size()) + DoubleWord(kAddress) +
                DoubleWord(resources.size()) + DoubleWord(raw_at) + Bytes(16, '\0');
        return file + resources;
    }
};

}  // namespace kq
