// Fuzzes SString::Format. The input is read as a recipe: literal text and up
// to six printf conversions (d i u x X o c s p e f g G, with flags, widths,
// precisions and the length prefixes h l ll I64), each with an argument of
// exactly the type its conversion reads; one input mixes int with at most
// two other argument types. Every result is checked against the C library's
// own snprintf of the same format with "I64" written "ll".
#include "foundation/string.h"

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <set>
#include <string>
#include <vector>

namespace {

// Arguments, star widths included. Every argument type multiplies the
// number of call shapes the dispatcher instantiates, so this stays small.
constexpr int MAX_ARGUMENTS = 6;
constexpr int MAX_CONVERSIONS = 6;
constexpr int MAX_STAR = 100000;
constexpr size_t MAX_SLICE = 64;

class Reader {
public:
    Reader(const uint8_t* data, size_t size) : data(data), size(size) {}
    bool IsEmpty() const { return position >= size; }
    uint8_t Byte() { return position < size ? data[position++] : 0; }
    uint64_t Bytes(int count) {
        uint64_t value = 0;
        for (int i = 0; i < count; i++) {
            value = (value << 8) | Byte();
        }
        return value;
    }
    std::string Slice(size_t most) {
        size_t count = Byte() % (most + 1);
        std::string text;
        for (size_t i = 0; i < count && !IsEmpty(); i++) {
            char c = static_cast<char>(Byte());
            if (c != 0) {
                text += c;
            }
        }
        return text;
    }

private:
    const uint8_t* data;
    size_t size;
    size_t position = 0;
};

enum class Kind { Int, Long, LongLong, Double, Text };

template <typename T> constexpr Kind KIND_OF = Kind::Int;
template <> constexpr Kind KIND_OF<long> = Kind::Long;
template <> constexpr Kind KIND_OF<long long> = Kind::LongLong;
template <> constexpr Kind KIND_OF<double> = Kind::Double;

struct Argument {
    Kind kind = Kind::Int;
    long long integer = 0;
    double real = 0;
    const char* text = nullptr;
};

struct Recipe {
    std::string format;    // what Format receives
    std::string reference; // the same with "I64" written "ll", for snprintf
    std::vector<Argument> arguments;
    std::deque<std::string> texts; // storage that never moves, for the string arguments
};

void Emit(Recipe& recipe, const std::string& piece, const std::string& referencePiece) {
    recipe.format += piece;
    recipe.reference += referencePiece;
}

Argument Integer(Kind kind, long long value) {
    Argument argument;
    argument.kind = kind;
    argument.integer = value;
    return argument;
}

// Adds one conversion and its arguments; false when they do not fit.
bool AddConversion(Reader& reader, Recipe& recipe, SString& target) {
    static const char CONVERSIONS[] = "diuxXocspefgG";
    static const char FLAGS[] = "-+ 0#";
    static const char* const INTEGER_LENGTHS[] = {"", "h", "l", "ll", "I64"};
    char conversion = CONVERSIONS[reader.Byte() % (sizeof(CONVERSIONS) - 1)];
    bool isInteger = strchr("diuxXo", conversion) != nullptr;
    bool isReal = strchr("efgG", conversion) != nullptr;
    std::vector<Argument> needed;
    std::string directive = "%";
    uint8_t flags = reader.Byte();
    for (int i = 0; i < 5; i++) {
        if ((flags >> i) & 1) {
            directive += FLAGS[i];
        }
    }
    auto star = [&]() {
        long long value = static_cast<int32_t>(reader.Bytes(4)) % (MAX_STAR + 1);
        needed.push_back(Integer(Kind::Int, value));
    };
    switch (reader.Byte() % 4) {
    case 1:
        directive += std::to_string(reader.Bytes(2) % 5000);
        break;
    case 2:
        directive += '*';
        star();
        break;
    default:
        break;
    }
    switch (reader.Byte() % 4) {
    case 1:
        directive += '.';
        break;
    case 2:
        directive += '.' + std::to_string(reader.Bytes(2) % 500);
        break;
    case 3:
        directive += ".*";
        star();
        break;
    default:
        break;
    }
    std::string length;
    if (isInteger) {
        length = INTEGER_LENGTHS[reader.Byte() % 5];
    } else if (isReal && reader.Byte() % 2 == 1) {
        length = "l";
    }
    if (isInteger) {
        Kind kind = length == "l" ? Kind::Long : (length.size() > 1 ? Kind::LongLong : Kind::Int);
        long long value = static_cast<long long>(reader.Bytes(8));
        value = kind == Kind::Int ? static_cast<int>(value)
                                  : (kind == Kind::Long ? static_cast<long>(value) : value);
        if (strchr("uxXo", conversion) != nullptr && value < 0) {
            // The signed argument stands for the unsigned one, so it must be
            // representable in both.
            value = kind == Kind::Int ? value & INT32_MAX : value & INT64_MAX;
        }
        needed.push_back(Integer(kind, value));
    } else if (isReal) {
        Argument argument;
        argument.kind = Kind::Double;
        uint64_t bits = reader.Bytes(8);
        memcpy(&argument.real, &bits, sizeof(bits));
        needed.push_back(argument);
    } else if (conversion == 'c') {
        needed.push_back(Integer(Kind::Int, reader.Byte()));
    } else {
        Argument argument;
        argument.kind = Kind::Text;
        uint8_t choice = reader.Byte() % 8;
        if (choice == 1) {
            argument.text = target.c_str(); // the string being formatted
        } else if (choice != 0) {
            recipe.texts.push_back(reader.Slice(MAX_SLICE));
            argument.text = recipe.texts.back().c_str();
        }
        needed.push_back(argument);
    }
    if (recipe.arguments.size() + needed.size() > MAX_ARGUMENTS) {
        return false;
    }
    std::set<Kind> kinds;
    for (const Argument& a : recipe.arguments) {
        kinds.insert(a.kind);
    }
    kinds.insert(needed.back().kind);
    kinds.erase(Kind::Int);
    if (kinds.size() > 2) {
        return false;
    }
    recipe.arguments.insert(recipe.arguments.end(), needed.begin(), needed.end());
    Emit(recipe, directive + length + conversion,
         directive + (length == "I64" ? std::string("ll") : length) + conversion);
    return true;
}

std::vector<char> expected;

// The C library's own result for the reference format.
void FormatReference(const char* format, ...) {
    va_list args;
    va_start(args, format);
    va_list measure;
    va_copy(measure, args);
    int size = vsnprintf(nullptr, 0, format, measure);
    va_end(measure);
    expected.assign(size >= 0 ? static_cast<size_t>(size) + 1 : 1, 0);
    if (size >= 0) {
        vsnprintf(expected.data(), expected.size(), format, args);
    }
    va_end(args);
}

void Verify(const SString& target) {
    if (strcmp(target.c_str(), expected.data()) != 0 ||
        static_cast<size_t>(target.GetLength()) != strlen(target.c_str()) ||
        target.GetCapacity() <= target.GetLength()) {
        abort();
    }
}

template <typename T> T ValueOf(const Argument& argument);
template <> long ValueOf<long>(const Argument& argument) {
    return static_cast<long>(argument.integer);
}
template <> long long ValueOf<long long>(const Argument& argument) {
    return argument.integer;
}
template <> double ValueOf<double>(const Argument& argument) {
    return argument.real;
}
template <> const char* ValueOf<const char*>(const Argument& argument) {
    return argument.text;
}

// Calls Format with the arguments as real C++ values of their kinds: int,
// or one of the two kinds First and Second. Each argument sequence is a
// separate instantiation, which is why an input may use only int and two
// other kinds. The dispatcher only forwards, so it is left unoptimised and
// uninstrumented: the build stays quick and coverage stays on the string
// code. A trailing unused 0 keeps the call from ever having no argument.
template <typename First, typename Second, typename... Values>
__attribute__((noinline, optnone, no_sanitize("address", "undefined", "coverage"))) void
Dispatch(SString& target, const Recipe& recipe, size_t next, Values... values) {
    if constexpr (sizeof...(Values) < MAX_ARGUMENTS) {
        if (next < recipe.arguments.size()) {
            const Argument& a = recipe.arguments[next];
            if (a.kind == Kind::Int) {
                return Dispatch<First, Second>(target, recipe, next + 1, values...,
                                               static_cast<int>(a.integer));
            }
            if (a.kind == KIND_OF<First>) {
                return Dispatch<First, Second>(target, recipe, next + 1, values...,
                                               ValueOf<First>(a));
            }
            return Dispatch<First, Second>(target, recipe, next + 1, values..., ValueOf<Second>(a));
        }
    }
    FormatReference(recipe.reference.c_str(), values..., 0);
    target.Format(recipe.format.c_str(), values..., 0);
    Verify(target);
}

// Picks the instantiation whose two kinds cover those the recipe uses.
void Run(SString& target, const Recipe& recipe) {
    bool uses[5] = {};
    for (const Argument& a : recipe.arguments) {
        uses[static_cast<int>(a.kind)] = true;
    }
    bool hasLong = uses[static_cast<int>(Kind::Long)];
    bool hasLongLong = uses[static_cast<int>(Kind::LongLong)];
    bool hasDouble = uses[static_cast<int>(Kind::Double)];
    if (hasLong && hasLongLong) {
        Dispatch<long, long long>(target, recipe, 0);
    } else if (hasLong && hasDouble) {
        Dispatch<long, double>(target, recipe, 0);
    } else if (hasLong) {
        Dispatch<long, const char*>(target, recipe, 0);
    } else if (hasLongLong && hasDouble) {
        Dispatch<long long, double>(target, recipe, 0);
    } else if (hasLongLong) {
        Dispatch<long long, const char*>(target, recipe, 0);
    } else {
        Dispatch<double, const char*>(target, recipe, 0);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Reader reader(data, size);
    SString target;
    std::string before = reader.Slice(MAX_SLICE);
    target = before.c_str();
    Recipe recipe;
    int conversions = 0;
    while (!reader.IsEmpty() && conversions < MAX_CONVERSIONS) {
        uint8_t step = reader.Byte() % 4;
        if (step == 0) {
            std::string literal = reader.Slice(24);
            std::string escaped;
            for (char c : literal) {
                escaped += c == '%' ? std::string("%%") : std::string(1, c);
            }
            Emit(recipe, escaped, escaped);
        } else if (step == 1) {
            Emit(recipe, "%%", "%%");
        } else {
            if (!AddConversion(reader, recipe, target)) {
                break;
            }
            conversions++;
        }
    }
    Run(target, recipe);
    return 0;
}
