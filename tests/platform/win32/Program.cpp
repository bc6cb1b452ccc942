// A program that does nothing but leave a file beside itself, as a sign that it ran.
#include <fstream>
#include <string>

int main(int, char** arguments) {
    std::ofstream(std::string(arguments[0]) + ".ran") << "ran";
    return 0;
}
