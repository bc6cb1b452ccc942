// Prints a type library of a DLL: kqtypelib DLL NUMBER
#include <charconv>
#include <cstdio>
#include <cstring>

#include "automation/TypeLibraryText.h"
#include "automation/WideText.h"

int main(int count, char** arguments) {
    std::size_t number = 0;
    if (count == 3) std::from_chars(arguments[2], arguments[2] + std::strlen(arguments[2]), number);
    if (number == 0) {
        std::fputs("usage: kqtypelib DLL NUMBER\n", stderr);
        return 2;
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const auto libraries = kq::TypeLibrariesOf(kq::Wide(arguments[1]));
    if (number > libraries.size()) {
        std::fprintf(stderr, "kqtypelib: %s has %zu type libraries\n", arguments[1], libraries.size());
        return 1;
    }
    std::fputs(kq::TypeLibraryText(*libraries[number - 1].Get()).c_str(), stdout);
    return 0;
}
