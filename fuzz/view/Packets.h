// An input of the two targets here: packets, each behind its length in two bytes, the lower first.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

inline std::vector<std::vector<std::uint8_t>> Packets(const std::uint8_t* pBytes, std::size_t nSize)
{
    std::vector<std::vector<std::uint8_t>> packets;
    while (nSize >= 2)
    {
        const std::size_t nAsked = pBytes[0] + 256U * pBytes[1];
        pBytes += 2;
        nSize -= 2;
        const std::size_t nLength = std::min(nAsked, nSize);
        packets.emplace_back(pBytes, pBytes + nLength);
        pBytes += nLength;
        nSize -= nLength;
    }
    return packets;
}
