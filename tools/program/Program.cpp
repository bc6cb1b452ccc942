#include "tools/program/Program.h"

#include <exception>
#include <fcntl.h>
#include <unistd.h>

#include "tools/program/Output.h"

namespace kq {
namespace {

void OpenStandardDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) >= 0) continue;
        // The lowest free number is this one.
        if (open("/dev/null", O_RDWR) != descriptor) _exit(kExitFailed);
    }
}

}  // namespace

int RunProgram(const std::string& name, int failed, const std::function<int()>& body) {
    OpenStandardDescriptors();
    try {
        return body();
    } catch (const OutputError& error) {
        Complain(name, error.what());
        return kExitFailed;
    } catch (const std::exception& error) {
        Complain(name, error.what());
        return failed;
    }
}

}  // namespace kq
