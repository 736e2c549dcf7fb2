// Feeds SStringParser hostile setups and texts. The first byte chooses the
// flags, the second the quote, the third how many separators follow (1 to
// 3); the rest is the text. Each input is parsed into the parser's own list
// and into a target array, and the two runs must agree.
#include "foundation/parser.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

void Check(bool condition) {
    if (!condition) {
        abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) {
        return 0;
    }
    unsigned flags = data[0] & 15;
    char quote = char(data[1]);
    size_t separatorCount = 1 + data[2] % 3;
    if (size < 3 + separatorCount) {
        return 0;
    }
    // A zero byte cannot stand in a separator list: it would end it early.
    char separatorText[4] = {};
    size_t kept = 0;
    for (size_t i = 0; i < separatorCount; ++i) {
        if (data[3 + i] != 0) {
            separatorText[kept++] = char(data[3 + i]);
        }
    }
    const char* text = reinterpret_cast<const char*>(data + 3 + separatorCount);
    int length = int(size - 3 - separatorCount);
    SString separators(separatorText);

    SStringParser parser;
    parser.Assign(text, length);
    int result = parser.Parse(separators, flags, quote);
    Check(result >= -1);
    Check(result == parser.GetCount() || (result == -1 && parser.GetCount() == 0));

    // Tokens come from the text in order. Trimming and unquoting only cut
    // characters away, so each token is still found after the one before.
    std::string_view whole(text, size_t(length));
    size_t from = 0;
    for (int i = 0; i < parser.GetCount(); ++i) {
        const SString* token = parser.GetTokenRef(i);
        Check(token != nullptr);
        size_t at = whole.find(std::string_view(token->c_str(), size_t(token->GetLength())), from);
        Check(at != std::string_view::npos);
        from = at + size_t(token->GetLength());
    }

    SStringParser again;
    again.Assign(text, length);
    SStringArray target;
    target.Add("before");
    int targetResult = again.Parse(separators, flags, quote, &target);
    Check(targetResult == result);
    Check(again.GetCount() == 0);
    Check(target.GetCount() == 1 + (result > 0 ? result : 0));
    for (int i = 0; i < parser.GetCount(); ++i) {
        Check(*target.GetAt(i + 1) == *parser.GetTokenRef(i));
    }
    return 0;
}
