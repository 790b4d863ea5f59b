#include "apps/sdc/formats/OutputFile.h"

#include "apps/sdc/formats/Target.h"
#include "apps/sdc/formats/Writing.h"
#include "apps/sdc/tty/Interrupt.h"
#include "support/Descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <iostream>
#include <random>
#include <sstream>
#include <string_view>
#include <utility>

namespace sdc {

namespace {

namespace fs = std::filesystem;
using support::Descriptor;

/// What a call of the system returned, where it did not fail.
int checked(int result, const Target& target)
{
    if (result < 0) {
        target.fail();
    }
    return result;
}

void writeInto(Descriptor&& file, std::string_view text, const Target& target)
{
    if (!writeAll(file.number(), text) || !file.reset()) {
        target.fail();
    }
}

std::string randomName()
{
    std::random_device random;
    std::string name = ".sdc-";
    for (int digit = 0; digit < 12; ++digit) {
        name += static_cast<char>('a' + random() % 26);
    }
    return name;
}

/// An empty file with a name of its own beside the target; gone in the end, unless it took the target's place. No signal
/// ends the program as long as there is one.
class TemporaryFile {
public:
    TemporaryFile(const Target& target, mode_t mode)
        : m_folder(checked(open(target.folder().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC), target))
        , m_file(checked(openat(m_folder.number(), m_name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode), target))
    {
    }
    ~TemporaryFile() { unlinkat(m_folder.number(), m_name.c_str(), 0); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    Descriptor& file() { return m_file; }
    int takePlaceOf(const Target& target) const
    {
        return renameat(m_folder.number(), m_name.c_str(), m_folder.number(), target.fileName().c_str());
    }

private:
    SignalsHeld m_signalsHeld;
    std::string m_name = randomName();
    Descriptor m_folder;
    Descriptor m_file;
};

void replace(const Target& target, std::string_view text)
{
    TemporaryFile temporary(target, target.isThere() ? 0600 : 0666);
    if (target.isThere()) {
        const fs::perms permissions = target.permissions() & fs::perms::all; // none that lends the owner's rights
        checked(fchmod(temporary.file().number(), static_cast<mode_t>(permissions)), target);
    }
    writeInto(std::move(temporary.file()), text, target);
    checked(temporary.takePlaceOf(target), target);
}

} // namespace

void writeFile(const std::string& path, const std::function<void(std::ostream& stream)>& write)
{
    const Target target(path);
    target.check();
    std::ostringstream stream;
    errno = 0;
    write(stream);
    if (!stream) {
        target.fail();
    }
    if (target.isFile()) {
        replace(target, stream.view());
        return;
    }
    std::cout.flush(); // what the program itself had to say there comes before
    writeInto(target.open(), stream.view(), target);
}

} // namespace sdc
