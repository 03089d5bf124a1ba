// ParseString::mstrncpy with any length and any source: it copies a prefix of at most
// `length` bytes (none for a length of 0 or below), ends the target behind it, and when
// it drops a byte it is the last of the bytes walked, whose count of bytes other than
// 0x80 was odd.

#include "FuzzCheck.h"
#include "common/ConfigFile.h"

#include <cstdint>
#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider in(data, size);
    const int length = in.ConsumeIntegralInRange<int>(-8, 300);
    const std::string bytes = in.ConsumeRemainingBytesAsString();
    const std::string source = bytes.substr(0, bytes.find('\0'));

    // The target holds exactly what the contract allows: length bytes and the end.
    std::vector<char> target(std::size_t(length > 0 ? length : 0) + 1, 'X');
    const int n = ParseString::mstrncpy(target.data(), source.c_str(), length);

    const int walked =
        int(std::min<std::size_t>(source.size(), std::size_t(length > 0 ? length : 0)));
    int counted = 0;
    for (int i = 0; i < walked; ++i) {
        counted += static_cast<unsigned char>(source[std::size_t(i)]) != 0x80 ? 1 : 0;
    }
    FuzzCheck(n == (counted % 2 ? walked - 1 : walked), "the copied length breaks the parity rule");
    FuzzCheck(n >= 0 && n <= (length > 0 ? length : 0), "more copied than allowed");
    FuzzCheck(target[std::size_t(n)] == '\0', "the target is not ended");
    FuzzCheck(std::memcmp(target.data(), source.data(), std::size_t(n)) == 0, "not a prefix");
    return 0;
}
