// Ccfgfile::loadConfig on any file content: the input is written to a file of this
// process and loaded. What a load may give: no key or value with a blank at either end
// (both are trimmed), no '=' in a value (the value is the text between the first two
// separators); a load into a copy merges again, and the map can be saved.

#include "FuzzCheck.h"
#include "common/ConfigFile.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

const std::string& path()
{
    static const std::string p = "/tmp/calcdata-fuzz-config-" + std::to_string(getpid()) + ".cfg";
    return p;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::FILE* f = std::fopen(path().c_str(), "wb");
    if (!f) {
        return 0;
    }
    std::fwrite(data, 1, size, f);
    std::fclose(f);

    Ccfgfile cfg;
    FuzzCheck(cfg.loadConfig(path()) == 0, "an existing file was not loaded");
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
    FuzzCheck(again.loadConfig(path()) == 0, "the second load failed");
    cfg.saveConfig(path() + ".out");
    std::remove((path() + ".out").c_str());
    std::remove(path().c_str());
    return 0;
}
