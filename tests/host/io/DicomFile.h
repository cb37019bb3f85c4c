#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A slice in explicit little-endian encoding (DICOM PS3.5 and PS3.10), put together byte by byte.
struct DicomFile
{
    std::string series = "1.2.3.4";
    std::string position = "0\\0\\0";
    std::string orientation = "1\\0\\0\\0\\1\\0";
    std::string slope = "1";
    std::string intercept = "0";
    int number = 1;
    std::uint16_t rows = 2;
    std::uint16_t columns = 3;

    static std::string word(std::uint16_t v) { return std::string(reinterpret_cast<char*>(&v), 2); }
    static std::string longWord(std::uint32_t v) { return std::string(reinterpret_cast<char*>(&v), 4); }

    static std::string element(std::uint16_t group, std::uint16_t tag, const std::string& vr,
                               std::string value)
    {
        if (value.size() % 2) value += vr == "UI" ? '\0' : ' ';
        const std::string head = word(group) + word(tag) + vr;
        if (vr == "OB" || vr == "OW")
            return head + word(0) + longWord(static_cast<std::uint32_t>(value.size())) + value;
        return head + word(static_cast<std::uint16_t>(value.size())) + value;
    }

    std::string bytes(const std::vector<short>& voxels) const
    {
        const std::string ct = "1.2.840.10008.5.1.4.1.1.2";
        const std::string instance = series + "." + std::to_string(number);
        const std::string meta = element(2, 1, "OB", std::string("\0\1", 2)) + element(2, 2, "UI", ct) +
                                 element(2, 3, "UI", instance) +
                                 element(2, 0x10, "UI", "1.2.840.10008.1.2.1") +
                                 element(2, 0x12, "UI", "1.2.3");
        return std::string(128, 0) + "DICM" +
               element(2, 0, "UL", longWord(static_cast<std::uint32_t>(meta.size()))) + meta +
               element(8, 0x16, "UI", ct) + element(8, 0x18, "UI", instance) + element(8, 0x60, "CS", "CT") +
               element(8, 0x103e, "LO", "Series " + series) + element(0x20, 0xd, "UI", "1.2.3") +
               element(0x20, 0xe, "UI", series) + element(0x20, 0x13, "IS", std::to_string(number)) +
               (position.empty() ? "" : element(0x20, 0x32, "DS", position)) +
               element(0x20, 0x37, "DS", orientation) + element(0x28, 2, "US", word(1)) +
               element(0x28, 4, "CS", "MONOCHROME2") + element(0x28, 0x10, "US", word(rows)) +
               element(0x28, 0x11, "US", word(columns)) + element(0x28, 0x30, "DS", "0.5\\0.75") +
               element(0x28, 0x100, "US", word(16)) + element(0x28, 0x101, "US", word(16)) +
               element(0x28, 0x102, "US", word(15)) + element(0x28, 0x103, "US", word(1)) +
               element(0x28, 0x1052, "DS", intercept) + element(0x28, 0x1053, "DS", slope) +
               element(0x7fe0, 0x10, "OW", raw(voxels));
    }

    static std::string raw(const std::vector<short>& v)
    {
        return std::string(reinterpret_cast<const char*>(v.data()), 2 * v.size());
    }
};
