#pragma once

#include "support/Descriptor.h"

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

namespace sdc {

/// Two names lead to one file where these are the same, be it through links of either kind or an open descriptor.
struct FileIdentity {
    dev_t device = 0;
    ino_t number = 0;
    std::string newName; ///< of a file that is to be made, in the folder that has the number

    auto operator<=>(const FileIdentity&) const = default;
};

/// The reader of a pipe has had enough.
class ReaderGone : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where the name of an output leads, whether something is there or not: a link's target is meant, not the link.
class Target {
public:
    /// @param name  "-" is standard output
    /// @throws std::runtime_error as fail(), where that cannot be found out
    explicit Target(const std::string& name);

    /// Whether it is a regular file, or none yet, that goes by a name of its own. Whatever else a name leads to, such as a
    /// device, a pipe, or what the program was given as /dev/stdout or /dev/fd/63, is written to and never replaced.
    bool isFile() const { return !m_isSystems && (!isThere() || std::filesystem::is_regular_file(m_status)); }
    bool isThere() const { return std::filesystem::exists(m_status); }

    /// Nothing of a device, which takes as many outputs as come.
    std::optional<FileIdentity> identity() const;

    /// Finds out whether it can be written, as far as that can be known before.
    /// @throws std::runtime_error as fail()
    void check() const;

    /// For writing behind what stands in it; what is not there is made. For a pipe that has a name and no reader it waits
    /// until it has one, unless a stop is asked for.
    /// @throws std::runtime_error as fail()
    support::Descriptor open() const;

    std::filesystem::path folder() const { return m_path.has_parent_path() ? m_path.parent_path() : "."; }
    std::filesystem::path fileName() const { return m_path.filename(); }
    std::filesystem::perms permissions() const { return m_status.permissions(); }

    /// As the user wrote it, for messages.
    std::string shownName() const;

    /// @throws ReaderGone or another std::runtime_error that names the file, as the user did, and the reason that the system
    /// gave last
    [[noreturn]] void fail() const;

private:
    std::optional<int> ownDescriptor() const;
    bool hasObstacle() const;

    std::string m_name;
    std::filesystem::path m_path;
    std::filesystem::file_status m_status;
    bool m_isSystems = false; ///< a link of the system stands for a file that some program has opened
};

} // namespace sdc
