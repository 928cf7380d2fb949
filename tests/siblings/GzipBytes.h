#pragma once

#include <string>
#include <string_view>

inline std::string BytesOfHex(std::string_view hex)
{
    std::string bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes += static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16));
    return bytes;
}

// "Hello, hello, hello" in both forms.
inline const std::string kGzipHello
    = BytesOfHex("1f8b0800000000000203f348cdc9c9d751c840a2008bd74e2f13000000");
inline const std::string kZlibHello = BytesOfHex("789cf348cdc9c9d751c840a20041c806b5");

// A gzip stream of 96 bytes that becomes 65536 zeros.
inline const std::string kGzipZeros = BytesOfHex("1f8b0800000000000203edc101010000008090feafee080a")
    + std::string(63, '\0') + BytesOfHex("6aeb8e97d700000100");

// One that becomes `count` times as many.
inline std::string GzipBomb(int count)
{
    std::string bomb;
    while (count-- > 0)
        bomb += kGzipZeros;
    return bomb;
}
