#include "apps/sdc/tty/StandardOutput.h"

#include "apps/sdc/tty/Screen.h"

#include <unistd.h>

#include <iostream>
#include <stdexcept>

namespace sdc {

ExitStatus toStandardOutput(const std::function<ExitStatus(std::ostream& output)>& write)
{
    const ExitStatus status = write(std::cout);
    if (std::cout.flush()) {
        return status;
    }
    if (isReaderGone(STDOUT_FILENO)) {
        return EXIT_INTERNAL;
    }
    throw std::runtime_error("cannot write to standard output: it is closed, or the disk is full");
}

} // namespace sdc
