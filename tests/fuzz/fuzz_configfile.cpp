// The configuration file's parsers on any input, the first byte choosing which (one corpus,
// corpus/fuzz_configfile, holds the inputs of all three):
// 0: ParseString with any separators (the first bytes of the rest) over any text.
// 1: ParseString::mstrncpy with any length and any source: it copies a prefix of at most
//    `length` bytes (none for a length of 0 or below), ends the target behind it, and when
//    it drops a byte it is the last of the bytes walked, whose count of bytes other than
//    0x80 was odd.
// 2: Ccfgfile::loadConfig on any file content: the rest is written to a file of this
//    process and loaded.

#include "FuzzCheck.h"
#include "common/ConfigFile.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

void Tokens(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider in(data, size);
    const std::string separators = in.ConsumeRandomLengthString(16);
    const std::string original = in.ConsumeRemainingBytesAsString();
    std::vector<char> buffer(original.begin(), original.end());
    buffer.push_back('\0');

    ParseString parser(buffer.data(), separators.c_str());
    const std::string kept = parser.getStoken();
    FuzzCheck(kept.size() <= 9, "more than nine separators kept");
    FuzzCheck(separators.compare(0, kept.size(), kept) == 0, "the separators are not a prefix");

    const int count = parser.exec();
    FuzzCheck(count == parser.count(), "exec and count differ");
    std::size_t at = 0;
    const std::string text = original.substr(0, original.find('\0'));
    for (int i = 0; i < count; ++i) {
        const std::string& token = parser[i];
        FuzzCheck(!token.empty(), "an empty token");
        FuzzCheck(token.find_first_of(kept) == std::string::npos || kept.empty(),
                  "a token holds a separator");
        const std::size_t found = text.find(token, at);
        FuzzCheck(found != std::string::npos, "a token is not in the text in order");
        at = found + token.size();
    }
    // A second run on the first token alone: the list does not shrink.
    if (count > 0) {
        std::vector<char> again(parser[0].begin(), parser[0].end());
        again.push_back('\0');
        FuzzCheck(parser.set_parse(again.data()) == 1, "a token parses as more than one");
        if (count > 1) {
            FuzzCheck(!parser[count - 1].empty(), "the list shrank");
        }
    }
    ParseString copy = parser;
    FuzzCheck(std::strcmp(copy.getStoken(), parser.getStoken()) == 0, "a copy lost the separators");
    copy.setStoken(separators.c_str());
}

void Copy(const std::uint8_t* data, std::size_t size)
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
}

void Load(const std::uint8_t* data, std::size_t size)
{
    static const std::string path =
        "/tmp/calcdata-fuzz-config-" + std::to_string(getpid()) + ".cfg";
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) {
        return;
    }
    std::fwrite(data, 1, size, f);
    std::fclose(f);

    Ccfgfile cfg;
    FuzzCheck(cfg.loadConfig(path) == 0, "an existing file was not loaded");
    // Every line's key: the first token of each line, as the loader cut it.
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos) {
            end = text.size();
        }
        std::string key = text.substr(start, std::min(end - start, std::size_t(1023)));
        key = key.substr(0, key.find('\0'));
        key = key.substr(0, key.find('='));
        std::string value = cfg.getValue(ParseString::trim(key));
        FuzzCheck(value.find('=') == std::string::npos, "a value holds '='");
        FuzzCheck(value.empty() || (value.front() != ' ' && value.back() != ' '),
                  "a value keeps a blank at an end");
        start = end + 1;
    }
    Ccfgfile again(cfg);
    FuzzCheck(again.loadConfig(path) == 0, "the second load failed");
    cfg.saveConfig(path + ".out");
    std::remove((path + ".out").c_str());
    std::remove(path.c_str());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static void (*const parts[])(const std::uint8_t*, std::size_t) = {Tokens, Copy, Load};
    if (size > 0) {
        parts[data[0] % 3](data + 1, size - 1);
    }
    return 0;
}
