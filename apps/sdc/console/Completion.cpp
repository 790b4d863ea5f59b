#include "apps/sdc/console/Completion.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace sdc {

Words filesBeginning(const std::string& name)
{
    namespace fs = std::filesystem;
    const std::size_t slash = name.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : name.substr(0, slash + 1);
    const std::string beginning = name.substr(folder.size());
    Words files;
    std::error_code error;
    fs::directory_iterator entry(folder.empty() ? "." : folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const std::string found = entry->path().filename().string();
        const bool isHidden = found.front() == '.' && beginning.empty();
        if (found.starts_with(beginning) && !isHidden) {
            std::error_code unknown;
            files.push_back(folder + found + (entry->is_directory(unknown) ? "/" : ""));
        }
    }
    std::ranges::sort(files);
    return files;
}

} // namespace sdc
