// ParseString with any separators (the first bytes of the input, at most nine of them
// kept) over any text: each token is non-empty and holds no separator, the tokens
// appear in the text in order, and a second, shorter run leaves the earlier tokens
// behind the count.

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
    return 0;
}
