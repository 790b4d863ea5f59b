#pragma once

#include "apps/sdc/formats/LiveFormat.h"
#include "apps/sdc/formats/Target.h"
#include "support/Descriptor.h"

#include <optional>
#include <string>
#include <string_view>

namespace sdc {

/// An output that is written while a scan runs, whole lines at a time and in place: whoever reads along sees them at once,
/// and whatever ends the program leaves them. What stood in the file before stays there until the first line that tells of
/// the scan. A reader that has had enough ends the output without an error; a slow one does not keep the scan waiting,
/// unless it is behind by more than a megabyte.
class LiveFile : public Lines {
public:
    /// @param path  "-" is standard output
    /// @throws std::runtime_error as Target::open
    explicit LiveFile(const std::string& path);

    /// A file that was made for nothing goes.
    ~LiveFile() override;
    LiveFile(const LiveFile&) = delete;
    LiveFile& operator=(const LiveFile&) = delete;

    // Lines are written by pass().
    void head(std::string_view lines) override { m_head += lines; }
    void put(std::string_view lines) override;

    /// Writes what has been put.
    /// @throws std::runtime_error as Target::fail, once: then the file ends with the last whole line that could be written,
    /// and nothing more is written
    void pass();

    /// Writes all that is left, as pass(), and waits for it no longer than the user wants to.
    /// @return false where nothing was put, and the file has kept what stood in it before
    bool finish();

    /// Whether what is put is written, sooner or later: not after a failure, nor where the reader has gone.
    bool isOpen() const { return m_file.has_value(); }

    std::string name() const { return m_target.shownName(); }

private:
    void clear();
    void end(std::string_view left);
    void cutToWholeLine(std::string_view written) const;

    Target m_target;
    std::optional<support::Descriptor> m_file; ///< until it has failed, or its reader has gone
    std::string m_head;
    std::string m_pending;    ///< lines that are not yet written
    bool m_hasBegun = false;  ///< the first line is put
    bool m_isCleared = false; ///< of what stood there before
    bool m_isInVain = false;  ///< has failed before a line was whole
};

} // namespace sdc
